#include "assignments.h"

#include <utility>

#include "cprintqueue.h"
#include "globals.h"
#include "queueform.h"

namespace kpx::ctl {

namespace {

constexpr std::string_view kSubstitution = "=~s";

// The text up to the first `mark` that no backslash stands before, and past it in `*place`; nothing
// when there is none. "\MARK" becomes MARK.
std::optional<std::string> UpTo(const std::string &text, char mark, size_t *place) {
  std::string part;
  for (size_t i = *place; i < text.size(); ++i) {
    if (text[i] == mark) {
      *place = i + 1;
      return part;
    }
    if (text[i] == '\\' && i + 1 < text.size()) {
      if (text[i + 1] != mark) part += '\\';
      ++i;
    }
    part += text[i];
  }
  return std::nullopt;
}

}  // namespace

std::string Substitution::Applied(const std::string &text) const {
  auto flags = std::regex_constants::format_sed;
  if (!everywhere) flags |= std::regex_constants::format_first_only;
  return std::regex_replace(text, from, to, flags);
}

std::optional<Substitution> SubstitutionOf(const std::string &text) {
  if (text.size() < 2 || text[0] != 's') return std::nullopt;
  size_t place = 2;
  const std::optional<std::string> from = UpTo(text, text[1], &place);
  std::optional<std::string> to = from ? UpTo(text, text[1], &place) : std::nullopt;
  if (!from || from->empty() || !to) return std::nullopt;
  Substitution substitution{.to = std::move(*to)};
  auto syntax = std::regex::ECMAScript;
  for (const char flag : text.substr(place)) {
    if (flag != 'g' && flag != 'i') return std::nullopt;
    if (flag == 'g') substitution.everywhere = true;
    if (flag == 'i') syntax |= std::regex::icase;
  }
  try {
    substitution.from.assign(*from, syntax);
  } catch (const std::regex_error &) {
    return std::nullopt;
  }
  return substitution;
}

std::optional<std::string> Assignments::TakeFrom(std::vector<std::string> &words) {
  std::vector<std::string> others;
  for (std::string &word : words) {
    const size_t sign = word.find('=');
    if (sign == std::string::npos || sign == 0) {
      others.push_back(std::move(word));
      continue;
    }
    Row row{{word.substr(0, sign), word.substr(sign + 1)}, std::nullopt};
    if (word.substr(sign).starts_with(kSubstitution)) {
      row.substitution = SubstitutionOf(word.substr(sign + 2));
      if (!row.substitution) return word;
    }
    rows_.push_back(std::move(row));
  }
  words = std::move(others);
  return std::nullopt;
}

std::vector<Assignment> Assignments::ForQueue(const std::string &name) const {
  const CPrintQueue *queue = HashValue<CPrintQueue>(G_Queues_hash, name.c_str());
  std::vector<Assignment> assignments;
  for (const Row &row : rows_) {
    Assignment assignment = row.assignment;
    if (row.substitution && queue != nullptr) {
      const auto value = QueueValue(*queue, assignment.key);
      if (!value) continue;
      assignment.value = row.substitution->Applied(*value);
      if (assignment.value == *value) continue;
    }
    assignments.push_back(std::move(assignment));
  }
  return assignments;
}

}  // namespace kpx::ctl
