// A GTK module that tells tests what the windows of a program show. It is loaded into the program
// as it ships by GTK itself (gtk-modules=kpxinspect in GTK's settings of the system) and only
// looks: input is given to the program by the X server.
//
// Listens on the Unix socket named by KPX_INSPECT_SOCKET, without it on none. A request is one
// line, "WORD" or "WORD NAME" or "WORD NAME NUMBER"; an answer is a line "ok <bytes>" or "none
// <bytes>" (nothing of that name) and that many bytes. Widgets are found by their names in the
// visible top-level windows, that of the current grab first; "WINDOW/NAME" looks in one window
// alone.
//
//   windows       lines "<name> TAB <title>"
//   geometry N    "<x> <y> <width> <height>" in pixels of the screen
//   row N n       the same for row n of a list; "none" when it is scrolled out of sight
//   text N        what a label, button, entry, combo, text area or frame shows; a window's title
//   sensitive N   "1" or "0"
//   active N      "1" or "0" for a toggle or radio button
//   xid N         the X identifier of its top-level window; "none" in a pop-up
//   focus         "<window>/<widget>" of the window that has the focus
//   focusarea     "<x> <y> <width> <height>" of the focus, of the cursor's row when it is in a list
//   focusfault    what keeps a user from seeing where the focus is; empty when nothing does
//   rows N        lines of a list's or combo's cells with TAB between; "*" before a selected row,
//                 "-" before another
//   rowtip N I    the tooltip of the list's row I, which may be empty
//   clipped       lines "<window>/<widget> TAB <text>" for every text that is not shown whole, or
//                 that another one or a button covers
//   unnamed       lines "<window>/<widget> TAB <role>" for every control, list, picture and window
//                 without a name or label for assistive technology
//   seen          lines "<x> <y> <width> <height> <state> <window>/<widget>" of every text and
//                 picture of the foremost window
//   keys          lines "<window>/<widget> TAB <text> TAB <letter>" for every button, tab and label
//                 of a field in the foremost window; the letter is that of its access key, "-"
//                 without one, "*" for a button that another key presses; the file chooser's own
//                 are left out
//   texts         lines "<window>/<widget> TAB <text>", one a line, of every text in the windows,
//                 in lists and in tooltips; what the toolkit's file chooser shows is left out
//   turn          the longest turn of the main loop since this was last asked, in milliseconds
//   idle          "1", when everything that was under way has been done
//   held          "1" while a button that a key has pressed is not clicked yet, else ""
//   drawn         "1", when all windows have been drawn as they are now
//
// Requests are answered when all input that has come has been dealt with. "now REQUEST" is answered
// as soon as the program's main loop turns, before it draws.

#include <gdk/gdkx.h>
#include <glib-unix.h>
#include <gmodule.h>
#include <gtk/gtk.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "inspectchecks.h"
#include "inspectwidgets.h"

