#include "remotehosts.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <map>

#include "cmessages.h"
#include "command.h"
#include "jsonoutput.h"
#include "openfile.h"
#include "output.h"
#include "textencoding.h"
#include "textscan.h"

namespace kpx::ctl {

namespace {

constexpr char kProgram[] = "/opt/orlan/bin/kpxctl";
constexpr size_t kMostAtOnce = 16;
constexpr int kSshFailed = 255;  // the status with which ssh says so

// A host that is switched off in the middle says nothing any more: ssh asks after it.
constexpr const char *kSsh[] = {
    "ssh", "-o", "ConnectTimeout=20", "-o", "ServerAliveInterval=5", "-o", "ServerAliveCountMax=3"};

bool CanBeHost(std::string_view host) {
  return !host.empty() && host.front() != '-' && std::none_of(host.begin(), host.end(), [](char c) {
    return IsControlCharacter(c) || c == ' ';
  });
}

std::vector<std::string> SshWords(const std::string &host, const std::vector<std::string> &words) {
  std::vector<std::string> ssh(std::begin(kSsh), std::end(kSsh));
  ssh.insert(ssh.end(), {"--", host, RemoteCommand(words)});
  return ssh;
}

// A file in memory that what a host says goes to, or that has what each of them reads.
class MemoryText {
 public:
  MemoryText() : file_(memfd_create("kpxctl", MFD_CLOEXEC)) {}

  [[nodiscard]] int Descriptor() const { return file_.Descriptor(); }
  // For who reads it from its beginning.
  [[nodiscard]] std::string Path() const {
    return "/proc/self/fd/" + std::to_string(file_.Descriptor());
  }
  [[nodiscard]] std::string Text() const {
    std::string text;
    char buffer[8192];
    ssize_t count = 0;
    while ((count = pread(Descriptor(), buffer, sizeof buffer, static_cast<off_t>(text.size()))) >
           0) {
      text.append(buffer, static_cast<size_t>(count));
    }
    return text;
  }

 private:
  OpenFile file_;
};

// What the hosts read as standard input: this program's, if the command reads any.
std::string InputPath(const std::vector<std::string> &words, const MemoryText &copy) {
  const bool reads = std::any_of(words.begin(), words.end(), [](const std::string &word) {
    return word == "-" || word == "/dev/stdin";
  });
  if (!reads) return "/dev/null";
  char buffer[65536];
  ssize_t count = 0;
  while ((count = read(STDIN_FILENO, buffer, sizeof buffer)) > 0 || (count < 0 && errno == EINTR)) {
    if (count > 0 && !WriteWhole(copy.Descriptor(), {buffer, static_cast<size_t>(count)})) break;
  }
  return copy.Path();
}

Status StatusOf(int wait_status) {
  const int status = WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : kFailed;
  return status >= kDone && status <= kChanges ? static_cast<Status>(status) : kFailed;
}

bool IsLost(int wait_status) {
  return WIFEXITED(wait_status) && WEXITSTATUS(wait_status) == kSshFailed;
}

// Starts ssh; -1 when it cannot be. Without `input` it has all that this program has.
pid_t Start(const std::vector<std::string> &words, const char *input, int output, int errors) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (input != nullptr) {
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, input, O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
  }
  std::vector<char *> arguments;
  for (const std::string &word : words) arguments.push_back(const_cast<char *>(word.c_str()));
  arguments.push_back(nullptr);
  pid_t child = -1;
  const int error =
      posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return error == 0 ? child : -1;
}

Status RunOnOne(const std::string &host, const std::vector<std::string> &words) {
  const pid_t child = Start(SshWords(host, words), nullptr, -1, -1);
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) {
    Complain(G_Translate("CTL_SSH_MISSING"));
    return kFailed;
  }
  if (IsLost(status)) Complain(G_Message("CTL_HOST_LOST", {host}));
  return StatusOf(status);
}

// One host at work.
struct Run {
  std::string host;
  MemoryText output, errors;
};

