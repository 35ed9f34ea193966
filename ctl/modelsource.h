// Where the PPD file of a model comes from, and what is wrong with it.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kpx::ctl {

// The text of the PPD file `path`, which may be packed by gzip; nothing when it cannot be read.
[[nodiscard]] std::optional<std::string> PpdOfFile(const std::string &path);

// The text of the PPD file that CUPS knows by `name` (one of CupsModels); nothing when it has none.
[[nodiscard]] std::optional<std::string> PpdOfCups(const std::string &name);

// A model that CUPS can make a PPD file of.
struct CupsModel {
  std::string name;   // for PpdOfCups
  std::string maker;  // and model, as CUPS shows them
};

// The models of CUPS whose name, maker or model has all of `words` in it, whatever their case;
// nothing when CUPS does not answer.
[[nodiscard]] std::optional<std::vector<CupsModel>> CupsModels(
    const std::vector<std::string> &words);

// Whether CUPS can run the driver `program` that a PPD file names ("rastertolabel", or a path); a
// kind of file ("application/pdf") that a printer takes as it is needs none.
[[nodiscard]] bool HasDriver(const std::string &program);

// The faults of the PPD text that CUPS finds and forgives, a line of English each; none where
// CUPS's checker is not installed.
std::vector<std::string> ForgivenFaults(const std::string &ppd);

}  // namespace kpx::ctl
