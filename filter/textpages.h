// Sets the lines of a text on pages.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sheets.h"
#include "textlayout.h"
#include "unicodecharacters.h"

namespace kpx::filter {

// Takes the PostScript that defines what the marks need, before they are written.
using DefinitionsFunction = std::function<void(std::string_view)>;

// A page is written when its first character comes. Lines too long for the page are wrapped: after
// the last column of a typewriter font, else at the last place where a word ends, or cut where the
// layout does not wrap. What is written
// from right to left stands so, and a line that begins with it stands at the right.
class TextPages {
 public:
  // All must outlive this.
  TextPages(const TextLayout &layout, Characters *characters, PageTarget *target,
            DefinitionsFunction define)
      : layout_(layout),
        characters_(characters),
        target_(target),
        define_(std::move(define)),
        number_due_(layout.has_numbers) {}

  // Sets characters, control characters among them: a tab goes to the next stop, a carriage return
  // to the start of the line, a backspace one character back, a form feed to a new column or page,
  // a line feed to a new line. A character over the same one is bold.
  void Put(std::u32string_view text);

  // Sets printable ASCII.
  void PutAscii(std::string_view text);

  // Ends the line; one that is empty is numbered too.
  void NewLine();
  // Ends the column of text, with the last one the page.
  void NewColumn();
  void Finish();

 private:
  // Characters that keep together.
  struct Cluster {
    size_t begin = 0, end = 0;  // in the segment
    CharacterKind kind = CharacterKind::kOwn;
    const CharacterInfo *info = nullptr;
    double width = 0;         // units
    double narrowing = 1;     // of a shaped one: how far it is narrowed to fit its cells
    unsigned char level = 0;  // of its direction: odd ones go from right to left
  };

  void PutControl(char32_t character);
  void Flush();
  [[nodiscard]] bool SetPlain();
  size_t SetPlainRun(size_t first);
  void FindDirections();
  void GatherClusters();
  Cluster ClusterAt(size_t begin);
  void ExtendShaped(Cluster *cluster);
  void MeasureShaped(Cluster *cluster);
  [[nodiscard]] size_t EndOfLine(size_t first) const;
  static void PutInVisualOrder(std::vector<Cluster> *line);
  void SetClusters(size_t first, size_t end);
  size_t SetOwn(const std::vector<Cluster> &clusters, size_t first, double x, bool is_last);
  size_t SetEmbedded(const std::vector<Cluster> &clusters, size_t first, double x);
  void SetShaped(const Cluster &cluster, double x);
  [[nodiscard]] char32_t CharacterOf(const Cluster &cluster) const;
  [[nodiscard]] bool Wrap();
  void BreakLine();
  void EndColumn();
  void NeedLine();
  void PutNumber();
  void BeginPage();
  void EndPage();
  void WritePlace(double x);
  void WriteMarks();

  const TextLayout &layout_;
  Characters *characters_;
  PageTarget *target_;
  const DefinitionsFunction define_;
  bool page_open_ = false;
  size_t column_ = 0;  // of text on the page
  size_t line_ = 0;
  size_t number_ = 0;                         // of the line in the text
  bool number_due_ = false;                   // it is still to be written
  bool is_cut_ = false;                       // the line is full and does not go on in the next one
  double x_ = 0;                              // where the next character stands, units
  std::u32string segment_;                    // characters that follow each other, from x_ on
  std::vector<const CharacterInfo *> infos_;  // of a plain segment
  std::string run_;
  std::vector<Cluster> clusters_;
  std::vector<signed char> levels_;  // of the segment's characters; empty when all go to the right
  bool line_from_right_ = false;
  char32_t last_ = 0;  // the character set last, and its width
  double last_width_ = 0;
  char32_t overstruck_ = 0;  // the character that stands where the next one comes
  std::string marks_;        // of the line that is being set
};

// The PostScript that the marks rely on.
std::string TextPagesCode(const TextLayout &layout);

}  // namespace kpx::filter
