// What PostScript jobs print, word by word: Ghostscript makes PDF pages of many jobs at once and
// pdftotext tells which words stand where on them.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "ghostscript.h"
#include "temporarydirectory.h"

struct PrintedWord {
  std::string text;
  double left = 0, top = 0, right = 0, bottom = 0;  // points from the page's upper left corner
};

struct PrintedPage {
  double width = 0, height = 0;  // points
  std::vector<PrintedWord> words;
};

// The number behind `name="` in a line of pdftotext.
inline double AttributeOf(const std::string &line, const std::string &name) {
  const size_t at = line.find(name + "=\"");
  return at == std::string::npos ? 0 : std::atof(line.c_str() + at + name.size() + 2);
}

inline std::string WithoutEntities(std::string text) {
  constexpr std::pair<std::string_view, std::string_view> kEntities[] = {
      {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}};
  for (const auto &[entity, character] : kEntities) {
    for (size_t at = 0; (at = text.find(entity, at)) != std::string::npos; ++at) {
      text.replace(at, entity.size(), character);
    }
  }
  return text;
}

// The pages of what `pdftotext -bbox` wrote.
inline std::vector<PrintedPage> PagesOf(const std::string &report) {
  std::vector<PrintedPage> pages;
  std::istringstream lines(report);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("<page ") != std::string::npos) {
      pages.push_back({AttributeOf(line, "width"), AttributeOf(line, "height"), {}});
    }
    const size_t end = line.rfind("</word>");
    if (end == std::string::npos || pages.empty()) continue;
    const size_t begin = line.find('>') + 1;
    pages.back().words.push_back({WithoutEntities(line.substr(begin, end - begin)),
                                  AttributeOf(line, "xMin"), AttributeOf(line, "yMin"),
                                  AttributeOf(line, "xMax"), AttributeOf(line, "yMax")});
  }
  return pages;
}

// The pages of each job. The paper is A4 until a job asks for another.
inline std::vector<std::vector<PrintedPage>> PrintedPagesOf(const std::vector<std::string> &jobs) {
  const TemporaryDirectory directory;
  const std::string a4 = directory.Write(
      "a4.ps", "<</PageSize [595 842] /Duplex false /NumCopies null>> setpagedevice\n");
  std::string files;
  for (const std::string &job : jobs) {
    const std::string name = "job" + std::to_string(files.size()) + ".ps";
    files += a4 + "\n" + directory.Write(name, WithoutJobControl(job)) + "\n";
  }
  directory.Write("files", files);
  const std::string pdf = directory.Path("pages.pdf"), report = directory.Path("report");
  const std::string command =
      "gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=pdfwrite -dAutoRotatePages=/None -o " + pdf + " @" +
      directory.Path("files") + " >" + directory.Path("messages") + " 2>&1 && pdftotext -bbox " +
      pdf + " " + report + " 2>" + directory.Path("of_empty_pages");
  EXPECT_EQ(std::system(command.c_str()), 0) << ContentOf(directory.Path("messages"));
  EXPECT_EQ(ContentOf(directory.Path("messages")), "");
  const std::vector<PrintedPage> pages = PagesOf(ContentOf(report));
  std::vector<std::vector<PrintedPage>> result;
  size_t first = 0;
  for (const std::string &job : jobs) {
    size_t count = 0;
    for (size_t at = 0; (at = job.find("\n%%Page: ", at)) != std::string::npos; ++at) ++count;
    result.emplace_back();
    for (size_t i = 0; i < count && first < pages.size(); ++i) {
      result.back().push_back(pages[first++]);
    }
    EXPECT_EQ(result.back().size(), count) << "job " << result.size();
  }
  EXPECT_EQ(first, pages.size()) << "more pages than the jobs say";
  return result;
}
