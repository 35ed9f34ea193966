// The current printer's constraints, prepared so that a question costs what its answer is made of,
// not a walk over thousands of records.

#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "clist.h"

// A choice that some constraint names, as a number from 0.
using ChoiceId = size_t;

// Prepares the answers for `constraints` (of CConstrain), which must live, unchanged, as long as
// they are asked for; null: there are none. What was prepared before is dropped.
void IndexConstraints(const CList *constraints);

// How many choices there are.
size_t ChoiceCount();

// The choices of one feature: option (lent by the constraints) and number, in the options'
// ascending byte order, as dictionaries have them.
using FeatureChoices = std::vector<std::pair<std::string_view, ChoiceId>>;

// The choices of that feature, lent until the next preparation; none when no constraint names it.
const FeatureChoices &ChoicesOf(std::string_view feature);

// The number of a choice; nothing when no constraint names it.
[[nodiscard]] std::optional<ChoiceId> FindChoice(std::string_view feature, std::string_view option);

// The choices that cannot be combined with `choice`, ascending, each once.
const std::vector<ChoiceId> &PartnersOf(ChoiceId choice);

// Whether a constraint forbids the two choices together, in either order.
[[nodiscard]] bool AreForbidden(std::string_view feature1, std::string_view option1,
                                std::string_view feature2, std::string_view option2);
