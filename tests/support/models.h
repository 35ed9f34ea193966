// Models that a test adds with kpxctl, and takes away again.
#pragma once

#include <stdexcept>

#include "spooler.h"

inline CommandResult Kpxctl(std::vector<std::string> words) {
  words.insert(words.begin(), "/usr/sbin/kpxctl");
  return RunProgram(words);
}

// A text of the model that kpxctl has just added ("name", "id"), from what it says in JSON; empty
// for other output.
inline std::string ValueIn(const std::string &json, const std::string &of) {
  const std::string key = "\"" + of + "\": \"";
  const size_t at = json.find(key);
  if (at == std::string::npos) return "";
  const size_t start = at + key.size();
  return json.substr(start, json.find('"', start) - start);
}

// The PPD file of a PostScript printer with trays, a duplex unit and four installable parts.
inline constexpr char kForeignPpd[] = "/usr/share/ppd/hp-ppd/HP/HP_LaserJet_5000_Series.ppd";
inline constexpr char kForeignPrinter[] = "HP LaserJet 5000 Series PS";

// A model that is there as long as this.
class AddedTestModel {
 public:
  explicit AddedTestModel(std::string name, std::vector<std::string> words)
      : name_(std::move(name)) {
    words.insert(words.begin(), {"model", "add"});
    const CommandResult result = Kpxctl(words);
    if (result.status != 0) throw std::runtime_error("kpxctl: " + result.output);
    said_ = result.output;
  }
  ~AddedTestModel() { Kpxctl({"model", "remove", name_}); }
  AddedTestModel(const AddedTestModel &) = delete;
  AddedTestModel &operator=(const AddedTestModel &) = delete;

  const std::string &Said() const { return said_; }

 private:
  std::string name_;
  std::string said_;
};
