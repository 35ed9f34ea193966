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
#include <filesystem>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "InstallableLists.h"
#include "ListWidget.h"
#include "OptionCombos.h"
#include "Pixmaps.h"
#include "Support.h"
#include "cfeature.h"
#include "cprinter.h"
#include "filterrun.h"
#include "installation.h"
#include "optionlists.h"
#include "optionstate.h"
#include "pafreader.h"
#include "paths.h"
#include "properties.h"
#include "queuesupport.h"

namespace {

constexpr double kBar = 4.0;  // milliseconds: a quarter of a frame
constexpr int kWarmUps = 64;
constexpr int kRuns = 1600;

[[noreturn]] void Fail(const std::string &why) {
  std::fprintf(stderr, "option_change: %s\n", why.c_str());
  std::exit(2);
}

size_t ConstraintLines(const std::string &ppd) {
  size_t count = 0;
  for (size_t at = ppd.find("UIConstraints:"); at != std::string::npos;
       at = ppd.find("UIConstraints:", at + 1)) {
    ++count;
  }
  return count;
}

std::filesystem::path HeaviestIn(const std::string &directory) {
  std::filesystem::path heaviest;
  size_t most = 0;
  for (const auto &entry : std::filesystem::directory_iterator(directory)) {
    if (entry.path().extension() != ".ppd") continue;
    const size_t lines = ConstraintLines(ContentOf(entry.path()));
    if (lines <= most) continue;
    most = lines;
    heaviest = entry.path();
  }
  if (heaviest.empty()) Fail("no PPD files in " + directory);
  return heaviest;
}

std::string ConvertedDescription(const std::filesystem::path &ppd) {
  const TemporaryDirectory directory;
  const std::string paf = directory.Path("printer.paf");
  const FilterRun run = Convert(ppd, paf);
  if (run.status != 0) Fail("cannot convert " + ppd.string() + ": " + run.errors);
  return ContentOf(paf);
}

PafContent ReadDescription(const std::string &text) {
  LineReader lines(text);
  auto content = ReadPaf(lines);
  if (std::holds_alternative<PafError>(content)) Fail(std::get<PafError>(content).reason);
  return std::get<PafContent>(std::move(content));
}

// Which feature gets which name, so that every list has one.
std::map<std::string, std::string> PlacesInLists(const CHash *features) {
  std::vector<std::string> free_names;
  for (const ListedFeature &listed : ListedFeatures()) {
    if (HashFind(features, listed.feature) == nullptr) free_names.push_back(listed.feature);
  }
  std::vector<std::pair<int, std::string>> candidates;
  for (const auto [id, feature] : Pairs<CFeature>(features)) {
    const bool is_listed = std::any_of(
        ListedFeatures().begin(), ListedFeatures().end(),
        [name = std::string(id)](const auto &listed) { return name == listed.feature; });
    const int options = static_cast<int>(Keys(fGet_Options_Function(feature)).size());
    if (!is_listed) candidates.emplace_back(-options, id);
  }
  std::sort(candidates.begin(), candidates.end());
  std::map<std::string, std::string> places;
  for (size_t i = 0; i < std::min(free_names.size(), candidates.size()); ++i) {
    places[candidates[i].second] = free_names[i];
  }
  return places;
}

std::string Renamed(const std::string &description, const std::map<std::string, std::string> &to) {
  std::string result;
  size_t start = 0;
  while (start < description.size()) {
    const size_t end = std::min(description.find('\n', start), description.size());
    const std::string line = description.substr(start, end - start);
    const auto found = to.find(line);
    result += (found == to.end() ? line : found->second) + "\n";
    start = end + 1;
  }
  return result;
}

Owned<CPrinter> MakeCurrent(PafContent content) {
  Owned<CPrinter> printer = CreatePrinter("heavy.paf");
  printer->features = std::move(content.features);
  printer->installable_options = std::move(content.installable_options);
  printer->constraints = std::move(content.constraints);
  printer->ppd_file = std::move(content.ppd_file);
  SetCurrentPrinter(printer.get());
  SetCurrentQueue(Text("lp1"), MakeQueue());
  AddDefaultSettings();
  return printer;
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

void RunPending() {
  gdk_display_sync(gdk_display_get_default());
  while (gtk_events_pending() != FALSE) gtk_main_iteration();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
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
  const std::filesystem::path ppd = HeaviestIn(argv[1]);
  const std::string description = ConvertedDescription(ppd);
  const auto places = PlacesInLists(ReadDescription(description).features.get());
  const Owned<CPrinter> printer = MakeCurrent(ReadDescription(Renamed(description, places)));
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
               ppd.filename().c_str(), ConstraintLines(ContentOf(ppd)), rows, Median(times.changes),
               *std::max_element(times.with_layout.begin(), times.with_layout.end()), kRuns);
  std::printf("option-change\t%.2f\t%.2f\t%s\n", median, kBar, median <= kBar ? "ok" : "missed");
  gtk_widget_destroy(window);
  ForgetOptionRows();
  SetCurrentQueue(nullptr, nullptr);
  SetCurrentPrinter(nullptr);
  return median <= kBar ? 0 : 1;
}
