// The rows of the lists of installable options.

#pragma once

#include <string>
#include <vector>

struct InstallableRow {
  std::string text;     // mark and display text
  std::string feature;  // identifier of the installable option ("*OptionFinisher")
  bool is_installed = false;
  std::string reason;  // why it is marked, in words; empty otherwise
};

// One row for each Boolean installable option of the current printer that is "True" or "False", one
// for each option but "None" of the others, in the dictionary's order. For added models the others'
// rows name the feature ("Duplex Unit", "Hard Disk: 20 GB") and what means nothing is left out too
// ("NotInstalled", "False"). Every row of an option has the same mark (kept on purpose): that of
// the queue's value, not of what the row would install. "*InstalledMemory" is left out.
std::vector<InstallableRow> InstallableRows();

// Sets every installable option that the work copy holds to the printer's default, in order; one
// without a default ends it there with a line in the log.
struct InstallableDefaults {
  bool is_complete = true;
  std::vector<std::string> changed;  // identifiers
};
InstallableDefaults SetInstallablesToDefaults();

// The value that installs the part of a row: "True", or the option whose display text is `display`.
// Empty when there is none.
std::string ValueThatInstalls(const std::string &feature, const std::string &display);

// The value that removes it: "False"; "None", or what means nothing, where the option has that;
// else the first other one. Empty when there is none.
std::string ValueThatRemoves(const std::string &feature, const std::string &display);
