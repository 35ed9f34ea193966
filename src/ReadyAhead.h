// What the first window needs besides the theme, made ready in a second thread while the theme, the
// texts and the printers are read: pages of memory, the fonts' configuration, and the interface's
// font. The thread touches no widget and nothing of the program's own. Where the program may use
// one processor only there is no such thread, and all is done when it is needed (D-windows-17).
#pragma once

// Starts the thread; right after gtk_init, before the theme is read.
void BeginReadyAhead();

// Has the thread load the font of the user's settings; once, when they and the theme have been
// read. From now on what ends the program calls EndProgram, which waits for the thread.
void LoadFontAhead();

// Waits for the thread and has this one's texts use the font that it loaded. Before the first text
// that is shown; a second call does nothing.
void AwaitFont();
