// What the bridge's commands say on standard error.
#pragma once

#include <cstdio>
#include <string>

namespace kpx::spooler {

// How the commands end.
inline constexpr int kEndDone = 0;
inline constexpr int kEndFailed = 1;
inline constexpr int kEndWrongUsage = 2;

// Writes "<command>: <text>". The bytes of names stay as they are.
inline void Say(const std::string &command, const std::string &text) {
  std::fputs((command + ": " + text + "\n").c_str(), stderr);
}

}  // namespace kpx::spooler
