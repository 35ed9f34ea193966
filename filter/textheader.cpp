#include "textheader.h"

#include <algorithm>
#include <cmath>
#include <ctime>

#include "decimal.h"
#include "textdecoding.h"

namespace kpx::filter {

namespace {

constexpr double kRuleDepth = 0.5;  // below the header's line, of the lines' distance

// Keeps the marks of the one line that a header has.
class MarkKeeper : public PageTarget {
 public:
  explicit MarkKeeper(std::string *marks) : marks_(marks) {}
  void BeginPage() override {}
  void Write(std::string_view marks) override { *marks_ += marks; }
  void EndPage() override {}

 private:
  std::string *marks_;
};

std::string DateOf(std::time_t time) {
  std::tm local{};
  char text[32] = "";
  if (localtime_r(&time, &local) != nullptr) {
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &local);
  }
  return text;
}

// What is left of the line for the title, in units.
double TitleRoom(const TextLayout &layout, const std::string &rest, Characters *characters) {
  double width = layout.is_monospaced ? 2 : layout.size;
  for (const char c : rest) {
    width += characters->InfoOf(static_cast<unsigned char>(c)).width;
  }
  return std::max(1.0, std::floor(layout.page_room - width));
}

}  // namespace

TextHeader::TextHeader(const TextLayout &layout, const JobIdentity &identity, size_t pages,
                       Characters *characters, const DefinitionsFunction &define)
    : layout_(layout), pages_(pages), date_(DateOf(identity.time)) {
  TextLayout line = layout;
  line.room = title_room_ = TitleRoom(layout, NumberOf(pages), characters);
  line.lines = line.columns = 1;
  line.wraps = line.has_numbers = false;
  std::u32string title = DecodeText(identity.title);
  std::replace_if(
      title.begin(), title.end(), [](char32_t c) { return c < U' '; }, U' ');
  MarkKeeper keeper(&title_);
  TextPages pages_of_title(line, characters, &keeper, define);
  pages_of_title.Put(title);
  pages_of_title.Finish();
}

std::string TextHeader::NumberOf(size_t page) const {
  return date_ + "  " + std::to_string(page) + "/" + std::to_string(pages_);
}

std::string TextHeader::MarksOf(size_t page) const {
  const std::string rise = DecimalText(layout_.header_rise);
  const std::string room = DecimalText(layout_.page_room);
  std::string marks = "gsave " + DecimalText(-layout_.number_room) + " " + rise + " translate\n";
  // A font of symbols is not for names.
  if (layout_.has_own_encoding) marks += "/B F def /F H def F setfont\n";
  marks += "/N " + DecimalText(title_room_) + " def\n" + title_;
  marks += room + " 0 (" + NumberOf(page + 1) + ") L\n";
  marks += "0 " + DecimalText(kRuleDepth) + " P " + room +
           " U mul 0 rlineto .5 setlinewidth stroke\n/N " + DecimalText(layout_.room) + " def\n";
  if (layout_.has_own_encoding) marks += "/F B def\n";
  return marks + "grestore\n";
}

}  // namespace kpx::filter
