#include "spooljobs.h"

#include "command.h"
#include "debug.h"
#include "paths.h"
#include "requestfile.h"
#include "textencoding.h"

namespace {

constexpr int L_PatienceMilliseconds = 1000;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Characters of queue names and numbers. Whatever stands around a request id in a sentence, such as
// a quotation mark beyond ASCII, is another one.
bool BelongsToWord(char c) {
  return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' || c == '_' ||
         c == '+';
}

// The request id that begins at `start`, where the queue's name stands; empty when none does.
std::string RequestAt(std::string_view output, size_t start, size_t dash) {
  size_t end = dash + 1;
  while (end < output.size() && IsDigit(output[end])) ++end;
  const bool alone = (start == 0 || !BelongsToWord(output[start - 1])) &&
                     (end == output.size() || !BelongsToWord(output[end]));
  return alone && end > dash + 1 ? std::string(output.substr(start, end - start)) : std::string();
}

}  // namespace

std::string RequestIn(std::string_view output, std::string_view queue) {
  const std::string beginning = std::string(queue) + "-";
  std::set<std::string> found;
  for (size_t at = output.find(beginning); at != std::string_view::npos;
       at = output.find(beginning, at + 1)) {
    const std::string request = RequestAt(output, at, at + queue.size());
    if (!request.empty()) found.insert(request);
  }
  return found.size() == 1 ? *found.begin() : std::string();
}

std::optional<std::set<std::string>> RequestsInList(std::string_view output) {
  std::set<std::string> requests;
  LineReader lines(output, LineReader::Form::Bytes);
  while (const std::optional<std::string_view> line = lines.NextView()) {
    const std::string_view word = line->substr(0, line->find(' '));
    if (!IsRequestName(word)) return std::nullopt;
    requests.emplace(word);
  }
  return requests;
}

std::optional<std::set<std::string>> WaitingRequests() {
  const LogScope log("WaitingRequests");
  const std::optional<std::string> output =
      OutputOf({kLpstat, "-W", "not-completed", "-o"}, L_PatienceMilliseconds);
  return output ? RequestsInList(*output) : std::nullopt;
}
