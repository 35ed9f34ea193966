// What a user's choice in an option list does to the queue's settings.

#pragma once

#include <optional>
#include <string>

#include "multipleup.h"

struct OptionChange {
  std::string option;  // identifier chosen, or the name of one of the queue's own sizes or media
  bool is_custom = false;
  std::optional<OrderBoxes> order_boxes;  // the boxes with page orders that show then; none: as now
};

// Stores the choice that `display_string` (mark and display text, as the list shows it) stands for
// as the queue's value of `feature`, and with it the page order that a change of the orientation
// asks for. A page size or media type that no longer exists becomes the printer's default. Nothing
// when nothing changes: a text of no more than a mark, one that no option has, the current choice.
[[nodiscard]] std::optional<OptionChange> ChangeOption(const char *feature,
                                                       const std::string &display_string);

// The same for a choice by its identifier, or by the name of one of the queue's own sizes or media.
// Nothing, too, when the feature has no such choice.
[[nodiscard]] std::optional<OptionChange> ChooseOption(const char *feature,
                                                       const std::string &option);

// The picture beside a list: the one of custom sizes or media, or that of the option.
std::string PictureOfChoice(const char *feature, const std::string &option, bool is_custom);

// Whether a choice of the feature changes which installable options are in conflict.
[[nodiscard]] bool ChangesInstallableMarks(const char *feature);
