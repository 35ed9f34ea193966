#include "interfacescript.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "cmessages.h"
#include "debug.h"
#include "paths.h"
#include "porting.h"
#include "queuetypes.h"
#include "textencoding.h"
#include "textfile.h"
#include "textscan.h"

namespace {

constexpr std::string_view L_AddressVariable = "NETWORK_ADDRESS";

// Program and new value of what makes a script the spooler's.
constexpr std::pair<const char *, const char *> L_OwnerCommands[] = {
    {"/bin/chmod", "755"}, {"/bin/chgrp", "bin"}, {"/bin/chown", "lp"}};

// An address ends at its first control character: behind a tab or a line feed the shell would see
// a command.
std::string AddressLine(std::string_view address) {
  const auto end = std::find_if(address.begin(), address.end(), IsControlCharacter);
  return std::string(L_AddressVariable) + "=" + std::string(address.begin(), end) + "\n";
}

// The lines that turn the file "$1" into printer data.
std::string FilterLines(const InterfaceBlock &block) {
  if (!QueueTypeOf(block.queue_type).is_filtered) return "  ${CAT} \"$1\"\n";
  return std::string("  ") + kFilterProgram + " \\\n" +
         "    \"$options\" \\\n"
         "    -J\"$title\" \\\n"
         "    -e\"$title\" \\\n"
         "    -L\"$username\" \\\n"
         "    --filter \\\n"
         "    --type " +
         block.queue_type + " \\\n" + "    --ppdfile " + block.ppd_path + " \\\n" +
         "    --deffile " + block.def_path + " <\"$1\"\n";
}

// The line that sends the data. The address is a variable of the script.
std::string TransportLine(const InterfaceBlock &block) {
  const std::string address = " $" + std::string(L_AddressVariable) + " ";
  if (block.backend.empty()) {
    return std::string("} | ") + kTransportProgram + address + block.port + " " +
           block.transport_parameter + "\n";
  }
  return std::string("} | ") + kBackendProgram + address + block.port + " " + block.backend + "\n";
}

// Beside the script, so that it can take the script's place in one step.
std::string TemporaryScript(const std::string &path) { return path + kTemporaryScriptSuffix; }

// The new address is written; what is left is to have it take the old one's place: 1 or 0.
int InstallScript(const char *name, const std::string &temporary, const std::string &path,
                  CList *errors) {
  const bool renamed = RenameDurably(temporary, path);
  if (renamed && RunCommand(ScriptOwnerCommand(path)) == 0) return 1;
  if (!renamed) G_Report(errors, "ERR_ADDRESS_NOT_CHANGED", {name});
  return 0;
}

}  // namespace

std::string InterfaceBlockText(const InterfaceBlock &block) {
  return std::string("\n") + kMarkerLine + "\n" +
         "# please do not edit\n"
         "#\n" +
         AddressLine(block.address) +
         "{\n"
         "while [ $# -gt 0 ]\n"
         "do\n" +
         FilterLines(block) +
         "  shift\n"
         "done\n" +
         TransportLine(block);
}

int WriteToInterfaceFile(const char *script_path, const char *queue_type, const char *ppd_path,
                         const char *def_path, const char *address, const char *transport_parameter,
                         CList *errors) {
  const LogScope log("WriteToInterfaceFile");
  for (const char *text :
       {script_path, queue_type, ppd_path, def_path, address, transport_parameter}) {
    if (text == nullptr) return 0;
  }
  return WriteInterfaceBlock(
      script_path, {queue_type, ppd_path, def_path, address, transport_parameter}, errors);
}

int WriteInterfaceBlock(const std::string &script_path, const InterfaceBlock &block,
                        CList *errors) {
  if (AppendDurably(script_path, InterfaceBlockText(block), TemporaryScript(script_path))) return 1;
  G_Report(errors, "ERR_UNABLE_TO_WRITE_FILE", {script_path});
  return 0;
}

std::optional<std::string> WithNetworkAddress(std::string_view script, std::string_view address) {
  std::string result;
  bool found = false;
  while (!script.empty()) {
    const std::string_view line = script.substr(0, script.find('\n'));
    const size_t length = line.size() + (line.size() < script.size() ? 1 : 0);
    if (line.starts_with(L_AddressVariable)) {
      found = true;
      result += AddressLine(address);
    } else {
      result += script.substr(0, length);
    }
    script.remove_prefix(length);
  }
  return found ? std::optional(std::move(result)) : std::nullopt;
}

std::optional<std::string> NetworkAddressOf(std::string_view script) {
  const std::string setting = std::string(L_AddressVariable) + "=";
  std::optional<std::string> address;
  LineReader lines(script);
  while (const std::optional<std::string> line = lines.Next()) {
    if (line->starts_with(setting)) address = line->substr(setting.size());
  }
  return address;
}

std::vector<SpoolerCommand> ScriptOwnerCommands(const std::string &script_path) {
  std::vector<SpoolerCommand> commands;
  for (const auto &[program, value] : L_OwnerCommands) {
    commands.push_back({program, JoinWords({program, value, script_path, kDiscardOutput})});
  }
  return commands;
}

std::string ScriptOwnerCommand(const std::string &script_path) {
  std::vector<std::string> words;
  for (const SpoolerCommand &step : ScriptOwnerCommands(script_path)) {
    if (!words.empty()) words.emplace_back(";");
    words.push_back(step.command);
  }
  return JoinWords(words);
}

int ChangeAddressInInterface(const char *name, const char *address, CList *errors) {
  const LogScope log("ChangeAddressInInterface");
  if (address == nullptr || !CheckCommandSafeName(name, errors)) return 0;
  const std::string path = InterfacePath(name);
  const std::string temporary = TemporaryScript(path);
  struct stat like = {};
  const std::optional<std::string> script = ReadWholeFile(path);
  if (!script || stat(path.c_str(), &like) != 0) {
    G_Report(errors, "ERR_UNABLE_TO_READ_FILE", {path});
    return 0;
  }
  const std::optional<std::string> changed = WithNetworkAddress(*script, address);
  switch (WriteNewFile(temporary, changed.value_or(*script), like)) {
    case NewFile::Written:
      if (changed && InstallScript(name, temporary, path, errors) == 1) return 1;
      break;
    case NewFile::NotWritten:
      G_Report(errors, "ERR_UNABLE_TO_WRITE_FILE", {temporary});
      break;
    case NewFile::NotMade:
      // Kept on purpose: the message speaks of reading although the file was to be written.
      G_Report(errors, "ERR_UNABLE_TO_READ_FILE", {temporary});
      return 0;
  }
  // After a finished rename there is nothing to remove any more, which gets reported.
  if (std::remove(temporary.c_str()) != 0) G_Report(errors, "ERR_REMOVE", {temporary});
  return 0;
}
