// Text at the edges of the process: inside, every text is UTF-8; files may hold any bytes and
// standard error takes the locale's character set.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// True when `bytes` is well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates).
[[nodiscard]] bool IsValidUtf8(std::string_view bytes);

// `bytes` read as ISO-8859-1.
std::string Utf8FromLatin1(std::string_view bytes);

// A line of a file as UTF-8: unchanged when it is valid UTF-8, else read as ISO-8859-1.
std::string DecodeLine(std::string_view bytes);

// How many bytes at the start of `bytes` are well-formed UTF-8.
size_t ValidUtf8Length(std::string_view bytes);

// How many characters the text (UTF-8) has.
[[nodiscard]] int CharacterCount(std::string_view text);

// Text that is made of several parts, made fit to be shown: what is valid UTF-8 stays, every other
// byte is read as ISO-8859-1.
std::string DisplayText(std::string_view bytes);

// The same with "?" for each control character: for names that somebody else chose.
std::string PlainText(std::string_view bytes);

// The first at most `max_bytes` bytes of `text`, without splitting a UTF-8 sequence.
std::string_view Utf8Prefix(std::string_view text, size_t max_bytes);

// `text` (UTF-8) in the locale's character set, what that lacks as PrintError has it.
std::string LocaleText(std::string_view text);

// Writes `text` (UTF-8, no line feed added) to standard error in the locale's character set and
// flushes. Of the characters that it lacks, quotation marks and no-break spaces become plain ones,
// all others "?".
void PrintError(std::string_view text);

// PrintError of `text` and a line feed.
void PrintErrorLine(std::string_view text);

// The longest line every reader takes as one, in bytes without the line feed; the rest of a longer
// one is read as the next line.
inline constexpr size_t kMaxLine = 1023;

// Hands out the lines of a buffer. A text ends at its first NUL byte, as C text does.
class LineReader {
 public:
  enum class Form { Text, Bytes };  // Text: decoded to UTF-8; Bytes: unchanged

  // `buffer` must outlive the reader.
  explicit LineReader(std::string_view buffer, Form form = Form::Text);

  // The next line without its line feed, or nothing at the end. A carriage return stays.
  [[nodiscard]] std::optional<std::string> Next();

  // The same line, lent until the next call.
  [[nodiscard]] std::optional<std::string_view> NextView();

  // The next line for the files whose lines must all end in a line feed: the last character read
  // counts as the line feed, so the file's last line loses a character when it has none.
  [[nodiscard]] std::optional<std::string> NextDroppingLast();

  // Whether the line handed out last ended in a line feed.
  [[nodiscard]] bool HadLineFeed() const { return had_line_feed_; }

  // Whether nothing is left.
  [[nodiscard]] bool AtEnd() const { return rest_.empty(); }

  // The number of the line handed out last, from 1; pieces of a long line share theirs.
  int LineNumber() const { return line_number_; }

 private:
  std::string_view rest_;
  std::string decoded_;  // the line handed out last, when it had to be decoded
  bool as_it_stands_;    // no line needs to be decoded or ended early
  bool had_line_feed_ = true;
  int line_number_ = 0;
};
