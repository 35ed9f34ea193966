// What the printer stand-in of the sandbox has received.
#pragma once

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "deadline.h"
#include "temporarydirectory.h"

class PrintedJobs {
 public:
  // Looks at the jobs that arrive from now on.
  PrintedJobs() {
    const char *directory = std::getenv("KPX_JOBS");
    if (directory == nullptr) throw std::runtime_error("run this test in the full sandbox");
    directory_ = directory;
    watch_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (inotify_add_watch(watch_, directory, IN_MOVED_TO | IN_CLOSE_WRITE) < 0) {
      throw std::runtime_error("cannot watch " + directory_);
    }
    seen_ = Files();
  }
  ~PrintedJobs() { close(watch_); }
  PrintedJobs(const PrintedJobs &) = delete;
  PrintedJobs &operator=(const PrintedJobs &) = delete;

  // The bytes of the next job; nothing when none has arrived in EventPatience.
  std::optional<std::string> Next() {
    const Deadline deadline(EventPatience());
    for (;;) {
      for (const std::string &file : Files()) {
        if (std::find(seen_.begin(), seen_.end(), file) != seen_.end()) continue;
        seen_.push_back(file);
        return ContentOf(file);
      }
      if (deadline.Left() == 0 || !HasEvents(watch_, POLLIN, deadline)) return std::nullopt;
      char events[4096];
      while (read(watch_, events, sizeof events) > 0) {
      }
    }
  }

 private:
  // The stored jobs, in the order of their numbers.
  std::vector<std::string> Files() const {
    std::vector<std::string> files;
    for (const auto &entry : std::filesystem::directory_iterator(directory_)) {
      if (entry.path().extension() == ".prn") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
  }

  std::string directory_;
  int watch_ = -1;
  std::vector<std::string> seen_;
};
