// Time of an option change on a printer with very many constraints: the choice is stored, and all
// 16 option lists, the two lists of installable options and the picture follow it.
//
// Usage: option_change DIR
// DIR holds PPD files (heavy-printers writes them); the one with the most constraints is taken. Of
// its features those that no list shows, from the largest on, take the places of the lists that it
// lacks, so that all 16 are full. Needs an X display and the installed texts and pictures.
//
// A run chooses the next row of the next combo box, as a key does, and then has GTK lay the window
// out again, which it would do before the next frame; drawing, which happens in that frame, is not
// measured. All 16 rows are in sight, unlike those on the pages of a notebook. Prints one line:
// name, median in milliseconds, bar, ok or missed, separated by tabs.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "InstallableLists.h"
#include "ListWidget.h"
#include "OptionCombos.h"
#include "Pixmaps.h"
#include "Support.h"
#include "cprinter.h"
#include "featuretable.h"
#include "heavyprinter.h"
#include "installation.h"
#include "optionlists.h"
#include "optionstate.h"
#include "paths.h"
#include "properties.h"
#include "queuesupport.h"

namespace {

constexpr double kBar = 4.0;  // milliseconds: a quarter of a frame
constexpr int kWarmUps = 64;
constexpr int kRuns = 1600;

[[noreturn]] void Fail(const std::string &why) { FailAs("option_change", why); }

void MakeCurrent(CPrinter *printer) {
  SetCurrentPrinter(printer);
  SetCurrentQueue(Text("lp1"), MakeQueue());
  AddDefaultSettings();
}

GtkWidget *ShowWindow() {
  GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  GtkWidget *grid = gtk_grid_new();
  gtk_container_add(GTK_CONTAINER(window), grid);
  int row = 0;
  for (const ListedFeature &listed : ListedFeatures()) {
    // The tabs of the first eleven have pictures.
    AddOptionRow(window, GTK_GRID(grid), row, listed.feature, "DEF_LBL_PAPERSIZE", row < 11);
    ++row;
  }
  G_InstallableLists.available = NewList({{nullptr, 0}}, GTK_SELECTION_SINGLE);
  G_InstallableLists.installed = NewList({{nullptr, 0}}, GTK_SELECTION_SINGLE);
  gtk_grid_attach(GTK_GRID(grid), G_InstallableLists.available, 3, 0, 1, row);
  gtk_grid_attach(GTK_GRID(grid), G_InstallableLists.installed, 4, 0, 1, row);
  G_OptionChangeHooks.refill_installables = [] { G_FillInstallableCLists(); };
  G_FillInstallableCLists();
  gtk_widget_show_all(window);
  return window;
}

using Clock = std::chrono::steady_clock;

double MillisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

struct Times {
  std::vector<double> changes;
  std::vector<double> with_layout;
};

Times Measure(GtkWidget *window) {
  Times times;
  const std::vector<ListedFeature> &features = ListedFeatures();
  for (int run = -kWarmUps; run < kRuns; ++run) {
    const auto number = static_cast<size_t>(run + kWarmUps) % features.size();
    auto *combo = GTK_COMBO_BOX(OptionCombo(features[number].feature));
    const int rows = gtk_tree_model_iter_n_children(gtk_combo_box_get_model(combo), nullptr);
    const std::string before = QueueFeatureValue(features[number].feature);
    const auto start = Clock::now();
    gtk_combo_box_set_active(combo, (gtk_combo_box_get_active(combo) + 1) % rows);
    const double change = MillisecondsSince(start);
    gtk_container_check_resize(GTK_CONTAINER(window));
    const double with_layout = MillisecondsSince(start);
    if (run >= 0) {
      times.changes.push_back(change);
      times.with_layout.push_back(with_layout);
    }
    if (before == QueueFeatureValue(features[number].feature)) Fail("a choice changed nothing");
    RunPending();
  }
  return times;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) Fail("usage: option_change DIR");
  if (gtk_init_check(nullptr, nullptr) == FALSE) Fail("no X display");
  InstallStyle();
  add_pixmap_directory(kPixmapDir);
  const ProgramMessages messages(ContentOf(kInstalledCatalogue));
  const HeavyPrinter heavy = HeaviestPrinterIn("option_change", argv[1]);
  MakeCurrent(heavy.printer.get());
  GtkWidget *window = ShowWindow();
  RunPending();

  int rows = 0;
  for (const ListedFeature &listed : ListedFeatures()) {
    GtkTreeModel *model = gtk_combo_box_get_model(GTK_COMBO_BOX(OptionCombo(listed.feature)));
    rows += gtk_tree_model_iter_n_children(model, nullptr);
  }
  const Times times = Measure(window);
  const double median = Median(times.with_layout);
  std::fprintf(stderr,
               "option-change: %s, %zu lines of constraints, %d rows in 16 lists; %.3f ms without "
               "the layout, longest %.2f ms (%d changes)\n",
               heavy.file.c_str(), heavy.constraint_lines, rows, Median(times.changes),
               *std::max_element(times.with_layout.begin(), times.with_layout.end()), kRuns);
  std::printf("option-change\t%.2f\t%.2f\t%s\n", median, kBar, median <= kBar ? "ok" : "missed");
  gtk_widget_destroy(window);
  ForgetOptionRows();
  SetCurrentQueue(nullptr, nullptr);
  SetCurrentPrinter(nullptr);
  return median <= kBar ? 0 : 1;
}
