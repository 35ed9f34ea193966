#include "unfinishedsave.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "cmessages.h"
#include "debug.h"
#include "ignoreresult.h"
#include "queuelistreader.h"
#include "queuelistwriter.h"
#include "textencoding.h"
#include "textfile.h"
#include "textline.h"
#include "utils.h"

namespace {

constexpr char L_Suffix[] = ".next";
constexpr std::string_view L_Remove = "##remove ";
constexpr std::string_view L_Complete = "##complete";

// The last line of `text`, which is taken off it; nothing when it does not end in a line feed.
std::optional<std::string_view> TakeLastLine(std::string_view &text) {
  if (!text.ends_with('\n')) return std::nullopt;
  const std::string_view lines = text.substr(0, text.size() - 1);
  const size_t start = lines.rfind('\n') + 1;  // npos + 1 is 0
  text = text.substr(0, start);
  return lines.substr(start);
}

struct Intention {
  Owned<CHash> queues;
  Owned<CList> removed;
};

// The intention that the text holds; nothing when it is not whole.
std::optional<Intention> ReadIntention(std::string_view text) {
  const auto removals = RemovalsOf(text);
  if (!removals) return std::nullopt;
  Intention intention{CreateHash(), CreateList()};
  if (ReadQueueList(text, intention.queues.get())) return std::nullopt;
  for (const std::string &name : *removals) {
    IgnoreResult(
        fAddTail_CList_Function(intention.removed.get(), CreateStringWithValue(name.c_str())),
        "the list is there");
  }
  return intention;
}

}  // namespace

std::string IntentionPath(const std::string &list_path) { return list_path + L_Suffix; }

std::string IntentionText(const CHash *queues, const CList *removed) {
  int left_out = 0;  // told when the list itself is written
  std::string text = QueueListText(queues, &left_out);
  for (const CString *name : Elements<CString>(removed)) {
    AppendTextLine(text, std::string(L_Remove) + std::string(name->value.View()));
  }
  AppendTextLine(text, L_Complete);
  return text;
}

std::optional<std::vector<std::string>> RemovalsOf(std::string_view intention) {
  if (TakeLastLine(intention) != L_Complete) return std::nullopt;
  // From the end: further up such a line can be the value of an option.
  std::vector<std::string> names;
  for (;;) {
    const std::optional<std::string_view> line = TakeLastLine(intention);
    if (!line || !line->starts_with(L_Remove)) break;
    names.emplace_back(line->substr(L_Remove.size()));
  }
  std::reverse(names.begin(), names.end());
  return names;
}

bool KeepIntention(const std::string &list_path, const CHash *queues, const CList *removed,
                   CList *errors) {
  const LogScope log("KeepIntention");
  const std::string path = IntentionPath(list_path);
  struct stat list = {};
  if (stat(list_path.c_str(), &list) == 0 &&
      ReplaceFileDurably(path, IntentionText(queues, removed), list)) {
    return true;
  }
  G_Report(errors, "ERR_UNABLE_TO_WRITE_FILE", {path});
  return false;
}

void DropIntention(const std::string &list_path) {
  const LogScope log("DropIntention");
  RemoveFile(IntentionPath(list_path));
}

Owned<CList> LoadIntention(CPrintQueues *collection, CList *messages) {
  const LogScope log("LoadIntention");
  const std::string path =
      IntentionPath(fGet_CString_Value_Function(fGetPafFile_Function(collection)));
  const std::optional<std::string> text = ReadWholeFile(path);
  if (!text) {
    if (errno != ENOENT) G_Report(messages, "ERR_UNABLE_TO_READ_FILE", {path});
    return nullptr;
  }
  std::optional<Intention> intention = ReadIntention(*text);
  if (!intention) {
    G_Report(messages, "WARN_SAVE_UNKNOWN", {path});
    return nullptr;
  }
  IgnoreResult(FillQueuesFromText(collection, *text, path), "a faulty text ends the process");
  G_Note(messages, "WARN_SAVE_UNFINISHED");
  return std::move(intention->removed);
}
