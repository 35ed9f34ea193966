// The words KEY=VALUE and KEY=~s/FROM/TO/ of a call.
#pragma once

#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "queueedit.h"

namespace kpx::ctl {

// "s/FROM/TO/FLAGS": FROM is a regular expression (ECMAScript), TO as sed(1) has it, FLAGS "g"
// (every place) and "i" (letters of either case). Any other character than "/" does, too.
struct Substitution {
  std::regex from = {};
  std::string to;
  bool everywhere = false;

  [[nodiscard]] std::string Applied(const std::string &text) const;
};
[[nodiscard]] std::optional<Substitution> SubstitutionOf(const std::string &text);

// What a call sets.
class Assignments {
 public:
  // Takes the words that are assignments out of `words`. Nothing, or the first word that looks like
  // a substitution and is not one.
  [[nodiscard]] std::optional<std::string> TakeFrom(std::vector<std::string> &words);

  [[nodiscard]] bool IsEmpty() const { return rows_.empty(); }

  // What they come to for the queue of G_Queues_hash.
  [[nodiscard]] std::vector<Assignment> ForQueue(const std::string &name) const;

 private:
  struct Row {
    Assignment assignment;
    std::optional<Substitution> substitution;  // instead of the value
  };
  std::vector<Row> rows_;
};

}  // namespace kpx::ctl
