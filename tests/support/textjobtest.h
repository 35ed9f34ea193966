// Text jobs as their tests see them.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "filterjob.h"
#include "textjob.h"

class TextJob : public testing::Test {
 protected:
  std::string Pages(const std::string &text, size_t step = 65536) const {
    const std::string output = RunOver(FilterText, settings_, text, step);
    const size_t start = output.find("%%Page: ");
    const size_t end = output.find("%%Trailer");
    return start == std::string::npos ? "" : WithoutFonts(output.substr(start, end - start));
  }

  // Pages without the definitions of the glyphs that they bring.
  static std::string WithoutFonts(std::string pages) {
    for (size_t at = pages.find(" KF\n"); at != std::string::npos; at = pages.find(" KF\n")) {
      const size_t begin = pages.rfind('\n', at) + 1;
      pages.erase(begin, at + 4 - begin);
    }
    for (size_t at = pages.find("true setglobal"); at != std::string::npos;
         at = pages.find("true setglobal")) {
      pages.erase(at, pages.find(" KG\n", at) + 4 - at);
    }
    return pages;
  }

  // The settings of a printer that is not described: A4, no job control.
  const PpdModel model_{};
  JobSettings settings_{model_};
};

inline std::string Page(int number, const std::string &marks) {
  const std::string text = std::to_string(number);
  return "%%Page: " + text + " " + text + "\n/S save def F setfont\n" + marks +
         "showpage S restore\n";
}

inline std::string Lines(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += "x\n";
  return text;
}
