// What the answers of printers mean, and how they are asked.
#include "snmpstatus.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <utility>
#include <vector>

namespace {

TEST(PrinterStatus, IsReadFromTheBitsOfTheErrorState) {
  EXPECT_EQ((PrinterStatus{"", false}), PrinterStatusIn("\"00 00 \"\n"));
  EXPECT_EQ((PrinterStatus{"", false}), PrinterStatusIn("\"00 \"\n"));
  EXPECT_EQ((PrinterStatus{"media-empty", true}), PrinterStatusIn("\"40 04 \"\n"));
  EXPECT_EQ((PrinterStatus{"door-open offline", true}), PrinterStatusIn("\"0A \"\n"));
  EXPECT_EQ((PrinterStatus{"media-low toner-low", false}), PrinterStatusIn("\"a0 00 \"\n"));
}

// The bits of hrPrinterDetectedErrorState, from the highest of the first byte on (RFC 2790).
TEST(PrinterStatus, KnowsEachBitAlone) {
  const std::vector<std::pair<const char *, bool>> bits = {{"media-low", false},
                                                           {"media-empty", true},
                                                           {"toner-low", false},
                                                           {"toner-empty", true},
                                                           {"door-open", true},
                                                           {"media-jam", true},
                                                           {"offline", true},
                                                           {"service-requested", true},
                                                           {"service-requested", true},
                                                           {"service-requested", true},
                                                           {"service-requested", true},
                                                           {"", false},
                                                           {"output-area-full", true},
                                                           {"media-empty", true},
                                                           {"", false},
                                                           {"", false}};
  for (size_t bit = 0; bit < bits.size(); ++bit) {
    char answer[16];
    std::snprintf(answer, sizeof answer, "\"%04X\"\n", 0x8000U >> bit);
    EXPECT_EQ((PrinterStatus{bits[bit].first, bits[bit].second}), PrinterStatusIn(answer)) << bit;
  }
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
