#include "stdindata.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>

#include "cmessages.h"
#include "debug.h"
#include "textencoding.h"
#include "textfile.h"

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

// A file of our own in a directory where everybody may write; -1 when that cannot be had.
int CreatePrivateFile(const std::string &path) {
  unlink(path.c_str());
  return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
              S_IRUSR | S_IWUSR);
}

// Read by the signal handler, which can use no other text; longer than any name of such a file.
char L_FileBeingWritten[64];

// Takes the unfinished file along; the signal comes again when this returns, and then ends the
// program as always.
void RemoveFileAndEnd(int signal) {
  unlink(L_FileBeingWritten);
  raise(signal);
}

// From now on a terminating signal removes the file at `path`, until whoever handles these signals
// for the rest of the run takes over. One that is ignored (nohup) stays ignored.
void RemoveFileOnSignal(const std::string &path) {
  path.copy(L_FileBeingWritten, sizeof L_FileBeingWritten - 1);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
    action.sa_handler = RemoveFileAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(signal, &action, nullptr);
  }
}

// The file of captured data, made when the first data comes.
class Capture {
 public:
  Capture() : path_(StdinDataFileName(getpid())) {}
  ~Capture() { Close(); }
  Capture(const Capture &) = delete;
  Capture &operator=(const Capture &) = delete;

  const std::string &Path() const { return path_; }
  bool HasData() const { return file_ >= 0; }

  bool Append(const char *bytes, size_t count) {
    if (file_ < 0) {
      RemoveFileOnSignal(path_);
      file_ = CreatePrivateFile(path_);
    }
    return file_ >= 0 && WriteWhole(file_, {bytes, count});
  }

  bool Close() {
    const int file = file_;
    file_ = -1;
    return file < 0 || close(file) == 0;
  }

 private:
  std::string path_;
  int file_ = -1;
};

int Fail(std::string *error_text, const char *key, const std::string &name) {
  *error_text = Utf8Prefix(G_Message(key, {name}), L_MaxErrorText);
  return 0;
}

}  // namespace

std::string StdinDataFileName(pid_t pid) {
  return "/tmp/KPXtool.stdindata." + std::to_string(static_cast<int16_t>(pid));
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
