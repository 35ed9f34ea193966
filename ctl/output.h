// What kpxctl says.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "words.h"

namespace kpx::ctl {

// Writes `text` (UTF-8) and a line feed to standard output, in the locale's character set.
void PrintLine(std::string_view text);

// Writes a text about what is done: to standard output, or nowhere when the call asks for JSON.
void Tell(const Call &call, std::string_view text);

// Writes a fault to standard error.
void Complain(std::string_view text);

// The words between commas.
std::string JoinedWords(const std::vector<std::string> &words);

// Writes rows of cells with their columns below each other.
void PrintTable(const std::vector<std::vector<std::string>> &rows);

}  // namespace kpx::ctl
