// Services over the user database and directories.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "clist.h"

// The login name of `user` (null: of the effective user) as the user database has it, or null when
// there is no such user. Lent until the next look-up in the user database.
const char *GetUserName(const char *user);

// The login name of the user `user`; the number where there is no such user.
std::string UserNameOf(uid_t user);

// The home directory of `user`, with the same rules.
const char *GetHomeDir(const char *user);

// Writes "<login name>:<queue>" to `out`: 1; 0 and no change when the user is unknown or `queue` or
// `out` is null.
[[nodiscard]] int BuildUserDefFileName(const char *user, const char *queue, std::string *out);

// The name of the option file of the user `login` for a queue whose own is called `def_file`.
std::string UserDefFileName(std::string_view login, std::string_view def_file);

// The directory of the users' option files, without "/" at its end: it is beside the queues' own,
// one of which has the path `queue_file`.
std::string UsersDirectoryBeside(std::string_view queue_file);

// The names (CString) of a directory's entries except "." and "..", in the directory's own order;
// null when `path` is null or cannot be read.
[[nodiscard]] Owned<CList> GetFilesFromDir(const char *path);

// True when `path` is a directory or a symbolic link to one.
[[nodiscard]] bool IsDirectory(const std::string &path);

// Removes the file, if it is there. One that cannot be removed stays and is logged.
void RemoveFile(const std::string &path);

// Removes the named files of `dir` that are not directories and, when there is a `pattern`, contain
// it. What cannot be removed stays and is logged. 1; 0 when `dir` or `names` is null.
[[nodiscard]] int DeleteFilesFromDir(const char *dir, const CList *names, const char *pattern);

// Removes the files of `dir` whose names end in `suffix`, as above. 1; 0 when `dir` cannot be read,
// which is logged, or an argument is null.
[[nodiscard]] int DeleteFilesEndingIn(const char *dir, const char *suffix);
