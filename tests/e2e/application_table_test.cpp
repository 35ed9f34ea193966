// A table of jobs: what applications ask for, and what the printer makes of it.
// docs/applications.md shows it.
#include "applicationtest.h"
#include "observedjobs.h"

namespace {

using Words = std::vector<std::string>;

struct Row {
  const char *application;
  Words files;  // names of documents
  Words asked;  // as the application has it
  // What is usual (five pages A4, one-sided, once) and not told otherwise.
  int pages = 5;
  std::string paper = "595x842";
  std::string sides = "one-sided";
  std::string copies = "1";
  std::string finishing = "none";
};

const Row kRows[] = {
    {"lp", {"pdf"}, {}},
    {"lp", {"pdf"}, {"-o", "sides=two-sided-long-edge"}, 5, "595x842", "long edge"},
    {"lp", {"pdf"}, {"-o", "sides=two-sided-short-edge"}, 5, "595x842", "short edge"},
    {"lp", {"pdf"}, {"-n", "3"}, 5, "595x842", "one-sided", "3"},
    {"lp", {"pdf"}, {"-n", "2", "-o", "Collate=True"}, 5, "595x842", "one-sided", "2 collated"},
    {"lp", {"pdf"}, {"-o", "media=A3"}, 5, "842x1191"},
    {"lp", {"pdf"}, {"-o", "PageSize=Custom.400x600"}, 5, "400x600"},
    {"lp",
     {"pdf"},
     {"-o", "finishings=20"},
     5,
     "595x842",
     "one-sided",
     "1",
     "staple SinglePortrait"},
    {"lp",
     {"pdf"},
     {"-o", "finishings=28", "-o", "sides=two-sided-long-edge"},
     5,
     "595x842",
     "long edge",
     "1",
     "staple DualPortrait"},
    {"lp",
     {"pdf"},
     {"-o", "output-bin=finisher-tray"},
     5,
     "595x842",
     "one-sided",
     "1",
     "bin FinisherTray"},
    {"lp", {"pdf"}, {"-o", "page-ranges=2-3"}, 2},
    {"lp", {"pdf"}, {"-o", "page-set=odd"}, 3},
    {"lp", {"pdf"}, {"-o", "number-up=4"}, 2},
    {"lp",
     {"pdf"},
     {"-o", "number-up=2", "-o", "sides=two-sided-short-edge"},
     3,
     "595x842",
     "short edge"},
    {"lp", {"pdf"}, {"-o", "orientation-requested=4"}},
    {"lp", {"pdf"}, {"-o", "*PageSize=A5 *NrCopies=4"}, 5, "420x595", "one-sided", "4"},
    {"lp", {"ps"}, {}},
    {"lp", {"ps"}, {"-n", "2", "-o", "Duplex=DuplexTumble"}, 5, "595x842", "short edge", "2"},
    {"lp", {"ps"}, {"-o", "media=Legal"}, 5, "612x1008"},
    {"lp",
     {"ps"},
     {"-o", "StapleLocation=DualLandscape"},
     5,
     "595x842",
     "one-sided",
     "1",
     "staple DualLandscape"},
    {"lp", {"ps", "pdf"}, {"-n", "2"}, 10, "595x842", "one-sided", "2"},
    {"lp", {"png"}, {"-o", "media=A5"}, 1, "420x595"},
    {"lp", {"jpg"}, {"-n", "2", "-o", "sides=two-sided-long-edge"}, 1, "595x842", "long edge", "2"},
    {"lp", {"png", "ps", "pdf"}, {"-o", "media=Letter"}, 11, "612x792"},
    {"lp", {"txt"}, {}, 3},
    {"lp", {"txt"}, {"-n", "2", "-o", "sides=two-sided-long-edge"}, 3, "595x842", "long edge", "2"},
    {"lp",
     {"txt"},
     {"-o", "media=Letter", "-o", "finishings=4"},
     3,
     "612x792",
     "one-sided",
     "1",
     "staple SinglePortrait"},
    // GTK always asks for collated copies.
    {"GTK program", {}, {}, 5, "595x842", "one-sided", "1 collated"},
    {"GTK program",
     {},
     {"cups-Duplex=DuplexNoTumble", "cups-StapleLocation=SinglePortrait", "n-copies=2"},
     5,
     "595x842",
     "long edge",
     "2 collated",
     "staple SinglePortrait"},
    {"GTK program", {}, {"cups-number-up=4"}, 2, "595x842", "one-sided", "1 collated"},
    {"GTK program",
     {},
     {"print-pages=ranges", "page-ranges=1-2"},
     2,
     "595x842",
     "one-sided",
     "1 collated"},
    {"CUPS's test page", {"test"}, {}, 1},
    {"CUPS's test page", {"test"}, {"-o", "media=A3"}, 1, "842x1191"},
    {"IPP client",
     {"pdf"},
     {"ATTR collection media-col { MEMBER collection media-size "
      "{ MEMBER integer x-dimension 14800 MEMBER integer y-dimension 21000 } }"},
     5,
     "420x595"},
    {"IPP client",
     {"pdf"},
     {"ATTR keyword sides two-sided-short-edge"},
     5,
     "595x842",
     "short edge"},
    {"IPP client",
     {"pdf"},
     {"ATTR integer copies 2",
      "ATTR keyword multiple-document-handling separate-documents-collated-copies"},
     5,
     "595x842",
     "one-sided",
     "2 collated"},
    {"IPP client",
     {"ps"},
     {"ATTR enum finishings 29", "ATTR keyword output-bin finisher-tray"},
     5,
     "595x842",
     "one-sided",
     "1",
     "staple DualLandscape, bin FinisherTray"},
    {"IPP client",
     {"pdf"},
     {"ATTR rangeOfInteger page-ranges 4-5", "ATTR enum print-quality 5"},
     2},
    {"print tool", {"pdf"}, {"*Nup=4"}, 2},
    {"print tool", {"pdf"}, {"*Booklet=1"}, 4, "595x842", "short edge"},
    {"print tool",
     {"ps", "png"},
     {"*Duplex=DuplexNoTumble", "*PageSize=A3"},
     6,
     "842x1191",
     "long edge"},
    {"print tool",
     {"txt"},
     {"*Nup=2", "*OutputBin=FinisherTray"},
     2,
     "595x842",
     "one-sided",
     "1",
     "bin FinisherTray"},
};

std::string Cells(int pages, const std::string &paper, const std::string &sides,
                  const std::string &copies, const std::string &finishing) {
  return std::to_string(pages) + " | " + paper + " | " + sides + " | " + copies + " | " + finishing;
}

std::string Joined(const Words &words, const char *separator) {
  std::string text;
  for (const std::string &word : words) text += (text.empty() ? "" : separator) + word;
  return text;
}

// As a shell takes it, where the words are those of lp.
std::string AskedOf(const Row &row) {
  Words words = row.asked;
  for (std::string &word : words) {
    if (row.application == std::string("lp") && word.find(' ') != std::string::npos) {
      word = "'" + word + "'";
    }
  }
  return words.empty() ? "nothing" : "`" + Joined(words, " ") + "`";
}

std::string LineOf(const Row &row, const std::string &cells) {
  const std::string files = row.files.empty() ? "its own" : Joined(row.files, ", ");
  return "| " + std::string(row.application) + " | " + files + " | " + AskedOf(row) + " | " +
         cells + " |\n";
}

class Table : public Applications {
 protected:
  Table() : texts_("lp2") {
    texts_.Append(Block("text"));
    Describe();
    Run({"gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=jpeggray", "-r20", "-dLastPage=1",
         "-o", files_.Path("picture.jpg"), ps_});
    std::string text;
    for (int line = 1; line <= 180; ++line) text += "line " + std::to_string(line) + "\n";
    files_.Write("text.txt", text);
  }

