#include "PropertiesFrame.h"

std::unique_ptr<PropertiesWindowHelper> G_PropertiesWindow_helper;
PropertiesOpener G_PropertiesOpener;

void FocusInProperties(GtkWidget *widget) {
  if (widget == nullptr || G_PropertiesWindow_helper == nullptr) return;
  auto *notebook = GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook);
  for (int page = 0; page < gtk_notebook_get_n_pages(notebook); ++page) {
    if (gtk_widget_is_ancestor(widget, gtk_notebook_get_nth_page(notebook, page)) == FALSE) {
      continue;
    }
    gtk_notebook_set_current_page(notebook, page);
  }
  gtk_widget_grab_focus(widget);
}
