#include "report.h"

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <system_error>

namespace kpx::transport {

void Report::Say(const std::string &text) const {
  const std::string line = "kpxnbtrans: " + text + "\n";
  std::size_t written = 0;
  while (written < line.size()) {
    const ssize_t count = write(descriptor_, line.data() + written, line.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    written += static_cast<std::size_t>(count);
  }
}

std::string DurationText(std::chrono::milliseconds duration) {
  if (duration < std::chrono::seconds{1}) return std::to_string(duration.count()) + " ms";
  return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(duration).count()) + " s";
}

std::string ErrorText(int error) { return std::generic_category().message(error); }

}  // namespace kpx::transport
