#include "Support.h"

#include <algorithm>
#include <memory>

#include "cmessages.h"
#include "debug.h"
#include "textencoding.h"

namespace {

// For a display that knows no monitor.
constexpr int L_UsualScreenWidth = 1024;
constexpr int L_UsualScreenHeight = 768;
constexpr int L_TextMargin = 6;
constexpr int L_FrameRoom = 48;  // pixels for the frame that the window manager draws

using Handler = void (*)();

constexpr char L_AccelGroupKey[] = "accel_group";
constexpr char L_FocusedClass[] = "kpx-focused";
constexpr int L_ListHeight = 140;

void RunHandler(GtkWidget *, gpointer handler) { reinterpret_cast<Handler>(handler)(); }

gboolean RunDeleteHandler(GtkWidget *, GdkEvent *, gpointer handler) {
  reinterpret_cast<Handler>(handler)();
  return TRUE;
}

GtkAccelGroup *WindowAccelGroup(GtkWidget *window) {
  gpointer stored = g_object_get_data(G_OBJECT(window), L_AccelGroupKey);
  if (stored != nullptr) return GTK_ACCEL_GROUP(stored);
  GtkAccelGroup *group = gtk_accel_group_new();
  gtk_window_add_accel_group(GTK_WINDOW(window), group);
  g_object_set_data_full(G_OBJECT(window), L_AccelGroupKey, group, g_object_unref);
  return group;
}

// Accelerators come before the focus, so a focused button would never get the key.
gboolean PressFocusedButton(GtkWidget *window, GdkEventKey *key, gpointer) {
  if (key->keyval != GDK_KEY_Return && key->keyval != GDK_KEY_KP_Enter) return FALSE;
  const GtkWidget *focus = gtk_window_get_focus(GTK_WINDOW(window));
  // A choice is made with the blank; to press it again would do nothing.
  if (!GTK_IS_BUTTON(focus) || GTK_IS_CHECK_BUTTON(focus)) return FALSE;
  return gtk_window_activate_focus(GTK_WINDOW(window));
}

// The window that a new dialog belongs above: the active one, else the one shown last.
GtkWindow *CurrentWindow(const GtkWidget *dialog) {
  GtkWindow *current = nullptr;
  GList *windows = gtk_window_list_toplevels();
  for (GList *link = windows; link != nullptr; link = link->next) {
    GtkWidget *window = GTK_WIDGET(link->data);
    if (window == dialog || !gtk_widget_get_visible(window)) continue;
    if (gtk_window_get_window_type(GTK_WINDOW(window)) != GTK_WINDOW_TOPLEVEL) continue;
    current = GTK_WINDOW(window);  // the newest comes last
    if (gtk_window_is_active(current) != FALSE) break;
  }
  g_list_free(windows);
  return current;
}

// The toolkit hides it again whenever a window that belongs to no other appears.
void ShowFocus(GtkWidget *window, gpointer) {
  gtk_window_set_focus_visible(GTK_WINDOW(window), TRUE);
}

// What `ask` tells of the user's first monitor, in pixels.
GdkRectangle OnMonitor(void (*ask)(GdkMonitor *monitor, GdkRectangle *area)) {
  GdkDisplay *display = gdk_display_get_default();
  GdkMonitor *monitor = gdk_display_get_primary_monitor(display);
  if (monitor == nullptr) monitor = gdk_display_get_monitor(display, 0);
  GdkRectangle area = {0, 0, L_UsualScreenWidth, L_UsualScreenHeight};
  if (monitor != nullptr) ask(monitor, &area);
  return area;
}

// A text without a cursor does not show that it has the focus; its frame does.
gboolean ShowFocusOfText(GtkWidget *, GdkEventFocus *event, gpointer frame) {
  GtkStyleContext *style = gtk_widget_get_style_context(GTK_WIDGET(frame));
  if (event->in != 0) {
    gtk_style_context_add_class(style, L_FocusedClass);
  } else {
    gtk_style_context_remove_class(style, L_FocusedClass);
  }
  return FALSE;
}

bool IsInput(const GdkEvent *event) {
  switch (gdk_event_get_event_type(event)) {
    case GDK_KEY_PRESS:
    case GDK_KEY_RELEASE:
    case GDK_BUTTON_PRESS:
    case GDK_2BUTTON_PRESS:
    case GDK_3BUTTON_PRESS:
    case GDK_BUTTON_RELEASE:
    case GDK_SCROLL:
    case GDK_DELETE:
      return true;
    default:
      return false;
  }
}

// The name that the desktop entries have too.
constexpr char L_IconName[] = "printer";

void GiveIcon(gpointer window, gpointer) {
  if (gtk_window_get_window_type(GTK_WINDOW(window)) != GTK_WINDOW_TOPLEVEL) return;
  gtk_window_set_icon_name(GTK_WINDOW(window), L_IconName);
}

void SetIcon(GtkWidget * /*drawn*/) {
  gtk_window_set_default_icon_name(L_IconName);
  // A window that was there before has asked for the default in vain, and does not ask again.
  GList *windows = gtk_window_list_toplevels();
  g_list_foreach(windows, GiveIcon, nullptr);
  g_list_free(windows);
}

// What is to be done with a window once it has been drawn.
struct Later {
  GtkWidget *window;
  void (*action)(GtkWidget *window);
};

gboolean DoLater(gpointer data) {
  const auto *later = static_cast<Later *>(data);
  later->action(later->window);
  return G_SOURCE_REMOVE;
}

void ForgetLater(gpointer data) {
  const std::unique_ptr<Later> later(static_cast<Later *>(data));
  g_object_unref(later->window);
}

gboolean IsDrawn(GtkWidget *window, cairo_t *, gpointer data) {
  const auto action = reinterpret_cast<void (*)(GtkWidget *)>(data);
  g_signal_handlers_disconnect_by_func(window, reinterpret_cast<gpointer>(IsDrawn), data);
  auto later = std::make_unique<Later>(Later{GTK_WIDGET(g_object_ref(window)), action});
  g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, DoLater, later.release(), ForgetLater);
  return FALSE;
}

}  // namespace

