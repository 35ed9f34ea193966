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

struct ChildResult {
  int status = -1;     // exit status; 128 plus the signal's number when a signal ended it
  std::string errors;  // its standard error
};

inline std::string ReadToEnd(int descriptor) {
  std::string text;
  char buffer[4096];
  ssize_t count = 0;
  while ((count = read(descriptor, buffer, sizeof buffer)) > 0) {
    text.append(buffer, static_cast<size_t>(count));
  }
  return text;
}

// `body` may end the process itself; when it returns the status is 0.
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
  result.errors = ReadToEnd(ends[0]);
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
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
