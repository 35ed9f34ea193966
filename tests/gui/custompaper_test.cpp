// The dialog of custom paper sizes: names, units, ranges, what OK stores.
#include "ccpsparams.h"
#include "customstest.h"
#include "must.h"
#include "queuelistreader.h"
#include "queuelistwriter.h"

namespace {

class CustomPaper : public CustomsTest {
 protected:
  static const CpsParamWindowHelper &Dialog() { return *G_CpsParamWindow_helper; }

  void OpenAdd() { ASSERT_NE(nullptr, Press("CpsButtonAdd", "CpsParamWindow")); }

  void OpenEdit(const char *name) {
    Select(kPaper, {name});
    ASSERT_NE(nullptr, Press("CpsButtonEdit", "CpsParamWindow"));
  }

  static GtkWidget *Unit(const char *name) { return lookup_widget(Dialog().window, name); }

  static std::string Range(GtkWidget *label) { return gtk_label_get_text(GTK_LABEL(label)); }

  // "<width> <length>" as the open dialog shows them.
  static std::string Measures() { return In(Dialog().width_spin) + " " + In(Dialog().length_spin); }

  // "<width> <length>" of the queue's paper, in pels.
  static std::string Stored(const char *name) {
    const auto *params = HashValue<CCpsParams>(G_QueueCustomPapers_hash, name);
    if (params == nullptr) return "(none)";
    std::string text = std::to_string(params->width) + " " + std::to_string(params->length);
    size_t zeros = 0;
    while ((zeros = text.find(".000000")) != std::string::npos) text.erase(zeros, 7);
    return text;
  }

  static std::string RefusedWith() {
    return TakeErrorKey(
        {"DCPS_Dlg_Paper_Error1", "DCPS_Dlg_Paper_Error2", "DCPS_Dlg_Paper_Error3"});
  }

  // Presses OK on a name that is refused; the dialog stays with the focus on the name.
  static std::string Refuse(const char *name) {
    TypeInto(Dialog().name_entry, name);
    gtk_widget_grab_focus(Dialog().width_spin);
    Key("Return");
    const std::string message = RefusedWith();
    EXPECT_NE(nullptr, G_CpsParamWindow_helper);
    EXPECT_EQ(Dialog().name_entry, gtk_window_get_focus(GTK_WINDOW(Dialog().window)));
    FocusWindowOf(Dialog().window);
    RunPending();
    return message;
  }
};

}  // namespace

TEST_F(CustomPaper, AnAddDialogIsEmptyAndStartsWithTheSmallestSizeInPels) {
  OpenTab();
  OpenAdd();
  EXPECT_EQ(CatalogueText("DEF_WND_CPS_PARAM_TITLE"),
            gtk_window_get_title(GTK_WINDOW(Dialog().window)));
  EXPECT_EQ("", In(Dialog().name_entry));
  EXPECT_EQ("288 360", Measures());
  EXPECT_EQ("( 288 - 864 points )", Range(Dialog().width_range));
  EXPECT_EQ("( 360 - 1296 points )", Range(Dialog().length_range));
  EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(Dialog().window)));
}

TEST_F(CustomPaper, TheNameEntryDropsForbiddenCharactersAsTheyAreTyped) {
  OpenTab();
  OpenAdd();
  TypeInto(Dialog().name_entry, "A4 x");
  EXPECT_EQ("A4x", In(Dialog().name_entry));
  TypeInto(Dialog().name_entry, "a_b-c.d`e~");
  EXPECT_EQ("abcd`e~", In(Dialog().name_entry));
  TypeInto(Dialog().name_entry, "Bü ro");
  XInputType("日");
  RunPending();
  EXPECT_EQ("Büro日", In(Dialog().name_entry));
}

TEST_F(CustomPaper, TheNameEntryDropsForbiddenCharactersOfPastedText) {
  OpenTab();
  OpenAdd();
  PasteInto(Dialog().name_entry, "half/sheet");
  EXPECT_EQ("halfsheet", In(Dialog().name_entry));
  PasteInto(Dialog().name_entry, "'=,!@#$%^&*()-_+[]{}:;\"\\|.<>/? ");
  EXPECT_EQ("", In(Dialog().name_entry));
  PasteInto(Dialog().name_entry, "first\nsecond");
  EXPECT_EQ("first", In(Dialog().name_entry)) << "a name is one line";
  gtk_editable_set_position(GTK_EDITABLE(Dialog().name_entry), 2);
  gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), "é.é", -1);
  Key("ctrl+v");
  XInputType("x");
  RunPending();
  EXPECT_EQ("fiééxrst", In(Dialog().name_entry)) << "the cursor stands behind what was kept";
}

