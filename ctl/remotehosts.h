// kpxctl --host: the same command on other hosts, over the user's own ssh.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "commands.h"

namespace kpx::ctl {

// The hosts of one or more values of --host, which have commas between them, each once, in order.
// Nothing, with `*wrong`, when one of them cannot be a host: ssh would take it for an option.
[[nodiscard]] std::optional<std::vector<std::string>> HostsOf(
    const std::vector<std::string> &values, std::string *wrong);

// What ssh is to run there: kpxctl with these words, whatever characters they have.
std::string RemoteCommand(const std::vector<std::string> &words);

// Of two hosts the status that counts: a failure before a wrong call, a refusal, changes found.
Status WorseStatus(Status a, Status b);

// Runs the command on all hosts, several at a time. On one host it has this terminal; what it says
// on several is shown host by host as each ends, and standard error has a line for each that begins
// and ends. A host that cannot be reached has failed. The worst status.
[[nodiscard]] Status RunOnHosts(const std::vector<std::string> &hosts,
                                const std::vector<std::string> &words);

}  // namespace kpx::ctl
