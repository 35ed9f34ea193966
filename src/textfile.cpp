#include "textfile.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <map>
#include <memory>
#include <span>
#include <utility>

#include "openfile.h"
#include "uninterrupted.h"

namespace {

std::optional<std::string> ReadToEnd(const OpenFile &file) {
  std::string content;
  char buffer[16384];
  ssize_t count = 0;
  while ((count = read(file.Descriptor(), buffer, sizeof buffer)) != 0) {
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    content.append(buffer, static_cast<size_t>(count));
  }
  return content;
}

// Gives the file to the named group if that can be done.
bool GiveToGroup(int descriptor, const char *name) {
  const group *entry = getgrnam(name);
  return entry != nullptr && fchown(descriptor, static_cast<uid_t>(-1), entry->gr_gid) == 0;
}

bool FillNewFile(const OpenFile &file, std::string_view text, const FileAccess &access) {
  const bool as_wanted = access.group == nullptr || GiveToGroup(file.Descriptor(), access.group);
  const mode_t mode = as_wanted ? access.mode : access.mode_without_group;
  return file.Write(text) && fchmod(file.Descriptor(), mode) == 0;
}

// An owner that may not be given, as on some network file systems, is no failure.
bool GiveTo(const OpenFile &file, const struct stat &like) {
  return fchown(file.Descriptor(), like.st_uid, like.st_gid) == 0 || errno == EPERM ||
         errno == EINVAL || errno == EOPNOTSUPP;
}

bool FillNewFile(const OpenFile &file, std::string_view text, const struct stat &like) {
  return GiveTo(file, like) && file.Write(text) &&
         fchmod(file.Descriptor(), like.st_mode & 07777) == 0;
}

constexpr char L_RandomPart[] = ".XXXXXX";

// The extension stays at the end: what a killed process leaves behind goes with the other files of
// its kind, and IsLeftoverName knows it.
std::string TemplateBeside(const std::string &path, size_t extension_size) {
  return path.substr(0, path.size() - extension_size) + L_RandomPart +
         path.substr(path.size() - extension_size);
}

size_t ExtensionSize(const std::string &path) {
  const std::string name = path.substr(path.rfind('/') + 1);
  return name.size() - std::min(name.rfind('.'), name.size());
}

// Makes a new file beside `path`, whose name goes to `temporary`.
int MakeFileBeside(const std::string &path, std::string &temporary) {
  const size_t extension_size = ExtensionSize(path);
  const auto make = [&] {
    temporary = TemplateBeside(path, extension_size);  // each try needs a fresh one
    return mkostemps(temporary.data(), static_cast<int>(extension_size), O_CLOEXEC);
  };
  return Uninterrupted(make);
}

// A new file beside `path` that takes its place, or goes with this record.
class Replacement {
 public:
  explicit Replacement(const std::string &path)
      : path_(path), file_(MakeFileBeside(path, temporary_)) {}
  ~Replacement() {
    if (!is_waiting_) return;
    const int error = errno;
    unlink(temporary_.c_str());
    errno = error;
  }
  Replacement(const Replacement &) = delete;
  Replacement &operator=(const Replacement &) = delete;

  bool Fill(std::string_view text, const auto &access) {
    is_waiting_ = file_.IsOpen();
    return is_waiting_ && FillNewFile(file_, text, access);
  }
  // Has the disk begin to write, which the flush then waits for.
  void StartFlush() const { sync_file_range(file_.Descriptor(), 0, 0, SYNC_FILE_RANGE_WRITE); }
  bool Flush() const { return Uninterrupted(fsync, file_.Descriptor()) == 0; }
  bool Install() {
    if (!file_.Close() || rename(temporary_.c_str(), path_.c_str()) != 0) return false;
    is_waiting_ = false;
    return true;
  }

