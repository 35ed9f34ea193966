// What the windows store for a job and kpxfilter reads again: the rules that both follow.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// The value of kJobNameKey that leaves the name to the program that prints.
inline constexpr char kApplicationsJobName[] = "UseAppSetting";

// A PIN has this many digits.
inline constexpr size_t kPinLength = 4;

// Whether `text` is kPinLength digits.
[[nodiscard]] bool IsPin(std::string_view text);

// Whether a PIN counts with this delivery (the option's identifier): only two of them take one.
[[nodiscard]] bool TakesPin(std::string_view delivery);

// Whether it cannot do without one: the job waits at the printer until the PIN is typed.
[[nodiscard]] bool NeedsPin(std::string_view delivery);

// The setting that `key` puts out when it is set after it: a booklet and several pages a sheet
// exclude each other. Null for all other keys.
const char *KeyPutOutBy(std::string_view key);

// The value of a line kCustomPaperKey; width and length are numbers of points.
struct CustomPaperLine {
  std::string name, width, length;
};
std::string CustomPaperValue(const CustomPaperLine &paper);
// Nothing when it has not these three parts, whatever they are.
[[nodiscard]] std::optional<CustomPaperLine> CustomPaperOf(std::string_view value);

// The value of a line kCustomMediaKey; users see the shown name.
struct CustomMediaLine {
  std::string name, shown_name;
};
std::string CustomMediaValue(const CustomMediaLine &media);
// Nothing when it has not these two parts.
[[nodiscard]] std::optional<CustomMediaLine> CustomMediaOf(std::string_view value);
