// The main program of every test: what was skipped is told, with its reason, and is no success.
#include <gtest/gtest.h>

#include <iostream>

namespace {

// CTest calls a test that ends so skipped (SKIP_RETURN_CODE).
constexpr int kSkipped = 77;

std::string ReasonOf(const testing::TestResult &result) {
  std::string reason;
  for (int i = 0; i < result.total_part_count(); ++i) {
    const testing::TestPartResult &part = result.GetTestPartResult(i);
    if (part.skipped()) reason += part.message();
  }
  return reason;
}

// Names the skipped tests; returns how many they are.
int TellSkipped() {
  const testing::UnitTest &all = *testing::UnitTest::GetInstance();
  int skipped = 0;
  for (int i = 0; i < all.total_test_suite_count(); ++i) {
    const testing::TestSuite &suite = *all.GetTestSuite(i);
    for (int j = 0; j < suite.total_test_count(); ++j) {
      const testing::TestInfo &test = *suite.GetTestInfo(j);
      if (!test.should_run() || !test.result()->Skipped()) continue;
      ++skipped;
      std::cout << "skipped: " << suite.name() << "." << test.name() << ": "
                << ReasonOf(*test.result()) << '\n';
    }
  }
  return skipped;
}

}  // namespace

int main(int argc, char **argv) {
  testing::InitGoogleTest(&argc, argv);
  const int status = RUN_ALL_TESTS();
  return TellSkipped() > 0 && status == 0 ? kSkipped : status;
}
