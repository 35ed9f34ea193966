// The dialog of custom media types: names, what OK stores.
#include "ccmtparams.h"
#include "customstest.h"

namespace {

class CustomMedia : public CustomsTest {
 protected:
  static const CmtParamWindowHelper &Dialog() { return *G_CmtParamWindow_helper; }

  void OpenAdd() { ASSERT_NE(nullptr, Press("CmtButtonAdd", "CmtParamWindow")); }

  void OpenEdit(const char *name) {
    Select(kMedia, {name});
    ASSERT_NE(nullptr, Press("CmtButtonEdit", "CmtParamWindow"));
  }

  // The display name that is filed under `name`.
  static std::string Stored(const char *name) {
    const auto *params = HashValue<CCmtParams>(G_QueueCustomMedias_hash, name);
    return params == nullptr ? "(none)" : TextOrNull(fGetGuiName_Function(params));
  }

  // Presses OK on a name that is refused; the dialog stays with the focus on the name.
  static std::string Refuse(const char *name) {
    TypeInto(Dialog().name_entry, name);
    gtk_widget_grab_focus(lookup_widget(Dialog().window, "OKButton"));
    Key("Return");
    const std::string message =
        TakeErrorKey({"DCMT_Dlg_Media_Error1", "DCMT_Dlg_Media_Error2", "DCMT_Dlg_Media_Error3"});
    EXPECT_NE(nullptr, G_CmtParamWindow_helper);
    EXPECT_EQ(Dialog().name_entry, gtk_window_get_focus(GTK_WINDOW(Dialog().window)));
    FocusWindowOf(Dialog().window);
    RunPending();
    return message;
  }
};

}  // namespace

TEST_F(CustomMedia, TheDialogHasTheWidgetsUnderTheirNames) {
  OpenTab();
  OpenAdd();
  EXPECT_EQ(CatalogueText("DEF_WND_CMT_PARAM_TITLE"),
            gtk_window_get_title(GTK_WINDOW(Dialog().window)));
  EXPECT_EQ("", In(Dialog().name_entry));
  GtkWidget *properties = window_;
  window_ = Dialog().window;
  for (const char *name : {"CmtNameEntry", "OKButton", "CancelButton", "HelpButton"}) Named(name);
  EXPECT_TRUE(IsLabelledBy("CmtNameEntry", "CmtNameLabel"));
  window_ = properties;
}

TEST_F(CustomMedia, TheNameKeepsAnUnderscoreAndDropsBackQuoteAndTilde) {
  OpenTab();
  OpenAdd();
  TypeInto(Dialog().name_entry, "My_`Gl~oss 2");
  EXPECT_EQ("My_Gloss2", In(Dialog().name_entry));
  PasteInto(Dialog().name_entry, "'=,!@#$%^&*()+-[]{}\":;.<>?/\\|`~ a_ä");
  EXPECT_EQ("a_ä", In(Dialog().name_entry));
}

TEST_F(CustomMedia, OkStoresTheTypeListsItAndOffersItOnTheSetupTab) {
  Media("Foil");
  OpenTab();
  OpenAdd();
  TypeInto(Dialog().name_entry, "Gloss");
  Key("Return");
  EXPECT_EQ(nullptr, G_CmtParamWindow_helper);
  EXPECT_EQ("Gloss", Stored("Gloss"));
  EXPECT_EQ((Strings{"Foil", "Gloss"}), Names(kMedia));
  EXPECT_EQ(Strings{"Gloss"}, Selected(kMedia));
  EXPECT_EQ(2, G_PropTabCustoms_helper->medias.number_defined);
  EXPECT_EQ((Strings{"    Plain paper", "    Card", "    Foil", "    Gloss"}), Rows("PaperType"));
}

TEST_F(CustomMedia, EscapeStoresNothing) {
  OpenTab();
  OpenAdd();
  TypeInto(Dialog().name_entry, "Gloss");
  Key("Escape");
  EXPECT_EQ(nullptr, G_CmtParamWindow_helper);
  EXPECT_EQ(Strings{}, Keys(G_QueueCustomMedias_hash));
}

TEST_F(CustomMedia, HelpShowsTheDialogsText) {
  OpenTab();
  OpenAdd();
  Key("F1");
  GtkWidget *help = WindowNamed("KPXHelpDialog");
  ASSERT_NE(nullptr, help);
  gtk_widget_destroy(help);
}

TEST_F(CustomMedia, NamesThatAreEmptyTakenOrStandardAreRefused) {
  Media("Gloss");
  OpenTab();
  OpenAdd();
  EXPECT_EQ("DCMT_Dlg_Media_Error1", Refuse(""));
  EXPECT_EQ("DCMT_Dlg_Media_Error2", Refuse("Gloss"));
  EXPECT_EQ("DCMT_Dlg_Media_Error3", Refuse("Card"));
  EXPECT_EQ("DCMT_Dlg_Media_Error3", Refuse("Thick"));
  EXPECT_EQ(Strings{"Gloss"}, Keys(G_QueueCustomMedias_hash));
}

TEST_F(CustomMedia, EveryNameIsRefusedInSilenceOnAQueueWithoutMediaType) {
  OpenTab();
  HashRemove(G_QueueFeatures_hash, "*MediaType");
  OpenAdd();
  EXPECT_EQ("(none)", Refuse("Gloss"));
}

TEST_F(CustomMedia, ATypeMayBeRenamedToItsOwnNameButNotAddedTwice) {
  Media("Gloss");
  OpenTab();
  OpenEdit("Gloss");
  EXPECT_EQ("Gloss", In(Dialog().name_entry));
  Key("Return");
  EXPECT_EQ(nullptr, G_CmtParamWindow_helper);
  EXPECT_EQ(Strings{"Gloss"}, Names(kMedia));
  EXPECT_EQ(Strings{"Gloss"}, Selected(kMedia));
  EXPECT_EQ(1, G_PropTabCustoms_helper->medias.number_defined);
  OpenAdd();
  EXPECT_EQ("DCMT_Dlg_Media_Error2", Refuse("Gloss"));
}

TEST_F(CustomMedia, ARenamedTypeInUseGivesWayToThePrintersDefault) {
  Media("Gloss");
  Setting("*MediaType", "Gloss");
  OpenTab();
  OpenEdit("Gloss");
  TypeInto(Dialog().name_entry, "Silk");
  Key("Return");
  EXPECT_EQ(Strings{"Silk"}, Keys(G_QueueCustomMedias_hash));
  EXPECT_EQ("Plain", QueueFeatureValue("*MediaType"));
  EXPECT_EQ("    Plain paper", Text("PaperTypeComboEntry"));
  EXPECT_TRUE(ShowsPicture("*MediaType", "MediaType_Plain.xpm"));
  EXPECT_EQ((Strings{"    Long edge", "    Off"}), Rows("Duplex"));
}

TEST_F(CustomMedia, AnEditDialogShowsTheDisplayName) {
  PutMedia(queue_.get(), "Gloss", "Glossy paper");
  OpenTab();
  OpenEdit("Gloss");
  EXPECT_EQ("Glossy paper", In(Dialog().name_entry));
}

TEST_F(CustomMedia, TheHundredthTypeIsTheLast) {
  for (int number = 1; number <= 99; ++number) Media(("M" + std::to_string(number)).c_str());
  OpenTab();
  EXPECT_EQ("A--", Buttons("Cmt"));
  OpenAdd();
  TypeInto(Dialog().name_entry, "M100");
  Key("Return");
  EXPECT_EQ("-ED", Buttons("Cmt"));
  EXPECT_EQ(100, G_PropTabCustoms_helper->medias.number_defined);
}