namespace {

GtkWidget *Find(const std::string &path) {
  const size_t slash = path.find('/');
  const std::string window_name = slash == std::string::npos ? "" : path.substr(0, slash);
  const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  GtkWidget *found = nullptr;
  for (GtkWidget *window : VisibleWindows()) {
    if (!window_name.empty() && window_name != gtk_widget_get_name(window)) continue;
    const bool go_on = Walk(window, [&](GtkWidget *widget) {
      if (name == gtk_widget_get_name(widget)) found = widget;
      return found == nullptr;
    });
    if (!go_on) break;
  }
  return found;
}

Answer ScreenRectangle(GtkWidget *widget, GdkRectangle area) {
  GtkWidget *window = gtk_widget_get_toplevel(widget);
  int x = 0;
  int y = 0;
  if (gtk_widget_translate_coordinates(widget, window, area.x, area.y, &x, &y) == FALSE) return {};
  int origin_x = 0;
  int origin_y = 0;
  gdk_window_get_origin(gtk_widget_get_window(window), &origin_x, &origin_y);
  // The toolkit counts in units of the display's scale.
  const int scale = gtk_widget_get_scale_factor(window);
  return std::to_string(scale * (origin_x + x)) + " " + std::to_string(scale * (origin_y + y)) +
         " " + std::to_string(scale * area.width) + " " + std::to_string(scale * area.height);
}

Answer Geometry(GtkWidget *widget) {
  GtkAllocation size;
  gtk_widget_get_allocation(widget, &size);
  return ScreenRectangle(widget, {0, 0, size.width, size.height});
}

Answer RowGeometry(GtkWidget *widget, int row) {
  if (!GTK_IS_TREE_VIEW(widget)) return {};
  GtkTreeView *list = GTK_TREE_VIEW(widget);
  GtkTreePath *path = gtk_tree_path_new_from_indices(row, -1);
  GdkRectangle cell = {0, 0, 0, 0};
  gtk_tree_view_get_cell_area(list, path, gtk_tree_view_get_column(list, 0), &cell);
  gtk_tree_path_free(path);
  GdkRectangle seen;
  gtk_tree_view_get_visible_rect(list, &seen);
  int top = 0;
  gtk_tree_view_convert_bin_window_to_tree_coords(list, 0, cell.y, nullptr, &top);
  if (cell.height == 0 || top < seen.y || top + cell.height > seen.y + seen.height) return {};
  gtk_tree_view_convert_bin_window_to_widget_coords(list, cell.x, cell.y, &cell.x, &cell.y);
  return ScreenRectangle(widget, cell);
}

// How many texts a row shows; those behind them in the model are its tooltip and the like.
int ShownTexts(GtkWidget *widget) {
  if (GTK_IS_TREE_VIEW(widget)) {
    return static_cast<int>(gtk_tree_view_get_n_columns(GTK_TREE_VIEW(widget)));
  }
  return 1;
}

std::string CellsOf(GtkTreeModel *model, GtkTreeIter *iter, int texts) {
  std::string cells;
  bool first = true;
  const int columns = gtk_tree_model_get_n_columns(model);
  for (int column = 0; column < columns && texts > 0; ++column) {
    if (gtk_tree_model_get_column_type(model, column) != G_TYPE_STRING) continue;
    --texts;
    gchar *text = nullptr;
    gtk_tree_model_get(model, iter, column, &text, -1);
    if (!first) cells += '\t';
    cells += OneLine(Taken(text));
    first = false;
  }
  return cells;
}

bool IsRowSelected(GtkWidget *widget, GtkTreeIter *iter) {
  if (GTK_IS_TREE_VIEW(widget)) {
    return gtk_tree_selection_iter_is_selected(gtk_tree_view_get_selection(GTK_TREE_VIEW(widget)),
                                               iter) != FALSE;
  }
  GtkTreeIter active;
  return gtk_combo_box_get_active_iter(GTK_COMBO_BOX(widget), &active) != FALSE &&
         active.user_data == iter->user_data;
}

Answer Rows(GtkWidget *widget) {
  GtkTreeModel *model = nullptr;
  if (GTK_IS_TREE_VIEW(widget)) model = gtk_tree_view_get_model(GTK_TREE_VIEW(widget));
  if (GTK_IS_COMBO_BOX(widget)) model = gtk_combo_box_get_model(GTK_COMBO_BOX(widget));
  // A list that is being read or refilled shows no rows.
  if (model == nullptr) return GTK_IS_TREE_VIEW(widget) ? Answer("") : Answer();
  std::string rows;
  GtkTreeIter iter;
  for (gboolean more = gtk_tree_model_get_iter_first(model, &iter); more != FALSE;
       more = gtk_tree_model_iter_next(model, &iter)) {
    rows += IsRowSelected(widget, &iter) ? '*' : '-';
    rows += CellsOf(model, &iter, ShownTexts(widget)) + "\n";
  }
  return rows;
}

// It stands behind the shown texts.
Answer RowTip(GtkWidget *widget, int row) {
  GtkTreeIter iter;
  if (!GTK_IS_TREE_VIEW(widget)) return {};
  GtkTreeModel *model = gtk_tree_view_get_model(GTK_TREE_VIEW(widget));
  if (model == nullptr || gtk_tree_model_iter_nth_child(model, &iter, nullptr, row) == FALSE) {
    return {};
  }
  gchar *tip = nullptr;
  gtk_tree_model_get(model, &iter, gtk_tree_model_get_n_columns(model) - 1, &tip, -1);
  return Taken(tip);
}

std::string Windows() {
  std::string lines;
  for (GtkWidget *window : VisibleWindows()) {
    if (!GTK_IS_WINDOW(window)) continue;
    lines += std::string(gtk_widget_get_name(window)) + "\t" +
             OneLine(OrEmpty(gtk_window_get_title(GTK_WINDOW(window)))) + "\n";
  }
  return lines;
}

std::string Focus() {
  for (GtkWidget *window : VisibleWindows()) {
    if (!GTK_IS_WINDOW(window) || gtk_window_has_toplevel_focus(GTK_WINDOW(window)) == FALSE) {
      continue;
    }
    GtkWidget *focus = gtk_window_get_focus(GTK_WINDOW(window));
    return focus == nullptr ? std::string(gtk_widget_get_name(window)) + "/" : PathOf(focus);
  }
  return "";
}

// The widget that has the focus in the window that has the input; null without one.
GtkWidget *FocusWidget() {
  for (GtkWidget *window : VisibleWindows()) {
    if (!GTK_IS_WINDOW(window) || gtk_window_has_toplevel_focus(GTK_WINDOW(window)) == FALSE) {
      continue;
    }
    return gtk_window_get_focus(GTK_WINDOW(window));
  }
  return nullptr;
}

Answer FocusArea() {
  GtkWidget *focus = FocusWidget();
  if (focus == nullptr) return {};
  const GdkRectangle area = FocusRectangle(focus);
  return ScreenRectangle(focus, area);
}

std::string FocusFault() {
  GtkWidget *focus = FocusWidget();
  if (focus == nullptr) return "no widget has the focus";
  if (gtk_widget_get_mapped(focus) == FALSE) return PathOf(focus) + " is not shown";
  if (gtk_widget_is_sensitive(focus) == FALSE) return PathOf(focus) + " is insensitive";
  GtkWidget *window = gtk_widget_get_toplevel(focus);
  if (gtk_window_get_focus_visible(GTK_WINDOW(window)) == FALSE) {
    return PathOf(focus) + " draws no focus";
  }
  return IsScrolledAway(focus) ? PathOf(focus) + " is scrolled out of sight" : "";
}

// The lines of a widget's own texts; a button's is that of the label in it.
std::string LinesAbout(GtkWidget *widget) {
  std::string text = Taken(gtk_widget_get_tooltip_text(widget)) + "\n";
  if (!GTK_IS_BUTTON(widget) && !GTK_IS_FRAME(widget)) text += Text(widget).value_or("") + "\n";
  if (GTK_IS_TREE_VIEW(widget) || GTK_IS_COMBO_BOX(widget)) {
    std::string rows = Rows(widget).value_or("");
    // Without the sign before each row; cells become lines.
    for (size_t start = 0; start < rows.size(); start = rows.find('\n', start) + 1) {
      rows.erase(start, 1);
    }
    std::replace(rows.begin(), rows.end(), '\t', '\n');
    text += rows;
  }
  std::string lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty()) lines += PathOf(widget) + "\t" + line + "\n";
  }
  return lines;
}

