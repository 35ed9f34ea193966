// The print tool's list of files (G_FilesList).
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "clist.h"

// Appends an unselected record for `path`, which is not checked; its position in the list. Null
// while there is no list.
CNodeList *AppendFile(const std::string &path);

// The files that a chosen path means: the path itself, or, when it ends in "/", everything in that
// directory that is not a directory, in the directory's own order.
std::vector<std::string> FilesOfSelection(const std::string &path);

// The paths of the local files that a text/uri-list (RFC 2483) names, in its order. Comments, other
// schemes, other hosts and malformed file URIs (RFC 8089) are left out; those that are not comments
// are added to `others` when it is not null.
std::vector<std::string> PathsFromUriList(std::string_view text,
                                          std::vector<std::string> *others = nullptr);

// The paths of such a list that are there and hold no control characters. Whatever else it names is
// reported to `errors`.
std::vector<std::string> DroppedPaths(std::string_view text, CList *errors);

// 1 when standard input was captured and its file is still in the list, else 0.
[[nodiscard]] int IsStdinDataToPrint();

// Removes the file of captured standard input from the disk; nothing when there is none.
void RemoveCapturedFile();

// Takes every selected record out of the list, after `before` was called with its position; the
// file of captured standard input is removed from the disk with its record.
void RemoveSelectedFiles(const std::function<void(const CNodeList *position)> &before);
