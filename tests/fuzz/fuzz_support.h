// What the fuzz targets share.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <string_view>

// The input of a fuzz target as text.
inline std::string_view InputText(const uint8_t *data, size_t size) {
  return {reinterpret_cast<const char *>(data), size};
}

// Ends the run as a crash when a rule does not hold.
inline void Require(bool holds) {
  if (!holds) std::abort();
}
