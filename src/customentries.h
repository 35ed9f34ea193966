// The queue's own paper sizes and media types: which names they may have, how many there may be,
// what the lists show of them.

#pragma once

#include <string>
#include <vector>

#include "chash.h"
#include "optionstate.h"

// The most characters of an entry's name.
inline constexpr int kCustomNameLength = 128;

// The feature that offers the entries beside the printer's own options.
const char *CustomFeature(CustomKind kind);

// The work copy's entries of the kind, by name; lent.
CHash *CustomEntries(CustomKind kind);

// The most entries that a queue can have: 8 sizes, 100 types.
[[nodiscard]] int CustomLimit(CustomKind kind);

enum class CustomNameFault {
  kNone,
  kEmpty,
  kTaken,      // the name of another entry
  kStandard,   // display text or identifier of one of the printer's options
  kNoSetting,  // kept on purpose: refused without a word while the queue has no such setting
};

// Whether an entry may be called `name`. `edited` is the name of the entry that is edited, which
// the entry may keep; null while one is added.
[[nodiscard]] CustomNameFault CheckCustomName(CustomKind kind, const std::string &name,
                                              const char *edited);

// The catalogue key of what to tell the user; null for kNone and kNoSetting.
const char *CustomNameMessage(CustomKind kind, CustomNameFault fault);

// Which buttons can be pressed.
struct CustomButtons {
  bool add;
  bool edit;
  bool remove;
};

// For a list of `defined` entries with `selected` of them selected. A printer without limits for
// custom sizes takes none, so that sizes can only be deleted.
CustomButtons CustomButtonsFor(CustomKind kind, int defined, int selected);

// What a list shows of an entry: the name, and of a size also its width and length in millimetres
// and in inches.
std::vector<std::string> CustomRow(CustomKind kind, const char *name);

// Files an entry under `name`. The paper's measures are in pels; what is below 1 counts as 1,
// because a size of 0 would make the queue list unreadable.
void AddCustomPaper(const std::string &name, double width, double length);
void AddCustomMedia(const std::string &name);
