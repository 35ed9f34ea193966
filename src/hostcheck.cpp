#include "hostcheck.h"

#include <pwd.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <map>
#include <set>
#include <utility>

#include "cmessages.h"
#include "command.h"
#include "cprintqueue.h"
#include "debug.h"
#include "deffile.h"
#include "foundqueues.h"
#include "globals.h"
#include "interfacescript.h"
#include "modelscript.h"
#include "paths.h"
#include "porting.h"
#include "printermodels.h"
#include "queuelistkeep.h"
#include "queuelistreader.h"
#include "queuetypes.h"
#include "scriptreader.h"
#include "spoolerrequests.h"
#include "textfile.h"
#include "unfinishedsave.h"
#include "utils.h"

namespace {

using Names = std::set<std::string, std::less<>>;

struct Row {
  Disagreement kind;
  const char *word;
  const char *text_key;  // takes the subject, if there is one
  bool asks_for_name;
};

constexpr Row L_Rows[] = {
    {Disagreement::SaveUnfinished, "save-unfinished", "CHECK_SAVE_UNFINISHED", false},
    {Disagreement::ListLost, "list-lost", "CHECK_LIST_LOST", false},
    {Disagreement::NotInList, "not-in-list", "CHECK_NOT_IN_LIST", false},
    {Disagreement::NotInSpooler, "not-in-spooler", "CHECK_NOT_IN_SPOOLER", false},
    {Disagreement::Incomplete, "incomplete", "CHECK_INCOMPLETE", false},
    {Disagreement::Unknown, "unknown", "CHECK_UNKNOWN", true},
    {Disagreement::ScriptUnreadable, "script-unreadable", "CHECK_SCRIPT_UNREADABLE", true},
    {Disagreement::ScriptForeign, "script-foreign", "CHECK_SCRIPT_FOREIGN", true},
    {Disagreement::ScriptDiffers, "script-differs", "CHECK_SCRIPT_DIFFERS", true},
    {Disagreement::ScriptOld, "script-old", "CHECK_SCRIPT_OLD", true},
    {Disagreement::ScriptAccess, "script-access", "CHECK_SCRIPT_ACCESS", false},
    {Disagreement::AddressDiffers, "address", "CHECK_ADDRESS", false},
    {Disagreement::OptionsMissing, "options-missing", "CHECK_OPTIONS_MISSING", false},
    {Disagreement::OptionsDiffer, "options-differ", "CHECK_OPTIONS_DIFFER", false},
    {Disagreement::OptionsLeft, "options-left", "CHECK_OPTIONS_LEFT", false},
    {Disagreement::DeviceDiffers, "device", "CHECK_DEVICE", true},
    {Disagreement::DescriptionMissing, "description", "CHECK_DESCRIPTION", false},
};

const Row &RowOf(Disagreement kind) {
  return *std::find_if(std::begin(L_Rows), std::end(L_Rows),
                       [kind](const Row &row) { return row.kind == kind; });
}

Names NamesIn(const char *directory) {
  Names names;
  const Owned<CList> files = GetFilesFromDir(directory);
  for (const CString *name : Elements<CString>(files.get())) {
    if (!name->value.View().starts_with('.')) names.emplace(name->value.View());
  }
  return names;
}

// What the list says, or an interrupted save was to make of it.
struct Listed {
  Owned<CHash> queues = CreateHash();
  Names removed;  // what that save was to remove
  std::vector<HostFault> faults;
};

Listed ReadListed() {
  Listed listed;
  const std::optional<std::string> intention = ReadWholeFile(IntentionPath(kQueuesFile));
  const auto removals = intention ? RemovalsOf(*intention) : std::nullopt;
  if (removals && !ReadQueueList(*intention, listed.queues.get())) {
    listed.removed = Names(removals->begin(), removals->end());
    listed.faults.push_back({Disagreement::SaveUnfinished, ""});
    return listed;
  }
  listed.queues = CreateHash();
  const std::optional<std::string> text = ReadWholeFile(kQueuesFile);
  const std::optional<std::string> last = ReadLastQueueList(kQueuesFile);
  if (last && last != text) listed.faults.push_back({Disagreement::ListLost, ""});
  const std::string &used = last ? *last : text.value_or("");
  if (ReadQueueList(used, listed.queues.get())) {
    listed.faults.assign(1, {Disagreement::ListLost, ""});
  }
  return listed;
}

// Whether one file is older than the other. What is not there is older than anything.
bool IsOlder(const std::string &path, const std::string &other) {
  struct stat a = {}, b = {};
  if (stat(path.c_str(), &a) != 0) return true;
  if (stat(other.c_str(), &b) != 0) return false;
  return std::pair(a.st_mtim.tv_sec, a.st_mtim.tv_nsec) <
         std::pair(b.st_mtim.tv_sec, b.st_mtim.tv_nsec);
}

// Whether the spooler's user may run the script.
bool MayRun(const std::string &path) {
  constexpr mode_t kReadAndRun = S_IROTH | S_IXOTH;
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return true;  // told otherwise
  if ((status.st_mode & kReadAndRun) == kReadAndRun) return true;
  const passwd *user = getpwnam("lp");
  constexpr mode_t kOwners = S_IRUSR | S_IXUSR;
  return user != nullptr && user->pw_uid == status.st_uid && (status.st_mode & kOwners) == kOwners;
}

// Whether the block says what the queue's record says. Where it was made in another language it
// names another file of the same printer.
bool Fits(const InterfaceBlock &block, const std::string &name, const CPrintQueue *queue) {
  const auto text = [](const CString *value) { return std::string(value->value.View()); };
  if (block.queue_type != text(queue->Language.get())) return false;
  const PrinterModel &model = FindPrinterModel(text(queue->PrinterName.get()));
  if (model.ppd_file == nullptr) return true;  // kept on purpose: it has what the queue before had
  if (block.backend != model.backend || block.port != std::to_string(model.port)) return false;
  if (*model.backend == '\0' && block.transport_parameter != model.transport_parameter) {
    return false;
  }
  if (!QueueTypeOf(block.queue_type).is_filtered) return true;
  return block.ppd_path.substr(block.ppd_path.rfind('/') + 1) == model.ppd_file &&
         block.def_path == QueueDefFilePath(name + kDefExtension);
}

using Devices = std::map<std::string, std::string>;

std::optional<Devices> DevicesOfCups(std::string *words) {
  const std::atomic<bool> stop = false;
  IppClient client(stop, [] {});
  if (client.cups() != nullptr) return AskForDevices(client, words);
  *words = "libcups.so.2";
  return std::nullopt;
}

// Finds what is wrong with one queue after the other.
class Checker {
 public:
  Checker(Listed listed, std::optional<Devices> devices)
      : listed_(std::move(listed)),
        knows_devices_(devices),
        devices_(std::move(devices).value_or(Devices())),
        entries_(NamesIn(kSpoolPrintersDir)),
        faults_(std::move(listed_.faults)) {}

