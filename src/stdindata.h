// Standard input captured for printing.
#pragma once

#include <sys/types.h>

#include <string>

// The name of the file for process `pid`; the number in it is the low 16 bits of `pid`, signed.
std::string StdinDataFileName(pid_t pid);

// Once in a process: copies what standard input holds right now, up to the first pause of 50
// microseconds, to a file that only its user can read. Its name is StdinDataFileName of this
// process; where that is another user's file, which is reported on standard error, or in use by
// another print tool of this user's, the name goes on with a dot and six characters more. 1, with
// its path in `name` when any data came (else `name` is left alone); 0 with a message (at most 1023
// bytes) in `error_text`, and a partly written file stays. A terminating signal that nobody handles
// yet (SIGHUP, SIGINT, SIGTERM) removes the file before it ends the program.
[[nodiscard]] int GetStdinData(std::string *name, std::string *error_text);

// Removes the file that GetStdinData has begun in this process; nothing when it has begun none.
void RemoveUnfinishedCapture();

// Removes the files of the calling user's print tools that were killed, and so hold no lock on them
// any more.
void RemoveLeftCaptures();
