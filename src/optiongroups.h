// The order and the groups of a model's options, as comments in its PAF file.
#pragma once

#include <string>

// What such comments begin with; a group's text or an option's keyword, without its asterisk,
// follows.
inline const std::string kGroupComment = "## group ";
inline const std::string kOptionComment = "## option ";
