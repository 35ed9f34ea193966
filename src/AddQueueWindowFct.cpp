#include "AddQueueWindowFct.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "AddQueueWindow.h"
#include "ComboWidget.h"
#include "EntryHandlers.h"
#include "ListWidget.h"
#include "MessageDialogs.h"
#include "Support.h"
#include "addqueue.h"
#include "chelp.h"
#include "cprinter.h"
#include "debug.h"
#include "globals.h"
#include "ignoreresult.h"

namespace {

std::string EntryText(const char *name) {
  return gtk_entry_get_text(GTK_ENTRY(lookup_widget(G_AddQueueWindow_helper->window, name)));
}

// Where the user mends what the warning tells of.
GtkWidget *FieldOf(std::string_view warning_key) {
  const AddQueueWindowHelper &helper = *G_AddQueueWindow_helper;
  if (warning_key == "KPXadminWarn001") return helper.printer_list;
  const bool address = warning_key == "KPXadminWarn002";
  return lookup_widget(helper.window, address ? "AddressEntry" : "QueueEntry");
}

std::string ComboEntryText(const char *name) {
  return ComboText(lookup_widget(G_AddQueueWindow_helper->window, name));
}

}  // namespace

void ButtonOKAddQueuePressed() {
  const LogScope log("ButtonOKAddQueuePressed");
  if (GetAndSaveUserDataAddQueue() == 1) ButtonCancelAddQueuePressed();
}

void ButtonApplyAddQueuePressed() {
  const LogScope log("ButtonApplyAddQueuePressed");
  IgnoreResult(GetAndSaveUserDataAddQueue(), "what is missing has been told");
}

void ButtonCancelAddQueuePressed() {
  const LogScope log("ButtonCancelAddQueuePressed");
  gtk_widget_destroy(G_AddQueueWindow_helper->window);
  G_AddQueueWindow_helper.reset();
}

void ButtonHelpAddQueuePressed() {
  const LogScope log("ButtonHelpAddQueuePressed");
  std::string text;
  for (const char *block :
       {"KPX_ADMIN_ADDQUEUE_BEGIN", "KPX_ABOUT_BTN_BEGIN", "KPX_ADMIN_ADDQUEUE_BTNS_BEGIN"}) {
    text += fGetHelp_Function(G_Help.get(), block);
  }
  gtk_widget_show(create_HelpWindow(text));
}

void PrintersCListRowSelection(int row) {
  const LogScope log("PrintersCListRowSelection");
  G_AddQueueWindow_helper->selected_printer = row;
  G_Toggle_Ok_Apply_Sensitivity();
}

void PrintersCListRowUnSelection(int) {
  const LogScope log("PrintersCListRowUnSelection");
  G_AddQueueWindow_helper->selected_printer = -1;
  G_Toggle_Ok_Apply_Sensitivity();
}

void ProposePrinter(const FoundPrinter &printer) {
  const LogScope log("ProposePrinter");
  AddQueueWindowHelper &helper = *G_AddQueueWindow_helper;
  if (helper.selected_printer != -1 && helper.selected_printer != helper.proposed_printer) return;
  GtkWidget *list = helper.printer_list;
  std::vector<std::string> names;
  for (int row = 0; row < ListRowCount(list); ++row) names.push_back(ListCell(list, row, 0));
  const std::string fitting = FittingModel(printer.model, names);
  if (fitting.empty()) return;
  const auto place = std::find(names.begin(), names.end(), fitting) - names.begin();
  helper.proposed_printer = static_cast<int>(place);
  ListSelectRow(list, helper.proposed_printer);
  ListShowRow(list, helper.proposed_printer);
}

void FillPrinterCList(GtkWidget *list) {
  const LogScope log("FillPrinterCList");
  ListFreeze(list);
  ListClear(list);
  for (const auto [name, printer] : Pairs<CPrinter>(G_Printers_hash)) {
    ListAppend(list, {name}, printer);
  }
  ListThaw(list);
}

int GetAndSaveUserDataAddQueue() {
  const LogScope log("GetAndSaveUserDataAddQueue");
  const AddQueueWindowHelper &helper = *G_AddQueueWindow_helper;
  const NewQueue input{EntryText("QueueEntry"),
                       ListCell(helper.printer_list, helper.selected_printer, 0),
                       ComboEntryText("QueueTypeCombo"), ComboEntryText("TransportCombo"),
                       EntryText("AddressEntry")};
  const AddQueueResult result = AddQueue(input);
  if (result.warning_key != nullptr) {
    gtk_widget_grab_focus(FieldOf(result.warning_key));
    ShowError(result.warning_key);
  }
  if (!result.added) return 0;
  if (helper.added != nullptr) helper.added(input.name);
  return 1;
}

void PrnSysComboBoxOptionChanged() { const LogScope log("PrnSysComboBoxOptionChanged"); }
