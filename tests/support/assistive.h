// A program's windows in the hands of assistive technology (AT-SPI).
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "spooler.h"
#include "temporarydirectory.h"

// Starts `program` in a session of its own and takes the steps of tests/support/assistivesteps with
// it. Its status and all that was printed.
inline CommandResult UseAssistively(const std::vector<std::string> &steps,
                                    const std::vector<std::string> &program) {
  const TemporaryDirectory session;
  std::filesystem::permissions(session.Path(), std::filesystem::perms{0700});
  std::vector<std::string> command = {"env",
                                      "-u",
                                      "NO_AT_BRIDGE",
                                      "-u",
                                      "DBUS_SESSION_BUS_ADDRESS",
                                      "XDG_RUNTIME_DIR=" + session.Path(),
                                      "dbus-run-session",
                                      "--",
                                      KPX_ASSISTIVE};
  command.insert(command.end(), steps.begin(), steps.end());
  command.push_back("--");
  command.insert(command.end(), program.begin(), program.end());
  return RunProgram(command);
}
