#include "AdminWindow.h"

#include "AccessKeys.h"
#include "AddressNotice.h"
#include "AdminWindowFct.h"
#include "ButtonBox.h"
#include "ListWidget.h"
#include "PropertiesFrame.h"
#include "QueueTips.h"
#include "Support.h"
#include "cmessages.h"
#include "cprintqueue.h"
#include "debug.h"
#include "globals.h"
#include "ignoreresult.h"
#include "properties.h"

std::unique_ptr<KPXadminWindowHelper> G_KPXadminWindow_helper;
Owned<CList> G_QueuesSelections;

namespace {

constexpr int L_Border = 10;
constexpr int L_Spacing = 8;
constexpr int L_UsualCharacters = 24;  // of a cell; longer ones do not make the window wider

void AddSearch(KPXadminWindowHelper &helper, GtkWidget *parent) {
  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, L_Spacing);
  gtk_box_pack_start(GTK_BOX(parent), StoreWidget(helper.window, box, "SearchHbox"), FALSE, FALSE,
                     0);
  helper.search_entry = StoreWidget(helper.window, gtk_search_entry_new(), "SearchEntry");
  GtkWidget *label =
      NewLabel(helper.window, "SearchLabel", G_Translate("DEF_LBL_SEARCH"), helper.search_entry);
  gtk_box_pack_start(GTK_BOX(box), label, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(box), helper.search_entry, TRUE, TRUE, 0);
  KeepOneLine(helper.search_entry);
  g_signal_connect(helper.search_entry, "changed", G_CALLBACK(ShowSearchedQueues), nullptr);
  g_signal_connect(helper.search_entry, "activate", G_CALLBACK(LeaveSearch), nullptr);
}

void AddQueueList(KPXadminWindowHelper &helper, GtkWidget *parent) {
  helper.queues_list = NewList({{"DEF_LBL_QUEUE_TITLE", 120},
                                {"DEF_LBL_PRINTER_TITLE", 150},
                                {"DEF_LBL_TYPE_TITLE", 120},
                                {"DEF_LBL_IPADDRESS_TITLE", 120}},
                               GTK_SELECTION_MULTIPLE);
  StoreWidget(helper.window, helper.queues_list, "QueuesClist");
  SetAccessibleName(helper.queues_list, G_Translate("DEF_LBL_QUEUES"));
  ListOnSelection(helper.queues_list, QueuesCListRowSelection, QueuesCListRowUnSelection);
  ListSortByTitles(helper.queues_list);
  ListOnActivation(helper.queues_list, QueueActivated);
  g_signal_connect(helper.queues_list, "button-press-event", G_CALLBACK(LogMultipleClick), nullptr);
  g_signal_connect(helper.queues_list, "key-press-event", G_CALLBACK(DeleteByKey), nullptr);
  GtkWidget *scrolled = NewScrolledList(helper.window, "QueuesScrolledwindow", helper.queues_list);
  gtk_box_pack_start(GTK_BOX(parent), scrolled, TRUE, TRUE, 0);
}

void AddQueueButtons(KPXadminWindowHelper &helper, GtkWidget *parent) {
  GtkWidget *window = helper.window;
  GtkWidget *box = NewButtonBox(window, GTK_ORIENTATION_HORIZONTAL, "QueueHbuttonbox");
  gtk_box_pack_start(GTK_BOX(parent), box, FALSE, FALSE, 0);
  NewButton(window, box, "AddButton", "DEF_BTN_ADD_TITLE", ButtonAddPressed);
  helper.clone_button =
      NewButton(window, box, "CloneButton", "DEF_BTN_CLONE_TITLE", ButtonClonePressed);
  helper.properties_button = NewButton(window, box, "PropertiesButton", "DEF_BTN_PROPERTIES_TITLE",
                                       ButtonPropertiesPressed);
  helper.delete_button = NewButton(window, box, "DeleteButton", "DEF_BTN_DELETE_TITLE",
                                   [] { ButtonKPXDeletePressed(1); });
  for (GtkWidget *button : {helper.clone_button, helper.properties_button, helper.delete_button}) {
    gtk_widget_set_sensitive(button, FALSE);
  }
}

void AddAdminButtons(GtkWidget *window, GtkWidget *parent) {
  GtkWidget *box = NewButtonBox(window, GTK_ORIENTATION_HORIZONTAL, "AdminHbuttonbox");
  gtk_box_pack_start(GTK_BOX(parent), box, FALSE, FALSE, 0);
  NewButton(window, box, "SaveButton", "DEF_BTN_SAVE_TITLE", ButtonSavePressed);
  GtkWidget *cancel =
      NewButton(window, box, "CancelButton", "DEF_BTN_CANCEL_TITLE", ButtonCancelPressed);
  GtkWidget *help = NewButton(window, box, "HelpButton", "DEF_BTN_HELP_TITLE", ButtonHelpPressed);
  AddAccelerator(window, cancel, GDK_KEY_Escape);
  AddAccelerator(window, help, GDK_KEY_F1);
}

void AddAllQueues(GtkWidget *list) {
  ListFreeze(list);
  for (const auto [name, queue] : Pairs<CPrintQueue>(G_Queues_hash)) {
    IgnoreResult(AddItemInQueuesCListWidget(name), "a queue that cannot be shown is reported");
  }
  ListThaw(list);
}

}  // namespace

GtkWidget *create_AdminWindow() {
  const LogScope log("create_AdminWindow");
  G_QueuesSelections = CreateList();
  RememberUnfinishedRemovals();
  G_PropertiesOpener = {[] { return SelectedQueueName(G_QueuesSelections.get()); },
                        ReplaceSelectedQueue};
  G_KPXadminWindow_helper = std::make_unique<KPXadminWindowHelper>();
  KPXadminWindowHelper &helper = *G_KPXadminWindow_helper;
  helper.window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  StoreWidget(helper.window, helper.window, "AdminWindow");
  gtk_window_set_title(GTK_WINDOW(helper.window), G_Translate("DEF_WND_ADMIN_TITLE"));
  OnDeleteEvent(helper.window, ButtonCancelPressed);
  g_signal_connect(helper.window, "key-press-event", G_CALLBACK(EndSearchByEscape), nullptr);

  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, L_Spacing);
  gtk_container_set_border_width(GTK_CONTAINER(box), L_Border);
  gtk_container_add(GTK_CONTAINER(helper.window), box);
  AddSearch(helper, box);
  AddQueueList(helper, box);
  gtk_box_pack_start(GTK_BOX(box), NewAddressNotice(helper.window), FALSE, FALSE, 0);
  AddQueueButtons(helper, box);
  gtk_box_pack_start(GTK_BOX(box), gtk_separator_new(GTK_ORIENTATION_HORIZONTAL), FALSE, FALSE, 0);
  AddAdminButtons(helper.window, box);
  gtk_widget_show_all(box);
  GiveAccessKeys(helper.window);
  AddAllQueues(helper.queues_list);
  WatchListedQueues(helper.queues_list);
  SetOpeningSize(helper.window, 432, 315,
                 ListWidthOfLongCells(helper.queues_list, L_UsualCharacters));
  gtk_widget_grab_focus(helper.queues_list);
  ShowFocusAtOnce(helper.window);
  return helper.window;
}
