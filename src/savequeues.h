// A save: the spooler, the queue list file and the option files brought in line with the working
// set.
#pragma once

#include <functional>
#include <string>

#include "clist.h"

// One queue of a save, told when its turn comes and again before each command that is run for it.
struct SaveStep {
  const char *text_key;  // takes number, total and queue
  int number;            // from 1
  int total;
  std::string queue;
  bool runs_command;  // false: nothing slow may come of it
};
using SaveObserver = std::function<void(const SaveStep &step)>;

enum class SaveResult { Ended, ListNotWritable };

// Removes the `deleted` queues (CString, may be null) from the spooler, creates and re-addresses
// the others, and writes list and option files; then print dialogs are told the
// options. What it intends is kept on the disk until all is
// written, so that a start after an interruption can finish it (unfinishedsave.h). Everything that
// fails is reported to `errors` and on standard error. A list file that cannot be opened for
// writing ends the save before anything is touched.
SaveResult SaveQueues(const CList *deleted, CList *errors, const SaveObserver &observer);
