#include "queuelistkeep.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "cmessages.h"
#include "debug.h"
#include "textencoding.h"
#include "textfile.h"
#include "textline.h"
#include "utils.h"

namespace {

constexpr char L_KeptSuffix[] = ".save";
constexpr char L_LockSuffix[] = ".lock";
constexpr std::string_view L_QueueEnd = "#end_queue";

// How often a list that is not whole is read although there is no kept copy: a save that ended
// between the two looks has left a whole list and taken its copy away.
constexpr int L_Readings = 5;

// The last line that is neither empty nor a comment; empty when there is none.
std::string LastLine(std::string_view text) {
  LineReader lines(text, LineReader::Form::Bytes);
  std::string last;
  while (std::optional<std::string> line = lines.Next()) {
    if (!IsCommentOrEmpty(*line)) last = std::move(*line);
  }
  return last;
}

// The list file's text when all of a whole list was read: no save empties it meanwhile.
std::optional<std::string> ReadWholeQueueList(const std::string &list_path) {
  std::optional<std::string> list = ReadWholeFile(list_path);
  struct stat status = {};
  if (!list || stat(list_path.c_str(), &status) != 0 ||
      static_cast<size_t>(status.st_size) != list->size() || !IsWholeQueueList(*list)) {
    return std::nullopt;
  }
  return list;
}

bool WriteKeptCopy(const std::string &list_path, const std::string &kept_path) {
  struct stat status = {};
  if (stat(list_path.c_str(), &status) != 0) return errno == ENOENT;
  const std::optional<std::string> content = ReadWholeFile(list_path);
  return content && ReplaceFileDurably(kept_path, *content, status);
}

}  // namespace

std::string QueueListLockPath(const std::string &list_path) { return list_path + L_LockSuffix; }

int LockQueueList(const char *list_path) {
  const LogScope log("LockQueueList");
  const std::string path = QueueListLockPath(list_path);
  // Never closed: the lock is to last as long as the process, and no child may inherit it.
  const int lock = open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (lock == -1) return 1;
  return flock(lock, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK ? 1 : 0;
}

std::string KeptQueueListPath(const std::string &list_path) { return list_path + L_KeptSuffix; }

int KeepQueueList(const std::string &list_path, CList *errors) {
  const LogScope log("KeepQueueList");
  const std::string kept = KeptQueueListPath(list_path);
  // One that the system does not show may be there.
  const bool is_there = access(kept.c_str(), F_OK) == 0 || errno != ENOENT;
  const bool is_needed = is_there && !ReadWholeQueueList(list_path);
  if (is_needed ? ReadWholeFile(kept).has_value() : WriteKeptCopy(list_path, kept)) return 1;
  G_Report(errors, is_needed ? "ERR_UNABLE_TO_READ_FILE" : "ERR_UNABLE_TO_WRITE_FILE", {kept});
  return 0;
}

void DropKeptQueueList(const std::string &list_path) {
  const LogScope log("DropKeptQueueList");
  RemoveFile(KeptQueueListPath(list_path));
}

bool IsWholeQueueList(std::string_view text) {
  if (!text.ends_with('\n')) return false;
  const std::string last = LastLine(text);
  // Without a queue it is whole when nothing but the header stands there.
  return last.empty() || std::string_view(last).starts_with(L_QueueEnd);
}

std::optional<std::string> ReadLastQueueList(const std::string &list_path) {
  std::optional<std::string> list = ReadWholeQueueList(list_path);
  return list ? list : ReadWholeFile(KeptQueueListPath(list_path));
}

int LoadQueueList(CPrintQueues *collection, int create, CList *messages) {
  const LogScope log("LoadQueueList");
  const std::string list_path = fGet_CString_Value_Function(fGetPafFile_Function(collection));
  const std::string kept_path = KeptQueueListPath(list_path);
  for (int reading = 0; reading < L_Readings; ++reading) {
    if (const std::optional<std::string> list = ReadWholeQueueList(list_path)) {
      return FillQueuesFromText(collection, *list, list_path);
    }
    if (const std::optional<std::string> kept = ReadWholeFile(kept_path)) {
      if (create == 1) G_Note(messages, "WARN_QUEUE_LIST_RESTORED", {list_path});
      return FillQueuesFromText(collection, *kept, kept_path);
    }
    if (errno != ENOENT) {
      G_Report(messages, "ERR_UNABLE_TO_READ_FILE", {kept_path});
      break;
    }
  }
  return fFillFromPaf_Function_(collection, create);
}
