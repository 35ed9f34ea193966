// The job window with ten thousand jobs.
//
// usage: jobs_window jobs-first|jobs-open|jobs-turn
// Runs in the sandbox. Prints one line: name, value, bar, ok or missed, separated by tabs.
//
// jobs-first  time from exec until the window shows the newest jobs, over that of lpstat -o, which
//             asks the same service for all of them (median of the pairs)
// jobs-open   the same until all jobs stand in the window
// jobs-turn   milliseconds of the longest turn of the main loop while the jobs come, the window is
//             scrolled through them, and the scheduler hangs, is killed and comes back
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "guiapp.h"
#include "installation.h"
#include "manyjobs.h"
#include "spooler.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kJobs = 10000;
constexpr int kPairs = 5;
constexpr int kPages = 60;  // scrolled in each direction
constexpr double kFirstBar = 1.0;
constexpr double kOpenBar = 1.5;
constexpr double kTurnBar = 50;
constexpr char kQueue[] = "many";

double MillisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

GuiAppOptions Window() {
  GuiAppOptions options;
  options.program = "/usr/bin/KPXjobs";
  return options;
}

void WaitForAll(GuiApp &app) {
  app.WaitUntil("all jobs", [&] { return app.RowCount("JobsClist") == kJobs; });
}

void WaitForFirst(GuiApp &app) {
  app.WaitUntil("a job", [&] { return app.RowCount("JobsClist") > 0; });
  app.WaitDrawn();
}

double OpenOverLpstat(const std::string &name, void (*wait)(GuiApp &app)) {
  std::vector<double> ratios;
  for (int pair = 0; pair < kPairs; ++pair) {
    auto start = Clock::now();
    {
      GuiApp app(Window());
      app.WaitWindow("JobsWindow");
      wait(app);
      ratios.push_back(MillisecondsSince(start));
    }
    start = Clock::now();
    RunProgram({"lpstat", "-o"});
    const double peer = MillisecondsSince(start);
    std::fprintf(stderr, "%s: %.0f ms, lpstat -o %.0f ms\n", name.c_str(), ratios.back(), peer);
    ratios.back() /= peer;
  }
  std::nth_element(ratios.begin(), ratios.begin() + kPairs / 2, ratios.end());
  return ratios[kPairs / 2];
}

void WaitForContact(GuiApp &app, const std::string &key) {
  const std::string text = key.empty() ? "" : CatalogueText(key);
  app.WaitUntil("the contact " + key, [&] {
    return app.HasWidget("ContactLabel") ? app.Text("ContactLabel") == text : text.empty();
  });
}

double LongestTurn() {
  int longest = 0;
  GuiApp app(Window());
  const auto tell = [&](const char *what) {
    const GuiApp::Turn turn = app.LongestTurn();
    std::fprintf(stderr, "jobs-turn: %d ms (%d of the processor) while %s\n", turn.passed,
                 turn.worked, what);
    longest = std::max(longest, turn.passed);
  };
  app.WaitWindow("JobsWindow");
  WaitForFirst(app);
  tell("it opens");  // and is drawn for the first time
  longest = 0;
  WaitForAll(app);
  tell("the other jobs come");
  for (const char *key : {"Next", "Prior"}) {
    for (int page = 0; page < kPages; ++page) app.Key(key);
  }
  app.Key("End");
  app.WaitDrawn();
  tell("it is scrolled");
  {
    const HungScheduler hung;
    WaitForContact(app, "SPOOLER_SILENT");
  }
  WaitForContact(app, "");
  tell("the scheduler hangs");
  {
    const NoScheduler killed(SIGKILL);
    WaitForContact(app, "SPOOLER_GONE");
  }
  WaitForContact(app, "");
  tell("the scheduler is killed and comes back");
  return longest;
}

int Tell(const std::string &name, double value, double bar) {
  std::printf("%s\t%.2f\t%.2f\t%s\n", name.c_str(), value, bar, value <= bar ? "ok" : "missed");
  return value <= bar ? 0 : 1;
}

}  // namespace

int main(int argc, char **argv) {
  const std::string name = argc == 2 ? argv[1] : "";
  if (name != "jobs-first" && name != "jobs-open" && name != "jobs-turn") {
    std::fprintf(stderr, "usage: jobs_window jobs-first|jobs-open|jobs-turn\n");
    return 2;
  }
  const SchedulerConfiguration unlimited(SchedulerConfiguration::Current() + "\nMaxJobs 0\n");
  const TestQueue queue(kQueue);
  RunProgram({"cupsdisable", kQueue});
  MakeHeldJobs(kQueue, kJobs);
  if (name == "jobs-turn") return Tell(name, LongestTurn(), kTurnBar);
  return name == "jobs-first" ? Tell(name, OpenOverLpstat(name, WaitForFirst), kFirstBar)
                              : Tell(name, OpenOverLpstat(name, WaitForAll), kOpenBar);
}
