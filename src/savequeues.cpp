#include "savequeues.h"

#include <fcntl.h>
#include <unistd.h>

#include "cmessages.h"
#include "cprintqueues.h"
#include "debug.h"
#include "deffile.h"
#include "dialogoptions.h"
#include "globals.h"
#include "ignoreresult.h"
#include "paths.h"
#include "porting.h"
#include "queuecreation.h"
#include "queuelistkeep.h"
#include "savedstates.h"
#include "seenscripts.h"
#include "strangersfiles.h"
#include "textfile.h"
#include "unfinishedsave.h"
#include "uninterrupted.h"
#include "utils.h"

namespace {

// Whether the list file can be opened for writing; makes a missing one.
bool IsListWritable(const std::string &path) {
  const int file = Uninterrupted(open, path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (file != -1) close(file);
  return file != -1;
}

bool EmptyList(const std::string &path) { return truncate(path.c_str(), 0) == 0; }

// Numbers the steps of one save and hands them on.
class Steps {
 public:
  Steps(const SaveObserver &observer, int total) : observer_(observer), total_(total) {}

  QueueObserver Counting(const char *text_key) {
    return [this, text_key](const char *queue, bool runs_command) {
      if (!runs_command) ++number_;
      if (observer_) observer_({text_key, number_, total_, queue, runs_command});
    };
  }

 private:
  const SaveObserver &observer_;
  int total_;
  int number_ = 0;
};

int CountOf(const CHash *hash) {
  return hash == nullptr ? 0 : static_cast<int>(hash->index.size());
}

int CountOf(const CList *list) {
  int count = 0;
  for (CNodeList *node = fGetHeadPosition_CList_Function(list); node != nullptr;
       node = node->next.get()) {
    ++count;
  }
  return count;
}

// Removes the deleted queues and, when that went well, makes the new ones.
void BringSpoolerInLine(const CList *deleted, CList *errors, const SaveObserver &observer) {
  Steps steps(observer, CountOf(deleted) + CountOf(G_Queues_hash));
  const Owned<CList> none = CreateList();
  const CList *names = deleted == nullptr ? none.get() : deleted;
  if (DeleteQueuesSysV(names, errors, steps.Counting("SAVE_REMOVING")) == 1) {
    IgnoreResult(AddQueuesSysV(errors, steps.Counting("SAVE_CREATING")),
                 "what was not made is in `errors`; the list is written all the same");
  }
}

// True when each queue that the save made has its lines in its interface script.
bool HasAllScripts() {
  for (const auto [name, queue] : Pairs<CPrintQueue>(G_Queues_hash)) {
    if (!WasSetAside(name) && LookAtScript(name).state == ScriptState::NotOurs) return false;
  }
  return true;
}

// Tells the users' option files of the queue that are among `files`; true when there are none. What
// users put there that is no file is nobody's option file.
bool HasNoUsersFile(const CList *files, const std::string &queue, CList *errors) {
  const std::string end = ":" + queue + ".def";
  bool has_none = true;
  for (const CString *file : Elements<CString>(files)) {
    if (!file->value.View().ends_with(end)) continue;
    const std::string path = UserDefFilePath(std::string(file->value.View()));
    if (IsDirectory(path)) continue;
    G_Report(errors, "ERR_REMOVE", {path});
    has_none = false;
  }
  return has_none;
}

// True when no user's option file of a removed queue is left; tells what is.
bool HasNoRemovedUsersFiles(const CList *deleted, CList *errors) {
  if (CountOf(deleted) == 0) return true;
  const Owned<CList> files = GetFilesFromDir(kUsersDir);
  if (files == nullptr && access(kUsersDir, F_OK) == 0) {
    G_Report(errors, "ERR_UNABLE_TO_READ_DIR", {kUsersDir});
    return false;
  }
  bool has_none = true;
  for (const CString *element : Elements<CString>(deleted)) {
    const char *name = fGet_CString_Value_Function(element);
    if (name == nullptr || HashFind(G_Queues_hash, name) != nullptr) continue;
    if (!HasNoUsersFile(files.get(), name, errors)) has_none = false;
  }
  return has_none;
}

// Everything is written: what would have been needed to finish the save goes.
void EndSave(const std::string &list) {
  DropIntention(list);
  DropKeptQueueList(list);
  IgnoreResult(SyncDirectoryOf(list),
               "the next start finishes the save once more, which changes nothing");
}

}  // namespace

SaveResult SaveQueues(const CList *deleted, CList *errors, const SaveObserver &observer) {
  const LogScope log("SaveQueues");
  const SeenScripts seen;
  const std::string list = fGet_CString_Value_Function(fGetPafFile_Function(G_Queues.get()));
  if (!IsListWritable(list)) {
    G_Report(errors, "ERR_UNABLE_TO_WRITE_FILE", {list});
    return SaveResult::ListNotWritable;
  }
  TakeBackQueuesSetAside();
  // Without both nothing is emptied: the queues that stand there are the only record.
  if (KeepQueueList(list, errors) == 0 || !KeepIntention(list, G_Queues_hash, deleted, errors)) {
    return SaveResult::Ended;
  }
  KeepState(KeptQueueListPath(list), G_Queues_hash);
  if (!EmptyList(list)) {
    G_Report(errors, "ERR_UNABLE_TO_WRITE_FILE", {list});
    if (G_UnfinishedRemovals == nullptr) DropIntention(list);
    return SaveResult::ListNotWritable;
  }
  // Before the first queue is made: no job ever runs without its queue's settings. What cannot be
  // written is told when all are written once more at the end.
  IgnoreResult(WriteQueueDefFiles(G_Queues_hash, errors, true),
               "all are written once more at the end");
  BringSpoolerInLine(deleted, errors, observer);
  const int list_written = fWriteToPaf_Function(G_Queues.get(), errors);
  const int options_written = fWriteAllToDef_Function(G_Queues.get(), errors);
  const bool users_files_are_gone = HasNoRemovedUsersFiles(deleted, errors);
  // What is left undone the next start shows as an unfinished save.
  if (list_written == 1 && options_written == 1 && users_files_are_gone && HasAllScripts()) {
    EndSave(list);
  }
  RemoveStrangersFiles();
  // What is not on the disk no dialog is to offer; the save that finishes this one does it.
  if (list_written == 1 && options_written == 1) OfferOptions(errors);
  return SaveResult::Ended;
}
