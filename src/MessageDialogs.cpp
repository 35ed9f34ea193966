#include "MessageDialogs.h"

#include <algorithm>

#include "DialogFrame.h"
#include "Pixmaps.h"
#include "Support.h"
#include "chelp.h"
#include "cmessages.h"
#include "cstring.h"
#include "debug.h"
#include "endprogram.h"
#include "globals.h"
#include "textencoding.h"

std::unique_ptr<ErrorWarningWindow> G_ErrorWarningWindow_helper;

namespace {

constexpr int L_Spacing = 8;
constexpr size_t L_MessageBuffer = 1023;
// The about box, in pixels: its size, and its text's width and place.
constexpr int L_AboutWidth = 410;
constexpr int L_AboutHeight = 360;
constexpr int L_AboutTextWidth = 370;
constexpr int L_AboutTextTop = 140;
constexpr int L_ErrorWidth = 60;  // characters
constexpr int L_AroundText = 48;  // pixels of margins, scroll bar and window border beside a text

int L_ExitOrReturn = kReturn;

void AllowNarrower(GtkWidget *scrolled, gpointer) {
  gtk_scrolled_window_set_min_content_width(GTK_SCROLLED_WINDOW(scrolled), -1);
}

// The window opens wide enough to show so much of a scrolled text, as far as the screen has room;
// once it is open the user may make it narrower.
void OpenAsWideAs(GtkWidget *scrolled, int width) {
  gtk_scrolled_window_set_min_content_width(GTK_SCROLLED_WINDOW(scrolled),
                                            std::min(width, RoomOnScreen().width - L_AroundText));
  g_signal_connect_after(scrolled, "map", G_CALLBACK(AllowNarrower), nullptr);
}

std::string LinesOf(const CList *messages) {
  std::string lines;
  for (const CString *message : Elements<CString>(messages)) {
    const char *text = fGet_CString_Value_Function(message);
    if (text != nullptr) lines.append(Utf8Prefix(text, L_MessageBuffer)) += '\n';
  }
  return lines;
}

// The box is larger than usual when the text would reach below the button, whose height includes
// the margin below it; the picture stays in the middle.
void MakeRoomForLargeText(GtkWidget *fixed, GtkWidget *picture, GtkWidget *label,
                          GtkWidget *buttons) {
  GtkRequisition text;
  GtkRequisition foot;
  gtk_widget_get_preferred_size(label, &text, nullptr);
  gtk_widget_get_preferred_size(buttons, &foot, nullptr);
  int lines = 0;
  // As high as its lines, which may be less than the place that it has.
  pango_layout_get_pixel_size(gtk_label_get_layout(GTK_LABEL(label)), nullptr, &lines);
  gtk_widget_set_size_request(fixed, -1, L_AboutTextTop + lines + L_Spacing + foot.height);
  gtk_fixed_move(GTK_FIXED(fixed), picture, 40 + std::max(0, text.width - L_AboutTextWidth) / 2,
                 15);
}

// What assistive technology reads of the box grows by that text.
void AddToAlert(GtkWidget *window, const std::string &text) {
  if (text.empty()) return;
  const char *before = atk_object_get_description(gtk_widget_get_accessible(window));
  const bool is_first = before == nullptr || *before == '\0';
  SetAlert(window, is_first ? text : std::string(before) + "\n" + text);
}

}  // namespace

GtkWidget *create_AboutWindow() {
  const LogScope log("create_AboutWindow");
  const Dialog dialog = NewDialog("dialogAbout", "DEF_WND_ABOUT_TITLE");
  gtk_widget_set_size_request(dialog.window, L_AboutWidth, L_AboutHeight);
  gtk_window_set_resizable(GTK_WINDOW(dialog.window), FALSE);
  gtk_container_set_border_width(GTK_CONTAINER(dialog.box), 0);

  GtkWidget *fixed = StoreWidget(dialog.window, gtk_fixed_new(), "fixed1");
  GtkWidget *picture = create_pixmap(dialog.window, "np_vek.xpm");
  gtk_widget_set_size_request(StoreWidget(dialog.window, picture, "AboutPixmap"), 328, 117);
  SetAccessibleName(picture, G_Translate("DEF_WND_ABOUT_TITLE"));
  gtk_fixed_put(GTK_FIXED(fixed), picture, 40, 15);
  GtkWidget *label = NewLabel(dialog.window, "label1",
                              fGetHelp_Function(G_Help.get(), "KPX_ABOUT_BEGIN"), nullptr);
  gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_CENTER);
  gtk_label_set_xalign(GTK_LABEL(label), 0.5F);
  gtk_label_set_yalign(GTK_LABEL(label), 0.0F);
  gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
  // The fixed layout gives a label the height that it needs at its smallest width.
  gtk_label_set_width_chars(GTK_LABEL(label), 36);
  gtk_label_set_max_width_chars(GTK_LABEL(label), 36);
  gtk_widget_set_size_request(label, L_AboutTextWidth, 200);
  gtk_fixed_put(GTK_FIXED(fixed), label, 10, L_AboutTextTop);

  // The button lies over the foot of the fixed layout, which fills the whole box.
  GtkWidget *overlay = gtk_overlay_new();
  gtk_container_add(GTK_CONTAINER(overlay), fixed);
  gtk_box_pack_start(GTK_BOX(dialog.box), overlay, TRUE, TRUE, 0);
  GtkWidget *button = AddOkButton(dialog, "ButtonOk", nullptr);
  gtk_widget_set_size_request(button, 52, 24);
  GtkWidget *buttons = GTK_WIDGET(g_object_ref(gtk_widget_get_parent(button)));
  gtk_container_remove(GTK_CONTAINER(dialog.box), buttons);
  gtk_widget_set_valign(buttons, GTK_ALIGN_END);
  gtk_widget_set_margin_bottom(buttons, L_Spacing);
  gtk_overlay_add_overlay(GTK_OVERLAY(overlay), buttons);
  g_object_unref(buttons);
  MakeRoomForLargeText(fixed, picture, label, buttons);
  atk_object_set_description(gtk_widget_get_accessible(dialog.window),
                             gtk_label_get_text(GTK_LABEL(label)));
  return dialog.window;
}

