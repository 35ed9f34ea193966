// Calls that a signal interrupts, as some network file systems let them be, are made again.
#pragma once

#include <cerrno>
#include <type_traits>
#include <utility>

// The result of `call`, which returns -1 or null and sets errno when it fails.
template <class Call, class... Arguments>
auto Uninterrupted(const Call &call, Arguments... arguments) {
  for (;;) {
    const auto result = call(arguments...);
    bool failed = false;
    if constexpr (std::is_pointer_v<decltype(result)>) {
      failed = result == nullptr;
    } else {
      failed = result == -1;
    }
    if (!failed || errno != EINTR) return result;
  }
}
