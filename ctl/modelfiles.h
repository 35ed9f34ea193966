// The files of added models: written, removed, made anew.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "addedmodels.h"

namespace kpx::ctl {

// Writes the files of the model from its PPD text, for every language directory of the
// installation, and its row last; all of it durably. The path that could not be written, or an
// empty text when all is done. May be repeated.
[[nodiscard]] std::string WriteModelFiles(const AddedModel &model, const std::string &ppd);

// Removes the model, its row first. The path that could not be removed, or an empty text.
[[nodiscard]] std::string RemoveModelFiles(const std::string &id);

// Removes what interrupted calls have left: files of identifiers that have no row.
void RemoveLeftModelFiles();

// The queues that use the model: those of the list of queues and those of the spooler; nothing when
// the list is there and cannot be read.
[[nodiscard]] std::optional<std::vector<std::string>> QueuesOfModel(const AddedModel &model);

// The names of all printers that the installation describes itself.
std::vector<std::string> ShippedPrinterNames();

}  // namespace kpx::ctl
