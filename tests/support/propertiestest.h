// The properties window of one queue, on a printer that the test describes, inside the test
// program.
#pragma once

#include <cstring>
#include <variant>
#include <vector>

#include "Pixmaps.h"
#include "PropertiesFrame.h"
#include "PropertiesPages.h"
#include "PropertiesWindow.h"
#include "PropertiesWindowFct.h"
#include "cprinter.h"
#include "featuretable.h"
#include "fontmap.h"
#include "guisupport.h"
#include "must.h"
#include "optionstate.h"
#include "pafreader.h"
#include "pagetable.h"
#include "paths.h"
#include "properties.h"
#include "queuesupport.h"
#include "shippedprinter.h"
#include "xinput.h"

// An option of a printer's feature: identifier and display text.
struct PafOption {
  std::string id;
  std::string text;
};

// A feature as printer descriptions have it; its first option is the default.
inline std::string PafFeature(const std::string &id, const std::vector<PafOption> &options) {
  std::string text = "#uio\n#id\n" + id + "\n#translation\n" + id.substr(1) + "\n#default\n" +
                     options.front().id + "\n#type\nPickOne\n#_options\n";
  for (const PafOption &option : options) {
    text += "#_option\n#id\n" + option.id + "\n#translation\n" + option.text + "\n#end_option\n";
  }
  return text + "#end_options\n#end_ui\n";
}

class PropertiesTest : public GuiTest {
 protected:
  static void SetUpTestSuite() {
    GuiTest::SetUpTestSuite();
    add_pixmap_directory(kPixmapDir);
  }

  void SetUp() override {
    printers_ = CreateHash();
    queues_ = CreateHash();
    G_Printers_hash = printers_.get();
    G_Queues_hash = queues_.get();
    G_OrgQueues_hash = nullptr;
    G_ProgName = kModePrintTool;
    G_PropertiesOpener = {[] { return std::string("lp1"); }, nullptr};
    ReadFonts(
        "GUI_Font:Times|GUI_Style:Roman|AFM_FontName:Times-Roman\n"
        "GUI_Font:Times|GUI_Style:Bold|AFM_FontName:Times-Bold\n"
        "GUI_Font:Courier|GUI_Style:Regular|AFM_FontName:Courier\n"
        "GUI_Font:Courier|GUI_Style:Oblique|AFM_FontName:Courier-Oblique\n"
        "GUI_Font:Courier|GUI_Style:Bold|AFM_FontName:Courier-Bold\n");
  }

  void TearDown() override {
    ButtonCancelPropertiesPressed();
    GuiTest::TearDown();
    G_PropertiesOpener = {};
    G_Fonts_hash.reset();
    G_Printers_hash = G_Queues_hash = nullptr;
    G_ProgName = kModeNeither;
  }

  static void ReadFonts(const std::string &map) {
    LineReader lines(map);
    G_Fonts_hash = ReadFontmap(lines);
  }

  // The queue's printer has those features and no other.
  void MakePrinter(const std::string &features) {
    const std::string paf = "##Name:Vek Norvel 4110ES\n##PPD:vek41101.ppd\n" + features;
    LineReader lines(paf);
    PafContent content = std::get<PafContent>(ReadPaf(lines));
    Owned<CPrinter> printer = CreatePrinter("vek41101.paf");
    printer->features = std::move(content.features);
    printer->installable_options = std::move(content.installable_options);
    printer->constraints = std::move(content.constraints);
    Must(HashPut(printers_.get(), "Vek Norvel 4110ES", std::move(printer)));
  }

  // The same with an option of each other feature that the windows list; what a printer lacks is
  // complained about.
  void MakeWholePrinter(const std::string &features) {
    std::string others;
    for (const ListedFeature &listed : ListedFeatures()) {
      const std::string feature = listed.feature;
      if (features.find("#id\n" + feature + "\n") == std::string::npos) {
        others += PafFeature(feature, {{"None", "None"}});
      }
    }
    MakePrinter(others + features);
  }

  // The queue's printer is an installed one, whatever its name.
  void TakePrinter(const std::string &description) {
    const std::string file = std::string(kInstalledPafs) + description + ".paf";
    Owned<CPrinter> printer = CreatePrinter(file.c_str());
    ASSERT_NE(nullptr, fFillFromPaf_Function(printer.get()));
    Must(HashPut(printers_.get(), "Vek Norvel 4110ES", std::move(printer)));
  }

  using Settings = std::vector<std::pair<const char *, const char *>>;

  // Makes the window on a queue with those settings; it is not yet shown.
  void MakeWindow(const Settings &settings, const std::string &language = "postscript",
                  const Settings &installed = {}) {
    Owned<CPrintQueue> queue = MakeQueue({"lp1", "Vek Norvel 4110ES", language, "10.0.0.1"});
    for (const auto &[feature, value] : settings) {
      Must(HashPutText(queue->Options.get(), feature, value));
    }
    for (const auto &[feature, value] : installed) {
      Must(HashPutText(queue->InstallableFeatures.get(), feature, value));
    }
    HashRemove(queues_.get(), "lp1");
    Must(HashPut(queues_.get(), "lp1", std::move(queue)));
    window_ = create_PropertiesWindow();
    ASSERT_NE(nullptr, window_);
  }

