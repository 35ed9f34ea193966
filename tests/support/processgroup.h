// A program that runs beside a test, with all that it starts.
#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

// Ends with this, and so does what it has started, unless that left its process group. What it
// writes goes to the file `output`, when one is named.
class ProcessGroup {
 public:
  explicit ProcessGroup(std::vector<std::string> words, const std::string &output = {}) {
    std::vector<char *> argv;
    for (std::string &word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    process_ = fork();
    if (process_ != 0) return;
    setpgid(0, 0);
    if (!output.empty()) {
      const int file = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      dup2(file, STDOUT_FILENO);
      dup2(file, STDERR_FILENO);
    }
    execvp(argv[0], argv.data());
    _exit(127);
  }
  ~ProcessGroup() {
    kill(-process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  ProcessGroup(const ProcessGroup &) = delete;
  ProcessGroup &operator=(const ProcessGroup &) = delete;

 private:
  pid_t process_ = -1;
};
