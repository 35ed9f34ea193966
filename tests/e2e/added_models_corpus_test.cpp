// Printers of many makers: PPD files drawn at random (always the same ones) are added, get a queue,
// and print a page with an option of each feature changed. What the job holds for the options is
// compared with what CUPS's own filter writes for the same choices. The comparison's other side
// uses libcups and its filter alone. Printers that need a driver print: their jobs hold no
// code of options. KPX_LONG draws 300 files.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <random>

#include "addedmodels.h"
#include "adminsession.h"
#include "cprinter.h"
#include "globals.h"
#include "models.h"
#include "networkprinter.h"
#include "privateworld.h"
#include "sampledppds.h"

#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

namespace fs = std::filesystem;

constexpr char kDocument[] =
    "%!PS-Adobe-3.0\n%%Pages: 2\n%%EndComments\n%%BeginProlog\n%%EndProlog\n%%BeginSetup\n"
    "%%EndSetup\n%%Page: 1 1\n%%BeginPageSetup\n%%EndPageSetup\nshowpage\n%%Page: 2 "
    "2\n%%BeginPageSetup\n"
    "%%EndPageSetup\nshowpage\n%%Trailer\n%%EOF\n";
constexpr char kQueue[] = "corpus";
constexpr char kRefusal[] = "cannot be added";

// Features with which queue and job mean something of their own.
bool IsOurs(const std::string &keyword) {
  static const std::set<std::string> kOurs = {"PageRegion", "Collate",  "Booklet",      "Nup",
                                              "JobName",    "UserName", "Notification", "Copies"};
  return kOurs.contains(keyword);
}

using Codes = std::map<std::string, std::string>;  // "*Duplex None" -> code

std::string Squeezed(const std::string &code) {
  std::string result;
  for (const char c : code) {
    if (c != '\r' && c != '\n' && c != ' ' && c != '\t') result += c;
  }
  return result;
}

// The code of those features that were chosen. What sets nothing is left out: whether it is named
// at all is a matter of taste.
Codes CodesOf(const std::string &job, const std::vector<std::string> &choices) {
  std::set<std::string> features;
  for (const std::string &choice : choices) features.insert(choice.substr(0, choice.find('=')));
  const std::string begin = "%%BeginFeature: ", end = "%%EndFeature";
  Codes codes;
  for (size_t at = job.find(begin); at != std::string::npos; at = job.find(begin, at + 1)) {
    const size_t line = job.find('\n', at), stop = job.find(end, at);
    if (line == std::string::npos || stop == std::string::npos) break;
    std::string name = job.substr(at + begin.size(), line - at - begin.size());
    while (name.ends_with('\r') || name.ends_with(' ')) name.pop_back();
    // Which of the two names a size is a choice of the printer's, who knows both.
    const std::string region = "*PageRegion ";
    if (name.starts_with(region)) name = "*PageSize " + name.substr(region.size());
    const std::string code = name.starts_with("*PageSize ")
                                 ? "size"
                                 : Squeezed(job.substr(line, std::max(stop, line) - line));
    const std::string feature = name.substr(1, name.find(' ') - 1);
    if (!code.empty() && features.contains(feature)) codes[name] = code;
  }
  return codes;
}

class Corpus : public testing::Test {
 protected:
  Corpus() : printer_(9100) {
    RequirePrivateWorld();
    setenv("LANG", "C", 1);
  }

  // A choice other than the default for each feature, as far as they can be combined.
  std::vector<std::string> ChoicesFor(ppd_file_t *ppd) {
    std::vector<std::string> choices;
    ppdMarkDefaults(ppd);
    for (ppd_option_t *option = ppdFirstOption(ppd); option != nullptr;
         option = ppdNextOption(ppd)) {
      if (option->num_choices < 2 || IsOurs(option->keyword)) continue;
      if (option->section == PPD_ORDER_JCL) continue;  // stands before the document
      const auto number = static_cast<unsigned>(option->num_choices);
      const ppd_choice_t &choice = option->choices[random_() % number];
      // What a printer does by itself it is not told.
      if (std::string(choice.choice) == "Custom" ||
          option->defchoice == std::string(choice.choice)) {
        continue;
      }
      ppd_choice_t *before = ppdFindMarkedChoice(ppd, option->keyword);
      const std::string kept = before == nullptr ? "" : before->choice;
      if (ppdMarkOption(ppd, option->keyword, choice.choice) > 0 && !kept.empty()) {
        ppdMarkOption(ppd, option->keyword, kept.c_str());
        continue;
      }
      choices.push_back(std::string(option->keyword) + "=" + choice.choice);
    }
    return choices;
  }

