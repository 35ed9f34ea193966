// The Customs tab of the administration's properties window, on a queue with entries of its own.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "CmtParamWindow.h"
#include "ConfirmationWindow.h"
#include "CpsParamWindow.h"
#include "ListWidget.h"
#include "OptionCombos.h"
#include "Pixmaps.h"
#include "PropTabCustoms.h"
#include "PropTabCustomsFct.h"
#include "chelp.h"
#include "cselection.h"
#include "must.h"
#include "optionlists.h"
#include "paths.h"
#include "propertiestest.h"

class CustomsTest : public PropertiesTest {
 protected:
  using Strings = std::vector<std::string>;
  static constexpr CustomKind kPaper = CustomKind::kPaper;
  static constexpr CustomKind kMedia = CustomKind::kMedia;

  // A printer with two page sizes, two media types and two-sided printing, which papers and types
  // of one's own exclude.
  void SetUp() override {
    PropertiesTest::SetUp();
    G_ProgName = kModeAdministration;
    add_pixmap_directory(kPixmapDir);
    G_Help = CreateHelp(kInstalledHelp);
    fFillFromHelp_Function(G_Help.get());
    MakePrinter(PafFeature("*PageSize", {{"A4", "A4 sheet"}, {"Letter", "US Letter"}}) +
                PafFeature("*MediaType", {{"Plain", "Plain paper"}, {"Thick", "Card"}}) +
                PafFeature("*Duplex", {{"None", "Off"}, {"Long", "Long edge"}}) +
                Constraint("*CustomPageSize") + Constraint("*CustomMediaType"));
    Printer()->custom_paper = CreateHash();
    CHash *limits = Printer()->custom_paper.get();
    Must(HashPutText(limits, "MinWidth", "288"));
    Must(HashPutText(limits, "MaxWidth", "864"));
    Must(HashPutText(limits, "MinLength", "360"));
    Must(HashPutText(limits, "MaxLength", "1296"));
    queue_ = MakeQueue();
  }

  void TearDown() override {
    // Of a failed test, dialogs may still be open.
    ButtonNOConfirmationPressed();
    ButtonCancelCpsPressed();
    ButtonCancelCmtPressed();
    PropertiesTest::TearDown();
    G_Help.reset();
  }

  static std::string Constraint(const std::string &feature) {
    return "#ccc\n#f1\n" + feature + "\n#o1\nTrue\n#f2\n*Duplex\n#o2\nLong\n#end_ccc\n";
  }

  static CPrinter *Printer() { return HashValue<CPrinter>(G_Printers_hash, "Vek Norvel 4110ES"); }

  // What the queue has when its window is opened.
  void Paper(const char *name, double width = 612, double length = 792) {
    PutPaper(queue_.get(), name, width, length);
  }
  void Media(const char *name) { PutMedia(queue_.get(), name, name); }
  void Setting(const char *feature, const char *option) {
    Must(HashPutText(queue_->Options.get(), feature, option));
  }

  void OpenTab() {
    Must(HashPut(G_Queues_hash, "lp1", std::move(queue_)));
    window_ = create_PropertiesWindow();
    ASSERT_NE(nullptr, window_);
    ShowPage(PlaceOf(Page::kCustoms));
  }

  void ShowPage(int page) const {
    SwitchTo(page);
    ShowWindowOf(window_);
    ASSERT_TRUE(RunUntil(ArePropertiesPagesBuilt));
    RunPending();
  }

  static GtkWidget *List(CustomKind kind) { return CustomList(kind).list; }

  static Strings Names(CustomKind kind) {
    Strings names;
    for (int row = 0; row < ListRowCount(List(kind)); ++row) {
      names.push_back(ListCell(List(kind), row, 0));
    }
    return names;
  }

