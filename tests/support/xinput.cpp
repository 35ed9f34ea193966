#include "xinput.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace {

// A window that is asked for may vanish at any time; that is no reason to end the test program.
int IgnoreError(Display *, XErrorEvent *) { return 0; }

Display *Server() {
  static Display *const display = [] {
    Display *opened = XOpenDisplay(nullptr);
    if (opened == nullptr) throw std::runtime_error("no X display");
    XSetErrorHandler(IgnoreError);
    XSelectInput(opened, DefaultRootWindow(opened), SubstructureNotifyMask);
    return opened;
  }();
  return display;
}

// Code points of UTF-8 text; a broken sequence throws.
std::vector<unsigned long> CodePoints(const std::string &text) {
  std::vector<unsigned long> points;
  for (size_t i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i]);
    const size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (i + length > text.size()) throw std::invalid_argument("text to type is no UTF-8");
    unsigned long point = length == 1 ? lead : lead & (0xFFU >> (length + 1));
    for (size_t k = 1; k < length; ++k) {
      point = point << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3FU);
    }
    points.push_back(point);
    i += length;
  }
  return points;
}

KeySym SymbolOf(unsigned long point) {
  if (point == '\n') return XK_Return;
  if (point == '\t') return XK_Tab;
  const bool latin1 = (point >= 0x20 && point < 0x7F) || (point >= 0xA0 && point <= 0xFF);
  return latin1 ? point : 0x01000000UL | point;
}

void Send(KeyCode code, bool down) { XTestFakeKeyEvent(Server(), code, down, CurrentTime); }

KeyCode ShiftKey() { return XKeysymToKeycode(Server(), XK_Shift_L); }

// A key of the keyboard that has no symbol.
KeyCode SpareKey() {
  static const KeyCode spare = [] {
    int first = 0;
    int last = 0;
    int symbols = 0;
    XDisplayKeycodes(Server(), &first, &last);
    KeySym *map =
        XGetKeyboardMapping(Server(), static_cast<KeyCode>(first), last - first + 1, &symbols);
    int found = 0;
    for (int code = last; code >= first && found == 0; --code) {
      const KeySym *row = map + (code - first) * symbols;
      if (std::all_of(row, row + symbols, [](KeySym symbol) { return symbol == NoSymbol; })) {
        found = code;
      }
    }
    XFree(map);
    if (found == 0) throw std::runtime_error("the keyboard has no spare key");
    return static_cast<KeyCode>(found);
  }();
  return spare;
}

void PressSymbol(KeySym symbol) {
  KeyCode code = XKeysymToKeycode(Server(), symbol);
  const bool shifted = code != 0 && XkbKeycodeToKeysym(Server(), code, 0, 0) != symbol &&
                       XkbKeycodeToKeysym(Server(), code, 0, 1) == symbol;
  if (code == 0) {
    code = SpareKey();
    KeySym symbols[] = {symbol, symbol};
    XChangeKeyboardMapping(Server(), code, 2, symbols, 1);
    XSync(Server(), False);
  }
  if (shifted) Send(ShiftKey(), true);
  Send(code, true);
  Send(code, false);
  if (shifted) Send(ShiftKey(), false);
  XSync(Server(), False);
}

KeySym SymbolNamed(const std::string &name) {
  if (name == "ctrl") return XK_Control_L;
  if (name == "shift") return XK_Shift_L;
  if (name == "alt") return XK_Alt_L;
  const KeySym symbol = XStringToKeysym(name.c_str());
  if (symbol == NoSymbol) throw std::invalid_argument("no key is called " + name);
  return symbol;
}

}  // namespace

int XInputDescriptor() { return ConnectionNumber(Server()); }

void XInputDrain() {
  XEvent event;
  while (XPending(Server()) > 0) XNextEvent(Server(), &event);
}

void XInputMove(int x, int y) {
  XTestFakeMotionEvent(Server(), -1, x, y, CurrentTime);
  XSync(Server(), False);
}

void XInputButton(int button, bool down) {
  XTestFakeButtonEvent(Server(), static_cast<unsigned>(button), down, CurrentTime);
  XSync(Server(), False);
}

void XInputClick(int x, int y, int button) {
  XInputMove(x, y);
  XInputButton(button, true);
  XInputButton(button, false);
}

