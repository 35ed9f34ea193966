// Standard input captured at start-up. Each case runs in a child whose standard input is replaced;
// the captured files are in the real /tmp, named after that child, and removed.
#include "stdindata.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "childprocess.h"
#include "coresupport.h"
#include "faultinjection.h"
#include "temporarydirectory.h"

namespace {

constexpr char kMessages[] =
    "#ERR_UNABLE_TO_READ_FILE\nread <%s>\n#ERR_UNABLE_TO_WRITE_FILE\nwrite <%s>\n";

// What GetStdinData answered and stored.
struct Captured {
  int result = -1;
  bool named = false;
  std::string error;
  std::string content;
  mode_t mode = 0;
  std::uintmax_t left_size = 0;  // of the file when the capture failed
};

void SetFileSizeLimit(rlim_t bytes) {
  rlimit limit = {};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  setrlimit(RLIMIT_FSIZE, &limit);
}

void LiftFileSizeLimit() { SetFileSizeLimit(RLIM_INFINITY); }

std::uintmax_t SizeOf(const std::string &path) {
  struct stat status = {};
  return lstat(path.c_str(), &status) == 0 ? static_cast<std::uintmax_t>(status.st_size) : 0;
}

// Runs `prepare` in the child, then captures.
Captured CaptureAfter(const std::function<void()> &prepare) {
  const TemporaryDirectory directory;
  const std::string report = directory.Path("report");
  const std::string copy = directory.Path("copy");
  const ChildResult result = RunInChild([&] {
    const ProgramMessages messages(kMessages);
    prepare();
    std::string name;
    std::string error;
    const int answer = GetStdinData(&name, &error);
    struct stat status = {};
    LiftFileSizeLimit();
    const std::string own = StdinDataFileName(getpid());
    const std::uintmax_t left = answer == 0 ? SizeOf(own) : 0;
    if (!name.empty() && name != own) _exit(1);
    if (!name.empty() && (lstat(own.c_str(), &status) != 0 || !S_ISREG(status.st_mode))) _exit(2);
    std::ofstream(copy, std::ios::binary) << (name.empty() ? "" : ContentOf(own));
    std::ofstream(report) << answer << ' ' << !name.empty() << ' ' << (status.st_mode & 07777)
                          << ' ' << left << ' ' << error;
    unlink(own.c_str());
    rmdir(own.c_str());
  });
  EXPECT_EQ(result.status, 0);
  Captured captured;
  std::ifstream in(report);
  in >> captured.result >> captured.named >> captured.mode >> captured.left_size;
  in.get();
  std::getline(in, captured.error);
  captured.content = ContentOf(copy);
  return captured;
}

struct Pipe {
  int read_end = -1;
  int write_end = -1;
};

// A pipe as standard input.
Pipe PipeAsInput() {
  int ends[2];
  if (pipe(ends) != 0 || dup2(ends[0], STDIN_FILENO) < 0) _exit(120);
  return {ends[0], ends[1]};
}

void Put(const Pipe &pipe, const std::string &text) {
  if (write(pipe.write_end, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    _exit(121);
  }
}

void FileAsInput(const std::string &path) {
  const int file = open(path.c_str(), O_RDONLY);
  if (file < 0 || dup2(file, STDIN_FILENO) < 0) _exit(122);
}

}  // namespace

TEST(StdinDataFileName, CarriesTheProcessIdCutToSixteenBits) {
  EXPECT_EQ(StdinDataFileName(1), "/tmp/KPXtool.stdindata.1");
  EXPECT_EQ(StdinDataFileName(32767), "/tmp/KPXtool.stdindata.32767");
  EXPECT_EQ(StdinDataFileName(32768), "/tmp/KPXtool.stdindata.-32768");
  EXPECT_EQ(StdinDataFileName(40000), "/tmp/KPXtool.stdindata.-25536");
  EXPECT_EQ(StdinDataFileName(65536), "/tmp/KPXtool.stdindata.0");
}

TEST(GetStdinData, StoresWhatWasPiped) {
  const Captured captured = CaptureAfter([] {
    const Pipe pipe = PipeAsInput();
    Put(pipe, "hi\n");
    close(pipe.write_end);
  });
  EXPECT_EQ(captured.result, 1);
  EXPECT_TRUE(captured.named);
  EXPECT_EQ(captured.content, "hi\n");
}

TEST(GetStdinData, TheFileIsReadableByItsUserAlone) {
  const Captured captured = CaptureAfter([] {
    umask(0);
    Put(PipeAsInput(), "x");
  });
  EXPECT_EQ(captured.mode, 0600U);
}

TEST(GetStdinData, EndsAtTheFirstPauseAndDoesNotWaitForTheEnd) {
  // The writing end stays open: waiting for the end would never return.
  const Captured captured = CaptureAfter([] { Put(PipeAsInput(), "first"); });
  EXPECT_EQ(captured.result, 1);
  EXPECT_EQ(captured.content, "first");
}

TEST(GetStdinData, SucceedsWithoutFileWhenNothingComes) {
  EXPECT_EQ(CaptureAfter([] { PipeAsInput(); }).result, 1);
  EXPECT_FALSE(CaptureAfter([] { PipeAsInput(); }).named);
}

TEST(GetStdinData, SucceedsWithoutFileAtAnImmediateEnd) {
  for (const bool closed : {false, true}) {
    const Captured captured = CaptureAfter([closed] {
      if (closed) {
        close(STDIN_FILENO);
      } else {
        FileAsInput("/dev/null");
      }
    });
    EXPECT_EQ(captured.result, 1) << "closed: " << closed;
    EXPECT_FALSE(captured.named) << "closed: " << closed;
  }
}

TEST(GetStdinData, SucceedsWithoutFileAtATerminalWithNothingTyped) {
  const Captured captured = CaptureAfter([] {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) _exit(123);
    FileAsInput(ptsname(terminal));
  });
  EXPECT_EQ(captured.result, 1);
  EXPECT_FALSE(captured.named);
}

