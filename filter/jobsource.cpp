#include "jobsource.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "textfile.h"

namespace kpx::filter {

namespace {

constexpr size_t kSinkBuffer = 65536;
constexpr size_t kWrittenAtOnce = 16384;  // larger pieces are not copied first
constexpr std::string_view kLineEnds = "\r\n";

// The whole lines at the front of `bytes`. A carriage return at the end may be half of a line end.
std::string_view WholeLines(std::string_view bytes) {
  const size_t feed = bytes.rfind('\n');
  if (feed != std::string_view::npos) return bytes.substr(0, feed + 1);
  const size_t end = bytes.substr(0, bytes.size() - 1).rfind('\r');
  return bytes.substr(0, end == std::string_view::npos ? 0 : end + 1);
}

// `lines` up to the first one that begins with `mark`.
std::string_view BeforeLineOf(char mark, std::string_view lines) {
  for (size_t at = lines.find(mark); at != std::string_view::npos; at = lines.find(mark, at + 1)) {
    if (at == 0 || kLineEnds.find(lines[at - 1]) != std::string_view::npos) {
      return lines.substr(0, at);
    }
  }
  return lines;
}

// `lines` up to the first one that holds a printer-language switch.
std::string_view BeforeSwitch(std::string_view lines) {
  const size_t at = lines.find(kUel);
  if (at == std::string_view::npos) return lines;
  const size_t end = lines.substr(0, at).find_last_of(kLineEnds);
  return lines.substr(0, end == std::string_view::npos ? 0 : end + 1);
}

}  // namespace

void JobSink::Write(std::string_view bytes) {
  if (error_ != 0) return;
  if (buffer_.size() + bytes.size() > kSinkBuffer) Flush();
  if (bytes.size() >= kWrittenAtOnce) {
    Flush();
    if (error_ == 0 && !write_(bytes)) error_ = errno;
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

size_t JobSource::CopyPlainLines(JobSink *sink) {
  if (begin_ == end_) return 0;
  std::string_view lines = WholeLines({buffer_.data() + begin_, end_ - begin_});
  lines = BeforeSwitch(BeforeLineOf('\004', BeforeLineOf('%', lines)));
  sink->Write(lines);
  begin_ += lines.size();
  return lines.size();
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
