// Time to open the properties window of the printer with the most constraints, over that of a bare
// GTK 3 notebook with as many pages, combo boxes and rows.
//
// Usage: properties_open DIR
//        properties_open --added
// DIR holds PPD files (heavy-printers writes them). With --added the printer is a made-up one of
// another maker with 5,000 choices in 250 options, most of which no tab has a row for. Needs an X
// display and the installed texts and pictures. Prints one line: name, median of the pairs' ratios,
// bar, ok or missed, separated by tabs.
//
// Both windows are opened in turn in one process: from the call that builds the window until it is
// mapped and drawn. The bare one has combo boxes of the same kind on the same pages, in the order
// and with the rows that the window has when all its pages are built, in a grid without anything
// else, and lists of as many rows; both windows are as large.
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
#include "addedppd.h"
#include "cselection.h"
#include "globals.h"
#include "heavyprinter.h"
#include "must.h"
#include "paths.h"
#include "printermodels.h"
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
using Combos = std::vector<Rows>;

struct PageContent {
  Combos combos;
  std::vector<int> lists;  // rows of each
};

[[noreturn]] void Fail(const std::string &why) { FailAs("properties_open", why); }

// What the bare window has to have.
struct Content {
  std::vector<PageContent> pages;
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

void Collect(GtkWidget *widget, gpointer data) {
  auto *page = static_cast<PageContent *>(data);
  if (GTK_IS_COMBO_BOX(widget)) page->combos.push_back(RowsOf(widget));
  if (GTK_IS_TREE_VIEW(widget)) {
    GtkTreeModel *model = gtk_tree_view_get_model(GTK_TREE_VIEW(widget));
    page->lists.push_back(model == nullptr ? 0 : gtk_tree_model_iter_n_children(model, nullptr));
  }
  if (GTK_IS_CONTAINER(widget)) gtk_container_foreach(GTK_CONTAINER(widget), Collect, data);
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

GtkWidget *NewBareList(int rows) {
  GtkListStore *store = gtk_list_store_new(2, G_TYPE_STRING, G_TYPE_STRING);
  for (int row = 0; row < rows; ++row) {
    gtk_list_store_insert_with_values(store, nullptr, -1, 0, "Option", 1, "Choice", -1);
  }
  GtkWidget *list = gtk_tree_view_new_with_model(GTK_TREE_MODEL(store));
  g_object_unref(store);
  for (int column = 0; column < 2; ++column) {
    gtk_tree_view_insert_column_with_attributes(
        GTK_TREE_VIEW(list), -1, "", gtk_cell_renderer_text_new(), "text", column, nullptr);
  }
  GtkWidget *scrolled = gtk_scrolled_window_new(nullptr, nullptr);
  gtk_container_add(GTK_CONTAINER(scrolled), list);
  return scrolled;
}

GtkWidget *NewBareWindow(const Content &content) {
  GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_default_size(GTK_WINDOW(window), content.width, content.height);
  GtkWidget *notebook = gtk_notebook_new();
  gtk_container_add(GTK_CONTAINER(window), notebook);
  for (const PageContent &page : content.pages) {
    GtkWidget *grid = gtk_grid_new();
    int row = 0;
    for (const Rows &rows : page.combos) {
      gtk_grid_attach(GTK_GRID(grid), NewBareCombo(rows), 0, row++, 1, 1);
    }
    for (const int rows : page.lists) {
      gtk_grid_attach(GTK_GRID(grid), NewBareList(rows), 0, row++, 1, 1);
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

// The PPD file of another maker's printer with so many options, each of so many choices, and a
// constraint a pair of options.
std::string MadeUpPpd(int options, int choices) {
  std::string ppd =
      "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*FileVersion: \"1.0\"\n"
      "*LanguageVersion: English\n*LanguageEncoding: ISOLatin1\n*PCFileName: \"HEAVY.PPD\"\n"
      "*Manufacturer: \"Example\"\n*Product: \"(Heavy)\"\n*PSVersion: \"(3010.000) 0\"\n"
      "*ModelName: \"Heavy\"\n*ShortNickName: \"Heavy\"\n*NickName: \"Heavy\"\n"
      "*LanguageLevel: \"3\"\n";
  const auto option = [&](const std::string &keyword, const std::string &text,
                          const std::vector<std::string> &names, const std::string &code) {
    ppd += "*OpenUI *" + keyword + "/" + text + ": PickOne\n*OrderDependency: 10 AnySetup *" +
           keyword + "\n*Default" + keyword + ": " + names.front() + "\n";
    for (const std::string &name : names) {
      ppd += "*" + keyword + " " + name + "/Choice " + name + ": \"" + code + "\"\n";
    }
    ppd += "*CloseUI: *" + keyword + "\n";
  };
  option("PageSize", "Page Size", {"A4"}, "<</PageSize[595 842]>>setpagedevice");
  option("PageRegion", "Page Region", {"A4"}, "<</PageSize[595 842]>>setpagedevice");
  ppd +=
      "*DefaultImageableArea: A4\n*ImageableArea A4/A4: \"0 0 595 842\"\n"
      "*DefaultPaperDimension: A4\n*PaperDimension A4/A4: \"595 842\"\n";
  std::vector<std::string> names;
  for (int i = 0; i < choices; ++i) names.push_back("C" + std::to_string(i));
  for (int i = 0; i < options; ++i) {
    const std::string number = std::to_string(i);
    option("Option" + number, "Option " + number, names, "");
    if (i == 0) continue;
    const std::string pair = "*Option" + number + " C1 *Option" + std::to_string(i - 1) + " C2\n";
    ppd += "*UIConstraints: " + pair;
  }
  return ppd;
}

// The printer that a made-up PPD file describes, as kpxctl adds it; its PAF file lies in
// `directory` as long as that is there.
HeavyPrinter AddedPrinterIn(const TemporaryDirectory &directory) {
  constexpr int kOptions = 250, kChoices = 20;
  using kpx::filter::TextEncoding;
  const std::string source = MadeUpPpd(kOptions, kChoices);
  const std::string ppd = kpx::filter::InstalledPpd(source, "en", TextEncoding::Utf8);
  const std::string paf = kpx::filter::InstalledPaf(ppd, "heavy.ppd", kPrinter, TextEncoding::Utf8);
  Owned<CPrinter> printer = CreatePrinter(directory.Write("heavy.paf", paf).c_str());
  if (!FillFromPaf(printer.get())) Fail("the made-up printer cannot be read");
  AddPrinterModel({.display_name = kPrinter,
                   .spooler_model = "heavy",
                   .ppd_file = "heavy.ppd",
                   .transport_parameter = "30",
                   .number = kAddedModelNumber,
                   .lists_resolutions = true,
                   .defaults_set_resolution = true,
                   .has_punch_unit_pictures = false});
  return {std::move(printer), "made-up", ConstraintLines(source)};
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) Fail("usage: properties_open DIR | --added");
  const bool is_added = std::string(argv[1]) == "--added";
  const char *name = is_added ? "properties-open-added" : "properties-open";
  if (gtk_init_check(nullptr, nullptr) == FALSE) Fail("no X display");
  InstallStyle();
  add_pixmap_directory(kPixmapDir);
  const ProgramMessages messages(ContentOf(kInstalledCatalogue));
  const TemporaryDirectory directory;
  HeavyPrinter heavy =
      is_added ? AddedPrinterIn(directory) : HeaviestPrinterIn("properties_open", argv[1]);
  const World world(std::move(heavy.printer));
  Content content;
  MeasureProperties(&content);
  size_t combos = 0;
  size_t rows = 0;
  for (const PageContent &page : content.pages) {
    combos += page.combos.size();
    for (const Rows &list : page.combos) rows += list.size();
    for (const int list : page.lists) rows += static_cast<size_t>(list);
  }
  const Times times = Measure(content);
  const double ratio = Median(times.ratios);
  std::fprintf(
      stderr,
      "%s: %s, %zu lines of constraints; %zu combo boxes, %zu rows, %zu "
      "pages; %.1f ms, bare notebook %.1f ms; all pages after %.1f ms, longest turn of the "
      "main loop meanwhile %.1f ms (medians of %d)\n",
      name, heavy.file.c_str(), heavy.constraint_lines, combos, rows, content.pages.size(),
      Median(times.window), Median(times.bare), Median(times.all_pages), Median(times.longest_turn),
      kRuns);
  std::printf("%s\t%.2f\t%.2f\t%s\n", name, ratio, kBar, ratio <= kBar ? "ok" : "missed");
  return ratio <= kBar ? 0 : 1;
}
