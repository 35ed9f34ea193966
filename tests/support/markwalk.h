// Which settings are in conflict, found by one walk over the printer's whole list of constraints:
// fast enough to ask for every option of every list after every step of a long test.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "cconstrain.h"
#include "linearwalk.h"
#include "optionstate.h"

class MarkWalk {
 public:
  // The constraints of the current printer.
  MarkWalk() {
    for (const CConstrain *constraint : Elements<CConstrain>(G_PrinterConstraints_list)) {
      const char *texts[] = {fGet_CString_Value_Function(fGetFeature1_Function(constraint)),
                             fGet_CString_Value_Function(fGetOption1_Function(constraint)),
                             fGet_CString_Value_Function(fGetFeature2_Function(constraint)),
                             fGet_CString_Value_Function(fGetOption2_Function(constraint))};
      bool complete = true;
      for (const char *text : texts) complete = complete && text != nullptr;
      if (complete) pairs_.push_back({End(texts[0], texts[1]), End(texts[2], texts[3])});
    }
  }

  // Walks the list for the queue's settings as they are now.
  void Walk() {
    std::vector<char> is_set(ends_.size());
    marked_.assign(ends_.size(), 0);
    for (const auto [feature, value] : Pairs<CString>(G_QueueFeatures_hash)) {
      const char *option = fGet_CString_Value_Function(value);
      if (option == nullptr || linearwalk::IsExempt(feature)) continue;
      Set(is_set, linearwalk::Substituted(feature, option));
    }
    for (const auto [feature, value] : Pairs<CString>(G_QueueInstallableOptions_hash)) {
      const char *option = fGet_CString_Value_Function(value);
      if (option != nullptr) Set(is_set, {feature, option});
    }
    for (const Pair &pair : pairs_) {
      if (is_set[pair.second] != 0) marked_[pair.first] = 1;
      if (is_set[pair.first] != 0) marked_[pair.second] = 1;
    }
  }

  // Whether the choice conflicted with a setting at the last Walk.
  bool IsMarked(const std::string &feature, const std::string &option) const {
    if (linearwalk::IsExempt(feature)) return false;
    const linearwalk::Compared choice = linearwalk::Substituted(feature, option);
    const auto found = ends_.find(Key(choice.feature, choice.option));
    return found != ends_.end() && marked_[found->second] != 0;
  }

 private:
  struct Pair {
    size_t first;
    size_t second;
  };

  static std::string Key(const std::string &feature, const std::string &option) {
    return feature + '\n' + option;
  }

  size_t End(const std::string &feature, const std::string &option) {
    return ends_.emplace(Key(feature, option), ends_.size()).first->second;
  }

  void Set(std::vector<char> &is_set, const linearwalk::Compared &setting) const {
    const auto found = ends_.find(Key(setting.feature, setting.option));
    if (found != ends_.end()) is_set[found->second] = 1;
  }

  std::unordered_map<std::string, size_t> ends_;  // number of a feature's option
  std::vector<Pair> pairs_;
  std::vector<char> marked_;
};
