// Finding members in a JSON text that has been read without fault.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

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

// Looks at the members as they are read; arrays count as one level, too.
class KeyWatch : public nlohmann::json_sax<nlohmann::json> {
 public:
  std::vector<std::string> twice;

  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(number_integer_t) override { return true; }
  bool number_unsigned(number_unsigned_t) override { return true; }
  bool number_float(number_float_t, const string_t &) override { return true; }
  bool string(string_t &) override { return true; }
  bool binary(binary_t &) override { return true; }
  bool start_array(size_t) override { return Open(); }
  bool end_array() override { return Close(); }
  bool start_object(size_t) override { return Open(); }
  bool end_object() override { return Close(); }
  bool key(string_t &name) override {
    open_.back() = name;
    if (seen_.back().insert(name).second) return true;
    twice = open_;
    return false;
  }
  bool parse_error(size_t, const std::string &, const nlohmann::json::exception &) override {
    return false;
  }

 private:
  bool Open() {
    open_.emplace_back();
    seen_.emplace_back();
    return true;
  }
  bool Close() {
    open_.pop_back();
    seen_.pop_back();
    return true;
  }

  std::vector<std::string> open_;  // the member that is being read, level by level
  std::vector<std::set<std::string>> seen_;
};

}  // namespace

std::vector<std::string> MemberThatStandsTwice(const std::string &text) {
  KeyWatch watch;
  static_cast<void>(nlohmann::json::sax_parse(text, &watch));
  return watch.twice;
}

int LineOfMember(std::string_view text, const std::vector<std::string> &path) {
  const size_t place = Finder(text, path).Find();
  return static_cast<int>(
             std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n')) +
         1;
}

}  // namespace kpx::ctl