GtkWidget *StoreWidget(GtkWidget *window, GtkWidget *widget, const char *name) {
  gtk_widget_set_name(widget, name);
  if (widget == window) {
    g_object_set_data(G_OBJECT(window), name, widget);  // no reference: it would keep itself alive
  } else {
    g_object_set_data_full(G_OBJECT(window), name, g_object_ref(widget), g_object_unref);
  }
  return widget;
}

GtkWidget *lookup_widget(GtkWidget *widget, const char *name) {
  const LogScope log("lookup_widget");
  for (;;) {
    GtkWidget *parent = GTK_IS_MENU(widget) ? gtk_menu_get_attach_widget(GTK_MENU(widget))
                                            : gtk_widget_get_parent(widget);
    if (parent == nullptr) break;
    widget = parent;
  }
  gpointer found = g_object_get_data(G_OBJECT(widget), name);
  return found == nullptr ? nullptr : GTK_WIDGET(found);
}

GtkWidget *NewButton(GtkWidget *window, GtkWidget *box, const char *name, const char *title_key,
                     void (*pressed)()) {
  GtkWidget *button = gtk_button_new_with_label(G_Translate(title_key));
  gtk_widget_set_can_default(button, TRUE);
  gtk_container_add(GTK_CONTAINER(box), button);
  if (pressed != nullptr) {
    g_signal_connect(button, "clicked", G_CALLBACK(RunHandler),
                     reinterpret_cast<gpointer>(pressed));
  }
  return StoreWidget(window, button, name);
}

GtkWidget *NewLabel(GtkWidget *window, const char *name, const std::string &text,
                    GtkWidget *target) {
  GtkWidget *label = gtk_label_new(text.c_str());
  gtk_label_set_xalign(GTK_LABEL(label), 0.0F);
  if (target != nullptr) gtk_label_set_mnemonic_widget(GTK_LABEL(label), target);
  if (GTK_IS_COMBO_BOX(target)) LabelBy(gtk_bin_get_child(GTK_BIN(target)), label);
  return StoreWidget(window, label, name);
}

void LabelBy(GtkWidget *widget, GtkWidget *label) {
  // The toolkit makes the relation from it when somebody asks.
  gtk_widget_add_mnemonic_label(widget, label);
  g_signal_connect_object(label, "destroy", G_CALLBACK(gtk_widget_remove_mnemonic_label), widget,
                          G_CONNECT_SWAPPED);
}

void DescribeBy(GtkWidget *widget, GtkWidget *description) {
  atk_object_add_relationship(gtk_widget_get_accessible(widget), ATK_RELATION_DESCRIBED_BY,
                              gtk_widget_get_accessible(description));
}

void SetAccessibleName(GtkWidget *widget, const std::string &name) {
  atk_object_set_name(gtk_widget_get_accessible(widget), name.c_str());
}

void SetAlert(GtkWidget *window, const std::string &message) {
  AtkObject *object = gtk_widget_get_accessible(window);
  atk_object_set_role(object, ATK_ROLE_ALERT);
  atk_object_set_description(object, message.c_str());
}

void BreakLines(GtkWidget *label, int characters) {
  auto *text = GTK_LABEL(label);
  const auto length = static_cast<int>(g_utf8_strlen(gtk_label_get_text(text), -1));
  gtk_label_set_line_wrap(text, TRUE);
  gtk_label_set_max_width_chars(text, characters);
  // A window is never lower than a label wants to be at its smallest width.
  gtk_label_set_width_chars(text, std::min(length, characters));
}

