// A disk whose machine loses its power: an ext4 file system in a file carries the directories that
// a save changes, the scheduler's too. The file holds what the kernel has written so far, as a disk
// does; a copy of it is what is there after the power has come back. Only inside the full sandbox,
// as root, on machines that can mount files.
#pragma once

#include <string>
#include <vector>

// The directories of `disk`, a mounted file system, take their places for its lifetime; the
// scheduler is started on them, and after it what the service of this package starts.
class RunningOnDisk {
 public:
  explicit RunningOnDisk(const std::string &disk);
  ~RunningOnDisk();
  RunningOnDisk(const RunningOnDisk &) = delete;
  RunningOnDisk &operator=(const RunningOnDisk &) = delete;

 private:
  std::vector<std::string> mounted_;
};

// A file mounted as a file system for its lifetime.
class MountedImage {
 public:
  // Throws when it cannot be mounted.
  MountedImage(const std::string &image, const std::string &place);
  ~MountedImage();
  MountedImage(const MountedImage &) = delete;
  MountedImage &operator=(const MountedImage &) = delete;

  const std::string &Place() const { return place_; }

 private:
  std::string place_;
};

// An empty ext4 file system in a new file.
void MakeImage(const std::string &image);

// False when this machine mounts no files, as in most containers.
bool CanMountImages();

// Copies the directories that a save changes to `disk`, a mounted file system, and writes it out.
void CopyPlacesTo(const std::string &disk);

// What the disk has done by the time of a cut beyond what it was asked for.
enum class DiskProgress {
  AsAsked,    // nothing
  Committed,  // names, sizes and owners, as after the file system's next commit; no data
  Written     // everything
};
void LetDiskProgress(const std::string &disk, DiskProgress progress);

// Copies `image` as it stands to `copy`. Images of the same content have the same result.
size_t CutPower(const std::string &image, const std::string &copy);
