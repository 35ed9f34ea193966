// What a command changes: the queues as they are to be beside the queues as they are.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "chash.h"
#include "cprintqueue.h"
#include "jsonoutput.h"

namespace kpx::ctl {

// A setting, or another fact of a queue, that changes; an empty text stands for nothing.
struct ValueChange {
  std::string key, from, to;
};

enum class PlanAction { Add, Change, Remove };

struct PlanStep {
  PlanAction action;
  std::string queue;
  std::vector<ValueChange> changes;  // of Add: what the queue has
};

// The steps from the queues `before` to the queues `after`, by name. A setting that is not there
// counts as the printer's default (of G_Printers_hash).
std::vector<PlanStep> PlanBetween(const CHash *before, const CHash *after);

// What differs between two queues, in that sense.
std::vector<ValueChange> ChangesBetween(const CPrintQueue &before, const CPrintQueue &after);

// Whether the queue has these fields and, but for what is as usual, just these settings (by outer
// key).
[[nodiscard]] bool IsAs(const CPrintQueue &queue, const std::map<std::string, std::string> &fields,
                        const std::map<std::string, std::string> &settings);

// One line a step and change: "+ acc1 printer=...", "~ acc1 Duplex: None -> DuplexTumble",
// "- acc1".
void PrintPlan(const std::vector<PlanStep> &plan);
Json FormOfPlan(const std::vector<PlanStep> &plan);

}  // namespace kpx::ctl
