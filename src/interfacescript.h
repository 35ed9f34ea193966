// The program's block in a queue's interface script.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "clist.h"
#include "command.h"

// What a script's name is followed by while a new one is written beside it.
inline constexpr char kTemporaryScriptSuffix[] = ".KPXadmin";

// What the block says. Its texts are unquoted.
struct InterfaceBlock {
  std::string queue_type;  // a key of queuetypes.h
  std::string ppd_path;
  std::string def_path;
  std::string address;
  std::string transport_parameter;
  std::string backend = {};  // of CUPS; empty: our own transport
  std::string port = "2501";
};

// The lines of the block.
std::string InterfaceBlockText(const InterfaceBlock &block);

// Appends the block to the script, durably: whatever ends the machine, the script has all of the
// block or nothing of it. 1; 0 silently when a text is null, and 0, reported to `errors`, when it
// cannot be written.
[[nodiscard]] int WriteToInterfaceFile(const char *script_path, const char *queue_type,
                                       const char *ppd_path, const char *def_path,
                                       const char *address, const char *transport_parameter,
                                       CList *errors);

// The same of a block.
[[nodiscard]] int WriteInterfaceBlock(const std::string &script_path, const InterfaceBlock &block,
                                      CList *errors);

// `script` with every line that begins with "NETWORK_ADDRESS" replaced by one that sets `address`,
// and every other byte as it was; nothing when there is no such line.
[[nodiscard]] std::optional<std::string> WithNetworkAddress(std::string_view script,
                                                            std::string_view address);

// The address that the last such line of `script` sets; nothing when there is none.
[[nodiscard]] std::optional<std::string> NetworkAddressOf(std::string_view script);

// The commands that make a script the spooler's, in order, and all of them in one.
std::vector<SpoolerCommand> ScriptOwnerCommands(const std::string &script_path);
std::string ScriptOwnerCommand(const std::string &script_path);

// Puts `address` into the interface script of the queue `name`, durably: whatever ends the machine,
// the old script or the new one is there, whole. 1; 0 when the script sets no address and so stays
// as it was or, reported to `errors`, something failed.
[[nodiscard]] int ChangeAddressInInterface(const char *name, const char *address, CList *errors);
