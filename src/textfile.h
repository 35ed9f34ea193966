// Writing and reading whole files so that a full disk, a stranger's file or a symbolic link is
// noticed.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Writes all of `text`, however many calls it takes. False, with errno, when that failed.
[[nodiscard]] bool WriteWhole(int descriptor, std::string_view text);

// OverwriteFile and ReplaceFile return true when all of the text arrived and the file was closed in
// order; else false and errno.

// Empties or makes the file and writes `text` to it. A new file has exactly the mode `mode`. A
// symbolic link is followed: only for directories where no stranger may write.
[[nodiscard]] bool OverwriteFile(const std::string &path, std::string_view text, mode_t mode);

// How far WriteNewFile came.
enum class NewFile { Written, NotMade, NotWritten };

// Removes what is at `path`, makes a new file there with the owner, group and mode of `like`,
// writes `text` to it and flushes it to the disk. A file that could not be written whole stays.
[[nodiscard]] NewFile WriteNewFile(const std::string &path, std::string_view text,
                                   const struct stat &like);

// Renames `from` to `to`, in one directory, and flushes the directory to the disk: true; false,
// with errno, when one of the two failed.
[[nodiscard]] bool RenameDurably(const std::string &from, const std::string &to);

// Appends `text` to the script at `path`, or makes it: a whole new file, written to `temporary`
// beside it with the script's owner, group and mode and flushed to the disk, takes its place. True;
// false, with errno, and the script as it was, when that failed or the script cannot be opened for
// appending, as a symbolic link cannot.
[[nodiscard]] bool AppendDurably(const std::string &path, std::string_view text,
                                 const std::string &temporary);

// Who else may use a file that ReplaceFile writes.
struct FileAccess {
  mode_t mode;
  const char *group = nullptr;    // null: the group that the directory gives
  mode_t mode_without_group = 0;  // instead of `mode` when the file cannot be given to `group`
};

// Writes a new file beside `path` and renames it into place, so that a reader finds the old text or
// the new one, never half of one. What stood at `path`, a symbolic link too, is replaced. Not
// flushed to the disk.
[[nodiscard]] bool ReplaceFile(const std::string &path, std::string_view text,
                               const FileAccess &access);

// The same, flushed to the disk before and after the renaming: whatever ends the machine, the old
// text or the new one is there. With `like`, the file has the owner, group and mode of that one.
[[nodiscard]] bool ReplaceFileDurably(const std::string &path, std::string_view text,
                                      const FileAccess &access);
[[nodiscard]] bool ReplaceFileDurably(const std::string &path, std::string_view text,
                                      const struct stat &like);

// A file of ReplaceFilesDurably.
struct FileContent {
  std::string path;
  std::string text;
  FileAccess access;
};

// ReplaceFileDurably for many files of one directory, faster than one after the other. A file that
// holds its text already and may be used by the same is left as it is. The paths of those that
// could not be written; all of them when the directory could not be flushed.
std::vector<std::string> ReplaceFilesDurably(const std::vector<FileContent> &files);

// Flushes the directory that holds `path` to the disk, so that what was renamed or removed in it
// stays so. False, with errno, when that failed; true where a file system has no such thing.
[[nodiscard]] bool SyncDirectoryOf(const std::string &path);

// The whole content of a readable regular file or pipe; nothing (and errno) when it cannot be
// opened or read, a directory included.
[[nodiscard]] std::optional<std::string> ReadWholeFile(const std::string &path);

// The same of its first at most `max_bytes` bytes.
[[nodiscard]] std::optional<std::string> ReadFileStart(const std::string &path, size_t max_bytes);

// The content of a regular file; nothing, with errno, when it cannot be read. `is_file` says
// whether it is a regular file; anything else is not read: a named pipe would hold the program up.
// `opened`, which may be null, is what the file was when it was opened, if it could be.
[[nodiscard]] std::optional<std::string> ReadRegularFile(const std::string &path, bool *is_file,
                                                         struct stat *opened = nullptr);

// Whether `name` is that of a new file that a killed process has left beside one whose name ends in
// `extension`: "<beginning>.<six letters or digits><extension>".
[[nodiscard]] bool IsLeftoverName(std::string_view name, std::string_view extension);

// The content of a regular file that the effective user or the superuser owns; nothing for any
// other, a symbolic link included.
[[nodiscard]] std::optional<std::string> ReadOwnFile(const std::string &path);
