// The presets of job settings that a user keeps by name: what one may hold, and their file.
//
// The file "presets" of the user's personal files has a line "[NAME]" for each preset and behind it
// a line "KEY=VALUE" for each setting, as option files have them. Empty lines and those that begin
// with "##" are skipped. A file that is not like that is never written over.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

inline constexpr char kPresetsFile[] = "presets";
inline constexpr int kPresetNameLength = 40;  // characters
inline constexpr size_t kMostPresets = 100;
inline constexpr size_t kMostPresetSettings = 200;
inline constexpr size_t kLargestPresetsFile = size_t{1} << 20;  // bytes

struct Preset {
  std::string name;
  std::map<std::string, std::string> settings;  // "*Duplex" to "DuplexNoTumble"
  bool operator==(const Preset &other) const = default;
};

// Whether a preset may have the name: 1 to kPresetNameLength characters of UTF-8, no control
// character, no blank at either end.
[[nodiscard]] bool IsPresetName(std::string_view name);

// Whether a preset may hold the setting of that key. Those that say who prints, and to whom, are
// left out: PIN, names, e-mail; so is what belongs to the texts of one kind of queue.
[[nodiscard]] bool IsPresetKey(std::string_view key);

// The preset of that name; null when there is none.
const Preset *FindPreset(const std::vector<Preset> &presets, std::string_view name);

// Adds the preset or replaces the one of its name.
void PutPreset(std::vector<Preset> &presets, const Preset &preset);

// Why a file cannot be read as presets.
struct PresetFault {
  int line;            // from 1
  std::string reason;  // in the user's language
};

// The presets of a file's text, in their order. Any bytes may be given.
[[nodiscard]] std::variant<std::vector<Preset>, PresetFault> ReadPresets(std::string_view text);

// The text of a file that ReadPresets reads as these.
std::string PresetsText(const std::vector<Preset> &presets);

struct KeptPresets {
  std::vector<Preset> presets;
  std::string
      fault;  // why the user's file cannot be read, in words; empty: it can, or there is none
};
KeptPresets ReadKeptPresets();

// Reads the user's presets, has `change` change them and writes them, flushed to the disk, while no
// other program does. `change` returns why it cannot, in words, or nothing. The reason why they are
// as they were, in words; empty when they are changed.
[[nodiscard]] std::string ChangeKeptPresets(
    const std::function<std::string(std::vector<Preset> &presets)> &change);