  static void SwitchTo(int page) {
    gtk_notebook_set_current_page(GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook), page);
  }

  // Opens the window on a queue with those settings, on that page, with all pages built.
  void Open(int page, const Settings &settings = {}, const std::string &language = "postscript",
            const Settings &installed = {}) {
    MakeWindow(settings, language, installed);
    SwitchTo(page);
    ShowWindowOf(window_);
    ASSERT_TRUE(RunUntil(ArePropertiesPagesBuilt));
    RunPending();
  }

  int Page() const {
    return gtk_notebook_get_current_page(GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook));
  }

  GtkWidget *Named(const std::string &name) const {
    GtkWidget *found = lookup_widget(window_, name.c_str());
    EXPECT_NE(nullptr, found) << name;
    return found;
  }

  std::string Text(const std::string &entry) const {
    return gtk_entry_get_text(GTK_ENTRY(Named(entry)));
  }

  void SetText(const std::string &entry, const std::string &text) const {
    gtk_entry_set_text(GTK_ENTRY(Named(entry)), text.c_str());
  }

  bool IsSensitive(const std::string &name) const {
    return gtk_widget_is_sensitive(Named(name)) != FALSE;
  }

  bool HasFocus(const std::string &name) const {
    return gtk_window_get_focus(GTK_WINDOW(window_)) == Named(name);
  }

  // Gives the widget the keyboard; an entry's text is selected then.
  void Focus(const std::string &name) const {
    gtk_widget_grab_focus(Named(name));
    RunPending();
    ASSERT_TRUE(HasFocus(name));
  }

  // Replaces an entry's text by what these keys leave there.
  void Type(const std::string &entry, const std::string &keys) const {
    Focus(entry);
    XInputChord("ctrl+a");
    XInputChord("Delete");
    XInputType(keys);
    RunPending();
  }

  void Paste(const std::string &entry, const std::string &text) const {
    Focus(entry);
    XInputChord("ctrl+a");
    gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), text.c_str(), -1);
    XInputChord("ctrl+v");
    RunPending();
  }

  // Steps through a combo's rows with the arrow keys until it shows `text`.
  void Choose(const std::string &name, const std::string &text) const {
    Focus(name + "ComboEntry");
    for (const char *key : {"Up", "Down"}) {
      std::string before;
      do {
        before = Text(name + "ComboEntry");
        if (before == text) return;
        XInputChord(key);
        RunPending();
      } while (Text(name + "ComboEntry") != before);
    }
    ADD_FAILURE() << name << " has no row " << text;
  }

  // Presses OK from the keyboard; whether the window was closed.
  bool PressOk() const {
    XInputChord("Return");
    RunPending();
    return G_PropertiesWindow_helper == nullptr;
  }

  // The title and the message of the error box that is shown, "title: message", which is closed.
  static std::string TakeError() {
    GtkWidget *box = WindowNamed("ErrorDialog");
    if (box == nullptr) return "(none)";
    const std::string title = gtk_window_get_title(GTK_WINDOW(box));
    const std::string text = gtk_label_get_text(GTK_LABEL(lookup_widget(box, "ErrorLabel1")));
    gtk_widget_destroy(box);
    RunPending();
    return title + ": " + text;
  }

  // A setting of the queue as OK or Apply stored it, or "(none)".
  static std::string Stored(const char *feature) {
    const char *value =
        HashText(HashValue<CPrintQueue>(G_Queues_hash, "lp1")->Options.get(), feature);
    return value == nullptr ? "(none)" : value;
  }

  // The rows of a combo's list.
  std::vector<std::string> Rows(const std::string &name) const {
    GtkTreeModel *model = gtk_combo_box_get_model(GTK_COMBO_BOX(Named(name + "Combo")));
    std::vector<std::string> rows;
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

  // Whether the picture widget shows what the file of that name holds.
  static bool ShowsPicture(GtkWidget *picture, const std::string &file) {
    GtkWidget *expected = g_object_ref_sink(create_pixmap(picture, file.c_str()));
    const GdkPixbuf *a = gtk_image_get_pixbuf(GTK_IMAGE(expected));
    const GdkPixbuf *b = gtk_image_get_pixbuf(GTK_IMAGE(picture));
    const gsize size = gdk_pixbuf_get_byte_length(a);
    const bool same = size == gdk_pixbuf_get_byte_length(b) &&
                      std::memcmp(gdk_pixbuf_read_pixels(a), gdk_pixbuf_read_pixels(b), size) == 0;
    g_object_unref(expected);
    return same;
  }

  // The accessible that labels the widget is that label.
  bool IsLabelledBy(const std::string &name, const std::string &label) const {
    AtkObject *accessible = gtk_widget_get_accessible(Named(name));
    AtkRelationSet *relations = atk_object_ref_relation_set(accessible);
    AtkRelation *relation =
        atk_relation_set_get_relation_by_type(relations, ATK_RELATION_LABELLED_BY);
    bool labelled = false;
    if (relation != nullptr) {
      const GPtrArray *targets = atk_relation_get_target(relation);
      for (guint i = 0; i < targets->len; ++i) {
        labelled |= g_ptr_array_index(targets, i) == gtk_widget_get_accessible(Named(label));
      }
    }
    g_object_unref(relations);
    return labelled;
  }

  GtkWidget *window_ = nullptr;

 private:
  Owned<CHash> printers_;
  Owned<CHash> queues_;
};
