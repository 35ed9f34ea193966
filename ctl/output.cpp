#include "output.h"

#include <algorithm>
#include <cstdio>

#include "textencoding.h"

namespace kpx::ctl {

void PrintLine(std::string_view text) {
  const std::string bytes = LocaleText(std::string(text) + "\n");
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
}

void Tell(const Call &call, std::string_view text) {
  if (!call.Has("--json")) PrintLine(text);
}

void Complain(std::string_view text) { PrintErrorLine("kpxctl: " + std::string(text)); }

std::string JoinedWords(const std::vector<std::string> &words) {
  std::string text;
  for (const std::string &word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

void PrintTable(const std::vector<std::vector<std::string>> &rows) {
  std::vector<int> widths;
  for (const auto &row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], CharacterCount(row[i]));
  }
  for (const auto &row : rows) {
    std::string line;
    for (size_t i = 0; i < row.size(); ++i) {
      line += row[i];
      if (i + 1 < row.size())
        line.append(static_cast<size_t>(widths[i] - CharacterCount(row[i]) + 2), ' ');
    }
    PrintLine(line);
  }
}

}  // namespace kpx::ctl
