// Another program in the place of the installed filter; only in the sandbox.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "paths.h"
#include "privateworld.h"

// "Converts" by copying the PPD file, and lists the PPD files it was given in the file
// $KPX_CONVERTED.
inline constexpr char kCopyingFilter[] =
    "#!/bin/sh\n"
    "echo \"$2\" >>\"$KPX_CONVERTED\"\n"
    "exec cp \"$2\" \"$4\"\n";

// For its lifetime the filter is absent or what was put there.
class StandInFilter {
 public:
  StandInFilter() {
    RequirePrivateWorld();
    std::filesystem::create_directories(std::filesystem::path(kFilterProgram).parent_path());
    std::error_code none;
    std::filesystem::rename(kFilterProgram, kAside, none);
  }
  ~StandInFilter() {
    std::error_code none;
    std::filesystem::remove(kFilterProgram, none);
    std::filesystem::rename(kAside, kFilterProgram, none);
  }
  StandInFilter(const StandInFilter &) = delete;
  StandInFilter &operator=(const StandInFilter &) = delete;

  void PutText(const std::string &text, mode_t mode = 0755) {
    std::filesystem::remove(kFilterProgram);
    std::ofstream(kFilterProgram) << text;
    chmod(kFilterProgram, mode);
  }
  void PutProgram(const std::string &path) {
    std::filesystem::remove(kFilterProgram);
    std::filesystem::copy_file(path, kFilterProgram);
  }

 private:
  static constexpr char kAside[] = "/opt/orlan/bin/kpxfilter.aside";
};
