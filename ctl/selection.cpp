#include "selection.h"

#include <fnmatch.h>

#include <algorithm>
#include <set>

#include "cmessages.h"
#include "globals.h"
#include "output.h"
#include "queueform.h"

namespace kpx::ctl {

namespace {

struct Condition {
  std::string key, pattern;
};

bool Fits(const std::string &pattern, const std::string &text) {
  return fnmatch(pattern.c_str(), text.c_str(), 0) == 0;
}

bool IsPattern(const std::string &word) { return word.find_first_of("*?[") != std::string::npos; }

std::optional<std::vector<Condition>> ConditionsOf(const Call &call) {
  std::vector<Condition> conditions;
  for (const std::string &text : call.OptionValues("--where")) {
    const size_t sign = text.find('=');
    if (sign == std::string::npos || sign == 0) {
      Complain(G_Message("CTL_WHERE_BAD", {text}));
      return std::nullopt;
    }
    conditions.push_back({text.substr(0, sign), text.substr(sign + 1)});
  }
  return conditions;
}

bool FitsAll(const CPrintQueue &queue, const std::vector<Condition> &conditions) {
  return std::all_of(conditions.begin(), conditions.end(), [&](const Condition &condition) {
    return Fits(condition.pattern, QueueValue(queue, condition.key).value_or(""));
  });
}

// False, told, when a name is not there.
bool AddFitting(const std::string &word, std::set<std::string> &names) {
  if (!IsPattern(word)) {
    if (HashFind(G_Queues_hash, word.c_str()) == nullptr) {
      Complain(G_Message("CTL_QUEUE_UNKNOWN", {word}));
      return false;
    }
    names.insert(word);
    return true;
  }
  for (const auto [name, queue] : Pairs<CPrintQueue>(G_Queues_hash)) {
    if (Fits(word, name)) names.insert(name);
  }
  return true;
}

}  // namespace

std::optional<std::vector<std::string>> ChosenQueues(const Call &call,
                                                     const std::vector<std::string> &words,
                                                     Status *status) {
  *status = kWrongCall;
  const auto conditions = ConditionsOf(call);
  if (!conditions) return std::nullopt;
  *status = kFailed;
  std::set<std::string> names;
  if (words.empty() && !AddFitting("*", names)) return std::nullopt;
  for (const std::string &word : words) {
    if (!AddFitting(word, names)) return std::nullopt;
  }
  std::vector<std::string> chosen;
  for (const std::string &name : names) {
    const CPrintQueue *queue = HashValue<CPrintQueue>(G_Queues_hash, name.c_str());
    if (queue != nullptr && FitsAll(*queue, *conditions)) chosen.push_back(name);
  }
  *status = kDone;
  if (chosen.empty()) {
    const bool all = words.empty() && conditions->empty();
    Tell(call, G_Translate(all ? "CTL_QUEUE_NONE" : "CTL_QUEUE_NO_MATCH"));
  }
  return chosen;
}

}  // namespace kpx::ctl
