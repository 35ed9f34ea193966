#include "foundqueues.h"

#include <algorithm>
#include <atomic>
#include <set>
#include <utility>

#include "addqueue.h"
#include "ccmtparams.h"
#include "ccpsparams.h"
#include "cmessages.h"
#include "command.h"
#include "cprinter.h"
#include "debug.h"
#include "deffile.h"
#include "globals.h"
#include "ignoreresult.h"
#include "jobrules.h"
#include "paths.h"
#include "porting.h"
#include "printermodels.h"
#include "scriptreader.h"
#include "settingkeys.h"
#include "spoolerrequests.h"
#include "textencoding.h"
#include "textfile.h"
#include "textline.h"
#include "utils.h"

namespace {

using Names = std::set<std::string, std::less<>>;

// What the bridge's spooler says of itself and of one of the bridge's queues.
constexpr std::string_view L_IsRunning = "scheduler is running";
constexpr std::string_view L_DeviceFor = "device for ";
constexpr std::string_view L_BridgeDevice = ": kpxlp:/interface";

// How the bridge's entry of a queue in the printers' directory begins.
constexpr std::string_view L_BridgeEntry = "Device: /dev/null\n";

// What a start knows about the spooler.
struct SpoolerState {
  std::optional<Names>
      bridge_queues;  // nothing where there is no such spooler or it does not answer
  Names entries;      // the names in the printers' directory
  Names removed;      // what an unfinished save still has to remove
};

std::optional<BackgroundCommand> L_Question;

// Whether the spooler has so many queues that its command takes seconds to tell them.
bool HasThousands() {
  constexpr int kMany = 1000;
  const Owned<CList> entries = GetFilesFromDir(kSpoolPrintersDir);
  int count = 0;
  for ([[maybe_unused]] const CString *entry : Elements<CString>(entries.get())) ++count;
  return count >= kMany;
}

// The same as the command tells, by a request of our own: for 10,000 queues `lpstat` needs two
// seconds of processor time, and was given up in the middle.
std::optional<Names> AnswerToRequest() {
  std::atomic<bool> stop = false;
  IppClient client(stop, [&stop] { stop = true; });
  std::string words;
  const auto devices = client.IsThere() ? AskForDevices(client, &words) : std::nullopt;
  if (!devices) return std::nullopt;
  Names names;
  for (const auto &[name, device] : *devices) {
    if (device == kBridgeDevice) names.insert(name);
  }
  return names;
}

// The bridge's queues as its spooler tells them; nothing where there is no such spooler.
std::optional<Names> AnswerOfSpooler() {
  if (!L_Question) AskSpooler();
  if (!L_Question) return AnswerToRequest();
  const std::optional<std::vector<std::string>> queues = BridgeQueuesOf(L_Question->Output());
  L_Question.reset();
  if (!queues) return std::nullopt;
  return Names(queues->begin(), queues->end());
}

// Whether the queue, which is in the list, lacks a part in the spooler.
bool IsIncomplete(const char *name, const QueueScript &script, const SpoolerState &spooler) {
  const bool is_there = spooler.bridge_queues && spooler.bridge_queues->contains(name);
  if (script.state == ScriptState::Gone) return is_there;
  if (script.state != ScriptState::Ours) return false;
  if (ReadInterfaceBlock(script.text).state == BlockState::Cut) return true;
  return spooler.bridge_queues && !is_there && IsFromBridge(script.text);
}

// The printer whose description comes from the PPD file, or that the spooler knows by `model`.
const char *FindPrinter(const std::string &ppd_path, const std::string &model) {
  const std::string ppd_file = ppd_path.substr(ppd_path.rfind('/') + 1);
  for (const auto [name, printer] : Pairs<CPrinter>(G_Printers_hash)) {
    const char *file = fGet_CString_Value_Function(fGetPpdFile_Function(printer));
    if (file == nullptr) continue;
    if (ppd_file.empty() ? model == FindPrinterModel(name).spooler_model : ppd_file == file) {
      return name;
    }
  }
  return nullptr;
}

// The model that the transport's parameter tells, when only one has it.
std::string ModelOfParameter(const std::string &parameter) {
  std::string model;
  for (const auto [name, printer] : Pairs<CPrinter>(G_Printers_hash)) {
    const PrinterModel &found = FindPrinterModel(name);
    if (found.transport_parameter == nullptr || parameter != found.transport_parameter) continue;
    if (!model.empty() && model != found.spooler_model) return "";
    model = found.spooler_model;
  }
  return model;
}

void PutCustomPaper(CHash *papers, const std::string &value) {
  const std::optional<CustomPaperLine> line = CustomPaperOf(value);
  if (!line) return;
  const double width = NumberFromText(line->width);
  const double length = NumberFromText(line->length);
  if (width == 0 || length == 0) return;
  IgnoreResult(HashPut(papers, line->name.c_str(), CreateCpsParams(width, length)),
               "the dictionary is there");
}

void PutCustomMedia(CHash *medias, const std::string &value) {
  const std::optional<CustomMediaLine> line = CustomMediaOf(value);
  if (!line) return;
  IgnoreResult(HashPut(medias, line->name.c_str(),
                       CreateCmtParams(CreateStringWithValue(line->shown_name.c_str()))),
               "the dictionary is there");
}

// What the queue's own option file says; without one the printer's defaults hold.
void FillFromOptionFile(CPrintQueue *queue, const CPrinter *printer, const std::string &path) {
  const std::optional<std::string> text = ReadOwnFile(path);
  if (!text) return;
  for (const KeyValue &setting : KeyValuesOf(*text)) {
    if (setting.key == kCustomPaperKey) {
      PutCustomPaper(queue->CustomPapers.get(), setting.value);
    } else if (setting.key == kCustomMediaKey) {
      PutCustomMedia(queue->CustomMedias.get(), setting.value);
    } else {
      const bool is_part =
          HashFind(fGetInstallableOptions_Function(printer), setting.key.c_str()) != nullptr;
      CHash *settings = (is_part ? queue->InstallableFeatures : queue->Options).get();
      IgnoreResult(HashPutText(settings, setting.key.c_str(), setting.value.c_str()),
                   "the dictionary is there");
    }
  }
}

// What is found, by cause.
struct Findings {
  std::vector<std::string> incomplete, found, unknown;
};

void Report(const Findings &findings, CList *messages) {
  ReportNames(messages, "WARN_QUEUE_INCOMPLETE", "WARN_QUEUES_INCOMPLETE", findings.incomplete);
  ReportNames(messages, "WARN_QUEUE_FOUND", "WARN_QUEUES_FOUND", findings.found, G_Note);
  if (findings.unknown.size() == 1) {
    const std::string &name = findings.unknown[0];
    G_Report(messages, "WARN_QUEUE_UNKNOWN", {name, std::string(kLpadmin) + " -x " + name});
  } else {
    ReportNames(messages, "", "WARN_QUEUES_UNKNOWN", findings.unknown);
  }
}

// Whether something that is no queue any more, or not yet, is left in the spooler under that name.
bool IsRest(const std::string &name, const SpoolerState &spooler) {
  if (!spooler.bridge_queues) return false;
  return spooler.bridge_queues->contains(name) || HasBridgeEntry(name);
}

// A queue of the spooler that the list does not have.
void TakeInQueue(const char *name, const SpoolerState &spooler, Findings &findings,
                 CList *messages) {
  const QueueScript script = LookAtScript(name);
  if (script.state == ScriptState::Unreadable) {
    G_Report(messages, "ERR_UNABLE_TO_READ_FILE", {InterfacePath(name)});
  } else if (script.state == ScriptState::Ours) {
    Owned<CPrintQueue> queue = QueueFromScript(name, script.text);
    if (queue == nullptr) {
      findings.unknown.emplace_back(name);
      return;
    }
    IgnoreResult(HashPut(G_Queues_hash, name, std::move(queue)), "the dictionary is there");
    findings.found.emplace_back(name);
  } else if (script.state == ScriptState::Gone && IsRest(name, spooler)) {
    findings.unknown.emplace_back(name);
  }
}

Names NamesOf(const CList *list) {
  Names names;
  for (const CString *name : Elements<CString>(list)) names.emplace(name->value.View());
  return names;
}

// Marks and notes the queue if the spooler has it only in part.
bool CheckQueue(const char *name, const QueueScript &script, const SpoolerState &spooler,
                Findings &findings) {
  if (!IsIncomplete(name, script, spooler)) return false;
  MarkIncompleteQueue(name);
  findings.incomplete.emplace_back(name);
  return true;
}

// What is left of queues that an unfinished save was to remove may be removed whatever it is.
void MarkRests(const SpoolerState &spooler) {
  for (const std::string &name : spooler.removed) {
    if (LookAtScript(name.c_str()).state != ScriptState::Gone) continue;
    if (spooler.entries.contains(name) || IsRest(name, spooler)) MarkIncompleteQueue(name.c_str());
  }
}

void TakeInUnlisted(const SpoolerState &spooler, Findings &findings, CList *messages) {
  Names names = spooler.entries;
  if (spooler.bridge_queues)
    names.insert(spooler.bridge_queues->begin(), spooler.bridge_queues->end());
  for (const std::string &name : names) {
    if (HashFind(G_Queues_hash, name.c_str()) != nullptr || spooler.removed.contains(name))
      continue;
    TakeInQueue(name.c_str(), spooler, findings, messages);
  }
}

}  // namespace

