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

// Pages of other sizes, and what may happen to a page.
std::string Pages(const std::vector<std::string> &bodies) {
  std::string text = "%!PS-Adobe-3.0\n%%EndComments\n%%BeginProlog\n%%EndProlog\n";
  int number = 0;
  for (const std::string &body : bodies) {
    const std::string page = std::to_string(++number);
    text += "%%Page: " + page + " " + page + "\n" + body +
            "/Times-Roman findfont 40 scalefont setfont 72 300 moveto (page" + page +
            ") show showpage\n";
  }
  return text + "%%EOF\n";
}

TEST(LaidOutJob, PagesOfDifferentSizesFillTheirCells) {
  const std::string wide = "<< /PageSize [842 595] >> setpagedevice\n";
  const std::string small = "<< /PageSize [298 421] >> setpagedevice\n";
  const std::string usual = "<< /PageSize [595 842] >> setpagedevice\n";
  const std::string job = Pages({usual, wide, small, usual});
  const std::vector<Side> own = SidesOf(job);
  ASSERT_EQ(own.size(), 4u);
  const std::vector<Side> sides = SidesOf(Print(job, "*Nup=4").output);
  ASSERT_EQ(sides.size(), 1u);
  const Held held = HeldFor(4, false);
  for (int page = 1; page <= 4; ++page) {
    Side of_page = own[static_cast<size_t>(page - 1)];
    Place place = of_page.words.at(Word(page));
    if (page == 2) {
      // A wide page in an upright cell has its top at the left.
      place = {595 - place.y, place.x, true};
      std::swap(of_page.width, of_page.length);
    }
    const auto [column, row] = CellOf("Left", held, page - 1);
    ExpectPlace(sides[0], Word(page), Expected(held, column, row, of_page, Lie::kUpright, place));
  }
}

// How many dots of a picture of the device pgmraw are dark, by quarters: top left, top right,
// bottom left, bottom right.
std::vector<int> DarkQuarters(const std::string &picture) {
  std::istringstream header(picture.substr(picture.find('\n', picture.find('#')) + 1, 40));
  size_t width = 0, length = 0;
  header >> width >> length;
  const size_t start = picture.size() - width * length;
  std::vector<int> quarters(4);
  for (size_t at = 0; at < width * length; ++at) {
    const size_t quarter = at / width * 2 / length * 2 + at % width * 2 / width;
    if (static_cast<unsigned char>(picture[start + at]) < 128)
      ++quarters[std::min<size_t>(quarter, 3)];
  }
  return quarters;
}

TEST(LaidOutJob, NoPageReachesTheOthers) {
  const std::string fill = "0 setgray -2000 -2000 5000 5000 rectfill\n";
  for (const std::string &body : std::vector<std::string>{
           fill + "erasepage\n", fill + "save initgraphics erasepage restore\n",
           "initclip initmatrix " + fill, "save initgraphics " + fill + "restore\n",
           "gsave matrix defaultmatrix setmatrix initclip " + fill + "grestore\n",
           fill + "<< /PageSize [595 842] /Duplex true >> setpagedevice erasepage\n",
           fill + "a4 erasepage\n", fill + "erasepage copypage\n"}) {
    SCOPED_TRACE(body);
    const FilterRun run = Print(Pages({"", "", "", body}), "*Nup=4");
    const Rendering sheet = Render(run.output, "pgmraw");
    ASSERT_EQ(sheet.pages.size(), 1u) << sheet.messages;
    EXPECT_EQ(sheet.messages, "");
    const std::vector<int> dark = DarkQuarters(sheet.pages[0]);
    const bool stays = body.find("erasepage") == std::string::npos;
    for (const int quarter : {0, 1, 2}) {
      EXPECT_GT(dark[static_cast<size_t>(quarter)], 0) << "erased: " << quarter;
      EXPECT_LT(dark[static_cast<size_t>(quarter)], 1000) << "painted over: " << quarter;
    }
    EXPECT_EQ(dark[3] > 10000, stays) << dark[3];
  }
}

