// What OK refuses and what it stores: addresses, and the printer's defaults that the administrator
// had set otherwise.
#include "must.h"
#include "propertiestest.h"

namespace {

class PropertiesOk : public PropertiesTest {
 protected:
  void TearDown() override {
    PropertiesTest::TearDown();
    G_OrgQueues_hash = nullptr;
    G_PrinterModel = 0;
  }

  // Opens the administration's window on a queue with that printer address.
  void OpenWithAddress(const std::string &address) {
    G_ProgName = kModeAdministration;
    TakePrinter("vek41101");
    Must(HashPut(G_Queues_hash, "lp1",
                 MakeQueue({"lp1", "Vek Norvel 4110ES", "postscript", address})));
    window_ = create_PropertiesWindow();
    ASSERT_NE(nullptr, window_);
    ShowWindowOf(window_);
    ASSERT_TRUE(RunUntil(ArePropertiesPagesBuilt));
  }

  // Notifies that address, typed by the user.
  void Notify(const std::string &address) {
    MakePrinter(PafFeature("*EmailNotification", {{"None", "Nobody"}, {"JobCompleted", "Done"}}));
    Open(PlaceOf(Page::kDestination), {{"*EmailNotification", "JobCompleted"}});
    Paste("EmailNotifAddressEntry", address);
    ASSERT_EQ(Text("EmailNotifAddressEntry"), address);
  }
  void ExpectAccepted(const std::string &address) {
    Notify(address);
    EXPECT_TRUE(PressOk()) << address;
    EXPECT_EQ(Stored("*EmailAddress"), address);
    ForgetPrinter();
  }
  void ExpectRefused(const std::string &address) {
    Notify(address);
    EXPECT_FALSE(PressOk()) << address;
    EXPECT_EQ(TakeError(),
              CatalogueText("ErrDestMail2") + ": " + CatalogueText("ErrDestMail1", {address}));
    EXPECT_EQ(Stored("*EmailAddress"), "(none)") << address;
    ForgetPrinter();
  }

  // As the administrator defined the queue, with that setting, which the user's queue has too
  // unless the user set something else.
  void OpenAsUser(int page, const char *feature, const char *option) {
    TakePrinter("vek41101");
    Owned<CPrintQueue> original = MakeQueue();
    Must(HashPutText(original->Options.get(), feature, option));
    original_queues_ = CreateHash();
    Must(HashPut(original_queues_.get(), "lp1", std::move(original)));
    G_OrgQueues_hash = original_queues_.get();
    Open(page, {{feature, option}, {"*PageSize", "A3"}});
  }

 private:
  static void ForgetPrinter() {
    ButtonCancelPropertiesPressed();
    HashRemove(G_Printers_hash, "Vek Norvel 4110ES");
  }

  Owned<CHash> original_queues_;
};

}  // namespace

TEST_F(PropertiesOk, AQueueThatWasOpenedWithoutAddressIsRefused) {
  OpenWithAddress("");
  ASSERT_EQ(Text("AddressEntry"), "");
  SwitchTo(PlaceOf(Page::kSetup));
  RunPending();
  ASSERT_FALSE(PressOk());
  GtkWidget *box = WindowNamed("ErrorDialog");
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(gtk_label_get_text(GTK_LABEL(lookup_widget(box, "ErrorLabel1"))),
            CatalogueText("KPXadminWarn002"));
  gtk_widget_destroy(box);
  RunPending();
  EXPECT_EQ(Page(), 0);
  EXPECT_TRUE(HasFocus("AddressEntry"));
  EXPECT_EQ(QueueFeatureValue("*Duplex"), "None") << "the defaults are back";
  EXPECT_STREQ(
      fGet_CString_Value_Function(HashValue<CPrintQueue>(G_Queues_hash, "lp1")->Address.get()), "");
  EXPECT_EQ(Stored("*UserName"), "(none)");
}