 private:
  std::string path_;
  std::string temporary_;
  OpenFile file_;
  bool is_waiting_ = false;
};

bool ReplaceDurably(const std::string &path, std::string_view text, const auto &access) {
  Replacement file(path);
  return file.Fill(text, access) && file.Flush() && file.Install() && SyncDirectoryOf(path);
}

// The groups' numbers: each is looked up once, however many files belong to it.
class GroupNumbers {
 public:
  std::optional<gid_t> Of(const std::string &name) {
    const auto [known, is_new] = numbers_.try_emplace(name);
    const group *entry = is_new ? getgrnam(name.c_str()) : nullptr;
    if (entry != nullptr) known->second = entry->gr_gid;
    return known->second;
  }

 private:
  std::map<std::string, std::optional<gid_t>> numbers_;
};

// Whether the file that stands there needs no replacing.
bool HasContent(const FileContent &wanted, GroupNumbers &groups) {
  struct stat status = {};
  if (lstat(wanted.path.c_str(), &status) != 0 || status.st_uid != geteuid()) return false;
  if ((status.st_mode & 07777) != wanted.access.mode) return false;
  if (wanted.access.group != nullptr && groups.Of(wanted.access.group) != status.st_gid) {
    return false;
  }
  return ReadOwnFile(wanted.path) == wanted.text;
}

// Writes all of the files before it flushes the first: the file system then needs its slow step
// once for all of them.
void ReplaceTogether(std::span<const FileContent> files, std::vector<std::string> &failed) {
  std::vector<std::unique_ptr<Replacement>> written;
  for (const FileContent &file : files) {
    auto replacement = std::make_unique<Replacement>(file.path);
    if (replacement->Fill(file.text, file.access)) {
      replacement->StartFlush();
    } else {
      replacement.reset();
    }
    written.push_back(std::move(replacement));
  }
  for (size_t i = 0; i < files.size(); ++i) {
    if (written[i] == nullptr || !written[i]->Flush() || !written[i]->Install()) {
      failed.push_back(files[i].path);
    }
  }
}

// What stands at `path` and whose it is; nothing stands there in a place that has no file yet.
std::optional<std::string> ReadForAppending(const std::string &path, struct stat &like) {
  const OpenFile file(
      Uninterrupted(open, path.c_str(), O_RDWR | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.IsOpen() && errno == ENOENT) {
    like.st_uid = geteuid();
    like.st_gid = getegid();
    like.st_mode = 0644;
    return "";
  }
  if (!file.IsOpen() || fstat(file.Descriptor(), &like) != 0) return std::nullopt;
  return S_ISREG(like.st_mode) ? ReadToEnd(file) : std::nullopt;
}

}  // namespace

bool WriteWhole(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(descriptor, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    text.remove_prefix(static_cast<size_t>(count));
  }
  return true;
}

bool OverwriteFile(const std::string &path, std::string_view text, mode_t mode) {
  const bool is_new = access(path.c_str(), F_OK) != 0;
  OpenFile file(Uninterrupted(open, path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode));
  if (!file.IsOpen()) return false;
  // The caller's umask is not asked: others depend on being able to read the file.
  if (is_new && fchmod(file.Descriptor(), mode) != 0) return false;
  return file.Write(text) && file.Close();
}

NewFile WriteNewFile(const std::string &path, std::string_view text, const struct stat &like) {
  unlink(path.c_str());
  OpenFile file(Uninterrupted(open, path.c_str(),
                              O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!file.IsOpen()) return NewFile::NotMade;
  const bool written =
      FillNewFile(file, text, like) && Uninterrupted(fsync, file.Descriptor()) == 0 && file.Close();
  return written ? NewFile::Written : NewFile::NotWritten;
}

bool RenameDurably(const std::string &from, const std::string &to) {
  return rename(from.c_str(), to.c_str()) == 0 && SyncDirectoryOf(to);
}

bool AppendDurably(const std::string &path, std::string_view text, const std::string &temporary) {
  struct stat like = {};
  const std::optional<std::string> before = ReadForAppending(path, like);
  if (!before) return false;
  const NewFile made = WriteNewFile(temporary, *before + std::string(text), like);
  if (made == NewFile::Written && RenameDurably(temporary, path)) return true;
  const int error = errno;
  if (made != NewFile::NotMade) unlink(temporary.c_str());
  errno = error;
  return false;
}

bool ReplaceFile(const std::string &path, std::string_view text, const FileAccess &access) {
  Replacement file(path);
  return file.Fill(text, access) && file.Install();
}

bool ReplaceFileDurably(const std::string &path, std::string_view text, const FileAccess &access) {
  return ReplaceDurably(path, text, access);
}

bool ReplaceFileDurably(const std::string &path, std::string_view text, const struct stat &like) {
  return ReplaceDurably(path, text, like);
}

std::vector<std::string> ReplaceFilesDurably(const std::vector<FileContent> &files) {
  // So many files are open at a time.
  constexpr size_t kTogether = 64;
  std::vector<FileContent> changed;
  GroupNumbers groups;
  for (const FileContent &file : files) {
    if (!HasContent(file, groups)) changed.push_back(file);
  }
  std::vector<std::string> failed;
  for (size_t first = 0; first < changed.size(); first += kTogether) {
    const size_t count = std::min(kTogether, changed.size() - first);
    ReplaceTogether(std::span(changed).subspan(first, count), failed);
  }
  if (changed.empty() || SyncDirectoryOf(changed.front().path)) return failed;
  failed.clear();
  for (const FileContent &file : files) failed.push_back(file.path);
  return failed;
}

bool SyncDirectoryOf(const std::string &path) {
  const std::string directory = path.substr(0, path.rfind('/') + 1);
  const OpenFile file(Uninterrupted(open, directory.empty() ? "." : directory.c_str(),
                                    O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return file.IsOpen() && (Uninterrupted(fsync, file.Descriptor()) == 0 || errno == EINVAL);
}

std::optional<std::string> ReadWholeFile(const std::string &path) {
  return ReadFileStart(path, std::string::npos);
}

std::optional<std::string> ReadFileStart(const std::string &path, size_t max_bytes) {
  const int file = Uninterrupted(open, path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file == -1) return std::nullopt;
  std::string content;
  char buffer[16384];
  ssize_t count = 0;
  do {
    const size_t wanted = std::min(sizeof buffer, max_bytes - content.size());
    count = Uninterrupted(read, file, buffer, wanted);
    if (count > 0) content.append(buffer, static_cast<size_t>(count));
  } while (count > 0);
  const int error = errno;
  close(file);
  errno = error;
  if (count < 0) return std::nullopt;
  return content;
}

std::optional<std::string> ReadRegularFile(const std::string &path, bool *is_file,
                                           struct stat *opened) {
  const OpenFile file(Uninterrupted(open, path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status = {};
  *is_file = true;
  if (!file.IsOpen() || fstat(file.Descriptor(), &status) != 0) return std::nullopt;
  *is_file = S_ISREG(status.st_mode);
  if (opened != nullptr) *opened = status;
  return *is_file ? ReadToEnd(file) : std::nullopt;
}

bool IsLeftoverName(std::string_view name, std::string_view extension) {
  constexpr size_t kRandom = sizeof L_RandomPart - 2;
  if (!name.ends_with(extension)) return false;
  name.remove_suffix(extension.size());
  if (name.size() <= kRandom + 1 || name[name.size() - kRandom - 1] != '.') return false;
  name.remove_prefix(name.size() - kRandom);
  return std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
  });
}

std::optional<std::string> ReadOwnFile(const std::string &path) {
  // Non-blocking, so that a named pipe in the file's place cannot hold the program up.
  OpenFile file(Uninterrupted(open, path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status = {};
  if (!file.IsOpen() || fstat(file.Descriptor(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode)) return std::nullopt;
  if (status.st_uid != geteuid() && status.st_uid != 0) return std::nullopt;
  return ReadToEnd(file);
}
