// A file descriptor that is closed when it goes.
#pragma once

#include <unistd.h>

#include <string_view>
#include <utility>

#include "textfile.h"

class OpenFile {
 public:
  // Takes `descriptor` over; -1 (what a failed open returns) means no file.
  explicit OpenFile(int descriptor = -1) : descriptor_(descriptor) {}
  ~OpenFile() {
    if (descriptor_ != -1) close(descriptor_);
  }
  OpenFile(OpenFile &&other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  OpenFile &operator=(OpenFile &&other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }

  [[nodiscard]] bool IsOpen() const { return descriptor_ != -1; }
  int Descriptor() const { return descriptor_; }

  [[nodiscard]] bool Write(std::string_view text) const { return WriteWhole(descriptor_, text); }

  // Some file systems report a full disk only here.
  [[nodiscard]] bool Close() { return close(std::exchange(descriptor_, -1)) == 0; }

 private:
  int descriptor_;
};
