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
#include <sys/resource.h>
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
constexpr int kRuns = 101;
constexpr double kBar = 1.3;
constexpr int kDeadline = 20000;  // milliseconds for one window
// The observer goes before the observed where it may: a program that goes on to draw its window
// would otherwise keep the processor while the event waits to be seen.
constexpr int kObserverNice = -10;

pid_t Start(char *const *arguments) {
  const pid_t pid = fork();
  if (pid == 0) {
    setpriority(PRIO_PROCESS, 0, 0);
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

// In milliseconds, until the window is mapped.
struct Taken {
  double elapsed;
  double processor;
};

double Milliseconds(const timeval &time) {
  return static_cast<double>(time.tv_sec) * 1000 + static_cast<double>(time.tv_usec) / 1000;
}

// What it takes until the program's first visible window is mapped; the program is ended then.
Taken Measure(Display *display, char *const *arguments) {
  const auto start = Clock::now();
  const pid_t pid = Start(arguments);
  XEvent event;
  do {
    NextEvent(display, &event);
  } while (event.type != MapNotify);
  const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
  kill(pid, SIGKILL);
  rusage used = {};
  wait4(pid, nullptr, 0, &used);
  XSync(display, True);
  return {elapsed.count(), Milliseconds(used.ru_utime) + Milliseconds(used.ru_stime)};
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

Taken Medians(const std::vector<Taken> &all) {
  std::vector<double> elapsed;
  std::vector<double> processor;
  for (const Taken &one : all) {
    elapsed.push_back(one.elapsed);
    processor.push_back(one.processor);
  }
  return {Median(elapsed), Median(processor)};
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

  setpriority(PRIO_PROCESS, 0, kObserverNice);
  char *bare[] = {argv[1], nullptr};
  std::vector<Taken> bare_times;
  std::vector<Taken> program_times;
  std::vector<double> ratios;
  for (int run = -kWarmUps; run < kRuns; ++run) {
    const Taken bare_time = Measure(display, bare);
    const Taken program_time = Measure(display, argv + 2);
    if (run < 0) continue;
    bare_times.push_back(bare_time);
    program_times.push_back(program_time);
    ratios.push_back(program_time.elapsed / bare_time.elapsed);
  }
  // Of each pair its own ratio, so that a machine that grows slow meanwhile slows both.
  const double ratio = Median(ratios);
  const Taken program = Medians(program_times);
  const Taken window = Medians(bare_times);
  std::fprintf(stderr,
               "window-start: %s %.1f ms (processor %.1f), bare window %.1f ms (processor %.1f), "
               "medians of %d\n",
               argv[2], program.elapsed, program.processor, window.elapsed, window.processor,
               kRuns);
  std::printf("window-start\t%.2f\t%.2f\t%s\n", ratio, kBar, ratio <= kBar ? "ok" : "missed");
  XCloseDisplay(display);
  return ratio <= kBar ? 0 : 1;
}
