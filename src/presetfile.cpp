#include "presetfile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>

#include "cmessages.h"
#include "copies.h"
#include "debug.h"
#include "personalfiles.h"
#include "settingkeys.h"
#include "textencoding.h"
#include "textline.h"
#include "textscan.h"

namespace {

constexpr std::array L_LeftOut = {kPinKey,          kUserNameKey,     kJobNameKey,
                                  kEmailAddressKey, kEmailMessageKey, kNotificationKey,
                                  kPageRegionKey,   kFontNameKey,     kFontSizeKey,
                                  kCustomPaperKey,  kCustomMediaKey,  kCustomPageSizeFeature};
constexpr std::string_view L_LeftOutTexts = "*Text";
constexpr std::array<std::string_view, 6> L_PagesASheet = {"1", "2", "4", "6", "9", "16"};
constexpr std::array<std::string_view, 4> L_PageOrders = {"Left", "Right", "Down", "Back"};
constexpr size_t L_OrdersOfTwo = 2;  // the first of them go with two pages a sheet too

bool HasControlCharacters(std::string_view text) {
  return std::any_of(text.begin(), text.end(), IsControlCharacter);
}

bool IsNumberOfCopies(std::string_view text) {
  int copies = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), copies);
  return read.ec == std::errc() && read.ptr == text.data() + text.size() && copies >= 1 &&
         copies <= kMostCopies;
}

template <size_t N>
bool IsAmong(const std::array<std::string_view, N> &values, std::string_view value,
             size_t count = N) {
  return std::find(values.begin(), values.begin() + count, value) != values.begin() + count;
}

// Whether the value is one that the key can have on any printer.
bool IsValue(std::string_view key, std::string_view value) {
  if (value.empty() || HasControlCharacters(value)) return false;
  if (key == kCopiesKey) return IsNumberOfCopies(value);
  if (key == kNupKey) return IsAmong(L_PagesASheet, value);
  if (key == kNupOrderKey) return IsAmong(L_PageOrders, value);
  return key != kBookletKey || value == "0" || value == "1";
}

std::string ValueOf(const Preset &preset, const char *key) {
  const auto place = preset.settings.find(key);
  return place == preset.settings.end() ? "" : place->second;
}

// What the settings of pages a sheet say together.
bool ArePagesClear(const Preset &preset) {
  const std::string pages = ValueOf(preset, kNupKey);
  const std::string order = ValueOf(preset, kNupOrderKey);
  if (ValueOf(preset, kBookletKey) == "1" && !(pages.empty() && order.empty())) return false;
  if (order.empty() || pages == "4") return true;
  return pages == "2" && IsAmong(L_PageOrders, order, L_OrdersOfTwo);
}

// Reads one file.
class PresetsReader {
 public:
  explicit PresetsReader(std::string_view text) : lines_(text) {}

  std::variant<std::vector<Preset>, PresetFault> Read() {
    for (std::optional<std::string> line = lines_.Next(); line; line = lines_.Next()) {
      if (!lines_.HadLineFeed() && !lines_.AtEnd()) return Fault("PRESET_LINE_LONG", "");
      const std::string reason = IsCommentOrEmpty(*line)  ? ""
                                 : line->starts_with('[') ? TakeName(*line)
                                                          : TakeSetting(*line);
      if (!reason.empty()) return PresetFault{lines_.LineNumber(), reason};
    }
    const std::string reason = ReasonOfLast();
    if (!reason.empty()) return PresetFault{lines_.LineNumber(), reason};
    return std::move(presets_);
  }

 private:
  PresetFault Fault(const char *key, const std::string &what) const {
    return {lines_.LineNumber(), G_Message(key, {what})};
  }

  // Why the preset that ends here is not one; empty when it is.
  [[nodiscard]] std::string ReasonOfLast() const {
    if (presets_.empty()) return "";
    const Preset &last = presets_.back();
    if (last.settings.empty()) return G_Message("PRESET_EMPTY", {last.name});
    return ArePagesClear(last) ? "" : G_Message("PRESET_PAGES_BAD", {last.name});
  }

  [[nodiscard]] std::string TakeName(const std::string &line) {
    std::string reason = ReasonOfLast();
    if (!reason.empty()) return reason;
    const std::string name =
        line.size() < 2 || !line.ends_with(']') ? "" : line.substr(1, line.size() - 2);
    if (!IsPresetName(name))
      return G_Message("PRESET_NAME_BAD", {PlainText(line), kPresetNameLength});
    if (FindPreset(presets_, name) != nullptr) return G_Message("PRESET_NAME_TWICE", {name});
    if (presets_.size() == kMostPresets) {
      return G_Message("PRESET_TOO_MANY", {static_cast<int>(kMostPresets)});
    }
    presets_.push_back({name, {}});
    return "";
  }