  std::vector<HostFault> All() {
    for (const auto [name, queue] : Pairs<CPrintQueue>(listed_.queues.get())) {
      CheckListed(name, queue);
    }
    CheckUnlisted();
    CheckOptionFiles();
    return std::move(faults_);
  }

 private:
  void Add(Disagreement kind, const std::string &name) { faults_.push_back({kind, name}); }

  [[nodiscard]] bool IsBridges(const std::string &name) const {
    const auto found = devices_.find(name);
    return found != devices_.end() && found->second == kBridgeDevice;
  }

  void CheckListed(const std::string &name, const CPrintQueue *queue) {
    const QueueScript script = LookAtScript(name.c_str());
    const size_t before = faults_.size();
    switch (script.state) {
      case ScriptState::Unreadable:
      case ScriptState::NotAFile:
        return Add(Disagreement::ScriptUnreadable, name);
      case ScriptState::Gone:
        return Add(IsBridges(name) || entries_.contains(name) ? Disagreement::Incomplete
                                                              : Disagreement::NotInSpooler,
                   name);
      case ScriptState::NotOurs:
        return Add(Disagreement::ScriptForeign, name);
      case ScriptState::Ours:
        break;
    }
    if (!CheckScript(name, queue, script.text)) return;
    CheckOptions(name, queue);
    if (faults_.size() == before) CheckDescription(name, queue, script.text);
  }

  // False when the queue is to be made anew.
  bool CheckScript(const std::string &name, const CPrintQueue *queue, const std::string &script) {
    const BlockReading reading = ReadInterfaceBlock(script);
    const bool from_bridge = IsFromBridge(script);
    const bool is_lost =
        from_bridge && ((knows_devices_ && !devices_.contains(name)) || !entries_.contains(name));
    if (reading.state == BlockState::Cut || is_lost) {
      Add(Disagreement::Incomplete, name);
      return false;
    }
    if (from_bridge && knows_devices_ && !IsBridges(name)) Add(Disagreement::DeviceDiffers, name);
    const bool fits = reading.state == BlockState::Whole && Fits(reading.block, name, queue);
    if (!fits) Add(Disagreement::ScriptDiffers, name);
    const std::optional<std::string> address = NetworkAddressOf(script);
    if (address && *address != queue->Address->value.View()) {
      Add(Disagreement::AddressDiffers, name);
    }
    if (fits && HasOldModel(script)) Add(Disagreement::ScriptOld, name);
    if (!MayRun(InterfacePath(name))) Add(Disagreement::ScriptAccess, name);
    return true;
  }

