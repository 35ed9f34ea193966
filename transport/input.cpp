#include "input.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

// Also the pipe size asked for; the kernel's usual upper bound for unprivileged processes.
constexpr std::size_t kPiece = std::size_t{1} << 20;

bool WouldBlock(int error) {
  return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

// splice and sendfile report both ends' errors in one number.
bool ComesFromInput(int error) {
  return error == EIO || error == EISDIR || error == ESTALE || error == EBADF || error == EOVERFLOW;
}

}  // namespace

JobInput::JobInput(int descriptor) : descriptor_(descriptor), buffer_(kPiece) {
  struct stat status = {};
  if (fstat(descriptor_, &status) != 0) return;
  if (S_ISFIFO(status.st_mode)) {
    way_ = Way::kSplice;
    // A small pipe works as well, only slower.
    fcntl(descriptor_, F_SETPIPE_SZ, static_cast<int>(kPiece));
  } else if (S_ISREG(status.st_mode)) {
    start_ = lseek(descriptor_, 0, SEEK_CUR);
    is_file_ = start_ >= 0;
    if (is_file_) way_ = Way::kSendfile;
  }
}

bool JobInput::Ready() const {
  if (is_file_) return true;
  pollfd waited{descriptor_, POLLIN, 0};
  return poll(&waited, 1, 0) > 0;
}

MoveResult JobInput::Begin() {
  return Fill();
}

// Reads behind what buffer_ already holds.
MoveResult JobInput::Fill() {
  if (!Ready()) return {MoveEnd::kAwaitInput};
  const ssize_t count = read(descriptor_, buffer_.data() + filled_, buffer_.size() - filled_);
  if (count < 0) {
    if (WouldBlock(errno)) return {MoveEnd::kAwaitInput};
    return {MoveEnd::kInputFailed, 0, errno};
  }
  if (count == 0) return {MoveEnd::kEnd};
  filled_ += static_cast<std::size_t>(count);
  return {MoveEnd::kMoved, static_cast<std::size_t>(count)};
}

MoveResult JobInput::SendBuffer(int socket) {
  const ssize_t count = send(socket, buffer_.data() + sent_, filled_ - sent_, MSG_NOSIGNAL);
  if (count < 0) {
    if (WouldBlock(errno)) return {MoveEnd::kAwaitSocket};
    return {MoveEnd::kBroken, 0, errno};
  }
  sent_ += static_cast<std::size_t>(count);
  return {MoveEnd::kMoved, static_cast<std::size_t>(count)};
}

MoveResult JobInput::SendDirectly(int socket) {
  const ssize_t count = way_ == Way::kSplice ? splice(descriptor_, nullptr, socket, nullptr, kPiece,
                                                      SPLICE_F_MOVE | SPLICE_F_NONBLOCK)
                                             : sendfile(socket, descriptor_, nullptr, kPiece);
  if (count > 0) {
    buffer_holds_start_ = false;
    return {MoveEnd::kMoved, static_cast<std::size_t>(count)};
  }
  if (count == 0) return {MoveEnd::kEnd};
  // EAGAIN does not say which end is meant.
  if (WouldBlock(errno)) return {Ready() ? MoveEnd::kAwaitSocket : MoveEnd::kAwaitInput};
  if (errno == EINVAL || errno == ENOSYS) {
    // This file system or socket cannot do it: copy.
    way_ = Way::kCopy;
    return MoveTo(socket);
  }
  return {ComesFromInput(errno) ? MoveEnd::kInputFailed : MoveEnd::kBroken, 0, errno};
}

MoveResult JobInput::MoveTo(int socket) {
  if (sent_ < filled_) return SendBuffer(socket);
  if (filled_ == buffer_.size()) {
    if (way_ != Way::kCopy) return SendDirectly(socket);
    buffer_holds_start_ = false;
    sent_ = filled_ = 0;
  }
  const MoveResult read = Fill();
  return read.end == MoveEnd::kMoved ? SendBuffer(socket) : read;
}

bool JobInput::Rewind() {
  if (is_file_) {
    if (lseek(descriptor_, start_, SEEK_SET) < 0) return false;
    filled_ = 0;
  } else if (!buffer_holds_start_) {
    return false;
  }
  sent_ = 0;
  return true;
}
