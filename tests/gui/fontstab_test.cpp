// The Fonts tab in its window: fonts, their styles, sizes typed and chosen.
#include "PropTabTextOptions.h"
#include "propertiestest.h"

namespace {

using Strings = std::vector<std::string>;

class FontsTab : public PropertiesTest {
 protected:
  void SetUp() override {
    PropertiesTest::SetUp();
    MakePrinter(PafFeature("*PageSize", {{"A4", "A4"}}));
  }

  void OpenTab(const std::vector<std::pair<const char *, const char *>> &settings = {}) {
    Open(PlaceOf(Page::kFonts), settings, "text");
  }

  std::string Shown() const {
    return Text("FontNameComboEntry") + "/" + Text("FontStyleComboEntry") + "/" +
           Text("FontSizeComboEntry");
  }
};

}  // namespace

TEST_F(FontsTab, ShowsCourierInTwelvePointsForAQueueWithoutSettings) {
  OpenTab();
  EXPECT_EQ(Shown(), "Courier/Regular/12");
  EXPECT_EQ(Rows("FontName"), (Strings{"Courier", "Times"}));
  EXPECT_EQ(Rows("FontStyle"), (Strings{"Bold", "Oblique", "Regular"}));
  EXPECT_EQ(Rows("FontSize"), (Strings{"4", "6", "8", "9", "10", "11", "12", "14", "16", "18", "20",
                                       "22", "24", "26", "28", "36", "48", "72"}));
}

TEST_F(FontsTab, ShowsTheQueuesFontAndSize) {
  OpenTab({{"*FontName", "Times-Bold"}, {"*FontSize", "13"}});
  EXPECT_EQ(Shown(), "Times/Bold/13");
  EXPECT_EQ(Rows("FontStyle"), (Strings{"Bold", "Roman"}));
}

TEST_F(FontsTab, IsThereInBothPrograms) {
  G_ProgName = kModeAdministration;
  Open(PlaceOf(Page::kFonts), {}, "text");
  EXPECT_EQ(Page(), PlaceOf(Page::kFonts));
  EXPECT_TRUE(gtk_widget_get_mapped(Named("TextVbox")));
  EXPECT_TRUE(gtk_widget_get_mapped(Named("FontSizeComboEntry")));
  EXPECT_EQ(nullptr, lookup_widget(window_, "FontsOfTextLabel"));
  EXPECT_EQ(Shown(), "Courier/Regular/12");
}

TEST_F(FontsTab, SaysWhyItHasNoBodyForQueuesOfAnotherType) {
  for (const char *language : {"postscript", "pcl6", "raw"}) {
    Open(PlaceOf(Page::kFonts), {}, language);
    EXPECT_EQ(Page(), PlaceOf(Page::kFonts)) << "the page itself stays";
    EXPECT_FALSE(gtk_widget_get_visible(Named("TextVbox"))) << language;
    GtkWidget *label = Named("FontsOfTextLabel");
    EXPECT_TRUE(gtk_widget_get_mapped(label)) << language;
    EXPECT_EQ(CatalogueText("DEF_LBL_FONT_TEXT_ONLY"), gtk_label_get_text(GTK_LABEL(label)));
    ButtonCancelPropertiesPressed();
  }
}

TEST_F(FontsTab, ASizeIsStoredInItsRangeHoweverTheEntryWasLeft) {
  const struct {
    const char *typed;
    const char *stored;
  } rows[] = {{"100", "72"}, {"3", "4"}, {"", "4"}, {"72", "72"}, {"13", "13"}};
  for (const auto &row : rows) {
    OpenTab();
    Type("FontSizeComboEntry", row.typed);
    ASSERT_TRUE(PressOk());
    EXPECT_EQ(row.stored, Stored("*FontSize")) << row.typed;
  }
}

TEST_F(FontsTab, OtherTypesStoreNoFont) {
  Open(PlaceOf(Page::kFonts));
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*FontName"), "(none)");
  EXPECT_EQ(Stored("*FontSize"), "(none)");
}

TEST_F(FontsTab, AnUnknownFontShowsTheFirstOneAndStoresThat) {
  OpenTab({{"*FontName", "Wingding"}});
  EXPECT_EQ(Shown(), "Courier/Bold/12");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*FontName"), "Courier-Bold");
  EXPECT_EQ(Stored("*FontSize"), "12");
}

TEST_F(FontsTab, AnotherFontBringsItsStyles) {
  OpenTab();
  Choose("FontName", "Times");
  EXPECT_EQ(Rows("FontStyle"), (Strings{"Bold", "Roman"}));
  EXPECT_EQ(Text("FontStyleComboEntry"), "Bold") << "the first: it has no style Regular";
  Choose("FontStyle", "Roman");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*FontName"), "Times-Roman");
}

TEST_F(FontsTab, AStyleThatTheOtherFontHasTooStays) {
  OpenTab({{"*FontName", "Times-Bold"}});
  Choose("FontName", "Courier");
  EXPECT_EQ(Text("FontStyleComboEntry"), "Bold");
  Choose("FontName", "Times");
  EXPECT_EQ(Text("FontStyleComboEntry"), "Bold");
}

