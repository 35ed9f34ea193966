// PDF documents of many producers as jobs for PostScript printers: each page looks as in its
// source. What Debian packages have installed, and what the programs of this machine make.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <sstream>

#include "filterrun.h"
#include "ghostscript.h"

namespace {

constexpr char kPpd[] = KPX_PPD_DIR "/vek41201.ppd";

bool IsLong() { return std::getenv("KPX_LONG") != nullptr; }

// What a program prints on standard output; nothing when it fails.
std::string OutputOfShell(const std::string &command) {
  const TemporaryDirectory directory;
  if (std::system((command + " >" + directory.Path("out") + " 2>/dev/null").c_str()) != 0)
    return {};
  return ContentOf(directory.Path("out"));
}

std::string FieldOf(const std::string &info, const std::string &name) {
  const size_t at = info.find(name + ":");
  if (at == std::string::npos) return {};
  const size_t start = info.find_first_not_of(' ', at + name.size() + 1);
  return info.substr(start, info.find('\n', start) - start);
}

struct Document {
  std::string path, producer;
  int pages = 0;
  double width = 0, length = 0;  // of its first page, points
};

// A document that the paper can hold as it is: then nothing is scaled.
std::optional<Document> DocumentAt(const std::string &path) {
  const std::string info = OutputOfShell("pdfinfo '" + path + "'");
  const std::string size = FieldOf(info, "Page size");
  if (size.empty() || FieldOf(info, "Page rot") != "0") return std::nullopt;
  Document document{.path = path, .producer = FieldOf(info, "Producer")};
  document.pages = std::stoi(FieldOf(info, "Pages"));
  document.width = std::stod(size);
  document.length = std::stod(size.substr(size.find(" x ") + 3));
  const bool fits = document.width >= 284 && document.length >= 420 && document.width <= 864 &&
                    document.length <= 1296;
  return fits ? std::optional(document) : std::nullopt;
}

// Documents of as many producers as there are, at most `most` of each.
std::vector<Document> DocumentsIn(const std::vector<std::string> &roots, int most) {
  std::vector<std::string> paths;
  for (const std::string &root : roots) {
    std::error_code error;
    for (std::filesystem::recursive_directory_iterator file(root, error), end; file != end;
         file.increment(error)) {
      if (file->path().extension() == ".pdf" && !file->is_symlink()) paths.push_back(file->path());
    }
  }
  std::sort(paths.begin(), paths.end());
  std::vector<Document> documents;
  std::map<std::string, int> counts;
  for (const std::string &path : paths) {
    const std::optional<Document> document = DocumentAt(path);
    if (document && ++counts[document->producer] <= most) documents.push_back(*document);
  }
  return documents;
}

// A picture of the device pgmraw.
struct Picture {
  size_t width = 0, length = 0;
  std::string dots;  // 0 is black
};

Picture PictureOf(const std::string &pgm) {
  std::istringstream header(pgm.substr(pgm.find('\n', pgm.find('#')) + 1, 40));
  Picture picture;
  header >> picture.width >> picture.length;
  picture.dots = pgm.substr(pgm.size() - picture.width * picture.length);
  return picture;
}

// Part of a picture: corners in dots, the far ones not included.
struct Area {
  size_t left = 0, top = 0, right = 0, bottom = 0;
};

Area Whole(const Picture &picture) { return {0, 0, picture.width, picture.length}; }

// What is not white in the area.
Area InkIn(const Picture &picture, const Area &area) {
  Area ink{area.right, area.bottom, area.left, area.top};
  for (size_t y = area.top; y < area.bottom; ++y) {
    for (size_t x = area.left; x < area.right; ++x) {
      if (static_cast<unsigned char>(picture.dots[y * picture.width + x]) > 200) continue;
      ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
             std::max(ink.bottom, y + 1)};
    }
  }
  return ink;
}

