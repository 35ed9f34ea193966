// The pages of the properties window are built when they are needed, and whoever looks at them
// cannot tell.

#include "OptionCombos.h"
#include "PropTabCustoms.h"
#include "PropTabDestination.h"
#include "PropTabFeatures.h"
#include "PropTabOptions.h"
#include "PropTabOutput.h"
#include "PropTabSetup.h"
#include "PropTabTextOptions.h"
#include "propertiestest.h"

namespace {

using Strings = std::vector<std::string>;

constexpr char kSixPictures[] = "vek41051";

class PropertiesPages : public PropertiesTest {
 protected:
  void SetUp() override {
    PropertiesTest::SetUp();
    G_ProgName = kModeAdministration;
    MakeWholePrinter(PafFeature("*PageSize", {{"A4", "A4 sheet"}, {"Letter", "US Letter"}}) +
                     PafFeature("*Duplex", {{"None", "Off"}, {"Long", "Long edge"}}) +
                     PafFeature("*OutputBin", {{"Top", "Top bin"}, {"Side", "Side bin"}}) +
                     PafFeature("*Orientation", {{"Portrait", "Upright"}, {"Landscape", "Lying"}}) +
                     "#ccc\n#f1\n*Duplex\n#o1\nLong\n#f2\n*OutputBin\n#o2\nSide\n#end_ccc\n");
  }

  // The pages, without the first, that are there.
  static Strings Built() {
    Strings built;
    if (G_PropTabSetup_helper != nullptr) built.emplace_back("Setup");
    if (G_PropTabOutput_helper != nullptr) built.emplace_back("Output");
    if (G_PropTabOptions_helper != nullptr) built.emplace_back("Options");
    if (G_PropTabDestination_helper != nullptr) built.emplace_back("Destination");
    if (G_PropTabFeatures_helper != nullptr) built.emplace_back("Features");
    if (G_PropTabCustoms_helper != nullptr) built.emplace_back("Customs");
    if (G_PropTabTextOptions_helper != nullptr) built.emplace_back("Fonts");
    return built;
  }

  static GtkWidget *ScrolledPlace(int page) {
    return gtk_notebook_get_nth_page(GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook), page);
  }

  // Whether a page is seen whole in its place.
  static bool IsWhole(int page) {
    for (GtkAdjustment *range :
         {gtk_scrolled_window_get_hadjustment(GTK_SCROLLED_WINDOW(ScrolledPlace(page))),
          gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(ScrolledPlace(page)))}) {
      if (gtk_adjustment_get_upper(range) > gtk_adjustment_get_page_size(range)) return false;
    }
    return true;
  }

  std::pair<int, int> Size() const {
    std::pair<int, int> size;
    gtk_window_get_size(GTK_WINDOW(window_), &size.first, &size.second);
    return size;
  }

  // Everything that the queue would be saved with.
  static Strings Saved() {
    Strings saved;
    const CPrintQueue *queue = HashValue<CPrintQueue>(G_Queues_hash, "lp1");
    for (const auto [feature, value] : Pairs<CString>(queue->Options.get())) {
      saved.push_back(std::string(feature) + "=" + fGet_CString_Value_Function(value));
    }
    return saved;
  }
};

TEST_F(PropertiesPages, AreNotBuiltWhenTheWindowIsMadeButForTheFirst) {
  MakeWindow({});
  EXPECT_NE(nullptr, lookup_widget(window_, "GeneralVbox"));
  EXPECT_EQ(Strings{}, Built());
  EXPECT_EQ(8, gtk_notebook_get_n_pages(GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook)));
}

TEST_F(PropertiesPages, AreBuiltOneATurnInOrderOnceTheWindowIsDrawn) {
  MakeWindow({});
  gtk_widget_show(window_);
  const Strings all = {"Setup", "Output", "Options", "Destination", "Features", "Customs", "Fonts"};
  Strings seen;
  while (!ArePropertiesPagesBuilt()) {
    gtk_main_iteration();
    const Strings built = Built();
    ASSERT_LE(built.size(), seen.size() + 1);
    ASSERT_EQ(Strings(all.begin(), all.begin() + static_cast<int>(built.size())), built);
    ASSERT_TRUE(built.empty() || gtk_widget_get_mapped(window_) != FALSE);
    seen = built;
  }
  EXPECT_EQ(all, seen);
}