  std::string PathOf(const std::string &name) const {
    if (name == "test") return "/usr/share/cups/data/default-testpage.pdf";
    if (name == "png" || name == "jpg") return files_.Path("picture." + name);
    return files_.Path((name == "txt" ? "text." : "doc.") + name);
  }

  // Sends the row's job as its application does.
  void Send(const Row &row) {
    Words paths;
    for (const std::string &file : row.files) paths.push_back(PathOf(file));
    const bool is_text = row.files == Words{"txt"};
    Words command = {"lp", "-d", is_text ? "lp2" : "lp1"};
    const std::string application = row.application;
    if (application == "GTK program") {
      command = {KPX_GTKPRINT, "lp1", "5"};
    } else if (application == "IPP client") {
      PrintByIpp(Joined(row.asked, " "), paths.at(0));
      return;
    }
    if (application != "print tool") {
      command.insert(command.end(), row.asked.begin(), row.asked.end());
    }
    command.insert(command.end(), paths.begin(), paths.end());
    Run(command);
  }

  std::string Received(const Row &row) {
    const bool is_tool = row.application == std::string("print tool");
    const ChangedFile settings(
        "/opt/orlan/data/users/root:lp1.def",
        is_tool ? std::optional<std::string>(Joined(row.asked, "\n") + "\n") : std::nullopt);
    Send(row);
    const std::optional<std::string> job = printed_.Next();
    if (!job) throw std::runtime_error(LineOf(row, queue_.State()));
    return *job;
  }

  const TestQueue texts_;
};

TEST_F(Table, EveryApplicationGetsWhatItAsksFor) {
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root the filter takes lp for the file's owner";
  std::vector<std::string> jobs;
  for (const Row &row : kRows) jobs.push_back(Received(row));
  const std::vector<ObservedJob> observed = Observe(jobs);
  std::string table;
  for (size_t i = 0; i < observed.size(); ++i) {
    const Row &row = kRows[i];
    const ObservedJob &job = observed[i];
    const std::string cells = Cells(job.pages, job.paper, job.sides, job.copies, job.finishing);
    table += LineOf(row, cells);
    EXPECT_EQ(cells, Cells(row.pages, row.paper, row.sides, row.copies, row.finishing))
        << LineOf(row, "");
    EXPECT_FALSE(job.has_blank_page) << LineOf(row, cells);
  }
  EXPECT_NE(ContentOf(KPX_TABLE).find("|---|---|---|---|---|---|---|---|\n" + table),
            std::string::npos)
      << KPX_TABLE << " shows another table than:\n"
      << table;
}

}  // namespace
