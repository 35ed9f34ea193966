#include "queueplan.h"

#include <map>
#include <set>
#include <utility>

#include "ccmtparams.h"
#include "ccpsparams.h"
#include "cfeature.h"
#include "cprinter.h"
#include "globals.h"
#include "optionform.h"
#include "optionlists.h"
#include "output.h"
#include "ownsettings.h"
#include "queueform.h"
#include "queuesettings.h"

namespace kpx::ctl {

namespace {

// The text of a setting that a queue does not have: the printer's default, or the usual one.
const char *UsualValue(const CHash *features, const char *key) {
  const char *usual = fGet_CString_Value_Function(G_GetPPDDefaultOptionForFeature(features, key));
  if (usual != nullptr) return usual;
  const OwnSetting *own = FindOwnSetting(key);
  return own == nullptr ? "" : own->usual;
}

// The text of a setting, by outer key, that a queue of the printer does not have.
std::string UsualSetting(const CPrinter *printer, const std::string &key) {
  const std::string inner = "*" + key;
  const std::string usual = UsualValue(fGetFeatures_Function(printer), inner.c_str());
  if (!usual.empty()) return usual;
  return UsualValue(fGetInstallableOptions_Function(printer), inner.c_str());
}

// The settings of `settings` that are not as usual, into `values`.
void AddUnusual(const CHash *settings, const CHash *features,
                std::map<std::string, std::string> &values) {
  for (const auto [key, value] : Pairs<CString>(settings)) {
    const char *text = fGet_CString_Value_Function(value);
    if (text == nullptr || std::string_view(text) == UsualValue(features, key)) continue;
    values[OuterKey(key)] = text;
  }
}

bool IsSame(const CHash *one, const CHash *two) {
  auto other = Pairs<CString>(two).begin();
  const auto end = Pairs<CString>(two).end();
  for (const auto [key, value] : Pairs<CString>(one)) {
    if (!(other != end)) return false;
    const auto [other_key, other_value] = *other;
    if (std::string_view(key) != other_key ||
        fIsEqual_CString_Value_Function(value, other_value) == 0) {
      return false;
    }
    ++other;
  }
  return !(other != end);
}

const CPrinter *PrinterOf(const CPrintQueue &queue) {
  return HashValue<CPrinter>(G_Printers_hash, fGet_CString_Value_Function(queue.PrinterName.get()));
}

// What a queue has beside its fields, but for what is as usual, by outer key.
void AddSettings(const CPrintQueue &queue, const CPrinter *printer,
                 std::map<std::string, std::string> &values) {
  AddUnusual(queue.Options.get(), fGetFeatures_Function(printer), values);
  AddUnusual(queue.InstallableFeatures.get(), fGetInstallableOptions_Function(printer), values);
  for (const auto [name, size] : Pairs<CCpsParams>(queue.CustomPapers.get())) {
    if (size != nullptr) values[std::string(kPaperPrefix) + name] = PaperText(*size);
  }
  for (const auto [name, media] : Pairs<CCmtParams>(queue.CustomMedias.get())) {
    values[std::string(kMediaPrefix) + name] = TextOf(fGetGuiName_Function(media));
  }
}

// All that a queue has, but for what is as usual, by outer key.
std::map<std::string, std::string> ValuesOf(const CPrintQueue &queue) {
  std::map<std::string, std::string> values;
  for (const QueueField &field : QueueFields()) {
    values[field.name] = TextOf((queue.*field.member).get());
  }
  AddSettings(queue, PrinterOf(queue), values);
  return values;
}

// Whether nothing at all differs, which is the usual case and quickly seen.
bool IsIdentical(const CPrintQueue &one, const CPrintQueue &two) {
  for (const QueueField &field : QueueFields()) {
    if (fIsEqual_CString_Value_Function((one.*field.member).get(), (two.*field.member).get()) ==
        0) {
      return false;
    }
  }
  const bool has_customs =
      !HashIsEmpty(one.CustomPapers.get()) || !HashIsEmpty(two.CustomPapers.get()) ||
      !HashIsEmpty(one.CustomMedias.get()) || !HashIsEmpty(two.CustomMedias.get());
  return !has_customs && IsSame(one.Options.get(), two.Options.get()) &&
         IsSame(one.InstallableFeatures.get(), two.InstallableFeatures.get());
}

std::vector<ValueChange> AsChanges(const CPrintQueue &queue) {
  std::vector<ValueChange> changes;
  for (const auto &[key, value] : ValuesOf(queue)) changes.push_back({key, "", value});
  return changes;
}

std::string WordFor(PlanAction action) {
  switch (action) {
    case PlanAction::Add:
      return "add";
    case PlanAction::Change:
      return "change";
    case PlanAction::Remove:
      break;
  }
  return "remove";
}

void PrintAddition(const PlanStep &step) {
  std::string line = "+ " + step.queue;
  for (const ValueChange &value : step.changes) {
    line += "  " + value.key + "=" + ShownValue(value.key, value.to);
  }
  PrintLine(line);
}

}  // namespace

std::vector<ValueChange> ChangesBetween(const CPrintQueue &before, const CPrintQueue &after) {
  if (IsIdentical(before, after)) return {};
  const std::map<std::string, std::string> old_values = ValuesOf(before);
  std::map<std::string, std::string> new_values = ValuesOf(after);
  std::vector<ValueChange> changes;
  for (const auto &[key, value] : old_values) {
    const auto found = new_values.find(key);
    const std::string now = found == new_values.end() ? "" : found->second;
    if (now != value) changes.push_back({key, value, now});
    if (found != new_values.end()) new_values.erase(found);
  }
  for (const auto &[key, value] : new_values) changes.push_back({key, "", value});
  for (ValueChange &change : changes) {
    if (change.from.empty()) change.from = UsualSetting(PrinterOf(before), change.key);
    if (change.to.empty()) change.to = UsualSetting(PrinterOf(after), change.key);
  }
  return changes;
}

bool IsAs(const CPrintQueue &queue, const std::map<std::string, std::string> &fields,
          const std::map<std::string, std::string> &settings) {
  for (const QueueField &field : QueueFields()) {
    const char *value = fGet_CString_Value_Function((queue.*field.member).get());
    if (value == nullptr || fields.at(field.name) != value) return false;
  }
  const CPrinter *printer = PrinterOf(queue);
  std::map<std::string, std::string> present;
  AddSettings(queue, printer, present);
  auto now = present.begin();
  for (const auto &[key, value] : settings) {
    if (now != present.end() && now->first == key) {
      if (now->second != value) return false;
      ++now;
    } else if (value != UsualSetting(printer, key)) {
      return false;
    }
  }
  return now == present.end();
}

std::vector<PlanStep> PlanBetween(const CHash *before, const CHash *after) {
  std::map<std::string, PlanStep> steps;
  for (const auto [name, queue] : Pairs<CPrintQueue>(after)) {
    const CPrintQueue *old = HashValue<CPrintQueue>(before, name);
    if (old == nullptr) {
      steps[name] = {PlanAction::Add, name, AsChanges(*queue)};
    } else if (auto changes = ChangesBetween(*old, *queue); !changes.empty()) {
      steps[name] = {PlanAction::Change, name, std::move(changes)};
    }
  }
  for (const auto [name, queue] : Pairs<CPrintQueue>(before)) {
    if (HashFind(after, name) == nullptr) steps[name] = {PlanAction::Remove, name, {}};
  }
  std::vector<PlanStep> plan;
  for (auto &[name, step] : steps) plan.push_back(std::move(step));
  return plan;
}

void PrintPlan(const std::vector<PlanStep> &plan) {
  for (const PlanStep &step : plan) {
    if (step.action == PlanAction::Add) PrintAddition(step);
    if (step.action == PlanAction::Remove) PrintLine("- " + step.queue);
    if (step.action != PlanAction::Change) continue;
    for (const ValueChange &change : step.changes) {
      PrintLine("~ " + step.queue + "  " + change.key + ": " + ShownValue(change.key, change.from) +
                " -> " + ShownValue(change.key, change.to));
    }
  }
}

Json FormOfPlan(const std::vector<PlanStep> &plan) {
  Json json = Json::array();
  for (const PlanStep &step : plan) {
    Json changes = Json::array();
    for (const ValueChange &change : step.changes) {
      Json row = {{"key", change.key}};
      if (!change.from.empty()) row["from"] = ShownValue(change.key, change.from);
      if (!change.to.empty()) row["to"] = ShownValue(change.key, change.to);
      changes.push_back(std::move(row));
    }
    json.push_back(
        {{"queue", step.queue}, {"action", WordFor(step.action)}, {"changes", std::move(changes)}});
  }
  return json;
}

}  // namespace kpx::ctl
