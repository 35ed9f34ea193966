// A compiled PPD as the data tests look at it: features with their options and code, constraints.
#pragma once

#include <iterator>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "data_files.h"

struct PpdOption {
  std::string name;
  std::string code;
};

struct CompiledFeature {
  bool is_jcl = false;
  bool is_installable = false;
  std::string type;
  std::string default_option;
  std::vector<PpdOption> options;

  bool Has(const std::string &option) const {
    return std::any_of(options.begin(), options.end(),
                       [&](const PpdOption &o) { return o.name == option; });
  }
};

struct Ppd {
  std::map<std::string, CompiledFeature> features;  // by keyword without the asterisk
  std::map<std::string, std::string> attributes;    // plain ones, by keyword
  std::vector<std::vector<std::string>> conflicts;  // words of a constraint, asterisks kept
};

// Reads what the PPD compiler writes: one statement a line.
inline Ppd ReadPpd(const std::filesystem::path &path) {
  static const std::regex open(R"(\*(JCL)?OpenUI \*(\w+)/[^:]*: (\w+))");
  static const std::regex choice(R"re(\*(\w+) (\w+)/[^:]*: "([^"]*)")re");
  static const std::regex attribute(R"re(\*(\w+): "?([^"]*)"?)re");
  static const std::regex constraint(R"(\*(?:Non)?UIConstraints: (.*))");
  Ppd ppd;
  std::string group;
  for (const std::string &line : FileLines(path)) {
    std::smatch found;
    if (line.starts_with("*OpenGroup: ")) group = line.substr(12, line.find('/') - 12);
    if (line.starts_with("*CloseGroup: ")) group.clear();
    if (std::regex_match(line, found, open)) {
      CompiledFeature &feature = ppd.features[found[2]];
      feature.is_jcl = found[1].matched;
      feature.is_installable = group == "InstallableOptions";
      feature.type = found[3];
    } else if (std::regex_match(line, found, constraint)) {
      std::istringstream words(found[1]);
      ppd.conflicts.emplace_back(std::istream_iterator<std::string>(words),
                                 std::istream_iterator<std::string>());
    } else if (std::regex_match(line, found, choice)) {
      const auto feature = ppd.features.find(found[1]);
      if (feature != ppd.features.end()) feature->second.options.push_back({found[2], found[3]});
    } else if (std::regex_match(line, found, attribute)) {
      ppd.attributes[found[1]] = found[2];
    }
  }
  for (auto &[name, feature] : ppd.features) {
    feature.default_option = ppd.attributes["Default" + name];
  }
  return ppd;
}

// One end of a constraint: a keyword, and the option, empty for "any but None, False and Off".
struct PpdEnd {
  std::string keyword;  // without the asterisk
  std::string option;
};

inline std::pair<PpdEnd, PpdEnd> Ends(const std::vector<std::string> &words) {
  std::vector<PpdEnd> ends;
  for (const std::string &word : words) {
    if (word.starts_with("*")) {
      ends.push_back({word.substr(1), ""});
    } else if (!ends.empty()) {
      ends.back().option = word;
    }
  }
  ends.resize(2);
  return {ends[0], ends[1]};
}
