#include "AddQueueWindow.h"

#include <string>
#include <vector>

#include "AccessKeys.h"
#include "AddQueueWindowFct.h"
#include "AddressCompletion.h"
#include "AddressTest.h"
#include "ButtonBox.h"
#include "ComboWidget.h"
#include "EntryHandlers.h"
#include "FieldGrid.h"
#include "ListWidget.h"
#include "MessageDialogs.h"
#include "Support.h"
#include "addqueue.h"
#include "cmessages.h"
#include "debug.h"
#include "entryfilters.h"

std::unique_ptr<AddQueueWindowHelper> G_AddQueueWindow_helper;

namespace {

constexpr int L_Border = 10;
constexpr int L_Spacing = 8;
constexpr int L_FirstRowOffset = 4;  // of the text in a list's first row

// The form: a grid of labels and fields, filled from the top.
struct Form {
  GtkWidget *window;
  GtkGrid *grid;
  int rows;
};

// Adds a row; the label is stored under `label_name`.
void AddRow(Form &form, const char *label_name, const char *label_key, GtkWidget *field,
            GtkWidget *target) {
  GtkWidget *label =
      AddField(form.window, form.grid, form.rows++, {label_name, label_key}, field, target);
  const bool beside_list = GTK_IS_SCROLLED_WINDOW(field) != FALSE;
  gtk_widget_set_valign(label, beside_list ? GTK_ALIGN_START : GTK_ALIGN_CENTER);
  if (beside_list) gtk_widget_set_margin_top(label, L_FirstRowOffset);
}

GtkWidget *NewEntry(const Form &form, const char *name, int max_length) {
  GtkWidget *entry = StoreWidget(form.window, gtk_entry_new(), name);
  gtk_entry_set_max_length(GTK_ENTRY(entry), max_length);
  return entry;
}

void AddCombo(Form &form, const std::string &name, const char *label_key,
              const std::vector<std::string> &texts, void (*changed)()) {
  GtkWidget *combo =
      NewCombo(form.window, (name + "Combo").c_str(), (name + "ComboEntry").c_str(), changed);
  ComboFill(combo, texts);
  ComboSetRow(combo, 0);
  AddRow(form, (name + "Label").c_str(), label_key, combo, combo);
}

void AddPrinterList(Form &form) {
  GtkWidget *list = NewList({{nullptr, 80}}, GTK_SELECTION_SINGLE);
  StoreWidget(form.window, list, "PrinterClist");
  ListOnSelection(list, PrintersCListRowSelection, PrintersCListRowUnSelection);
  FillPrinterCList(list);
  G_AddQueueWindow_helper->printer_list = list;
  GtkWidget *scrolled = NewScrolledList(form.window, "PrinterScrolledwindow", list);
  gtk_widget_set_vexpand(scrolled, TRUE);
  AddRow(form, "PrinterLabel", "DEF_LBL_PRINTER", scrolled, list);
}

std::vector<std::string> TypeTexts() {
  std::vector<std::string> texts;
  texts.reserve(G_QueueTypes.size());
  for (const char *type : G_QueueTypes) texts.emplace_back(G_Translate(type));
  return texts;
}

std::string ChosenPrinter() {
  const AddQueueWindowHelper &helper = *G_AddQueueWindow_helper;
  return ListCell(helper.printer_list, helper.selected_printer, 0);
}

void AddFields(Form &form) {
  GtkWidget *name = NewEntry(form, "QueueEntry", kQueueNameLength);
  FilterAsQueueName(name);
  AddRow(form, "QueueLabel", "DEF_LBL_QUEUE", name, name);
  AddPrinterList(form);
  AddCombo(form, "QueueType", "DEF_LBL_TYPE", TypeTexts(), nullptr);
  AddCombo(form, "Transport", "DEF_LBL_TRANSPORT", {G_Translate(kTcpIpTransport)}, nullptr);
  GtkWidget *address = NewEntry(form, "AddressEntry", kAddressLength);
  FilterAsAddress(address);
  OfferFoundPrinters(address, ProposePrinter);
  const AddressTest test = NewAddressTest(form.window, address, ChosenPrinter);
  AddRow(form, "AddressLabel", "DEF_LBL_IPADDRESS", test.field, address);
  gtk_grid_attach(form.grid, test.result, 1, form.rows++, 1, 1);
  AddCombo(form, "PrintingSystem", "DEF_LBL_PRN_SYS", {"SystemV"}, PrnSysComboBoxOptionChanged);
  GtkWidget *about = NewButtonBox(form.window, GTK_ORIENTATION_HORIZONTAL, "AboutHbuttonbox");
  gtk_button_box_set_layout(GTK_BUTTON_BOX(about), GTK_BUTTONBOX_END);
  NewButton(form.window, about, "AboutButton", "DEF_BTN_ABOUT_TITLE", G_ButtonAboutPressed);
  gtk_grid_attach(form.grid, about, 1, form.rows, 1, 1);
}

void AddButtons(GtkWidget *window, GtkWidget *parent) {
  GtkWidget *box = NewButtonBox(window, GTK_ORIENTATION_HORIZONTAL, "AddQueueHbuttonbox");
  gtk_box_pack_end(GTK_BOX(parent), box, FALSE, FALSE, 0);
  GtkWidget *ok = NewButton(window, box, "OKButton", "DEF_BTN_OK_TITLE", ButtonOKAddQueuePressed);
  GtkWidget *cancel =
      NewButton(window, box, "CancelButton", "DEF_BTN_CANCEL_TITLE", ButtonCancelAddQueuePressed);
  NewButton(window, box, "ApplyButton", "DEF_BTN_APPLY_TITLE", ButtonApplyAddQueuePressed);
  GtkWidget *help =
      NewButton(window, box, "HelpButton", "DEF_BTN_HELP_TITLE", ButtonHelpAddQueuePressed);
  AddReturnAccelerator(window, ok);
  AddAccelerator(window, cancel, GDK_KEY_Escape);
  AddAccelerator(window, help, GDK_KEY_F1);
}

QueueDialog StateOfDialog() {
  if (G_AddQueueWindow_helper == nullptr) return {};
  const AddQueueWindowHelper &helper = *G_AddQueueWindow_helper;
  return {&helper, helper.window, helper.selected_printer != -1};
}

}  // namespace

