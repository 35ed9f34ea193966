// Telling the user which two settings cannot be combined, and putting one of them right.

#pragma once

#include "chash.h"

// 1 when a setting of `settings` (the queue's features or installable options) conflicts with what
// the queue has set, after showing which two in the error box; 0 otherwise. The box offers to set
// the one that was not chosen last back, and then says what it changed.
[[nodiscard]] int G_CheckLinearConstraints(const CHash *settings);
