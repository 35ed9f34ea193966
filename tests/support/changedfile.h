// Changes to files of the machine that last for one test. Only inside the sandbox.
#pragma once

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "privateworld.h"
#include "temporarydirectory.h"

// For its lifetime the file holds `content`, or is missing when that is none. Its directory must
// exist.
class ChangedFile {
 public:
  ChangedFile(const std::string &path, const std::optional<std::string> &content) : path_(path) {
    RequirePrivateWorld();
    if (std::filesystem::exists(path)) before_ = ContentOf(path);
    Put(content);
  }
  ~ChangedFile() { Put(before_); }
  ChangedFile(const ChangedFile &) = delete;
  ChangedFile &operator=(const ChangedFile &) = delete;

 private:
  void Put(const std::optional<std::string> &content) {
    if (content) {
      std::ofstream(path_, std::ios::binary | std::ios::trunc) << *content;
    } else {
      std::filesystem::remove(path_);
    }
  }

  std::string path_;
  std::optional<std::string> before_;
};
