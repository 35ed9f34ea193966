// Writing the PPD file that the spooler gets for a queue.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "arguments.h"

namespace kpx::filter {

// Makes the PPD files of queues, as model, option file and type of each make it, with the texts of
// the model's other languages that are installed beside it. What queues share is read and made
// once, so the files must not change while this record is there.
class QueuePpdMaker {
 public:
  // The text of the file; nothing, with `*problem`, when it cannot be made.
  [[nodiscard]] std::optional<std::string> Make(const FilterArguments &arguments,
                                                std::string *problem);

 private:
  struct Model {
    std::string text;     // of its PPD file
    std::string problem;  // instead of it
    std::vector<std::pair<std::string, std::string>> translations;
  };
  const Model &ModelOf(const std::string &path);

  std::map<std::string, Model> models_;      // by the paths of their PPD files
  std::map<std::string, std::string> made_;  // by all that a file is made from
};

// Writes the queue's PPD file. Returns an empty text, or what failed; then the file is as it was.
[[nodiscard]] std::string WriteQueuePpd(const FilterArguments &arguments);

}  // namespace kpx::filter
