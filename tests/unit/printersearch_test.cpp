// What the programs that find printers say, and which model fits.
#include "printersearch.h"

#include <gtest/gtest.h>

namespace {

std::string Read(std::string_view line, SearchFormat format) {
  const std::optional<FoundPrinter> printer = FoundPrinterIn(line, format);
  return printer ? printer->address + "|" + printer->model + "|" + printer->place : "-";
}

TEST(PrinterSearch, ReadsTheDevicesOfBackends) {
  const std::vector<std::pair<const char *, const char *>> rows = {
      {R"(network socket://10.0.0.5 "HP LaserJet 4" "HP LaserJet 4 10.0.0.5" "MFG:HP;" "Room 7")",
       "10.0.0.5|HP LaserJet 4|Room 7"},
      {R"(network socket://prn-1.example:9100 "Unknown" "prn")", "prn-1.example||"},
      {R"(network lpd://10.0.0.6/queue "A \"B\" C" "x")", R"(10.0.0.6|A "B" C|)"},
      {R"(network ipp://[2001:db8::1]:631/ipp "A" "x")", "2001:db8::1|A|"},
      {R"(network dnssd://HP%20Laser._ipp._tcp.local/ "A" "x")", "-"},
      {R"(network socket "Unknown" "AppSocket/HP JetDirect" "" "")", "-"},
      {R"(direct usb://HP/LaserJet "A" "x")", "-"},
      {R"(network socket://-x "A" "x")", "-"},
      {R"(network socket://$(reboot) "A" "x")", "-"},
      {R"(network socket:// "A" "x")", "-"},
      {"network socket://10.0.0.5", "-"},
      {R"(network socket://[ "A)", "-"},
      {"", "-"},
      {"\"", "-"},
      {"\\\"\x01\xff", "-"},
  };
  for (const auto &[line, read] : rows) {
    EXPECT_EQ(read, Read(line, SearchFormat::CupsBackend)) << line;
  }
  EXPECT_EQ("10.0.0.5|A?B\xc3\xa9|", Read("network socket://10.0.0.5 \"A\x01"
                                          "B\xe9\" \"x\"",
                                          SearchFormat::CupsBackend))
      << "control characters and other bytes";
}

TEST(PrinterSearch, ReadsTheServicesOfAvahi) {
  const std::string start = "=;eth0;IPv4;HP\\032Laser;_ipp._tcp;local;hp.local;";
  EXPECT_EQ(
      "10.0.0.5|HP LaserJet 4|Room 7",
      Read(start + R"(10.0.0.5;631;"note=Room 7" "ty=HP LaserJet 4" "x=1")", SearchFormat::Avahi));
  EXPECT_EQ("10.0.0.5||", Read(start + "10.0.0.5;631;", SearchFormat::Avahi));
  EXPECT_EQ("-", Read(start + "fe80::1;631;", SearchFormat::Avahi)) << "of one link alone";
  EXPECT_EQ("-", Read(start + "10.0.0.5", SearchFormat::Avahi)) << "cut off";
  EXPECT_EQ("-", Read("+;eth0;IPv4;HP;_ipp._tcp;local", SearchFormat::Avahi));
  EXPECT_EQ("-", Read("", SearchFormat::Avahi));
}

TEST(PrinterSearch, ReadsWhatAvahiEscapes) {
  const std::string start = "=;eth0;IPv4;B\\195\\188ro;_ipp._tcp;local;hp.local;10.0.0.5;631;";
  EXPECT_EQ(
      "10.0.0.5|A \"B\" 4|B\xc3\xbcro; S\xc3\xbc"
      "d \\ oben",
      Read(start + R"("rp=ipp/print" "note=B\195\188ro; S\195\188d \\ oben" "ty=A \"B\" 4")",
           SearchFormat::Avahi));
  EXPECT_EQ("10.0.0.5|A|", Read(start + R"("x=\"ty=B" "ty=A")", SearchFormat::Avahi))
      << "the start of a text is not within another";
  EXPECT_EQ("10.0.0.5|A\\|", Read(start + R"("ty=A\)", SearchFormat::Avahi)) << "cut off";
  EXPECT_EQ("10.0.0.5|A19|", Read(start + R"("ty=A\19")", SearchFormat::Avahi));
}

TEST(PrinterSearch, LeavesTheQueuesOfPrintServersOut) {
  const std::string start = "=;eth0;IPv4;lp1\\032\\064\\032srv;_ipp._tcp;local;srv.local;10.0.0.5;";
  EXPECT_EQ("-", Read(start + R"(631;"printer-type=0xB0F6" "ty=Vek Norvel 4120ES" "rp=printers/a")",
                      SearchFormat::Avahi));
  EXPECT_EQ("-", Read(start + "0;", SearchFormat::Avahi)) << "only holds the name";
}

TEST(PrinterSearch, KeepsOnePrinterOfAnAddressAndAllThatIsSaidOfIt) {
  std::vector<FoundPrinter> printers;
  EXPECT_TRUE(AddFoundPrinter({"10.0.0.5", "", ""}, &printers));
  EXPECT_FALSE(AddFoundPrinter({"10.0.0.5", "", ""}, &printers));
  EXPECT_TRUE(AddFoundPrinter({"10.0.0.5", "HP", ""}, &printers));
  EXPECT_FALSE(AddFoundPrinter({"10.0.0.5", "Other", ""}, &printers));
  EXPECT_TRUE(AddFoundPrinter({"10.0.0.5", "", "Room 5"}, &printers));
  EXPECT_FALSE(AddFoundPrinter({"10.0.0.5", "", "Cellar"}, &printers));
  EXPECT_TRUE(AddFoundPrinter({"10.0.0.6", "", "Room 7"}, &printers));
  EXPECT_EQ((std::vector<FoundPrinter>{{"10.0.0.5", "HP", "Room 5"}, {"10.0.0.6", "", "Room 7"}}),
            printers);
}

TEST(PrinterSearch, FindsTheModelThatFitsAndNoOther) {
  const std::vector<std::string> names = {"HP LaserJet 4", "HP LaserJet 4 Plus", "Vek Norvel 4105",
                                          "Vek Norvel 4110ES"};
  const std::vector<std::pair<const char *, const char *>> rows = {
      {"Vek Norvel 4110ES", "Vek Norvel 4110ES"},
      {"vek-norvel 4110es PostScript", "Vek Norvel 4110ES"},
      {"HP LaserJet 4", "HP LaserJet 4"},
      {"HP LaserJet 4 Plus Series", "HP LaserJet 4 Plus"},
      {"Vek Norvel", ""},  // which of them?
      {"HP", ""},
      {"HP LaserJet 5", ""},
      {"Vek Norvel 4110", ""},
      {"", ""},
  };
  for (const auto &[model, fitting] : rows) EXPECT_EQ(fitting, FittingModel(model, names)) << model;
}

}  // namespace
