// Setting one of two conflicting options back, so that the user's latest choice stands.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "constraints.h"

// Remembers that the user has just chosen a value of the feature; choices made earlier rank below.
void NoteUserChoice(const char *feature);

// Forgets all of them; for a newly opened window.
void ForgetUserChoices();

// The features so noted, the one chosen last at the end; and noting them instead of those that are,
// for what was tried and given up.
std::vector<std::string> UserChoices();
void SetUserChoices(std::vector<std::string> choices);

struct ResolvedConflict {
  std::string feature;
  std::string option;  // the feature's new value
  bool operator==(const ResolvedConflict &other) const = default;
};

// Whether ResolveConflict may find anything: not for two installable options in the print tool,
// whose user cannot say what is installed.
[[nodiscard]] bool MayResolve(const SettingsConflict &conflict);

// Sets one of the two settings to a value that conflicts with nothing the queue has set: the
// printer's default when that fits, else "None", else the first of the feature's options that fits.
// Beside an installable option it is the other setting that gives way, so that installed hardware
// is changed only where two installable options conflict, in the administration. Of two of a kind
// it is the one that was not chosen last. When no value of it fits, the other one gives way.
// Nothing, with the settings as they were, when none fits.
[[nodiscard]] std::optional<ResolvedConflict> ResolveConflict(const SettingsConflict &conflict);

// The same, and when no value fits, one of the two gets the printer's default, if that goes with
// the other: what it conflicts with elsewhere is the next conflict to settle. Each such step takes
// a setting back to its default, so that settling again and again comes to an end.
[[nodiscard]] std::optional<ResolvedConflict> SettleConflict(const SettingsConflict &conflict);
