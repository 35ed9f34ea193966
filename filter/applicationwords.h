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

// Who does what words ask to be done to pages.
enum class PageWords {
  kConverter,  // the one that lays the job's document out, which gets the words
  kText,       // the layout of a text, for those that textwords.h knows, and the settings
  kDocument,   // the settings and the selection of pages, for those that these know
  kNobody
};

// The words as settings of the queue's printer and of the job's pages. Each word that neither the
// printer nor the spooler knows is a warning, which never shows its value; so is one for pages that
// nobody does, but for one that selects pages: the job fails for that.
ApplicationSettings SettingsOfWords(const std::vector<ApplicationOption> &words,
                                    const QueuePpd &ppd, PageWords pages);

}  // namespace kpx::filter