TEST_F(PropertiesPages, ComplainOfNothingOnAPrinterThatHasWhatTheyList) {
  testing::internal::CaptureStderr();
  Open(PlaceOf(Page::kGeneral));
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

TEST_F(PropertiesPages, AreBuiltWhenTheUserGoesToThem) {
  MakeWindow({});
  SwitchTo(PlaceOf(Page::kDestination));
  EXPECT_EQ(Strings{"Destination"}, Built());
  GtkWidget *entry = Named("JobNameEntry");
  NeedAllPropertiesPages();
  SwitchTo(PlaceOf(Page::kOutput));
  SwitchTo(PlaceOf(Page::kDestination));
  EXPECT_EQ(entry, Named("JobNameEntry"));
}

TEST_F(PropertiesPages, BringThePageThatTheyChangeAlong) {
  MakeWindow({});
  SwitchTo(PlaceOf(Page::kCustoms));
  EXPECT_EQ((Strings{"Setup", "Customs"}), Built());
}

TEST_F(PropertiesPages, AreNotBuiltAnyMoreOnceTheWindowIsClosed) {
  MakeWindow({});
  gtk_widget_show(window_);
  ASSERT_TRUE(RunUntil([] { return Built().size() == 2; }));
  ButtonCancelPropertiesPressed();
  RunPending();
  NeedPropertiesPage(PlaceOf(Page::kOptions));
  EXPECT_EQ(Strings{}, Built());
  EXPECT_FALSE(ArePropertiesPagesBuilt());
  MakeWindow({});
  EXPECT_EQ(Strings{}, Built());
}

TEST_F(PropertiesPages, AreNotBuiltOfAWindowThatIsDestroyedFromOutside) {
  MakeWindow({});
  gtk_widget_show(window_);
  ASSERT_TRUE(RunUntil([] { return Built().size() == 1; }));
  g_object_ref(window_);
  gtk_widget_destroy(window_);
  RunPending();
  EXPECT_EQ(Strings{"Setup"}, Built());
  ButtonCancelPropertiesPressed();
  g_object_unref(window_);
}

TEST_F(PropertiesPages, AreAllBuiltBeforeApplyReadsThem) {
  G_ProgName = kModePrintTool;
  MakeWindow({{"*JobName", "Plan"}, {"*UserName", "anna"}, {"*NrCopies", "3"}});
  ButtonApplyPropertiesPressed();
  EXPECT_TRUE(ArePropertiesPagesBuilt());
  EXPECT_EQ((Strings{"*JobName=Plan", "*NrCopies=3", "*UserName=anna"}), Saved());
}

TEST_F(PropertiesPages, LeaveTheSameWithOkWhetherTheyWereSeenOrNot) {
  G_ProgName = kModePrintTool;
  const Settings settings = {{"*JobName", "Plan"}, {"*Nup", "4"}, {"*NupOrder", "Down"}};
  MakeWindow(settings, "text");
  ButtonOKPropertiesPressed();
  ASSERT_EQ(nullptr, G_PropertiesWindow_helper);
  const Strings unseen = Saved();
  Open(PlaceOf(Page::kOptions), settings, "text");
  ButtonOKPropertiesPressed();
  EXPECT_EQ(Saved(), unseen);
  EXPECT_EQ("Down", Stored("*NupOrder"));
}

TEST_F(PropertiesPages, ChangeTheWorkCopyWhenTheWindowOpensOnly) {
  MakeWindow({{"*PageSize", "Unknown"}});
  EXPECT_EQ("A4", QueueFeatureValue("*PageSize"));
  EXPECT_EQ("1", QueueFeatureValue("*Nup"));
  EXPECT_EQ("Left", QueueFeatureValue("*NupOrder"));
  EXPECT_EQ("0", QueueFeatureValue("*Booklet"));
  HashRemove(G_QueueFeatures_hash, "*NupOrder");
  NeedAllPropertiesPages();
  EXPECT_EQ("", QueueFeatureValue("*NupOrder"));
}

TEST_F(PropertiesPages, ShowWhatWasChosenBeforeTheyWereBuilt) {
  MakeWindow({});
  SwitchTo(PlaceOf(Page::kSetup));
  gtk_combo_box_set_active(GTK_COMBO_BOX(OptionCombo("*Duplex")), 0);
  EXPECT_EQ("Long", QueueFeatureValue("*Duplex"));
  SwitchTo(PlaceOf(Page::kOutput));
  EXPECT_EQ((Strings{"!   Side bin", "    Top bin"}), Rows("OutputBin"));
  EXPECT_EQ("    Top bin", Text("OutputBinComboEntry"));
}

TEST_F(PropertiesPages, ShowTheOrdersOfASheetThatWasTurnedBeforeTheyWereBuilt) {
  MakeWindow({{"*Nup", "2"}}, "text");
  SwitchTo(PlaceOf(Page::kOutput));
  gtk_combo_box_set_active(GTK_COMBO_BOX(OptionCombo("*Orientation")), 0);
  SwitchTo(PlaceOf(Page::kOptions));
  EXPECT_FALSE(gtk_widget_get_visible(Named("NupLeftVbox")));
  SwitchTo(PlaceOf(Page::kOutput));
  gtk_combo_box_set_active(GTK_COMBO_BOX(OptionCombo("*Orientation")), 1);
  EXPECT_TRUE(gtk_widget_get_visible(Named("NupLeftVbox")));
}

TEST_F(PropertiesPages, LeaveTheWindowItsSizeAndAreSeenWhole) {
  for (const ProgramMode program : {kModeAdministration, kModePrintTool}) {
    for (const char *language : {"postscript", "text"}) {
      G_ProgName = program;
      TakePrinter(kSixPictures);
      MakeWindow({}, language);
      gtk_widget_show(window_);
      ASSERT_TRUE(RunUntil([&] { return gtk_widget_get_mapped(window_) != FALSE; }));
      const std::pair<int, int> size = Size();
      ASSERT_TRUE(RunUntil(ArePropertiesPagesBuilt));
      const int pages = gtk_notebook_get_n_pages(GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook));
      for (int page = 0; page < pages; ++page) {
        SwitchTo(page);
        RunPending();
        EXPECT_TRUE(IsWhole(page)) << program << " " << language << " " << page;
        EXPECT_EQ(size, Size()) << program << " " << language << " " << page;
      }
      EXPECT_LE(size.first, 1024);
      EXPECT_LE(size.second, 768);
      ButtonCancelPropertiesPressed();
    }
  }
}

