// The options of an added model that no tab of the properties window has a row of its own for, and
// which options of other makers those rows stand for.
#pragma once

#include <string>
#include <vector>

struct CPrinter;

struct MoreOption {
  std::string group;    // its text; empty: none
  std::string feature;  // identifier ("*RIWatermark")
};

// In the order of the printer's PPD file, group by group. Empty for null and for the shipped
// models.
std::vector<MoreOption> MoreOptionsOf(const CPrinter *printer);

struct MoreOptionRow {
  std::string text;     // of a group; or mark and text of an option
  std::string choice;   // display text of the option's current choice; empty for a group
  std::string feature;  // identifier; empty for a group
  std::string reason;   // why it is marked, in words; empty otherwise
};

// One row for each group that has a text and for each option, with the queue's choices. An option
// is marked when its choice conflicts with another setting of the queue.
std::vector<MoreOptionRow> MoreOptionRows(const std::vector<MoreOption> &options);

// The feature of the current printer that a row of the tabs shows: `feature` itself, or where the
// printer lacks it the first of the names that other makers have for it and the printer has.
// `feature`, too, when there is none.
std::string ShownFeature(const char *feature);

// The names that other makers have for a row's feature, the one that is preferred first.
struct MakersName {
  const char *feature;
  const char *name;
};
const std::vector<MakersName> &MakersNames();