TEST_F(PropertiesOk, AnAddressThatWasEmptiedCannotBeAcceptedAtAll) {
  OpenWithAddress("10.0.0.1");
  Type("AddressEntry", "");
  EXPECT_FALSE(IsSensitive("OKButton"));
  EXPECT_FALSE(IsSensitive("ApplyButton"));
  EXPECT_FALSE(PressOk());
  EXPECT_EQ(TakeError(), "(none)");
  Type("AddressEntry", "10.0.0.2");
  EXPECT_TRUE(IsSensitive("OKButton"));
}

TEST_F(PropertiesOk, AnotherTransportMakesOkAndApplyDoNothingVisible) {
  OpenWithAddress("10.0.0.1");
  SetText("TransportComboEntry", "ipx");
  SwitchTo(PlaceOf(Page::kSetup));
  RunPending();
  Choose("Duplex", "    Two-sided, long edge");
  ASSERT_TRUE(HasFocus("DuplexComboEntry"));
  for (const char *button : {"OKButton", "ApplyButton"}) {
    // A click would take the focus along.
    gtk_button_clicked(GTK_BUTTON(Named(button)));
    RunPending();
    ASSERT_NE(nullptr, G_PropertiesWindow_helper) << button;
    EXPECT_EQ(TakeError(), "(none)") << button;
    EXPECT_EQ(Page(), PlaceOf(Page::kSetup)) << button;
    EXPECT_TRUE(HasFocus("DuplexComboEntry")) << button;
    EXPECT_EQ(Stored("*Duplex"), "(none)") << button;
  }
  EXPECT_EQ(QueueFeatureValue("*Duplex"), "DuplexNoTumble") << "the work copy keeps the choice";
}

// Two features without a message of their own.
std::string PrinterWithAPlainConflict() {
  return PafFeature("*Duplex", {{"None", "Off"}, {"Long", "Long edge"}}) +
         PafFeature("*Jog", {{"None", "Off"}, {"Set", "Offset"}}) +
         "#ccc\n#f1\n*Duplex\n#o1\nLong\n#f2\n*Jog\n#o2\nSet\n#end_ccc\n";
}

TEST_F(PropertiesOk, TheReasonGoesWithTheConflictThatWasSetRight) {
  MakePrinter(PrinterWithAPlainConflict());
  Open(PlaceOf(Page::kSetup), {{"*Duplex", "Long"}, {"*Jog", "Set"}});
  ClickOn(Named("OKButton"));
  GtkWidget *box = WindowNamed("ErrorDialog");
  ASSERT_NE(nullptr, box);
  GtkWidget *reason = lookup_widget(box, "ConflictReasonLabel");
  ASSERT_NE(nullptr, reason);
  ASSERT_TRUE(RunUntil([reason] { return gtk_widget_get_mapped(reason) != FALSE; }));
  EXPECT_GT(OnScreen(reason).y, OnScreen(lookup_widget(box, "ErrorLabel2")).y);
  EXPECT_EQ(gtk_window_get_title(GTK_WINDOW(box)), CatalogueText("DEF_WND_ERROR_TITLE"));
  ClickOn(lookup_widget(box, "ResolveButton"));
  EXPECT_FALSE(gtk_widget_get_visible(reason));
  EXPECT_EQ(gtk_window_get_title(GTK_WINDOW(box)), CatalogueText("DEF_WND_RESOLVED_TITLE"))
      << "it is no error any more";
}

TEST_F(PropertiesOk, AConflictWithoutMessageBlocksSavingUnderItsTitleAndReason) {
  MakePrinter(PrinterWithAPlainConflict());
  Open(PlaceOf(Page::kSetup), {{"*Duplex", "Long"}, {"*Jog", "Set"}});
  Paste("NrCopiesSpinbutton", "7");
  for (const char *button : {"OKButton", "ApplyButton"}) {
    ClickOn(Named(button));
    ASSERT_NE(nullptr, G_PropertiesWindow_helper) << button;
    GtkWidget *box = WindowNamed("ErrorDialog");
    ASSERT_NE(nullptr, box) << button;
    const auto shown = [box](const char *label) {
      return std::string(gtk_label_get_text(GTK_LABEL(lookup_widget(box, label))));
    };
    EXPECT_EQ(shown("ErrorLabel1"), CatalogueText("CONSTR_Dlg_Label")) << button;
    EXPECT_EQ(shown("ErrorLabel2"), "") << button;
    EXPECT_EQ(shown("ConflictReasonLabel"),
              CatalogueText("CONSTR_Reason", {"Duplex", "Long edge", "Jog", "Offset"}))
        << button << ": in a label of its own";
    gtk_widget_destroy(box);
    FocusWindowOf(window_);
    RunPending();
    EXPECT_EQ(Stored("*NrCopies"), "(none)") << button;
  }
}

