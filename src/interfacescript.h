// The program's block in a queue's interface script.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "clist.h"
#include "command.h"

// What the block says. The texts stand in it unquoted.
struct InterfaceBlock {
  std::string queue_type;  // "raw" passes the files as they are, any other is the filter's type
  std::string ppd_path;
  std::string def_path;
  std::string address;
  std::string transport_parameter;
};

// The lines of the block.
std::string InterfaceBlockText(const InterfaceBlock &block);

// Appends the block to the script: 1; 0 silently when a text is null, and 0, reported to `errors`,
// when it cannot be written (a part that was written is taken back).
int WriteToInterfaceFile(const char *script_path, const char *queue_type, const char *ppd_path,
                         const char *def_path, const char *address, const char *transport_parameter,
                         CList *errors);

// `script` with every line that begins with "NETWORK_ADDRESS" replaced by one that sets `address`,
// and every other byte as it was; nothing when there is no such line.
std::optional<std::string> WithNetworkAddress(std::string_view script, std::string_view address);

// The commands that make a script the spooler's, in order, and all of them in one.
std::vector<SpoolerCommand> ScriptOwnerCommands(const std::string &script_path);
std::string ScriptOwnerCommand(const std::string &script_path);

// Puts `address` into the interface script of the queue `name`: 1; 0 when the script stays as it
// was or, reported to `errors`, something failed.
int ChangeAddressInInterface(const char *name, const char *address, CList *errors);
