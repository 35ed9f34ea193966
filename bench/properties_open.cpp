// Time to open the properties window of the printer with the most constraints, over that of a bare
// GTK 3 notebook with as many pages, combo boxes and rows.
//
// Usage: properties_open DIR
// DIR holds PPD files (heavy-printers writes them). Needs an X display and the installed texts and
// pictures. Prints one line: name, median of the pairs' ratios, bar, ok or missed, separated by
// tabs.
//
// Both windows are opened in turn in one process: from the call that builds the window until it is
// mapped and drawn. The bare one has combo boxes of the same kind on the same pages, in the order
// and with the rows that the window has when all its pages are built, in a grid without anything
// else; both windows are as large.
//
// The window builds the pages that are not seen after it is drawn. How long that takes, and how
// long it keeps the window from answering at most, goes to standard error.

#include <algorithm>
#include <chrono>

#include "Pixmaps.h"
#include "PropertiesFrame.h"
#include "PropertiesPages.h"
#include "PropertiesWindow.h"
#include "PropertiesWindowFct.h"
#include "Support.h"
#include "cselection.h"
#include "globals.h"
#include "heavyprinter.h"
#include "must.h"
#include "paths.h"
#include "queuesupport.h"

namespace {

constexpr double kBar = 1.3;
constexpr int kWarmUps = 5;
constexpr int kRuns = 81;
constexpr int kDeadline = 20;     // seconds for one window
constexpr double kSettling = 40;  // milliseconds, two frames and more
constexpr char kPrinter[] = "Heavy printer";

using Clock = std::chrono::steady_clock;
using Rows = std::vector<std::string>;
using Combos = std::vector<Rows>;  // of a page

[[noreturn]] void Fail(const std::string &why) { FailAs("properties_open", why); }

// What the bare window has to have.
struct Content {
  std::vector<Combos> pages;
  int width = 0;
  int height = 0;
};

Rows RowsOf(GtkWidget *combo) {
  Rows rows;
  GtkTreeModel *model = gtk_combo_box_get_model(GTK_COMBO_BOX(combo));
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

void Collect(GtkWidget *widget, gpointer page) {
  if (GTK_IS_COMBO_BOX(widget)) static_cast<Combos *>(page)->push_back(RowsOf(widget));
  if (GTK_IS_CONTAINER(widget)) gtk_container_foreach(GTK_CONTAINER(widget), Collect, page);
}

Content ContentOfWindow() {
  const PropertiesWindowHelper &helper = *G_PropertiesWindow_helper;
  auto *notebook = GTK_NOTEBOOK(helper.notebook);
  Content content;
  gtk_window_get_size(GTK_WINDOW(helper.window), &content.width, &content.height);
  for (int i = 0; i < gtk_notebook_get_n_pages(notebook); ++i) {
    Collect(gtk_notebook_get_nth_page(notebook, i), &content.pages.emplace_back());
  }
  return content;
}

GtkWidget *NewBareCombo(const Rows &rows) {
  GtkWidget *combo = gtk_combo_box_text_new_with_entry();
  for (const std::string &row : rows) {
    gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(combo), row.c_str());
  }
  gtk_combo_box_set_active(GTK_COMBO_BOX(combo), 0);
  return combo;
}

GtkWidget *NewBareWindow(const Content &content) {
  GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_default_size(GTK_WINDOW(window), content.width, content.height);
  GtkWidget *notebook = gtk_notebook_new();
  gtk_container_add(GTK_CONTAINER(window), notebook);
  for (const Combos &page : content.pages) {
    GtkWidget *grid = gtk_grid_new();
    for (size_t i = 0; i < page.size(); ++i) {
      gtk_grid_attach(GTK_GRID(grid), NewBareCombo(page[i]), 0, static_cast<int>(i), 1, 1);
    }
    gtk_notebook_append_page(GTK_NOTEBOOK(notebook), grid, gtk_label_new("Page"));
  }
  gtk_widget_show_all(notebook);
  return window;
}

gboolean NoteDrawn(GtkWidget *, cairo_t *, gpointer drawn) {
  *static_cast<bool *>(drawn) = true;
  return FALSE;
}

// Shows the window and waits until it is drawn.
void Show(GtkWidget *window) {
  bool drawn = false;
  const gulong handler = g_signal_connect_after(window, "draw", G_CALLBACK(NoteDrawn), &drawn);
  gtk_widget_show(window);
  const auto deadline = Clock::now() + std::chrono::seconds(kDeadline);
  while (gtk_widget_get_mapped(window) == FALSE || !drawn) {
    gtk_main_iteration();
    if (Clock::now() > deadline) Fail("a window is not drawn");
  }
  gdk_display_sync(gdk_display_get_default());
  g_signal_handler_disconnect(window, handler);
}

double MillisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Milliseconds.
struct OpeningTimes {
  double drawn = 0;
  double all_pages = 0;     // since the same call
  double longest_turn = 0;  // of the main loop, from then on until nothing is left to do
};

// Runs the main loop until all pages are built and laid out.
void BuildRest(Clock::time_point start, OpeningTimes &times) {
  while (times.all_pages == 0 || MillisecondsSince(start) < times.all_pages + kSettling) {
    const auto turn = Clock::now();
    g_main_context_iteration(nullptr, FALSE);
    times.longest_turn = std::max(times.longest_turn, MillisecondsSince(turn));
    if (times.all_pages == 0 && ArePropertiesPagesBuilt()) {
      times.all_pages = MillisecondsSince(start);
    }
    if (MillisecondsSince(start) > 1000 * kDeadline) Fail("pages are not built");
  }
}

OpeningTimes MeasureProperties(Content *content) {
  OpeningTimes times;
  const auto start = Clock::now();
  GtkWidget *window = create_PropertiesWindow();
  if (window == nullptr) Fail("the window does not open");
  Show(window);
  times.drawn = MillisecondsSince(start);
  BuildRest(start, times);
  if (content != nullptr) *content = ContentOfWindow();
  ButtonCancelPropertiesPressed();
  RunPending();
  return times;
}

double MeasureBare(const Content &content) {
  const auto start = Clock::now();
  GtkWidget *window = NewBareWindow(content);
  Show(window);
  const double time = MillisecondsSince(start);
  RunPending();
  gtk_widget_destroy(window);
  RunPending();
  return time;
}

// What the administration program has when its main window shows one queue, which is selected.
class World {
 public:
  explicit World(Owned<CPrinter> &&printer) : printers_(CreateHash()), queues_(CreateHash()) {
    Must(HashPut(printers_.get(), kPrinter, std::move(printer)));
    Must(HashPut(queues_.get(), "lp1", MakeQueue({"lp1", kPrinter, "postscript", "10.0.0.1"})));
    G_Printers_hash = printers_.get();
    G_Queues_hash = queues_.get();
    G_ProgName = kModeAdministration;
    G_PropertiesOpener.chosen_queue = [] { return std::string("lp1"); };
  }
  ~World() {
    G_PropertiesOpener = {};
    G_Printers_hash = G_Queues_hash = nullptr;
  }
  World(const World &) = delete;
  World &operator=(const World &) = delete;