TEST_F(CustomPaper, OkStoresTheSizeListsItAndOffersItOnTheSetupTab) {
  Paper("Old");
  OpenTab();
  Select(kPaper, {"Old"});
  OpenAdd();
  TypeInto(Dialog().name_entry, "Ticket");
  TypeInto(Dialog().width_spin, "400");
  TypeInto(Dialog().length_spin, "500");
  Key("Return");
  EXPECT_EQ(nullptr, G_CpsParamWindow_helper);
  EXPECT_EQ(nullptr, WindowNamed("CpsParamWindow"));
  EXPECT_EQ("400 500", Stored("Ticket"));
  EXPECT_EQ((Strings{"Old", "Ticket"}), Names(kPaper));
  EXPECT_EQ(Strings{"Ticket"}, Selected(kPaper));
  EXPECT_EQ("AED", Buttons("Cps"));
  EXPECT_EQ(2, G_PropTabCustoms_helper->papers.number_defined);
  EXPECT_EQ((Strings{"    A4 sheet", "    US Letter", "    Old", "    Ticket"}), Rows("PaperSize"));
  EXPECT_EQ("A4", QueueFeatureValue("*PageSize"));
}

TEST_F(CustomPaper, ANewSizeIsMarkedLikeEveryCustomSize) {
  Setting("*Duplex", "Long");
  OpenTab();
  OpenAdd();
  TypeInto(Dialog().name_entry, "Ticket");
  Key("Return");
  EXPECT_EQ((Strings{"    A4 sheet", "    US Letter", "!   Ticket"}), Rows("PaperSize"));
}

TEST_F(CustomPaper, EscapeAndClosingTheWindowStoreNothing) {
  OpenTab();
  OpenAdd();
  TypeInto(Dialog().name_entry, "Ticket");
  Key("Escape");
  EXPECT_EQ(nullptr, G_CpsParamWindow_helper);
  OpenAdd();
  EXPECT_EQ("", In(Dialog().name_entry));
  gtk_window_close(GTK_WINDOW(Dialog().window));
  EXPECT_TRUE(RunUntil([] { return G_CpsParamWindow_helper == nullptr; }));
  OpenAdd();
  ClickOn(lookup_widget(Dialog().window, "CancelButton"));
  EXPECT_EQ(nullptr, G_CpsParamWindow_helper);
  EXPECT_EQ(Strings{}, Keys(G_QueueCustomPapers_hash));
  EXPECT_EQ(Strings{}, Names(kPaper));
}

TEST_F(CustomPaper, ReturnOnHelpAndCancelStoresNothing) {
  OpenTab();
  OpenAdd();
  TypeInto(Dialog().name_entry, "Ticket");
  gtk_widget_grab_focus(lookup_widget(Dialog().window, "HelpButton"));
  Key("Return");
  GtkWidget *help = WindowNamed("KPXHelpDialog");
  ASSERT_NE(nullptr, help);
  gtk_widget_destroy(help);
  FocusWindowOf(Dialog().window);
  gtk_widget_grab_focus(lookup_widget(Dialog().window, "CancelButton"));
  Key("Return");
  EXPECT_EQ(nullptr, G_CpsParamWindow_helper);
  EXPECT_EQ(Strings{}, Keys(G_QueueCustomPapers_hash));
}

TEST_F(CustomPaper, HelpShowsTheDialogsText) {
  OpenTab();
  OpenAdd();
  Key("F1");
  GtkWidget *help = WindowNamed("KPXHelpDialog");
  ASSERT_NE(nullptr, help);
  EXPECT_NE("", TextOf(lookup_widget(help, "HelpText")));
  gtk_widget_destroy(help);
  EXPECT_NE(nullptr, G_CpsParamWindow_helper);
}

TEST_F(CustomPaper, AnEmptyNameIsRefused) {
  OpenTab();
  OpenAdd();
  EXPECT_EQ("DCPS_Dlg_Paper_Error1", Refuse(""));
  EXPECT_EQ("DCPS_Dlg_Paper_Error1", Refuse(" - "));
}

