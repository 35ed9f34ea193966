// Runs a piece of a test in a child process and tells how it ended and what it wrote.
#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "deadline.h"

struct ChildResult {
  int status = -1;     // exit status; 128 plus the signal's number when a signal ended it
  std::string errors;  // its standard error
};

// Throws std::runtime_error when the end does not come in time.
inline std::string ReadToEnd(int descriptor) {
  const Deadline deadline(RunPatience());
  std::string text;
  char buffer[4096];
  for (;;) {
    if (!HasEvents(descriptor, POLLIN, deadline)) {
      throw deadline.Missed("the end of\n" +
                            text.substr(text.size() - std::min<size_t>(text.size(), 4000)));
    }
    const ssize_t count = read(descriptor, buffer, sizeof buffer);
    if (count <= 0) return text;
    text.append(buffer, static_cast<size_t>(count));
  }
}

// `body` may end the process itself; when it returns the status is 0. A child that does not end in
// RunPatience is killed, and std::runtime_error tells what it wrote.
inline ChildResult RunInChild(const std::function<void()> &body) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe");
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork");
  if (child == 0) {
    dup2(ends[1], STDERR_FILENO);
    body();
    std::fflush(nullptr);
    _exit(0);
  }
  close(ends[1]);
  ChildResult result;
  try {
    result.errors = ReadToEnd(ends[0]);
  } catch (...) {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(ends[0]);
    throw;
  }
  close(ends[0]);
  const int status = AwaitChild(child, "a child process that wrote\n" + result.errors);
  result.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return result;
}

inline std::vector<std::string> SplitLines(const std::string &text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    const size_t feed = std::min(text.find('\n', start), text.size());
    lines.push_back(text.substr(start, feed - start));
    start = feed + 1;
  }
  return lines;
}