 private:
  Owned<CHash> printers_;
  Owned<CHash> queues_;
};

struct Times {
  std::vector<double> window;
  std::vector<double> all_pages;
  std::vector<double> longest_turn;
  std::vector<double> bare;
  std::vector<double> ratios;  // of each pair its own, so that a busy moment slows both
};

Times Measure(const Content &content) {
  Times times;
  for (int run = -kWarmUps; run < kRuns; ++run) {
    const double bare = MeasureBare(content);
    const OpeningTimes window = MeasureProperties(nullptr);
    if (run < 0) continue;
    times.window.push_back(window.drawn);
    times.all_pages.push_back(window.all_pages);
    times.longest_turn.push_back(window.longest_turn);
    times.bare.push_back(bare);
    times.ratios.push_back(window.drawn / bare);
  }
  return times;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) Fail("usage: properties_open DIR");
  if (gtk_init_check(nullptr, nullptr) == FALSE) Fail("no X display");
  InstallStyle();
  add_pixmap_directory(kPixmapDir);
  const ProgramMessages messages(ContentOf(kInstalledCatalogue));
  HeavyPrinter heavy = HeaviestPrinterIn("properties_open", argv[1]);
  const World world(std::move(heavy.printer));
  Content content;
  MeasureProperties(&content);
  size_t combos = 0;
  size_t rows = 0;
  for (const Combos &page : content.pages) {
    combos += page.size();
    for (const Rows &list : page) rows += list.size();
  }
  const Times times = Measure(content);
  const double ratio = Median(times.ratios);
  std::fprintf(
      stderr,
      "properties-open: %s, %zu lines of constraints; %zu combo boxes, %zu rows, %zu "
      "pages; %.1f ms, bare notebook %.1f ms; all pages after %.1f ms, longest turn of the "
      "main loop meanwhile %.1f ms (medians of %d)\n",
      heavy.file.c_str(), heavy.constraint_lines, combos, rows, content.pages.size(),
      Median(times.window), Median(times.bare), Median(times.all_pages), Median(times.longest_turn),
      kRuns);
  std::printf("properties-open\t%.2f\t%.2f\t%s\n", ratio, kBar, ratio <= kBar ? "ok" : "missed");
  return ratio <= kBar ? 0 : 1;
}
