// A window with option rows, on an installed printer.
#pragma once

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ComboWidget.h"
#include "OptionCombos.h"
#include "Pixmaps.h"
#include "featuretable.h"
#include "guisupport.h"
#include "optionlists.h"
#include "paths.h"
#include "shippedprinter.h"
#include "xinput.h"

class OptionRowsTest : public GuiTest {
 protected:
  using Rows = std::vector<std::pair<std::string, std::string>>;  // text and tooltip

  void SetUp() override {
    add_pixmap_directory(kPixmapDir);
    // The last resort of every feature, where the installation has none.
    for (const ListedFeature &listed : ListedFeatures()) {
      const std::string file = kPixmapDir + ("/" + std::string(listed.feature + 1)) + ".xpm";
      if (!std::filesystem::exists(file)) {
        pictures_.push_back(std::make_unique<ChangedFile>(file, PictureOfWidth(1)));
      }
    }
    Use("vek41101");
  }

  void TearDown() override {
    G_OptionChangeHooks = {};
    ForgetOptionRows();
    GuiTest::TearDown();
    printer_.reset();
    pictures_.clear();
  }

  // Makes that printer current, with a queue on its defaults.
  void Use(const std::string &name, const QueueValues &values = {}) {
    printer_.reset();
    printer_.emplace(kInstalledPafs + name + ".paf", values);
  }

  // A picture that is known again by its width.
  static std::string PictureOfWidth(size_t width) {
    return "/* XPM */\nstatic char *p[] = {\n\"" + std::to_string(width) +
           " 1 1 1\",\n\". c #000000\",\n\"" + std::string(width, '.') + "\"};\n";
  }

  // A window with the rows of those features, in reverse order; all of them when none is named.
  void ShowRows(std::vector<std::string> features = {}) {
    if (features.empty()) {
      for (const ListedFeature &listed : ListedFeatures()) features.push_back(listed.feature);
    }
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window_), 500, 400);
    GtkWidget *grid = gtk_grid_new();
    gtk_container_add(GTK_CONTAINER(window_), grid);
    int row = 0;
    for (auto feature = features.rbegin(); feature != features.rend(); ++feature) {
      AddOptionRow(window_, GTK_GRID(grid), row++, feature->c_str(), "DEF_LBL_PAPERSIZE",
                   HasPicture(*feature));
    }
    ShowWindowOf(grid);
  }

  static bool HasPicture(const std::string &feature) {
    constexpr std::array<std::string_view, 5> kNone = {"*Resolution", "*OutputMode", "*HalfTone",
                                                       "*Delivery", "*EmailNotification"};
    return std::find(kNone.begin(), kNone.end(), feature) == kNone.end();
  }

  static std::string Shown(const char *feature) { return ComboText(OptionCombo(feature)); }

  // The combo's rows as its pop-up has them.
  static Rows RowsOf(const char *feature) {
    GtkTreeModel *model = gtk_combo_box_get_model(GTK_COMBO_BOX(OptionCombo(feature)));
    Rows rows;
    GtkTreeIter iter;
    for (bool more = gtk_tree_model_get_iter_first(model, &iter) != FALSE; more;
         more = gtk_tree_model_iter_next(model, &iter) != FALSE) {
      gchar *text = nullptr;
      gchar *tip = nullptr;
      gtk_tree_model_get(model, &iter, 0, &text, 2, &tip, -1);
      rows.emplace_back(text, tip == nullptr ? "" : tip);
      g_free(text);
      g_free(tip);
    }
    return rows;
  }

  // What the core says that the combo's rows should be.
  static Rows RowsOfCore(const char *feature) {
    Rows rows;
    const auto list = G_GetOptionsForFeature(G_PrinterFeatures_hash, feature);
    for (const OptionListRow &row : list->rows) rows.emplace_back(row.text, row.reason);
    return rows;
  }

  // Chooses the row with that text, mark included, as a user does.
  static void Choose(const char *feature, const std::string &text) {
    const Rows rows = RowsOf(feature);
    for (size_t i = 0; i < rows.size(); ++i) {
      if (rows[i].first != text) continue;
      gtk_combo_box_set_active(GTK_COMBO_BOX(OptionCombo(feature)), static_cast<int>(i));
      return;
    }
    FAIL() << "no row " << text;
  }

  GtkWidget *window_ = nullptr;
  std::optional<CurrentPrinterAndQueue> printer_;

 private:
  std::vector<std::unique_ptr<ChangedFile>> pictures_;
};
