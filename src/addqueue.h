// The rules of the administration windows: adding, cloning and showing queues of the working set.
#pragma once

#include <string>
#include <vector>

#include "cprintqueue.h"

// The queue types in the order in which they are offered; each is also the catalogue key of its
// name.
extern const std::vector<const char *> G_QueueTypes;

// The only transport there is; also the catalogue key of its name.
inline constexpr char kTcpIpTransport[] = "tcpip";

// What a queue is known by and how its printer is reached, as shown in a window (UTF-8).
struct QueueIdentity {
  std::string name;
  std::string transport;
  std::string address;
};

// The first fault of an identity, in this order.
enum class IdentityFault { kNone, kNoName, kNameTaken, kTransport, kNoAddress };
[[nodiscard]] IdentityFault CheckIdentity(const QueueIdentity &identity);

// The catalogue key of what to tell the user; null for kNone and kTransport, which is silent (kept
// on purpose).
const char *WarningKey(IdentityFault fault);

// What the add-queue dialog holds, as shown (UTF-8).
struct NewQueue {
  std::string name;
  std::string printer;  // empty: none is selected
  std::string type;
  std::string transport;
  std::string address;
};

struct [[nodiscard]] AddQueueResult {
  bool added = false;
  const char *warning_key = nullptr;  // catalogue key of what to tell the user, or null
};

// True for the types of queues.
[[nodiscard]] bool IsQueueType(const std::string &type);

// A record of that name, printer and address without settings, for the queue type `type`.
[[nodiscard]] Owned<CPrintQueue> NewQueueRecord(const NewQueue &input, const char *type);

// Checks the input and adds a record without settings to G_Queues_hash.
AddQueueResult AddQueue(const NewQueue &input);

// True when the input can be tried at all: a name, an address and a selected printer.
[[nodiscard]] bool IsQueueInputComplete(const std::string &name, const std::string &address,
                                        bool printer_selected);

// Adds a copy of the queue under a free name to G_Queues_hash; that name, or an empty text when
// there is no such queue or its record is incomplete.
std::string CloneQueue(const char *name);

// The same under `clone_name`, which must be free; false when there is no such queue or its record
// is incomplete.
[[nodiscard]] bool CloneQueueAs(const char *name, const std::string &clone_name);

// The row of a queue: name, printer, translated type, address. Empty, after a report on standard
// error, when the queue is unknown or lacks one of them.
std::vector<std::string> QueueRow(const char *name);

// Which buttons of the queue list work with so many selected rows.
struct QueueButtons {
  bool clone;
  bool properties;
  bool remove;
};
QueueButtons QueueButtonsFor(int selected_rows);
