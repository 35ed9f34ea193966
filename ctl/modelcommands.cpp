#include "modelcommands.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "addedmodels.h"
#include "addedppd.h"
#include "cmessages.h"
#include "jsonoutput.h"
#include "modelfiles.h"
#include "modelsource.h"
#include "output.h"
#include "paths.h"
#include "textencoding.h"
#include "textfile.h"
#include "words.h"

namespace kpx::ctl {

namespace {

constexpr int kUsualSpeed = 30;  // pages a minute, where a PPD file says nothing

Json JsonOf(const AddedModel &model) {
  return {{"name", model.printer_name},
          {"id", model.id},
          {"transport", model.transport},
          {"port", model.port},
          {"pages-a-minute", model.pages_a_minute},
          {"languages", model.languages},
          {"source", model.source}};
}

Status Fail(const std::string &path) {
  Complain(G_Message("ERR_UNABLE_TO_WRITE_FILE", {path}));
  return kFailed;
}

// The model of this name or identifier; null, told, when there is none.
const AddedModel *FindModel(const std::vector<AddedModel> &models, const std::string &name) {
  for (const AddedModel &model : models) {
    if (model.printer_name == name || model.id == name) return &model;
  }
  Complain(G_Message("CTL_MODEL_UNKNOWN", {name}));
  return nullptr;
}

// Takes what the call says about the transport; false, told, when that is not possible.
bool TakeTransport(const Call &call, AddedModel *model) {
  if (const auto transport = call.Option("--transport")) {
    if (DefaultPort(*transport) == 0) {
      Complain(G_Message("CTL_WRONG_VALUE", {"--transport", *transport}));
      return false;
    }
    model->transport = *transport;
    model->port = 0;
  }
  if (model->port == 0) model->port = DefaultPort(model->transport);
  const auto port = call.Option("--port");
  if (!port) return true;
  constexpr int kMostPort = 65535;
  const auto read = std::from_chars(port->data(), port->data() + port->size(), model->port);
  const bool whole = read.ec == std::errc() && read.ptr == port->data() + port->size();
  if (whole && model->port >= 1 && model->port <= kMostPort) return true;
  Complain(G_Message("CTL_WRONG_VALUE", {"--port", *port}));
  return false;
}

// A name that neither a shipped printer nor an added model has.
std::string FreeName(const std::string &name, const std::vector<AddedModel> &models) {
  std::vector<std::string> taken = ShippedPrinterNames();
  for (const AddedModel &model : models) taken.push_back(model.printer_name);
  std::string free = name;
  for (int number = 2; std::find(taken.begin(), taken.end(), free) != taken.end(); ++number) {
    free = name + " (" + std::to_string(number) + ")";
  }
  return free;
}

// What `add` is about to do.
struct Addition {
  std::string ppd;
  AddedModel model;
  std::vector<std::string> faults;
  bool is_there = false;  // a model of the same PPD file
};

// The PPD file that the call names; nothing, told, when it cannot be had.
std::optional<std::string> PpdOfCall(const Call &call, std::string *source) {
  const auto name = call.Option("--from-cups");
  *source = name ? *name : call.words[0];
  std::optional<std::string> ppd = name ? PpdOfCups(*name) : PpdOfFile(*source);
  if (!ppd) Complain(G_Message(name ? "CTL_CUPS_UNKNOWN" : "ERR_UNABLE_TO_READ_FILE", {*source}));
  return ppd;
}

// The facts of a PPD file that can be added; nothing, told, for another.
std::optional<filter::PpdFacts> CheckedFacts(const std::string &ppd, const std::string &source) {
  filter::PpdError error;
  std::optional<filter::PpdFacts> facts = filter::FactsOfPpd(ppd, &error);
  if (!facts) {
    Complain(G_Message("CTL_PPD_BAD", {error.Text(source)}));
  } else if (!facts->driver.empty() && !HasDriver(facts->driver)) {
    Complain(G_Message("CTL_PPD_DRIVER", {facts->printer_name, facts->driver}));
    facts.reset();
  }
  return facts;
}

void TakeFacts(const filter::PpdFacts &facts, AddedModel *model) {
  model->pages_a_minute = facts.pages_a_minute == 0 ? kUsualSpeed : facts.pages_a_minute;
  model->languages = facts.languages;
}

// Fills `addition` for a PPD file; whether it is there already is found by its content.
void FillAddition(const filter::PpdFacts &facts, const std::string &source, Addition *addition) {
  const std::vector<AddedModel> models = ReadAddedModels();
  std::vector<std::string> ids;
  for (const AddedModel &model : models) {
    ids.push_back(model.id);
    if (ReadWholeFile(AddedModelSourcePath(model.id)) != addition->ppd) continue;
    addition->model = model;
    addition->is_there = true;
    return;
  }
  AddedModel &model = addition->model;
  model.printer_name = FreeName(facts.printer_name, models);
  model.id = NewModelId(model.printer_name, ids);
  model.source = source;
  TakeFacts(facts, &model);
}

// Why the model must stay as it is: told, and true.
bool IsInUse(const AddedModel &model, Status *status) {
  const auto queues = QueuesOfModel(model);
  *status = queues ? kRefused : kFailed;
  if (!queues) {
    Complain(G_Message("ERR_UNABLE_TO_READ_FILE", {kQueuesFile}));
    return true;
  }
  if (!queues->empty()) {
    Complain(G_Message("CTL_MODEL_IN_USE", {model.printer_name, JoinedWords(*queues)}));
  }
  return !queues->empty();
}

Status Report(const Call &call, const char *key, const Addition &addition) {
  if (call.Has("--json")) {
    Json json = JsonOf(addition.model);
    json["faults"] = addition.faults;
    PrintJsonText(json);
    return kDone;
  }
  if (call.Has("--dry-run")) PrintLine(G_Translate("CTL_DRY_RUN"));
  PrintLine(G_Message(key, {addition.model.printer_name}));
  return kDone;
}

void TellFaults(const Addition &addition) {
  for (const std::string &fault : addition.faults) {
    Complain(G_Message("CTL_PPD_FAULT", {fault}));
  }
}

Status Add(const Call &call) {
  if (call.words.size() + (call.Option("--from-cups") ? 1 : 0) != 1) {
    Complain(G_Message("CTL_WORD_MISSING", {"FILE | --from-cups NAME"}));
    return kWrongCall;
  }
  std::string source;
  std::optional<std::string> ppd = PpdOfCall(call, &source);
  if (!ppd) return kFailed;
  const std::optional<filter::PpdFacts> facts = CheckedFacts(*ppd, source);
  if (!facts) return kFailed;
  Addition addition;
  addition.ppd = std::move(*ppd);
  FillAddition(*facts, source, &addition);
  const AddedModel before = addition.model;
  if (!TakeTransport(call, &addition.model)) return kWrongCall;
  addition.faults = ForgivenFaults(addition.ppd);
  TellFaults(addition);
  const bool changes =
      before.port != addition.model.port || before.transport != addition.model.transport;
  if (addition.is_there && !changes) return Report(call, "CTL_MODEL_THERE", addition);
  Status status = kDone;
  if (addition.is_there && IsInUse(before, &status)) return status;
  if (!addition.is_there && addition.model.printer_name != facts->printer_name) {
    Tell(call,
         G_Message("CTL_MODEL_NAME_TAKEN", {facts->printer_name, addition.model.printer_name}));
  }
  if (!call.Has("--dry-run")) {
    RemoveLeftModelFiles();
    const std::string path = WriteModelFiles(addition.model, addition.ppd);
    if (!path.empty()) return Fail(path);
  }
  return Report(call, addition.is_there ? "CTL_MODEL_CHANGED" : "CTL_MODEL_ADDED", addition);
}

Status List(const Call &call) {
  std::vector<std::string> bad;
  const std::vector<AddedModel> models = ReadAddedModels(&bad);
  for (const std::string &id : bad) Complain(G_Message("WARN_MODEL_UNREADABLE", {id, id}));
  if (call.Has("--json")) {
    Json json = Json::array();
    for (const AddedModel &model : models) json.push_back(JsonOf(model));
    PrintJsonText(json);
  } else {
    for (const AddedModel &model : models) PrintLine(model.printer_name);
    if (models.empty() && bad.empty()) PrintLine(G_Translate("CTL_MODEL_NONE"));
  }
  return bad.empty() ? kDone : kFailed;
}

Status Show(const Call &call) {
  const std::vector<AddedModel> models = ReadAddedModels();
  const AddedModel *model = FindModel(models, call.words[0]);
  if (model == nullptr) return kFailed;
  const auto queues = QueuesOfModel(*model);
  if (!queues) {
    Complain(G_Message("ERR_UNABLE_TO_READ_FILE", {kQueuesFile}));
    return kFailed;
  }
  if (call.Has("--json")) {
    Json json = JsonOf(*model);
    json["queues"] = *queues;
    PrintJsonText(json);
    return kDone;
  }
  PrintLine(model->printer_name);
  PrintLine("  " + G_Message("CTL_MODEL_SENDS", {model->transport, model->port}));
  PrintLine("  " +
            G_Message("CTL_MODEL_SPEED", {model->pages_a_minute, JoinedWords(model->languages)}));
  PrintLine("  " + G_Message("CTL_MODEL_FILES", {model->id, model->source}));
  for (const std::string &queue : *queues) PrintLine("  " + G_Message("CTL_MODEL_QUEUE", {queue}));
  return kDone;
}

Status Remove(const Call &call) {
  std::vector<std::string> bad;
  std::vector<AddedModel> models = ReadAddedModels(&bad);
  // Of one whose row cannot be read no more is known than its identifier.
  for (const std::string &id : bad) models.push_back({.id = id, .printer_name = id});
  const AddedModel *model = FindModel(models, call.words[0]);
  if (model == nullptr) return kFailed;
  Status status = kDone;
  if (IsInUse(*model, &status)) return status;
  if (!call.Has("--dry-run")) {
    const std::string path = RemoveModelFiles(model->id);
    if (!path.empty()) return Fail(path);
    RemoveLeftModelFiles();
  }
  return Report(call, "CTL_MODEL_REMOVED", {{}, *model, {}, true});
}

// Makes the files of a model anew, from its PPD file as it was, or from another one for the same
// printer.
Status UpdateOne(const Call &call, AddedModel model, const std::optional<std::string> &file) {
  const std::string source = file ? *file : AddedModelSourcePath(model.id);
  const std::optional<std::string> ppd = PpdOfFile(source);
  if (!ppd) {
    Complain(G_Message("ERR_UNABLE_TO_READ_FILE", {source}));
    return kFailed;
  }
  const std::optional<filter::PpdFacts> facts = CheckedFacts(*ppd, source);
  if (!facts) return kFailed;
  if (file) model.source = source;
  TakeFacts(*facts, &model);
  Addition addition{*ppd, model, {}, true};
  if (file) addition.faults = ForgivenFaults(*ppd);
  TellFaults(addition);
  if (!call.Has("--dry-run")) {
    const std::string path = WriteModelFiles(model, *ppd);
    if (!path.empty()) return Fail(path);
  }
  return Report(call, "CTL_MODEL_UPDATED", addition);
}

Status Update(const Call &call) {
  const std::vector<AddedModel> models = ReadAddedModels();
  if (!call.words.empty()) {
    const AddedModel *model = FindModel(models, call.words[0]);
    if (model == nullptr) return kFailed;
    const bool has_file = call.words.size() > 1;
    return UpdateOne(call, *model, has_file ? std::optional(call.words[1]) : std::nullopt);
  }
  Status status = kDone;
  for (const AddedModel &model : models) {
    if (UpdateOne(call, model, std::nullopt) != kDone) status = kFailed;
  }
  return status;
}

Status Search(const Call &call) {
  const auto models = CupsModels(call.words);
  if (!models) {
    Complain(G_Translate("CTL_CUPS_SILENT"));
    return kFailed;
  }
  if (call.Has("--json")) {
    Json json = Json::array();
    for (const CupsModel &model : *models) {
      json.push_back({{"name", model.name}, {"make-and-model", model.maker}});
    }
    PrintJsonText(json);
    return kDone;
  }
  for (const CupsModel &model : *models) PrintLine(model.name + "  " + DisplayText(model.maker));
  if (models->empty()) PrintLine(G_Translate("CTL_CUPS_NOTHING"));
  return kDone;
}

}  // namespace

std::vector<Command> ModelCommands() {
  static constexpr char kBoth[] = "--json --dry-run";
  constexpr int kAny = 100;
  return {
      {"model", "add",
       "FILE.ppd[.gz] | --from-cups NAME [--port N] [--transport raw|lpd|ipp|ipps] "
       "[--json] [--dry-run]",
       "CTL_HELP_MODEL_ADD", kBoth, "--from-cups --port --transport", 0, 1, true, Add},
      {"model", "list", "[--json]", "CTL_HELP_MODEL_LIST", "--json", "", 0, 0, false, List},
      {"model", "show", "MODEL [--json]", "CTL_HELP_MODEL_SHOW", "--json", "", 1, 1, false, Show},
      {"model", "remove", "MODEL [--json] [--dry-run]", "CTL_HELP_MODEL_REMOVE", kBoth, "", 1, 1,
       true, Remove},
      {"model", "update", "[MODEL [FILE.ppd[.gz]]] [--json] [--dry-run]", "CTL_HELP_MODEL_UPDATE",
       kBoth, "", 0, 2, true, Update},
      {"model", "search", "WORD... [--json]", "CTL_HELP_MODEL_SEARCH", "--json", "", 1, kAny, false,
       Search},
  };
}

}  // namespace kpx::ctl