GtkWidget *NewScrolledText(GtkWidget *window, const char *scrolled_name, const char *text_name,
                           const std::string &text) {
  GtkWidget *area = gtk_text_view_new();
  gtk_text_view_set_editable(GTK_TEXT_VIEW(area), FALSE);
  gtk_text_view_set_cursor_visible(GTK_TEXT_VIEW(area), FALSE);
  gtk_text_view_set_accepts_tab(GTK_TEXT_VIEW(area), FALSE);
  // Never inside a word: the toolkit would draw a hyphen there that is not in the text.
  gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(area), GTK_WRAP_WORD);
  gtk_text_view_set_left_margin(GTK_TEXT_VIEW(area), L_TextMargin);
  gtk_text_view_set_right_margin(GTK_TEXT_VIEW(area), L_TextMargin);
  // The buffer takes UTF-8 only; a file name in a message may be anything.
  const std::string shown = DisplayText(text);
  gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(area)), shown.c_str(),
                           static_cast<gint>(shown.size()));

  const char *title = gtk_window_get_title(GTK_WINDOW(window));
  if (title != nullptr) SetAccessibleName(area, title);
  GtkWidget *scrolled = gtk_scrolled_window_new(nullptr, nullptr);
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_AUTOMATIC,
                                 GTK_POLICY_ALWAYS);
  gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
  gtk_scrolled_window_set_overlay_scrolling(GTK_SCROLLED_WINDOW(scrolled), FALSE);
  gtk_container_add(GTK_CONTAINER(scrolled), StoreWidget(window, area, text_name));
  g_signal_connect(area, "focus-in-event", G_CALLBACK(ShowFocusOfText), scrolled);
  g_signal_connect(area, "focus-out-event", G_CALLBACK(ShowFocusOfText), scrolled);
  return StoreWidget(window, scrolled, scrolled_name);
}

GtkWidget *NewScrolledList(GtkWidget *window, const char *name, GtkWidget *list) {
  GtkWidget *scrolled = gtk_scrolled_window_new(nullptr, nullptr);
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_AUTOMATIC,
                                 GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
  // A bar that shows only under the pointer would hide that there are more rows.
  gtk_scrolled_window_set_overlay_scrolling(GTK_SCROLLED_WINDOW(scrolled), FALSE);
  // A window opens wide enough for all columns and tall enough for some rows.
  gtk_scrolled_window_set_propagate_natural_width(GTK_SCROLLED_WINDOW(scrolled), TRUE);
  gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(scrolled), L_ListHeight);
  gtk_container_add(GTK_CONTAINER(scrolled), list);
  return StoreWidget(window, scrolled, name);
}

void AddAccelerator(GtkWidget *window, GtkWidget *button, guint key) {
  gtk_widget_add_accelerator(button, "clicked", WindowAccelGroup(window), key, GdkModifierType(0),
                             GTK_ACCEL_VISIBLE);
}

void AddReturnAccelerator(GtkWidget *window, GtkWidget *button) {
  AddAccelerator(window, button, GDK_KEY_Return);
  AddAccelerator(window, button, GDK_KEY_KP_Enter);
  g_signal_connect(window, "key-press-event", G_CALLBACK(PressFocusedButton), nullptr);
}

void ShowFocusAtOnce(GtkWidget *window) {
  g_signal_connect_after(window, "map", G_CALLBACK(ShowFocus), nullptr);
}

FocusKeeper::FocusKeeper(GtkWidget *window, GtkWidget *instead)
    : window_(window), instead_(instead), focus_(gtk_window_get_focus(GTK_WINDOW(window))) {
  if (focus_ != nullptr) g_object_ref(focus_);
}

FocusKeeper::~FocusKeeper() {
  if (focus_ == nullptr) return;
  GtkWidget *next = gtk_widget_is_sensitive(focus_) != FALSE ? focus_ : instead_;
  if (next != nullptr && gtk_window_get_focus(GTK_WINDOW(window_)) == nullptr) {
    gtk_widget_grab_focus(next);
  }
  g_object_unref(focus_);
}

void OnDeleteEvent(GtkWidget *window, void (*handler)()) {
  g_signal_connect(window, "delete-event", G_CALLBACK(RunDeleteHandler),
                   reinterpret_cast<gpointer>(handler));
}

bool IsTooWideForScreen(int width) {
  // Panels leave more than two thirds of a screen; only the X server knows how much more.
  if (width <= OnMonitor(gdk_monitor_get_geometry).width * 2 / 3) return false;
  return width > RoomOnScreen().width;
}

