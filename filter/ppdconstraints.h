// A PPD's constraints as pairs of single options.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "ppdmodel.h"

namespace kpx::filter {

// Option 1 of feature 1 cannot be combined with option 2 of feature 2. Features with their
// asterisk.
struct OptionPair {
  std::string feature1, option1, feature2, option2;
};

struct ConstraintPairs {
  std::vector<OptionPair> pairs;  // each unordered pair once, in the PPD's order
  size_t left_out = 0;            // constraints that name something the PPD does not define
};

// A choice that a constraint leaves out means every choice but "None", "False" and "Off".
// "*CustomPageSize True" is an option of a PPD with custom page sizes, "*CustomMediaType True" of
// every PPD with media types (a queue can define its own). A pair of one choice with itself is left
// out and counted too.
ConstraintPairs ExpandConstraints(const PpdModel &model);

}  // namespace kpx::filter