TEST(GetStdinData, CapturesALargeFileWholeWithEveryByte) {
  const TemporaryDirectory directory;
  std::string content;
  for (int i = 0; i < 1'000'000; ++i) content += static_cast<char>(i * 31);
  const std::string path = directory.Write("large", content);
  const Captured captured = CaptureAfter([&] { FileAsInput(path); });
  EXPECT_EQ(captured.result, 1);
  EXPECT_TRUE(captured.content == content) << captured.content.size() << " bytes";
}

TEST(GetStdinData, ReportsAReadError) {
  const Captured captured = CaptureAfter([] { FileAsInput("/tmp"); });
  EXPECT_EQ(captured.result, 0);
  EXPECT_EQ(captured.error, "read <stdin>");
  EXPECT_FALSE(captured.named);
}

TEST(GetStdinData, ReplacesAnOlderFile) {
  const Captured captured = CaptureAfter([] {
    std::ofstream(StdinDataFileName(getpid())) << "older and longer";
    Put(PipeAsInput(), "new");
  });
  EXPECT_EQ(captured.content, "new");
}

TEST(GetStdinData, ReplacesASymbolicLinkAndLeavesItsTargetAlone) {
  const TemporaryDirectory directory;
  const std::string target = directory.Write("target", "precious");
  const Captured captured = CaptureAfter([&] {
    if (symlink(target.c_str(), StdinDataFileName(getpid()).c_str()) != 0) _exit(124);
    Put(PipeAsInput(), "new");
  });
  EXPECT_EQ(captured.result, 1);
  EXPECT_EQ(captured.content, "new");
  EXPECT_EQ(ContentOf(target), "precious");
}

TEST(GetStdinData, ReportsAFileThatCannotBeMade) {
  pid_t child = 0;
  const TemporaryDirectory directory;
  const Captured captured = CaptureAfter([&] {
    mkdir(StdinDataFileName(getpid()).c_str(), 0700);
    std::ofstream(directory.Path("pid")) << getpid();
    Put(PipeAsInput(), "x");
  });
  std::ifstream(directory.Path("pid")) >> child;
  EXPECT_EQ(captured.result, 0);
  EXPECT_EQ(captured.error, "write <" + StdinDataFileName(child) + ">");
}

TEST(GetStdinData, ReportsAShortWriteAndLeavesThePartWritten) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("large", std::string(10'000, 'x'));
  const Captured captured = CaptureAfter([&] {
    FileAsInput(path);
    std::signal(SIGXFSZ, SIG_IGN);
    SetFileSizeLimit(3000);
  });
  EXPECT_EQ(captured.result, 0);
  EXPECT_TRUE(captured.error.starts_with("write </tmp/KPXtool.stdindata.")) << captured.error;
  EXPECT_FALSE(captured.named);
  EXPECT_EQ(captured.left_size, 3000U);
}

// Names that are taken, and what is left behind.

namespace {

// Captures `text` in this process: where it lies now.
std::string CaptureText(const std::string &text) {
  Put(PipeAsInput(), text);
  std::string name;
  std::string error;
  if (GetStdinData(&name, &error) != 1) _exit(101);
  return name;
}

void Write(const std::string &path, const std::string &text) { std::ofstream(path) << text; }

// A file that a running print tool has captured under the name of process `pid`, until this goes.
class FileInUse {
 public:
  explicit FileInUse(const std::string &path) : path_(path) {
    Write(path, "theirs");
    file_ = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    flock(file_, LOCK_EX);
  }
  ~FileInUse() {
    close(file_);
    unlink(path_.c_str());
  }
  FileInUse(const FileInUse &) = delete;
  FileInUse &operator=(const FileInUse &) = delete;

 private:
  std::string path_;
  int file_ = -1;
};

}  // namespace

TEST(GetStdinData, TwoPrintToolsWithTheSameLastBitsOfTheirNumberShareNoFile) {
  const ChildResult result = RunInChild([] {
    const ProgramMessages messages(kMessages);
    const std::string own = StdinDataFileName(getpid());
    const FileInUse other(own);
    const std::string name = CaptureText("ours");
    if (!name.starts_with(own + ".") || name.size() != own.size() + 7) _exit(1);
    if (ContentOf(name) != "ours" || ContentOf(own) != "theirs") _exit(2);
    unlink(name.c_str());
  });
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.errors);
}

