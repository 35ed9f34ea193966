#include "exporting.h"

#include <utility>

#include "cmessages.h"
#include "cprinter.h"
#include "globals.h"
#include "optionstate.h"
#include "output.h"
#include "ownsettings.h"
#include "queueform.h"
#include "usersfiles.h"

namespace kpx::ctl {

namespace {

// Whether the printer, which is current, and the queue's type know the setting.
bool IsKnown(const CPrintQueue &queue, const std::string &key, const std::string &value) {
  const std::string inner = "*" + key;
  const QueueType &type = QueueTypeOf(TextOf(queue.Language.get()));
  if (const OwnSetting *own = FindOwnSetting(type, inner)) return HasOwnSetting(type, *own);
  for (const CHash *features : {G_PrinterFeatures_hash, G_PrinterInstallableOptions_hash}) {
    if (IsOptionOf(features, inner.c_str(), value.c_str())) return true;
  }
  const CustomFacts *custom = CustomFactsOf(inner.c_str());
  if (custom == nullptr) return false;
  const CHash *entries =
      custom->kind == CustomKind::kPaper ? queue.CustomPapers.get() : queue.CustomMedias.get();
  return HashFind(entries, value.c_str()) != nullptr;
}

Json KnownForm(const char *name, const CPrintQueue &queue) {
  SetCurrentPrinter(
      HashValue<CPrinter>(G_Printers_hash, fGet_CString_Value_Function(queue.PrinterName.get())));
  Json form = FormOfQueue(queue, false);
  if (!form.contains("options")) return form;
  Json known = Json::object();
  for (const auto &[key, value] : form["options"].items()) {
    if (IsKnown(queue, key, value)) {
      known[key] = value;
    } else {
      Complain(G_Message("CTL_LEFT_OUT", {name, key + "=" + value.get<std::string>()}));
    }
  }
  if (known.empty()) {
    form.erase("options");
  } else {
    form["options"] = std::move(known);
  }
  return form;
}

}  // namespace

Json FormOfHost() {
  Json queues = Json::object();
  for (const auto [name, queue] : Pairs<CPrintQueue>(G_Queues_hash)) {
    queues[name] = KnownForm(name, *queue);
  }
  SetCurrentPrinter(nullptr);
  return {{"queues", std::move(queues)}};
}

std::optional<Json> FormOfUsers() {
  const auto files = UsersFiles();
  if (!files) return std::nullopt;
  Json users = Json::object();
  for (const UsersFile &file : *files) {
    if (HashFind(G_Queues_hash, file.queue.c_str()) == nullptr) continue;
    const auto settings = SettingsOf(file);
    if (!settings) {
      Complain(G_Message("ERR_UNABLE_TO_READ_FILE", {file.path}));
      return std::nullopt;
    }
    users[file.user][file.queue] = Json::object();
    for (const auto &[key, value] : *settings) users[file.user][file.queue][key] = value;
  }
  return users;
}

}  // namespace kpx::ctl
