// The progress dialog of a save, told its steps as a save tells them.
#include "SaveWindow.h"

#include <chrono>

#include "guisupport.h"

namespace {

using Clock = std::chrono::steady_clock;

class SaveWindow : public GuiTest {
 protected:
  // Half a second of saving is over.
  static void WaitQuietTime() {
    const Clock::time_point start = Clock::now();
    ASSERT_TRUE(RunUntil([&] { return Clock::now() - start > std::chrono::milliseconds(500); }));
  }

  static SaveStep Step(int number, bool runs_command) {
    return {"SAVE_CREATING", number, 3000, "lp" + std::to_string(number), runs_command};
  }

  static std::string Shown() {
    GtkWidget *window = WindowNamed("SaveProgressWindow");
    if (window == nullptr) return "(no window)";
    return gtk_label_get_text(GTK_LABEL(lookup_widget(window, "SaveProgressLabel")));
  }
};

TEST_F(SaveWindow, AppearsWithTheFirstStepAfterHalfASecond) {
  SaveProgressWindow progress;
  EXPECT_EQ("(no window)", Shown());
  WaitQuietTime();
  progress.Show(Step(2, false));
  EXPECT_EQ("Queue 2 of 3000: creating lp2", Shown());
}

TEST_F(SaveWindow, ShowsTheQueueOfEveryCommandHoweverManyWereJustPassedOver) {
  SaveProgressWindow progress;
  WaitQuietTime();
  for (int number = 1; number <= 40; ++number) {
    const bool runs_command = number % 4 == 0;
    progress.Show(Step(number, false));
    if (!runs_command) continue;
    progress.Show(Step(number, true));
    EXPECT_EQ("Queue " + std::to_string(number) + " of 3000: creating lp" + std::to_string(number),
              Shown());
  }
}

TEST_F(SaveWindow, QueuesThatNeedNoCommandDoNotWaitForAFrameEach) {
  constexpr int kQueues = 3000;
  SaveProgressWindow progress;
  WaitQuietTime();
  progress.Show(Step(1, false));
  GdkFrameClock *frames = gtk_widget_get_frame_clock(WindowNamed("SaveProgressWindow"));
  const gint64 before = gdk_frame_clock_get_frame_counter(frames);
  for (int number = 2; number <= kQueues; ++number) progress.Show(Step(number, false));
  EXPECT_LT(gdk_frame_clock_get_frame_counter(frames) - before, kQueues / 10);
}

TEST_F(SaveWindow, GoesOnWhileNoCommandIsRun) {
  SaveProgressWindow progress;
  WaitQuietTime();
  progress.Show(Step(1, false));
  int number = 1;
  EXPECT_TRUE(RunUntil([&] {
    progress.Show(Step(++number, false));
    return Shown() != "Queue 1 of 3000: creating lp1";
  }));
}

}  // namespace
