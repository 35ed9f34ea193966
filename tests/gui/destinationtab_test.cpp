// The Destination tab in its window: what it shows, what may be typed, what depends on the lists,
// and what OK refuses.
#include "PropTabDestination.h"
#include "debug.h"
#include "propertiestest.h"
#include "utils.h"

namespace {

const std::string kDelivery = PafFeature("*Delivery", {{"PrintImmediately", "At once"},
                                                       {"HoldJobUntilYouEnterPIN", "Hold for PIN"},
                                                       {"ArchiveToDocumentServer", "Archive"}});
const std::string kNotification =
    PafFeature("*EmailNotification", {{"None", "Nobody"}, {"JobCompleted", "When done"}});

class DestinationTab : public PropertiesTest {
 protected:
  void OpenTab(const std::vector<std::pair<const char *, const char *>> &settings = {},
               const std::string &features = kDelivery + kNotification) {
    MakePrinter(features);
    Open(PlaceOf(Page::kDestination), settings);
  }

  static std::string ApplicationsName() { return CatalogueText("UseAppSetting"); }
  static std::string LoginName() { return GetUserName(nullptr); }
};

}  // namespace

TEST_F(DestinationTab, ShowsWhatAQueueWithoutSettingsHas) {
  OpenTab();
  EXPECT_EQ(Text("JobNameEntry"), ApplicationsName());
  EXPECT_EQ(Text("UserNameEntry"), LoginName());
  EXPECT_EQ(Text("DeliveryComboEntry"), "    At once");
  EXPECT_EQ(Text("PinEntry"), "");
  EXPECT_EQ(Text("EmailNotifTypeComboEntry"), "    Nobody");
  EXPECT_EQ(Text("EmailNotifAddressEntry"), "");
  EXPECT_EQ(Text("EmailNotifMessageEntry"), "");
}

TEST_F(DestinationTab, ShowsTheQueuesOwnTexts) {
  OpenTab({{"*JobName", "Report"},
           {"*UserName", "ann"},
           {"*DeliveryPIN", "0042"},
           {"*EmailAddress", "a@b.cd"},
           {"*EmailMessage", "done \u00e4"}});
  EXPECT_EQ(Text("JobNameEntry"), "Report");
  EXPECT_EQ(Text("UserNameEntry"), "ann");
  EXPECT_EQ(Text("PinEntry"), "0042");
  EXPECT_EQ(Text("EmailNotifAddressEntry"), "a@b.cd");
  EXPECT_EQ(Text("EmailNotifMessageEntry"), "done \u00e4");
}

TEST_F(DestinationTab, FiltersStoredTextsLikeTypedOnes) {
  OpenTab({{"*JobName", "a'b=c,d"}, {"*DeliveryPIN", "1x2y34567"}});
  EXPECT_EQ(Text("JobNameEntry"), "abcd");
  EXPECT_EQ(Text("PinEntry"), "1234");
}

TEST_F(DestinationTab, AStoredUseAppSettingShowsTheTextAndIsStoredAsThatKey) {
  OpenTab({{"*JobName", "UseAppSetting"}});
  EXPECT_EQ(Text("JobNameEntry"), ApplicationsName());
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*JobName"), "UseAppSetting");
}

TEST_F(DestinationTab, ATranslationThatTheFilterWouldChangeStaysWhatItIs) {
  std::string catalogue = ContentOf(kInstalledCatalogue);
  const std::string text = "#UseAppSetting\n" + ApplicationsName() + "\n";
  ASSERT_NE(catalogue.find(text), std::string::npos);
  catalogue.replace(catalogue.find(text), text.size(),
                    "#UseAppSetting\nComme dans l'application\n");
  LineReader lines(catalogue);
  ReadMessages(G_Messages.get(), lines);
  OpenTab({{"*JobName", "UseAppSetting"}});
  EXPECT_EQ(Text("JobNameEntry"), "Comme dans l'application");
  ClickOn(Named("DefaultDestinationButton"));
  EXPECT_EQ(Text("JobNameEntry"), "Comme dans l'application");
  Focus("JobNameEntry");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*JobName"), "UseAppSetting");
}

