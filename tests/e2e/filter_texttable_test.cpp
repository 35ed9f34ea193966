// What text jobs print, kind by kind: the words of each page in the order in which its reader meets
// them, and what standard error says.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "filterrun.h"
#include "printedwords.h"

namespace {

const std::string kPpd = KPX_PPD_DIR "/vek41201.ppd";

struct Case {
  const char *name;
  std::string options, text;
  std::vector<std::string> pages;    // of each side its words
  std::string ppd = kPpd, def = {};  // the queue's option file; empty: none
  std::string warning = {};          // a part of standard error; empty: it says nothing
};

std::string Times(const std::string &text, size_t count) {
  std::string result;
  for (size_t i = 0; i < count; ++i) result += text;
  return result;
}

// Pages "p1", "p2" ... each with its word at the top.
std::string NumberedPages(size_t count) {
  std::string text;
  for (size_t i = 1; i <= count; ++i) text += (i > 1 ? "\f" : "") + ("p" + std::to_string(i));
  return text;
}

// A line of `room` cells and one more.
Case SizeCase(const char *name, const std::string &size, size_t room) {
  const std::string full(room, 'm');
  return {name, "*FontSize=" + size, full + "n\n", {full + " n"}};
}

const std::vector<Case> kCases = {
    {"booklet_1", "*Booklet=1", NumberedPages(1), {"p1", ""}},
    {"booklet_2", "*Booklet=1", NumberedPages(2), {"p1", "p2"}},
    {"booklet_3", "*Booklet=1", NumberedPages(3), {"p1", "p2 p3"}},
    {"booklet_4", "*Booklet=1", NumberedPages(4), {"p4 p1", "p2 p3"}},
    {"booklet_5", "*Booklet=1", NumberedPages(5), {"p1", "p2", "p3", "p4 p5"}},
    {"booklet_8", "*Booklet=1", NumberedPages(8), {"p8 p1", "p2 p7", "p6 p3", "p4 p5"}},
    {"booklet_9", "*Booklet=1", NumberedPages(9), {"p1", "p2", "p3", "p4 p9", "p8 p5", "p6 p7"}},
    {"booklet_then_nup", "*Booklet=1 *Nup=1", NumberedPages(2), {"p1", "p2"}},
    {"nup_then_booklet", "*Nup=4 *Booklet=1", NumberedPages(3), {"p1", "p2 p3"}},
    {"tabs_and_form_feeds", "", "a\tb\fc\f\fd\f", {"a b", "c", "", "d"}},
    {"form_feed_alone", "", "\f", {""}},
    {"form_feed_and_line_feed", "", "a\f\nb\n", {"a", "b"}},
    {"bold", "", "b\bbo\bol\bld\bd\n", {"bold"}},
    {"controls", "", std::string("a\0b\007c\033d\013e", 9), {"abcde"}},
    {"carriage_return", "", "ab\r  cd\r\nlast", {"abcd last"}},
    {"line_ends", "", "a\r\nb\r\n\r\nlast", {"a b last"}},
    {"empty", "", "", {}},
    {"latin1", "", "\xE9t\xE9\n\xC3\xA9t\xC3\xA9 \xFC\xDF\n", {"été été üß"}},
    {"windows_1252", "", "\x93q\x94 \x80 5 \x85 it\x92s \x96", {"“q” € 5 … it’s –"}},
    {"utf16", "", std::string("\xFF\xFEG\0\xFC\0\n\0\x16\x04\x3B\x04", 12), {"Gü Жл"}},
    {"accents", "", "äöü ßàç € “x” … ÿ Œ\n", {"äöü ßàç € “x” … ÿ Œ"}},
    {"extended", "", "žšŠ łął", {"žšŠ łął"}},
    {"greek", "", "αβγ Ελλάδα\n", {"αβγ Ελλάδα"}},
    {"cyrillic", "", "Привет ёж\n", {"Привет ёж"}},
    {"hebrew", "", "x שלום y\n", {"x םולש y"}},
    {"vietnamese", "", "ếệượđ\n", {"ếệượđ"}},
    {"without_font",
     "",
     "a \U0010FF00 b\n",
     {},
     kPpd,
     "",
     "1 character that no font of this host has is printed as a box with its code: U+10FF00"},
    {"combining", "", "e\u0301A\u030a n\u0303\n", {"éÅ ñ"}},
    {"arrows_and_boxes", "", "→∞≠ ┌─┐│└┘ ░█ ⅛♥№\n", {"→∞≠ ┌─┐│└┘ ░█ ⅛♥№"}},
    {"byte_order_mark", "", "\xEF\xBB\xBFx", {"x"}},
    {"quotes", "", "it's 'a' `cmd` \"q\" a-b\n", {"it's 'a' `cmd` \"q\" a-b"}},
    {"eighty_a4", "", std::string(80, '0') + "\n", {std::string(80, '0')}},
    {"eighty_letter", "*PageSize=Letter", std::string(80, '0') + "\n", {std::string(80, '0')}},
    {"landscape",
     "*Orientation=Landscape",
     std::string(109, 'm') + "n",
     {std::string(109, 'm') + " n"}},
    {"turned",
     "*Orientation=RotLandscape",
     std::string(109, 'm') + "n",
     {std::string(109, 'm') + " n"}},
    SizeCase("size_4", "4", 225),
    SizeCase("size_6", "6", 150),
    SizeCase("size_8", "8", 112),
    SizeCase("size_10", "10", 90),
    SizeCase("size_14", "14", 64),
    SizeCase("size_24", "24", 37),
    SizeCase("size_72", "72", 12),
    {"helvetica", "*FontName=Helvetica", "Grüße it's", {"Grüße it's"}},
    {"times", "*FontName=Times-Roman", "Grüße it's", {"Grüße it's"}},
    {"courier_bold", "*FontName=Courier-Bold", "Grüße it's", {"Grüße it's"}},
    {"symbol", "*FontName=Symbol", "abc", {"αβχ"}},
    {"dingbats", "*FontName=ZapfDingbats", "4", {"✔"}},
    {"bad_font", "*FontName=A(B", "Grüße", {"Grüße"}, kPpd, "", "cannot be the name of a font"},
    {"iso_by_line", "", "\xFCx\nü\n", {"üx ü"}},
    {"wrapped_words", "*FontName=Helvetica", Times("wordy ", 30), {Times("wordy ", 29) + "wordy"}},
    {"no_wrap", "*TextWrap=0", std::string(81, 'm') + "\nnext", {std::string(80, 'm') + " next"}},
    {"numbered", "*TextLineNumbers=1", "a\n\nb\n", {"1 a 2 3 b"}},
    {"columns", "columns=2", "a\fb\fc", {"a b", "c"}},
    {"custom_paper",
     "*PageSize=Mine",
     "x",
     {"x"},
     kPpd,
     "*PageSize=A4\n*CustomPaperSize=Mine''400''600\n"},
    {"custom_paper_beyond",
     "*PageSize=Mine",
     "x",
     {"x"},
     kPpd,
     "*PageSize=A4\n*CustomPaperSize=Mine''5000''9000\n",
     "is beyond the printer's limits"},
    {"custom_paper_negative",
     "",
     "x",
     {"x"},
     kPpd,
     "*PageSize=A4\n*CustomPaperSize=Mine''-4''600\n",
     "does not define a paper size"},
    {"custom_media",
     "*MediaType=Mine",
     "x",
     {"x"},
     kPpd,
     "*PageSize=A4\n*CustomMediaType=Mine::My own\n"},
    {"staple_and_bin",
     "*StapleLocation=DualPortrait *OutputBin=OutputTray",
     "x",
     {"x"},
     kPpd,
     "",
     "exclude each other"},
    {"paper_and_type",
     "*PageSize=A3 *MediaType=Transparency",
     "x",
     {"x"},
     kPpd,
     "",
     "exclude each other"},
    {"bad_size", "*FontSize=73", "x", {"x"}, kPpd, "", "is not a size from 4 to 72 points"},
    {"bad_number", "*Nup=3", "x", {"x"}, kPpd, "", "is not a number of pages per side"},
    {"postscript_source", "", "%!PS-Adobe-3.0\nshowpage\n", {"%!PS-Adobe-3.0 showpage"}}};

// Where the reader of a page sees a word's first corner; such a one of two or of six pages, or a
// booklet, turns the sheet clockwise, and one of landscape the other way.
std::pair<double, double> Seen(const Case &job, const PrintedPage &page, const PrintedWord &word) {
  const auto has = [&](const char *option) {
    return job.options.find(option) != std::string::npos;
  };
  if (has("Booklet=1") && !has("Nup=1")) return {page.height - word.bottom, word.left};
  if (has("=Landscape")) return {page.height - word.bottom, word.left};
  if (has("=RotLandscape")) return {word.top, page.width - word.right};
  return {word.left, word.top};
}

// The words in the order of reading: line by line, from the left. Those that touch are one.
std::string Read(const Case &job, const PrintedPage &page) {
  struct Found {
    double x, y, end;
    std::string text;
  };
  std::vector<Found> words;
  for (const PrintedWord &word : page.words) {
    const auto [x, y] = Seen(job, page, word);
    const bool lies = job.options.find("Landscape") != std::string::npos ||
                      job.options.find("Booklet") != std::string::npos;
    words.push_back(
        {x, y, x + (lies ? word.bottom - word.top : word.right - word.left), word.text});
  }
  // A glyph of the host is as tall as a line and a half to pdftotext.
  const auto is_before = [](const Found &a, const Found &b) {
    return std::abs(a.y - b.y) > 5 ? a.y < b.y : a.x < b.x;
  };
  std::sort(words.begin(), words.end(), is_before);
  std::string text;
  for (size_t i = 0; i < words.size(); ++i) {
    const bool touches = i > 0 && std::abs(words[i].x - words[i - 1].end) < 1 &&
                         std::abs(words[i].y - words[i - 1].y) < 5;
    text += (i == 0 || touches ? "" : " ") + words[i].text;
  }
  return text;
}

TEST(TextTable, EveryKindOfTextPrintsWhatItSays) {
  const TemporaryDirectory directory;
  std::vector<FilterInput> inputs;
  for (const Case &job : kCases) {
    FilterCall call;
    call.type = "text";
    call.options = job.options;
    call.ppd_file = job.ppd;
    if (!job.def.empty()) call.def_file = directory.Write(std::string(job.name) + ".def", job.def);
    inputs.push_back({call, job.text});
  }
  const std::vector<FilterRun> runs = FilterAll(inputs);
  std::vector<std::string> outputs;
  for (size_t i = 0; i < runs.size(); ++i) {
    const Case &job = kCases[i];
    EXPECT_EQ(runs[i].status, 0) << job.name << runs[i].errors;
    EXPECT_NE(runs[i].errors.find(job.warning), std::string::npos) << job.name << runs[i].errors;
    EXPECT_EQ(runs[i].errors.empty(), job.warning.empty()) << job.name << runs[i].errors;
    outputs.push_back(runs[i].output);
  }
  const auto printed = PrintedPagesOf(outputs);
  ASSERT_EQ(printed.size(), kCases.size());
  for (size_t i = 0; i < kCases.size(); ++i) {
    if (std::string_view(kCases[i].name) == "without_font") continue;  // the box has no text
    std::vector<std::string> pages;
    for (const PrintedPage &page : printed[i]) pages.push_back(Read(kCases[i], page));
    EXPECT_EQ(pages, kCases[i].pages) << kCases[i].name;
  }
}

// Pages a sheet in each order and on each paper: the middle of the page's cell on the sheet.
struct Sheet {
  size_t pages;
  std::string order, paper;
  double width, height;
};

std::vector<Sheet> Sheets() {
  std::vector<Sheet> sheets;
  for (const size_t pages : {1u, 2u, 4u, 6u, 9u, 16u}) {
    for (const char *order : {"Left", "Right", "Down", "Back"}) {
      sheets.push_back({pages, order, "A4", 595, 842});
    }
    sheets.push_back({pages, "Left", "Letter", 612, 792});
    sheets.push_back({pages, "Left", "A3", 842, 1191});
  }
  return sheets;
}

// The column and row of a page on its sheet, as the reader holds it, and how many there are.
struct Cell {
  size_t column, row, columns, rows;
};

Cell CellOf(const Sheet &sheet, size_t page) {
  const size_t columns = sheet.pages == 2   ? 2
                         : sheet.pages == 6 ? 3
                                            : static_cast<size_t>(std::sqrt(sheet.pages) + 0.5);
  const size_t rows = sheet.pages / columns, place = page % sheet.pages;
  const bool has_order = sheet.pages == 2 || sheet.pages == 4;
  const std::string order = has_order ? sheet.order : "Left";
  const bool is_down = order == "Down" || order == "Back";
  size_t column = is_down ? place / rows : place % columns;
  const size_t row = is_down ? place % rows : place / columns;
  if (order == "Right" || order == "Back") column = columns - 1 - column;
  return {column, row, columns, rows};
}

TEST(TextTable, PagesOfASheetStandInTheirCells) {
  constexpr size_t kPages = 17;
  std::vector<FilterInput> inputs;
  for (const Sheet &sheet : Sheets()) {
    FilterCall call;
    call.type = "text";
    call.options = "*PageSize=" + sheet.paper + " *Nup=" + std::to_string(sheet.pages) +
                   " *NupOrder=" + sheet.order;
    call.ppd_file = kPpd;
    inputs.push_back({call, NumberedPages(kPages)});
  }
  std::vector<std::string> outputs;
  for (const FilterRun &run : FilterAll(inputs)) {
    EXPECT_EQ(run.errors, "");
    outputs.push_back(run.output);
  }
  const auto printed = PrintedPagesOf(outputs);
  const std::vector<Sheet> sheets = Sheets();
  ASSERT_EQ(printed.size(), sheets.size());
  for (size_t i = 0; i < sheets.size(); ++i) {
    const Sheet &sheet = sheets[i];
    SCOPED_TRACE(std::to_string(sheet.pages) + sheet.order + sheet.paper);
    ASSERT_EQ(printed[i].size(), (kPages + sheet.pages - 1) / sheet.pages);
    for (size_t page = 0; page < kPages; ++page) {
      const PrintedPage &side = printed[i][page / sheet.pages];
      EXPECT_NEAR(side.width, sheet.width, 0.5);
      EXPECT_NEAR(side.height, sheet.height, 0.5);
      const std::string word = "p" + std::to_string(page + 1);
      const auto found = std::find_if(side.words.begin(), side.words.end(),
                                      [&](const PrintedWord &w) { return w.text == word; });
      ASSERT_NE(found, side.words.end()) << word;
      const bool turned = sheet.pages == 2 || sheet.pages == 6;
      // As parts of the sheet in the reader's hands.
      const double x = turned ? 1 - found->bottom / side.height : found->left / side.width;
      const double y = turned ? found->left / side.width : found->top / side.height;
      const Cell cell = CellOf(sheet, page);
      EXPECT_EQ(static_cast<size_t>(x * static_cast<double>(cell.columns)), cell.column) << word;
      EXPECT_EQ(static_cast<size_t>(y * static_cast<double>(cell.rows)), cell.row) << word;
    }
  }
}

TEST(TextTable, LongTextsKeepEveryCharacter) {
  std::vector<FilterInput> inputs;
  FilterCall call;
  call.type = "text";
  call.ppd_file = kPpd;
  inputs.push_back({call, std::string(100000, 'm')});
  inputs.push_back({call, Times("ü", 50000)});
  std::vector<std::string> outputs;
  for (const FilterRun &run : FilterAll(inputs)) outputs.push_back(run.output);
  const auto printed = PrintedPagesOf(outputs);
  for (size_t i = 0; i < inputs.size(); ++i) {
    size_t bytes = 0;
    for (const PrintedPage &page : printed[i]) {
      for (const PrintedWord &word : page.words) bytes += word.text.size();
    }
    EXPECT_EQ(bytes, inputs[i].input.size());
    EXPECT_EQ(printed[i].size(), i == 0 ? 20u : 10u);
    EXPECT_EQ(printed[i][0].words.size(), 64u) << "a line is a word";
  }
}

struct PaperCase {
  const char *name;
  double width, height;
};

TEST(TextTable, EveryPaperHasItsTextInsideItsMargins) {
  const std::vector<PaperCase> papers = {{"A3", 842, 1191},      {"A6", 297, 420},
                                         {"Postcard", 284, 420}, {"Legal", 612, 1008},
                                         {"ARCHB", 864, 1296},   {"Statement", 396, 612}};
  std::vector<FilterInput> inputs;
  for (const PaperCase &paper : papers) {
    FilterCall call;
    call.type = "text";
    call.ppd_file = kPpd;
    call.options = "*PageSize=" + std::string(paper.name);
    inputs.push_back({call, std::string(300, 'm') + Times("\nm", 200)});
  }
  std::vector<std::string> outputs;
  for (const FilterRun &run : FilterAll(inputs)) outputs.push_back(run.output);
  const auto printed = PrintedPagesOf(outputs);
  for (size_t i = 0; i < papers.size(); ++i) {
    SCOPED_TRACE(papers[i].name);
    ASSERT_GE(printed[i].size(), 2u);
    for (const PrintedPage &page : printed[i]) {
      EXPECT_NEAR(page.width, papers[i].width, 0.5);
      EXPECT_NEAR(page.height, papers[i].height, 0.5);
      for (const PrintedWord &word : page.words) {
        EXPECT_GE(word.left, 35.9);
        EXPECT_LE(word.right, page.width - 17.9);
        EXPECT_GE(word.top, 35.9);
        EXPECT_LE(word.bottom, page.height - 31.5);  // letters reach below their line
      }
    }
  }
}

TEST(TextTable, UnderlinedTextStandsOnItsLine) {
  FilterCall call;
  call.type = "text";
  const auto printed = PrintedPagesOf({Filter(call, "x _\bu").output});
  ASSERT_EQ(printed[0].size(), 1u);
  const std::vector<PrintedWord> &words = printed[0][0].words;
  const auto left_of = [&](const char *text) {
    const auto found = std::find_if(words.begin(), words.end(),
                                    [&](const PrintedWord &word) { return word.text == text; });
    return found == words.end() ? -1 : found->left;
  };
  EXPECT_GT(left_of("u"), 0);
  EXPECT_NEAR(left_of("u"), left_of("_"), 0.01);
}

// With whatever fonts this host has: a character without one is a box. docs/scripts.png shows the
// page.
TEST(TextTable, APageOfManyScriptsHasAllItsLines) {
  const std::string text = ContentOf(KPX_TEST_DATA "/data/scripts.txt");
  FilterCall call;
  call.type = "text";
  const FilterRun run = Filter(call, text);
  EXPECT_EQ(run.status, 0);
  EXPECT_LE(std::count(run.errors.begin(), run.errors.end(), '\n'), 1) << run.errors;
  const auto printed = PrintedPagesOf({run.output});
  ASSERT_EQ(printed[0].size(), 1u);
  const std::vector<PrintedWord> &words = printed[0][0].words;
  const double cell = 541.0 / 80;
  std::istringstream lines(text);
  size_t scripts = 0;
  for (std::string line; std::getline(lines, line); ++scripts) {
    const double baseline = 842 - 794 + 12 * static_cast<double>(scripts);
    const auto has_word = [&](double from, double to) {
      return std::any_of(words.begin(), words.end(), [&](const PrintedWord &word) {
        return word.left > from && word.left < to && word.top < baseline - 4 &&
               word.bottom > baseline - 4;
      });
    };
    EXPECT_TRUE(has_word(35, 37)) << "the name in " << line;
    EXPECT_TRUE(has_word(36 + 12.5 * cell, 577)) << "the words in " << line;
  }
  EXPECT_GE(scripts, 30u);
}

TEST(TextTable, SettingsOfThePrinterAreInTheJob) {
  constexpr const char *kSettings[] = {
      "Collate=True",        "Duplex=DuplexTumble",          "InputSlot=Tray2",
      "MediaType=CardStock", "Resolution=1200dpi",           "HalfTone=Coarse",
      "Jog=EndOfSet",        "StapleLocation=DualLandscape", "Punch=Punch2Hole"};
  for (const char *setting : kSettings) {
    FilterCall call;
    call.type = "text";
    call.ppd_file = kPpd;
    call.options = "*" + std::string(setting);
    const FilterRun run = Filter(call, "x");
    std::string feature = setting;
    feature.replace(feature.find('='), 1, " ");
    EXPECT_NE(run.output.find("%%BeginFeature: *" + feature + "\n"), std::string::npos) << setting;
  }
  FilterCall call;
  call.type = "text";
  call.ppd_file = kPpd;
  call.options = "*NrCopies=3 *OutputMode=Draft *EdgeToEdge=True *Delivery=PrintLater";
  const std::string output = Filter(call, "x").output;
  for (const char *part : {"/NumCopies 3", "@PJL SET"}) {
    EXPECT_NE(output.find(part), std::string::npos) << part;
  }
}

TEST(TextTable, OtherFilesAreRefusedInOneSentence) {
  constexpr std::pair<const char *, const char *> kFiles[] = {
      {"\x89PNG\r\n\x1A\n", "picture"}, {"%PDF-1.4\n", "PDF"}, {"\x1F\x8B\x08", "compressed"}};
  for (const auto &[file, what] : kFiles) {
    FilterCall call;
    call.type = "text";
    call.ppd_file = kPpd;
    const FilterRun run = Filter(call, file);
    EXPECT_EQ(run.status, 1) << what;
    EXPECT_EQ(run.output, "") << what;
    EXPECT_NE(run.errors.find(what), std::string::npos) << run.errors;
  }
}

}  // namespace