TEST(GetStdinData, TheFileIsKnownToBeInUseAsLongAsTheProgramRuns) {
  const ChildResult result = RunInChild([] {
    const ProgramMessages messages(kMessages);
    const std::string name = CaptureText("ours");
    const int again = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (flock(again, LOCK_EX | LOCK_NB) == 0) _exit(1);
    RemoveLeftCaptures();
    if (ContentOf(name) != "ours") _exit(2);
    unlink(name.c_str());
  });
  EXPECT_EQ(0, result.status);
}

TEST(GetStdinData, AnUnfinishedFileCanBeRemoved) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("large", std::string(10'000, 'x'));
  const ChildResult result = RunInChild([&] {
    const ProgramMessages messages(kMessages);
    FileAsInput(path);
    std::signal(SIGXFSZ, SIG_IGN);
    SetFileSizeLimit(3000);
    std::string name;
    std::string error;
    if (GetStdinData(&name, &error) != 0) _exit(1);
    if (SizeOf(StdinDataFileName(getpid())) != 3000) _exit(2);
    RemoveUnfinishedCapture();
    if (access(StdinDataFileName(getpid()).c_str(), F_OK) == 0) _exit(3);
  });
  EXPECT_EQ(0, result.status);
}

namespace {

// How a capture ends that gets SIGTERM at one of its file calls.
struct SignalledCapture {
  int status = 0;  // 128 plus the signal's number when a signal ended it
  int calls = 0;   // how many file calls it made
  bool left = false;
};

// The signal comes at call number `at`, counted from 1; 0 for no signal.
SignalledCapture CaptureWithSignalAt(int at) {
  SignalledCapture result;
  std::string path;
  const auto capture = [at] {
    // Blocks no signal, as a thread that a library has started.
    std::thread([] {
      while (true) pause();
    }).detach();
    std::string name;
    std::string error;
    const int answer = GetStdinData(&name, &error);
    constexpr unsigned kSeconds = 20;
    if (at != 0) sleep(kSeconds);  // until the signal ends it
    return answer == 1 ? 0 : 1;
  };
  const auto watch = [&](const FileCall &call) {
    if (!call.is_own) return CallFate{};
    path = StdinDataFileName(call.process);
    // The other thread takes it, since this one stands still.
    if (++result.calls == at) kill(call.process, SIGTERM);
    return CallFate{};
  };
  result.status = RunTraced([] { Put(PipeAsInput(), "x"); }, capture, watch).status;
  struct stat status = {};
  result.left = lstat(path.c_str(), &status) == 0;
  unlink(path.c_str());
  return result;
}

}  // namespace

TEST(GetStdinData, ATerminatingSignalAtAnyCallInAnyThreadLeavesNoFile) {
  const SignalledCapture whole = CaptureWithSignalAt(0);
  EXPECT_EQ(0, whole.status);
  EXPECT_TRUE(whole.left);
  ASSERT_GT(whole.calls, 6);  // it looks, removes, makes, locks, compares and writes
  for (int at = 1; at <= whole.calls; ++at) {
    const SignalledCapture capture = CaptureWithSignalAt(at);
    EXPECT_EQ(128 + SIGTERM, capture.status) << at;
    EXPECT_FALSE(capture.left) << "the signal came at call " << at;
  }
}

TEST(RemoveLeftCaptures, RemovesTheFilesThatNoPrintToolUses) {
  const std::string left = StdinDataFileName(11) + ".left";
  const std::string used = StdinDataFileName(12) + ".used";
  const std::string link = StdinDataFileName(13) + ".link";
  Write(left, "");
  unlink(link.c_str());
  ASSERT_EQ(0, symlink("/etc/passwd", link.c_str()));
  {
    const FileInUse in_use(used);
    RemoveLeftCaptures();
    EXPECT_NE(0, access(left.c_str(), F_OK));
    EXPECT_EQ("theirs", ContentOf(used));
  }
  EXPECT_EQ(0, access("/etc/passwd", F_OK));
  unlink(link.c_str());
}
