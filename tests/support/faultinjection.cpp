#include "faultinjection.h"

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>

namespace {

// Where a call has what it is about: numbers of arguments, -1 for none.
struct CallShape {
  long number;
  const char *name;
  int path;
  int descriptor;  // of the file, or of the directory that a relative path starts from
  enum class Effect { Reads, Changes, AsFlagsSay } effect;
  int flags;  // of AsFlagsSay
};

constexpr auto kReads = CallShape::Effect::Reads;
constexpr auto kChanges = CallShape::Effect::Changes;
constexpr auto kAsFlagsSay = CallShape::Effect::AsFlagsSay;

constexpr CallShape kShapes[] = {
#ifdef SYS_open  // newer machines lack the calls without a directory
    {SYS_open, "open", 0, -1, kAsFlagsSay, 1},
    {SYS_creat, "creat", 0, -1, kChanges, -1},
    {SYS_rename, "rename", 0, -1, kChanges, -1},
    {SYS_unlink, "unlink", 0, -1, kChanges, -1},
    {SYS_chmod, "chmod", 0, -1, kChanges, -1},
    {SYS_chown, "chown", 0, -1, kChanges, -1},
    {SYS_lchown, "lchown", 0, -1, kChanges, -1},
    {SYS_mkdir, "mkdir", 0, -1, kChanges, -1},
    {SYS_rmdir, "rmdir", 0, -1, kChanges, -1},
    {SYS_link, "link", 1, -1, kChanges, -1},
    {SYS_symlink, "symlink", 1, -1, kChanges, -1},
    {SYS_stat, "stat", 0, -1, kReads, -1},
    {SYS_lstat, "lstat", 0, -1, kReads, -1},
    {SYS_access, "access", 0, -1, kReads, -1},
    {SYS_readlink, "readlink", 0, -1, kReads, -1},
#endif
    {SYS_openat, "openat", 1, 0, kAsFlagsSay, 2},
    {SYS_write, "write", -1, 0, kChanges, -1},
    {SYS_pwrite64, "pwrite", -1, 0, kChanges, -1},
    {SYS_writev, "writev", -1, 0, kChanges, -1},
    {SYS_sendfile, "sendfile", -1, 0, kChanges, -1},
    {SYS_copy_file_range, "copy_file_range", -1, 2, kChanges, -1},
    {SYS_sendto, "send", -1, 0, kChanges, -1},
    {SYS_sendmsg, "sendmsg", -1, 0, kChanges, -1},
    {SYS_renameat, "rename", 1, 0, kChanges, -1},
    {SYS_renameat2, "rename", 1, 0, kChanges, -1},
    {SYS_unlinkat, "unlink", 1, 0, kChanges, -1},
    {SYS_truncate, "truncate", 0, -1, kChanges, -1},
    {SYS_ftruncate, "ftruncate", -1, 0, kChanges, -1},
    {SYS_fallocate, "fallocate", -1, 0, kChanges, -1},
    {SYS_fsync, "fsync", -1, 0, kChanges, -1},
    {SYS_fdatasync, "fdatasync", -1, 0, kChanges, -1},
    {SYS_syncfs, "syncfs", -1, 0, kChanges, -1},
    {SYS_fchmod, "fchmod", -1, 0, kChanges, -1},
    {SYS_fchmodat, "fchmodat", 1, 0, kChanges, -1},
    {SYS_fchown, "fchown", -1, 0, kChanges, -1},
    {SYS_fchownat, "fchownat", 1, 0, kChanges, -1},
    {SYS_utimensat, "utimensat", 1, 0, kChanges, -1},
    {SYS_mkdirat, "mkdir", 1, 0, kChanges, -1},
    {SYS_linkat, "link", 3, 2, kChanges, -1},
    {SYS_symlinkat, "symlink", 2, 1, kChanges, -1},
    {SYS_read, "read", -1, 0, kReads, -1},
    {SYS_pread64, "pread", -1, 0, kReads, -1},
    {SYS_newfstatat, "stat", 1, 0, kReads, -1},
    {SYS_statx, "statx", 1, 0, kReads, -1},
    {SYS_fstat, "fstat", -1, 0, kReads, -1},
    {SYS_faccessat, "access", 1, 0, kReads, -1},
    {SYS_faccessat2, "access", 1, 0, kReads, -1},
    {SYS_getdents64, "getdents", -1, 0, kReads, -1},
    {SYS_readlinkat, "readlink", 1, 0, kReads, -1},
    {SYS_flock, "flock", -1, 0, kReads, -1},
    {SYS_close, "close", -1, 0, kReads, -1},
};

const CallShape *ShapeOf(long number) {
  const auto *found = std::find_if(std::begin(kShapes), std::end(kShapes),
                                   [=](const CallShape &shape) { return shape.number == number; });
  return found == std::end(kShapes) ? nullptr : found;
}

void Must(bool done, const char *what) {
  if (!done) throw std::runtime_error(std::string(what) + ": " + std::to_string(errno));
}

std::string LinkTarget(const std::string &link) {
  char target[PATH_MAX];
  const ssize_t length = readlink(link.c_str(), target, sizeof target);
  return length < 0 ? "" : std::string(target, static_cast<size_t>(length));
}

std::string TextAt(pid_t process, unsigned long address) {
  constexpr unsigned long kPiece = 256;  // pieces that lie in one page each
  std::string text;
  while (text.size() < PATH_MAX) {
    char piece[kPiece];
    iovec here = {piece, kPiece - address % kPiece};
    iovec there = {reinterpret_cast<void *>(address), here.iov_len};  // NOLINT
    const ssize_t count = process_vm_readv(process, &here, 1, &there, 1, 0);
    if (count <= 0) break;
    const std::string_view got(piece, static_cast<size_t>(count));
    text += got.substr(0, got.find('\0'));
    if (got.find('\0') != std::string_view::npos) break;
    address += static_cast<unsigned long>(count);
  }
  return text;
}

// What the descriptor is open on.
std::string FileOf(pid_t process, unsigned long descriptor) {
  const std::string place = "/proc/" + std::to_string(process);
  const int number = static_cast<int>(descriptor);
  return LinkTarget(number == AT_FDCWD ? place + "/cwd" : place + "/fd/" + std::to_string(number));
}

std::string PathOf(const FileCall &call, const CallShape &shape) {
  if (shape.path < 0) return FileOf(call.process, call.arguments[shape.descriptor]);
  const std::string path = TextAt(call.process, call.arguments[shape.path]);
  if (path.starts_with('/')) return path;
  const unsigned long from = shape.descriptor < 0 ? static_cast<unsigned long>(AT_FDCWD)
                                                  : call.arguments[shape.descriptor];
  const std::string start = FileOf(call.process, from);
  return path.empty() ? start : start + "/" + path;
}

bool Changes(const FileCall &call, const CallShape &shape) {
  if (shape.effect == kAsFlagsSay) return (call.arguments[shape.flags] & (O_CREAT | O_TRUNC)) != 0;
  return shape.effect == kChanges;
}

// From now on the process, and all that it starts, stops before each call of the table.
void StopAtFileCalls() {
  std::vector<sock_filter> filter = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
  for (const CallShape &shape : kShapes) {
    filter.push_back(
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(shape.number), 0, 1));
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
  }
  filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
  if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) _exit(99);
}

