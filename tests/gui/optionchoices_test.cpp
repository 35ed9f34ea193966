// What a choice in an option combo does, however it is made.

#include <gtest/gtest.h>

#include "constraintmessages.h"
#include "featuretable.h"
#include "optionrows.h"

namespace {

int WidthOf(const char *feature) {
  return gdk_pixbuf_get_width(gtk_image_get_pixbuf(GTK_IMAGE(OptionPicture(feature))));
}

std::vector<std::string> g_calls;

class OptionChoices : public OptionRowsTest {
 protected:
  void SetUp() override {
    OptionRowsTest::SetUp();
    g_calls.clear();
    G_OptionChangeHooks.show_nup_orders = [](OrderBoxes boxes) {
      g_calls.emplace_back(boxes == OrderBoxes::kNone ? "hide orders" : "show orders");
    };
    G_OptionChangeHooks.redraw_multiple_up = [] { g_calls.emplace_back("redraw"); };
    G_OptionChangeHooks.refill_installables = [] { g_calls.emplace_back("installables"); };
  }

  static void Focus(const char *feature) {
    gtk_widget_grab_focus(OptionComboEntry(feature));
    RunPending();
  }

  static bool IsPoppedUp(const char *feature) {
    gboolean shown = FALSE;
    g_object_get(OptionCombo(feature), "popup-shown", &shown, nullptr);
    return shown != FALSE;
  }

  void PopUp(const char *feature) {
    const GdkRectangle area = OnScreen(OptionCombo(feature));
    XInputClick(area.x + area.width - 10, area.y + area.height / 2);
    ASSERT_TRUE(RunUntil([&] { return IsPoppedUp(feature); }));
    RunPending();
  }

  static GtkWidget *PopUpList(const char *feature) {
    AtkObject *list = gtk_combo_box_get_popup_accessible(GTK_COMBO_BOX(OptionCombo(feature)));
    return gtk_accessible_get_widget(GTK_ACCESSIBLE(list));
  }
};

}  // namespace

TEST_F(OptionChoices, TheChoiceIsStoredMarkedEverywhereAndShown) {
  ShowRows();
  Choose("*MediaType", "    Transparencies");
  EXPECT_EQ("Transparency", QueueFeatureValue("*MediaType"));
  EXPECT_EQ("    Transparencies", Shown("*MediaType"));
  for (const ListedFeature &listed : ListedFeatures()) {
    EXPECT_EQ(RowsOfCore(listed.feature), RowsOf(listed.feature)) << listed.feature;
  }
  EXPECT_EQ("!   A3", RowsOf("*PageSize")[0].first);
}

TEST_F(OptionChoices, ThePictureIsThatOfTheChoice) {
  const ChangedFile none("/opt/orlan/xpm/Duplex_NoneP.xpm", PictureOfWidth(31));
  const ChangedFile two_sided("/opt/orlan/xpm/Duplex_DuplexTumbleP.xpm", PictureOfWidth(32));
  ShowRows({"*Duplex"});
  EXPECT_EQ(31, WidthOf("*Duplex"));
  Choose("*Duplex", "    Two-sided, short edge");
  EXPECT_EQ(32, WidthOf("*Duplex"));
  printer_->Set("*Duplex", "None");
  RedrawOptionPicture("*Duplex");
  EXPECT_EQ(31, WidthOf("*Duplex"));
}

TEST_F(OptionChoices, CustomSizesAndMediaHaveAPictureOfTheirOwn) {
  const ChangedFile size("/opt/orlan/xpm/cps.xpm", PictureOfWidth(41));
  const ChangedFile media("/opt/orlan/xpm/cmt.xpm", PictureOfWidth(42));
  PutPaper(G_CurrentQueue.get(), "Ticket", 200, 400);
  PutMedia(G_CurrentQueue.get(), "Gloss", "Gloss");
  ShowRows();
  Choose("*PageSize", "    Ticket");
  EXPECT_EQ("Ticket", QueueFeatureValue("*PageSize"));
  EXPECT_EQ(41, WidthOf("*PageSize"));
  EXPECT_EQ("    Ticket", Shown("*PageSize"));
  Choose("*MediaType", "    Gloss");
  EXPECT_EQ("Gloss", QueueFeatureValue("*MediaType"));
  EXPECT_EQ(42, WidthOf("*MediaType"));
}