TEST_F(CustomPaper, TheNameOfAnotherCustomSizeIsRefused) {
  Paper("Ticket");
  OpenTab();
  OpenAdd();
  EXPECT_EQ("DCPS_Dlg_Paper_Error2", Refuse("Ticket"));
  Key("Escape");
  Select(kPaper, {"Ticket"});
  OpenAdd();
  EXPECT_EQ("DCPS_Dlg_Paper_Error2", Refuse("Ticket")) << "adding while it is selected";
}

TEST_F(CustomPaper, TheDisplayTextOrIdentifierOfAStandardSizeIsRefused) {
  const std::string paf =
      "##Name:x\n##PPD:x\n" + PafFeature("*PageSize", {{"A4", "A4Sheet"}, {"Letter", "Letter"}});
  LineReader lines(paf);
  Printer()->features = std::move(std::get<PafContent>(ReadPaf(lines)).features);
  OpenTab();
  OpenAdd();
  EXPECT_EQ("DCPS_Dlg_Paper_Error3", Refuse("A4"));
  EXPECT_EQ("DCPS_Dlg_Paper_Error3", Refuse("A4Sheet"));
  EXPECT_EQ("DCPS_Dlg_Paper_Error3", Refuse("Letter"));
  TypeInto(Dialog().name_entry, "letter");
  Key("Return");
  EXPECT_EQ("288 360", Stored("letter"));
}

TEST_F(CustomPaper, EveryNameIsRefusedInSilenceOnAQueueWithoutPageSize) {
  OpenTab();
  HashRemove(G_QueueFeatures_hash, "*PageSize");
  OpenAdd();
  EXPECT_EQ("(none)", Refuse("Ticket"));
  EXPECT_EQ(Strings{}, Keys(G_QueueCustomPapers_hash));
}

TEST_F(CustomPaper, AnEditDialogShowsTheSizeAndMayKeepItsName) {
  Paper("Ticket", 400, 500);
  Paper("Zeta");
  OpenTab();
  OpenEdit("Ticket");
  EXPECT_EQ("Ticket", In(Dialog().name_entry));
  EXPECT_EQ("400 500", Measures());
  TypeInto(Dialog().width_spin, "450");
  Key("Return");
  EXPECT_EQ(nullptr, G_CpsParamWindow_helper);
  EXPECT_EQ("450 500", Stored("Ticket"));
  EXPECT_EQ((Strings{"Zeta", "Ticket"}), Names(kPaper));
  EXPECT_EQ(Strings{"Ticket"}, Selected(kPaper));
  EXPECT_EQ("158.8 × 176.4", ListCell(List(kPaper), 1, 1));
  EXPECT_EQ(2, G_PropTabCustoms_helper->papers.number_defined);
  EXPECT_EQ(1, Confirmation);
  EXPECT_EQ(nullptr, WindowNamed("ConfirmationDialog"));
}

TEST_F(CustomPaper, AnEditedSizeMayNotTakeTheNameOfAnother) {
  Paper("Ticket", 400, 500);
  Paper("Zeta");
  OpenTab();
  OpenEdit("Ticket");
  EXPECT_EQ("DCPS_Dlg_Paper_Error2", Refuse("Zeta"));
  EXPECT_EQ((Strings{"Ticket", "Zeta"}), Keys(G_QueueCustomPapers_hash));
  EXPECT_EQ((Strings{"Ticket", "Zeta"}), Names(kPaper));
}

TEST_F(CustomPaper, AnEditedSizeInUseThatKeepsItsNameStaysInUse) {
  Paper("Ticket", 400, 500);
  Setting("*PageSize", "Ticket");
  OpenTab();
  OpenEdit("Ticket");
  TypeInto(Dialog().length_spin, "600");
  Key("Return");
  EXPECT_EQ("400 600", Stored("Ticket"));
  EXPECT_EQ("Ticket", QueueFeatureValue("*PageSize"));
  EXPECT_EQ("    Ticket", Text("PaperSizeComboEntry"));
  EXPECT_EQ((Strings{"!   Long edge", "    Off"}), Rows("Duplex"));
}

