#include "windowmanager.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

#include "deadline.h"

namespace {

bool IsManaged(Display *display) {
  Atom type = None;
  int format = 0;
  unsigned long count = 0;
  unsigned long left = 0;
  unsigned char *data = nullptr;
  XGetWindowProperty(display, DefaultRootWindow(display),
                     XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", False), 0, 1, False,
                     XA_WINDOW, &type, &format, &count, &left, &data);
  if (data != nullptr) XFree(data);
  return count == 1;
}

// Until the manager has announced itself on the root window.
bool WaitUntilManaged() {
  Display *display = XOpenDisplay(nullptr);
  if (display == nullptr) return false;
  XSelectInput(display, DefaultRootWindow(display), PropertyChangeMask);
  const Deadline deadline(EventPatience());
  bool managed = IsManaged(display);
  while (!managed) {
    if (XPending(display) == 0 && !HasEvents(ConnectionNumber(display), POLLIN, deadline)) break;
    XEvent event;
    while (XPending(display) > 0) XNextEvent(display, &event);
    managed = IsManaged(display);
  }
  XCloseDisplay(display);
  return managed;
}

}  // namespace

WindowManager::WindowManager() : pid_(fork()) {
  if (pid_ == 0) {
    // It complains about a menu that nobody will open.
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    execlp("openbox", "openbox", "--sm-disable", static_cast<char *>(nullptr));
    _exit(127);
  }
  if (pid_ < 0 || !WaitUntilManaged())
    throw std::runtime_error("no window manager: install openbox");
}

WindowManager::~WindowManager() {
  kill(pid_, SIGTERM);
  try {
    AwaitChild(pid_, "openbox", nullptr, EventPatience());
  } catch (const std::runtime_error &) {
    // It was killed then.
  }
}