std::string AllTexts() {
  std::string lines;
  const std::function<void(GtkWidget *)> add = [&](GtkWidget *widget) {
    if (gtk_widget_get_mapped(widget) == FALSE || GTK_IS_FILE_CHOOSER_WIDGET(widget)) return;
    lines += LinesAbout(widget);
    for (GtkWidget *child : ChildrenOf(widget)) add(child);
  };
  for (GtkWidget *window : VisibleWindows()) add(window);
  return lines;
}

Answer WindowIdentifier(GtkWidget *window) {
  if (gtk_window_get_window_type(GTK_WINDOW(window)) != GTK_WINDOW_TOPLEVEL) return {};
  return std::to_string(gdk_x11_window_get_xid(gtk_widget_get_window(window)));
}

// Microseconds that have passed, and those that this thread has worked.
struct TurnTime {
  gint64 passed = 0;
  gint64 worked = 0;
};

TurnTime TurnTimeNow() {
  timespec worked = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &worked);
  return {g_get_monotonic_time(), worked.tv_sec * G_USEC_PER_SEC + worked.tv_nsec / 1000};
}

// A turn lasts from the end of one wait for events to the beginning of the next.
std::optional<TurnTime> L_TurnStart;
TurnTime L_LongestTurn;

gint WaitForEvents(GPollFD *descriptors, guint count, gint timeout) {
  const TurnTime now = TurnTimeNow();
  if (L_TurnStart) {
    L_LongestTurn = {std::max(L_LongestTurn.passed, now.passed - L_TurnStart->passed),
                     std::max(L_LongestTurn.worked, now.worked - L_TurnStart->worked)};
  }
  const gint result = g_poll(descriptors, count, timeout);
  L_TurnStart = TurnTimeNow();
  return result;
}

