#include "textfile.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <utility>

namespace {

// A file descriptor that is closed when it goes.
class OpenFile {
 public:
  explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
  ~OpenFile() {
    if (descriptor_ != -1) close(descriptor_);
  }
  OpenFile(const OpenFile &) = delete;
  OpenFile &operator=(const OpenFile &) = delete;

  bool IsOpen() const { return descriptor_ != -1; }
  int Descriptor() const { return descriptor_; }

  bool Write(std::string_view text) const { return WriteWhole(descriptor_, text); }

  // Some file systems report a full disk only here.
  bool Close() { return close(std::exchange(descriptor_, -1)) == 0; }

 private:
  int descriptor_;
};

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

// Makes a new file beside `path`, has it filled and closed, and renames it into place.
bool ReplaceWith(const std::string &path, const std::function<bool(OpenFile &)> &fill) {
  // The extension stays at the end: what a killed process leaves behind goes with the other files
  // of its kind.
  const size_t dot = std::min(path.find('.', path.rfind('/') + 1), path.size());
  const std::string extension = path.substr(dot);
  std::string temporary = path.substr(0, dot) + ".XXXXXX" + extension;
  OpenFile file(mkostemps(temporary.data(), static_cast<int>(extension.size()), O_CLOEXEC));
  if (!file.IsOpen()) return false;
  if (fill(file) && rename(temporary.c_str(), path.c_str()) == 0) return true;
  const int error = errno;
  unlink(temporary.c_str());
  errno = error;
  return false;
}

// Makes renames in the directory last, on the file systems that can do more for that.
bool SyncDirectoryOf(const std::string &path) {
  const std::string directory = path.substr(0, path.rfind('/') + 1);
  const OpenFile file(
      open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return file.IsOpen() && (fsync(file.Descriptor()) == 0 || errno == EINVAL);
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
  OpenFile file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode));
  if (!file.IsOpen()) return false;
  // The caller's umask is not asked: others depend on being able to read the file.
  if (is_new && fchmod(file.Descriptor(), mode) != 0) return false;
  return file.Write(text) && file.Close();
}

bool AppendToFile(const std::string &path, std::string_view text) {
  constexpr mode_t kNewFileMode = 0666;
  OpenFile file(
      open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kNewFileMode));
  struct stat before = {};
  if (!file.IsOpen() || fstat(file.Descriptor(), &before) != 0) return false;
  if (file.Write(text)) return file.Close();
  const int error = errno;
  // The write's failure is what gets reported, whether or not taking it back works too.
  if (ftruncate(file.Descriptor(), before.st_size) != 0) errno = error;
  errno = error;
  return false;
}

NewFile WriteNewFile(const std::string &path, std::string_view text, mode_t mode) {
  unlink(path.c_str());
  OpenFile file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
  if (!file.IsOpen()) return NewFile::NotMade;
  const bool written = fchmod(file.Descriptor(), mode) == 0 && file.Write(text) && file.Close();
  return written ? NewFile::Written : NewFile::NotWritten;
}

bool ReplaceFile(const std::string &path, std::string_view text, const FileAccess &access) {
  return ReplaceWith(
      path, [&](OpenFile &file) { return FillNewFile(file, text, access) && file.Close(); });
}

bool ReplaceFileDurably(const std::string &path, std::string_view text, const FileAccess &access) {
  const auto fill = [&](OpenFile &file) {
    return FillNewFile(file, text, access) && fsync(file.Descriptor()) == 0 && file.Close();
  };
  return ReplaceWith(path, fill) && SyncDirectoryOf(path);
}

bool ReplaceFileDurably(const std::string &path, std::string_view text, const struct stat &like) {
  const auto fill = [&](OpenFile &file) {
    // An owner that cannot be given, as on some network file systems, does not cost the text.
    [[maybe_unused]] const int given = fchown(file.Descriptor(), like.st_uid, like.st_gid);
    return file.Write(text) && fchmod(file.Descriptor(), like.st_mode & 07777) == 0 &&
           fsync(file.Descriptor()) == 0 && file.Close();
  };
  return ReplaceWith(path, fill) && SyncDirectoryOf(path);
}

std::optional<std::string> ReadOwnFile(const std::string &path) {
  // Non-blocking, so that a named pipe in the file's place cannot hold the program up.
  OpenFile file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status = {};
  if (!file.IsOpen() || fstat(file.Descriptor(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode)) return std::nullopt;
  if (status.st_uid != geteuid() && status.st_uid != 0) return std::nullopt;
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
