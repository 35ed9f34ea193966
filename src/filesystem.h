// Helpers for directories, files, program look-up and blank trimming. A failure is printed to
// standard error and, where there is an `errors` list (of CString), added to it.
#pragma once

#include <string>

#include "clist.h"

// Deletes the plain files of `path`, then the directory: 1; 0 for null or when it is still there,
// for example because it has subdirectories.
[[nodiscard]] int G_DeleteDir(const char *path, CList *errors);

// Sees to it that `path` is a directory. A new one has mode 0700 and belongs to `owner` (a login
// name, null: the caller); one that exists is left as it is. 1, or 0 for null or failure.
[[nodiscard]] int G_CreateDir(const char *path, const char *owner, CList *errors);

// Copies a file over `destination`, which is emptied first and stays empty when `source` cannot be
// opened. A symbolic link is followed, so the destination's directory must not be one where
// strangers may write. 1, or 0 for failure, a failed write or a null path.
[[nodiscard]] int G_CopyFile(const char *source, const char *destination, CList *errors);

// 1 when the caller may read and execute the file, else 0.
[[nodiscard]] int G_IsExecutable(const char *path);

// Looks `name` up along the environment's PATH: 1 and the full path, or 0 and an empty `result`.
[[nodiscard]] int G_GetValidProgramPath(const char *name, std::string *result);

// Copies `source` without its leading (mode 0) or trailing (mode 1) blanks and tabs; another mode
// leaves `result` untouched. 1; 0 when a pointer is null. `source` may point into `result`.
[[nodiscard]] int G_EliminateSpacesAndTabs(const char *source, std::string *result, int mode);

// Deletes every user's option file of the queue: 1, or 0 for null.
[[nodiscard]] int G_DeleteAllUsersDefForQueue(const char *queue);
