// The printer's address in the administration: the Test button, and names that are not known.
#include "administration.h"
#include "keyboard.h"
#include "silentnameserver.h"

namespace {

using Strings = std::vector<std::string>;

// Two dots in a row cannot be a name, whatever name service is asked.
constexpr char kNoName[] = "no..name";

class AdminAddress : public AdministrationTest {
 protected:
  static void WaitResult(GuiApp &app, const std::string &start) {
    app.WaitUntil("the result " + start, [&] {
      return app.HasWidget("AddressResultLabel") &&
             app.Text("AddressResultLabel").starts_with(start);
    });
  }

  // The text up to its first placeholder.
  static std::string Start(const std::string &key) {
    const std::string text = CatalogueText(key);
    return text.substr(0, text.find('%'));
  }
};

TEST_F(AdminAddress, IsTestedByKeysWithoutLeavingTheDialog) {
  AdminApp app;
  app.OpenAddQueue();
  Keyboard keys(app);
  EXPECT_FALSE(app.HasWidget("AddressResultLabel"));
  keys.GoTo(CatalogueText("DEF_LBL_IPADDRESS"), "AddressEntry");
  keys.Type("127.0.0.1");
  keys.Press(CatalogueText("DEF_BTN_TEST_TITLE"));
  WaitResult(app, CatalogueText("WHY_PORT_GOOD", {"127.0.0.1", "2501"}));
  EXPECT_EQ(Strings{}, app.ClippedTexts());
  keys.GoTo(CatalogueText("DEF_LBL_IPADDRESS"), "AddressEntry");
  keys.Key("End");
  keys.Type("x");
  EXPECT_FALSE(app.HasWidget("AddressResultLabel")) << "it was about another address";
  keys.Key("ctrl+a");
  keys.Type(kNoName);
  keys.TabTo("TestButton");
  keys.Key("Return");
  WaitResult(app, Start("WHY_NAME_BAD") + kNoName);
  EXPECT_TRUE(app.Text("AddressResultLabel").ends_with(CatalogueText("ADDRESS_NAME_MEND")));
  EXPECT_EQ(Strings{}, app.ClippedTexts());
  EXPECT_EQ((Strings{"AddQueueWindow", "AdminWindow"}), app.Windows());
  keys.GoTo(CatalogueText("DEF_LBL_IPADDRESS"), "AddressEntry");
  keys.Key("ctrl+a");
  keys.Key("Delete");
  keys.Press(CatalogueText("DEF_BTN_TEST_TITLE"));
  WaitResult(app, CatalogueText("KPXadminWarn002"));
  EXPECT_EQ("AddQueueWindow/AddressEntry", app.Focus());
}

TEST_F(AdminAddress, IsTestedInTheProperties) {
  PutQueues(std::vector<QueueValues>{{.name = "lp1", .address = "127.0.0.1"}});
  AdminApp app;
  app.SelectQueues({0});
  app.Key("Return");
  app.WaitWindow("PropertiesWindow");
  app.WaitUntil("the page", [&] { return app.HasWidget("TestButton"); });
  app.Click("TestButton");
  WaitResult(app, CatalogueText("WHY_PORT_GOOD", {"127.0.0.1", "2501"}));
  EXPECT_EQ(Strings{}, app.ClippedTexts());
}

TEST_F(AdminAddress, ThatIsNotKnownIsToldBeforeSave) {
  PutQueues(std::vector<QueueValues>{{.name = "lp1", .address = kNoName}});
  AdminApp app;
  EXPECT_FALSE(app.HasWidget("AddressNoticeLabel")) << "it was saved long ago";
  app.SelectQueues({0});
  app.Click("CloneButton");
  const auto told = [&](const std::string &queue) {
    const std::string text = Start("ADDRESS_UNKNOWN") + queue;
    return app.HasWidget("AddressNoticeLabel") && app.Text("AddressNoticeLabel").starts_with(text);
  };
  app.WaitUntil("the notice", [&] { return told("CopyOf_lp1"); });
  EXPECT_EQ(Strings{}, app.ClippedTexts());
  app.Click("DeleteButton");
  app.WaitUntil("no notice", [&] { return !app.HasWidget("AddressNoticeLabel"); });
  app.AddQueue({.name = "good"});
  app.AddQueue({.name = "bad", .address = kNoName});
  app.WaitUntil("the notice", [&] { return told("bad"); });
  EXPECT_EQ(std::string::npos, app.Text("AddressNoticeLabel").find("good"));
  app.Click("PropertiesButton");
  app.WaitWindow("PropertiesWindow");
  app.TypeInto("AddressEntry", "127.0.0.1");
  app.Key("Return");
  app.WaitGone("PropertiesWindow");
  app.WaitUntil("no notice", [&] { return !app.HasWidget("AddressNoticeLabel"); });
}

TEST_F(AdminAddress, KeepsNobodyWaitingForANameServiceThatHangs) {
  const SilentNameServer server;
  AdminApp app;
  app.OpenAddQueue();
  app.TypeInto("AddressEntry", "printer.example");
  app.Click("TestButton");
  EXPECT_TRUE(server.IsAsked());
  WaitResult(app, CatalogueText("ADDRESS_TESTING", {"printer.example"}));
  app.FillAddQueue({.name = "lp1", .address = "printer.example"});
  EXPECT_FALSE(app.HasWidget("AddressResultLabel"));
  app.Click("AddQueueWindow/OKButton");
  app.WaitGone("AddQueueWindow");
  EXPECT_EQ(Strings{"*lp1"}, app.QueueNames());
  EXPECT_FALSE(app.HasWidget("AddressNoticeLabel")) << "nothing is known yet";
  app.Click("CancelButton");
  EXPECT_EQ(0, app.WaitExit()) << "with the name service still silent";
}

}  // namespace