  // What CUPS's filter writes for the choices.
  Codes ExpectedCodes(const std::string &ppd, const std::vector<std::string> &choices) const {
    std::string words;
    for (const std::string &choice : choices) words += choice + " ";
    const std::string document = files_.Write("document", kDocument);
    setenv("PPD", ppd.c_str(), 1);
    const CommandResult result = RunProgram(
        {"/bin/sh", "-c", "/usr/lib/cups/filter/pstops 1 anna Report 1 \"$1\" \"$2\" 2>&-", "sh",
         words, document});
    unsetenv("PPD");
    return CodesOf(result.output, choices);
  }

  // Adds, makes the queue, prints; the job.
  std::string PrintedJob(const std::string &name, const std::vector<std::string> &choices) {
    LoadCatalogues();
    LoadQueues(nullptr);
    EXPECT_TRUE(AddQueueToSession(kQueue, "postscript", name, "127.0.0.1"));
    EXPECT_EQ(SaveSession(), 0u);
    std::vector<std::string> command = {"/usr/bin/lp", "-d", kQueue};
    for (const std::string &choice : choices) {
      command.insert(command.end(), {"-o", choice});
    }
    const CommandResult lp = RunProgram(command, kDocument);
    EXPECT_EQ(lp.status, 0) << lp.output;
    const std::string job = printer_.Next();
    DeleteQueueInSession(kQueue);
    EXPECT_EQ(SaveSession(), 0u);
    return job;
  }

  TemporaryDirectory files_;
  SampledPpds sample_{20};
  NetworkPrinter printer_;
  std::mt19937 random_{16};
};

// What the filter, with the driver behind it, makes of a page.
std::string MadeByDriver(const std::string &id) {
  const CommandResult result = RunProgram(
      {"/bin/sh", "-c",
       "/opt/orlan/bin/kpxfilter '' -JReport -eReport -Lanna --filter --type postscript --ppdfile "
       "\"$1\" 2>/run/kpx/words",
       "sh", AddedModelPpdPath(id, "enu")},
      kDocument);
  EXPECT_EQ(result.status, 0) << id << ": " << ContentOf("/run/kpx/words");
  return result.output;
}

// The first difference in words; empty when there is none.
std::string Difference(const Codes &expected, const Codes &found) {
  for (const auto &[name, code] : expected) {
    const auto other = found.find(name);
    if (other == found.end()) return name + " is missing";
    if (other->second != code) return name + " is " + other->second + " instead of " + code;
  }
  for (const auto &[name, code] : found) {
    if (!expected.contains(name)) return name + " is too much";
  }
  return "";
}

TEST_F(Corpus, TheCodeOfOptionsIsThatOfCupssOwnFilter) {
  int agreed = 0, differed = 0, driven = 0, refused = 0;
  std::set<std::string> makers;
  std::string table;
  for (const std::string &file : sample_.Names()) {
    const std::string path = sample_.Path(file);
    const CommandResult added = Kpxctl({"model", "add", path, "--json"});
    if (added.status != 0) {
      EXPECT_NE(added.output.find(kRefusal), std::string::npos) << file << ": " << added.output;
      table += "  " + file + ": " + added.output;
      ++refused;
      continue;
    }
    const std::string name = ValueIn(added.output, "name");
    if (added.output.find("\"PostScript\"") == std::string::npos) {
      // Without root the drivers look like somebody else's, and CUPS refuses to run them.
      if (HasOrdinaryUsers()) {
        EXPECT_NE(MadeByDriver(ValueIn(added.output, "id")), "") << name;
      }
      EXPECT_EQ(Kpxctl({"model", "remove", name}).status, 0) << name;
      ++driven;
      continue;
    }
    const PpdFile ppd(ppdOpenFile(path.c_str()));
    ASSERT_NE(ppd, nullptr) << file;
    const std::vector<std::string> choices = ChoicesFor(ppd.get());
    const std::string job = PrintedJob(name, choices);
    EXPECT_EQ(Kpxctl({"model", "remove", name}).status, 0) << name;
    const std::string difference = Difference(ExpectedCodes(path, choices), CodesOf(job, choices));
    (difference.empty() ? agreed : differed) += 1;
    if (!difference.empty()) table += "  " + file + " (" + name + "): " + difference + "\n";
    makers.insert(SampledPpds::MakerOf(file));
  }
  std::printf("%d files of %zu makers agree, %d differ, %d go through a driver, %d are refused\n%s",
              agreed, makers.size(), differed, driven, refused, table.c_str());
  EXPECT_EQ(differed, 0);
  EXPECT_GE(makers.size(), 10u);
  EXPECT_GE(agreed, 10);
}

}  // namespace