TEST_F(CustomPaper, ARenamedSizeInUseGivesWayToThePrintersDefault) {
  Paper("Ticket");
  Setting("*PageSize", "Ticket");
  OpenTab();
  EXPECT_EQ((Strings{"!   Long edge", "    Off"}), Rows("Duplex"));
  OpenEdit("Ticket");
  TypeInto(Dialog().name_entry, "Label");
  Key("Return");
  EXPECT_EQ(Strings{"Label"}, Keys(G_QueueCustomPapers_hash));
  EXPECT_EQ(Strings{"Label"}, Names(kPaper));
  EXPECT_EQ("A4", QueueFeatureValue("*PageSize"));
  EXPECT_EQ("    A4 sheet", Text("PaperSizeComboEntry"));
  EXPECT_EQ((Strings{"    A4 sheet", "    US Letter", "    Label"}), Rows("PaperSize"));
  EXPECT_TRUE(ShowsPicture("*PageSize", "PageSize_A4.xpm"));
  EXPECT_EQ((Strings{"    Long edge", "    Off"}), Rows("Duplex"));
}

TEST_F(CustomPaper, ANameThatNobodyCanTypeIsShownAndMayBeKept) {
  Paper("half-sheet 2");
  OpenTab();
  OpenEdit("half-sheet 2");
  EXPECT_EQ("half-sheet 2", In(Dialog().name_entry));
  TypeInto(Dialog().width_spin, "300");
  Key("Return");
  EXPECT_EQ("300 792", Stored("half-sheet 2"));
}

TEST_F(CustomPaper, UnitsConvertWhatIsShownThroughWholePels) {
  Paper("Ticket", 612, 595);
  OpenTab();
  OpenEdit("Ticket");
  ClickOn(Unit("MillimetersRadiobutton"));
  EXPECT_EQ("215.9 209.9", Measures());
  EXPECT_EQ("( 101.6 - 304.8 millimetres )", Range(Dialog().width_range));
  EXPECT_EQ("( 127.0 - 457.2 millimetres )", Range(Dialog().length_range));
  ClickOn(Unit("InchesRadiobutton"));
  EXPECT_EQ("8.50 8.26", Measures());
  EXPECT_EQ("( 4.00 - 12.00 inches )", Range(Dialog().width_range));
  EXPECT_EQ("( 5.00 - 18.00 inches )", Range(Dialog().length_range));
  TypeInto(Dialog().length_spin, "8.27");  // 595.44 pels
  ClickOn(Unit("PelsRadiobutton"));
  EXPECT_EQ("612 595", Measures());
  EXPECT_EQ("( 288 - 864 points )", Range(Dialog().width_range));
}

TEST_F(CustomPaper, SizesInOtherUnitsAreStoredInWholePels) {
  OpenTab();
  OpenAdd();
  TypeInto(Dialog().name_entry, "Metric");
  ClickOn(Unit("MillimetersRadiobutton"));
  TypeInto(Dialog().width_spin, "210");
  TypeInto(Dialog().length_spin, "297");
  Key("Return");
  EXPECT_EQ("595 842", Stored("Metric"));
  OpenAdd();
  EXPECT_EQ("288 360", Measures()) << "every dialog starts in pels";
  TypeInto(Dialog().name_entry, "Imperial");
  ClickOn(Unit("InchesRadiobutton"));
  TypeInto(Dialog().width_spin, "8.5");
  TypeInto(Dialog().length_spin, "11");
  Key("Return");
  EXPECT_EQ("612 792", Stored("Imperial"));
}

TEST_F(CustomPaper, UnitsAreChosenWithTheArrowKeysToo) {
  OpenTab();
  OpenAdd();
  gtk_widget_grab_focus(Unit("PelsRadiobutton"));
  Key("Right");
  EXPECT_EQ("4.00 5.00", Measures());
  Key("Right");
  EXPECT_EQ("101.6 127.0", Measures());
}

TEST_F(CustomPaper, TypedMeasuresOutOfRangeAreBroughtBackIntoIt) {
  OpenTab();
  OpenAdd();
  TypeInto(Dialog().name_entry, "Wide");
  TypeInto(Dialog().width_spin, "99999");
  TypeInto(Dialog().length_spin, "1");
  Key("Return");
  EXPECT_EQ("864 360", Stored("Wide"));
}