void G_ButtonAboutPressed() {
  const LogScope log("G_ButtonAboutPressed");
  gtk_widget_show(create_AboutWindow());
}

GtkWidget *create_ErrorWindow(const char *detail, const std::string &text) {
  const LogScope log("create_ErrorWindow");
  const Dialog dialog = NewDialog("ErrorDialog", "DEF_WND_ERROR_TITLE");
  GtkWidget *data = gtk_box_new(GTK_ORIENTATION_VERTICAL, L_Spacing);
  gtk_box_pack_start(GTK_BOX(dialog.box), StoreWidget(dialog.window, data, "DataErrorVbox"), TRUE,
                     TRUE, 0);
  AddErrorLabel(dialog.window, "ErrorLabel1", text);
  AddErrorLabel(dialog.window, "ErrorLabel2", detail == nullptr ? "" : detail);
  AddOkButton(dialog, "OKButton", nullptr);
  return dialog.window;
}

void AddErrorLabel(GtkWidget *window, const char *name, const std::string &text) {
  const std::string shown = DecodeLine(text);
  AddToAlert(window, shown);
  GtkWidget *label = NewLabel(window, name, shown, nullptr);
  BreakLines(label, L_ErrorWidth);
  gtk_label_set_selectable(GTK_LABEL(label), TRUE);
  gtk_widget_set_can_focus(label, FALSE);
  gtk_widget_show(label);
  gtk_box_pack_start(GTK_BOX(lookup_widget(window, "DataErrorVbox")), label, TRUE, TRUE, 0);
}

void CallNote(GtkWidget *window) {
  gtk_window_set_title(GTK_WINDOW(window), G_Translate("DEF_WND_NOTE_TITLE"));
}

void ShowError(const char *key) { gtk_widget_show(create_ErrorWindow(nullptr, G_Translate(key))); }

GtkWidget *create_HelpWindow(const std::string &text) {
  const LogScope log("create_HelpWindow");
  const Dialog dialog = NewDialog("KPXHelpDialog", "DEF_WND_HELP_TITLE");
  gtk_window_set_default_size(GTK_WINDOW(dialog.window), 480, 360);
  GtkWidget *scrolled = NewScrolledText(dialog.window, "HelpScrolledwindow", "HelpText", text);
  gtk_box_pack_start(GTK_BOX(dialog.box), scrolled, TRUE, TRUE, 0);
  GtkWidget *area = lookup_widget(dialog.window, "HelpText");
  gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(area), GTK_WRAP_NONE);
  OpenAsWideAs(scrolled, TextWidth(area, text) + L_AroundText);
  AddOkButton(dialog, "OKButton", nullptr);
  return dialog.window;
}

void ShowHelp(const char *block) {
  gtk_widget_show(create_HelpWindow(fGetHelp_Function(G_Help.get(), block)));
}

GtkWidget *create_ErrorWarningWindow(const CList *messages, int exit_or_return) {
  const LogScope log("create_ErrorWarningWindow");
  L_ExitOrReturn = exit_or_return;
  const Dialog dialog = NewDialog("KPXErrorWarningDialog", "DEF_WND_ERROR_TITLE");
  gtk_window_set_default_size(GTK_WINDOW(dialog.window), 480, 360);
  gtk_box_pack_start(
      GTK_BOX(dialog.box),
      NewLabel(dialog.window, "ErrorWarningLabel", G_Translate("ERR_ERRS_AND_WRNS"), nullptr),
      FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(dialog.box),
                     NewScrolledText(dialog.window, "ErrorWarningScrolledwindow",
                                     "ErrorWarningText", LinesOf(messages)),
                     TRUE, TRUE, 0);
  SetAlert(dialog.window, G_Translate("ERR_ERRS_AND_WRNS"));
  AddOkButton(dialog, "OKButton", ButtonOkErrorWarningPressed);
  OnDeleteEvent(dialog.window, ButtonOkErrorWarningPressed);
  G_ErrorWarningWindow_helper = std::make_unique<ErrorWarningWindow>(
      ErrorWarningWindow{dialog.window, lookup_widget(dialog.window, "ErrorWarningText")});
  return dialog.window;
}

void ButtonOkErrorWarningPressed() {
  // Kept on purpose: the log knows this handler under another name.
  const LogScope log("ButtonOkErrorWindowPressed");
  if (L_ExitOrReturn == kExit) EndProgram(1);
  if (L_ExitOrReturn != kReturn || G_ErrorWarningWindow_helper == nullptr) return;
  gtk_widget_destroy(G_ErrorWarningWindow_helper->window);
  G_ErrorWarningWindow_helper.reset();
}
