// Which picture file shows an option.

#pragma once

#include <string>

// The name, without directory, of the picture of the option: made of feature, option, what the
// queue has set beside it, and the model number; the plainer names follow when the picture
// directory lacks a file, and the last one, that of the feature alone, is not looked for.
std::string G_GetPixmapNameFor(const char *feature, const std::string &option);

// The model number in the name of a PPD file, with or without directories: "vek41201.ppd" gives
// "41201". Empty, with a line in the log, when the name has no part before a dot.
std::string GetPPDNo(const std::string &name);

// Whether the picture directory holds a file of that name.
[[nodiscard]] bool IsPicture(const std::string &name);