TEST_F(CustomPaper, APrinterWithoutALeastSizeTakesOnePelAndTheListCanBeReadAgain) {
  CHash *limits = Printer()->custom_paper.get();
  Must(HashPutText(limits, "MinWidth", "0"));
  Must(HashPutText(limits, "MinLength", "0.3"));
  OpenTab();
  OpenAdd();
  EXPECT_EQ("( 0 - 864 points )", Range(Dialog().width_range));
  EXPECT_EQ("1 1", Measures());
  ClickOn(Unit("InchesRadiobutton"));
  TypeInto(Dialog().width_spin, "0");
  ClickOn(Unit("MillimetersRadiobutton"));
  TypeInto(Dialog().length_spin, "0");
  TypeInto(Dialog().name_entry, "Least");
  EXPECT_EQ("0.4 0.4", Measures());
  Key("Return");
  EXPECT_EQ("1 1", Stored("Least"));
  const Owned<CHash> queues = CreateHash();
  Must(HashPut(queues.get(), "lp1", CloneOf(G_CurrentQueue.get())));
  int left_out = 0;
  const std::string list = QueueListText(queues.get(), &left_out);
  EXPECT_NE(std::string::npos,
            list.find("Least\n#custom_paper_width\n1\n#custom_paper_length\n1\n"))
      << list;
  const Owned<CHash> read = CreateHash();
  EXPECT_FALSE(ReadQueueList(list, read.get()));
  EXPECT_NE(nullptr, HashFind(read.get(), "lp1"));
}

TEST_F(CustomPaper, ArrowAndPageKeysStepByTheUnitsStep) {
  OpenTab();
  OpenAdd();
  const auto stepped = [](const char *key) {
    gtk_widget_grab_focus(Dialog().width_spin);
    Key(key);
    return In(Dialog().width_spin);
  };
  EXPECT_EQ("289", stepped("Up"));
  EXPECT_EQ("299", stepped("Page_Up"));
  ClickOn(Unit("InchesRadiobutton"));
  EXPECT_EQ("4.16", stepped("Up"));
  EXPECT_EQ("4.26", stepped("Page_Up"));
  ClickOn(Unit("MillimetersRadiobutton"));
  EXPECT_EQ("108.4", stepped("Up"));
  EXPECT_EQ("107.4", stepped("Page_Down"));
}

TEST_F(CustomPaper, AMeasureIsANumber) {
  OpenTab();
  OpenAdd();
  TypeInto(Dialog().width_spin, "4x0y0");
  EXPECT_EQ("400", In(Dialog().width_spin));
}

TEST_F(CustomPaper, PointAndCommaBothStandForTheDecimalPointOfTheLocale) {
  OpenTab();
  OpenAdd();
  TypeInto(Dialog().width_spin, "4.0,0");
  EXPECT_EQ("400", In(Dialog().width_spin)) << "pels are whole";
  ClickOn(Unit("MillimetersRadiobutton"));
  for (const char *typed : {"210.5", "210,5", "210.,5"}) {
    TypeInto(Dialog().width_spin, typed);
    Key("Tab");
    EXPECT_EQ("210.5", In(Dialog().width_spin)) << typed;
  }
}

TEST_F(CustomPaper, TheEighthSizeIsTheLast) {
  for (int number = 1; number <= 7; ++number) Paper(("P" + std::to_string(number)).c_str());
  OpenTab();
  EXPECT_EQ("A--", Buttons("Cps"));
  OpenAdd();
  TypeInto(Dialog().name_entry, "P8");
  Key("Return");
  EXPECT_EQ("-ED", Buttons("Cps"));
  OpenEdit("P3");
  TypeInto(Dialog().name_entry, "P9");
  Key("Return");
  EXPECT_EQ("-ED", Buttons("Cps")) << "an edited size takes the place of the old one";
  EXPECT_EQ(8, G_PropTabCustoms_helper->papers.number_defined);
}

TEST_F(CustomPaper, EveryFieldIsNamedForAssistiveTechnology) {
  OpenTab();
  OpenAdd();
  GtkWidget *properties = window_;
  window_ = Dialog().window;
  EXPECT_TRUE(IsLabelledBy("CpsNameEntry", "CpsNameLabel"));
  EXPECT_TRUE(IsLabelledBy("CpsWidthSpinbutton", "CpsWidthLabel"));
  EXPECT_TRUE(IsLabelledBy("CpsLengthSpinbutton", "CpsLengthLabel"));
  window_ = properties;
}
