// The two ends of the filter: a job read in bounded pieces, printer data written.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kpx::filter {

// Printer data on its way out. After a failed write everything else is dropped.
class JobSink {
 public:
  // Writes all of the bytes, or returns false with errno set.
  using WriteFunction = std::function<bool(std::string_view)>;

  explicit JobSink(WriteFunction write) : write_(std::move(write)) {}

  void Write(std::string_view bytes);
  void Flush();

  // 0, or the errno of the write that failed.
  int Error() const { return error_; }

 private:
  WriteFunction write_;
  std::string buffer_;
  int error_ = 0;
};

// A job on its way in, through a buffer of fixed size: memory does not grow with the job.
class JobSource {
 public:
  // Like read(2), interrupted calls apart: at most `size` bytes, 0 at the end, -1 with errno.
  using ReadFunction = std::function<long(char *, size_t)>;

  explicit JobSource(ReadFunction read) : read_(std::move(read)), buffer_(kCapacity) {}

  static constexpr size_t kCapacity = 65536;
  static constexpr size_t kLongestPiece = 8192;

  // As many of the next `want` bytes as there are (at most kCapacity). Stays valid until the next
  // call of another function.
  std::string_view Peek(size_t want);

  // Drops the next `count` bytes, which Peek has shown.
  void Skip(size_t count);

  // The next line with its end (LF, CR LF or CR); of a longer line at most kLongestPiece bytes; a
  // line ends before the printer-language switch kUel, which is a piece of its own. Empty at the
  // end. Stays valid until the next call.
  std::string_view NextPiece();

  // Whether the piece handed out last begins a line.
  [[nodiscard]] bool AtLineStart() const { return piece_begins_line_; }

  // Whether what Peek shows begins a line.
  [[nodiscard]] bool NextBeginsLine() const { return next_begins_line_; }

  // Hands `count` bytes, or all that are left, to `sink`.
  void CopyBytes(size_t count, JobSink *sink);
  void CopyRest(JobSink *sink);

  // Hands those whole lines at the front to `sink` that are there and say nothing about a document:
  // they begin with neither "%" nor an end of transmission and hold no printer-language switch. The
  // front must begin a line. Returns the bytes handed on, 0 when there is no such line.
  size_t CopyPlainLines(JobSink *sink);

  // Hands whole lines to `sink`, at most `count`.
  void CopyLines(size_t count, JobSink *sink);

  // 0, or the errno of the read that failed (the job then counts as ended).
  int Error() const { return error_; }

 private:
  [[nodiscard]] bool Fill();
  size_t PieceLength();

  ReadFunction read_;
  std::vector<char> buffer_;
  size_t begin_ = 0, end_ = 0;  // the bytes read and not handed out
  bool at_end_ = false;
  bool next_begins_line_ = true;
  bool piece_begins_line_ = true;
  int error_ = 0;
};

// The sequence that makes a printer leave its present language for PJL.
inline constexpr std::string_view kUel = "\033%-12345X";

// A source that reads a descriptor, and a sink that writes to one. Neither closes it.
JobSource DescriptorSource(int fd);
JobSink DescriptorSink(int fd);

}  // namespace kpx::filter