// Changes the call that the process is stopped at: its number, its third argument, its result.
void ChangeCall(pid_t process, const CallFate &fate) {
#ifdef __x86_64__
  user_regs_struct registers = {};
  Must(ptrace(PTRACE_GETREGS, process, nullptr, &registers) == 0, "registers");
  if (fate.kind == CallFate::Kind::Failed) {
    registers.orig_rax = static_cast<unsigned long>(-1);
    registers.rax = static_cast<unsigned long>(-fate.error);
  } else {
    registers.rdx = std::max<unsigned long>(registers.rdx / 2, std::min(registers.rdx, 1ULL));
  }
  Must(ptrace(PTRACE_SETREGS, process, nullptr, &registers) == 0, "registers");
#else
  throw std::runtime_error("calls can be changed on x86-64 only; this machine is another one");
#endif
}

// One traced process with its commands, from the moment at which all of them can be seen.
class Trace {
 public:
  Trace(pid_t first, const FatePlan &plan) : first_(first), plan_(plan) { alive_.insert(first); }

  TracedEnd Follow() {
    while (!alive_.empty()) {
      int status = 0;
      const pid_t process = waitpid(-1, &status, __WALL);
      Must(process > 0, "waitpid");
      if (WIFSTOPPED(status)) {
        alive_.insert(process);
        Stopped(process, status);
      } else {
        alive_.erase(process);
        if (process == first_) Ended(status);
      }
    }
    return end_;
  }

 private:
  void Ended(int status) {
    end_.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  }

  void Stopped(pid_t process, int status) {
    if (is_cut_down_) {
      kill(process, SIGKILL);
      return;
    }
    const int event = status >> 16;
    const int signal = WSTOPSIG(status);
    if (event == PTRACE_EVENT_SECCOMP) {
      AtCall(process);
    } else if (event == PTRACE_EVENT_STOP && signal != SIGTRAP) {
      ptrace(PTRACE_LISTEN, process, nullptr, 0);
    } else {
      ptrace(PTRACE_CONT, process, nullptr, event == 0 ? signal : 0);
    }
  }

