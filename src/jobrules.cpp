#include "jobrules.h"

#include <algorithm>

#include "settingkeys.h"

namespace {

constexpr std::string_view L_HoldForPin = "HoldJobUntilYouEnterPIN";
constexpr std::string_view L_Archive = "ArchiveToDocumentServer";

constexpr std::string_view L_PaperSeparator = "''";
constexpr std::string_view L_MediaSeparator = "::";

std::string Joined(std::string_view first, std::string_view separator, std::string_view second) {
  return std::string(first).append(separator).append(second);
}

}  // namespace

bool IsPin(std::string_view text) {
  return text.size() == kPinLength &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool TakesPin(std::string_view delivery) {
  return delivery == L_HoldForPin || delivery == L_Archive;
}

bool NeedsPin(std::string_view delivery) { return delivery == L_HoldForPin; }

const char *KeyPutOutBy(std::string_view key) {
  if (key == kBookletKey) return kNupKey;
  return key == kNupKey ? kBookletKey : nullptr;
}

std::string CustomPaperValue(const CustomPaperLine &paper) {
  return Joined(Joined(paper.name, L_PaperSeparator, paper.width), L_PaperSeparator, paper.length);
}

std::optional<CustomPaperLine> CustomPaperOf(std::string_view value) {
  // From the end: a name may hold what separates the parts.
  const size_t last = value.rfind(L_PaperSeparator);
  if (last == std::string_view::npos || last < L_PaperSeparator.size()) return std::nullopt;
  const size_t first = value.rfind(L_PaperSeparator, last - L_PaperSeparator.size());
  if (first == std::string_view::npos) return std::nullopt;
  const size_t width = first + L_PaperSeparator.size();
  return CustomPaperLine{std::string(value.substr(0, first)),
                         std::string(value.substr(width, last - width)),
                         std::string(value.substr(last + L_PaperSeparator.size()))};
}

std::string CustomMediaValue(const CustomMediaLine &media) {
  return Joined(media.name, L_MediaSeparator, media.shown_name);
}

std::optional<CustomMediaLine> CustomMediaOf(std::string_view value) {
  const size_t separator = value.find(L_MediaSeparator);
  if (separator == std::string_view::npos) return std::nullopt;
  return CustomMediaLine{std::string(value.substr(0, separator)),
                         std::string(value.substr(separator + L_MediaSeparator.size()))};
}