TEST_F(OptionChoices, AStoredCustomSizeIsShownWithItsPictureAtFirst) {
  const ChangedFile size("/opt/orlan/xpm/cps.xpm", PictureOfWidth(41));
  PutPaper(G_CurrentQueue.get(), "Ticket", 200, 400);
  printer_->Set("*PageSize", "Ticket");
  ShowRows({"*PageSize"});
  EXPECT_EQ(41, WidthOf("*PageSize"));
}

TEST_F(OptionChoices, ACustomSizeThatIsGoneBecomesThePrintersDefault) {
  PutPaper(G_CurrentQueue.get(), "Ticket", 200, 400);
  printer_->Set("*PageSize", "A3");
  ShowRows();
  HashRemove(G_QueueCustomPapers_hash, "Ticket");
  Choose("*PageSize", "    Ticket");
  EXPECT_EQ("A4", QueueFeatureValue("*PageSize"));
  EXPECT_EQ("    A4", Shown("*PageSize"));
}

TEST_F(OptionChoices, TheCurrentChoiceChangesNothingAndRefillsNothing) {
  ShowRows();
  // Shows whether the combos were filled.
  HashRemove(G_QueueFeatures_hash, "*Punch");
  ComboFill(OptionCombo("*Punch"), {"old"});
  G_ComboBoxOptionChanged("*PageSize");
  EXPECT_EQ(1U, RowsOf("*Punch").size());
  EXPECT_TRUE(g_calls.empty());
}

TEST_F(OptionChoices, ABareMarkIsIgnored) {
  ShowRows();
  for (const char *text : {"", "!", "    ", "!   "}) {
    ComboFill(OptionCombo("*Punch"), {"old"});
    ComboFill(OptionCombo("*PageSize"), {text});
    ComboSetRow(OptionCombo("*PageSize"), 0);
    G_ComboBoxOptionChanged("*PageSize");
    EXPECT_EQ("A4", QueueFeatureValue("*PageSize"));
    EXPECT_EQ(1U, RowsOf("*Punch").size()) << text;
  }
  EXPECT_TRUE(g_calls.empty());
}

TEST_F(OptionChoices, AnExemptFeatureRefillsTheCombosButNotTheInstallableLists) {
  ShowRows();
  const std::pair<const char *, const char *> choices[] = {
      {"*Orientation", "    Landscape"},
      {"*EdgeToEdge", "    On"},
      {"*HalfTone", "    Lines"},
      {"*Delivery", "    Keep until released"},
      {"*EmailNotification", "    When the job fails"}};
  for (const auto &[feature, text] : choices) {
    ComboFill(OptionCombo("*Punch"), {"old"});
    Choose(feature, text);
    EXPECT_EQ(4U, RowsOf("*Punch").size()) << feature;
  }
  EXPECT_TRUE(g_calls.empty());
  Choose("*Duplex", "    Two-sided, long edge");
  EXPECT_EQ(std::vector<std::string>{"installables"}, g_calls);
}

TEST_F(OptionChoices, TheOrientationTurnsThePicturesOfStaplePunchAndDuplex) {
  const ChangedFile staple("/opt/orlan/xpm/StapleLocation_NoneL.xpm", PictureOfWidth(51));
  const ChangedFile punch("/opt/orlan/xpm/Punch_NoneL.xpm", PictureOfWidth(52));
  const ChangedFile duplex("/opt/orlan/xpm/Duplex_NoneL.xpm", PictureOfWidth(53));
  ShowRows();
  EXPECT_NE(51, WidthOf("*StapleLocation"));
  Choose("*Orientation", "    Landscape");
  EXPECT_EQ(51, WidthOf("*StapleLocation"));
  EXPECT_EQ(52, WidthOf("*Punch"));
  EXPECT_EQ(53, WidthOf("*Duplex"));
  EXPECT_TRUE(g_calls.empty());
}

