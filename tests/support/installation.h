// The installation that a test of the shipped programs runs with: its texts, and changes to its
// files that last for one test. Only inside the sandbox.
#pragma once

#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

#include "coresupport.h"
#include "privateworld.h"
#include "temporarydirectory.h"

inline constexpr char kInstalledCatalogue[] = "/opt/orlan/data/nls/enu/pafs/messages.paf";
inline constexpr char kInstalledHelp[] = "/opt/orlan/docs/nls/enu/KPX.help";

// A text of the installed English catalogue, as the program shows it.
inline std::string CatalogueText(const std::string &key) {
  static const Owned<CMessages> catalogue = [] {
    Owned<CMessages> read = CreateMessages(kInstalledCatalogue);
    const std::string content = ContentOf(kInstalledCatalogue);
    LineReader lines(content);
    ReadMessages(read.get(), lines);
    return read;
  }();
  const char *text = fTranslateMessage_Function(catalogue.get(), key.c_str());
  if (text == nullptr || key == text) throw std::runtime_error("no text " + key);
  return text;
}

// The same, its "%s" replaced by the arguments.
inline std::string CatalogueText(const std::string &key, std::initializer_list<FormatArg> args) {
  return FormatMessage(CatalogueText(key), args);
}

// For its lifetime the file holds `content`, or is missing when that is none. Its directory must
// exist.
class ChangedFile {
 public:
  ChangedFile(const std::string &path, const std::optional<std::string> &content) : path_(path) {
    RequirePrivateWorld();
    if (std::filesystem::exists(path)) before_ = ContentOf(path);
    Put(content);
  }
  ~ChangedFile() { Put(before_); }
  ChangedFile(const ChangedFile &) = delete;
  ChangedFile &operator=(const ChangedFile &) = delete;

 private:
  void Put(const std::optional<std::string> &content) {
    if (content) {
      std::ofstream(path_, std::ios::binary | std::ios::trunc) << *content;
    } else {
      std::filesystem::remove(path_);
    }
  }

  std::string path_;
  std::optional<std::string> before_;
};