// Whether the label underlines a letter now.
bool IsUnderlined(GtkWidget *label) {
  PangoAttrList *attributes = pango_layout_get_attributes(gtk_label_get_layout(GTK_LABEL(label)));
  GSList *found = attributes == nullptr ? nullptr : pango_attr_list_get_attributes(attributes);
  bool underlined = false;
  for (GSList *link = found; link != nullptr; link = link->next) {
    const auto *attribute = static_cast<PangoAttribute *>(link->data);
    underlined = underlined || attribute->klass->type == PANGO_ATTR_UNDERLINE;
  }
  g_slist_free_full(found, [](gpointer attribute) {
    pango_attribute_destroy(static_cast<PangoAttribute *>(attribute));
  });
  return underlined;
}

TEST_F(PropertiesPages, ThatAreBuiltLaterUnderlineTheirLettersWithAltOnlyToo) {
  TakePrinter(kSixPictures);
  MakeWindow({});
  ShowWindowOf(window_);
  ASSERT_TRUE(RunUntil(ArePropertiesPagesBuilt));
  SwitchTo(PlaceOf(Page::kSetup));
  RunPending();
  const Strings labels = {"PaperSizeLabel", "PaperTypeLabel", "DuplexLabel", "NrCopiesLabel"};
  for (const bool asked : {false, true}) {
    gtk_window_set_mnemonics_visible(GTK_WINDOW(window_), asked ? TRUE : FALSE);
    for (const std::string &name : labels) {
      EXPECT_EQ(asked, IsUnderlined(Named(name.c_str()))) << name;
    }
  }
}

TEST_F(PropertiesPages, APageThatDoesNotFitShowsItsScrollBarAllTheTime) {
  const int page = PlaceOf(Page::kSetup);
  TakePrinter(kSixPictures);
  Open(page);
  auto *place = GTK_SCROLLED_WINDOW(ScrolledPlace(page));
  GtkWidget *bar = gtk_scrolled_window_get_vscrollbar(place);
  EXPECT_FALSE(gtk_widget_get_mapped(bar));
  gtk_window_resize(GTK_WINDOW(window_), Size().first, 1);
  ASSERT_TRUE(RunUntil([&] { return !IsWhole(page); }));
  EXPECT_TRUE(RunUntil([&] { return gtk_widget_get_mapped(bar) != FALSE; }));
  EXPECT_FALSE(gtk_scrolled_window_get_overlay_scrolling(place));
}

}  // namespace