TEST(LaidOutJob, TheSetUpOfTheDocumentHoldsForItsFirstPageAsItDoes) {
  std::string job = Pages({"", ""});
  job.insert(job.find("%%Page: 1 1"), "%%BeginSetup\n100 200 translate\n%%EndSetup\n");
  const std::vector<Side> own = SidesOf(job);
  const std::vector<Side> sides = SidesOf(Print(job, "*Nup=2").output);
  ASSERT_EQ(sides.size(), 1u);
  for (int page = 1; page <= 2; ++page) {
    const Side &of_page = own.at(static_cast<size_t>(page - 1));
    ExpectPlace(sides[0], Word(page),
                Expected(HeldFor(2, false), page - 1, 0, of_page, Lie::kUpright,
                         of_page.words.at(Word(page))));
  }
}

std::string WordsOf(const std::string &job) {
  std::string words;
  for (const Side &side : SidesOf(job)) {
    for (const auto &[word, place] : side.words) words += word.substr(4);
    words += "|";
  }
  return words;
}

TEST(LaidOutJob, ChosenPagesArePrintedOfPostScriptAndText) {
  const std::string document = Pages({"", "", "", "", ""});
  const std::string text = "page1\fpage2\fpage3\fpage4\fpage5\n";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"page-ranges=2-3,5", "2|3|5|"},
      {"page-set=even", "2|4|"},
      {"page-ranges=2- number-up=2", "23|45|"},
      {"page-ranges=2-5 booklet=yes", "25|34|"},
      {"outputorder=reverse page-ranges=-2", "2|1|"},
      {"number-up=2 page-set=odd", "12|5|"}};
  for (const auto &[words, expected] : cases) {
    EXPECT_EQ(WordsOf(Print(document, words).output), expected) << words;
    EXPECT_EQ(WordsOf(Print(text, words, "text").output), expected) << words;
  }
}

TEST(LaidOutJob, ASelectionThatCannotBeMadeEndsWithOneSentence) {
  const auto expect = [](const std::string &job, const std::string &words, const std::string &type,
                         const std::string &sentence) {
    const FilterRun run = Print(job, words, type);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "kpxfilter: " + sentence + "\n");
  };
  expect("%!\nshowpage\n", "page-ranges=2", "postscript",
         "the pages of \"page-ranges=2\" cannot be told from the others in this job: it does not "
         "mark its pages");
  expect(Pages({"", ""}), "page-ranges=9", "postscript",
         "\"page-ranges=9\" selects none of the job's 2 pages");
  expect("text\n", "page-ranges=x", "text",
         "\"page-ranges=x\" does not name pages: write for example 1-4,7,9-");
}

TEST(LaidOutJob, ADiskThatIsFullIsSaidAndNothingIsPrinted) {
  const TemporaryDirectory directory;
  const std::string job = directory.Write("job.ps", Pages({std::string(100000, ' ')}));
  const std::string command = "(trap '' XFSZ; ulimit -f 8; exec " KPX_FILTER
                              " '*Nup=2' -JT -eT -Lanna --filter --type postscript <" +
                              job + " 2>" + directory.Path("errors") + ") | cat >" +
                              directory.Path("out");
  EXPECT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(ContentOf(directory.Path("out")), "");
  EXPECT_EQ(ContentOf(directory.Path("errors")), "kpxfilter: temporary file: File too large\n");
}

// A program's own one copy and one side, and what a printer with both has in force on the page.
TEST(LaidOutJob, WhatIsChosenWinsOverWhatAProgramWritesByDefault) {
  const auto in_force = [](const std::string &set, const std::string &options) {
    std::string job =
        Pages({"currentpagedevice dup /NumCopies get = dup /Duplex get = /Tumble get =\n"});
    job.insert(job.find("%%Page: 1 1"),
               "%%BeginSetup\n<<" + set + ">> setpagedevice\n%%EndSetup\n");
    return Render(Print(job, options).output, "ljet4d").messages;
  };
  const std::string usual = "/NumCopies 1 /Duplex false";
  EXPECT_EQ(in_force(usual, ""), "1\nfalse\nfalse\n");
  EXPECT_EQ(in_force(usual, "*NrCopies=2 *Duplex=DuplexTumble"), "2\ntrue\ntrue\n");
  EXPECT_EQ(in_force(usual, "copies=2 sides=two-sided-long-edge number-up=2"), "2\ntrue\nfalse\n");
  EXPECT_EQ(in_force("/NumCopies 3 /Duplex true /Tumble false", "*NrCopies=2 *Duplex=DuplexTumble"),
            "3\ntrue\nfalse\n")
      << "what the job wants to be unusual stays";
}

}  // namespace
