// Replacing a file as a whole.
#pragma once

#include <string>
#include <string_view>

// Writes `contents` to a new file of mode 0644 beside `path` and renames it there, so that `path`
// is always the old file or the complete new one, on disk. Returns an empty text, or what failed;
// then nothing of the new file stays.
std::string ReplaceFile(const std::string &path, std::string_view contents);
