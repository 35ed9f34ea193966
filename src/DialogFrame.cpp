#include "DialogFrame.h"

#include "AccessKeys.h"
#include "ButtonBox.h"
#include "Support.h"
#include "cmessages.h"

namespace {

constexpr int L_Border = 10;
constexpr int L_Spacing = 8;

void DestroyWindowOf(GtkWidget *widget, gpointer) {
  gtk_widget_destroy(gtk_widget_get_toplevel(widget));
}

}  // namespace

Dialog NewDialog(const char *name, const char *title_key) {
  GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  StoreWidget(window, window, name);
  gtk_window_set_title(GTK_WINDOW(window), G_Translate(title_key));
  MakeModal(window);
  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, L_Spacing);
  gtk_container_set_border_width(GTK_CONTAINER(box), L_Border);
  gtk_container_add(GTK_CONTAINER(window), box);
  return {window, box};
}

GtkWidget *AddOkButton(const Dialog &dialog, const char *name, void (*pressed)()) {
  GtkWidget *buttons = NewButtonBox(dialog.window, GTK_ORIENTATION_HORIZONTAL, "DialogHbuttonbox");
  GtkWidget *button = NewButton(dialog.window, buttons, name, "DEF_BTN_OK_TITLE", pressed);
  if (pressed == nullptr) {
    g_signal_connect(button, "clicked", G_CALLBACK(DestroyWindowOf), nullptr);
  }
  gtk_box_pack_end(GTK_BOX(dialog.box), buttons, FALSE, FALSE, 0);
  AddReturnAccelerator(dialog.window, button);
  AddAccelerator(dialog.window, button, GDK_KEY_Escape);
  gtk_widget_grab_focus(button);
  gtk_widget_show_all(dialog.box);
  GiveAccessKeys(dialog.window);
  return button;
}

void AddOkCancelHelp(const Dialog &dialog, const char *box_name, const DialogHandlers &handlers) {
  GtkWidget *window = dialog.window;
  GtkWidget *box = NewButtonBox(window, GTK_ORIENTATION_HORIZONTAL, box_name);
  gtk_box_pack_end(GTK_BOX(dialog.box), box, FALSE, FALSE, 0);
  GtkWidget *ok = NewButton(window, box, "OKButton", "DEF_BTN_OK_TITLE", handlers.ok);
  GtkWidget *cancel =
      NewButton(window, box, "CancelButton", "DEF_BTN_CANCEL_TITLE", handlers.cancel);
  GtkWidget *help = NewButton(window, box, "HelpButton", "DEF_BTN_HELP_TITLE", handlers.help);
  AddReturnAccelerator(window, ok);
  AddAccelerator(window, cancel, GDK_KEY_Escape);
  AddAccelerator(window, help, GDK_KEY_F1);
  OnDeleteEvent(window, handlers.cancel);
  gtk_widget_show_all(dialog.box);
  GiveAccessKeys(window);
}
