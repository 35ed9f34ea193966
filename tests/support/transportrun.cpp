#include "transportrun.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <system_error>
#include <utility>

namespace {

constexpr char kProgram[] = "/opt/orlan/bin/kpxnbtrans";

pid_t Spawn(const std::vector<std::string> &arguments, int input, int words) {
  std::vector<char *> vector{const_cast<char *>(kProgram)};
  for (const std::string &argument : arguments) {
    vector.push_back(const_cast<char *>(argument.c_str()));
  }
  vector.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (input >= 0) {
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  } else {
    posix_spawn_file_actions_addclose(&actions, STDIN_FILENO);
  }
  posix_spawn_file_actions_adddup2(&actions, words, STDERR_FILENO);
  // The test ignores broken pipes, and a run of the tests in the background or under nohup other
  // signals; the program shall not have that from us.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t defaults;
  sigemptyset(&defaults);
  for (const int signal : {SIGPIPE, SIGHUP, SIGINT, SIGTERM}) sigaddset(&defaults, signal);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  pid_t process = -1;
  const int error = posix_spawn(&process, kProgram, &actions, &attributes, vector.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::system_error(error, std::generic_category(), kProgram);
  return process;
}

}  // namespace

TransportRun::TransportRun(const std::vector<std::string> &arguments, Descriptor input)
    : words_(Descriptor()) {
  Pipe words = MakePipe();
  process_ = Spawn(arguments, input.get(), words.writing.get());
  words_ = Words(std::move(words.reading));
}

TransportRun::~TransportRun() {
  if (process_ <= 0) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

void TransportRun::Send(int signal) const { kill(process_, signal); }

Ended TransportRun::Wait() {
  Ended ended;
  ended.words = words_.Rest();
  rusage usage{};
  const int status = AwaitChild(std::exchange(process_, -1), kProgram, &usage);
  ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  ended.peak_kilobytes = usage.ru_maxrss;
  return ended;
}

Ended RunTransport(const std::vector<std::string> &arguments, Descriptor input) {
  return TransportRun(arguments, std::move(input)).Wait();
}