TEST_F(DestinationTab, EveryFieldIsNamedForAssistiveTechnology) {
  OpenTab();
  for (const auto &[field, label] : std::vector<std::pair<std::string, std::string>>{
           {"JobNameEntry", "JobNameLabel"},
           {"UserNameEntry", "UserNameLabel"},
           {"DeliveryCombo", "DeliveryLabel"},
           {"PinEntry", "PinLabel"},
           {"EmailNotifTypeCombo", "EmailNotifTypeLabel"},
           {"EmailNotifAddressEntry", "EmailNotifAddressLabel"},
           {"EmailNotifMessageEntry", "EmailNotifMessageLabel"}}) {
    EXPECT_TRUE(IsLabelledBy(field, label)) << field;
  }
}

TEST_F(DestinationTab, TheAdministrationSaysWhoCanReadADefaultPin) {
  OpenTab();
  EXPECT_EQ(nullptr, lookup_widget(window_, "PinReadableLabel")) << "a user's own PIN";
  ButtonCancelPropertiesPressed();
  G_ProgName = kModeAdministration;
  OpenTab();
  GtkWidget *label = Named("PinReadableLabel");
  EXPECT_TRUE(gtk_widget_get_mapped(label));
  EXPECT_EQ(CatalogueText("DEF_LBL_PIN_READABLE"), gtk_label_get_text(GTK_LABEL(label)));
  AtkRelationSet *relations =
      atk_object_ref_relation_set(gtk_widget_get_accessible(Named("PinEntry")));
  EXPECT_TRUE(atk_relation_set_contains_target(relations, ATK_RELATION_DESCRIBED_BY,
                                               gtk_widget_get_accessible(label)));
  g_object_unref(relations);
}

TEST_F(DestinationTab, TabGoesThroughTheFieldsFromTheTop) {
  OpenTab({{"*Delivery", "HoldJobUntilYouEnterPIN"}, {"*EmailNotification", "JobCompleted"}});
  Focus("JobNameEntry");
  for (const char *name :
       {"UserNameEntry", "DeliveryComboEntry", "PinEntry", "EmailNotifTypeComboEntry",
        "EmailNotifAddressEntry", "EmailNotifMessageEntry", "DefaultDestinationButton"}) {
    for (int presses = 0; presses < 2 && !HasFocus(name); ++presses) {  // a combo takes two
      XInputChord("Tab");
      RunPending();
    }
    EXPECT_TRUE(HasFocus(name)) << name;
  }
}

TEST_F(DestinationTab, CommasEqualsSignsAndApostrophesAreNotTyped) {
  OpenTab({{"*EmailNotification", "JobCompleted"}});
  Type("JobNameEntry", "it's a=b, \u00e9");
  EXPECT_EQ(Text("JobNameEntry"), "its ab \u00e9");
  Type("UserNameEntry", "o'n=e,il");
  EXPECT_EQ(Text("UserNameEntry"), "oneil");
  Type("EmailNotifMessageEntry", "a,b=c'd;");
  EXPECT_EQ(Text("EmailNotifMessageEntry"), "abcd;");
}

TEST_F(DestinationTab, PastedTextsAreFilteredAndCutAtTheirLength) {
  OpenTab({{"*EmailNotification", "JobCompleted"}});
  Paste("JobNameEntry", "','" + std::string(90, 'j'));
  EXPECT_EQ(Text("JobNameEntry"), std::string(80, 'j'));
  Paste("UserNameEntry", "u=" + std::string(20, 'u'));
  EXPECT_EQ(Text("UserNameEntry"), std::string(16, 'u'));
  Paste("EmailNotifMessageEntry", "," + std::string(300, 'm'));
  EXPECT_EQ(Text("EmailNotifMessageEntry"), std::string(255, 'm'));
  Paste("EmailNotifAddressEntry", ";" + std::string(300, 'a'));
  EXPECT_EQ(Text("EmailNotifAddressEntry"), std::string(255, 'a'));
}

TEST_F(DestinationTab, LengthsAreCountedInCharacters) {
  OpenTab();
  std::string umlauts;
  for (int i = 0; i < 16; ++i) umlauts += "\u00fc";
  Paste("UserNameEntry", umlauts + "x");
  EXPECT_EQ(Text("UserNameEntry"), umlauts);
}

