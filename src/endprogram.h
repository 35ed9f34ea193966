// The end of the program before its main loop has run.
#pragma once

// What EndProgram does first. Once; it must not end the program itself.
void SetBeforeEnd(void (*action)());

// Ends the program as exit() does, with this exit status. Everything that may be called while the
// program starts ends it like this: a second thread may be at work then.
[[noreturn]] void EndProgram(int status);
