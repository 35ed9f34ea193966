// Random changes through the properties windows of both programs, on the printers that ship and on
// ten that others described: after every one the marks are those that one walk over all constraints
// finds, and the toolkit never complains.
//
// KPX_SEED takes other random numbers, KPX_LONG=1 ten times as many changes.

#include <algorithm>
#include <cstdlib>
#include <map>

#include "AdminWindow.h"
#include "AdminWindowFct.h"
#include "ComboWidget.h"
#include "InstallableLists.h"
#include "ListWidget.h"
#include "OptionCombos.h"
#include "Pixmaps.h"
#include "PropertiesPages.h"
#include "PropertiesWindow.h"
#include "PropertiesWindowFct.h"
#include "ToolWindow.h"
#include "chelp.h"
#include "cprinter.h"
#include "cprinters.h"
#include "featuretable.h"
#include "fontmap.h"
#include "foreignprinters.h"
#include "guisupport.h"
#include "markwalk.h"
#include "must.h"
#include "optionlists.h"
#include "paths.h"
#include "propertieswalker.h"
#include "queuesupport.h"

namespace {

using std::string;
using Strings = std::vector<string>;

constexpr int kChangesOfAPrinter = 320;  // of each program: 16 printers, 10,240 in all
constexpr int kLongFactor = 10;
constexpr int kStepsForAChange = 20;  // at most, on average
constexpr size_t kSample = 3;         // options asked for in the literal walk, a step
constexpr const char *kLanguages[] = {"postscript", "text", "pcl6"};

string g_where;       // seed, printer and step
string g_complaints;  // of the toolkit

GLogWriterOutput KeepComplaints(GLogLevelFlags level, const GLogField *fields, gsize count,
                                gpointer) {
  if ((level & (G_LOG_LEVEL_ERROR | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING)) == 0) {
    return G_LOG_WRITER_HANDLED;
  }
  gchar *text = g_log_writer_format_fields(level, fields, count, FALSE);
  g_complaints += g_where + ": " + text + "\n";
  std::fprintf(stderr, "%s: %s\n", g_where.c_str(), text);
  g_free(text);
  return G_LOG_WRITER_HANDLED;
}

string FromEnvironment(const char *name) {
  const char *value = std::getenv(name);
  return value == nullptr ? "" : value;
}

class PropertiesWalk : public GuiTest {
 protected:
  static void SetUpTestSuite() {
    GuiTest::SetUpTestSuite();
    add_pixmap_directory(kPixmapDir);
    // A complaint fails the test with what led to it instead of ending the program.
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK));
    g_log_set_writer_func(KeepComplaints, nullptr, nullptr);
  }

  void SetUp() override {
    if (!FromEnvironment("KPX_SEED").empty()) {
      seed_ = static_cast<unsigned>(std::stoul(FromEnvironment("KPX_SEED")));
    }
    if (FromEnvironment("KPX_LONG") == "1") changes_wanted_ *= kLongFactor;
    const string fontmap = ContentOf(kFontmapFile);
    LineReader fonts(fontmap);
    G_Fonts_hash = ReadFontmap(fonts);
    G_Help = CreateHelp(kInstalledHelp);
    fFillFromHelp_Function(G_Help.get());
  }

  void TearDown() override {
    CloseProgram();
    G_ProgName = kModeNeither;
    G_Printers_hash = nullptr;
    G_Help.reset();
    G_Fonts_hash.reset();
    GuiTest::TearDown();
  }

  void WalkShipped(ProgramMode program) {
    const string directory = string(kNlsDir) + "/enu/";
    Walk(program, directory + "ppds", directory + "pafs", 6);
  }

  void WalkForeign(ProgramMode program) {
    const TemporaryDirectory ppds;
    const TemporaryDirectory pafs;
    CopyForeignPpds(ppds);
    Walk(program, ppds.Path(), pafs.Path(), kForeignPrinters);
  }

 private:
  void Walk(ProgramMode program, const string &ppds, const string &pafs, size_t printers) {
    const Owned<CPrinters> catalogue = CreatePrinters(ppds.c_str(), pafs.c_str());
    ASSERT_EQ(1, fBuildPrinters_Function(catalogue.get()));
    G_Printers_hash = fGetPrinters_Function(catalogue.get());
    G_ProgName = program;
    size_t count = 0;
    for (const auto [name, printer] : Pairs<CPrinter>(G_Printers_hash)) {
      const char *language = kLanguages[count++ % std::size(kLanguages)];
      OpenProgram(name, language);
      WalkPrinter(string(name) + ", " + language, static_cast<unsigned>(count));
      CloseProgram();
      if (HasFailure()) break;
    }
    EXPECT_EQ(printers, count);
  }

  // The program's main window, with one queue, which is chosen.
  void OpenProgram(const char *printer, const char *language) {
    queues_ = CreateHash();
    org_queues_ = CreateHash();
    const Owned<CPrintQueue> queue = MakeQueue({"lp1", printer, language, "10.0.0.1"});
    Must(HashPut(queues_.get(), "lp1", CloneOf(queue.get())));
    Must(HashPut(org_queues_.get(), "lp1", CloneOf(queue.get())));
    G_Queues_hash = queues_.get();
    G_OrgQueues_hash = org_queues_.get();
    G_PrinterModel = 0;
    if (G_ProgName == kModeAdministration) {
      program_ = create_AdminWindow();
      UnselectAllAndSelectOneInQueuesCList(0);
    } else {
      program_ = create_ToolWindow();
    }
    gtk_widget_show(program_);
  }

  void CloseProgram() {
    ButtonCancelPropertiesPressed();
    if (program_ != nullptr) gtk_widget_destroy(program_);
    program_ = nullptr;
    G_KPXadminWindow_helper.reset();
    G_QueuesWindow_helper.reset();
    G_QueuesSelections.reset();
    G_FilesList.reset();
    G_Queues_hash = G_OrgQueues_hash = nullptr;
    RunPending();
  }

  void OpenProperties() {
    GtkWidget *window = create_PropertiesWindow();
    ASSERT_NE(nullptr, window);
    gtk_widget_show(window);
    ASSERT_TRUE(RunUntil(ArePropertiesPagesBuilt));
    RunPending();
  }

  void ShowEveryPage() {
    auto *notebook = GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook);
    for (int page = 0; page < gtk_notebook_get_n_pages(notebook); ++page) {
      gtk_notebook_set_current_page(notebook, page);
      RunPending();
    }
  }

  void WalkPrinter(const string &name, unsigned number) {
    const unsigned seed = seed_ * 1000 + number;
    random_.seed(seed);
    PropertiesWalker walker(seed);
    const string walk = name + ", KPX_SEED=" + std::to_string(seed_);
    g_where = walk;
    OpenProperties();
    ShowEveryPage();
    MarkWalk marks;
    string before = WorkCopy();
    Strings shown = Shown();
    int changes = 0;
    for (int step = 1; changes < changes_wanted_ && !HasFailure(); ++step) {
      ASSERT_LT(step, changes_wanted_ * kStepsForAChange) << walk << " changes too little";
      g_where = walk + ", step " + std::to_string(step);
      const string what = walker.Step();
      SCOPED_TRACE(g_where + ": " + what);
      if (G_PropertiesWindow_helper != nullptr && StoppedHalfWay(what) && before != WorkCopy()) {
        // Kept on purpose: the program refreshes nothing then. The user starts anew.
        EXPECT_EQ(shown, Shown());
        ButtonCancelPropertiesPressed();
      }
      if (G_PropertiesWindow_helper == nullptr) OpenProperties();
      RunPending();
      marks.Walk();
      CheckLists(marks);
      CheckInstallables(marks);
      EXPECT_EQ("", g_complaints);
      string after = WorkCopy();
      changes += after == before ? 0 : 1;
      shown = Shown();
      before = std::move(after);
    }
    EXPECT_GT(marks_seen_, 0U) << walk << " led to no mark";
    marks_seen_ = 0;
  }

  // What the lists' entries show.
  static Strings Shown() {
    Strings texts;
    for (const ListedFeature &listed : ListedFeatures()) {
      GtkWidget *combo = OptionCombo(listed.feature);
      if (combo != nullptr) texts.push_back(ComboText(combo));
    }
    return texts;
  }

  static bool LacksDefault(const CHash *features, const string &feature) {
    return G_GetPPDDefaultOptionForFeature(features, feature.c_str()) == nullptr;
  }

  // Whether a tab's Defaults met a feature that the printer has no default for.
  static bool StoppedHalfWay(const string &button) {
    if (button == "DefaultFeaturesButton") {
      const Strings installables = Keys(G_QueueInstallableOptions_hash);
      return std::any_of(installables.begin(), installables.end(), [](const string &feature) {
        return LacksDefault(G_PrinterInstallableOptions_hash, feature);
      });
    }
    static const std::map<string, Strings> tabs = {
        {"DefaultSetupButton", {"*PageSize", "*MediaType", "*InputSlot", "*Collate", "*Duplex"}},
        {"DefaultOutputButton",
         {"*OutputBin", "*Jog", "*Orientation", "*StapleLocation", "*Punch", "*EdgeToEdge"}},
        {"DefaultOptionsButton", {"*Resolution", "*OutputMode", "*HalfTone"}}};
    const auto tab = tabs.find(button);
    if (tab == tabs.end()) return false;
    return std::any_of(tab->second.begin(), tab->second.end(), [](const string &feature) {
      return LacksDefault(G_PrinterFeatures_hash, feature);
    });
  }

  // All of the work copy that the window changes.
  static string WorkCopy() {
    string text;
    for (const CHash *settings : {G_QueueFeatures_hash, G_QueueInstallableOptions_hash}) {
      for (const auto [name, value] : Pairs<CString>(settings)) {
        text += string(name) + "=" + TextOrNull(value) + "\n";
      }
    }
    for (const CHash *customs : {G_QueueCustomPapers_hash, G_QueueCustomMedias_hash}) {
      for (const string &name : Keys(customs)) text += name + "\n";
    }
    return text;
  }

  static string Marked(bool is_marked, const string &text) {
    return (is_marked ? kConflictMark : kFreeMark) + text;
  }

  void CheckLists(const MarkWalk &marks) {
    for (const ListedFeature &listed : ListedFeatures()) {
      const CFeature *record = HashValue<CFeature>(G_PrinterFeatures_hash, listed.feature);
      GtkWidget *combo = OptionCombo(listed.feature);
      if (record == nullptr || combo == nullptr || !IsListFilled(listed.feature)) continue;
      SCOPED_TRACE(listed.feature);
      CheckList(marks, listed.feature, record, combo);
    }
  }

  void CheckList(const MarkWalk &marks, const string &feature, const CFeature *record,
                 GtkWidget *combo) {
    Strings options;
    Strings expected;
    for (const auto [option, text] : Pairs<CString>(record->options.get())) {
      options.emplace_back(option);
      expected.push_back(Marked(marks.IsMarked(feature, option), TextOrNull(text)));
    }
    const CHash *customs = feature == "*PageSize"    ? G_QueueCustomPapers_hash
                           : feature == "*MediaType" ? G_QueueCustomMedias_hash
                                                     : nullptr;
    for (const string &name : Keys(customs)) {
      options.push_back(name);
      expected.push_back(Marked(marks.IsMarked(feature, name), name));
    }
    EXPECT_EQ(expected, RowsOf(combo));
    CheckChoice(feature, options, expected, combo);
    CheckSample(marks, feature, options);
    for (const string &row : expected) marks_seen_ += row.starts_with(kConflictMark) ? 1U : 0U;
  }

  static Strings RowsOf(GtkWidget *combo) {
    GtkTreeModel *model = gtk_combo_box_get_model(GTK_COMBO_BOX(combo));
    Strings rows;
    GtkTreeIter iter;
    for (gboolean more = gtk_tree_model_get_iter_first(model, &iter); more != FALSE;
         more = gtk_tree_model_iter_next(model, &iter)) {
      gchar *text = nullptr;
      gtk_tree_model_get(model, &iter, 0, &text, -1);
      rows.emplace_back(text);
      g_free(text);
    }
    return rows;
  }

  // The entry shows the row of the queue's choice, with its mark.
  static void CheckChoice(const string &feature, const Strings &options, const Strings &rows,
                          GtkWidget *combo) {
    const string choice = QueueFeatureValue(feature.c_str());
    for (size_t i = 0; i < options.size(); ++i) {
      if (options[i] != choice) continue;
      EXPECT_EQ(rows[i], ComboText(combo));
    }
  }

  // The fast walk answers as the literal one, which asks every constraint of every setting.
  void CheckSample(const MarkWalk &marks, const string &feature, const Strings &options) {
    if (std::uniform_int_distribution<size_t>(0, ListedFeatures().size() - 1)(random_) != 0) return;
    for (size_t i = 0; i < kSample; ++i) {
      const string &option =
          options[std::uniform_int_distribution<size_t>(0, options.size() - 1)(random_)];
      EXPECT_EQ(linearwalk::ConflictOf(feature.c_str(), option.c_str()).has_value(),
                marks.IsMarked(feature, option))
          << option;
    }
  }

  // Rows as text and whether they are installed.
  static std::vector<std::pair<string, bool>> ExpectedInstallables(const MarkWalk &marks) {
    std::vector<std::pair<string, bool>> rows;
    for (const auto [id, record] : Pairs<CFeature>(G_PrinterInstallableOptions_hash)) {
      if (string(id) == "*InstalledMemory") continue;
      const string value = HashText(G_QueueInstallableOptions_hash, id);
      const bool is_marked = marks.IsMarked(id, value);
      if (TextOrNull(record->type.get()) == "Boolean") {
        if (value != "True" && value != "False") continue;
        rows.emplace_back(Marked(is_marked, TextOrNull(record->translation.get())),
                          value == "True");
        continue;
      }
      for (const auto [option, text] : Pairs<CString>(record->options.get())) {
        if (string(option) == "None") continue;
        rows.emplace_back(Marked(is_marked, TextOrNull(text)), value == option);
      }
    }
    return rows;
  }

  static Strings CellsOf(GtkWidget *list, int columns) {
    Strings cells;
    for (int row = 0; row < ListRowCount(list); ++row) {
      for (int column = 0; column < columns; ++column) {
        cells.push_back(ListCell(list, row, column));
      }
    }
    return cells;
  }

  static void CheckInstallables(const MarkWalk &marks) {
    Strings available;
    Strings installed;
    Strings all;
    for (const auto &[text, is_installed] : ExpectedInstallables(marks)) {
      (is_installed ? installed : available).push_back(text);
      all.push_back(text);
      all.emplace_back(CatalogueText(is_installed ? "DEF_STR_INSTALLED" : "DEF_STR_NOT_INSTALLED"));
    }
    if (G_ProgName == kModeAdministration) {
      EXPECT_EQ(available, CellsOf(G_InstallableLists.available, 1));
      EXPECT_EQ(installed, CellsOf(G_InstallableLists.installed, 1));
    } else {
      EXPECT_EQ(all, CellsOf(G_InstallableLists.features, 2));
    }
  }

  unsigned seed_ = 1;
  int changes_wanted_ = kChangesOfAPrinter;
  std::mt19937 random_;
  size_t marks_seen_ = 0;
  GtkWidget *program_ = nullptr;
  Owned<CHash> queues_;
  Owned<CHash> org_queues_;
};

TEST_F(PropertiesWalk, TheAdministrationsWindowKeepsTheMarksOfTheShippedPrinters) {
  WalkShipped(kModeAdministration);
}

TEST_F(PropertiesWalk, ThePrintToolsWindowKeepsTheMarksOfTheShippedPrinters) {
  WalkShipped(kModePrintTool);
}

TEST_F(PropertiesWalk, TheAdministrationsWindowKeepsTheMarksOfForeignPrinters) {
  WalkForeign(kModeAdministration);
}

TEST_F(PropertiesWalk, ThePrintToolsWindowKeepsTheMarksOfForeignPrinters) {
  WalkForeign(kModePrintTool);
}

}  // namespace
