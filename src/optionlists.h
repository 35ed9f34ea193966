// What the option lists of the properties window show: each option's text after its mark.

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "chash.h"
#include "constraints.h"

// In front of every display string: free to choose, or in conflict with the queue's settings.
inline constexpr char kFreeMark[] = "    ";
inline constexpr char kConflictMark[] = "!   ";
inline constexpr size_t kMarkLength = 4;

// One list of the properties window.
struct OptionListRow {
  std::string text;  // mark and display text
  // Why it is marked, in words; empty otherwise.
  std::string reason;
};

struct OptionList {
  std::vector<OptionListRow> rows;
  std::string current_text;    // display string of the current choice; empty: not in the list
  std::string current_option;  // identifier of the current choice
};

// Whether the list of the feature is shown for the current printer model at all: resolutions are
// left alone on models 1 and 2.
[[nodiscard]] bool IsListFilled(const char *feature);

// Whether the windows offer the feature of the current printer for the current queue.
[[nodiscard]] bool IsOfferedFeature(const char *feature);

// Whether the Defaults button of the feature's page sets it: the resolution on models 3 to 6 only.
[[nodiscard]] bool IsResetByDefaults(const char *feature);

// Replaces a stored page size or media type that neither the printer nor the queue knows by the
// printer's default, as filling the feature's list does.
void RepairCustomChoices();

// The list of one feature of `features` (main keyword to CFeature; the options in the dictionary's
// order, then the queue's own sizes or media); nothing, after one line on standard error, when
// there is no such feature. A stored page size or media type that neither the printer nor the queue
// knows is replaced in the queue's settings by the printer's default. A missing argument ends the
// process with status 5.
[[nodiscard]] std::optional<OptionList> G_GetOptionsForFeature(const CHash *features,
                                                               const char *feature);

// The same against settings that were looked at once for several lists; the snapshot is taken anew
// when a repair changes them.
[[nodiscard]] std::optional<OptionList> GetOptionsForFeature(
    const CHash *features, const char *feature, std::optional<SettingsSnapshot> &snapshot);

// The identifier of the feature's default option, lent; null when `feature` is null or unknown.
const CString *G_GetPPDDefaultOptionForFeature(const CHash *features, const char *feature);

// Writes the display string of `text` to `out`: mark 0 is free, 1 is in conflict; with any other
// value `text` is appended to what `out` holds. 1.
int G_SetStringWithConstrain(std::string_view text, std::string &out, int mark);

// A display string without its mark; empty when it is nothing but a mark or shorter.
std::string TextWithoutMark(const std::string &display_string);
