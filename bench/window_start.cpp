// Time from exec to the mapped main window, over that of a bare GTK 3 window.
//
// Usage: window_start BARE_PROGRAM PROGRAM [ARGUMENT...]
// Prints one line: name, median of the pairs' ratios, bar, ok or missed, separated by tabs.
//
// Both programs are started in turn, side by side in one run, while this client stays connected to
// the X server (a server without clients resets itself, which would be measured too). The moment a
// window appears is read from the server's MapNotify event on the root window.

#include <X11/Xlib.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWarmUps = 2;
constexpr int kRuns = 41;
constexpr double kBar = 1.5;
constexpr int kDeadline = 20000;  // milliseconds for one window

pid_t Start(char *const *arguments) {
  const pid_t pid = fork();
  if (pid == 0) {
    execv(arguments[0], arguments);
    _exit(127);
  }
  return pid;
}

// Waits for the next event; ends the benchmark when none comes.
void NextEvent(Display *display, XEvent *event) {
  pollfd connection = {ConnectionNumber(display), POLLIN, 0};
  if (XPending(display) == 0 && poll(&connection, 1, kDeadline) <= 0) {
    std::fprintf(stderr, "window-start: no window appeared\n");
    std::exit(2);
  }
  XNextEvent(display, event);
}

// Milliseconds until the program's first visible window is mapped; the program is ended then.
double Measure(Display *display, char *const *arguments) {
  const auto start = Clock::now();
  const pid_t pid = Start(arguments);
  XEvent event;
  do {
    NextEvent(display, &event);
  } while (event.type != MapNotify);
  const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
  kill(pid, SIGTERM);
  waitpid(pid, nullptr, 0);
  XSync(display, True);
  return elapsed.count();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s BARE_PROGRAM PROGRAM [ARGUMENT...]\n", argv[0]);
    return 2;
  }
  Display *display = XOpenDisplay(nullptr);
  if (display == nullptr) {
    std::fprintf(stderr, "%s: no X display\n", argv[0]);
    return 2;
  }
  XSelectInput(display, DefaultRootWindow(display), SubstructureNotifyMask);
  XSync(display, True);

  char *bare[] = {argv[1], nullptr};
  std::vector<double> bare_times;
  std::vector<double> program_times;
  std::vector<double> ratios;
  for (int run = -kWarmUps; run < kRuns; ++run) {
    const double bare_time = Measure(display, bare);
    const double program_time = Measure(display, argv + 2);
    if (run < 0) continue;
    bare_times.push_back(bare_time);
    program_times.push_back(program_time);
    ratios.push_back(program_time / bare_time);
  }
  // Of each pair its own ratio, so that a machine that grows slow meanwhile slows both.
  const double ratio = Median(ratios);
  std::fprintf(stderr, "window-start: %.1f ms, bare window %.1f ms (medians of %d)\n",
               Median(program_times), Median(bare_times), kRuns);
  std::printf("window-start\t%.2f\t%.2f\t%s\n", ratio, kBar, ratio <= kBar ? "ok" : "missed");
  XCloseDisplay(display);
  return ratio <= kBar ? 0 : 1;
}
