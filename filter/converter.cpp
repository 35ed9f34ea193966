#include "converter.h"

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iterator>
#include <memory>

#include "uninterrupted.h"

namespace kpx::filter {

namespace {

// What a converter may use. A document that needs more is not one that somebody wants to print.
struct Limit {
  decltype(RLIMIT_CPU) resource;
  rlim_t most;
};
constexpr Limit kLimits[] = {{RLIMIT_CPU, 30 * 60},             // seconds
                             {RLIMIT_AS, rlim_t{2} << 30},      // bytes of memory
                             {RLIMIT_FSIZE, rlim_t{16} << 30},  // bytes of a file
                             {RLIMIT_NOFILE, 64},
                             {RLIMIT_CORE, 0}};

[[nodiscard]] bool LimitResources() {
  for (const Limit &limit : kLimits) {
    rlimit now{};
    if (getrlimit(limit.resource, &now) != 0) return false;
    if (now.rlim_max != RLIM_INFINITY && now.rlim_max < limit.most) continue;
    const rlimit less{limit.most, limit.most};
    if (setrlimit(limit.resource, &less) != 0) return false;
  }
  return true;
}

// The kernel's program that lets a converter open no connection, neither over the network nor to
// the machine's own services; empty when it cannot be made.
std::vector<sock_filter> WithoutConnections() {
  const std::unique_ptr<void, void (*)(void *)> filter(seccomp_init(SCMP_ACT_ALLOW),
                                                       seccomp_release);
  const int file = memfd_create("calls", MFD_CLOEXEC);
  std::vector<sock_filter> program;
  // What io_uring does for a process passes no filter of its calls.
  constexpr int kCalls[] = {SCMP_SYS(socket), SCMP_SYS(io_uring_setup)};
  bool made = filter != nullptr && file != -1;
  for (const int call : kCalls) {
    made = made && seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EACCES), call, 0) == 0;
  }
  if (made && seccomp_export_bpf(filter.get(), file) == 0) {
    program.resize(static_cast<size_t>(lseek(file, 0, SEEK_END)) / sizeof(sock_filter));
    const size_t size = program.size() * sizeof(sock_filter);
    if (pread(file, program.data(), size, 0) != static_cast<ssize_t>(size)) program.clear();
  }
  if (file != -1) close(file);
  return program;
}

// In the child, like what follows.
[[nodiscard]] bool GiveUpConnections(const sock_fprog &program) {
  return program.len > 0 && prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

std::vector<char *> PointersTo(const std::vector<std::string> &texts) {
  std::vector<char *> pointers;
  for (const std::string &text : texts) pointers.push_back(const_cast<char *>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

// In the child: only calls that are safe there.
[[noreturn]] void Become(const int descriptors[3], char *const words[], char *const environment[],
                         const sock_fprog &calls, pid_t parent) {
  constexpr int kCannotRun = 127;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  std::signal(SIGPIPE, SIG_DFL);
  const bool ready = getppid() == parent && LimitResources();
  for (int i = 0; ready && i < 3; ++i) {
    if (dup2(descriptors[i], i) != i) _exit(kCannotRun);
  }
  if (ready && GiveUpConnections(calls)) execve(words[0], words, environment);
  _exit(kCannotRun);
}

}  // namespace

Converter::Converter(const ConverterCall &call) : messages_(memfd_create("messages", MFD_CLOEXEC)) {
  const std::vector<char *> words = PointersTo(call.words);
  const std::vector<char *> environment = PointersTo(call.environment);
  const int descriptors[3] = {call.input, call.output, messages_};
  std::vector<sock_filter> program = WithoutConnections();
  const sock_fprog calls{.len = static_cast<unsigned short>(program.size()),
                         .filter = program.data()};
  const pid_t parent = getpid();
  process_ = fork();
  if (process_ == 0) Become(descriptors, words.data(), environment.data(), calls, parent);
}

Converter::~Converter() {
  if (process_ > 0) {
    kill(process_, SIGKILL);
    Wait();
  }
  if (messages_ != -1) close(messages_);
}

int Converter::Wait() {
  constexpr int kNotStarted = 127, kSignal = 128;
  if (process_ <= 0) return kNotStarted;
  int status = 0;
  Uninterrupted(waitpid, process_, &status, 0);
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : kSignal + WTERMSIG(status);
}

std::string Converter::Messages() const {
  std::string text(1 << 16, '\0');
  const ssize_t count = pread(messages_, text.data(), text.size(), 0);
  text.resize(static_cast<size_t>(std::max<ssize_t>(count, 0)));
  return text;
}

std::vector<std::string> ConverterEnvironment() {
  const char *temporary = std::getenv("TMPDIR");
  return {"PATH=/usr/bin:/bin", "LC_ALL=C.UTF-8",
          std::string("TMPDIR=") + (temporary == nullptr ? "/tmp" : temporary)};
}

void Descriptor::Close() {
  if (number_ >= 0) close(number_);
  number_ = -1;
}

[[nodiscard]] int NamelessFile() {
  const char *directory = std::getenv("TMPDIR");
  std::string path = std::string(directory == nullptr ? "/tmp" : directory) + "/kpxfilter.XXXXXX";
  const int file = mkostemp(path.data(), O_CLOEXEC);
  if (file != -1) unlink(path.c_str());
  return file;
}

}  // namespace kpx::filter
