// Keeps the printer descriptions (PAF files) in step with the PPD files they are made from.
#pragma once

#include <string>

// Converts every PPD file of `ppd_directory` whose PAF file is missing or made from another PPD. A
// directory that cannot be read, or a filter that cannot be run, ends the process with status 7.
void CheckPafFiles(const std::string &ppd_directory, const std::string &paf_directory);

enum FileKind { kPpdFile = 1, kPafFile = 2 };

// 1 when the second of the pieces between the dots of `name` is exactly "ppd" (kind 1) or "paf"
// (kind 2), else 0. Kept on purpose: what follows the second piece does not matter.
[[nodiscard]] int CheckIfPpdOrPaf(const std::string &name, int kind);

// The path of the entry `name` of a directory.
std::string PathIn(const std::string &directory, const std::string &name);

// The PAF file name that belongs to a PPD file name.
std::string PafNameOfPpd(const std::string &ppd_name);

// 1 when the file `paf_path` can be read and its first "##PPD:" line names exactly `ppd_name` (a
// bare file name), else 0.
[[nodiscard]] int VerifyPafFile(const std::string &ppd_name, const std::string &paf_path);

// Runs the filter program on the two paths and waits for it; 1 whatever the filter's status. A
// filter that is not executable or a process that cannot be made ends the program with status 7.
int BuildPafFromPpd(const std::string &ppd_path, const std::string &paf_path);
