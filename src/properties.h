// The rules of the properties window: opening it on a queue, defaults, what OK and Apply store.

#pragma once

#include <string>
#include <vector>

#include "addqueue.h"
#include "clist.h"
#include "constraints.h"

// Sets G_PrinterModel by the printer's name; a name that fits no model leaves it as it was (kept on
// purpose).
void getPrinterModel(const char *printer_name);

// The name of the queue that is selected in the administration window; empty without one.
std::string SelectedQueueName(const CList *selections);

// Makes the queue of G_Queues_hash and its printer current: a work copy, completed by
// AddDefaultSettings. True; false with nothing current, and `error` set to what to tell the user
// (empty when there is no such queue).
[[nodiscard]] bool OpenProperties(const std::string &queue_name, std::string *error);

// Gives work copy and name up and makes no printer current.
void CloseProperties();

// Adds to the work copy the printer's default of every feature ("*PageRegion" excepted) and every
// installable option ("*InstalledMemory" excepted) that it has no value for.
void AddDefaultSettings();

// Removes from the work copy what equals the printer's default; in the print tool, a feature that
// the administrator has set stays.
void RemoveDefaultSettings();

// Sets the work copy's value of the feature to the printer's default.
enum class FeatureReset { kSame, kChanged, kNoDefault };
[[nodiscard]] FeatureReset ResetFeature(const char *feature);

// Removes what only text queues have: pages a sheet, their order, booklet. What the printer itself
// has under those names stays.
void RemoveMultipleUpSettings();

// Print tool: stores the number of copies and puts a copy of the work copy back into
// G_Queues_hash.
void PutBackForPrinting(int copies);

// Administration: sets the work copy's transport, address and option file, makes `identity.name`
// the current name and puts a copy of the work copy into G_Queues_hash under it. The entry under
// the old name must have been removed.
void PutBackIdentity(const QueueIdentity &identity);
