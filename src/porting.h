// The System V spooler: which queues it has, which of them are ours, and how they go.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "clist.h"
#include "cprintqueue.h"

// The line of an interface script by which a queue is known as ours.
inline constexpr char kMarkerLine[] = "# the following lines are inserted by KPXadmin";

// The characters that no queue name may hold, because the shell or a path gives them a meaning.
inline constexpr std::string_view kNotInQueueNames = "/\\.,;: '`*@#$=!&|()\"~%^[]{}<>";

// True when a command can have `name` unquoted: not empty, not an option, and without those
// characters, "?" and control characters.
[[nodiscard]] bool IsCommandSafeName(std::string_view name);

// IsCommandSafeName; a name that is not is reported to `errors` ("ERR_QUEUE_NAME").
[[nodiscard]] bool CheckCommandSafeName(const char *name, CList *errors);

// The interface script of the queue `name`.
std::string InterfacePath(const std::string &name);

// What is in the place of a queue's interface script.
enum class ScriptState {
  Gone,
  Unreadable,  // there may be a script, but the system did not show it: nothing may follow from
               // that
  NotAFile,
  NotOurs,  // without the marker line
  Ours,
};
struct QueueScript {
  ScriptState state;
  std::string text;  // empty unless it is NotOurs or Ours
};

// The interface script of the queue `name` (null: Gone). By the second one, a script that is
// Unreadable or NotAFile is reported to `errors`.
QueueScript LookAtScript(const char *name);
QueueScript ReadQueueScript(const char *name, CList *errors);

// The queues that the spooler has only in part, as the start found out. One may be removed and made
// anew whatever its script says.
void MarkIncompleteQueue(const char *name);
[[nodiscard]] bool IsIncompleteQueue(const char *name);  // false for null
void ForgetIncompleteQueues();

// The names of all spooler queues (CString), the last directory entry first; copies of ours are
// put at the head of `our_names`, which may be null. Null when there is no spooler (silently) or
// its directory cannot be read (reported to `errors`).
[[nodiscard]] Owned<CList> GetQueueNamesSysV(CList *our_names, CList *errors);

// 1 when the queue's interface script holds the marker line; 0 when not, when there is no script or
// `name` is null, and, reported to `errors`, when the script cannot be read.
[[nodiscard]] int OurQueueExistsSysV(const char *name, CList *errors);

// Whether the queue `name`, which has that script, is to stay whatever the script says.
using QueueFilter = std::function<bool(const char *name, const QueueScript &script)>;

// Drops from G_Queues_hash every queue that is not ours in the spooler, but for those that `stays`,
// which may be empty, lets pass: silently when its script is gone, with a report to `errors` when
// the script has lost the marker or cannot be read. Those whose script cannot be read are set
// aside. 1.
int RemoveInexistentSystemVQueues(CList *errors, const QueueFilter &stays = {});

// True for a queue that was set aside.
[[nodiscard]] bool IsSetAside(const char *name);

// Sets `queue` of that name aside too.
void SetAsideQueue(const char *name, Owned<CPrintQueue> queue);

// Puts the queues that were set aside back into G_Queues_hash, so that a save does not forget them;
// one whose name has been taken meanwhile is left out.
void TakeBackQueuesSetAside();

// True for a queue that was taken back: no command may be run for it.
[[nodiscard]] bool WasSetAside(const char *name);

// The command that removes the queue `name`.
std::string DeleteQueueCommand(const std::string &name);

// Removes the queue from the spooler: 1; 0, reported to `errors`, when the spooler refuses or the
// name cannot be part of a command.
[[nodiscard]] int DeleteQueueSysV(const char *name, CList *errors);

// Told the name of each queue when its turn comes, with `runs_command` false, and again, with true,
// before each command that is run for it; may be empty.
using QueueObserver = std::function<void(const char *name, bool runs_command)>;

// Removes those of `names` (CString) that are ours or marked as incomplete from the spooler, and
// the users' option files of these, and of those that the spooler has no longer, from the disk. A
// queue that the spooler keeps comes back into G_Queues_hash as it was at start, and so does one
// whose script cannot be read, for which nothing is run. 1 when all removals succeeded; 0 after a
// failure and for a null list.
[[nodiscard]] int DeleteQueuesSysV(const CList *names, CList *errors,
                                   const QueueObserver &observer = {});
