// PostScript jobs with several pages a side, as booklets and in parts: each page is found in its
// place on the paper.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <sstream>

#include "filterrun.h"
#include "ghostscript.h"
#include "producers.h"

namespace {

constexpr double kWidth = 595, kLength = 842, kInset = 12;  // of the paper, points
constexpr double kNear = 4;

bool IsLong() { return std::getenv("KPX_LONG") != nullptr; }

struct Place {
  double x, y;  // of the middle of a word, points from the lower left corner
  bool stands;  // it is higher than wide
};

struct Side {
  double width = 0, length = 0;
  std::map<std::string, Place> words;
};

double NumberBehind(const std::string &line, const std::string &name) {
  return std::stod(line.substr(line.find(name + "=\"") + name.size() + 2));
}

// The words on the sides of a job, as an interpreter shows them.
std::vector<Side> SidesOf(const std::string &job) {
  const TemporaryDirectory directory;
  const std::string input = directory.Write("job.ps", WithoutJobControl(job));
  const std::string command =
      "cd " + directory.Path("") +
      " && gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=pdfwrite -dAutoRotatePages=/None "
      "-dDEVICEWIDTHPOINTS=595 -dDEVICEHEIGHTPOINTS=842 -o o.pdf " +
      input + " >messages 2>&1 && pdftotext -bbox o.pdf words";
  if (std::system(command.c_str()) != 0) return {};
  EXPECT_EQ(ContentOf(directory.Path("messages")), "");
  std::vector<Side> sides;
  std::istringstream lines(ContentOf(directory.Path("words")));
  for (std::string line; std::getline(lines, line);) {
    if (line.find("<page ") != std::string::npos) {
      sides.push_back({NumberBehind(line, "width"), NumberBehind(line, "height"), {}});
    } else if (line.find(">page") != std::string::npos) {
      const double x1 = NumberBehind(line, "xMin"), x2 = NumberBehind(line, "xMax");
      const double y1 = NumberBehind(line, "yMin"), y2 = NumberBehind(line, "yMax");
      const size_t word = line.find(">page") + 1;
      sides.back().words[line.substr(word, 5)] = {
          (x1 + x2) / 2, sides.back().length - (y1 + y2) / 2, y2 - y1 > x2 - x1};
    }
  }
  return sides;
}

// How many columns and rows a reader sees, and whether he holds the paper upright.
struct Held {
  int columns, rows;
  bool upright;
};

Held HeldFor(int pages, bool lies) {
  const std::map<int, std::pair<int, int>> grids = {{2, {2, 1}}, {4, {2, 2}}, {6, {3, 2}},
                                                    {8, {4, 2}}, {9, {3, 3}}, {16, {4, 4}}};
  auto [columns, rows] = grids.at(pages);
  const bool across = columns != rows;
  if (across && lies) std::swap(columns, rows);
  return {columns, rows, across == lies};
}

// Where the word of a page comes that stands at `on_page` of a page of its own, in the column and
// the row (from 0, from the top left) of the held paper.
Place Expected(const Held &held, int column, int row, const Side &page, Lie lie, Place on_page) {
  double width = page.width, length = page.length;
  if (lie == Lie::kTurned) {
    on_page = {on_page.y, width - on_page.x, !on_page.stands};
    std::swap(width, length);
  }
  const double across = held.upright ? kWidth : kLength, along = held.upright ? kLength : kWidth;
  const double cell_width = (across - 2 * kInset) / held.columns;
  const double cell_length = (along - 2 * kInset) / held.rows;
  const double scale = std::min(cell_width / width, cell_length / length);
  const double x = kInset + (column + 0.5) * cell_width + scale * (on_page.x - width / 2);
  const double y =
      kInset + (held.rows - row - 0.5) * cell_length + scale * (on_page.y - length / 2);
  if (held.upright) return {x, y, on_page.stands};
  return {kWidth - y, x, !on_page.stands};
}

void ExpectPlace(const Side &side, const std::string &word, const Place &expected) {
  const auto found = side.words.find(word);
  ASSERT_NE(found, side.words.end()) << word << " is missing";
  EXPECT_NEAR(found->second.x, expected.x, kNear) << word;
  EXPECT_NEAR(found->second.y, expected.y, kNear) << word;
  EXPECT_EQ(found->second.stands, expected.stands) << word << " is turned";
}

std::string Word(int page) { return "page" + std::to_string(page); }

FilterRun Print(const std::string &job, const std::string &options,
                const std::string &type = "postscript") {
  FilterCall call{.options = options, .type = type, .ppd_file = {}, .def_file = {}};
  call.ppd_file = std::string(KPX_TEST_DATA) + "/data/ppd/office.ppd";
  return Filter(call, job);
}

// The column and the row of a place (from 0) in an order.
std::pair<int, int> CellOf(const std::string &order, const Held &held, int place) {
  const bool by_column =
      order == "Down" || order == "Back" || order.starts_with("tb") || order.starts_with("bt");
  int column = by_column ? place / held.rows : place % held.columns;
  int row = by_column ? place % held.rows : place / held.columns;
  if (order == "Right" || order == "Back" || order.find("rl") != std::string::npos) {
    column = held.columns - 1 - column;
  }
  if (order.find("bt") != std::string::npos) row = held.rows - 1 - row;
  return {column, row};
}

// Prints the document with so many pages a side and looks for each of its pages.
void ExpectOnSheets(const Producer &producer, const std::vector<Side> &own, int pages,
                    const std::string &options, const std::string &order) {
  SCOPED_TRACE(producer.name + " " + options);
  const FilterRun run = Print(producer.text, options);
  ASSERT_EQ(run.status, 0);
  EXPECT_EQ(run.errors, "");
  std::vector<Side> sides = SidesOf(run.output);
  const bool is_descending = producer.name == "descending";
  if (is_descending) std::reverse(sides.begin(), sides.end());
  ASSERT_EQ(sides.size(), static_cast<size_t>((kProducedPages + pages - 1) / pages));
  const Held held = HeldFor(pages, producer.lie != Lie::kUpright);
  for (int page = 1; page <= kProducedPages; ++page) {
    const Side &of_page =
        own.at(static_cast<size_t>(is_descending ? kProducedPages - page : page - 1));
    const auto [column, row] = CellOf(order, held, (page - 1) % pages);
    ASSERT_EQ(of_page.words.count(Word(page)), 1u) << "the document shows no " << Word(page);
    ExpectPlace(sides[static_cast<size_t>((page - 1) / pages)], Word(page),
                Expected(held, column, row, of_page, producer.lie, of_page.words.at(Word(page))));
  }
}

// The order of a booklet's pages, two a side; 0 for none.
constexpr int kBooklet[][2] = {{0, 1}, {2, 0}, {0, 3}, {4, 5}};

void ExpectBooklet(const Producer &producer, const std::vector<Side> &own) {
  SCOPED_TRACE(producer.name + " booklet");
  const FilterRun run = Print(producer.text, "*Booklet=1");
  EXPECT_EQ(run.errors, "");
  const std::vector<Side> sides = SidesOf(run.output);
  ASSERT_EQ(sides.size(), 4u);
  const Held held = HeldFor(2, producer.lie != Lie::kUpright);
  for (size_t side = 0; side < 4; ++side) {
    size_t count = 0;
    for (int place = 0; place < 2; ++place) {
      const int page = kBooklet[side][place];
      if (page == 0) continue;
      ++count;
      const bool is_descending = producer.name == "descending";
      const Side &of_page =
          own.at(static_cast<size_t>(is_descending ? kProducedPages - page : page - 1));
      const auto [column, row] = CellOf("Left", held, place);
      ExpectPlace(sides[side], Word(page),
                  Expected(held, column, row, of_page, producer.lie, of_page.words.at(Word(page))));
    }
    EXPECT_EQ(sides[side].words.size(), count) << "side " << side;
  }
}

void ExpectAll(const std::vector<Producer> &producers) {
  for (const Producer &producer : producers) {
    const std::vector<Side> own = SidesOf(producer.text);
    ASSERT_EQ(own.size(), static_cast<size_t>(kProducedPages)) << producer.name;
    ExpectOnSheets(producer, own, 2, "*Nup=2 *NupOrder=Left", "Left");
    ExpectOnSheets(producer, own, 4, "*Nup=4 *NupOrder=Back", "Back");
    if (!IsLong()) continue;
    for (const int pages : {6, 8, 9, 16}) {
      ExpectOnSheets(producer, own, pages, "*Nup=" + std::to_string(pages), "Left");
    }
    ExpectBooklet(producer, own);
  }
}

TEST(LaidOutJob, PagesOfInstalledProgramsStandInTheirCells) { ExpectAll(InstalledProducers()); }
TEST(LaidOutJob, PagesOfOtherProgramsStandInTheirCells) { ExpectAll(DescribedProducers()); }

TEST(LaidOutJob, EveryNumberOfPagesHasItsCells) {
  const Producer document = DescribedProducers().front();
  const std::vector<Side> own = SidesOf(document.text);
  for (const int pages : {2, 4, 6, 8, 9, 16}) {
    const std::string number = std::to_string(pages);
    ExpectOnSheets(document, own, pages, "number-up=" + number + " number-up-layout=btrl", "btrl");
    if (!IsLong()) continue;
    for (const char *order : {"lrtb", "rltb", "tblr", "tbrl", "lrbt", "rlbt", "btlr"}) {
      ExpectOnSheets(document, own, pages, "number-up=" + number + " number-up-layout=" + order,
                     order);
    }
  }
  for (const char *order : {"Left", "Right", "Down", "Back"}) {
    ExpectOnSheets(document, own, 4, std::string("*Nup=4 *NupOrder=") + order, order);
  }
  ExpectBooklet(document, own);
}

}  // namespace
