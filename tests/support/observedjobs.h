// What a printer makes of jobs: their pages, and the state of the page device with each of them.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "temporarydirectory.h"

// One job as it was rendered.
struct ObservedJob {
  int pages = 0;  // without copies
  // Each of these as the page device had it: several, sorted and joined with "+", when it differed
  // from page to page.
  std::string paper;      // "595x842", points
  std::string sides;      // "one-sided", "long edge", "short edge"
  std::string copies;     // "1", or "2 collated"
  std::string finishing;  // "none", or where staples, holes and bin are
  bool has_blank_page = false;
};

namespace observed {

// Laid over the interpreter's own operators, for all jobs: each page tells the page device's state.
inline constexpr char kObserver[] = R"(%!PS
true 0 startjob pop
userdict begin
/seenkeys 50 dict def
/setpagedevice {
  dup { seenkeys 3 1 roll put } forall systemdict /setpagedevice get exec
} def
/tell { dup null eq { pop (-) } { 100 string cvs } ifelse print ( ) print } def
/tellkey { seenkeys exch 2 copy known { get } { pop pop null } ifelse tell } def
/showpage {
  (PAGE ) print
  currentpagedevice /PageSize get { round cvi tell } forall
  [/Duplex /Tumble /NumCopies /Collate /OutputType /Punch] { tellkey } forall
  seenkeys /StapleDetails 2 copy known { get /StapleLocation get } { pop pop null } ifelse tell
  (\n) print
  systemdict /showpage get exec
} def
end
)";

// The PostScript documents in a job, without the job control around each.
inline std::vector<std::string> DocumentsOf(const std::string &job) {
  const std::string uel = "\033%-12345X", enter = "@PJL ENTER LANGUAGE";
  std::vector<std::string> documents;
  for (size_t at = 0; (at = job.find(enter, at)) != std::string::npos;) {
    at = job.find('\n', at) + 1;
    const size_t end = std::min(job.find(uel, at), job.size());
    documents.push_back(job.substr(at, end - at));
    at = end;
  }
  return documents;
}

struct Page {
  std::string width, length, duplex, tumble, copies, collate, bin, punch, staple;
};

inline std::string Joined(const std::set<std::string> &texts) {
  std::string result;
  for (const std::string &text : texts) result += (result.empty() ? "" : "+") + text;
  return result;
}

inline std::string FinishingOf(const Page &page) {
  std::string text;
  const auto add = [&](const std::string &part) { text += (text.empty() ? "" : ", ") + part; };
  if (page.staple != "-") add("staple " + page.staple);
  if (page.punch != "-" && page.punch != "0") add("holes");
  if (page.bin != "-" && page.bin != "OutputTray") add("bin " + page.bin);
  return text.empty() ? "none" : text;
}

inline ObservedJob JobOf(const std::vector<Page> &pages) {
  std::set<std::string> papers, sides, copies, finishings;
  for (const Page &page : pages) {
    papers.insert(page.width + "x" + page.length);
    const bool two_sided = page.duplex == "true";
    sides.insert(!two_sided ? "one-sided" : page.tumble == "true" ? "short edge" : "long edge");
    copies.insert((page.copies == "-" ? "1" : page.copies) +
                  (page.collate == "true" ? " collated" : ""));
    finishings.insert(FinishingOf(page));
  }
  return {.pages = static_cast<int>(pages.size()),
          .paper = Joined(papers),
          .sides = Joined(sides),
          .copies = Joined(copies),
          .finishing = Joined(finishings)};
}

}  // namespace observed

// Renders all jobs in one run of Ghostscript, each as a job server runs it: nothing of one is left
// for the next. Throws, with the interpreter's words, when a job fails.
inline std::vector<ObservedJob> Observe(const std::vector<std::string> &jobs) {
  const TemporaryDirectory directory;
  std::string input;
  for (size_t job = 0; job < jobs.size(); ++job) {
    for (const std::string &document : observed::DocumentsOf(jobs[job])) {
      input += "(JOB " + std::to_string(job) + ") =\n" + document + "\n\004";
    }
  }
  const std::string command =
      "gs -q -dSAFER -dBATCH -dNOPAUSE -r18 -sDEVICE=ink_cov -o " + directory.Path("ink") +
      " -dDEVICEWIDTHPOINTS=595 -dDEVICEHEIGHTPOINTS=842 -dJOBSERVER " +
      directory.Write("observer.ps", observed::kObserver) + " - <" +
      directory.Write("jobs.ps", input) + " >" + directory.Path("said") + " 2>&1";
  const int status = std::system(command.c_str());
  std::istringstream said(ContentOf(directory.Path("said"))), ink(ContentOf(directory.Path("ink")));
  std::vector<std::vector<observed::Page>> pages(jobs.size());
  std::vector<bool> blank(jobs.size());
  size_t job = 0;
  for (std::string line; std::getline(said, line);) {
    std::istringstream words(line);
    std::string first;
    words >> first;
    if (first == "JOB") words >> job;
    if (first != "PAGE") continue;
    observed::Page page;
    words >> page.width >> page.length >> page.duplex >> page.tumble >> page.copies >>
        page.collate >> page.bin >> page.punch >> page.staple;
    pages.at(job).push_back(page);
    // The device tells each copy.
    const int copies = page.copies == "-" ? 1 : std::stoi(page.copies);
    for (int copy = 0; copy < copies; ++copy) {
      double cyan = 0, magenta = 0, yellow = 0, black = 0;
      std::string model, state;
      if (!(ink >> cyan >> magenta >> yellow >> black >> model >> state) ||
          cyan + magenta + yellow + black == 0) {
        blank.at(job) = true;
      }
    }
  }
  if (status != 0) {
    throw std::runtime_error("job " + std::to_string(job) + ":\n" +
                             ContentOf(directory.Path("said")));
  }
  std::vector<ObservedJob> result;
  for (size_t i = 0; i < jobs.size(); ++i) {
    result.push_back(observed::JobOf(pages[i]));
    result.back().has_blank_page = blank[i];
  }
  return result;
}
