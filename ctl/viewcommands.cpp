#include "viewcommands.h"

#include <iterator>

#include "addqueue.h"
#include "ccmtparams.h"
#include "ccpsparams.h"
#include "cmessages.h"
#include "cprinter.h"
#include "globals.h"
#include "optionform.h"
#include "optionstate.h"
#include "output.h"
#include "properties.h"
#include "queueform.h"
#include "selection.h"
#include "session.h"

namespace kpx::ctl {

namespace {

const CPrintQueue &QueueOf(const std::string &name) {
  return *HashValue<CPrintQueue>(G_Queues_hash, name.c_str());
}

// The queue's name before all that it has.
Json NamedForm(const std::string &name) {
  Json form = {{"name", name}};
  form.update(FormOfQueue(QueueOf(name), true));
  return form;
}

Status List(const Call &call) {
  ReadQueues();
  Status status = kDone;
  const auto names = ChosenQueues(call, call.words, &status);
  if (!names) return status;
  if (!call.Has("--json")) {
    std::vector<std::vector<std::string>> rows;
    for (const std::string &name : *names) rows.push_back(QueueRow(name.c_str()));
    PrintTable(rows);
    return kDone;
  }
  Json json = Json::array();
  for (const std::string &name : *names) {
    Json row = {{"name", name}};
    for (const QueueField &field : QueueFields()) {
      row[field.name] = TextOf((QueueOf(name).*field.member).get());
    }
    json.push_back(std::move(row));
  }
  PrintJsonText(json);
  return kDone;
}

// "Duplex=None  (Two-sided printing: off)".
std::string SettingLine(const std::string &key, const std::string &value) {
  const std::string inner = "*" + key;
  std::string line = key + "=" + ShownValue(key, value);
  if (PrinterFeature(inner.c_str()) == nullptr) return line;
  return line + "  (" + FeatureDisplayText(inner.c_str()) + ": " +
         OptionDisplayText(inner.c_str(), value.c_str()) + ")";
}

void ShowSettings(const CHash *settings) {
  for (const auto [key, value] : Pairs<CString>(settings)) {
    PrintLine("  " + SettingLine(OuterKey(key), TextOf(value)));
  }
}

void ShowQueue(const std::string &name) {
  const CPrintQueue &queue = QueueOf(name);
  const std::vector<std::string> row = QueueRow(name.c_str());
  if (row.empty()) return;
  constexpr const char *kLabels[] = {"DEF_LBL_PRINTER", "DEF_LBL_TYPE", "DEF_LBL_IPADDRESS"};
  PrintLine(name);
  for (size_t i = 0; i < std::size(kLabels); ++i) {
    PrintLine("  " + std::string(G_Translate(kLabels[i])) + " " + row[i + 1]);
  }
  SetCurrentPrinter(HashValue<CPrinter>(G_Printers_hash, row[1].c_str()));
  ShowSettings(queue.Options.get());
  ShowSettings(queue.InstallableFeatures.get());
  for (const auto [paper, size] : Pairs<CCpsParams>(queue.CustomPapers.get())) {
    PrintLine(std::string("  paper/") + paper + "=" + PaperText(*size));
  }
  for (const auto [media, type] : Pairs<CCmtParams>(queue.CustomMedias.get())) {
    PrintLine(std::string("  media/") + media + "=" + TextOf(fGetGuiName_Function(type)));
  }
  SetCurrentPrinter(nullptr);
}

Status Show(const Call &call) {
  ReadQueues();
  Status status = kDone;
  const auto names = ChosenQueues(call, call.words, &status);
  if (!names) return status;
  if (call.Has("--json")) {
    Json json = Json::array();
    for (const std::string &name : *names) json.push_back(NamedForm(name));
    PrintJsonText(json);
    return kDone;
  }
  if (!names->empty()) ReadPrinters();
  for (const std::string &name : *names) ShowQueue(name);
  return kDone;
}

Status Options(const Call &call) {
  ReadQueues();
  const std::string &name = call.words[0];
  if (HashFind(G_Queues_hash, name.c_str()) == nullptr) {
    Complain(G_Message("CTL_QUEUE_UNKNOWN", {name}));
    return kFailed;
  }
  ReadPrinters();
  std::string error;
  if (!OpenProperties(name, &error)) {
    Complain(error);
    return kFailed;
  }
  const std::vector<QueueOption> options = OptionsOfCurrentQueue();
  if (call.Has("--json")) {
    PrintJsonText(FormOfOptions(options));
  } else {
    PrintOptions(options);
  }
  CloseProperties();
  return kDone;
}

}  // namespace

std::vector<Command> ViewCommands() {
  static constexpr char kView[] = "--json";
  return {
      {"list", "", "[QUEUE...] [--where KEY=PATTERN]... [--json]", "CTL_HELP_LIST", kView,
       "--where", 0, kAnyNumber, false, List},
      {"show", "", "QUEUE... [--where KEY=PATTERN]... [--json]", "CTL_HELP_SHOW", kView, "--where",
       1, kAnyNumber, false, Show},
      {"options", "", "QUEUE [--json]", "CTL_HELP_OPTIONS", kView, "", 1, 1, false, Options},
  };
}

}  // namespace kpx::ctl
