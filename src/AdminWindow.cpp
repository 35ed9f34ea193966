#include "AdminWindow.h"

#include "AdminWindowFct.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"

GtkWidget *create_AdminWindow() {
  const LogScope log("create_AdminWindow");
  GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  StoreWidget(window, window, "AdminWindow");
  gtk_window_set_title(GTK_WINDOW(window), G_Translate("DEF_WND_ADMIN_TITLE"));
  gtk_window_set_default_size(GTK_WINDOW(window), 432, 315);
  OnDeleteEvent(window, ButtonCancelPressed);
  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
  gtk_container_set_border_width(GTK_CONTAINER(box), 10);
  gtk_container_add(GTK_CONTAINER(window), box);
  GtkWidget *buttons = NewButtonBox(window, GTK_ORIENTATION_HORIZONTAL, "AdminHbuttonbox");
  gtk_box_pack_end(GTK_BOX(box), buttons, FALSE, FALSE, 0);
  GtkWidget *cancel =
      NewButton(window, buttons, "CancelButton", "DEF_BTN_CANCEL_TITLE", ButtonCancelPressed);
  AddAccelerator(window, cancel, GDK_KEY_Escape);
  gtk_widget_show_all(box);
  return window;
}