  // The selected rows, which are the selected records too.
  static Strings Selected(CustomKind kind) {
    Strings names;
    Strings records;
    for (int row = 0; row < ListRowCount(List(kind)); ++row) {
      if (ListIsSelected(List(kind), row)) names.push_back(ListCell(List(kind), row, 0));
    }
    for (const CSelection *record : Elements<CSelection>(CustomSelections(kind))) {
      if (fIsSelected_CSelection_Function(record) == 0) continue;
      records.emplace_back(fGet_CSelection_Value_Function(record));
    }
    EXPECT_EQ(names, records);
    EXPECT_EQ(static_cast<int>(names.size()), CustomList(kind).number_selected);
    return names;
  }

  // Which of Add, Edit and Delete can be pressed: "AED", "A--" ...
  std::string Buttons(const std::string &kind) const {
    return std::string(IsSensitive(kind + "ButtonAdd") ? "A" : "-") +
           (IsSensitive(kind + "ButtonEdit") ? "E" : "-") +
           (IsSensitive(kind + "ButtonDelete") ? "D" : "-");
  }

  // Whether the Setup tab's row of the feature shows the picture of that file.
  static bool ShowsPicture(const char *feature, const char *file) {
    return PropertiesTest::ShowsPicture(OptionPicture(feature), file);
  }

  static void Select(CustomKind kind, const Strings &names) {
    ListUnselectAll(List(kind));
    for (int row = 0; row < ListRowCount(List(kind)); ++row) {
      for (const std::string &name : names) {
        if (ListCell(List(kind), row, 0) == name) ListSelectRow(List(kind), row);
      }
    }
    EXPECT_EQ(names, Selected(kind));
  }

  // A real click on a row, with a key held.
  static void ClickRow(CustomKind kind, int row, const std::string &held = "") {
    GdkRectangle area;
    GtkTreePath *path = gtk_tree_path_new_from_indices(row, -1);
    auto *view = GTK_TREE_VIEW(List(kind));
    gtk_tree_view_get_cell_area(view, path, gtk_tree_view_get_column(view, 0), &area);
    gtk_tree_path_free(path);
    gtk_tree_view_convert_bin_window_to_widget_coords(view, area.x, area.y, &area.x, &area.y);
    area = OnScreen(List(kind), area);
    if (!held.empty()) XInputKey(held, true);
    XInputClick(area.x + 10, area.y + area.height / 2);
    if (!held.empty()) XInputKey(held, false);
    RunPending();
  }

  // Clicks a button of the tab and waits for the dialog, which gets the keyboard.
  GtkWidget *Press(const std::string &button, const std::string &dialog) const {
    FocusWindowOf(window_);
    ClickOn(Named(button));
    GtkWidget *found = WindowNamed(dialog);
    EXPECT_NE(nullptr, found) << dialog;
    if (found != nullptr) ShowWindowOf(found);
    return found;
  }

  // A key, once the dialog has handled what came before.
  static void Key(const std::string &chord) {
    XInputChord(chord);
    RunPending();
  }

  // Replaces an entry's or spin button's text by what these keys leave there.
  static void TypeInto(GtkWidget *entry, const std::string &keys) {
    gtk_widget_grab_focus(entry);
    Key("ctrl+a");
    Key("Delete");
    XInputType(keys);
    RunPending();
  }

  static void PasteInto(GtkWidget *entry, const std::string &text) {
    gtk_widget_grab_focus(entry);
    Key("ctrl+a");
    gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), text.c_str(), -1);
    Key("ctrl+v");
  }

  static std::string In(GtkWidget *entry) { return gtk_entry_get_text(GTK_ENTRY(entry)); }

  // The message of the error box that is shown, as a catalogue key of these, which is closed.
  static std::string TakeErrorKey(const Strings &keys) {
    const std::string shown = TakeError();
    for (const std::string &key : keys) {
      if (shown == CatalogueText("DEF_WND_ERROR_TITLE") + ": " + CatalogueText(key)) return key;
    }
    return shown;
  }

  Owned<CPrintQueue> queue_;
};
