// The words that applications and the spooler put among a job's options: what the printer's
// description offers ("Duplex=DuplexNoTumble"), and attributes of the Internet Printing Protocol.
#pragma once

#include <string>
#include <vector>

#include "jobsettings.h"
#include "ppdmarking.h"
#include "queueppd.h"

namespace kpx::filter {

// Of a job's option words those that are not settings of ours ("*key=value"), without the values
// that the spooler gives every job for a printer with or without `color`: they tell no wish.
std::vector<ApplicationOption> WordsOfApplications(const std::string &options, bool color);

// Whether a word asks for something that is done to the pages of a document before the printer sees
// them: page ranges, pages a sheet, scaling, rotation.
[[nodiscard]] bool IsPageWord(const std::string &name);

// The words as settings of the queue's printer. Each word that neither the printer nor the spooler
// knows is a warning, which never shows its value; so is one for pages where `pages_too` says that
// nobody does that.
ApplicationSettings SettingsOfWords(const std::vector<ApplicationOption> &words,
                                    const QueuePpd &ppd, bool pages_too);

}  // namespace kpx::filter
