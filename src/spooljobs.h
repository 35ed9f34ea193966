// What the spooler says about its jobs.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

// The request id that lp has printed for a job on `queue`, in whatever language; empty when there
// is none or more than one.
std::string RequestIn(std::string_view output, std::string_view queue);

// The request ids in the list of jobs that lpstat prints in the C locale; nothing when it holds a
// line of another form.
[[nodiscard]] std::optional<std::set<std::string>> RequestsInList(std::string_view output);

// The request ids of all jobs that have not ended; nothing when the spooler of this host does not
// answer within a second.
[[nodiscard]] std::optional<std::set<std::string>> WaitingRequests();
