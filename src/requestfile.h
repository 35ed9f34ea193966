// Where the settings of one waiting request are: the print tool writes them, the filter reads them
// in place of the user's own file for the queue. So what is printed later changes no job that
// waits.
#pragma once

#include <string>
#include <string_view>

// The variable of a job's environment that names its request, e.g. "office-11".
inline constexpr char kRequestVariable[] = "KPX_REQUEST";

// Whether `request` can name a file: a queue's name, "-" and a number, in UTF-8, without "/" and
// control characters, at most 255 bytes.
[[nodiscard]] bool IsRequestName(std::string_view request);

// The directory of the files of a user's requests, one a request, each called as the request is.
// `users_directory` has no "/" at its end. Empty for a login name that would lead elsewhere. It
// counts when it belongs to that user or the superuser; so does each file in it.
std::string RequestDirectory(std::string_view users_directory, std::string_view login);
