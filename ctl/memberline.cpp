// Finding the line of a member of a JSON text that has been read without fault.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "declaredfile.h"

namespace kpx::ctl {

namespace {

class Finder {
 public:
  Finder(std::string_view text, const std::vector<std::string> &path) : text_(text), path_(path) {}

  // The place of the member's key.
  size_t Find() {
    SkipBlanks();
    Descend(0);
    return found_;
  }

 private:
  char Now() const { return place_ < text_.size() ? text_[place_] : '\0'; }

  void SkipBlanks() { place_ = std::min(text_.find_first_not_of(" \t\r\n", place_), text_.size()); }

  // The text between the quotation marks here; past them afterwards.
  std::string_view SkipText() {
    const size_t start = place_++;
    while (place_ < text_.size() && text_[place_] != '"') place_ += text_[place_] == '\\' ? 2 : 1;
    ++place_;
    return text_.substr(start, std::min(place_, text_.size()) - start);
  }

  // Past the value here.
  void SkipValue() {
    int depth = 0;
    do {
      const char c = Now();
      if (c == '"') {
        SkipText();
        continue;
      }
      if (depth == 0 && (c == ',' || c == '}' || c == ']')) return;
      if (c == '{' || c == '[') ++depth;
      if (c == '}' || c == ']') --depth;
      ++place_;
    } while (place_ < text_.size() &&
             (depth > 0 || (Now() != ',' && Now() != '}' && Now() != ']')));
  }

  void Descend(size_t level) {
    if (level == path_.size() || Now() != '{') return;
    ++place_;
    for (SkipBlanks(); Now() == '"'; SkipBlanks()) {
      const size_t key_place = place_;
      const auto key = nlohmann::json::parse(SkipText(), nullptr, false);
      SkipBlanks();
      ++place_;  // the colon
      SkipBlanks();
      if (key == path_[level]) {
        found_ = key_place;
        return Descend(level + 1);
      }
      SkipValue();
      SkipBlanks();
      if (Now() == ',') ++place_;
    }
  }

  std::string_view text_;
  const std::vector<std::string> &path_;
  size_t place_ = 0;
  size_t found_ = 0;
};

}  // namespace

int LineOfMember(std::string_view text, const std::vector<std::string> &path) {
  const size_t place = Finder(text, path).Find();
  return static_cast<int>(
             std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n')) +
         1;
}

}  // namespace kpx::ctl