TEST_F(DestinationTab, OfSeveralPastedLinesTheFirstCounts) {
  OpenTab();
  Paste("JobNameEntry", "first\nsecond");
  EXPECT_EQ(Text("JobNameEntry"), "first");
}

TEST_F(DestinationTab, TextIsInsertedWhereTheCursorIs) {
  OpenTab({{"*JobName", "abef"}});
  Focus("JobNameEntry");
  XInputChord("Home");
  XInputChord("Right");
  XInputChord("Right");
  XInputType("c,d");
  RunPending();
  EXPECT_EQ(Text("JobNameEntry"), "abcdef");
  gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), "='--", -1);
  XInputChord("ctrl+v");
  RunPending();
  EXPECT_EQ(Text("JobNameEntry"), "abcd--ef");
  XInputChord("BackSpace");
  XInputChord("Delete");
  RunPending();
  EXPECT_EQ(Text("JobNameEntry"), "abcd-f");
}

TEST_F(DestinationTab, APinTakesFourDigitsAndNothingElse) {
  OpenTab({{"*Delivery", "HoldJobUntilYouEnterPIN"}});
  Type("PinEntry", "1a2-3 4");
  EXPECT_EQ(Text("PinEntry"), "1234");
  Type("PinEntry", "56789");
  EXPECT_EQ(Text("PinEntry"), "5678");
  Paste("PinEntry", "a0b0c4x2");
  EXPECT_EQ(Text("PinEntry"), "0042");
  Paste("PinEntry", "12345");
  EXPECT_EQ(Text("PinEntry"), "1234");
}

TEST_F(DestinationTab, ADroppedTextIsFilteredAndCutToo) {
  OpenTab({{"*JobName", "job 9 or 8 and 7, 6 as well as 5, with a long tail behind it"},
           {"*Delivery", "HoldJobUntilYouEnterPIN"}});
  Focus("JobNameEntry");
  XInputChord("ctrl+a");
  RunPending();
  Drag(Named("JobNameEntry"), Named("PinEntry"));
  EXPECT_TRUE(RunUntil([this] { return !Text("PinEntry").empty(); }));
  EXPECT_EQ(Text("PinEntry"), "9876");
}

TEST_F(DestinationTab, AnInputMethodsCharactersAreFilteredToo) {
  OpenTab({{"*Delivery", "HoldJobUntilYouEnterPIN"}});
  for (const char *code : {"37", "e9", "38"}) {  // 7, an accented e, 8
    Focus("PinEntry");
    XInputChord("End");
    XInputChord("ctrl+shift+u");
    XInputType(code);
    XInputChord("space");
    RunPending();
  }
  EXPECT_EQ(Text("PinEntry"), "78");
}

TEST_F(DestinationTab, AnAddressTakesWhatAddressesHold) {
  OpenTab({{"*EmailNotification", "JobCompleted"}});
  Type("EmailNotifAddressEntry", "a/b\\c,d;e:f'g`h=@i.jk l_m+n@o-p.qr");
  EXPECT_EQ(Text("EmailNotifAddressEntry"), "abcdefgh@i.jk l_m+n@o-p.qr");
}

TEST_F(DestinationTab, ThePinCountsForTheTwoDeliveriesThatTakeOne) {
  OpenTab();
  EXPECT_FALSE(IsSensitive("PinEntry"));
  EXPECT_FALSE(IsSensitive("PinLabel"));
  Choose("Delivery", "    Hold for PIN");
  EXPECT_TRUE(IsSensitive("PinEntry"));
  EXPECT_TRUE(IsSensitive("PinLabel"));
  Choose("Delivery", "    At once");
  EXPECT_FALSE(IsSensitive("PinEntry"));
  Choose("Delivery", "    Archive");
  EXPECT_TRUE(IsSensitive("PinEntry"));
  EXPECT_TRUE(gtk_widget_get_mapped(Named("PinRangeLabel")));
  EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(Named("PinRangeLabel"))), "( 0000 - 9999 )");
}

TEST_F(DestinationTab, AddressAndMessageCountWhenSomebodyIsNotified) {
  OpenTab();
  EXPECT_FALSE(IsSensitive("EmailNotifAddressEntry"));
  EXPECT_FALSE(IsSensitive("EmailNotifMessageEntry"));
  Choose("EmailNotifType", "    When done");
  EXPECT_TRUE(IsSensitive("EmailNotifAddressEntry"));
  EXPECT_TRUE(IsSensitive("EmailNotifMessageEntry"));
  Choose("EmailNotifType", "    Nobody");
  EXPECT_FALSE(IsSensitive("EmailNotifAddressEntry"));
  EXPECT_FALSE(IsSensitive("EmailNotifMessageEntry"));
}