class Fleet {
 public:
  explicit Fleet(const std::vector<std::string> &words)
      : words_(words),
        input_(InputPath(words, input_copy_)),
        json_(std::find(words.begin(), words.end(), "--json") != words.end()) {}

  Status RunAll(const std::vector<std::string> &hosts) {
    for (const std::string &host : hosts) {
      if (runs_.size() == kMostAtOnce) AwaitOne();
      StartOn(host);
    }
    while (!runs_.empty()) AwaitOne();
    if (json_) PrintJsonText(answers_);
    return worst_;
  }

 private:
  void StartOn(const std::string &host) {
    Run run;
    run.host = host;
    const pid_t child = Start(SshWords(host, words_), input_.c_str(), run.output.Descriptor(),
                              run.errors.Descriptor());
    if (child < 0) {
      Complain(G_Translate("CTL_SSH_MISSING"));
      worst_ = kFailed;
      return;
    }
    PrintErrorLine(G_Message("CTL_HOST_WORKS", {host}));
    runs_.emplace(child, std::move(run));
  }

  void AwaitOne() {
    int status = 0;
    const pid_t child = waitpid(-1, &status, 0);
    const auto found = runs_.find(child);
    if (found == runs_.end()) {
      if (child < 0 && errno != EINTR) runs_.clear();  // there is nobody left to wait for
      return;
    }
    Show(found->second, status);
    runs_.erase(found);
  }

  void Show(const Run &run, int wait_status) {
    const Status status = StatusOf(wait_status);
    worst_ = WorseStatus(worst_, status);
    const std::string &host = run.host;
    if (json_) {
      answers_.push_back({{"host", host},
                          {"status", static_cast<int>(status)},
                          {"answer", Json::parse(run.output.Text(), nullptr, false)}});
      if (answers_.back()["answer"].is_discarded()) answers_.back()["answer"] = nullptr;
    } else {
      ForLines(run.output.Text(), [&](const std::string &line) { PrintLine(host + ": " + line); });
      std::fflush(stdout);
    }
    ForLines(run.errors.Text(),
             [&](const std::string &line) { PrintErrorLine(host + ": " + line); });
    PrintErrorLine(IsLost(wait_status)
                       ? G_Message("CTL_HOST_LOST", {host})
                       : G_Message("CTL_HOST_ENDED", {host, static_cast<int>(status)}));
  }

  template <typename Line>
  static void ForLines(const std::string &text, const Line &use) {
    LineReader lines(text);
    while (const std::optional<std::string> line = lines.Next()) use(*line);
  }

  const std::vector<std::string> &words_;
  MemoryText input_copy_;
  std::string input_;
  bool json_;
  std::map<pid_t, Run> runs_;
  Json answers_ = Json::array();
  Status worst_ = kDone;
};

}  // namespace

std::optional<std::vector<std::string>> HostsOf(const std::vector<std::string> &values,
                                                std::string *wrong) {
  std::vector<std::string> hosts;
  for (const std::string &value : values) {
    for (size_t start = 0; start <= value.size();) {
      const size_t end = std::min(value.find(',', start), value.size());
      const std::string host = value.substr(start, end - start);
      if (!CanBeHost(host)) {
        *wrong = host;
        return std::nullopt;
      }
      if (std::find(hosts.begin(), hosts.end(), host) == hosts.end()) hosts.push_back(host);
      start = end + 1;
    }
  }
  return hosts;
}

std::string RemoteCommand(const std::vector<std::string> &words) {
  std::vector<std::string> command = {kProgram};
  for (const std::string &word : words) command.push_back(ShellWord(word));
  return JoinWords(command);
}

Status WorseStatus(Status a, Status b) {
  // All but kDone stand in this order.
  if (a == kDone || b == kDone) return std::max(a, b);
  return std::min(a, b);
}

Status RunOnHosts(const std::vector<std::string> &hosts, const std::vector<std::string> &words) {
  return hosts.size() == 1 ? RunOnOne(hosts[0], words) : Fleet(words).RunAll(hosts);
}

}  // namespace kpx::ctl