// The area as the mean brightness of squares, as many in each row and column: lines that are a dot
// wider or narrower, as programs draw them, weigh little, missing ones much.
template <size_t kSquares>
std::vector<double> Squares(const Picture &picture, const Area &area) {
  std::vector<double> sums(kSquares * kSquares), counts(kSquares * kSquares);
  for (size_t y = area.top; y < area.bottom; ++y) {
    for (size_t x = area.left; x < area.right; ++x) {
      const size_t column = (x - area.left) * kSquares / (area.right - area.left);
      const size_t row = (y - area.top) * kSquares / (area.bottom - area.top);
      sums[row * kSquares + column] +=
          static_cast<unsigned char>(picture.dots[y * picture.width + x]) / 255.0;
      ++counts[row * kSquares + column];
    }
  }
  for (size_t i = 0; i < sums.size(); ++i) sums[i] = counts[i] == 0 ? 1 : sums[i] / counts[i];
  return sums;
}

// Mean of the differences of all squares, from 0 to 1.
double Difference(const std::vector<double> &a, const std::vector<double> &b) {
  double sum = 0;
  for (size_t i = 0; i < a.size(); ++i) sum += std::abs(a[i] - b[i]);
  return sum / static_cast<double>(a.size());
}

FilterRun Print(const Document &document, const std::string &options) {
  return Filter({.options = options, .ppd_file = kPpd, .def_file = {}}, ContentOf(document.path));
}

// A page of the document itself, 108 dots an inch.
Picture SourcePage(const Document &document, size_t page) {
  const TemporaryDirectory directory;
  const std::string number = std::to_string(page), picture = directory.Path("page");
  const auto dots = [](double points) {
    return std::to_string(std::lround(std::round(points) * 1.5));
  };
  const std::string command =
      "gs -q -dSAFER -dBATCH -dNOPAUSE -r108 -sDEVICE=pgmraw -dFirstPage=" + number +
      " -dLastPage=" + number + " -g" + dots(document.width) + "x" + dots(document.length) +
      " -o " + picture + " '" + document.path + "' >/dev/null 2>&1";
  if (std::system(command.c_str()) != 0) throw std::runtime_error(command);
  return PictureOf(ContentOf(picture));
}

class PdfCorpus : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    made_ = std::make_unique<TemporaryDirectory>();
    const std::string command = KPX_MAKEPDFS " " + made_->Path("");
    if (OutputOfShell(command).empty()) throw std::runtime_error(command + " made nothing");
  }
  static void TearDownTestSuite() { made_.reset(); }

  // At most `most` of each producer; those of packages in long runs only, since there may be
  // thousands.
  static std::vector<Document> Documents(int most) {
    std::vector<std::string> roots = {made_->Path(""), "/usr/share/cups/data"};
    if (IsLong()) roots.insert(roots.end(), {"/usr/share/doc", "/usr/share/texmf"});
    return DocumentsIn(roots, most);
  }

  static std::unique_ptr<TemporaryDirectory> made_;
};

std::unique_ptr<TemporaryDirectory> PdfCorpus::made_;

// The pages that were compared.
int ComparePages(const Document &document) {
  constexpr double kMost = 0.03;
  constexpr size_t kSquares = 70;
  const std::string paper = std::to_string(std::lround(document.width)) + "x" +
                            std::to_string(std::lround(document.length));
  const FilterRun run =
      Print(document, "PageSize=Custom." + paper + " page-ranges=1-2 print-scaling=none");
  EXPECT_EQ(run.status, 0) << run.errors;
  const Rendering printed = Render(run.output, "pgmraw", 108);
  int compared = 0;
  for (size_t page = 1; page <= printed.pages.size(); ++page) {
    const Picture source = SourcePage(document, page), target = PictureOf(printed.pages[page - 1]);
    // Half a dot of the paper's edge, or a page of another size.
    if (source.width != target.width || source.length != target.length) continue;
    const auto was = Squares<kSquares>(source, Whole(source));
    const double difference = Difference(was, Squares<kSquares>(target, Whole(target)));
    EXPECT_LT(difference, kMost) << "page " << page;
    EXPECT_GE(Difference(was, std::vector<double>(was.size(), 1)), 2 * difference)
        << "page " << page << " may as well be blank";
    ++compared;
  }
  return compared;
}

