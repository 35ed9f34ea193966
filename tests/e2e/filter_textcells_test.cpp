// Text jobs cell by cell: every script in every layout. The places are computed here from the paper
// and the margins, and read from the printed pages.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <sstream>

#include "filterrun.h"
#include "printedwords.h"
#include "textdecoding.h"

namespace {

using Matrix = std::array<double, 6>;

constexpr Matrix kUpright = {1, 0, 0, 1, 0, 0};
// A cell that is not blank, of a glyph that pdftotext knows no character of. The very first glyph
// that a job brings has the code of a blank, so that such a line begins with a letter.
constexpr char32_t kAny = U'\uE000';
constexpr char kLetterPpd[] = KPX_TEST_DATA "/data/ppd/office.ppd";

// Where a page of the text stands: on which side, how.
struct Place {
  size_t side;
  Matrix matrix;
};

struct Layout {
  const char *name;
  std::string options, ppd;
  double left, first_line, unit, leading;  // points, of a page before it is placed
  size_t room;                             // cells of a line
  size_t sides;
  std::vector<Place> places;  // of the two pages of the text
  bool has_numbers = false;   // and a header
};

constexpr Matrix kLeftHalf = {0, .706, -.706, 0, 594.726, .465},
                 kRightHalf = {0, .706, -.706, 0, 594.726, 421.465},
                 kUpperLeft = {.5, 0, 0, .5, 0, 421}, kUpperRight = {.5, 0, 0, .5, 297.5, 421};

// A4 at 12 points: 541 points for 80 cells.
constexpr double kNarrowed = 541.0 / 80;

const std::vector<Layout> kLayouts = {
    {"a4", "", "", 36, 794, kNarrowed, 12, 80, 2, {{0, kUpright}, {1, kUpright}}},
    {"letter",
     "*PageSize=Letter",
     kLetterPpd,
     36,
     744,
     558.0 / 80,
     12,
     80,
     2,
     {{0, kUpright}, {1, kUpright}}},
    {"small", "*FontSize=8", "", 36, 798, 4.8, 8, 112, 2, {{0, kUpright}, {1, kUpright}}},
    {"landscape",
     "*Orientation=Landscape",
     "",
     36,
     547,
     7.2,
     12,
     109,
     2,
     {{0, {0, 1, -1, 0, 595, 0}}, {1, {0, 1, -1, 0, 595, 0}}}},
    {"turned",
     "*Orientation=RotLandscape",
     "",
     36,
     547,
     7.2,
     12,
     109,
     2,
     {{0, {0, -1, 1, 0, 0, 842}}, {1, {0, -1, 1, 0, 0, 842}}}},
    {"two", "*Nup=2", "", 36, 794, kNarrowed, 12, 80, 1, {{0, kLeftHalf}, {0, kRightHalf}}},
    {"four", "*Nup=4", "", 36, 794, kNarrowed, 12, 80, 1, {{0, kUpperLeft}, {0, kUpperRight}}},
    {"four_back",
     "*Nup=4 *NupOrder=Right",
     "",
     36,
     794,
     kNarrowed,
     12,
     80,
     1,
     {{0, kUpperRight}, {0, kUpperLeft}}},
    {"booklet", "*Booklet=1", "", 36, 794, kNarrowed, 12, 80, 2, {{0, kRightHalf}, {1, kLeftHalf}}},
    {"columns",
     "*TextColumns=2",
     "",
     36,
     794,
     7.2,
     12,
     36,
     1,
     {{0, kUpright}, {0, {1, 0, 0, 1, 279.5, 0}}}},
    {"numbers",
     "*TextHeader=1 *TextLineNumbers=1",
     "",
     36 + 7 * 541.0 / 87,
     770,
     541.0 / 87,
     12,
     80,
     2,
     {{0, kUpright}, {1, kUpright}},
     true},
    {"pitch",
     "cpi=12 lpi=8 page-left=72 page-top=100",
     "",
     72,
     733,
     6,
     9,
     84,
     2,
     {{0, kUpright}, {1, kUpright}}}};

// A line of a script and what its cells show.
struct Script {
  const char *name, *line, *cells;
  bool is_from_right = false;
};

constexpr Script kScripts[] = {
    {"ascii", "int f() { return `x` - 'y'; } ~^|\\", "int f() { return `x` - 'y'; } ~^|\\"},
    {"latin", "Grüße “né” – …", "Grüße “né” – …"},
    {"windows", "\xFC \x93q\x94 \x80", "ü “q” €"},
    {"extended", "Łódź Tiếng Việt €5", "Łódź Tiếng Việt €5"},
    {"composed", "e\u0301 o\u0308 a\u0308u\u0308", "é ö äü"},
    {"greek", "κόσμε ἀρχῇ Привет", "κόσμε ἀρχῇ Привет"},
    {"caucasian", "Բարեւ გამარჯობა", "Բարեւ გამარჯობა"},
    {"hebrew", "שלום (42) abc", "abc (42) םולש", true},
    {"hebrew_inside", "abc שלום 123 x", "abc 123 םולש x"},
    {"arabic", "ж مرحبا b", "ж \uE000\uE000\uE000\uE000\uE000 b"},
    {"marks", "ж x\u0302 q\u0323|", "ж \uE000 \uE000|"},
    {"boxes", "┌─┬┐ → ∞ ≠ ⅛ ♥ №", "┌─┬┐ → ∞ ≠ ⅛ ♥ №"},
    {"wide", "😀 |", "😀😀 |"},
    {"unknown", "ж \uF8FE 中|", "ж \uE000 \uE000\uE000|"},
    {"tabs", "a\tbc\td\bd", "a       bc      d"}};

// The cells of one page of the text, by line; blank where nothing is.
using Cells = std::vector<std::u32string>;

// The first page: the line three times, then a line of four cells more than fit.
Cells FirstPage(const Script &script, const Layout &layout) {
  const std::u32string shown = kpx::filter::DecodeText(script.cells);
  Cells cells;
  for (size_t i = 0; i < 3; ++i) {
    const size_t indent = script.is_from_right ? layout.room - shown.size() : 0;
    cells.push_back(std::u32string(indent, U' ') + shown);
  }
  cells.emplace_back(layout.room, U'm');
  cells.emplace_back(U"mmmm");
  return cells;
}

std::string TextOf(const Script &script, const Layout &layout) {
  const std::string line = std::string(script.line) + "\n";
  return line + line + line + std::string(layout.room + 4, 'm') + "\n\f" + line;
}

// The paper's point of a place of the text: a column and a line, in cells from the first one.
std::pair<double, double> PointOf(const Layout &layout, const Matrix &m, double column,
                                  double line) {
  const double x = layout.left + column * layout.unit;
  const double y = layout.first_line - line * layout.leading + 0.3 * layout.leading;
  return {m[0] * x + m[2] * y + m[4], m[1] * x + m[3] * y + m[5]};
}

// The character that stands at a point; kAny for one that has none, a blank for nothing.
std::vector<char32_t> CharactersAt(const PrintedPage &page, const Matrix &m, double x, double y) {
  y = page.height - y;
  std::vector<char32_t> found;
  for (const PrintedWord &word : page.words) {
    if (x < word.left || x > word.right || y < word.top || y > word.bottom) continue;
    const std::u32string text = kpx::filter::DecodeText(word.text);
    if (text.empty()) continue;
    const double part = m[0] > 0   ? (x - word.left) / (word.right - word.left)
                        : m[1] > 0 ? (word.bottom - y) / (word.bottom - word.top)
                                   : (y - word.top) / (word.bottom - word.top);
    const auto index = static_cast<size_t>(part * static_cast<double>(text.size()));
    found.push_back(text[std::min(index, text.size() - 1)]);
  }
  return found;
}

// Compares a page's cells; tells the differences.
std::string Differences(const Layout &layout, const Cells &cells, const PrintedPage &page,
                        const Matrix &matrix) {
  std::ostringstream differences;
  for (size_t line = 0; line < cells.size(); ++line) {
    for (size_t column = 0; column < layout.room; ++column) {
      const char32_t wanted = column < cells[line].size() ? cells[line][column] : U' ';
      const auto [x, y] =
          PointOf(layout, matrix, static_cast<double>(column) + 0.5, static_cast<double>(line));
      const std::vector<char32_t> found = CharactersAt(page, matrix, x, y);
      const bool good = wanted == U' '   ? found.empty()
                        : wanted == kAny ? !found.empty()
                                         : std::count(found.begin(), found.end(), wanted) > 0;
      if (good) continue;
      differences << "line " << line << " column " << column << " has " << found.size();
      for (const char32_t c : found) differences << " U+" << std::hex << static_cast<unsigned>(c);
      differences << " instead of U+" << std::hex << static_cast<unsigned>(wanted) << std::dec
                  << "\n";
    }
  }
  return differences.str();
}

void ExpectNumbersAndHeader(const Layout &layout, const PrintedPage &page, size_t number,
                            char32_t first_line) {
  const auto at = [&](double column, double line) {
    const auto [x, y] = PointOf(layout, kUpright, column, line);
    return CharactersAt(page, kUpright, x, y);
  };
  EXPECT_EQ(at(-2.5, 0), std::vector{first_line}) << "the line's number";
  EXPECT_EQ(at(-6.5, -2), std::vector{U'R'}) << "the title's first letter";
  const auto digit = static_cast<char32_t>(U'0' + number);
  EXPECT_EQ(at(77.5, -2), std::vector{digit}) << "the page's number";
  EXPECT_EQ(at(79.5, -2), std::vector{U'2'}) << "the number of pages";
}

TEST(TextCells, EachScriptStandsInItsCellsInEachLayout) {
  std::vector<FilterInput> filtered;
  for (const Layout &layout : kLayouts) {
    for (const Script &script : kScripts) {
      FilterCall call;
      call.type = "text";
      call.options = layout.options;
      call.ppd_file = layout.ppd;
      filtered.push_back({call, TextOf(script, layout)});
    }
  }
  std::vector<std::string> jobs;
  for (const FilterRun &run : FilterAll(filtered)) {
    EXPECT_EQ(run.status, 0) << run.errors;
    jobs.push_back(run.output);
  }
  ASSERT_GE(jobs.size(), 100u);
  const auto printed = PrintedPagesOf(jobs);
  ASSERT_EQ(printed.size(), jobs.size());
  for (size_t i = 0; i < jobs.size(); ++i) {
    const Layout &layout = kLayouts[i / std::size(kScripts)];
    const Script &script = kScripts[i % std::size(kScripts)];
    SCOPED_TRACE(std::string(layout.name) + " " + script.name);
    ASSERT_EQ(printed[i].size(), layout.sides);
    const Cells first = FirstPage(script, layout), second = {first[0]};
    for (size_t page = 0; page < 2; ++page) {
      const Place &place = layout.places[page];
      EXPECT_EQ(
          Differences(layout, page == 0 ? first : second, printed[i][place.side], place.matrix),
          "");
      if (layout.has_numbers) {
        ExpectNumbersAndHeader(layout, printed[i][page], page + 1, page == 0 ? U'1' : U'5');
      }
    }
  }
}

}  // namespace
