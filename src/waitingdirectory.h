// The directory that each user has in the users' directory: what jobs need that wait at the
// spooler. Only its user writes there; the spooler's group reads.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "openfile.h"

class WaitingDirectory {
 public:
  // Not open.
  WaitingDirectory() = default;

  // That of the calling user, made when it is missing. Not open, with Error(), when something else
  // is in its place.
  static WaitingDirectory MakeOwn();

  // That of the user `login`, as it is; not open when there is none or it is not that user's.
  static WaitingDirectory Of(const std::string &login);

  [[nodiscard]] bool IsOpen() const { return directory_.IsOpen(); }
  int Error() const { return error_; }  // an errno
  const std::string &Path() const { return path_; }

  // Keeps everybody else who asks away until this object goes: true. Without `wait` false when
  // somebody has it.
  [[nodiscard]] bool Lock(bool wait) const;

  // The names in it, without "." and "..", in no order.
  std::vector<std::string> Names() const;

  // Writes a file of a name of its own that begins with `prefix`, on the disk when this returns:
  // its name; empty, with errno, when that failed.
  [[nodiscard]] std::string WriteNew(const std::string &prefix, std::string_view text) const;

  // False, with errno, when it failed.
  [[nodiscard]] bool Rename(const std::string &from, const std::string &to) const;
  [[nodiscard]] bool Remove(const std::string &name) const;

 private:
  explicit WaitingDirectory(std::string path) : path_(std::move(path)) {}

  std::string path_;
  OpenFile directory_;
  int error_ = 0;
};

// The names in the open directory `descriptor`, which is rewound, as above.
std::vector<std::string> NamesInOpenDirectory(int descriptor);
