// Presets and the current queue (optionstate.h): which ones it can use, what choosing one sets, and
// what the settings of the window are as a preset.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "conflictresolution.h"
#include "presetfile.h"

// Why the preset is not for the current queue, in the user's language: the queue lacks a feature or
// choice, what it needs is not installed, or two of its settings cannot be combined. Empty when it
// fits.
std::string WhyPresetMisfits(const Preset &preset);

// Whether that is what one of the program's own presets is called, in the user's language.
[[nodiscard]] bool IsBuiltInPresetName(const std::string &name);

// The program's own presets, named in the user's language, as the current queue has what they need;
// those that it has not are left out.
std::vector<Preset> BuiltInPresets();

struct PresetResult {
  std::string refusal;                     // why nothing was changed, in words; empty: it is set
  std::vector<ResolvedConflict> others{};  // what had to be changed beside it
};

// Sets what the preset has, as the user's latest choices; what is set beside it stays, but for what
// cannot be combined with it, which gives way as ResolveConflict has it. When that would take a
// setting of the preset's, or the preset is not for the current queue, all stays as it was.
[[nodiscard]] PresetResult ApplyPreset(const Preset &preset);

// What is set now and differs from what the queue has by itself, with `copies` copies, under a
// name. Without settings when nothing differs.
Preset PresetOfSettings(const std::string &name, int copies);

// The settings in the words of the window, "Two-sided printing: Two-sided, long edge", one each.
std::vector<std::string> PresetWords(const Preset &preset);
