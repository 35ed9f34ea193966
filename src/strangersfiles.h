// What is in the users' directory, where every user may write, under a name that is another user's:
// it would keep that user from printing (D-save-11).
#pragma once

// Removes, for the superuser:
// - "<login>:<queue>.def" that is not a regular file, or belongs neither to that user nor to the
//   superuser; where there is no such user, only when its owner is one that is known: the files of
//   users who are gone, or unknown just now, stay,
// - "<login>" of a known user that belongs to another one, but never what is the superuser's,
// - what killed print tools have left of either.
// Nothing else. What a print tool of that user's is just writing waits for the next time. Each
// removal, and what could not be removed, is reported in the log. No link is followed, and no
// directory of another file system entered.
void RemoveStrangersFiles();
