// The Customs tab in its window: rows, buttons, deleting with and without the question.
#include "customstest.h"

namespace {

using CustomsTab = CustomsTest;

TEST_F(CustomsTab, ListsTheQueuesEntriesWithTheSizesInMillimetresAndInches) {
  Paper("Ticket", 612, 792);
  Paper("Label", 288, 595);
  Media("Gloss");
  OpenTab();
  EXPECT_EQ((Strings{"Label", "Ticket"}), Names(kPaper));
  EXPECT_EQ("101.6 × 209.9", ListCell(List(kPaper), 0, 1));
  EXPECT_EQ("4.00 × 8.26", ListCell(List(kPaper), 0, 2));
  EXPECT_EQ("215.9 × 279.4", ListCell(List(kPaper), 1, 1));
  EXPECT_EQ("8.50 × 11.00", ListCell(List(kPaper), 1, 2));
  EXPECT_EQ(Strings{"Gloss"}, Names(kMedia));
  EXPECT_EQ(2, G_PropTabCustoms_helper->papers.number_defined);
  EXPECT_EQ(1, G_PropTabCustoms_helper->medias.number_defined);
  EXPECT_EQ("A--", Buttons("Cps"));
  EXPECT_EQ("A--", Buttons("Cmt"));
}

TEST_F(CustomsTab, EveryColumnHasATitle) {
  OpenTab();
  const auto title = [](CustomKind kind, int column) -> std::string {
    return gtk_tree_view_column_get_title(
        gtk_tree_view_get_column(GTK_TREE_VIEW(List(kind)), column));
  };
  EXPECT_EQ(CatalogueText("DEF_LBL_NAME_TITLE"), title(kPaper, 0));
  EXPECT_EQ(CatalogueText("DEF_LBL_CPS_MILLIMETERS_TITLE"), title(kPaper, 1));
  EXPECT_EQ(CatalogueText("DEF_LBL_CPS_INCHES_TITLE"), title(kPaper, 2));
  EXPECT_EQ(CatalogueText("DEF_LBL_NAME_TITLE"), title(kMedia, 0));
}

TEST_F(CustomsTab, HasTheWidgetsUnderTheirNames) {
  OpenTab();
  for (const char *name : {"CustomsVBox", "DataCpsVBox", "CpsScrolledWindow", "CpsCList",
                           "CpsButtonsHBox", "CpsButtonAdd", "CpsButtonEdit", "CpsButtonDelete",
                           "DataCmtVBox", "CmtScrolledWindow", "CmtCList", "CmtButtonsHBox",
                           "CmtButtonAdd", "CmtButtonEdit", "CmtButtonDelete", "CustomsLabel"}) {
    EXPECT_STREQ(name, gtk_widget_get_name(Named(name)));
  }
  EXPECT_EQ(CatalogueText("DEF_TAB_CUSTOMS"), gtk_label_get_text(GTK_LABEL(Named("CustomsLabel"))));
  EXPECT_TRUE(IsLabelledBy("CpsCList", "CPSLabel"));
  EXPECT_TRUE(IsLabelledBy("CmtCList", "CMTLabel"));
}

TEST_F(CustomsTab, EditNeedsOneSelectedRowAndDeleteAtLeastOne) {
  for (const char *name : {"One", "Two"}) {
    Paper(name);
    Media(name);
  }
  OpenTab();
  for (const auto &[kind, name] :
       std::vector<std::pair<CustomKind, std::string>>{{kPaper, "Cps"}, {kMedia, "Cmt"}}) {
    ClickRow(kind, 0);
    EXPECT_EQ("AED", Buttons(name));
    ClickRow(kind, 1, "Control_L");
    EXPECT_EQ((Strings{"One", "Two"}), Selected(kind));
    EXPECT_EQ("A-D", Buttons(name));
    ClickRow(kind, 0, "Control_L");
    EXPECT_EQ(Strings{"Two"}, Selected(kind));
    EXPECT_EQ("AED", Buttons(name));
    ClickRow(kind, 1, "Control_L");
    EXPECT_EQ(Strings{}, Selected(kind));
    EXPECT_EQ("A--", Buttons(name));
  }
}

TEST_F(CustomsTab, ARowThatIsSelectedTwiceCountsOnce) {
  Paper("One");
  OpenTab();
  CpsCListRowSelection(0);
  CpsCListRowSelection(0);
  EXPECT_EQ(1, G_PropTabCustoms_helper->papers.number_selected);
  CpsCListRowUnSelection(0);
  CpsCListRowUnSelection(0);
  EXPECT_EQ(0, G_PropTabCustoms_helper->papers.number_selected);
  CpsCListRowSelection(5);
  CpsCListRowUnSelection(-1);
  EXPECT_EQ(0, G_PropTabCustoms_helper->papers.number_selected);
}

TEST_F(CustomsTab, NoLeavesEntriesAndSelectionUnchanged) {
  Paper("One");
  Paper("Two");
  Paper("Three");
  OpenTab();
  Select(kPaper, {"One", "Two"});
  Press("CpsButtonDelete", "ConfirmationDialog");
  ClickOn(G_ConfirmationWindow_helper->no_button);
  EXPECT_EQ(nullptr, G_ConfirmationWindow_helper);
  EXPECT_EQ(nullptr, WindowNamed("ConfirmationDialog"));
  EXPECT_EQ((Strings{"One", "Two"}), Selected(kPaper));
  EXPECT_EQ((Strings{"One", "Three", "Two"}), Keys(G_QueueCustomPapers_hash));
  EXPECT_EQ(3, G_PropTabCustoms_helper->papers.number_defined);
}

TEST_F(CustomsTab, AfterADeletionTheListHasTheFocus) {
  Paper("One");
  Media("Gloss");
  OpenTab();
  for (const auto &[kind, name, entry] :
       {std::tuple{kPaper, "Cps", "One"}, std::tuple{kMedia, "Cmt", "Gloss"}}) {
    Select(kind, {entry});
    Press((std::string(name) + "ButtonDelete").c_str(), "ConfirmationDialog");
    ClickOn(G_ConfirmationWindow_helper->yes_button);
    EXPECT_EQ(Strings{}, Names(kind));
    EXPECT_EQ(List(kind), gtk_window_get_focus(GTK_WINDOW(window_)));
  }
}

TEST_F(CustomsTab, EscapeAndClosingTheQuestionMeanNo) {
  Media("Gloss");
  OpenTab();
  Select(kMedia, {"Gloss"});
  Press("CmtButtonDelete", "ConfirmationDialog");
  Key("Escape");
  EXPECT_EQ(nullptr, G_ConfirmationWindow_helper);
  Press("CmtButtonDelete", "ConfirmationDialog");
  gtk_window_close(GTK_WINDOW(G_ConfirmationWindow_helper->window));
  EXPECT_TRUE(RunUntil([] { return G_ConfirmationWindow_helper == nullptr; }));
  EXPECT_EQ(Strings{"Gloss"}, Selected(kMedia));
  EXPECT_EQ(Strings{"Gloss"}, Keys(G_QueueCustomMedias_hash));
}

TEST_F(CustomsTab, TheQuestionIsAboutTheListWhoseDeleteWasPressed) {
  Paper("One");
  Media("One");
  OpenTab();
  Select(kPaper, {"One"});
  Select(kMedia, {"One"});
  GtkWidget *dialog = Press("CpsButtonDelete", "ConfirmationDialog");
  EXPECT_EQ(1, Cps_Or_Cmt);
  EXPECT_EQ(CatalogueText("DEF_WND_CONFIRM_TITLE"), gtk_window_get_title(GTK_WINDOW(dialog)));
  EXPECT_EQ(CatalogueText("DEF_LBL_CONFIRM_MSG_CPS"),
            gtk_label_get_text(GTK_LABEL(lookup_widget(dialog, "ConfirmationLabel"))));
  for (const char *name : {"ConfirmationDialogVbox", "DataConfirmationVbox",
                           "ConfirmationDialogActionArea", "YESButton", "NOButton"}) {
    EXPECT_NE(nullptr, lookup_widget(dialog, name)) << name;
  }
  Key("Escape");
  dialog = Press("CmtButtonDelete", "ConfirmationDialog");
  EXPECT_NE(1, Cps_Or_Cmt);
  EXPECT_EQ(CatalogueText("DEF_LBL_CONFIRM_MSG_CMT"),
            gtk_label_get_text(GTK_LABEL(lookup_widget(dialog, "ConfirmationLabel"))));
  ClickOn(G_ConfirmationWindow_helper->yes_button);
  EXPECT_EQ(Strings{}, Keys(G_QueueCustomMedias_hash));
  EXPECT_EQ(Strings{"One"}, Keys(G_QueueCustomPapers_hash));
  EXPECT_EQ(Strings{"One"}, Selected(kPaper));
}

TEST_F(CustomsTab, YesDeletesAllSelectedEntriesAndTheSetupTabsRows) {
  for (const char *name : {"One", "Two", "Three"}) Paper(name);
  OpenTab();
  EXPECT_EQ((Strings{"    A4 sheet", "    US Letter", "    One", "    Three", "    Two"}),
            Rows("PaperSize"));
  Select(kPaper, {"One", "Two"});
  Press("CpsButtonDelete", "ConfirmationDialog");
  Key("Return");
  EXPECT_EQ(nullptr, G_ConfirmationWindow_helper);
  EXPECT_EQ(Strings{"Three"}, Names(kPaper));
  EXPECT_EQ(Strings{}, Selected(kPaper));
  EXPECT_EQ(Strings{"Three"}, Keys(G_QueueCustomPapers_hash));
  EXPECT_EQ(1, G_PropTabCustoms_helper->papers.number_defined);
  EXPECT_EQ("A--", Buttons("Cps"));
  EXPECT_EQ((Strings{"    A4 sheet", "    US Letter", "    Three"}), Rows("PaperSize"));
  EXPECT_EQ("    A4 sheet", Text("PaperSizeComboEntry"));
  EXPECT_EQ("A4", QueueFeatureValue("*PageSize"));
}

TEST_F(CustomsTab, DeletingThePaperInUseBringsThePrintersDefaultAndItsMarks) {
  Paper("One");
  Paper("Two");
  Setting("*PageSize", "One");
  OpenTab();
  EXPECT_EQ((Strings{"!   Long edge", "    Off"}), Rows("Duplex"));
  EXPECT_TRUE(ShowsPicture("*PageSize", "cps.xpm"));
  Select(kPaper, {"One"});
  Press("CpsButtonDelete", "ConfirmationDialog");
  ClickOn(G_ConfirmationWindow_helper->yes_button);
  EXPECT_EQ("A4", QueueFeatureValue("*PageSize"));
  EXPECT_EQ("    A4 sheet", Text("PaperSizeComboEntry"));
  EXPECT_EQ((Strings{"    A4 sheet", "    US Letter", "    Two"}), Rows("PaperSize"));
  EXPECT_EQ((Strings{"    Long edge", "    Off"}), Rows("Duplex"));
  EXPECT_FALSE(G_CustomPaperIsCurrent);
  EXPECT_TRUE(ShowsPicture("*PageSize", "PageSize_A4.xpm"));
}

TEST_F(CustomsTab, DeletingTheMediaTypeInUseBringsThePrintersDefaultAndItsMarks) {
  Media("Gloss");
  Setting("*MediaType", "Gloss");
  OpenTab();
  EXPECT_EQ((Strings{"!   Long edge", "    Off"}), Rows("Duplex"));
  Select(kMedia, {"Gloss"});
  Press("CmtButtonDelete", "ConfirmationDialog");
  ClickOn(G_ConfirmationWindow_helper->yes_button);
  EXPECT_EQ("Plain", QueueFeatureValue("*MediaType"));
  EXPECT_EQ((Strings{"    Plain paper", "    Card"}), Rows("PaperType"));
  EXPECT_EQ((Strings{"    Long edge", "    Off"}), Rows("Duplex"));
}

TEST_F(CustomsTab, DeletingAnotherPaperLeavesTheOneInUse) {
  Paper("One");
  Paper("Two");
  Setting("*PageSize", "Two");
  OpenTab();
  Select(kPaper, {"One"});
  Press("CpsButtonDelete", "ConfirmationDialog");
  ClickOn(G_ConfirmationWindow_helper->yes_button);
  EXPECT_EQ("Two", QueueFeatureValue("*PageSize"));
  EXPECT_EQ("    Two", Text("PaperSizeComboEntry"));
}

TEST_F(CustomsTab, WithEightPapersAddWaitsForADeletion) {
  for (int number = 1; number <= 8; ++number) Paper(("P" + std::to_string(number)).c_str());
  OpenTab();
  EXPECT_EQ("---", Buttons("Cps"));
  Select(kPaper, {"P3"});
  EXPECT_EQ("-ED", Buttons("Cps"));
  Press("CpsButtonDelete", "ConfirmationDialog");
  ClickOn(G_ConfirmationWindow_helper->yes_button);
  EXPECT_EQ("A--", Buttons("Cps"));
}

TEST_F(CustomsTab, WithTooManyPapersAddWaitsUntilFewerThanEightAreLeft) {
  for (int number = 1; number <= 9; ++number) Paper(("P" + std::to_string(number)).c_str());
  OpenTab();
  Select(kPaper, {"P3"});
  Press("CpsButtonDelete", "ConfirmationDialog");
  ClickOn(G_ConfirmationWindow_helper->yes_button);
  EXPECT_EQ("---", Buttons("Cps"));
}

TEST_F(CustomsTab, WithAHundredMediaTypesAddWaitsForADeletion) {
  for (int number = 1; number <= 100; ++number) Media(("M" + std::to_string(number)).c_str());
  OpenTab();
  EXPECT_EQ("---", Buttons("Cmt"));
  Select(kMedia, {"M10", "M100"});
  Press("CmtButtonDelete", "ConfirmationDialog");
  ClickOn(G_ConfirmationWindow_helper->yes_button);
  EXPECT_EQ("A--", Buttons("Cmt"));
  EXPECT_EQ(98, G_PropTabCustoms_helper->medias.number_defined);
}

TEST_F(CustomsTab, WithoutTheQuestionDeleteCountsOneAndLeavesTheSetupTabAlone) {
  for (int number = 1; number <= 8; ++number) Paper(("P" + std::to_string(number)).c_str());
  OpenTab();
  Select(kPaper, {"P1", "P2"});
  Confirmation = 0;
  ButtonDeleteCpsPressed();
  Confirmation = 1;
  EXPECT_EQ(nullptr, G_ConfirmationWindow_helper);
  EXPECT_EQ((Strings{"P3", "P4", "P5", "P6", "P7", "P8"}), Names(kPaper));
  EXPECT_EQ(Names(kPaper), Keys(G_QueueCustomPapers_hash));
  EXPECT_EQ(7, G_PropTabCustoms_helper->papers.number_defined);
  EXPECT_EQ("A--", Buttons("Cps"));
  EXPECT_EQ(10U, Rows("PaperSize").size());
}

TEST_F(CustomsTab, DeleteWithoutAListOfRowsIsReported) {
  Paper("One");
  OpenTab();
  const Owned<CList> rows = std::move(G_CpsSelections);
  testing::internal::CaptureStderr();
  Confirmation = 0;
  ButtonDeleteCpsPressed();
  Confirmation = 1;
  EXPECT_EQ(CatalogueText("ERR_UNEXPECTED2", {"CSelection"}) + "\n",
            testing::internal::GetCapturedStderr());
  testing::internal::CaptureStderr();
  ButtonDeleteCpsPressed();
  ButtonYESConfirmationPressed();
  EXPECT_EQ(CatalogueText("ERR_UNEXPECTED2", {"CSelection"}) + "\n",
            testing::internal::GetCapturedStderr());
  EXPECT_EQ(nullptr, G_ConfirmationWindow_helper);
  EXPECT_EQ(1, G_PropTabCustoms_helper->papers.number_defined);
}

TEST_F(CustomsTab, APrinterWithoutLimitsTakesNoCustomPapersButGivesThemUp) {
  Printer()->custom_paper.reset();
  Paper("One");
  OpenTab();
  Select(kPaper, {"One"});
  EXPECT_EQ("--D", Buttons("Cps"));
  EXPECT_EQ("A--", Buttons("Cmt"));
  Press("CpsButtonDelete", "ConfirmationDialog");
  ClickOn(G_ConfirmationWindow_helper->yes_button);
  EXPECT_EQ("---", Buttons("Cps"));
  EXPECT_EQ(Strings{}, Keys(G_QueueCustomPapers_hash));
}

TEST_F(CustomsTab, AnAddedRowIsNotSelectedAndASelectedOneIsAlone) {
  Paper("One");
  OpenTab();
  Select(kPaper, {"One"});
  AddCustomPaper("Two", 300, 400);
  EXPECT_EQ(1, AddItemInCpsCListWidget("Two"));
  EXPECT_EQ(Strings{"One"}, Selected(kPaper));
  UnselectAllAndSelectOneInCpsCList(1);
  EXPECT_EQ(Strings{"Two"}, Selected(kPaper));
  UnselectAllAndSelectOneInCpsCList(7);
  EXPECT_EQ(Strings{}, Selected(kPaper));
  AddCustomMedia("Gloss");
  EXPECT_EQ(0, AddItemInCmtCListWidget("Gloss"));
  UnselectAllAndSelectOneInCmtCList(0);
  EXPECT_EQ(Strings{"Gloss"}, Selected(kMedia));
}

TEST_F(CustomsTab, CancelOfTheWindowForgetsTheTab) {
  Paper("One");
  OpenTab();
  ButtonCancelPropertiesPressed();
  EXPECT_EQ(nullptr, G_PropTabCustoms_helper);
  EXPECT_EQ(nullptr, G_CpsSelections);
  EXPECT_EQ(nullptr, G_CmtSelections);
  ASSERT_NE(nullptr, HashValue<CPrintQueue>(G_Queues_hash, "lp1"));
}

}  // namespace