GtkWidget *create_AddQueueWindow() {
  const LogScope log("create_AddQueueWindow");
  GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  StoreWidget(window, window, "AddQueueWindow");
  gtk_window_set_title(GTK_WINDOW(window), G_Translate("DEF_WND_ADDQUEUE_TITLE"));
  gtk_window_set_default_size(GTK_WINDOW(window), 427, 371);
  MakeModal(window);
  OnDeleteEvent(window, ButtonCancelAddQueuePressed);
  G_AddQueueWindow_helper =
      std::make_unique<AddQueueWindowHelper>(AddQueueWindowHelper{window, nullptr, -1});
  G_QueueDialogs.add_queue = StateOfDialog;

  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_VERTICAL, L_Spacing);
  gtk_container_set_border_width(GTK_CONTAINER(box), L_Border);
  gtk_container_add(GTK_CONTAINER(window), box);
  Form form{window, NewFieldGrid(), 0};
  gtk_box_pack_start(GTK_BOX(box), GTK_WIDGET(form.grid), TRUE, TRUE, 0);
  AddFields(form);
  gtk_box_pack_start(GTK_BOX(box), gtk_separator_new(GTK_ORIENTATION_HORIZONTAL), FALSE, FALSE, 0);
  AddButtons(window, box);
  G_Toggle_Ok_Apply_Sensitivity();
  gtk_widget_show_all(box);
  GiveAccessKeys(window);
  return window;
}
