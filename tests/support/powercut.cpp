#include "powercut.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "paths.h"
#include "savedworld.h"
#include "spooler.h"

namespace fs = std::filesystem;

namespace {

constexpr off_t kImageSize = 24L * 1024 * 1024;
constexpr char kTexts[] = "/run/kpx/texts";  // the installation's, which are on no disk that fails

const std::vector<std::string> &Places() {
  static const std::vector<std::string> places = {kDataDir, "/usr/spool", "/etc/cups",
                                                  "/var/spool/cups", "/var/cache/cups"};
  return places;
}

void Must(bool done, const std::string &what) {
  if (!done) throw std::runtime_error(what + ": errno " + std::to_string(errno));
}

void MustRun(const std::vector<std::string> &command) {
  const CommandResult result = RunProgram(command);
  if (result.status != 0) throw std::runtime_error(command[0] + ": " + result.output);
}

void Bind(const std::string &from, const std::string &to) {
  Must(mount(from.c_str(), to.c_str(), nullptr, MS_BIND, nullptr) == 0, "mount over " + to);
}

void Unmount(const std::string &place) {
  if (umount(place.c_str()) != 0) umount2(place.c_str(), MNT_DETACH);
}

// What the system runs behind each start of the scheduler.
std::vector<std::string> CommandOfService() {
  constexpr std::string_view kKey = "ExecStart=";
  std::istringstream lines(ContentOf(KPX_SERVICE_FILE));
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with(kKey)) continue;
    std::istringstream words(line.substr(kKey.size()));
    return {std::istream_iterator<std::string>(words), {}};
  }
  throw std::runtime_error("no command in " KPX_SERVICE_FILE);
}

// Where a place's directory lies on the disk.
std::string OnDisk(const std::string &disk, const std::string &place) {
  std::string name = place.substr(1);
  std::replace(name.begin(), name.end(), '/', '_');
  return disk + "/" + name;
}

}  // namespace

RunningOnDisk::RunningOnDisk(const std::string &disk) {
  KillScheduler();
  const std::string texts = std::string(kDataDir) + "/nls";
  if (!fs::exists(kTexts)) {
    fs::create_directory(kTexts);
    Bind(texts, kTexts);
  }
  for (const std::string &place : Places()) {
    Bind(OnDisk(disk, place), place);
    mounted_.push_back(place);
  }
  Bind(kTexts, texts);
  mounted_.push_back(texts);
  StartScheduler();
  MustRun(CommandOfService());
}

RunningOnDisk::~RunningOnDisk() {
  KillScheduler();
  for (auto place = mounted_.rbegin(); place != mounted_.rend(); ++place) Unmount(*place);
  StartScheduler();
}

MountedImage::MountedImage(const std::string &image, const std::string &place) : place_(place) {
  fs::create_directories(place);
  MustRun({"mount", "-o", "loop", image, place});
}

MountedImage::~MountedImage() { Unmount(place_); }

void MakeImage(const std::string &image) {
  const int file = open(image.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  Must(file >= 0 && ftruncate(file, kImageSize) == 0, image);
  close(file);
  MustRun({"/usr/sbin/mkfs.ext4", "-q", "-F", image});
}

bool CanMountImages() {
  try {
    const std::string image = "/run/kpx/trial.img";
    MakeImage(image);
    const MountedImage mounted(image, "/run/kpx/trial");
    return true;
  } catch (const std::runtime_error &) {
    return false;
  }
}

void CopyPlacesTo(const std::string &disk) {
  for (const std::string &place : Places()) {
    const std::string copy = OnDisk(disk, place);
    MustRun({"cp", "-a", place, copy});
    if (place != kDataDir) continue;
    fs::remove_all(copy + "/nls");
    fs::create_directory(copy + "/nls");
  }
  LetDiskProgress(disk, DiskProgress::Written);
}

void LetDiskProgress(const std::string &disk, DiskProgress progress) {
  if (progress == DiskProgress::AsAsked) return;
  // A flush of any file brings a commit, and with it all that has happened to the others' names.
  const std::string path = disk + "/other";
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  Must(file >= 0 && write(file, "x", 1) == 1, path);
  const int done = progress == DiskProgress::Written ? syncfs(file) : fsync(file);
  close(file);
  Must(done == 0, path);
}

size_t CutPower(const std::string &image, const std::string &copy) {
  MustRun({"cp", "--sparse=always", image, copy});
  return std::hash<std::string>()(ContentOf(copy));
}