TEST_F(OptionChoices, TheOrientationOfATextQueueRedrawsThePagesASheet) {
  QueueValues values;
  values.language = "text";
  Use("vek41101", values);
  ShowRows();
  Choose("*Orientation", "    Rotated landscape");
  EXPECT_EQ(std::vector<std::string>{"redraw"}, g_calls);
}

TEST_F(OptionChoices, TwoPagesASheetFollowTheOrientation) {
  printer_->Set("*Nup", "2");
  ShowRows();
  Choose("*Orientation", "    Landscape");
  EXPECT_EQ("Left", QueueFeatureValue("*NupOrder"));
  Choose("*Orientation", "    Rotated landscape");
  EXPECT_EQ("Right", QueueFeatureValue("*NupOrder"));
  Choose("*Orientation", "    Portrait");
  EXPECT_EQ((std::vector<std::string>{"hide orders", "hide orders", "show orders"}), g_calls);
}

TEST_F(OptionChoices, ArrowKeysChooseRowByRow) {
  ShowRows();
  Focus("*MediaType");
  XInputChord("Down");
  ASSERT_TRUE(RunUntil([&] { return QueueFeatureValue("*MediaType") == "Preprinted"; }));
  XInputChord("Down");
  ASSERT_TRUE(RunUntil([&] { return QueueFeatureValue("*MediaType") == "Prepunched"; }));
  XInputChord("Up");
  ASSERT_TRUE(RunUntil([&] { return QueueFeatureValue("*MediaType") == "Preprinted"; }));
  EXPECT_EQ("    Preprinted", Shown("*MediaType"));
}

TEST_F(OptionChoices, ArrowKeysGoOnFromAChoiceThatGetsAMark) {
  printer_->Set("*PageSize", "A5");
  printer_->Set("*Duplex", "DuplexTumble");
  ShowRows();
  Focus("*PageSize");
  XInputChord("Down");
  ASSERT_TRUE(RunUntil([&] { return QueueFeatureValue("*PageSize") == "A6"; }));
  EXPECT_EQ("!   A6", Shown("*PageSize"));
  EXPECT_EQ("!   Two-sided, short edge", Shown("*Duplex"));
  XInputChord("Down");
  ASSERT_TRUE(RunUntil([&] { return QueueFeatureValue("*PageSize") != "A6"; }));
  EXPECT_EQ("    Two-sided, short edge", Shown("*Duplex"));
}

TEST_F(OptionChoices, TheWheelChooses) {
  ShowRows();
  const GdkRectangle area = OnScreen(OptionComboEntry("*Duplex"));
  XInputClick(area.x + 20, area.y + area.height / 2, 4);
  ASSERT_TRUE(RunUntil([&] { return QueueFeatureValue("*Duplex") == "DuplexTumble"; }));
  EXPECT_EQ("    Two-sided, short edge", Shown("*Duplex"));
  EXPECT_EQ(std::vector<std::string>{"installables"}, g_calls);
}

TEST_F(OptionChoices, ALetterChoosesTheNextRowThatBeginsWithItBehindTheMark) {
  printer_->Set("*MediaType", "Transparency");
  ShowRows();
  Focus("*PageSize");
  XInputType("l");
  ASSERT_TRUE(RunUntil([&] { return QueueFeatureValue("*PageSize") == "Legal"; }));
  EXPECT_EQ("!   Legal", Shown("*PageSize"));
  XInputType("l");
  ASSERT_TRUE(RunUntil([&] { return QueueFeatureValue("*PageSize") == "Letter"; }));
  XInputType("L");
  ASSERT_TRUE(RunUntil([&] { return QueueFeatureValue("*PageSize") == "Legal"; }));
  XInputType("z");
  RunPending();
  EXPECT_EQ("Legal", QueueFeatureValue("*PageSize"));
}

