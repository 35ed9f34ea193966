#include "stdindata.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <ctime>

#include "cmessages.h"
#include "cstring.h"
#include "debug.h"
#include "openfile.h"
#include "textencoding.h"
#include "utils.h"

namespace {

constexpr size_t L_Piece = 2048;
constexpr size_t L_MaxErrorText = 1023;
// Short and fixed on purpose: the tool must never wait at start-up for input that will not come.
constexpr timespec L_Pause = {.tv_sec = 0, .tv_nsec = 50L * 1000};

bool InputWaits() {
  pollfd input = {.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
  int ready = 0;
  do {
    ready = ppoll(&input, 1, &L_Pause, nullptr);
  } while (ready < 0 && errno == EINTR);
  // A standard input that is closed holds nothing.
  return ready > 0 && (input.revents & POLLNVAL) == 0;
}

ssize_t ReadInput(char *buffer, size_t size) {
  ssize_t count = 0;
  do {
    count = read(STDIN_FILENO, buffer, size);
  } while (count < 0 && errno == EINTR);
  return count;
}

constexpr char L_Directory[] = "/tmp/";
constexpr char L_NamePrefix[] = "KPXtool.stdindata.";

// Open for the rest of the run: its lock tells other print tools that the file is in use.
OpenFile L_InUse;

bool Lock(const OpenFile &file, int how) {
  int result = 0;
  do {
    result = flock(file.Descriptor(), how);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

bool IsOurFile(const struct stat &status) {
  return S_ISREG(status.st_mode) && status.st_uid == geteuid();
}

bool StandsAt(const OpenFile &file, const std::string &path) {
  struct stat opened = {};
  struct stat there = {};
  return fstat(file.Descriptor(), &opened) == 0 && lstat(path.c_str(), &there) == 0 &&
         opened.st_dev == there.st_dev && opened.st_ino == there.st_ino;
}

enum class Owner { Nobody, Ours, OurProgram, Stranger };

// Whose the file at `path` is. With OurProgram a print tool of the user's uses it; with Ours none
// does, and none begins to while `file` is open.
Owner OwnerOf(const std::string &path, OpenFile *file) {
  struct stat status = {};
  if (lstat(path.c_str(), &status) != 0) return Owner::Nobody;
  if (status.st_uid != geteuid()) return Owner::Stranger;
  if (!IsOurFile(status)) return Owner::Ours;
  *file = OpenFile(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  return file->IsOpen() && !Lock(*file, LOCK_EX | LOCK_NB) ? Owner::OurProgram : Owner::Ours;
}

// A file of our own, in use, in a directory where everybody may write; not open, with errno, when
// that cannot be had.
OpenFile CreatePrivateFile(const std::string &path) {
  while (true) {
    unlink(path.c_str());
    OpenFile file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                       S_IRUSR | S_IWUSR));
    // A print tool that tidies may have removed it before it was locked.
    if (!file.IsOpen() || (Lock(file, LOCK_EX) && StandsAt(file, path))) return file;
  }
}

// The same under a name that nobody can have taken: `path` gets it.
OpenFile CreateUnderAnotherName(std::string *path) {
  while (true) {
    std::string name = *path + ".XXXXXX";
    OpenFile file(mkostemp(name.data(), O_CLOEXEC));
    if (file.IsOpen() && !(Lock(file, LOCK_EX) && StandsAt(file, name))) continue;
    if (file.IsOpen()) *path = name;
    return file;
  }
}

// The file at `path` or, where that is somebody else's or in use, beside it.
OpenFile CreateFileFor(std::string *path) {
  const std::string wanted = *path;
  OpenFile found;
  const Owner owner = OwnerOf(wanted, &found);
  if (owner == Owner::OurProgram) return CreateUnderAnotherName(path);
  OpenFile file = CreatePrivateFile(wanted);
  struct stat status = {};
  if (file.IsOpen() || owner != Owner::Stranger || lstat(wanted.c_str(), &status) != 0) return file;
  file = CreateUnderAnotherName(path);
  if (file.IsOpen()) {
    G_Report(nullptr, "WARN_STDIN_NAME", {wanted, UserNameOf(status.st_uid), *path});
  }
  return file;
}

// For the handler of terminating signals, which can use no other kind of text. There is room for
// any name of such a file; nobody writes it any more once L_IsNamed.
char L_FileBeingWritten[64];
std::atomic<bool> L_IsNamed = false;
std::atomic<int> L_SignalBefore = 0;  // the signal that came before that, 0 for none
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

constexpr int L_TerminatingSignals[] = {SIGHUP, SIGINT, SIGTERM};

// Takes the unfinished file along. In a handler the signal comes again when that returns; it ends
// the program as it always does.
void RemoveFileAndEnd(int signal) {
  RemoveUnfinishedCapture();
  std::signal(signal, SIG_DFL);
  raise(signal);
}

// Any thread may be the one that takes the signal, and at any time: while the file is being made,
// the one that makes it removes it.
void OnTerminatingSignal(int signal) {
  L_SignalBefore = signal;
  if (L_IsNamed) RemoveFileAndEnd(signal);
}

// From now on a terminating signal ends the program through OnTerminatingSignal, until whoever
// handles these signals for the rest of the run takes over. One that is ignored (nohup) stays
// ignored.
void WatchSignals() {
  for (const int signal : L_TerminatingSignals) {
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
    action.sa_handler = OnTerminatingSignal;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
  }
}

// A terminating signal removes the file at `path` from now on, one that has come already does so at
// once. An empty path names no file.
void RemoveFileOnSignal(const std::string &path) {
  path.copy(L_FileBeingWritten, sizeof L_FileBeingWritten - 1);
  L_IsNamed = true;
  if (L_SignalBefore != 0) RemoveFileAndEnd(L_SignalBefore);
}

// The file of captured data, made when the first data comes.
class Capture {
 public:
  const std::string &Path() const { return path_; }
  bool HasData() const { return file_.IsOpen(); }

  bool Append(const char *bytes, size_t count) {
    if (!file_.IsOpen()) Create();
    return file_.IsOpen() && file_.Write({bytes, count});
  }

  bool Close() { return !file_.IsOpen() || file_.Close(); }

 private:
  void Create() {
    WatchSignals();
    file_ = CreateFileFor(&path_);
    if (file_.IsOpen()) L_InUse = OpenFile(fcntl(file_.Descriptor(), F_DUPFD_CLOEXEC, 0));
    RemoveFileOnSignal(file_.IsOpen() ? path_ : "");
  }

  std::string path_ = StdinDataFileName(getpid());
  OpenFile file_;
};

int Fail(std::string *error_text, const char *key, const std::string &name) {
  *error_text = Utf8Prefix(G_Message(key, {name}), L_MaxErrorText);
  return 0;
}

}  // namespace

std::string StdinDataFileName(pid_t pid) {
  return std::string(L_Directory) + L_NamePrefix + std::to_string(static_cast<int16_t>(pid));
}

int GetStdinData(std::string *name, std::string *error_text) {
  const LogScope log("GetStdinData");
  Capture capture;
  while (InputWaits()) {
    char bytes[L_Piece];
    const ssize_t count = ReadInput(bytes, sizeof bytes);
    if (count < 0) return Fail(error_text, "ERR_UNABLE_TO_READ_FILE", "stdin");
    if (count == 0) break;
    if (!capture.Append(bytes, static_cast<size_t>(count))) {
      return Fail(error_text, "ERR_UNABLE_TO_WRITE_FILE", capture.Path());
    }
  }
  const bool has_data = capture.HasData();
  if (!capture.Close()) return Fail(error_text, "ERR_UNABLE_TO_WRITE_FILE", capture.Path());
  if (has_data) *name = capture.Path();
  return 1;
}

void RemoveUnfinishedCapture() {
  if (L_FileBeingWritten[0] != '\0') unlink(L_FileBeingWritten);
}

void RemoveLeftCaptures() {
  const LogScope log("RemoveLeftCaptures");
  const Owned<CList> names = GetFilesFromDir(L_Directory);
  for (const CString *element : Elements<CString>(names.get())) {
    const std::string_view name = element->value.View();
    if (!name.starts_with(L_NamePrefix)) continue;
    const std::string path = L_Directory + std::string(name);
    OpenFile file;
    if (OwnerOf(path, &file) == Owner::Ours && file.IsOpen() && StandsAt(file, path)) {
      unlink(path.c_str());
    }
  }
}