TEST_F(PdfCorpus, PagesLookAsInTheirSources) {
  const std::vector<Document> documents = Documents(IsLong() ? 3 : 1);
  std::map<std::string, int> producers;
  int compared = 0;
  for (const Document &document : documents) {
    SCOPED_TRACE(document.path + " of " + document.producer);
    if (ComparePages(document) == 0) continue;
    ++compared;
    ++producers[document.producer];
  }
  EXPECT_GE(compared, IsLong() ? 50 : 4) << "of " << documents.size() << " documents";
  EXPECT_GE(producers.size(), IsLong() ? 30u : 4u);
}

// How much what is in the area differs from each of the pages; nothing when the area is empty.
std::vector<double> DifferencesFrom(const Picture &sheet, const Area &area,
                                    const std::vector<Picture> &pages) {
  constexpr size_t kSquares = 24;
  const Area ink = InkIn(sheet, area);
  std::vector<double> differences;
  if (ink.left >= ink.right) return differences;
  const auto seen = Squares<kSquares>(sheet, ink);
  for (const Picture &page : pages) {
    differences.push_back(Difference(seen, Squares<kSquares>(page, InkIn(page, Whole(page)))));
  }
  return differences;
}

// Four pages on a sheet: in the cells, by rows, are the pages one to four. No other page looks more
// like what is in a cell, but for one that looks almost the same. False when the pages are too
// empty to tell.
bool CompareCells(const Document &document) {
  constexpr double kMost = 0.1, kAlmostTheSame = 0.02;
  std::vector<Picture> pages;
  for (size_t page = 1; page <= 4; ++page) {
    pages.push_back(SourcePage(document, page));
    // A page that is empty, or has a few letters, tells nothing.
    const Area ink = InkIn(pages.back(), Whole(pages.back()));
    if (ink.left + pages.back().width / 4 > ink.right) return false;
    if (ink.top + pages.back().length / 4 > ink.bottom) return false;
  }
  const FilterRun run = Print(document, "number-up=4 page-ranges=1-4 PageSize=A4");
  EXPECT_EQ(run.status, 0) << run.errors;
  const Rendering printed = Render(run.output, "pgmraw", 108);
  if (printed.pages.size() != 1) {
    ADD_FAILURE() << printed.pages.size() << " sheets" << printed.messages;
    return true;
  }
  const Picture sheet = PictureOf(printed.pages[0]);
  const size_t middle = sheet.width / 2, half = sheet.length / 2;
  const std::array<Area, 4> cells = {{{0, 0, middle, half},
                                      {middle, 0, sheet.width, half},
                                      {0, half, middle, sheet.length},
                                      {middle, half, sheet.width, sheet.length}}};
  for (size_t i = 0; i < cells.size(); ++i) {
    const std::vector<double> differences = DifferencesFrom(sheet, cells[i], pages);
    if (differences.empty()) {
      ADD_FAILURE() << "cell " << i << " is empty";
      continue;
    }
    const double least = *std::min_element(differences.begin(), differences.end());
    EXPECT_LT(differences[i], kMost) << "cell " << i;
    EXPECT_LT(differences[i], least + kAlmostTheSame) << "cell " << i;
  }
  return true;
}

TEST_F(PdfCorpus, PagesASheetAreInTheirCells) {
  int compared = 0;
  for (const Document &document : Documents(1)) {
    if (document.pages < 4 || document.width > document.length) continue;
    SCOPED_TRACE(document.path + " of " + document.producer);
    if (!CompareCells(document)) continue;
    if (++compared == (IsLong() ? 25 : 2)) break;
  }
  EXPECT_GE(compared, IsLong() ? 10 : 1);
}

}  // namespace