TEST_F(DestinationTab, APrinterWithoutDeliveryLeavesItsRowsDead) {
  OpenTab({{"*DeliveryPIN", "1111"}}, kNotification);
  EXPECT_FALSE(IsSensitive("DeliveryCombo"));
  EXPECT_EQ(Text("DeliveryComboEntry"), "");
  EXPECT_FALSE(IsSensitive("PinEntry"));
  Choose("EmailNotifType", "    When done");
  EXPECT_TRUE(IsSensitive("EmailNotifAddressEntry"));
  Type("EmailNotifAddressEntry", "a@b.cd");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*DeliveryPIN"), "1111");
  EXPECT_EQ(Stored("*EmailAddress"), "a@b.cd");
}

TEST_F(DestinationTab, APrinterWithoutNotificationLeavesItsRowsDead) {
  OpenTab({{"*EmailAddress", "old"}}, kDelivery);
  EXPECT_FALSE(IsSensitive("EmailNotifTypeCombo"));
  EXPECT_EQ(Text("EmailNotifTypeComboEntry"), "");
  EXPECT_FALSE(IsSensitive("EmailNotifAddressEntry"));
  EXPECT_FALSE(IsSensitive("EmailNotifMessageEntry"));
  Choose("Delivery", "    Archive");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*Delivery"), "ArchiveToDocumentServer");
  EXPECT_EQ(Stored("*EmailAddress"), "old");
}

TEST_F(DestinationTab, OkStoresWhatWasTyped) {
  OpenTab();
  Type("JobNameEntry", "Report");
  Type("UserNameEntry", "ann");
  Choose("Delivery", "    Hold for PIN");
  Type("PinEntry", "0042");
  Choose("EmailNotifType", "    When done");
  Type("EmailNotifAddressEntry", "  a@b.cd    e@f.gh  ");
  Type("EmailNotifMessageEntry", "done");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*JobName"), "Report");
  EXPECT_EQ(Stored("*UserName"), "ann");
  EXPECT_EQ(Stored("*Delivery"), "HoldJobUntilYouEnterPIN");
  EXPECT_EQ(Stored("*DeliveryPIN"), "0042");
  EXPECT_EQ(Stored("*EmailNotification"), "JobCompleted");
  EXPECT_EQ(Stored("*EmailAddress"), "a@b.cd e@f.gh");
  EXPECT_EQ(Stored("*EmailMessage"), "done");
}

TEST_F(DestinationTab, OkRefusesAShortPinAndPutsTheFocusThere) {
  OpenTab();
  Choose("Delivery", "    Hold for PIN");
  Type("PinEntry", "123");
  gtk_notebook_set_current_page(GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook), 1);
  ASSERT_FALSE(PressOk());
  EXPECT_EQ(TakeError(),
            CatalogueText("ErrDestPin2") + ": " + CatalogueText("ErrDestPin1", {"123"}));
  EXPECT_EQ(Page(), PlaceOf(Page::kDestination));
  EXPECT_TRUE(HasFocus("PinEntry"));
  EXPECT_EQ(Stored("*DeliveryPIN"), "(none)");
  EXPECT_EQ(QueueFeatureValue("*EmailNotification"), "None") << "the defaults are back";
}

TEST_F(DestinationTab, AnArchivedJobNeedsNoPinAndForgetsTheOldOne) {
  OpenTab({{"*Delivery", "ArchiveToDocumentServer"}, {"*DeliveryPIN", "1111"}});
  Type("PinEntry", "");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*DeliveryPIN"), "(none)");
}

