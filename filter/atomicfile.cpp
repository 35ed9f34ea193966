#include "atomicfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "writeall.h"

namespace {

std::string DirectoryOf(const std::string &path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// A directory that cannot be synchronised (some file systems) is no failure.
void SyncDirectory(const std::string &directory) {
  const int fd = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  fsync(fd);
  close(fd);
}

}  // namespace

std::string ReplaceFile(const std::string &path, std::string_view contents) {
  const std::string directory = DirectoryOf(path);
  std::string temporary = directory + "/.kpxfilter-XXXXXX";
  const int fd = mkostemp(temporary.data(), O_CLOEXEC);
  if (fd < 0) return directory + ": " + std::strerror(errno);
  bool good = WriteAll(fd, contents) && fchmod(fd, 0644) == 0 && fsync(fd) == 0;
  int error = good ? 0 : errno;
  if (close(fd) != 0 && good) {
    good = false;
    error = errno;
  }
  if (good && rename(temporary.c_str(), path.c_str()) != 0) {
    good = false;
    error = errno;
  }
  if (!good) {
    unlink(temporary.c_str());
    return path + ": " + std::strerror(error);
  }
  SyncDirectory(directory);
  return {};
}
