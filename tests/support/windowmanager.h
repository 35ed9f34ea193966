// A window manager on $DISPLAY: windows get frames with their titles, as on a user's desktop.
#pragma once

#include <sys/types.h>

class WindowManager {
 public:
  // Returns when it manages the screen; throws std::runtime_error when it cannot be started.
  WindowManager();
  ~WindowManager();
  WindowManager(const WindowManager &) = delete;
  WindowManager &operator=(const WindowManager &) = delete;

 private:
  pid_t pid_ = -1;
};