std::string TakeLongestTurn() {
  const TurnTime longest = std::exchange(L_LongestTurn, {});
  L_TurnStart.reset();  // this one is the tests' own
  return std::to_string(longest.passed / 1000) + " " + std::to_string(longest.worked / 1000);
}

Answer AboutWidget(const std::string &word, const std::string &name, int number) {
  GtkWidget *widget = Find(name);
  if (widget == nullptr) return {};
  if (word == "geometry") return Geometry(widget);
  if (word == "xid") return WindowIdentifier(gtk_widget_get_toplevel(widget));
  if (word == "row") return RowGeometry(widget, number);
  if (word == "text") return Text(widget);
  if (word == "sensitive") return gtk_widget_is_sensitive(widget) != FALSE ? "1" : "0";
  if (word == "rows") return Rows(widget);
  if (word == "count" && GTK_IS_TREE_VIEW(widget)) {
    GtkTreeModel *model = gtk_tree_view_get_model(GTK_TREE_VIEW(widget));
    return std::to_string(model == nullptr ? 0 : gtk_tree_model_iter_n_children(model, nullptr));
  }
  if (word == "rowtip") return RowTip(widget, number);
  if (word == "active" && GTK_IS_TOGGLE_BUTTON(widget)) {
    return gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(widget)) != FALSE ? "1" : "0";
  }
  return {};
}

// Whether a key has pressed a button that has not been released yet: GTK shows it pressed, with the
// keyboard in its hold, for a quarter of a second before it is clicked.
bool IsButtonHeldByKey() {
  GdkSeat *seat = gdk_display_get_default_seat(gdk_display_get_default());
  GdkDevice *keyboard = gdk_seat_get_keyboard(seat);
  const std::vector<GtkWidget *> windows = VisibleWindows();
  return std::any_of(windows.begin(), windows.end(), [&](GtkWidget *window) {
    GtkWindowGroup *group = gtk_window_get_group(GTK_WINDOW(window));
    return GTK_IS_BUTTON(gtk_window_group_get_current_device_grab(group, keyboard)) != FALSE;
  });
}

Answer AnswerTo(const std::string &request) {
  const size_t first = request.find(' ');
  const std::string word = request.substr(0, first);
  if (word == "windows") return Windows();
  if (word == "focus") return Focus();
  if (word == "focusarea") return FocusArea();
  if (word == "focusfault") return FocusFault();
  if (word == "clipped") return Clipped();
  if (word == "keys") return AccessKeys();
  if (word == "unnamed") return Unnamed();
  if (word == "seen") return SeenAreas();
  if (word == "texts") return AllTexts();
  if (word == "turn") return TakeLongestTurn();
  if (word == "idle") return "1";
  if (word == "held") return IsButtonHeldByKey() ? "1" : "";
  if (first == std::string::npos) return {};
  const size_t second = request.find(' ', first + 1);
  const std::string name = request.substr(
      first + 1, second == std::string::npos ? std::string::npos : second - first - 1);
  const int number = second == std::string::npos ? -1 : std::atoi(request.c_str() + second + 1);
  return AboutWidget(word, name, number);
}

// Begins a request that is answered before anything is drawn, whatever input waits.
constexpr std::string_view kAtOnce = "now ";

struct Connection {
  int descriptor = -1;
  std::string pending;  // what came of the next request
};