std::string SpoolerQuestion() {
  return JoinWords({"[ ! -x", kLpstat, "] || LC_ALL=C timeout 2", kLpstat, "-r -v 2>/dev/null"});
}

std::optional<std::vector<std::string>> BridgeQueuesOf(std::string_view answer) {
  bool is_running = false;
  std::vector<std::string> queues;
  LineReader lines(answer);
  while (const std::optional<std::string> line = lines.Next()) {
    is_running = is_running || *line == L_IsRunning;
    if (!line->starts_with(L_DeviceFor) || !line->ends_with(L_BridgeDevice)) continue;
    const size_t size = line->size() - L_DeviceFor.size() - L_BridgeDevice.size();
    queues.push_back(line->substr(L_DeviceFor.size(), size));
  }
  return is_running ? std::optional(std::move(queues)) : std::nullopt;
}

Owned<CPrintQueue> QueueFromScript(const char *name, const std::string &script) {
  const BlockReading reading = ReadInterfaceBlock(script);
  if (reading.state != BlockState::Whole) return nullptr;
  const InterfaceBlock &block = reading.block;
  std::string model = ModelOfScript(script);
  if (model.empty()) model = ModelOfParameter(block.transport_parameter);
  const char *printer_name = FindPrinter(block.ppd_path, model);
  if (printer_name == nullptr || !IsQueueType(block.queue_type) || block.address.empty()) {
    return nullptr;
  }
  const PrinterModel &row = FindPrinterModel(printer_name);
  if (block.port != std::to_string(row.port) || block.backend != row.backend) return nullptr;
  const CPrinter *printer = HashValue<CPrinter>(G_Printers_hash, printer_name);
  NewQueue values;
  values.name = name;
  values.printer = printer_name;
  values.address = block.address;
  Owned<CPrintQueue> queue = NewQueueRecord(values, block.queue_type.c_str());
  FillFromOptionFile(queue.get(), printer, QueueDefFilePath(std::string(name) + ".def"));
  return queue;
}

bool HasBridgeEntry(const std::string &name) {
  const auto entry = ReadWholeFile(std::string(kSpoolPrintersDir) + "/" + name);
  return entry && entry->starts_with(L_BridgeEntry);
}

void AskSpooler() {
  if (!HasThousands()) L_Question.emplace(SpoolerQuestion());
}

void CompareWithSpooler(const CList *removed, CList *messages) {
  const LogScope log("CompareWithSpooler");
  ForgetIncompleteQueues();
  const Owned<CList> entries = GetFilesFromDir(kSpoolPrintersDir);
  const SpoolerState spooler = {AnswerOfSpooler(), NamesOf(entries.get()), NamesOf(removed)};
  Findings findings;
  const auto check = [&](const char *name, const QueueScript &script) {
    return CheckQueue(name, script, spooler, findings);
  };
  if (removed == nullptr) {
    RemoveInexistentSystemVQueues(messages, check);
  } else {
    // What an unfinished save was to make need not be in the spooler yet.
    for (const auto [name, queue] : Pairs<CPrintQueue>(G_Queues_hash)) {
      check(name, LookAtScript(name));
    }
  }
  MarkRests(spooler);
  TakeInUnlisted(spooler, findings, messages);
  Report(findings, messages);
}
