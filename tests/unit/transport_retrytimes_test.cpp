// The transport's pauses and their bounds.
#include <gtest/gtest.h>

#include <vector>

#include "report.h"
#include "retrytimes.h"

using namespace kpx::transport;

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

TEST(TransferLimits, PausesDoubleFromOneSecondToAMinute) {
  std::vector<long> pauses;
  for (int failures = 1; failures <= 9; ++failures) {
    pauses.push_back(std::chrono::duration_cast<seconds>(PauseAfter(Limits{}, failures)).count());
  }
  EXPECT_EQ(pauses, (std::vector<long>{1, 2, 4, 8, 16, 32, 60, 60, 60}));
}

TEST(TransferLimits, AFasterPrinterHasShorterUsualPauses) {
  EXPECT_EQ(UsualPause(120), seconds{50});
  EXPECT_EQ(UsualPause(45), seconds{133});
  EXPECT_EQ(UsualPause(kDefaultSpeed), Limits{}.usual_pause);
}

TEST(TransferLimits, UsualPausesStayBetweenTenSecondsAndTenMinutes) {
  EXPECT_EQ(UsualPause(1), seconds{600});
  EXPECT_EQ(UsualPause(kGreatestSpeed), seconds{10});
}

TEST(TransferLimits, SilenceMeansSeveralQuestionsWithoutAnAnswer) {
  // Probes and retransmissions are at most two minutes apart.
  EXPECT_GE(Limits{}.unanswered, 4 * std::chrono::minutes{2});
}

TEST(TransferWords, DurationsReadAsMillisecondsBelowASecond) {
  EXPECT_EQ(DurationText(milliseconds{0}), "0 ms");
  EXPECT_EQ(DurationText(milliseconds{999}), "999 ms");
  EXPECT_EQ(DurationText(milliseconds{1000}), "1 s");
  EXPECT_EQ(DurationText(milliseconds{61999}), "61 s");
}

}  // namespace
