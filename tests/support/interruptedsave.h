// A save that adds, deletes and changes queues, to be interrupted at any point, and the judgement
// of what is left once the administration program has been started again and Save pressed once.
// Only inside the full sandbox, as root.
#pragma once

#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "faultinjection.h"
#include "savedworld.h"

using CallFilter = std::function<bool(const FileCall &call)>;

// What became of the queues, each as a whole with all that belongs to it.
struct SaveOutcome {
  bool is_old = false;      // all as before the save
  bool is_new = false;      // all as after a save that nothing interrupted
  bool is_whole = false;    // each queue as before or as after it, and nothing left lying
  std::string differences;  // from the nearer of the two
};

class InterruptedSave {
 public:
  // Makes the queues and learns how an uninterrupted save ends. Throws when one goes wrong.
  InterruptedSave();

  // The one that all tests of this program share.
  static const InterruptedSave &Shared();

  // Brings disk and spooler back to before the save.
  void PutBack() const;

  // The program's start, the administrator's changes, and then, with faults, Save. The exit status
  // is 0, or 1 when the list of errors told something.
  static TracedEnd Save(const FatePlan &plan);

  // The program's start and, when `and_save`, Save, all with faults. Status 1 when the start or the
  // save told something.
  static TracedEnd Start(const FatePlan &plan, bool and_save);

  // The same without faults: what an administrator does after an interruption. Throws when it hangs
  // or crashes.
  static int StartAndSave();

  // Compares list, option files, scripts, spooler.
  SaveOutcome Judge() const;
  SaveOutcome Judge(const World &world) const;

  // What a file of a queue, or of none, is now that it neither was before the save nor after it,
  // one a line: empty or half files, files with other owners. What is only missing does not count,
  // nor does the model's script alone, which has its jobs wait.
  std::string SpoiltFiles() const;

  // The words that the last run with faults wrote to standard error.
  static std::string Errors();

 private:
  DiskState disk_;
  SchedulerState scheduler_;
  World old_;
  World new_;
};

// Whether the call can change what a save leaves behind: its files, or what the scheduler knows.
bool ChangesSavedState(const FileCall &call);

// What the calls are about that `concerns` picks, in order, when nothing is done to them: of a
// save, or of a start.
std::vector<std::string> CallsOfSave(const CallFilter &concerns);
std::vector<std::string> CallsOfStart(const CallFilter &concerns);

// Numbers from 1 to `count`: `some` of them, evenly spread, the first and the last among them; with
// KPX_LONG `some_long`.
std::vector<int> SampleOf(int count, int some, int some_long = INT_MAX);

// The plan that lets `fate` befall the call `number`, from 1, of those that `concerns` picks, and
// nothing any other.
FatePlan At(int number, const CallFilter &concerns, CallFate fate);

// The plan that lets every call be made and adds what those are about that `concerns` picks to
// `calls`, which lives as long as the plan.
FatePlan Noting(const CallFilter &concerns, std::vector<std::string> &calls);