  void AtCall(pid_t process) {
    const std::optional<FileCall> call = CallOf(process);
    if (!call) return;
    const CallFate fate = plan_(*call);
    switch (fate.kind) {
      case CallFate::Kind::Made:
        break;
      case CallFate::Kind::Killed:
        end_.killed = true;
        kill(first_, SIGKILL);
        if (process == first_) return;
        break;
      case CallFate::Kind::CutDown:
        end_.killed = true;
        is_cut_down_ = true;
        for (const pid_t one : alive_) kill(one, SIGKILL);
        return;
      case CallFate::Kind::Failed:
      case CallFate::Kind::Short:
        ChangeCall(process, fate);
        break;
    }
    ptrace(PTRACE_CONT, process, nullptr, 0);
  }

  // None when another thread has ended the process meanwhile.
  std::optional<FileCall> CallOf(pid_t process) const {
    __ptrace_syscall_info info = {};
    const bool known = ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof info, &info) > 0;
    if (!known && errno == ESRCH) return std::nullopt;
    Must(known, "call");
    FileCall call;
    call.process = process;
    call.is_own = process == first_;
    call.number = static_cast<long>(info.seccomp.nr);
    std::copy_n(info.seccomp.args, call.arguments.size(), call.arguments.begin());
    const CallShape *shape = ShapeOf(call.number);
    Must(shape != nullptr, "unknown call");
    call.path = PathOf(call, *shape);
    call.changes = Changes(call, *shape);
    return call;
  }

  pid_t first_;
  const FatePlan &plan_;
  std::set<pid_t> alive_;
  bool is_cut_down_ = false;
  TracedEnd end_;
};

void SendErrorsTo(const std::string &path) {
  if (path.empty()) return;
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  dup2(file, STDERR_FILENO);
}

}  // namespace

std::string DescriptionOf(const FileCall &call) {
  const CallShape *shape = ShapeOf(call.number);
  return (call.is_own ? "" : "command: ") + std::string(shape == nullptr ? "?" : shape->name) +
         " " + call.path;
}

bool IsBelow(const FileCall &call, const std::vector<std::string> &directories) {
  return std::any_of(directories.begin(), directories.end(), [&](const std::string &directory) {
    return call.path == directory || call.path.starts_with(directory + "/");
  });
}

bool SendsToServer(const FileCall &call) {
  return call.changes && call.path.starts_with("socket:");
}

bool CanFail(const FileCall &call, int error) {
  static const std::set<long> kTakingRoom = {
      SYS_openat,  SYS_write,     SYS_pwrite64,  SYS_writev,   SYS_copy_file_range, SYS_sendfile,
      SYS_rename,  SYS_renameat,  SYS_renameat2, SYS_mkdir,    SYS_mkdirat,         SYS_linkat,
      SYS_symlink, SYS_symlinkat, SYS_fsync,     SYS_fdatasync};
  static const std::set<long> kWaiting = {SYS_openat, SYS_read,  SYS_pread64,   SYS_write,
                                          SYS_writev, SYS_fsync, SYS_fdatasync, SYS_ftruncate};
  const CallShape *shape = ShapeOf(call.number);
  switch (error) {
    case ENOSPC:
      return call.changes && kTakingRoom.contains(call.number);
    case EACCES:
      return shape != nullptr && shape->path >= 0;
    case EINTR:
      return kWaiting.contains(call.number);
    default:
      return true;
  }
}

bool CanBeShort(const FileCall &call) {
  static const std::set<long> kMoving = {SYS_read, SYS_pread64, SYS_write, SYS_pwrite64};
  return kMoving.contains(call.number) && call.arguments[2] > 1;
}

TracedEnd RunTraced(const std::function<void()> &prepare, const std::function<int()> &body,
                    const FatePlan &plan, const std::string &errors_path) {
  int gate[2];
  Must(pipe2(gate, O_CLOEXEC) == 0, "pipe");
  std::fflush(nullptr);
  const pid_t child = fork();
  Must(child >= 0, "fork");
  if (child == 0) {
    char ready = 0;
    close(gate[1]);
    if (read(gate[0], &ready, 1) != 1) _exit(98);
    close(gate[0]);
    SendErrorsTo(errors_path);
    prepare();
    StopAtFileCalls();
    _exit(body());
  }
  close(gate[0]);
  const long options = PTRACE_O_EXITKILL | PTRACE_O_TRACESECCOMP | PTRACE_O_TRACEFORK |
                       PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE | PTRACE_O_TRACEEXEC;
  const bool seized = ptrace(PTRACE_SEIZE, child, nullptr, options) == 0;
  const bool started = seized && write(gate[1], "", 1) == 1;
  close(gate[1]);
  if (!started) waitpid(child, nullptr, 0);
  Must(started, "ptrace");
  return Trace(child, plan).Follow();
}
