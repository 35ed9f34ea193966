#include "ToolWindow.h"

#include "AccessKeys.h"
#include "ButtonBox.h"
#include "ComboWidget.h"
#include "ListWidget.h"
#include "PropertiesFrame.h"
#include "QueueBar.h"
#include "ReadyAhead.h"
#include "Support.h"
#include "ToolWindowFct.h"
#include "cmessages.h"
#include "debug.h"
#include "globals.h"

std::unique_ptr<ToolWindowHelper> G_QueuesWindow_helper;

namespace {

constexpr int L_Border = 10;
constexpr int L_Spacing = 8;
constexpr int L_Width = 520;
constexpr int L_Height = 340;

void AddQueueRow(ToolWindowHelper &helper, GtkWidget *parent) {
  GtkWidget *row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, L_Spacing);
  gtk_box_pack_start(GTK_BOX(parent), StoreWidget(helper.window, row, "QueueHbuttonbox"), FALSE,
                     FALSE, 0);
  gtk_box_reorder_child(GTK_BOX(parent), row, 0);
  helper.queue_combo = NewCombo(helper.window, "QueueCombo", "QueueComboEntry", ShowChosenQueue);
  gtk_box_pack_start(
      GTK_BOX(row),
      NewLabel(helper.window, "QueueLabel", G_Translate("DEF_LBL_QUEUE_TITLE"), helper.queue_combo),
      FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(row), helper.queue_combo, TRUE, TRUE, 0);
}

GtkWidget *NewFilesList(ToolWindowHelper &helper) {
  helper.files_list = NewList({{nullptr, 0}}, GTK_SELECTION_MULTIPLE);
  ListOnSelection(helper.files_list, FilesCListRowSelection, FilesCListRowUnSelection);
  StoreWidget(helper.window, helper.files_list, "FilesClist");
  SetAccessibleName(helper.files_list, G_Translate("DEF_LBL_FILES_TITLE"));
  return NewScrolledList(helper.window, "FilesScrolledwindow", helper.files_list);
}

void AddFilesFrame(ToolWindowHelper &helper, GtkWidget *parent) {
  GtkWidget *frame = gtk_frame_new(G_Translate("DEF_LBL_FILES_TITLE"));
  gtk_box_pack_start(GTK_BOX(parent), StoreWidget(helper.window, frame, "FilesFrame"), TRUE, TRUE,
                     0);
  GtkWidget *row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, L_Spacing);
  gtk_container_set_border_width(GTK_CONTAINER(row), L_Spacing);
  gtk_container_add(GTK_CONTAINER(frame), StoreWidget(helper.window, row, "FilesHbox"));
  gtk_box_pack_start(GTK_BOX(row), NewFilesList(helper), TRUE, TRUE, 0);
  gtk_label_set_mnemonic_widget(GTK_LABEL(gtk_frame_get_label_widget(GTK_FRAME(frame))),
                                helper.files_list);

  GtkWidget *buttons = NewButtonBox(helper.window, GTK_ORIENTATION_VERTICAL, "FilesVbuttonbox");
  gtk_box_pack_start(GTK_BOX(row), buttons, FALSE, FALSE, 0);
  NewButton(helper.window, buttons, "AddButton", "DEF_BTN_ADD_TITLE", ButtonAddFilesPressed);
  helper.delete_button = NewButton(helper.window, buttons, "DeleteButton", "DEF_BTN_DELETE_TITLE",
                                   ButtonDeleteFilesPressed);
  gtk_widget_set_sensitive(helper.delete_button, FALSE);
}

void AddToolButtons(ToolWindowHelper &helper, GtkWidget *parent) {
  GtkWidget *window = helper.window;
  GtkWidget *box = NewButtonBox(window, GTK_ORIENTATION_HORIZONTAL, "ToolHbuttonbox");
  gtk_box_pack_start(GTK_BOX(parent), box, FALSE, FALSE, 0);
  helper.print_button =
      NewButton(window, box, "PrintButton", "DEF_BTN_PRINT_TITLE", ButtonPrintPressed);
  helper.lpr_button =
      NewButton(window, box, "LprCommandButton", "DEF_BTN_LPR_TITLE", ButtonLPRPressed);
  helper.properties_button = NewButton(window, box, "PropertiesButton", "DEF_BTN_PROPERTIES_TITLE",
                                       ButtonPropertiesToolPressed);
  GtkWidget *cancel =
      NewButton(window, box, "CancelButton", "DEF_BTN_CANCEL_TITLE", ButtonCancelToolPressed);
  GtkWidget *help =
      NewButton(window, box, "HelpButton", "DEF_BTN_HELP_TITLE", ButtonHelpToolPressed);
  AddAccelerator(window, cancel, GDK_KEY_Escape);
  AddAccelerator(window, help, GDK_KEY_F1);
  AddAccelerator(window, helper.delete_button, GDK_KEY_Delete);
}

}  // namespace

GtkWidget *create_ToolWindow() {
  const LogScope log("create_ToolWindow");
  G_FilesList = CreateList();
  G_QueuesWindow_helper = std::make_unique<ToolWindowHelper>();
  ToolWindowHelper &helper = *G_QueuesWindow_helper;
  G_PropertiesOpener = {ChosenQueue, nullptr};

  helper.window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  StoreWidget(helper.window, helper.window, "ToolWindow");
  gtk_window_set_title(GTK_WINDOW(helper.window), G_Translate("DEF_WND_TOOL_TITLE"));
  gtk_window_set_default_size(GTK_WINDOW(helper.window), L_Width, L_Height);
  OnDeleteEvent(helper.window, ButtonCancelToolPressed);
  OnceDrawn(helper.window, AcceptDroppedFiles);  // the toolkit asks the session's bus for this

  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, L_Spacing);
  gtk_container_set_border_width(GTK_CONTAINER(box), L_Border);
  gtk_container_add(GTK_CONTAINER(helper.window), StoreWidget(helper.window, box, "ToolVbox"));
  GtkWidget *data = gtk_box_new(GTK_ORIENTATION_VERTICAL, L_Spacing);
  gtk_box_pack_start(GTK_BOX(box), StoreWidget(helper.window, data, "DataToolVbox"), TRUE, TRUE, 0);
  AddFilesFrame(helper, data);
  gtk_box_pack_start(GTK_BOX(box), gtk_separator_new(GTK_ORIENTATION_HORIZONTAL), FALSE, FALSE, 0);
  AddToolButtons(helper, box);
  // Made last though it stands first: its entry is the first to ask for a font.
  AwaitFont();
  AddQueueRow(helper, data);
  ShowQueues();
  gtk_widget_show_all(box);
  GiveAccessKeys(helper.window);
  ShowFocusAtOnce(helper.window);
  return helper.window;
}
