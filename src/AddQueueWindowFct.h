// The add-queue dialog: its handlers.
#pragma once

#include <gtk/gtk.h>

#include "printersearch.h"

// "clicked" handlers of the buttons; Cancel is also the window's close.
void ButtonOKAddQueuePressed();
void ButtonApplyAddQueuePressed();
void ButtonCancelAddQueuePressed();
void ButtonHelpAddQueuePressed();

// A row of the printer list became selected or unselected.
void PrintersCListRowSelection(int row);
void PrintersCListRowUnSelection(int row);

// The user has taken the address of a printer that was found: its model is selected where one fits,
// unless the user has selected one.
void ProposePrinter(const FoundPrinter &printer);

// Fills the list with the names of the printer catalogue, in key order.
void FillPrinterCList(GtkWidget *list);

// Reads the dialog and adds the queue to the working set and to the administration window: 1; 0
// after telling the user what is missing (or silently when a combo holds no known entry).
[[nodiscard]] int GetAndSaveUserDataAddQueue();

// Handler of the printing-system combo; with one system there is nothing to act on.
void PrnSysComboBoxOptionChanged();
