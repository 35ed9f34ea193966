// A printer of another host that announces itself by DNS-SD is offered while an address is typed:
// avahi-daemon runs on both hosts.
#include <algorithm>

#include "administration.h"
#include "dnssd.h"
#include "keyboard.h"
#include "processgroup.h"

namespace {

// On the second host.
constexpr char kAnnouncedPrinter[] =
    KPX_DNSSD " attic && exec ippeveprinter -M Vek -m 'Norvel 4105' -l B\xc3\xbcro 'Hall printer'";

using AdminAnnounced = AdministrationTest;

TEST_F(AdminAnnounced, APrinterThatAnnouncesItselfIsOfferedAndItsModelProposed) {
  // The searches give root's rights up, which there is nobody to take without root.
  if (!HasOrdinaryUsers()) GTEST_SKIP() << "needs the user lp";
  const ServiceDiscovery discovery("admin");
  const TemporaryDirectory files;
  const std::string said = files.Path("said");
  const ProcessGroup printer({KPX_SECOND_HOST, "sh", "-c", kAnnouncedPrinter}, said);
  const CommandResult found =
      RunProgram({"sh", "-c",
                  "until avahi-browse -rtpk _ipp._tcp | grep -q ';10.9.0.2;'; do sleep 0.1; done"});
  ASSERT_EQ(0, found.status) << found.output << ContentOf(said);
  AdminApp app;
  app.OpenAddQueue();
  Keyboard keys(app);
  keys.GoTo(CatalogueText("DEF_LBL_IPADDRESS"), "AddressEntry");
  app.Type("norvel");
  const std::string offer = "10.9.0.2  Vek Norvel 4105 (B\xc3\xbcro)";
  app.WaitUntil("the offer", [&] {
    if (!app.HasWidget("GtkTreeView")) return false;
    const std::vector<std::string> rows = app.Rows("GtkTreeView");
    return rows.size() == 1 && rows[0].substr(1, rows[0].find('\t') - 1) == offer;
  });
  app.Key("Down");
  app.Key("Return");
  EXPECT_EQ("10.9.0.2", app.Text("AddressEntry"));
  const std::vector<std::string> models = app.Rows("PrinterClist");
  EXPECT_NE(models.end(), std::find(models.begin(), models.end(), "*Vek Norvel 4105"));
}

}  // namespace
