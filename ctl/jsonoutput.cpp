#include "jsonoutput.h"

#include <cstdio>

namespace kpx::ctl {

std::string JsonText(const Json &json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void PrintJsonText(const Json &json) {
  const std::string text = JsonText(json);
  std::fwrite(text.data(), 1, text.size(), stdout);
}

}  // namespace kpx::ctl
