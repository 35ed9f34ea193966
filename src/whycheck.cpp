#include "whycheck.h"

#include <fcntl.h>
#include <grp.h>
#include <netdb.h>
#include <poll.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>

#include "cmessages.h"
#include "ippclient.h"
#include "jobrules.h"
#include "jobstates.h"
#include "paths.h"
#include "porting.h"
#include "printermodels.h"
#include "scriptreader.h"
#include "settingkeys.h"
#include "snmpstatus.h"
#include "spoolerrequests.h"
#include "spooljobs.h"
#include "textencoding.h"
#include "textfile.h"
#include "utils.h"

namespace {

constexpr int L_ConnectMilliseconds = 3000;
constexpr int L_KeepMilliseconds = 500;                   // a printer that is busy closes at once
constexpr unsigned long long L_RoomNeeded = 16ULL << 20;  // bytes
constexpr const char *L_Disks[] = {"/var/spool/cups", kDataDir, "/tmp"};
constexpr std::string_view L_SpoolerUser = "lp";
constexpr char L_WordsMend[] = "";   // the words themselves tell it
constexpr char L_StatusText[] = "";  // the words are what the printer reports

using Found = std::function<void(const WhyStep &)>;

// What to do about an address while it is being chosen.
struct AddressMend {
  WhyCheck check;
  const char *key;
};
constexpr AddressMend L_AddressMends[] = {
    {WhyCheck::Name, "ADDRESS_NAME_MEND"},
    {WhyCheck::Host, "ADDRESS_HOST_MEND"},
    {WhyCheck::Port, "ADDRESS_PORT_MEND"},
    {WhyCheck::Data, "WHY_DATA_MEND"},
};

WhyStep Good(WhyCheck check, const char *key, const std::string &words = "",
             const std::string &more_words = "") {
  return {check, WhyResult::Good, key, nullptr, words, more_words};
}

WhyStep Unknown(WhyCheck check, const char *key, const std::string &words = "") {
  return {check, WhyResult::Unknown, key, nullptr, words};
}

WhyStep Bad(WhyCheck check, const char *key, const char *mend_key, const std::string &words = "",
            const std::string &more_words = "") {
  return {check, WhyResult::Bad, key, mend_key, words, more_words};
}

WhyStep CheckSpooler(const WhySubject &subject) {
  const SpoolerQueue &state = subject.state;
  if (subject.contact != SpoolerContact::Answering) {
    return Bad(WhyCheck::Spooler, "WHY_SPOOLER_BAD", "WHY_SPOOLER_MEND");
  }
  if (state.name.empty()) {
    return Bad(WhyCheck::Spooler, "WHY_NO_QUEUE", "WHY_NO_QUEUE_MEND", subject.queue);
  }
  if (state.state == QueueState::Stopped) {
    return Bad(WhyCheck::Spooler, "WHY_STOPPED", "WHY_STOPPED_MEND", state.name);
  }
  if (!state.accepts) {
    return Bad(WhyCheck::Spooler, "WHY_REFUSES", "WHY_REFUSES_MEND", state.name);
  }
  return Good(WhyCheck::Spooler, "WHY_SPOOLER_GOOD", state.name);
}

// The block of the queue's script, where there is a whole one.
std::optional<InterfaceBlock> CheckScript(const WhySubject &subject, const Found &found) {
  const QueueScript script = LookAtScript(subject.queue.c_str());
  const std::string path = InterfacePath(subject.queue);
  if (script.state == ScriptState::Unreadable) {
    found(Unknown(WhyCheck::Script, "WHY_SCRIPT_UNREADABLE", path));
    return std::nullopt;
  }
  const BlockReading reading = ReadInterfaceBlock(script.text);
  if (script.state == ScriptState::Gone || script.state == ScriptState::NotAFile ||
      reading.state == BlockState::Cut) {
    found(Bad(WhyCheck::Script, "WHY_SCRIPT_BAD", "WHY_SCRIPT_MEND", path));
    return std::nullopt;
  }
  if (reading.state == BlockState::Other) {
    found(Unknown(WhyCheck::Script, "WHY_SCRIPT_OTHER", path));
    return std::nullopt;
  }
  found(Good(WhyCheck::Script, "WHY_SCRIPT_GOOD"));
  return reading.block;
}

struct Freer {
  void operator()(addrinfo *list) const { freeaddrinfo(list); }
};
using Addresses = std::unique_ptr<addrinfo, Freer>;

// The host of the address: for a backend of CUPS a printer's queue or path may follow it.
std::string HostOf(const InterfaceBlock &block) {
  return block.backend.empty() ? block.address : block.address.substr(0, block.address.find('/'));
}

Addresses LookUp(const InterfaceBlock &block, std::string *reason) {
  std::string host = HostOf(block);
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);
  }
  addrinfo wanted = {};
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo *list = nullptr;
  const int result = getaddrinfo(host.c_str(), block.port.c_str(), &wanted, &list);
  if (result != 0) *reason = DisplayText(gai_strerror(result));
  return Addresses(list);
}

