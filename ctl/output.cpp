#include "output.h"

#include <cstdio>

#include "textencoding.h"

namespace kpx::ctl {

void PrintLine(std::string_view text) {
  const std::string bytes = LocaleText(std::string(text) + "\n");
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
}

void Tell(const Call &call, std::string_view text) {
  if (!call.Has("--json")) PrintLine(text);
}

void Complain(std::string_view text) { PrintErrorLine("kpxctl: " + std::string(text)); }

}  // namespace kpx::ctl
