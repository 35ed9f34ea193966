// The words for two choices that the printer cannot combine.

#pragma once

#include <string>

#include "constraints.h"

// The catalogue's message for the two choices, filled with their display texts where the pair of
// features has one; empty for every other pair. At most 1,023 bytes.
std::string BuildConstraintMessage(const char *feature1, const char *option1,
                                   const std::string &display1, const char *feature2,
                                   const char *option2, const std::string &display2);

// That message for two of the queue's settings, with the display texts of the current printer (a
// custom paper or media by its name).
std::string ConflictMessage(const SettingsConflict &conflict);

// Why a choice conflicts with a setting of the queue, in words for every pair: the message above,
// of the feeder and a paper source always that of ("*InputSlot", "*OptionHCF"), or else one that
// names both features of the current printer and both display texts.
std::string ConflictReason(const SettingsConflict &conflict);

// The same where the display texts are at hand.
std::string ConflictReason(const char *feature1, const char *option1, const std::string &display1,
                           const char *feature2, const char *option2, const std::string &display2);
