// Files that declare queues: {"name", "defaults", "groups", "queues", "users"}; kpxctl(8) has their
// form.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kpx::ctl {

// A queue with what the defaults and its groups say of it.
struct DeclaredQueue {
  std::string name;
  std::map<std::string, std::string> fields;    // "printer", "type", "address"
  std::map<std::string, std::string> settings;  // as Assignment has them
};

// A user's option file for a queue, as its settings.
struct DeclaredUserFile {
  std::string user, queue;
  std::map<std::string, std::string> settings;  // by outer key
};

struct DeclaredState {
  std::string name;  // empty: the file says none
  std::vector<DeclaredQueue> queues;
  std::vector<DeclaredUserFile> user_files;
};

// Where a text is wrong, and why.
struct DeclaredFault {
  int line;  // from 1
  std::string reason;
};

[[nodiscard]] std::variant<DeclaredState, DeclaredFault> ReadDeclared(const std::string &text);

// The line, from 1, of the member that `path` leads to (from the outermost object on); that of the
// last one that is there.
[[nodiscard]] int LineOfMember(std::string_view text, const std::vector<std::string> &path);

// The path to the first member of a JSON text, which has no fault, that stands twice in its object;
// empty when none does.
std::vector<std::string> MemberThatStandsTwice(const std::string &text);

}  // namespace kpx::ctl
