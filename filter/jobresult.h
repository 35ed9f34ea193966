// What became of filtering a job.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kpx::filter {

// Made by Failure() or filled with warnings, so that the one is never taken for the other. The
// texts are for standard error, without the program's name.
struct [[nodiscard]] JobResult {
  std::string failure;                // why the job cannot be printed as asked; empty when it can
  std::vector<std::string> warnings;  // what of the settings may not reach the printer

  [[nodiscard]] bool Failed() const { return !failure.empty(); }
  void Warn(std::string text) { warnings.push_back(std::move(text)); }
};

inline JobResult Failure(std::string reason) { return {std::move(reason), {}}; }

}  // namespace kpx::filter