TEST_F(DestinationTab, OkRefusesAnAddressTidiesItAndPutsTheFocusThere) {
  OpenTab();
  Choose("EmailNotifType", "    When done");
  Type("EmailNotifAddressEntry", "  a@b.cd   nobody  ");
  gtk_notebook_set_current_page(GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook), 0);
  ASSERT_FALSE(PressOk());
  EXPECT_EQ(TakeError(), CatalogueText("ErrDestMail2") + ": " +
                             CatalogueText("ErrDestMail1", {"a@b.cd nobody"}));
  EXPECT_EQ(Page(), PlaceOf(Page::kDestination));
  EXPECT_TRUE(HasFocus("EmailNotifAddressEntry"));
  EXPECT_EQ(Text("EmailNotifAddressEntry"), "a@b.cd nobody");
  EXPECT_EQ(Stored("*EmailAddress"), "(none)");
}

TEST_F(DestinationTab, ApplyShowsTheTidiedAddress) {
  OpenTab({{"*EmailNotification", "JobCompleted"}});
  Type("EmailNotifAddressEntry", "  a@b.cd    e@f.gh  ");
  ClickOn(Named("ApplyButton"));
  EXPECT_EQ(Text("EmailNotifAddressEntry"), "a@b.cd e@f.gh");
  EXPECT_EQ(Stored("*EmailAddress"), "a@b.cd e@f.gh");
}

TEST_F(DestinationTab, DefaultsShowTheDefaultsAndKeepThePin) {
  OpenTab({{"*Delivery", "ArchiveToDocumentServer"},
           {"*EmailNotification", "JobCompleted"},
           {"*JobName", "Report"},
           {"*UserName", "ann"},
           {"*DeliveryPIN", "1111"},
           {"*EmailAddress", "a@b.cd"},
           {"*EmailMessage", "done"}});
  ClickOn(Named("DefaultDestinationButton"));
  EXPECT_EQ(Text("JobNameEntry"), ApplicationsName());
  EXPECT_EQ(Text("UserNameEntry"), LoginName());
  EXPECT_EQ(Text("DeliveryComboEntry"), "    At once");
  EXPECT_EQ(Text("PinEntry"), "1111");
  EXPECT_FALSE(IsSensitive("PinEntry"));
  EXPECT_EQ(Text("EmailNotifTypeComboEntry"), "    Nobody");
  EXPECT_FALSE(IsSensitive("EmailNotifAddressEntry"));
  EXPECT_EQ(Text("EmailNotifAddressEntry"), "");
  EXPECT_EQ(Text("EmailNotifMessageEntry"), "");
  for (const char *key :
       {"*JobName", "*UserName", "*DeliveryPIN", "*EmailAddress", "*EmailMessage"}) {
    EXPECT_EQ(HashFind(G_QueueFeatures_hash, key), nullptr) << key;
  }
}

TEST_F(DestinationTab, AfterDefaultsAHeldJobStillSeesTheOldPin) {
  OpenTab({{"*Delivery", "HoldJobUntilYouEnterPIN"}, {"*DeliveryPIN", "1111"}});
  ClickOn(Named("DefaultDestinationButton"));
  Choose("Delivery", "    Hold for PIN");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*DeliveryPIN"), "1111");
}

TEST_F(DestinationTab, DefaultsWithoutADefaultNotificationStopThere) {
  OpenTab({{"*Delivery", "ArchiveToDocumentServer"}, {"*JobName", "Report"}}, kDelivery);
  ClickOn(Named("DefaultDestinationButton"));
  EXPECT_EQ(QueueFeatureValue("*Delivery"), "PrintImmediately");
  EXPECT_EQ(Text("DeliveryComboEntry"), "    Archive") << "as on every tab nothing is filled again";
  EXPECT_EQ(Text("JobNameEntry"), "Report");
  EXPECT_EQ(QueueFeatureValue("*JobName"), "Report");
}

TEST_F(DestinationTab, ThePinIsNotLogged) {
  testing::internal::CaptureStderr();
  G_DebugLevel = 9;
  OpenTab({{"*Delivery", "HoldJobUntilYouEnterPIN"}, {"*DeliveryPIN", "3817"}});
  Type("PinEntry", "2946");
  const bool closed = PressOk();
  G_DebugLevel = 0;
  const std::string logged = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(closed);
  EXPECT_EQ(Stored("*DeliveryPIN"), "2946");
  EXPECT_NE(logged.find("PinEntryText"), std::string::npos) << "the log is on";
  for (const char *pin : {"3817", "2946", "294"}) {
    EXPECT_EQ(logged.find(pin), std::string::npos) << pin;
  }
}
