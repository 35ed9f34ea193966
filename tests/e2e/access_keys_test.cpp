// Alt and a letter, typed: buttons are pressed, fields focused, tabs shown.
#include "administration.h"
#include "keyboard.h"
#include "propertiesdriver.h"

namespace {

class AccessKeys : public AdministrationTest {
 protected:
  static void Press(GuiApp &app, const std::string &text) { Keyboard(app).Press(text); }
};

TEST_F(AccessKeys, PressButtonsAndFocusFields) {
  AdminApp app;
  Press(app, CatalogueText("DEF_BTN_ADD_TITLE"));
  app.WaitWindow("AddQueueWindow");
  Press(app, CatalogueText("DEF_LBL_IPADDRESS"));
  app.WaitUntil("the focus", [&] { return app.Focus() == "AddQueueWindow/AddressEntry"; });
  Press(app, CatalogueText("DEF_LBL_QUEUE"));
  app.WaitUntil("the focus", [&] { return app.Focus() == "AddQueueWindow/QueueEntry"; });
  app.Type("office");
  EXPECT_EQ("office", app.Text("QueueEntry"));
  EXPECT_EQ(CatalogueText("DEF_BTN_APPLY_TITLE"), app.Text("ApplyButton"))
      << "the button's text is the catalogue's";
}

TEST_F(AccessKeys, ShowTabsAndFocusTheirFields) {
  AdminApp app;
  app.AddQueue({.name = "txt1", .type = "text"});
  app.SelectQueues({0});
  Press(app, CatalogueText("DEF_BTN_PROPERTIES_TITLE"));
  app.WaitWindow("PropertiesWindow");
  app.WaitUntil("all tabs", [&] { return app.HasWidget("GeneralVbox"); });
  Press(app, CatalogueText("DEF_TAB_SETUP"));
  app.WaitUntil("the tab", [&] { return app.HasWidget("SetupVbox"); });
  app.WaitDrawn();
  Press(app, CatalogueText("DEF_LBL_PAPERTYPE"));
  app.WaitUntil("the focus", [&] { return app.Focus() == "PropertiesWindow/PaperTypeComboEntry"; });
  Press(app, CatalogueText("DEF_TAB_OPTIONS"));
  app.WaitUntil("the tab", [&] { return app.HasWidget("OptionsVbox"); });
  app.WaitDrawn();
  Press(app, CatalogueText("DEF_BTN_2UP_TITLE"));
  app.WaitUntil("two pages", [&] { return app.IsActive("Nup2Radiobutton"); });
}

}  // namespace
