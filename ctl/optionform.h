// The options of a queue with their choices, as kpxctl shows them.
#pragma once

#include <string>
#include <vector>

#include "ccpsparams.h"
#include "jsonoutput.h"

namespace kpx::ctl {

struct OptionChoice {
  std::string value, text;
  std::string reason;  // why it cannot be chosen now, in words; empty when it can
};

struct QueueOption {
  std::string key;        // "PageSize"
  std::string text = {};  // of a feature of the printer; else empty
  std::string value = {};
  bool is_installable = false;
  std::vector<OptionChoice> choices = {};  // none: `value` is a text
};

// The options of the queue that OpenProperties has made current: the printer's features and
// installable options, then what queues have beside them.
std::vector<QueueOption> OptionsOfCurrentQueue();

void PrintOptions(const std::vector<QueueOption> &options);
Json FormOfOptions(const std::vector<QueueOption> &options);

// A custom size as calls have it: "210x297pt", in points.
std::string PaperText(const CCpsParams &size);

}  // namespace kpx::ctl
