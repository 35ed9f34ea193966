// The print command: what is run, and what is shown.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "chash.h"

// The combo entry of a queue, "<name>    [ <printer> ]    <language>"; null texts count as empty.
std::string QueueEntry(const char *name, const char *printer_name, const char *language);

// The entries of all queues (G_Queues_hash) in key order.
std::vector<std::string> QueueEntries();

// The queue name in a combo entry: its text up to the first blank.
std::string QueueNameFromEntry(std::string_view entry);

// The command that prints the files (CSelection), selected or not. Each name is one word for the
// shell (ShellWord), whatever characters it has, and one that begins with "-" no option of lp.
std::string PrintCommandText(const std::string &queue, const std::string &copies, bool copy_files,
                             const CList *files);

// The text that shows the command: as above, and inside the quotes every pair of `options` (CString
// values, may be null) beside the copies, which the command itself does not carry. In a name, bytes
// that are not UTF-8 are shown as a printf command that makes them.
std::string DisplayedCommandText(const std::string &queue, const CHash *options, bool copy_files,
                                 const CList *files);

// The number of copies among a queue's options; when it is missing, "1" is added to them.
std::string CopiesToPrint(CHash *options);

// Stores the options of the queue for its user, then prints the files of G_FilesList. Settings that
// the job would miss (PrintSettings) and a failed command, with the files that cannot be read, are
// reported on standard error and in `errors`.
void PrintFiles(const std::string &queue, CList *errors);

// The queue that the user has printed on last, as PrintFiles has kept it in his home directory;
// empty when nothing is known.
std::string LastQueue();

// The command for the queue and the files of G_FilesList, to be shown. Changes and runs nothing.
std::string DisplayedPrintCommand(const std::string &queue);
