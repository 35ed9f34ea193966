// Reading of the data files that the data tests look at.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

// The content of a text file; a file that cannot be read fails the test that asks for it.
inline std::string FileText(const std::filesystem::path &path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

inline std::vector<std::string> FileLines(const std::filesystem::path &path) {
  std::istringstream text(FileText(path));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

// The files of that name under data/nls, one a language.
inline std::vector<std::filesystem::path> LanguageFiles(const std::string &name) {
  std::vector<std::filesystem::path> files;
  for (const auto &entry :
       std::filesystem::recursive_directory_iterator(KPX_TEST_DATA "/../data/nls")) {
    if (entry.path().filename() == name) files.push_back(entry.path());
  }
  return files;
}

// The language directory of such a file as a test name: "enu", "deu_utf8".
inline std::string LanguageOf(const std::filesystem::path &file) {
  std::string name = file.parent_path().lexically_relative(KPX_TEST_DATA "/../data/nls").string();
  std::replace(name.begin(), name.end(), '/', '_');
  return name;
}

// The first groups of all matches of `pattern` in the sources of the program.
inline std::vector<std::string> SourceMatches(const std::string &pattern) {
  const std::regex expression(pattern);
  std::vector<std::string> found;
  for (const auto &entry : std::filesystem::directory_iterator(KPX_TEST_DATA "/../src")) {
    if (entry.path().extension() != ".cpp") continue;
    const std::string text = FileText(entry.path());
    for (std::sregex_iterator i(text.begin(), text.end(), expression), end; i != end; ++i) {
      found.push_back((*i)[1]);
    }
  }
  return found;
}

// What a program prints on standard output and standard error together.
inline std::string OutputOf(const std::string &command) {
  FILE *pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
  std::string output;
  char buffer[4096];
  while (const size_t length = fread(buffer, 1, sizeof buffer, pipe)) {
    output.append(buffer, length);
  }
  output += pclose(pipe) == 0 ? "" : "\nfailed: " + command;
  return output;
}

// What a PostScript program prints when Ghostscript runs it without an output device.
inline std::string InterpreterOutput(const std::string &program) {
  char path[] = "/tmp/kpx_data_test_XXXXXX";
  const int descriptor = mkstemp(path);
  if (descriptor < 0) throw std::runtime_error("cannot make a temporary file");
  close(descriptor);
  std::ofstream(path) << program;
  const std::string output =
      OutputOf(std::string("gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=nullpage ") + path);
  std::filesystem::remove(path);
  return output;
}
