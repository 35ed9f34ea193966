// The command line of kpxfilter.
#pragma once

#include <string>
#include <vector>

namespace kpx::filter {

enum class FilterMode { None, Convert, QueuePpd, Filter };

struct FilterArguments {
  FilterMode mode = FilterMode::None;
  std::string options;         // the spooler's option words
  std::string title;           // -J: the job's title
  std::string event;           // -e: the title to be used in notifications about the job
  std::string user;            // -L: the login name of the job's owner
  std::string request;         // from the environment (kRequestVariable), may be empty
  std::string files;           // the same (kFilesVariable)
  std::string type;            // --type
  std::string ppd_file;        // --ppdfile, may be empty when filtering
  std::string def_file;        // --deffile, may be empty
  std::string paf_file;        // --paffile
  std::string queue_ppd_file;  // --queueppd
};

// Reads the arguments after the program name. Arguments that mean nothing to the program are
// ignored (the caller of a conversion adds one); an option whose value is missing counts as given
// with an empty value (the interface script of an unknown printer has no PPD file to name).
// The mode is Filter with "--filter", else QueuePpd with both "--ppdfile" and "--queueppd", else
// Convert with both "--ppdfile" and "--paffile".
FilterArguments ParseArguments(const std::vector<std::string> &arguments);

}  // namespace kpx::filter
