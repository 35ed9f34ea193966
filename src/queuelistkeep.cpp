#include "queuelistkeep.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

#include "cmessages.h"
#include "debug.h"
#include "textencoding.h"
#include "textfile.h"

namespace {

constexpr char L_KeptSuffix[] = ".save";
constexpr char L_LockSuffix[] = ".lock";
constexpr std::string_view L_QueueEnd = "#end_queue";

bool IsCommentOrEmpty(std::string_view line) { return line.empty() || line.starts_with("##"); }

// The last line that is neither empty nor a comment; empty when there is none.
std::string LastLine(std::string_view text) {
  LineReader lines(text, LineReader::Form::Bytes);
  std::string last;
  while (std::optional<std::string> line = lines.Next()) {
    if (!IsCommentOrEmpty(*line)) last = std::move(*line);
  }
  return last;
}

// Whether the last save left its copy and no list that could be used.
bool IsKeptCopyNeeded(const std::string &list_path) {
  if (access(KeptQueueListPath(list_path).c_str(), F_OK) != 0) return false;
  const std::optional<std::string> list = ReadWholeFile(list_path);
  return !list || !IsWholeQueueList(*list);
}

}  // namespace

int LockQueueList(const char *list_path) {
  const LogScope log("LockQueueList");
  const std::string path = std::string(list_path) + L_LockSuffix;
  // Never closed: the lock is to last as long as the process, and no child may inherit it.
  const int lock = open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (lock == -1) return 1;
  return flock(lock, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK ? 1 : 0;
}

std::string KeptQueueListPath(const std::string &list_path) { return list_path + L_KeptSuffix; }

int KeepQueueList(const std::string &list_path, CList *errors) {
  const LogScope log("KeepQueueList");
  if (IsKeptCopyNeeded(list_path)) return 1;
  struct stat status = {};
  const bool has_status = stat(list_path.c_str(), &status) == 0;
  if (!has_status && errno == ENOENT) return 1;
  const std::optional<std::string> content = ReadWholeFile(list_path);
  const std::string kept = KeptQueueListPath(list_path);
  if (has_status && content && ReplaceFileDurably(kept, *content, status)) return 1;
  G_Report(errors, "ERR_UNABLE_TO_WRITE_FILE", {kept});
  return 0;
}

void DropKeptQueueList(const std::string &list_path) {
  const LogScope log("DropKeptQueueList");
  unlink(KeptQueueListPath(list_path).c_str());
}

bool IsWholeQueueList(std::string_view text) {
  if (!text.ends_with('\n')) return false;
  const std::string last = LastLine(text);
  // Without a queue it is whole when nothing but the header stands there.
  return last.empty() || std::string_view(last).starts_with(L_QueueEnd);
}

int LoadQueueList(CPrintQueues *collection, int create, CList *messages) {
  const LogScope log("LoadQueueList");
  const std::string list_path = fGet_CString_Value_Function(fGetPafFile_Function(collection));
  if (!IsKeptCopyNeeded(list_path)) return fFillFromPaf_Function_(collection, create);
  CString *path = fGetPafFile_Function(collection);
  fSet_CString_Value_Function(path, KeptQueueListPath(list_path).c_str());
  const int result = fFillFromPaf_Function_(collection, 0);
  fSet_CString_Value_Function(path, list_path.c_str());
  // A save that ended meanwhile has taken the copy away and left a whole list.
  if (result == 0 && !IsKeptCopyNeeded(list_path)) {
    return fFillFromPaf_Function_(collection, create);
  }
  G_Report(messages, "WARN_QUEUE_LIST_RESTORED", {list_path});
  return result;
}
