// What the answers of printers mean, and how they are asked.
#include "snmpstatus.h"

#include <gtest/gtest.h>

namespace {

TEST(PrinterStatus, IsReadFromTheBitsOfTheErrorState) {
  EXPECT_EQ((PrinterStatus{"", false}), PrinterStatusIn("\"00 00 \"\n"));
  EXPECT_EQ((PrinterStatus{"", false}), PrinterStatusIn("\"00 \"\n"));
  EXPECT_EQ((PrinterStatus{"media-empty", true}), PrinterStatusIn("\"40 00 \"\n"));
  EXPECT_EQ((PrinterStatus{"media-empty", true}), PrinterStatusIn("\"00 04 \"\n"));
  EXPECT_EQ((PrinterStatus{"door-open offline", true}), PrinterStatusIn("\"0A \"\n"));
  EXPECT_EQ((PrinterStatus{"media-low toner-low", false}), PrinterStatusIn("\"a0 00 \"\n"));
  EXPECT_EQ((PrinterStatus{"output-area-full", true}), PrinterStatusIn("\"00 08 \"\n"));
  EXPECT_EQ((PrinterStatus{"service-requested", true}), PrinterStatusIn("\"00 20 \"\n"));
}

TEST(PrinterStatus, IsUnknownAfterAnotherAnswer) {
  for (const char *answer : {"", "\n", "40 00\n", "\"\"", "\"on fire\"\n",
                             "No Such Instance currently exists at this OID\n"}) {
    EXPECT_EQ(std::nullopt, PrinterStatusIn(answer)) << answer;
  }
}

TEST(PrinterStatus, IsAskedForByTheCommunityOfCups) {
  EXPECT_EQ("public", CommunityIn(""));
  EXPECT_EQ("public", CommunityIn("# Community secret\nCommunity\nAddress @LOCAL\n"));
  EXPECT_EQ("printers", CommunityIn("Address @LOCAL\nCommunity \t printers \r\nCommunity x\n"));
}

}  // namespace
