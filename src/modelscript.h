// The beginning of an interface script, which is a copy of its model's script.
#pragma once

#include <string>
#include <string_view>

#include "clist.h"

// Whether the script was made by the spooler bridge and begins otherwise than the installed script
// of its model.
[[nodiscard]] bool HasOldModel(std::string_view script);

// Whether it begins as the script of its model in `directory`: nobody has changed it since it was
// made from that one.
[[nodiscard]] bool BeginsAsModelIn(const std::string &directory, std::string_view script);

// Gives the script of the queue `name`, which HasOldModel, the beginning that is installed,
// durably: 1; 0, reported to `errors`, when it cannot be read or written. KPXadmin's lines stay.
[[nodiscard]] int UpdateModelPart(const std::string &name, CList *errors);
