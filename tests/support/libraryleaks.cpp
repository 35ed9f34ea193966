// Part of every program of the sanitizer build: memory that shared libraries take in their own
// constructors, before the program starts, is theirs and not looked for when it ends. (GLib takes
// the table of its quarks there, and leaves it to itself on purpose when the table has to grow.)
#include <sanitizer/lsan_interface.h>

namespace {

// Runs before the constructors of the libraries.
void StopLooking(int, char **, char **) { __lsan_disable(); }
[[gnu::section(".preinit_array"), gnu::used]] void (*const L_First)(int, char **,
                                                                    char **) = StopLooking;

// Runs after them, before any other of the program's own.
[[gnu::constructor(101)]] void LookAgain() { __lsan_enable(); }

}  // namespace
