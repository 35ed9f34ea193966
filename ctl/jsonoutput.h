// JSON on standard output.
#pragma once

#include <nlohmann/json.hpp>

namespace kpx::ctl {

// Objects keep the order in which they are filled.
using Json = nlohmann::ordered_json;

// `json` as text with line feeds; bytes that are not UTF-8 become U+FFFD.
std::string JsonText(const Json &json);

// Writes it to standard output, which takes UTF-8 whatever the locale.
void PrintJsonText(const Json &json);

}  // namespace kpx::ctl