TEST_F(OptionChoices, AChoiceInThePopUpIsStored) {
  ShowRows({"*Duplex"});
  PopUp("*Duplex");
  for (const char *key : {"Up", "Return"}) {
    XInputChord(key);
    RunPending();
  }
  ASSERT_TRUE(RunUntil([&] { return !IsPoppedUp("*Duplex"); }));
  EXPECT_EQ("DuplexTumble", QueueFeatureValue("*Duplex"));
}

TEST_F(OptionChoices, ALetterMovesTheHighlightOfThePopUp) {
  printer_->Set("*MediaType", "Transparency");
  ShowRows({"*PageSize"});
  PopUp("*PageSize");
  XInputType("t");
  RunPending();
  EXPECT_EQ("A4", QueueFeatureValue("*PageSize"));
  XInputChord("Return");
  ASSERT_TRUE(RunUntil([&] { return !IsPoppedUp("*PageSize"); }));
  EXPECT_EQ("ARCHB", QueueFeatureValue("*PageSize"));
}

TEST_F(OptionChoices, AssistiveTechnologyReadsWhyARowOfThePopUpIsMarked) {
  printer_->Set("*MediaType", "Transparency");
  ShowRows({"*PageSize"});
  PopUp("*PageSize");
  AtkObject *list = gtk_combo_box_get_popup_accessible(GTK_COMBO_BOX(OptionCombo("*PageSize")));
  const std::string why = ConflictReason({"*PageSize", "A3", "*MediaType", "Transparency"});
  EXPECT_EQ(why, CellDescription(list, "!   A3"));
  EXPECT_EQ("", CellDescription(list, "    A4"));
  XInputChord("Escape");
  ASSERT_TRUE(RunUntil([&] { return !IsPoppedUp("*PageSize"); }));
}

TEST_F(OptionChoices, ThePopUpShowsWhyARowIsMarked) {
  printer_->Set("*MediaType", "Transparency");
  ShowRows({"*PageSize"});
  PopUp("*PageSize");
  const std::string why = ConflictReason({"*PageSize", "A3", "*MediaType", "Transparency"});
  GtkWidget *list = PopUpList("*PageSize");
  GtkTreePath *path = gtk_tree_path_new_first();
  GdkRectangle cell;
  gtk_tree_view_get_cell_area(GTK_TREE_VIEW(list), path, nullptr, &cell);
  gtk_tree_path_free(path);
  int x = 0;
  int y = 0;
  gdk_window_get_origin(gtk_tree_view_get_bin_window(GTK_TREE_VIEW(list)), &x, &y);
  XInputMove(x + 30, y + cell.y + 3);
  RunPending();
  XInputMove(x + 34, y + cell.y + 4);
  const auto shows = [&] {
    GList *windows = gtk_window_list_toplevels();
    bool found = false;
    for (GList *link = windows; link != nullptr && !found; link = link->next) {
      GtkWidget *window = GTK_WIDGET(link->data);
      if (gtk_window_get_type_hint(GTK_WINDOW(window)) != GDK_WINDOW_TYPE_HINT_TOOLTIP) continue;
      if (gtk_widget_get_visible(window) == FALSE) continue;
      found = [&] {
        static std::string text;
        text.clear();
        gtk_container_forall(
            GTK_CONTAINER(gtk_bin_get_child(GTK_BIN(window))),
            [](GtkWidget *part, gpointer) {
              if (GTK_IS_LABEL(part)) text += gtk_label_get_text(GTK_LABEL(part));
            },
            nullptr);
        return text == why;
      }();
    }
    g_list_free(windows);
    return found;
  };
  EXPECT_TRUE(RunUntil(shows));
  XInputChord("Escape");
  ASSERT_TRUE(RunUntil([&] { return !IsPoppedUp("*PageSize"); }));
}
