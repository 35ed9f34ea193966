// Where the settings of one waiting request are: the print tool writes them, the filter reads them
// in place of the user's own file for the queue. So what is printed later changes no job that
// waits.
#pragma once

#include <string>
#include <string_view>

// The variable of a job's environment that names its request, e.g. "office-11".
inline constexpr char kRequestVariable[] = "KPX_REQUEST";
// The one that has the paths of the job's files, a line each, in the order in which they print.
inline constexpr char kFilesVariable[] = "KPX_FILES";

// What the file begins its lines with that say how the job's files are called, in their order; for
// other readers they are comments.
inline constexpr std::string_view kFileNameLine = "##File: ";
// In a job of more files than this the print tool leaves no names, and the variable is not there.
inline constexpr int kMostNamedFiles = 1000;

// Whether `request` can name a file: a queue's name, "-" and a number, in UTF-8, without "/" and
// control characters, at most 255 bytes.
[[nodiscard]] bool IsRequestName(std::string_view request);

// The directory of the files of a user's requests, one a request, each called as the request is.
// `users_directory` has no "/" at its end. Empty for a login name that would lead elsewhere. It
// counts when it belongs to that user or the superuser; so does each file in it.
std::string RequestDirectory(std::string_view users_directory, std::string_view login);
