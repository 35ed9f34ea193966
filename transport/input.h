// The job's data: standard input, moved to the printer in large pieces.
//
// The first part of the job is kept in memory, so that a job that has not gone beyond it can be
// sent again even from a pipe. What follows goes by splice from a pipe and by sendfile from a
// regular file, without passing through the process; anything else is copied.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <vector>

#include "descriptor.h"

namespace kpx::transport {

enum class MoveEnd {
  kMoved,        // `count` bytes went to the socket
  kAwaitInput,   // the input has nothing at the moment
  kAwaitSocket,  // the socket takes nothing at the moment
  kEnd,          // the input is at its end and everything went to the socket
  kInputFailed,  // `error` came from reading
  kBroken,       // `error` came from the connection
};

struct [[nodiscard]] MoveResult {
  MoveEnd end;
  std::size_t count = 0;
  int error = 0;
};

class JobInput {
 public:
  // `descriptor` is lent. Data before its current position is not part of the job.
  explicit JobInput(int descriptor);

  int descriptor() const { return descriptor_; }

  // Reads the first data, once the input has some: kMoved, kEnd for an empty job, kAwaitInput or
  // kInputFailed.
  MoveResult Begin();

  // Moves what goes without waiting. `socket` is non-blocking.
  MoveResult MoveTo(int socket);

  // True when nothing more can come and everything went to the socket. Reads nothing; false while
  // the input has not reached its end.
  [[nodiscard]] bool AtEnd() const;

  // Makes the job's first byte the next one again; false when the input cannot give it again.
  [[nodiscard]] bool Rewind();

 private:
  // How data moves once buffer_ is full.
  enum class Way { kSplice, kSendfile, kCopy };

  [[nodiscard]] bool Ready() const;
  MoveResult Fill();
  MoveResult SendBuffer(int socket);
  MoveResult SpliceTo(int socket);
  MoveResult SendFileTo(int socket);
  MoveResult CopyFromNowOn(int socket);

  int descriptor_;
  Way way_ = Way::kCopy;
  bool is_file_ = false;
  off_t start_ = 0;
  std::vector<char> buffer_;
  Descriptor between_reading_;  // the pipe between the input's pipe and the socket
  Descriptor between_writing_;
  std::size_t between_ = 0;         // bytes in it
  std::size_t sent_ = 0;            // bytes of buffer_ that went to the socket
  std::size_t filled_ = 0;          // bytes of buffer_ that were read
  bool buffer_holds_start_ = true;  // nothing beyond buffer_ has been taken from the input
};

}  // namespace kpx::transport
