#include "scriptreader.h"

#include <optional>
#include <utility>
#include <vector>

#include "paths.h"
#include "porting.h"

namespace {

// What stands in the bridge's model scripts.
constexpr std::string_view L_ModelBegin = "#!/bin/sh\n# Interface script of the printer model ";
constexpr std::string_view L_ModelEnd = "\n# End of the model\n";

constexpr std::string_view L_Commands = "{";  // the line with which the block's commands begin

// A line of the block: fixed text with one value in it, or none.
struct Pattern {
  std::string before;
  std::string after;
  std::string InterfaceBlock::*value = nullptr;
};

std::vector<Pattern> BlockPattern(bool raw) {
  std::vector<Pattern> lines = {{"# please do not edit", ""},
                                {"#", ""},
                                {"NETWORK_ADDRESS=", "", &InterfaceBlock::address},
                                {std::string(L_Commands), ""},
                                {"while [ $# -gt 0 ]", ""},
                                {"do", ""}};
  if (raw) {
    lines.push_back({"  ${CAT} \"$1\"", ""});
  } else {
    for (const char *line :
         {"\"$options\"", "-J\"$title\"", "-e\"$title\"", "-L\"$username\"", "--filter"}) {
      if (lines.size() == 6) lines.push_back({std::string("  ") + kFilterProgram + " \\", ""});
      lines.push_back({std::string("    ") + line + " \\", ""});
    }
    lines.push_back({"    --type ", " \\", &InterfaceBlock::queue_type});
    lines.push_back({"    --ppdfile ", " \\", &InterfaceBlock::ppd_path});
    lines.push_back({"    --deffile ", " <\"$1\"", &InterfaceBlock::def_path});
  }
  lines.push_back({"  shift", ""});
  lines.push_back({"done", ""});
  lines.push_back({"} | ", "", &InterfaceBlock::transport_parameter});
  return lines;
}

// The value that the line has in the pattern; nothing when it is another line.
std::optional<std::string> ValueIn(std::string_view line, const Pattern &pattern) {
  if (pattern.value == nullptr) {
    return line == pattern.before ? std::optional<std::string>("") : std::nullopt;
  }
  if (line.size() < pattern.before.size() + pattern.after.size() ||
      !line.starts_with(pattern.before) || !line.ends_with(pattern.after)) {
    return std::nullopt;
  }
  line.remove_prefix(pattern.before.size());
  line.remove_suffix(pattern.after.size());
  return std::string(line);
}

// What the last line of a block begins with, in either of its forms.
std::string TransportWords(const char *program) {
  return std::string(program) + " $NETWORK_ADDRESS ";
}

// Whether the last line of a script can be the beginning of such a line.
bool CanBegin(std::string_view line, const Pattern &pattern) {
  if (pattern.before.starts_with(line)) return true;
  if (pattern.value == nullptr || !line.starts_with(pattern.before)) return false;
  if (pattern.value != &InterfaceBlock::transport_parameter) return true;
  line.remove_prefix(pattern.before.size());
  const auto fits = [line](const char *program) {
    const std::string words = TransportWords(program);
    return words.starts_with(line) || line.starts_with(words);
  };
  return fits(kTransportProgram) || fits(kBackendProgram);
}

// Takes the last line of a block, which the pattern has put where the parameter goes, apart:
// "kpxnbtrans $NETWORK_ADDRESS port parameter", or "kpxbackend $NETWORK_ADDRESS port backend".
// False for another.
bool TakeTransport(InterfaceBlock *block) {
  const std::string line = block->transport_parameter;
  const auto behind = [&line](const char *program) {
    const std::string words = TransportWords(program);
    return line.starts_with(words) ? line.substr(words.size()) : std::string();
  };
  const std::string own = behind(kTransportProgram), other = behind(kBackendProgram);
  const std::string &rest = own.empty() ? other : own;
  const size_t blank = rest.find(' ');
  if (blank == std::string::npos || blank == 0) return false;
  block->port = rest.substr(0, blank);
  if (block->port.find_first_not_of("0123456789") != std::string::npos) return false;
  block->transport_parameter = own.empty() ? "" : rest.substr(blank + 1);
  block->backend = own.empty() ? rest.substr(blank + 1) : "";
  return true;
}

// What follows the marker line, read by one of the two patterns.
BlockReading ReadAs(std::string_view rest, bool raw, bool from_bridge) {
  BlockReading reading{BlockState::Other, {}};
  bool in_commands = false;
  for (const Pattern &pattern : BlockPattern(raw)) {
    const size_t end = rest.find('\n');
    if (end == std::string_view::npos) {
      if ((from_bridge || in_commands) && CanBegin(rest, pattern)) reading.state = BlockState::Cut;
      return reading;
    }
    const std::optional<std::string> value = ValueIn(rest.substr(0, end), pattern);
    if (!value) return reading;
    if (pattern.value != nullptr) reading.block.*pattern.value = *value;
    in_commands = in_commands || pattern.before == L_Commands;
    rest.remove_prefix(end + 1);
  }
  if (!TakeTransport(&reading.block)) return reading;
  reading.state = BlockState::Whole;
  if (raw) reading.block.queue_type = "raw";
  return reading;
}

}  // namespace

BlockReading ReadInterfaceBlock(std::string_view script) {
  const std::string marker = std::string("\n") + kMarkerLine;
  const size_t start = script.rfind(marker);
  if (start == std::string_view::npos) return {BlockState::Other, {}};
  const bool from_bridge = IsFromBridge(script.substr(0, start + 1));
  std::string_view rest = script.substr(start + marker.size());
  if (rest.empty()) return {from_bridge ? BlockState::Cut : BlockState::Other, {}};
  if (rest.front() != '\n') return {BlockState::Other, {}};
  rest.remove_prefix(1);
  BlockReading reading = ReadAs(rest, false, from_bridge);
  return reading.state == BlockState::Other ? ReadAs(rest, true, from_bridge) : reading;
}

bool IsFromBridge(std::string_view script) {
  return script.starts_with(L_ModelBegin) && script.find(L_ModelEnd) != std::string_view::npos;
}

std::string ModelOfScript(std::string_view script) {
  if (!IsFromBridge(script)) return "";
  script.remove_prefix(L_ModelBegin.size());
  return std::string(script.substr(0, script.find(',')));
}

std::string_view ModelPartOf(std::string_view script) {
  if (!IsFromBridge(script)) return {};
  return script.substr(0, script.find(L_ModelEnd) + L_ModelEnd.size());
}