  [[nodiscard]] std::string TakeSetting(const std::string &line) {
    const size_t sign = line.find('=');
    if (presets_.empty() || sign == std::string::npos || !line.starts_with('*')) {
      return G_Message("PRESET_LINE_BAD", {PlainText(line)});
    }
    const std::string key = line.substr(0, sign);
    const std::string value = line.substr(sign + 1);
    if (!IsPresetKey(key)) return G_Message("PRESET_KEY_BAD", {PlainText(key)});
    if (!IsValue(key, value)) return G_Message("PRESET_VALUE_BAD", {PlainText(value), key});
    auto &settings = presets_.back().settings;
    if (settings.size() == kMostPresetSettings || !settings.emplace(key, value).second) {
      return G_Message("PRESET_LINE_BAD", {line});
    }
    return "";
  }

  LineReader lines_;
  std::vector<Preset> presets_;
};

// "LINE: REASON" in words.
std::string WordsOf(const PresetFault &fault) {
  return G_Message("PRESETS_LINE", {PersonalFilePath(kPresetsFile), fault.line, fault.reason});
}

}  // namespace

bool IsPresetName(std::string_view name) {
  if (name.empty() || !IsValidUtf8(name) || CharacterCount(name) > kPresetNameLength) return false;
  return !HasControlCharacters(name) && name.front() != ' ' && name.back() != ' ';
}

bool IsPresetKey(std::string_view key) {
  if (key.size() < 2 || key.front() != '*' || key.starts_with(L_LeftOutTexts)) return false;
  if (std::find(L_LeftOut.begin(), L_LeftOut.end(), key) != L_LeftOut.end()) return false;
  return std::none_of(key.begin(), key.end(), [](char c) { return c <= ' ' || c == 0x7F; });
}

const Preset *FindPreset(const std::vector<Preset> &presets, std::string_view name) {
  const auto place = std::find_if(presets.begin(), presets.end(),
                                  [&](const Preset &preset) { return preset.name == name; });
  return place == presets.end() ? nullptr : &*place;
}

void PutPreset(std::vector<Preset> &presets, const Preset &preset) {
  for (Preset &other : presets) {
    if (other.name == preset.name) {
      other = preset;
      return;
    }
  }
  presets.push_back(preset);
}

std::variant<std::vector<Preset>, PresetFault> ReadPresets(std::string_view text) {
  const LogScope log("ReadPresets");
  if (text.find('\0') != std::string_view::npos) {
    const auto line = std::count(text.begin(), text.begin() + text.find('\0'), '\n') + 1;
    return PresetFault{static_cast<int>(line), G_Message("PRESET_LINE_BAD", {"NUL"})};
  }
  return PresetsReader(text).Read();
}

std::string PresetsText(const std::vector<Preset> &presets) {
  std::string text;
  AppendTextLine(text, "## KPX presets: [NAME], then the settings as in option files");
  for (const Preset &preset : presets) {
    AppendTextLine(text, "");
    AppendTextLine(text, "[" + preset.name + "]");
    for (const auto &[key, value] : preset.settings) AppendTextLine(text, key + "=" + value);
  }
  return text;
}

KeptPresets ReadKeptPresets() {
  const LogScope log("ReadKeptPresets");
  std::string text;
  switch (ReadPersonalFile(kPresetsFile, kLargestPresetsFile, &text)) {
    case PersonalFile::Missing:
      return {};
    case PersonalFile::Unreadable:
      return {{}, G_Message("PRESETS_UNREADABLE", {PersonalFilePath(kPresetsFile)})};
    case PersonalFile::Read:
      break;
  }
  std::variant<std::vector<Preset>, PresetFault> read = ReadPresets(text);
  if (const auto *fault = std::get_if<PresetFault>(&read)) return {{}, WordsOf(*fault)};
  return {std::move(std::get<std::vector<Preset>>(read)), ""};
}

std::string ChangeKeptPresets(
    const std::function<std::string(std::vector<Preset> &presets)> &change) {
  const LogScope log("ChangeKeptPresets");
  const auto not_written = [] {
    return G_Message("PRESETS_NOT_WRITTEN",
                     {PersonalFilePath(kPresetsFile), DecodeLine(std::strerror(errno))});
  };
  const PersonalFilesLock lock;
  if (!lock.IsHeld()) return not_written();
  KeptPresets kept = ReadKeptPresets();
  if (!kept.fault.empty()) return kept.fault;
  std::string reason = change(kept.presets);
  if (!reason.empty()) return reason;
  if (kept.presets.size() > kMostPresets) {
    return G_Message("PRESET_TOO_MANY", {static_cast<int>(kMostPresets)});
  }
  for (const Preset &preset : kept.presets) {
    if (!IsPresetName(preset.name)) {
      return G_Message("PRESET_NAME_BAD", {PlainText(preset.name), kPresetNameLength});
    }
  }
  const std::string text = PresetsText(kept.presets);
  // What could not be read again would be lost.
  const auto again = ReadPresets(text);
  if (const auto *fault = std::get_if<PresetFault>(&again)) return WordsOf(*fault);
  if (std::get<std::vector<Preset>>(again) != kept.presets) return G_Translate("PRESET_LINE_LONG");
  return WritePersonalFileDurably(kPresetsFile, text) ? "" : not_written();
}
