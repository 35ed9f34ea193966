#include "presetcommands.h"

#include <algorithm>

#include "cmessages.h"
#include "globals.h"
#include "inputfile.h"
#include "jsonoutput.h"
#include "optionstate.h"
#include "output.h"
#include "presets.h"
#include "properties.h"
#include "queueform.h"
#include "session.h"
#include "textfile.h"
#include "words.h"

namespace kpx::ctl {

namespace {

constexpr mode_t kExportMode = 0644;  // a preset holds nothing private

struct ListedPreset {
  Preset preset;
  bool is_built_in = false;
  std::string misfit = {};  // why the queue of the call cannot use it; empty without one
};

// The caller's presets; nothing, told, when they cannot be read.
std::optional<std::vector<Preset>> OwnPresets() {
  KeptPresets kept = ReadKeptPresets();
  if (kept.fault.empty()) return std::move(kept.presets);
  Complain(kept.fault);
  return std::nullopt;
}

// Makes the queue of --queue current; false, told, when that is not possible.
bool OpenQueue(const std::string &queue) {
  ReadQueues();
  if (HashFind(G_Queues_hash, queue.c_str()) == nullptr) {
    Complain(G_Message("CTL_QUEUE_UNKNOWN", {queue}));
    return false;
  }
  ReadPrinters();
  std::string error;
  if (OpenProperties(queue, &error)) return true;
  Complain(error);
  return false;
}

// The caller's presets and, with --queue, those of the program and what is wrong with each there.
std::optional<std::vector<ListedPreset>> PresetsOfCall(const Call &call) {
  const auto queue = call.Option("--queue");
  const auto own = OwnPresets();
  if (!own || (queue && !OpenQueue(*queue))) return std::nullopt;
  std::vector<ListedPreset> listed;
  if (queue) {
    for (const Preset &preset : BuiltInPresets()) listed.push_back({preset, true});
  }
  for (const Preset &preset : *own) {
    listed.push_back({preset, false, queue ? WhyPresetMisfits(preset) : ""});
  }
  if (queue) CloseProperties();
  return listed;
}

std::vector<std::string> SettingWords(const Preset &preset) {
  std::vector<std::string> words;
  for (const auto &[key, value] : preset.settings) words.push_back(OuterKey(key) + "=" + value);
  return words;
}

Json FormOf(const ListedPreset &listed) {
  Json settings = Json::object();
  for (const auto &[key, value] : listed.preset.settings) settings[OuterKey(key)] = value;
  Json form = {{"name", listed.preset.name}, {"settings", std::move(settings)}};
  if (listed.is_built_in) form["built-in"] = true;
  if (!listed.misfit.empty()) form["conflict"] = listed.misfit;
  return form;
}

void PrintForms(const std::vector<ListedPreset> &presets) {
  Json json = Json::array();
  for (const ListedPreset &listed : presets) json.push_back(FormOf(listed));
  PrintJsonText(json);
}

Status List(const Call &call) {
  auto presets = PresetsOfCall(call);
  if (!presets) return kFailed;
  std::erase_if(*presets, [](const ListedPreset &listed) { return !listed.misfit.empty(); });
  if (call.Has("--json")) {
    PrintForms(*presets);
    return kDone;
  }
  std::vector<std::vector<std::string>> rows;
  for (const ListedPreset &listed : *presets) {
    rows.push_back({listed.preset.name, JoinedWords(SettingWords(listed.preset))});
  }
  if (rows.empty()) PrintLine(G_Translate("CTL_PRESET_NONE"));
  PrintTable(rows);
  return kDone;
}

// The one of that name, the caller's own before the program's; null, told, without one.
const ListedPreset *Find(const std::vector<ListedPreset> &presets, const std::string &name) {
  const ListedPreset *found = nullptr;
  for (const ListedPreset &listed : presets) {
    if (listed.preset.name == name) found = &listed;
  }
  if (found == nullptr) Complain(G_Message("CTL_PRESET_UNKNOWN", {name}));
  return found;
}

Status Show(const Call &call) {
  const auto presets = PresetsOfCall(call);
  if (!presets) return kFailed;
  std::vector<ListedPreset> shown;
  for (const std::string &name : call.words) {
    const ListedPreset *found = Find(*presets, name);
    if (found == nullptr) return kFailed;
    shown.push_back(*found);
  }
  if (call.Has("--json")) {
    PrintForms(shown);
    return kDone;
  }
  for (const ListedPreset &listed : shown) {
    PrintLine(listed.preset.name);
    for (const std::string &word : SettingWords(listed.preset)) PrintLine("  " + word);
    if (!listed.misfit.empty()) PrintLine("  ! " + listed.misfit);
  }
  return kDone;
}

Status Export(const Call &call) {
  const auto presets = OwnPresets();
  if (!presets) return kFailed;
  const std::string text = PresetsText(*presets);
  if (call.words.empty() || call.words[0] == kStandardInput) {
    PrintLine(std::string_view(text).substr(0, text.size() - 1));
    return kDone;
  }
  if (ReplaceFileDurably(call.words[0], text, FileAccess{.mode = kExportMode})) return kDone;
  Complain(G_Message("ERR_UNABLE_TO_WRITE_FILE", {call.words[0]}));
  return kFailed;
}

// The presets of the file that the call names; nothing, told, when they cannot be taken.
std::optional<std::vector<Preset>> PresetsOfFile(const std::string &path) {
  const std::optional<std::string> text = TextOfFile(path);
  if (!text) {
    Complain(G_Message("ERR_UNABLE_TO_READ_FILE", {path}));
    return std::nullopt;
  }
  auto read = ReadPresets(*text);
  if (const auto *fault = std::get_if<PresetFault>(&read)) {
    Complain(path + ":" + std::to_string(fault->line) + ": " + fault->reason);
    return std::nullopt;
  }
  auto presets = std::move(std::get<std::vector<Preset>>(read));
  for (const Preset &preset : presets) {
    if (!IsBuiltInPresetName(preset.name)) continue;
    Complain(path + ": " + G_Message("PRESET_NAME_OWN", {preset.name}));
    return std::nullopt;
  }
  return presets;
}

// A line for each preset that `taken` adds to `before` or changes in it.
std::vector<std::string> LinesOf(const std::vector<Preset> &before,
                                 const std::vector<Preset> &taken) {
  std::vector<std::string> lines;
  for (const Preset &preset : taken) {
    const Preset *there = FindPreset(before, preset.name);
    if (there == nullptr) lines.push_back("+ " + preset.name);
    if (there != nullptr && *there != preset) lines.push_back("~ " + preset.name);
  }
  return lines;
}

// Changes the caller's presets and says what was done; the status to end with.
Status Change(const std::function<std::string(std::vector<Preset> &presets)> &change,
              const std::vector<std::string> &lines) {
  if (const std::string fault = ChangeKeptPresets(change); !fault.empty()) {
    Complain(fault);
    return kFailed;
  }
  for (const std::string &line : lines) PrintLine(line);
  return kDone;
}

Status Import(const Call &call) {
  const auto taken = PresetsOfFile(call.words[0]);
  if (!taken) return kFailed;
  const auto before = OwnPresets();
  if (!before) return kFailed;
  const std::vector<std::string> lines = LinesOf(*before, *taken);
  if (lines.empty()) {
    PrintLine(G_Translate("CTL_NOTHING_TO_DO"));
    return kDone;
  }
  const auto put_all = [&taken](std::vector<Preset> &presets) {
    for (const Preset &preset : *taken) PutPreset(presets, preset);
    return std::string();
  };
  return Change(put_all, lines);
}

Status Delete(const Call &call) {
  std::vector<std::string> lines;
  for (const std::string &name : call.words) lines.push_back("- " + name);
  const auto remove_all = [&call](std::vector<Preset> &presets) {
    for (const std::string &name : call.words) {
      const auto is_it = [&name](const Preset &preset) { return preset.name == name; };
      if (std::erase_if(presets, is_it) == 0) return G_Message("CTL_PRESET_UNKNOWN", {name});
    }
    return std::string();
  };
  return Change(remove_all, lines);
}

}  // namespace

std::vector<Command> PresetCommands() {
  return {
      {"preset", "list", "[--queue QUEUE] [--json]", "CTL_HELP_PRESET_LIST", "--json", "--queue", 0,
       0, false, List},
      {"preset", "show", "PRESET... [--queue QUEUE] [--json]", "CTL_HELP_PRESET_SHOW", "--json",
       "--queue", 1, kAnyNumber, false, Show},
      {"preset", "export", "[FILE]", "CTL_HELP_PRESET_EXPORT", "", "", 0, 1, false, Export},
      {"preset", "import", "FILE", "CTL_HELP_PRESET_IMPORT", "", "", 1, 1, false, Import},
      {"preset", "delete", "PRESET...", "CTL_HELP_PRESET_DELETE", "", "", 1, kAnyNumber, false,
       Delete},
  };
}

}  // namespace kpx::ctl
