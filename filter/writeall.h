// Writing to descriptors.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <string_view>

// Writes all of `bytes` to `fd`, however many calls it takes. False, with errno, when that failed.
inline bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(fd, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    bytes.remove_prefix(static_cast<size_t>(count));
  }
  return true;
}
