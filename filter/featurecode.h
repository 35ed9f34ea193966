// The code that a job's settings put into the job.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jobsettings.h"

namespace kpx::filter {

// The code of one chosen option.
struct FeatureCode {
  std::string keyword, choice;  // without asterisk; for a custom value "Custom<keyword>", "True"
  std::string code;             // never empty
  double order = 0;
};

// The code for one section of the job, ordered by *OrderDependency (equal numbers: as in the PPD).
// Features that may be anywhere belong to the document's setup, and so do their order numbers.
//  - *PageSize and *PageRegion set the same thing: of the two only one is used, *PageRegion where
//    the input slot in force asks for it (*RequiresPageRegion) or paper is fed by hand.
//  - *InputSlot says nothing while paper is fed by hand (*ManualFeed).
//  - A custom paper size or media type uses the PPD's custom code, or sets the page device itself.
std::vector<FeatureCode> CodeOfSection(const JobSettings &settings, PpdSection section);

// PostScript that runs one feature's code, marked as the document conventions ask; an error in it
// leaves the job and its stacks as they were.
std::string GuardedFeature(const FeatureCode &code);

// GuardedFeature of every element.
std::string GuardedFeatures(const std::vector<FeatureCode> &codes);

// The code of "*keyword choice" for a job that asks for a feature by itself; empty when the printer
// has no such option or it needs no code.
std::string IncludedFeature(const PpdModel &model, std::string_view keyword,
                            std::string_view choice);

// PostScript that sets the number of copies; empty for one copy, and where the PPD has a feature of
// its own for copies (JclCopies).
std::string CopiesCode(const JobSettings &settings);

// What somebody chose for a job, where programs put the contrary into it without being asked: one
// copy, one side, not collated.
struct KeptChoice {
  std::string what;     // for messages: "the number of copies"
  std::string mention;  // a document that sets it holds this
  std::string code;     // chooses it again, unless the document has set something else than that
};
std::vector<KeptChoice> KeptChoices(const JobSettings &settings);

// The job-control code of the PPD for the number of copies; empty where it has none or one copy is
// asked for.
std::string JclCopies(const JobSettings &settings);

// The size of the paper in force and its printable area.
PpdPageSize PageInForce(const JobSettings &settings);

}  // namespace kpx::filter
