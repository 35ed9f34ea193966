// Printers that programs find on the network, offered while an address is typed: stand-ins take the
// places of those programs.
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "administration.h"
#include "changedfile.h"
#include "keyboard.h"

namespace {

using Strings = std::vector<std::string>;

constexpr char kBackend[] = "/usr/lib/cups/backend/snmp";
constexpr char kBrowser[] = "/usr/bin/avahi-browse";
constexpr char kProcess[] = "/tmp/kpx-search-process";
constexpr char kGate[] = "/tmp/kpx-search-gate";
constexpr char kHall[] =
    "network socket://192.0.2.7:9100 \"Vek Norvel 4105\" \"Vek 192.0.2.7\" \"\" \"Hall\"";

class AdminDiscovery : public AdministrationTest {
 protected:
  AdminDiscovery() {
    for (const char *path : {kProcess, kGate}) std::filesystem::remove(path);
  }

  void SetUp() override {
    // The searches give root's rights up, which there is nobody to take without root.
    if (!HasOrdinaryUsers()) GTEST_SKIP() << "needs the user lp";
  }

  // What stands there notes its process and its user, and does this in the shell.
  static std::string Script(const std::string &lines) {
    return "#!/bin/sh\necho \"$$ $(id -u) $(id -G)\" >" + std::string(kProcess) + "\n" + lines +
           "\n";
  }

  static void TypeAddress(AdminApp &app, const std::string &text) {
    Keyboard keys(app);
    keys.GoTo(CatalogueText("DEF_LBL_IPADDRESS"), "AddressEntry");
    app.Type(text);
  }

  static void WaitOffer(AdminApp &app, const Strings &rows) {
    app.WaitUntil("the offer",
                  [&] { return app.HasWidget("GtkTreeView") && Offered(app) == rows; });
  }

  static Strings Offered(AdminApp &app) {
    Strings texts;
    for (const std::string &row : app.Rows("GtkTreeView")) {
      texts.push_back(row.substr(1, row.find('\t') - 1));
    }
    return texts;
  }

  static std::string SelectedPrinter(AdminApp &app) {
    for (const std::string &row : app.Rows("PrinterClist")) {
      if (row.front() == '*') return row.substr(1);
    }
    return "";
  }
};

TEST_F(AdminDiscovery, OffersWhatIsFoundWhileOneTypesAndProposesTheModel) {
  const ChangedFile backend(
      kBackend, Script("echo '" + std::string(kHall) + "'\nmkfifo " + kGate + "\nread line <" +
                       kGate + "\necho \"$line\"\nsleep 1000"));
  const ChangedFile browser(kBrowser,
                            Script("echo '=;eth0;IPv4;x;_ipp._tcp;local;p.local;192.0.2.9;631;"
                                   "\"ty=Vek Norvel 4121\" \"note=Attic\"'"));
  chmod(kBrowser, 0755);
  AdminApp app;
  app.OpenAddQueue();
  TypeAddress(app, "hall");
  const std::string hall = "192.0.2.7  Vek Norvel 4105 (Hall)";
  WaitOffer(app, {hall});
  app.Key("Escape");
  app.WaitUntil("the dialog", [&] { return app.Windows().front() == "AddQueueWindow"; });
  app.Key("ctrl+a");
  app.Type("lobby");
  std::ofstream(kGate) << "network lpd://192.0.2.8/q \"Unknown\" \"x\" \"\" \"Lobby\"\n";
  WaitOffer(app, {"192.0.2.8 (Lobby)"});
  app.Key("ctrl+a");
  app.Type("hall");
  WaitOffer(app, {hall});
  app.Key("Down");
  app.Key("Return");
  EXPECT_EQ("192.0.2.7", app.Text("AddressEntry"));
  EXPECT_EQ("Vek Norvel 4105", SelectedPrinter(app));
  EXPECT_EQ("AddQueueWindow", app.Windows().front());
  app.SelectPrinter("Vek Norvel 4110ES");
  TypeAddress(app, "");
  app.Key("ctrl+a");
  app.Type("attic");
  WaitOffer(app, {"192.0.2.9  Vek Norvel 4121 (Attic)"});
  app.Key("Down");
  app.Key("Return");
  EXPECT_EQ("192.0.2.9", app.Text("AddressEntry"));
  EXPECT_EQ("Vek Norvel 4110ES", SelectedPrinter(app)) << "the user has chosen it";
  app.TypeInto("QueueEntry", "hall");
  app.Key("Return");
  app.WaitGone("AddQueueWindow");
  EXPECT_EQ("*hall\tVek Norvel 4110ES\t" + CatalogueText("postscript") + "\t192.0.2.9",
            app.Rows("QueuesClist").back());
}

TEST_F(AdminDiscovery, OffersTheSameAfterAProgramThatWasKilledInItsOffer) {
  const ChangedFile backend(kBackend, Script("echo '" + std::string(kHall) + "'"));
  for (int i = 0; i < 2; ++i) {
    AdminApp app;
    app.OpenAddQueue();
    TypeAddress(app, "hall");
    WaitOffer(app, {"192.0.2.7  Vek Norvel 4105 (Hall)"});
    kill(app.pid(), SIGKILL);
    EXPECT_EQ(128 + SIGKILL, app.WaitExit());
  }
}

TEST_F(AdminDiscovery, IsEndedWithTheDialogAndHasNoRightsOfRoot) {
  const ChangedFile backend(kBackend, Script("trap '' TERM HUP\nwhile :; do sleep 1000; done"));
  AdminApp app;
  app.OpenAddQueue();
  pid_t process = 0;
  std::string user;
  std::string groups;
  app.WaitUntil("the search", [&] {
    std::ifstream file(kProcess);
    return static_cast<bool>(file >> process >> user >> groups);
  });
  const passwd *lp = getpwnam("lp");
  EXPECT_EQ(std::to_string(lp->pw_uid), user);
  EXPECT_EQ(std::to_string(lp->pw_gid), groups);
  EXPECT_EQ(0, kill(process, 0));
  app.Key("Escape");
  app.WaitGone("AddQueueWindow");
  app.WaitUntil("its end", [&] { return kill(process, 0) != 0; });
  app.Key("Escape");
  EXPECT_EQ(0, app.WaitExit());
}

TEST_F(AdminDiscovery, TakesNothingFromGarbageAndTypingStaysAsItIs) {
  const ChangedFile backend(
      kBackend, Script("head -c 100000 /dev/urandom\necho\necho 'network socket://$(x) \"A\"'\n"
                       "echo 'network'\nyes network | head -c 600000\necho >" +
                       std::string(kGate)));
  AdminApp app;
  app.OpenAddQueue();
  app.FillAddQueue({.name = "lp1", .address = "network"});
  app.WaitUntil("the search", [&] { return std::filesystem::exists(kProcess); });
  app.WaitDrawn();
  EXPECT_EQ((Strings{"AddQueueWindow", "AdminWindow"}), app.Windows());
  app.Key("Return");
  app.WaitGone("AddQueueWindow");
  EXPECT_EQ(Strings{"*lp1"}, app.QueueNames());
  EXPECT_EQ("", app.Stderr());
}

}  // namespace