void WriteAll(int descriptor, const std::string &text) {
  size_t sent = 0;
  while (sent < text.size()) {
    const ssize_t count = send(descriptor, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
    if (count < 0) return;
    sent += static_cast<size_t>(count);
  }
}

void SendAnswer(const Connection *connection, const Answer &answer) {
  WriteAll(connection->descriptor, (answer ? "ok " : "none ") +
                                       std::to_string(answer ? answer->size() : 0) + "\n" +
                                       answer.value_or(""));
}

// The windows that have not been drawn since it was asked for.
struct Drawing {
  Connection *connection = nullptr;
  size_t windows = 0;
};

void NoteDrawn(GdkFrameClock *clock, gpointer data) {
  g_signal_handlers_disconnect_by_func(clock, reinterpret_cast<gpointer>(NoteDrawn), data);
  auto *drawing = static_cast<Drawing *>(data);
  if (--drawing->windows != 0) return;
  gdk_display_sync(gdk_display_get_default());
  SendAnswer(drawing->connection, "1");
}

void AnswerWhenDrawn(Connection *connection) {
  static Drawing drawing;
  const std::vector<GtkWidget *> windows = VisibleWindows();
  drawing = {connection, windows.size()};
  if (windows.empty()) SendAnswer(connection, "1");
  for (GtkWidget *window : windows) {
    g_signal_connect(gtk_widget_get_frame_clock(window), "after-paint", G_CALLBACK(NoteDrawn),
                     &drawing);
    gtk_widget_queue_draw(window);
  }
}

// Whether input has come that the program has not seen yet. GTK itself denies it while it holds
// events back between two frames, so the X connection is asked too.
bool IsInputPending() {
  GdkDisplay *display = gdk_display_get_default();
  gdk_display_sync(display);
  return gtk_events_pending() != FALSE ||
         XEventsQueued(GDK_DISPLAY_XDISPLAY(display), QueuedAlready) > 0;
}

std::string TakeRequest(Connection *connection) {
  const size_t end = connection->pending.find('\n');
  std::string request = connection->pending.substr(0, end);
  connection->pending.erase(0, end + 1);
  return request;
}

// Runs when nothing else is left to do.
gboolean AnswerWhenIdle(gpointer data) {
  auto *connection = static_cast<Connection *>(data);
  if (IsInputPending()) return G_SOURCE_CONTINUE;
  const std::string request = TakeRequest(connection);
  if (request == "drawn") {
    AnswerWhenDrawn(connection);
  } else {
    SendAnswer(connection, AnswerTo(request));
  }
  return G_SOURCE_REMOVE;
}

gboolean ReadRequest(gint descriptor, GIOCondition, gpointer data) {
  auto *connection = static_cast<Connection *>(data);
  char buffer[1024];
  const ssize_t count = read(descriptor, buffer, sizeof buffer);
  if (count <= 0) {
    // An answer may still be under way; the few bytes of the record stay until the program ends.
    close(descriptor);
    return G_SOURCE_REMOVE;
  }
  connection->pending.append(buffer, static_cast<size_t>(count));
  if (connection->pending.find('\n') == std::string::npos) return G_SOURCE_CONTINUE;
  if (connection->pending.starts_with(kAtOnce)) {
    SendAnswer(connection, AnswerTo(TakeRequest(connection).substr(kAtOnce.size())));
  } else {
    g_idle_add_full(G_PRIORITY_LOW, AnswerWhenIdle, connection, nullptr);
  }
  return G_SOURCE_CONTINUE;
}

gboolean AcceptConnection(gint listener, GIOCondition, gpointer) {
  const int descriptor = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
  if (descriptor < 0) return G_SOURCE_CONTINUE;
  static std::vector<std::unique_ptr<Connection>> connections;
  connections.push_back(std::make_unique<Connection>(Connection{descriptor, ""}));
  g_unix_fd_add(descriptor, G_IO_IN, ReadRequest, connections.back().get());
  return G_SOURCE_CONTINUE;
}

int ListenOn(const char *path) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (std::strlen(path) >= sizeof address.sun_path) return -1;
  std::strcpy(address.sun_path, path);
  const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  unlink(path);
  if (bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0 &&
      listen(listener, 4) == 0) {
    return listener;
  }
  close(listener);
  return -1;
}

}  // namespace

extern "C" G_MODULE_EXPORT void gtk_module_init(gint *, gchar ***) {
  const char *path = std::getenv("KPX_INSPECT_SOCKET");
  if (path == nullptr) return;
  g_main_context_set_poll_func(nullptr, WaitForEvents);
  const int listener = ListenOn(path);
  if (listener < 0) {
    g_printerr("libkpxinspect: no socket\n");
    return;
  }
  g_unix_fd_add(listener, G_IO_IN, AcceptConnection, nullptr);
}
