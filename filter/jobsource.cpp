#include "jobsource.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "textfile.h"

namespace kpx::filter {

namespace {

constexpr size_t kSinkBuffer = 65536;

}  // namespace

void JobSink::Write(std::string_view bytes) {
  if (error_ != 0) return;
  if (buffer_.size() + bytes.size() > kSinkBuffer) Flush();
  if (bytes.size() > kSinkBuffer) {
    if (!write_(bytes)) error_ = errno;
    return;
  }
  buffer_ += bytes;
}

void JobSink::Flush() {
  if (error_ == 0 && !buffer_.empty() && !write_(buffer_)) error_ = errno;
  buffer_.clear();
}

bool JobSource::Fill() {
  if (at_end_ || end_ - begin_ == kCapacity) return false;
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  const long count = read_(buffer_.data() + end_, kCapacity - end_);
  if (count <= 0) {
    at_end_ = true;
    if (count < 0) error_ = errno;
    return false;
  }
  end_ += static_cast<size_t>(count);
  return true;
}

std::string_view JobSource::Peek(size_t want) {
  want = std::min(want, kCapacity);
  while (end_ - begin_ < want && Fill()) {
  }
  return {buffer_.data() + begin_, std::min(want, end_ - begin_)};
}

void JobSource::Skip(size_t count) {
  if (count == 0) return;
  count = std::min(count, end_ - begin_);
  next_begins_line_ = true;
  begin_ += count;
}

// The length of the piece at the front of the buffer, which holds all that a piece can take.
size_t JobSource::PieceLength() {
  const std::string_view bytes = Peek(kLongestPiece + kUel.size());
  if (bytes.starts_with(kUel)) return kUel.size();
  for (size_t i = 0; i < std::min(bytes.size(), kLongestPiece); ++i) {
    if (bytes[i] == '\n') return i + 1;
    if (bytes[i] == '\r') return i + (bytes.substr(i + 1, 1) == "\n" ? 2 : 1);
    if (i > 0 && bytes[i] == kUel[0] && bytes.substr(i).starts_with(kUel)) return i;
  }
  return std::min(bytes.size(), kLongestPiece);
}

std::string_view JobSource::NextPiece() {
  const size_t length = PieceLength();
  const std::string_view piece(buffer_.data() + begin_, length);
  begin_ += length;
  piece_begins_line_ = next_begins_line_;
  next_begins_line_ = piece.ends_with('\n') || piece.ends_with('\r') || piece == kUel;
  return piece;
}

void JobSource::CopyBytes(size_t count, JobSink *sink) {
  while (count > 0) {
    const std::string_view bytes = Peek(1).empty() ? std::string_view() : Peek(end_ - begin_);
    if (bytes.empty()) return;
    const size_t part = std::min(count, bytes.size());
    sink->Write(bytes.substr(0, part));
    Skip(part);
    count -= part;
  }
}

void JobSource::CopyRest(JobSink *sink) {
  while (!Peek(1).empty() && sink->Error() == 0) CopyBytes(kCapacity, sink);
}

void JobSource::CopyLines(size_t count, JobSink *sink) {
  while (count > 0) {
    const std::string_view piece = NextPiece();
    if (piece.empty()) return;
    if (piece.ends_with('\n') || piece.ends_with('\r')) --count;
    sink->Write(piece);
  }
}

JobSource DescriptorSource(int fd) {
  return JobSource([fd](char *bytes, size_t size) -> long {
    for (;;) {
      const ssize_t count = read(fd, bytes, size);
      if (count >= 0 || errno != EINTR) return count;
    }
  });
}

JobSink DescriptorSink(int fd) {
  return JobSink([fd](std::string_view bytes) { return WriteWhole(fd, bytes); });
}

}  // namespace kpx::filter
