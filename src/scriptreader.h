// Reading back what an interface script says about its queue.
#pragma once

#include <string>
#include <string_view>

#include "interfacescript.h"

// What a script holds from the program's marker line on.
enum class BlockState {
  Whole,
  Cut,    // the beginning of a block: the rest was never written, and jobs come to nothing
  Other,  // no marker line, or changed by hand
};
struct BlockReading {
  BlockState state;
  InterfaceBlock block;  // filled when it is Whole; the paths are empty for the type "raw"
};

// The program's block in `script`. In a script that the bridge did not make, what breaks off before
// the commands counts as changed by hand.
BlockReading ReadInterfaceBlock(std::string_view script);

// True for a script that the spooler bridge of this host made from one of its models.
[[nodiscard]] bool IsFromBridge(std::string_view script);

// The model that such a script was made from, as the spooler names it; empty for another.
std::string ModelOfScript(std::string_view script);

// The beginning of such a script, which is that of its model, to its last line; empty for another.
std::string_view ModelPartOf(std::string_view script);
