// The queues as they were before the last saves, for taking a save back.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "chash.h"

inline constexpr int kMostSavedStates = 10;

struct SavedState {
  int number;        // higher: later
  std::time_t time;  // when the list of the state was written last
  std::string list_path;
  std::string owners_path;  // the file kOwnersFile as it was; it need not be there
};

// The states that are kept, the latest first.
std::vector<SavedState> SavedStates();

// Keeps the list at `list_path` as it is, and kOwnersFile, unless `queues` are just what it says.
// Of more than kMostSavedStates the oldest goes. What cannot be kept is logged: a save is not to
// fail for it.
void KeepState(const std::string &list_path, const CHash *queues);

// The queues of the state, by name; null when its list cannot be read.
[[nodiscard]] Owned<CHash> QueuesOfState(const SavedState &state);