void XInputKey(const std::string &name, bool down) {
  Send(XKeysymToKeycode(Server(), SymbolNamed(name)), down);
  XSync(Server(), False);
}

void XInputChord(const std::string &chord) {
  std::vector<std::string> modifiers;
  size_t start = 0;
  for (size_t plus = chord.find('+'); plus != std::string::npos && plus + 1 < chord.size();
       plus = chord.find('+', start)) {
    modifiers.push_back(chord.substr(start, plus - start));
    start = plus + 1;
  }
  const KeySym symbol = SymbolNamed(chord.substr(start));
  for (const std::string &modifier : modifiers) XInputKey(modifier, true);
  PressSymbol(symbol);
  for (const std::string &modifier : modifiers) XInputKey(modifier, false);
}

void XInputType(const std::string &text) {
  for (const unsigned long point : CodePoints(text)) PressSymbol(SymbolOf(point));
}

void XInputFocus(unsigned long window) {
  XRaiseWindow(Server(), window);
  XSetInputFocus(Server(), window, RevertToPointerRoot, CurrentTime);
  XSync(Server(), False);
}

bool XInputFollowsPointer() {
  Window window = None;
  int revert = 0;
  XGetInputFocus(Server(), &window, &revert);
  return window == PointerRoot;
}

bool XInputIsActive(unsigned long window) {
  Atom type = None;
  int format = 0;
  unsigned long count = 0;
  unsigned long left = 0;
  unsigned char *data = nullptr;
  XGetWindowProperty(Server(), DefaultRootWindow(Server()),
                     XInternAtom(Server(), "_NET_ACTIVE_WINDOW", False), 0, 1, False, XA_WINDOW,
                     &type, &format, &count, &left, &data);
  const bool active = count != 1 || *reinterpret_cast<unsigned long *>(data) == window;
  if (data != nullptr) XFree(data);
  return active;
}

void XInputClose(unsigned long window) {
  XEvent event = {};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(Server(), "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(Server(), "WM_DELETE_WINDOW", False));
  event.xclient.data.l[1] = CurrentTime;
  XSendEvent(Server(), window, False, NoEventMask, &event);
  XSync(Server(), False);
}

void XInputDisconnect(unsigned long window) {
  XKillClient(Server(), window);
  XSync(Server(), False);
}

std::vector<std::string> XInputWindowTitles() {
  Window root = 0;
  Window parent = 0;
  Window *windows = nullptr;
  unsigned count = 0;
  XQueryTree(Server(), DefaultRootWindow(Server()), &root, &parent, &windows, &count);
  std::vector<std::string> titles;
  for (unsigned i = 0; i < count; ++i) {
    XWindowAttributes attributes = {};
    char *title = nullptr;
    if (XGetWindowAttributes(Server(), windows[i], &attributes) == 0 ||
        attributes.map_state != IsViewable || XFetchName(Server(), windows[i], &title) == 0) {
      continue;
    }
    titles.emplace_back(title);
    XFree(title);
  }
  XFree(windows);
  return titles;
}

ScreenPixels XInputPixels() {
  Display *server = Server();
  ScreenPixels pixels;
  pixels.width = DisplayWidth(server, DefaultScreen(server));
  pixels.height = DisplayHeight(server, DefaultScreen(server));
  XImage *image =
      XGetImage(server, DefaultRootWindow(server), 0, 0, static_cast<unsigned>(pixels.width),
                static_cast<unsigned>(pixels.height), AllPlanes, ZPixmap);
  if (image == nullptr) throw std::runtime_error("the screen cannot be read");
  pixels.colours.reserve(static_cast<size_t>(pixels.width) * static_cast<size_t>(pixels.height));
  for (int y = 0; y < pixels.height; ++y) {
    for (int x = 0; x < pixels.width; ++x) {
      pixels.colours.push_back(XGetPixel(image, x, y) & 0xFFFFFFUL);
    }
  }
  XDestroyImage(image);
  return pixels;
}

void XInputBackground(unsigned long colour) {
  XSetWindowBackground(Server(), DefaultRootWindow(Server()), colour);
  XClearWindow(Server(), DefaultRootWindow(Server()));
  XSync(Server(), False);
}
