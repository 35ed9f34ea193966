// What can be typed next: for the completions of the shells.
#pragma once

#include <string>
#include <vector>

#include "commands.h"

namespace kpx::ctl {

// Prints what may stand in the place of the last of the call's `words`, which is being typed and
// may be empty: a line each, a tab before a text about it. A word that ends in "=" goes on behind
// it. A line "/" stands for the names of files. What does not begin as that word does is printed
// too: which words fit is the shell's to say.
[[nodiscard]] Status Complete(std::vector<std::string> words);

}  // namespace kpx::ctl
