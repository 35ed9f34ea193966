// Real input from the X server of $DISPLAY: pointer, buttons and keys (XTEST). Every call returns
// when the server has handed the events on.
#pragma once

#include <string>
#include <vector>

// The X connection's descriptor; readable when a window was mapped, unmapped or moved.
int XInputDescriptor();
// Forgets what made it readable.
void XInputDrain();

void XInputMove(int x, int y);
void XInputButton(int button, bool down);
void XInputClick(int x, int y, int button = 1);
// Presses or releases the key with this X name, for example "Shift_L".
void XInputKey(const std::string &name, bool down);
// One key with modifiers, "ctrl+a". Throws std::invalid_argument for a name that X does not know.
void XInputChord(const std::string &chord);
// Types UTF-8 text; characters that the keyboard lacks get a key of their own.
void XInputType(const std::string &text);
// Gives the window the input focus and lifts it above the others, as a window manager does.
void XInputFocus(unsigned long window);
// Whether no window has the input focus but the one under the pointer, as it is once the window
// that had it is gone. GTK takes that for a focus, and then closes what it pops up at once.
bool XInputFollowsPointer();
// Whether the window manager has made the window the active one, and so has dealt with all that
// came before; true when there is no window manager.
bool XInputIsActive(unsigned long window);
// Asks the window to close, as a window manager does.
void XInputClose(unsigned long window);
// Has the server end the connection of the window's program.
void XInputDisconnect(unsigned long window);
// The titles of the windows shown, which the X server tells even while a program does not answer.
std::vector<std::string> XInputWindowTitles();
// What the screen shows, row by row from the top left, 0xRRGGBB each.
struct ScreenPixels {
  int width = 0;
  int height = 0;
  std::vector<unsigned long> colours;
  unsigned long At(int x, int y) const {
    return colours.at(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x));
  }
};
ScreenPixels XInputPixels();
// Fills the screen behind all windows with a colour, 0xRRGGBB.
void XInputBackground(unsigned long colour);
