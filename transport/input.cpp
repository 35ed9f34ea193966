#include "input.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace kpx::transport {

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20;
// Measured: a smaller pipe means more waiting, a larger one no longer stays in the cache. It is
// below the kernel's usual bound for unprivileged processes.
constexpr int kPipeSize = 1 << 19;

bool WouldBlock(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == EINTR; }

// sendfile reports both ends' errors in one number.
bool ComesFromFile(int error) {
  return error == EIO || error == EISDIR || error == ESTALE || error == EBADF || error == EOVERFLOW;
}

}  // namespace

JobInput::JobInput(int descriptor) : descriptor_(descriptor), buffer_(kPiece) {
  struct stat status = {};
  if (fstat(descriptor_, &status) != 0) return;
  if (S_ISFIFO(status.st_mode)) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    between_reading_ = Descriptor(ends[0]);
    between_writing_ = Descriptor(ends[1]);
    way_ = Way::kSplice;
    // Small pipes work as well, only slower.
    fcntl(descriptor_, F_SETPIPE_SZ, kPipeSize);
    fcntl(between_writing_.get(), F_SETPIPE_SZ, kPipeSize);
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

MoveResult JobInput::Begin() { return Fill(); }

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

MoveResult JobInput::CopyFromNowOn(int socket) {
  way_ = Way::kCopy;
  return MoveTo(socket);
}

// By way of a pipe of our own: a pipe stays locked while it is spliced, and the job's writer should
// be able to go on while the socket takes data.
MoveResult JobInput::SpliceTo(int socket) {
  if (between_ == 0) {
    const ssize_t count = splice(descriptor_, nullptr, between_writing_.get(), nullptr, kPiece,
                                 SPLICE_F_MOVE | SPLICE_F_NONBLOCK);
    if (count == 0) return {MoveEnd::kEnd};
    if (count < 0) {
      if (WouldBlock(errno)) return {MoveEnd::kAwaitInput};
      if (errno == EINVAL || errno == ENOSYS) return CopyFromNowOn(socket);
      return {MoveEnd::kInputFailed, 0, errno};
    }
    buffer_holds_start_ = false;
    between_ = static_cast<std::size_t>(count);
  }
  const ssize_t count = splice(between_reading_.get(), nullptr, socket, nullptr, between_,
                               SPLICE_F_MOVE | SPLICE_F_NONBLOCK);
  if (count < 0) {
    if (WouldBlock(errno)) return {MoveEnd::kAwaitSocket};
    return {MoveEnd::kBroken, 0, errno};
  }
  between_ -= static_cast<std::size_t>(count);
  return {MoveEnd::kMoved, static_cast<std::size_t>(count)};
}

MoveResult JobInput::SendFileTo(int socket) {
  const ssize_t count = sendfile(socket, descriptor_, nullptr, kPiece);
  if (count > 0) {
    buffer_holds_start_ = false;
    return {MoveEnd::kMoved, static_cast<std::size_t>(count)};
  }
  if (count == 0) return {MoveEnd::kEnd};
  if (WouldBlock(errno)) return {MoveEnd::kAwaitSocket};
  if (errno == EINVAL || errno == ENOSYS) return CopyFromNowOn(socket);
  return {ComesFromFile(errno) ? MoveEnd::kInputFailed : MoveEnd::kBroken, 0, errno};
}

MoveResult JobInput::MoveTo(int socket) {
  if (sent_ < filled_) return SendBuffer(socket);
  if (filled_ == buffer_.size()) {
    if (way_ == Way::kSplice) return SpliceTo(socket);
    if (way_ == Way::kSendfile) return SendFileTo(socket);
    buffer_holds_start_ = false;
    sent_ = filled_ = 0;
  }
  const MoveResult read = Fill();
  return read.end == MoveEnd::kMoved ? SendBuffer(socket) : read;
}

bool JobInput::AtEnd() const {
  int left = 0;
  return sent_ == filled_ && between_ == 0 && Ready() && ioctl(descriptor_, FIONREAD, &left) == 0 &&
         left == 0;
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

}  // namespace kpx::transport