  void CheckOptions(const std::string &name, const CPrintQueue *queue) {
    const std::string path = QueueDefFilePath(name + kDefExtension);
    const std::optional<std::string> text = ReadWholeFile(path);
    if (!text) {
      Add(Disagreement::OptionsMissing, name);
    } else if (*text != QueueDefFileText(queue)) {
      Add(Disagreement::OptionsDiffer, name);
    }
  }

  void CheckDescription(const std::string &name, const CPrintQueue *queue,
                        const std::string &script) {
    const BlockReading reading = ReadInterfaceBlock(script);
    if (!IsFromBridge(script) || !QueueTypeOf(reading.block.queue_type).is_filtered) return;
    if (FindPrinterModel(queue->PrinterName->value.View()).ppd_file == nullptr) return;
    const std::string made = std::string(kCupsDescriptionsDir) + "/" + name + ".ppd";
    if (IsOlder(made, InterfacePath(name)) ||
        IsOlder(made, QueueDefFilePath(name + kDefExtension))) {
      Add(Disagreement::DescriptionMissing, name);
    }
  }

  void CheckUnlisted() {
    Names names = entries_;
    for (const auto &[name, device] : devices_) {
      if (device == kBridgeDevice) names.insert(name);
    }
    for (const std::string &name : names) {
      const bool is_known =
          HashFind(listed_.queues.get(), name.c_str()) != nullptr || listed_.removed.contains(name);
      if (!is_known) CheckUnlistedQueue(name);
    }
  }

  void CheckUnlistedQueue(const std::string &name) {
    const QueueScript script = LookAtScript(name.c_str());
    if (script.state == ScriptState::Ours) {
      const bool is_understood = QueueFromScript(name.c_str(), script.text) != nullptr;
      if (is_understood) unlisted_.insert(name);
      Add(is_understood ? Disagreement::NotInList : Disagreement::Unknown, name);
    } else if (script.state == ScriptState::Gone && (IsBridges(name) || HasBridgeEntry(name))) {
      Add(Disagreement::Unknown, name);
    }
  }

  void CheckOptionFiles() {
    for (const std::string &file : NamesIn(kDataDir)) {
      if (!file.ends_with(kDefExtension)) continue;
      const std::string name = file.substr(0, file.size() - std::string_view(kDefExtension).size());
      const bool has_queue =
          HashFind(listed_.queues.get(), name.c_str()) != nullptr || unlisted_.contains(name);
      if (!has_queue) Add(Disagreement::OptionsLeft, QueueDefFilePath(file));
    }
  }

  Listed listed_;
  bool knows_devices_;
  Devices devices_;
  Names entries_;
  Names unlisted_;  // queues of ours that the list lacks
  std::vector<HostFault> faults_;
};

}  // namespace

bool HostFault::AsksForName() const { return RowOf(kind).asks_for_name; }

const char *WordFor(Disagreement kind) { return RowOf(kind).word; }

std::optional<Disagreement> DisagreementOf(std::string_view word) {
  for (const Row &row : L_Rows) {
    if (word == row.word) return row.kind;
  }
  return std::nullopt;
}

std::vector<const char *> DisagreementWords() {
  std::vector<const char *> words;
  for (const Row &row : L_Rows) words.push_back(row.word);
  return words;
}

std::string TextOf(const HostFault &fault) {
  const char *key = RowOf(fault.kind).text_key;
  return fault.subject.empty() ? G_Message(key) : G_Message(key, {fault.subject});
}

std::string MendOf(const HostFault &fault) {
  const std::string queue = ShellWord(fault.subject);
  switch (fault.kind) {
    case Disagreement::Unknown:
      return std::string(kLpadmin) + " -x " + queue;
    case Disagreement::ScriptUnreadable:
      return "mv " + ShellWord(InterfacePath(fault.subject)) + " /root";
    case Disagreement::DeviceDiffers:
      return std::string("/usr/sbin/lpadmin -p ") + queue + " -v " + kBridgeDevice;
    case Disagreement::DescriptionMissing:
      return kDialogOptions;
    default:
      return fault.AsksForName() ? "kpxctl check --repair " + queue : "kpxctl check --repair";
  }
}

std::vector<HostFault> CheckHost(std::string *words) {
  const LogScope log("CheckHost");
  return Checker(ReadListed(), DevicesOfCups(words)).All();
}