TEST_F(PropertiesOk, EmailAddressesOfSixtyFourCharactersAreAccepted) {
  const std::string longest = std::string(59, 'a') + "@b.cd";
  ASSERT_EQ(longest.size(), 64U);
  ExpectAccepted(longest);
  ExpectAccepted("a@" + std::string(59, 'b') + ".cd");
  ExpectRefused("a" + longest);
  ExpectRefused("a@" + std::string(60, 'b') + ".cd");
  // The limit is the whole address's, however short the domain.
  ExpectRefused(std::string(64, 'a') + "@b.cd");
  ExpectRefused(std::string(65, 'a') + "@b.cd");
}

TEST_F(PropertiesOk, EmailDomainsNeedADotAndTwoCharactersBehindTheLast) {
  ExpectAccepted("a@b.cd");
  ExpectAccepted("a@b.c.de");
  ExpectRefused("a@b.c");
  ExpectRefused("a@b.cd.e");
  ExpectRefused("a@b.");
  ExpectRefused("a@bcd");
  ExpectRefused("a@.cd");
  ExpectRefused("a@.b.cd");
  ExpectRefused("a@");
}

TEST_F(PropertiesOk, EmailAddressesNeedALocalPartAndOneAtSign) {
  ExpectAccepted(".a@b.cd");  // only the domain may not start with a dot
  ExpectRefused("@b.cd");
  ExpectRefused("a@b.cd@e.fg");
  ExpectRefused("a@b.cd@");
  ExpectRefused("a@@b.cd");
  ExpectRefused("nobody");
  ExpectRefused("a@b.cd nobody");
  ExpectAccepted("a@b.cd e@f.gh");
}

TEST_F(PropertiesOk, AUserKeepsThePrintersDefaultForWhatTheAdministratorHadSet) {
  OpenAsUser(PlaceOf(Page::kSetup), "*Duplex", "DuplexTumble");
  Choose("Duplex", "    One-sided");
  Choose("PaperSize", "    A4");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*Duplex"), "None");
  EXPECT_EQ(Stored("*PageSize"), "(none)") << "the administrator had not set it";
  EXPECT_EQ(Stored("*Collate"), "(none)");
}

TEST_F(PropertiesOk, AUserKeepsWhatDefaultsPutBackToo) {
  OpenAsUser(PlaceOf(Page::kSetup), "*Duplex", "DuplexTumble");
  ClickOn(Named("DefaultSetupButton"));
  ClickOn(Named("ApplyButton"));
  EXPECT_EQ(Stored("*Duplex"), "None");
  EXPECT_EQ(Stored("*PageSize"), "(none)");
  Focus("DuplexComboEntry");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*Duplex"), "None") << "the second time as well";
}

TEST_F(PropertiesOk, ReturnPressesTheButtonThatHasTheFocus) {
  const char *user = "*UserName";
  TakePrinter("vek41101");
  Open(PlaceOf(Page::kDestination), {{user, "ann"}});
  Type("UserNameEntry", "bob");
  Focus("ApplyButton");
  EXPECT_FALSE(PressOk());
  EXPECT_EQ("bob", Stored(user));
  Focus("DefaultDestinationButton");
  EXPECT_FALSE(PressOk());
  EXPECT_NE("bob", Text("UserNameEntry"));
  Type("UserNameEntry", "eve");
  Focus("CancelButton");
  EXPECT_TRUE(PressOk());
  EXPECT_EQ("bob", Stored(user));
}
