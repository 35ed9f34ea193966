#include "PropertiesWindow.h"

#include <algorithm>
#include <memory>
#include <string>

#include "AccessKeys.h"
#include "ButtonBox.h"
#include "MessageDialogs.h"
#include "PresetMenu.h"
#include "PropertiesFrame.h"
#include "PropertiesPages.h"
#include "PropertiesWindowFct.h"
#include "Support.h"
#include "cmessages.h"
#include "conflictresolution.h"
#include "debug.h"
#include "globals.h"
#include "properties.h"

namespace {

constexpr int L_Border = 8;
constexpr int L_Spacing = 8;

void AddPropertiesButtons(PropertiesWindowHelper &helper, GtkWidget *parent) {
  GtkWidget *window = helper.window;
  GtkWidget *box = NewButtonBox(window, GTK_ORIENTATION_HORIZONTAL, "PropertiesHbuttonbox");
  gtk_box_pack_end(GTK_BOX(parent), box, FALSE, FALSE, 0);
  helper.ok_button =
      NewButton(window, box, "OKButton", "DEF_BTN_OK_TITLE", ButtonOKPropertiesPressed);
  GtkWidget *cancel =
      NewButton(window, box, "CancelButton", "DEF_BTN_CANCEL_TITLE", ButtonCancelPropertiesPressed);
  helper.apply_button =
      NewButton(window, box, "ApplyButton", "DEF_BTN_APPLY_TITLE", ButtonApplyPropertiesPressed);
  GtkWidget *help =
      NewButton(window, box, "HelpButton", "DEF_BTN_HELP_TITLE", ButtonHelpPropertiesPressed);
  for (GtkWidget *button : {helper.ok_button, cancel, helper.apply_button, help}) {
    gtk_widget_set_can_default(button, TRUE);
  }
  AddReturnAccelerator(window, helper.ok_button);
  AddAccelerator(window, cancel, GDK_KEY_Escape);
  AddAccelerator(window, help, GDK_KEY_F1);
}

// As wide as all tabs want to be, and as the largest page, within the screen; pages that are very
// high are scrolled. The size stays when further pages are built.
void SetSize(GtkWidget *window, GtkWidget *notebook) {
  GtkWidget *first = gtk_notebook_get_nth_page(GTK_NOTEBOOK(notebook), 0);
  const GtkRequisition page = LargestPropertiesPage();
  GtkRequisition natural;
  gtk_widget_set_size_request(first, page.width, page.height);
  gtk_notebook_set_scrollable(GTK_NOTEBOOK(notebook), FALSE);
  gtk_widget_get_preferred_size(gtk_bin_get_child(GTK_BIN(window)), nullptr, &natural);
  gtk_notebook_set_scrollable(GTK_NOTEBOOK(notebook), TRUE);
  gtk_widget_set_size_request(first, -1, -1);
  gtk_window_set_default_size(GTK_WINDOW(window), std::min(natural.width, RoomOnScreen().width),
                              std::min(natural.height, RoomOnScreen().height));
}

}  // namespace

GtkWidget *create_PropertiesWindow() {
  const LogScope log("create_PropertiesWindow");
  std::string error;
  const bool has_opener = G_PropertiesOpener.chosen_queue != nullptr;
  const std::string queue = has_opener ? G_PropertiesOpener.chosen_queue() : "";
  if (!OpenProperties(queue, &error)) {
    if (!error.empty()) gtk_widget_show(create_ErrorWindow(nullptr, error));
    return nullptr;
  }
  ForgetUserChoices();
  G_PropertiesWindow_helper = std::make_unique<PropertiesWindowHelper>();
  PropertiesWindowHelper &helper = *G_PropertiesWindow_helper;
  helper.window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  StoreWidget(helper.window, helper.window, "PropertiesWindow");
  MakeModal(helper.window);
  OnDeleteEvent(helper.window, ButtonCancelPropertiesPressed);

  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, L_Spacing);
  gtk_container_set_border_width(GTK_CONTAINER(box), L_Border);
  gtk_container_add(GTK_CONTAINER(helper.window),
                    StoreWidget(helper.window, box, "PropertiesVbox"));
  helper.notebook = StoreWidget(helper.window, gtk_notebook_new(), "PropertiesNotebook");
  gtk_container_set_border_width(GTK_CONTAINER(helper.notebook), L_Border);
  gtk_box_pack_start(GTK_BOX(box), helper.notebook, TRUE, TRUE, 0);
  AddPropertiesButtons(helper, box);
  if (G_ProgName == kModePrintTool) AddPresets(box);
  AddPropertiesPages();
  g_signal_connect(helper.notebook, "switch-page", G_CALLBACK(SwitchPageProperties), nullptr);
  SwitchPageProperties(GTK_NOTEBOOK(helper.notebook), nullptr, 0, nullptr);
  gtk_widget_show(helper.notebook);
  gtk_widget_show_all(gtk_widget_get_parent(helper.ok_button));
  gtk_widget_show(box);
  GiveAccessKeys(helper.window);
  SetSize(helper.window, helper.notebook);
  return helper.window;
}