GtkRequisition RoomOnScreen() {
  const GdkRectangle area = OnMonitor(gdk_monitor_get_workarea);
  return {area.width - L_FrameRoom, area.height - L_FrameRoom};
}

int TextWidth(GtkWidget *widget, const std::string &text) {
  PangoLayout *layout = gtk_widget_create_pango_layout(widget, text.c_str());
  int width = 0;
  pango_layout_get_pixel_size(layout, &width, nullptr);
  g_object_unref(layout);
  return width;
}

void KeepRoomForLines(GtkWidget *label, int lines) {
  const auto fit = +[](GtkWidget *widget, gpointer count) {
    const std::string empty_lines(static_cast<size_t>(GPOINTER_TO_INT(count)) - 1, '\n');
    PangoLayout *layout = gtk_widget_create_pango_layout(widget, empty_lines.c_str());
    int height = 0;
    pango_layout_get_pixel_size(layout, nullptr, &height);
    g_object_unref(layout);
    gtk_widget_set_size_request(widget, -1, height);
  };
  g_signal_connect(label, "style-updated", G_CALLBACK(fit), GINT_TO_POINTER(lines));
  fit(label, GINT_TO_POINTER(lines));
}

void SetOpeningSize(GtkWidget *window, int width, int height, int unwanted) {
  GtkRequisition natural;
  gtk_widget_get_preferred_size(gtk_bin_get_child(GTK_BIN(window)), nullptr, &natural);
  const GtkRequisition room = RoomOnScreen();
  gtk_window_set_default_size(GTK_WINDOW(window),
                              std::min(std::max(width, natural.width - unwanted), room.width),
                              std::min(std::max(height, natural.height), room.height));
}

void KeepOnScreen(GtkWidget *window) {
  const GtkRequisition room = RoomOnScreen();
  GdkGeometry limits = {};
  limits.max_width = room.width;
  limits.max_height = room.height;
  gtk_window_set_geometry_hints(GTK_WINDOW(window), nullptr, &limits, GDK_HINT_MAX_SIZE);
}

void MakeModal(GtkWidget *dialog) {
  gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
  gtk_window_set_type_hint(GTK_WINDOW(dialog), GDK_WINDOW_TYPE_HINT_DIALOG);
  atk_object_set_role(gtk_widget_get_accessible(dialog), ATK_ROLE_DIALOG);
  GtkWindow *parent = CurrentWindow(dialog);
  if (parent != nullptr) {
    gtk_window_set_transient_for(GTK_WINDOW(dialog), parent);
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER_ON_PARENT);
  }
}

void KeepOneLine(GtkWidget *entry) { g_object_set(entry, "truncate-multiline", TRUE, nullptr); }

void DropInput() {
  GdkDisplay *display = gdk_display_get_default();
  gdk_display_sync(display);
  while (GdkEvent *event = gdk_display_get_event(display)) {
    if (!IsInput(event)) gtk_main_do_event(event);
    gdk_event_free(event);
  }
}

void InstallStyle() {
  // A pop-up as list: a menu-style one costs ten times as much for long lists.
  GtkCssProvider *provider = gtk_css_provider_new();
  const std::string style = std::string("combobox { -GtkComboBox-appears-as-list: true; } entry.") +
                            kNotEditableClass + " { caret-color: transparent; } scrolledwindow." +
                            L_FocusedClass + " { border-color: @theme_selected_bg_color; }" +
                            " button." + kMenuButtonClass +
                            " > label { padding-right: 22px; background-image: "
                            "-gtk-icontheme('pan-down-symbolic'); background-size: 16px; "
                            "background-repeat: no-repeat; background-position: right center; }" +
                            // The toolkit's themes write titles in a grey that is hard to read.
                            " treeview header button { color: @theme_fg_color; }";
  gtk_css_provider_load_from_data(provider, style.c_str(), -1, nullptr);
  gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider),
                                            GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
  g_object_unref(provider);
}

void OnceDrawn(GtkWidget *window, void (*action)(GtkWidget *window)) {
  g_signal_connect_after(window, "draw", G_CALLBACK(IsDrawn), reinterpret_cast<gpointer>(action));
}

void SetIconOnceDrawn(GtkWidget *window) { OnceDrawn(window, SetIcon); }

void FreeString(char *string) {
  if (string == nullptr) return;
  if (G_DebugLevel != 0) {
    Log(4, "Deleting string " + PointerText(string) + " >>" + string + "<<");
  }
  g_free(string);
}

void G_FreeStringsFrom_g_list(GList *list) {
  const LogScope log("G_FreeStringsFrom_g_list");
  for (GList *link = list; link != nullptr; link = link->next) {
    FreeString(static_cast<char *>(link->data));
  }
}