class Socket {
 public:
  explicit Socket(const addrinfo &address)
      : descriptor_(socket(address.ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {}
  ~Socket() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  Socket(const Socket &) = delete;
  Socket &operator=(const Socket &) = delete;

  // 0, or the error.
  int Connect(const addrinfo &address) const {
    if (connect(descriptor_, address.ai_addr, address.ai_addrlen) == 0) return 0;
    if (errno != EINPROGRESS) return errno;
    pollfd waited = {descriptor_, POLLOUT, 0};
    if (poll(&waited, 1, L_ConnectMilliseconds) <= 0) return ETIMEDOUT;
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(descriptor_, SOL_SOCKET, SO_ERROR, &error, &size);
    return error;
  }

  // Whether the other side has closed the connection within a moment.
  [[nodiscard]] bool IsClosedAtOnce() const {
    pollfd waited = {descriptor_, POLLRDHUP, 0};
    return poll(&waited, 1, L_KeepMilliseconds) > 0 &&
           (waited.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
  }

 private:
  int descriptor_;
};

void CheckConnection(const InterfaceBlock &block, const addrinfo &address, const Found &found) {
  const Socket socket(address);
  const int error = socket.Connect(address);
  const std::string host = HostOf(block);
  if (error != 0 && error != ECONNREFUSED) {
    const std::string reason = DisplayText(std::strerror(error));  // NOLINT: a text of its own
    found(Bad(WhyCheck::Host, "WHY_HOST_BAD", "WHY_HOST_MEND", host, reason));
    return;
  }
  found(Good(WhyCheck::Host, "WHY_HOST_GOOD", host));
  if (error == ECONNREFUSED) {
    found(Bad(WhyCheck::Port, "WHY_PORT_BAD", "WHY_PORT_MEND", host, block.port));
    return;
  }
  found(Good(WhyCheck::Port, "WHY_PORT_GOOD", host, block.port));
  if (socket.IsClosedAtOnce()) {
    found(Bad(WhyCheck::Data, "WHY_DATA_BAD", "WHY_DATA_MEND"));
  } else {
    found(Good(WhyCheck::Data, "WHY_DATA_GOOD"));
  }
}

// Also where the address leads, when its name is known.
WhyStep CheckName(const InterfaceBlock &block, Addresses *addresses) {
  std::string reason;
  *addresses = LookUp(block, &reason);
  return *addresses == nullptr
             ? Bad(WhyCheck::Name, "WHY_NAME_BAD", "WHY_NAME_MEND", HostOf(block), reason)
             : Good(WhyCheck::Name, "WHY_NAME_GOOD", HostOf(block));
}

std::string NumericAddress(const addrinfo &address) {
  std::array<char, NI_MAXHOST> text = {};
  const int result = getnameinfo(address.ai_addr, address.ai_addrlen, text.data(), text.size(),
                                 nullptr, 0, NI_NUMERICHOST);
  return result == 0 ? text.data() : "";
}

// Asks the printer, which may say nothing.
void CheckStatus(const InterfaceBlock &block, const Found &found) {
  std::string reason;
  const Addresses addresses = LookUp(block, &reason);
  if (addresses == nullptr) return;
  const std::optional<PrinterStatus> status = AskPrinterStatus(NumericAddress(*addresses));
  if (!status) return found(Unknown(WhyCheck::Status, "WHY_STATUS_UNKNOWN"));
  if (status->reasons.empty()) return found(Good(WhyCheck::Status, "WHY_STATUS_GOOD"));
  found(status->hinders ? Bad(WhyCheck::Status, L_StatusText, "WHY_STATUS_MEND", status->reasons)
                        : Unknown(WhyCheck::Status, L_StatusText, status->reasons));
}

WhyStep CheckWords(const WhySubject &subject) {
  const TroubleReading trouble = ReadTrouble(subject.words);
  if (trouble.kind == Trouble::None) return Good(WhyCheck::Words, "WHY_WORDS_GOOD");
  return Bad(WhyCheck::Words, "WHY_WORDS_BAD", L_WordsMend, PlainText(subject.words));
}

// Whether the programs of the print service may read it; true for a file that is not there.
bool CanSpoolerRead(const std::string &path) {
  struct stat file = {};
  if (stat(path.c_str(), &file) != 0) return errno == ENOENT;
  const passwd *user = getpwnam(L_SpoolerUser.data());
  const group *group = getgrnam(L_SpoolerUser.data());
  if (user != nullptr && file.st_uid == user->pw_uid) return (file.st_mode & S_IRUSR) != 0;
  if (group != nullptr && file.st_gid == group->gr_gid) return (file.st_mode & S_IRGRP) != 0;
  return (file.st_mode & S_IROTH) != 0;
}

std::vector<std::string> OptionFiles(const WhySubject &subject, const InterfaceBlock &block) {
  if (block.def_path.empty()) return {};
  const std::string name = block.def_path.substr(block.def_path.rfind('/') + 1);
  return {block.def_path,
          UsersDirectoryBeside(block.def_path) + "/" + UserDefFileName(subject.user, name)};
}

void CheckOptions(const std::vector<std::string> &files, const Found &found) {
  for (const std::string &path : files) {
    const bool is_queues = path == files.front();
    if ((!is_queues || access(path.c_str(), F_OK) == 0) && CanSpoolerRead(path)) continue;
    found(Bad(WhyCheck::Options, "WHY_OPTIONS_BAD", "WHY_OPTIONS_MEND", path));
    return;
  }
  found(Good(WhyCheck::Options, "WHY_OPTIONS_GOOD"));
}

// The last setting of the delivery in the files that this user can read.
void CheckPin(const std::vector<std::string> &files, const Found &found) {
  const std::string start = std::string(kDeliveryKey) + "=";
  std::string delivery;
  for (const std::string &path : files) {
    const std::optional<std::string> text = ReadWholeFile(path);
    if (!text) continue;
    LineReader lines(*text);
    while (const std::optional<std::string> line = lines.Next()) {
      if (line->starts_with(start)) delivery = line->substr(start.size());
    }
  }
  if (NeedsPin(delivery)) found(Unknown(WhyCheck::Pin, "WHY_PIN"));
}

void CheckRoom(const Found &found) {
  for (const char *path : L_Disks) {
    struct statvfs disk = {};
    if (statvfs(path, &disk) != 0) continue;
    if (static_cast<unsigned long long>(disk.f_bavail) * disk.f_frsize >= L_RoomNeeded) continue;
    found(Bad(WhyCheck::Room, "WHY_ROOM_BAD", "WHY_ROOM_MEND", path));
    return;
  }
  found(Good(WhyCheck::Room, "WHY_ROOM_GOOD"));
}

// The number behind the last "-" when what stands before it is a queue of that name.
int NumberOfJob(const std::string &name) {
  const size_t dash = name.rfind('-');
  if (dash == std::string::npos) return 0;
  return RequestIn(name, name.substr(0, dash)) == name ? std::atoi(name.c_str() + dash + 1) : 0;
}

void FillFromJob(const SpoolerJob &job, WhySubject *subject) {
  subject->queue = job.queue;
  subject->user = job.user;
  subject->words = job.words;
}

}  // namespace

WhySubject AskForSubject(const std::string &name, const std::string &user) {
  WhySubject subject;
  subject.queue = name;
  subject.user = user;
  std::atomic<bool> stop = false;
  IppClient client(stop, [&stop] { stop = true; });
  if (client.cups() == nullptr) return subject;
  const std::optional<std::vector<SpoolerQueue>> queues = AskForQueues(client);
  if (!queues) return subject;
  subject.contact = SpoolerContact::Answering;
  const auto take_state = [&] {
    for (const SpoolerQueue &queue : *queues) {
      if (queue.name == subject.queue) subject.state = queue;
    }
  };
  take_state();
  const int number = subject.state.name.empty() ? NumberOfJob(name) : 0;
  std::vector<SpoolerJob> jobs;
  if (number != 0 && AskForJob(client, number, &jobs) && !jobs.empty()) {
    FillFromJob(jobs[0], &subject);
    take_state();
  }
  if (jobs.empty()) subject.words = subject.state.words;
  return subject;
}

void CheckPrinter(const InterfaceBlock &block, const Found &found) {
  Addresses addresses;
  found(CheckName(block, &addresses));
  if (addresses != nullptr) CheckConnection(block, *addresses, found);
}

WhyStep CheckPrinterName(const InterfaceBlock &block) {
  Addresses addresses;
  return CheckName(block, &addresses);
}

void CheckWhy(const WhySubject &subject, const Found &found) {
  found(CheckSpooler(subject));
  const std::optional<InterfaceBlock> block = CheckScript(subject, found);
  if (block && !block->address.empty()) {
    CheckPrinter(*block, found);
    CheckStatus(*block, found);
  }
  found(CheckWords(subject));
  if (block) {
    const std::vector<std::string> files = OptionFiles(subject, *block);
    if (!files.empty()) {
      CheckOptions(files, found);
      CheckPin(files, found);
    }
  }
  CheckRoom(found);
}

std::string WhyText(const WhyStep &step) {
  if (step.text_key == L_StatusText) return PrinterReasonsText(step.words);
  return G_Message(step.text_key, {step.words, step.more_words});
}

std::string WhyMend(const WhyStep &step) {
  if (step.mend_key == nullptr) return "";
  return step.mend_key == L_WordsMend ? TroubleText(ReadTrouble(step.words))
                                      : G_Translate(step.mend_key);
}

InterfaceBlock PrinterPlace(const std::string &printer_name, const std::string &address) {
  const PrinterModel &model = FindPrinterModel(printer_name);
  InterfaceBlock block;
  block.address = address;
  block.backend = model.backend;
  block.port = std::to_string(model.port);
  return block;
}

std::string AddressFinding(const std::vector<WhyStep> &steps) {
  if (steps.empty()) return "";
  const WhyStep &last = steps.back();
  // That the printer takes connections says more than that it keeps them.
  if (last.result != WhyResult::Bad) return WhyText(steps[steps.size() > 1 ? steps.size() - 2 : 0]);
  const auto mend = std::find_if(std::begin(L_AddressMends), std::end(L_AddressMends),
                                 [&](const AddressMend &row) { return row.check == last.check; });
  return WhyText(last) + " " + G_Translate(mend->key);
}

std::string WhyLines(const WhyStep &step) {
  const std::string mend = WhyMend(step);
  return WhyText(step) + "\n" + (mend.empty() ? "" : "    " + mend + "\n");
}

std::string WhyConclusion(const std::vector<WhyStep> &steps) {
  for (const WhyStep &step : steps) {
    if (step.result == WhyResult::Bad) return G_Message("WHY_FOUND", {WhyText(step)});
  }
  return G_Translate("WHY_NOTHING_FOUND");
}
