// Ending the program from any place, also while a second thread is at work.
#pragma once

// Has EndProgram call `action` first, instead of the one named before; null for none. The action
// must not end the program itself.
void SetBeforeEnd(void (*action)());

// Ends the program as exit() does, with this exit status. Instead of exit(), wherever the program
// may still be starting.
[[noreturn]] void EndProgram(int status);
