// The test page of a queue: one page in the language that the queue takes, which says what the
// queue is set to and shows what the printer makes of it.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

// What the page tells of the queue. Texts are UTF-8, in the user's language.
struct TestPageFacts {
  std::string queue;
  std::string type = {};     // a key of queuetypes.h; empty: of a queue that is not ours
  std::string printer = {};  // empty: not known
  bool has_colours = true;   // false: the printer's description says that it has none
  std::vector<std::pair<std::string, std::string>> settings = {};  // name and choice
};

// What this host knows about the queue, with the settings that a job of the calling user has. Texts
// of the printer come from the installation's files in the language of `lng_dir`.
TestPageFacts TestPageFactsOf(const std::string &queue);

// The page's data: PCL for the type "pcl6", text for "text", PostScript for all others. Nothing,
// with errno, when the template of the PostScript page cannot be read.
[[nodiscard]] std::optional<std::string> TestPageData(const TestPageFacts &facts);