TEST_F(FontsTab, AStyleThatTheFontLacksIsRefusedWithoutAMessage) {
  OpenTab();
  SetText("FontStyleComboEntry", "Roman");
  gtk_notebook_set_current_page(GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook), 1);
  ASSERT_FALSE(PressOk());
  EXPECT_EQ(TakeError(), "(none)");
  EXPECT_EQ(Page(), PlaceOf(Page::kFonts));
  EXPECT_TRUE(HasFocus("FontStyleComboEntry"));
  EXPECT_EQ(Stored("*FontName"), "(none)");
}

TEST_F(FontsTab, AFontThatDoesNotExistIsRefusedWithTheFocusOnIt) {
  OpenTab();
  SetText("FontNameComboEntry", "Wingding");
  ASSERT_FALSE(PressOk());
  EXPECT_EQ(TakeError(), "(none)");
  EXPECT_TRUE(HasFocus("FontNameComboEntry"));
}

TEST_F(FontsTab, TypedSizesAreDigitsThatComeIntoRangeWhenTheEntryIsLeft) {
  OpenTab();
  Type("FontSizeComboEntry", "9a9");
  EXPECT_EQ(Text("FontSizeComboEntry"), "99");
  Focus("FontNameComboEntry");
  EXPECT_EQ(Text("FontSizeComboEntry"), "72");
  Type("FontSizeComboEntry", "");
  EXPECT_EQ(Text("FontSizeComboEntry"), "");
  Focus("FontNameComboEntry");
  EXPECT_EQ(Text("FontSizeComboEntry"), "4");
  Type("FontSizeComboEntry", "013");
  Focus("FontNameComboEntry");
  EXPECT_EQ(Text("FontSizeComboEntry"), "13");
}

TEST_F(FontsTab, PastedSizesAreFiltered) {
  OpenTab();
  Paste("FontSizeComboEntry", "1 7pt");
  EXPECT_EQ(Text("FontSizeComboEntry"), "17");
  ClickOn(Named("OKButton"));
  EXPECT_EQ(Stored("*FontSize"), "17");
}

TEST_F(FontsTab, SizesAreChosenFromTheListToo) {
  OpenTab();
  Choose("FontSize", "36");
  EXPECT_EQ(Text("FontSizeComboEntry"), "36");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*FontName"), "Courier");
  EXPECT_EQ(Stored("*FontSize"), "36");
}

TEST_F(FontsTab, LeavingTheEntryByPressingOkWithTheMouseBringsTheSizeIntoRange) {
  OpenTab();
  Type("FontSizeComboEntry", "500");
  ClickOn(Named("OKButton"));
  EXPECT_EQ(G_PropertiesWindow_helper, nullptr);
  EXPECT_EQ(Stored("*FontSize"), "72");
}

TEST_F(FontsTab, DefaultsShowCourierInTwelvePoints) {
  OpenTab({{"*FontName", "Times-Bold"}, {"*FontSize", "36"}});
  ClickOn(Named("DefaultTextButton"));
  EXPECT_EQ(Shown(), "Courier/Regular/12");
  EXPECT_EQ(Rows("FontStyle"), (Strings{"Bold", "Oblique", "Regular"}));
  Focus("FontNameComboEntry");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*FontName"), "Courier");
  EXPECT_EQ(Stored("*FontSize"), "12");
}

TEST_F(FontsTab, DefaultsWithoutCourierSetTheSizeAlone) {
  ReadFonts("GUI_Font:Times|GUI_Style:Roman|AFM_FontName:Times-Roman\n");
  OpenTab({{"*FontName", "Times-Roman"}, {"*FontSize", "36"}});
  ClickOn(Named("DefaultTextButton"));
  EXPECT_EQ(Shown(), "Times/Roman/12");
  Focus("FontNameComboEntry");
  ASSERT_TRUE(PressOk());
  EXPECT_EQ(Stored("*FontName"), "Times-Roman");
}

TEST_F(FontsTab, EveryFieldIsNamedForAssistiveTechnology) {
  OpenTab();
  EXPECT_TRUE(IsLabelledBy("FontNameCombo", "FontNameLabel"));
  EXPECT_TRUE(IsLabelledBy("FontStyleCombo", "FontStyleLabel"));
  EXPECT_TRUE(IsLabelledBy("FontSizeCombo", "FontSizeLabel"));
}

TEST_F(FontsTab, FillingStylesTellsWhetherThereAreAny) {
  OpenTab();
  EXPECT_EQ(FillFontStyleComboBox("Times"), 1);
  EXPECT_EQ(FillFontStyleComboBox("Wingding"), 0);
  EXPECT_EQ(FillFontStyleComboBox(""), 0);
  EXPECT_EQ(Rows("FontStyle"), (Strings{"Bold", "Roman"})) << "the list stays then";
}
