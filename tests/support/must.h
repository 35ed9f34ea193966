// What a test prepares has to succeed.
#pragma once

#include <stdexcept>
#include <string>

#include "debug.h"

// Throws, which fails the test, when an operation of a preparation tells a failure: 0 or false.
inline void Must(int result, const SourceLocation place = SourceLocation::current()) {
  if (result != 0) return;
  throw std::logic_error(place.file_name() + (":" + std::to_string(place.line())) +
                         ": the preparation failed");
}
