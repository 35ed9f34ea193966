// Renders PostScript with Ghostscript.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "temporarydirectory.h"

// The job without its job control: what reaches the PostScript interpreter.
inline std::string WithoutJobControl(const std::string &job) {
  const std::string uel = "\033%-12345X";
  const size_t enter = job.find("@PJL ENTER LANGUAGE");
  const size_t start =
      job.starts_with(uel) && enter != std::string::npos ? job.find('\n', enter) + 1 : 0;
  const size_t end = job.find(uel, start);
  return job.substr(start, end == std::string::npos ? end : end - start);
}

struct Rendering {
  int status = -1;
  std::vector<std::string> pages;  // the device's output, one a page
  std::string messages;            // what the interpreter and the job print
};

// Runs the job on `device`. The paper is A4 until the job asks for another.
inline Rendering Render(const std::string &job, const std::string &device = "pngmono",
                        int dots_per_inch = 36) {
  const TemporaryDirectory directory;
  const std::string input = directory.Write("job.ps", WithoutJobControl(job));
  std::filesystem::create_directory(directory.Path("pages"));
  const std::string command =
      "gs -q -dSAFER -dBATCH -dNOPAUSE -r" + std::to_string(dots_per_inch) + " -sDEVICE=" + device +
      " -dDEVICEWIDTHPOINTS=595 -dDEVICEHEIGHTPOINTS=842 -o " + directory.Path("pages/page%03d") +
      " " + input + " >" + directory.Path("messages") + " 2>&1";
  Rendering rendering;
  rendering.status = std::system(command.c_str());
  std::vector<std::string> names;
  for (const auto &entry : std::filesystem::directory_iterator(directory.Path("pages"))) {
    names.push_back(entry.path());
  }
  std::sort(names.begin(), names.end());
  for (const std::string &name : names) rendering.pages.push_back(ContentOf(name));
  rendering.messages = ContentOf(directory.Path("messages"));
  return rendering;
}
