// Writing and reading whole files so that a full disk, a stranger's file or a symbolic link is
// noticed.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

// Writes all of `text`, however many calls it takes. False, with errno, when that failed.
bool WriteWhole(int descriptor, std::string_view text);

// OverwriteFile, AppendToFile and ReplaceFile return true when all of the text arrived and the
// file was closed in order; else false and errno.

// Empties or makes the file and writes `text` to it. A new file has exactly the mode `mode`. A
// symbolic link is followed: only for directories where no stranger may write.
bool OverwriteFile(const std::string &path, std::string_view text, mode_t mode);

// Appends `text`; a symbolic link is refused. A text that did not fit whole is taken back.
bool AppendToFile(const std::string &path, std::string_view text);

// How far WriteNewFile came.
enum class NewFile { Written, NotMade, NotWritten };

// Removes what stands at `path`, makes a new file there and writes `text` to it. A file that could
// not be written whole stays.
NewFile WriteNewFile(const std::string &path, std::string_view text, mode_t mode);

// Who else may use a file that ReplaceFile writes.
struct FileAccess {
  mode_t mode;
  const char *group = nullptr;    // null: the group that the directory gives
  mode_t mode_without_group = 0;  // instead of `mode` when the file cannot be given to `group`
};

// Writes a new file beside `path` and renames it into place, so that a reader finds the old text or
// the new one, never half of one. What stood at `path`, a symbolic link too, is replaced. Not
// flushed to the disk.
bool ReplaceFile(const std::string &path, std::string_view text, const FileAccess &access);

// The same, flushed to the disk before and after the renaming: whatever ends the machine, the old
// text or the new one is there. With `like`, the file has the owner, group and mode of that one.
bool ReplaceFileDurably(const std::string &path, std::string_view text, const FileAccess &access);
bool ReplaceFileDurably(const std::string &path, std::string_view text, const struct stat &like);

// The content of a regular file that the effective user or the superuser owns; nothing for any
// other, a symbolic link included.
std::optional<std::string> ReadOwnFile(const std::string &path);
