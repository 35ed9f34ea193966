// A queue that is shared: what another host that knows its name prints through it, without a
// driver.
#include "sharingtest.h"

namespace {

constexpr char kLocal[] = "ipp://%2Frun%2Fcups%2Fcups.sock/printers/lp1";

TEST_F(Sharing, AnotherHostPrintsTwoSidedAndStapledWithoutADriver) {
  if (!HasOrdinaryUsers()) {
    GTEST_SKIP() << "without root CUPS's ipp backend reaches no other host from its user namespace";
  }
  ExpectBothPrinted(PrintAfar(
      "/usr/sbin/lpadmin -p far -E -v ipp://10.9.0.1/printers/lp1 -m everywhere || exit 1; "));
}

TEST_F(Sharing, AnswersAsTheProtocolAsks) {
  const CommandResult result = RunProgram({"ipptool", "-tf", pdf_, kLocal, "ipp-1.1.test"});
  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_NE(result.output.find(" 0 failed"), std::string::npos) << result.output;
}

}  // namespace
