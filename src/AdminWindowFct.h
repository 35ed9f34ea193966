// The administration program's main window: its handlers.
#pragma once

#include <gtk/gtk.h>

#include "addqueue.h"

// "clicked" handlers of the buttons; Cancel is also the window's close.
void ButtonAddPressed();
void ButtonClonePressed();
void ButtonPropertiesPressed();
void ButtonHelpPressed();

// Takes the selected queues out of the list and the working set; with a `flag` other than 0 Save
// will remove them from the spooler.
void ButtonKPXDeletePressed(int flag);

// For the properties: the work copy under that identity takes the place of the selected queue, and
// is selected.
void ReplaceSelectedQueue(const QueueIdentity &identity);

// Save will remove what an interrupted save was to remove.
void RememberUnfinishedRemovals();

// Brings spooler and files in line with the working set; ends the main loop when nothing went
// wrong, else shows what did.
void ButtonSavePressed();

// Gives the window's state up and ends the main loop; nothing is written.
void ButtonCancelPressed();

// A row of the queue list became selected or unselected.
void QueuesCListRowSelection(int row);
void QueuesCListRowUnSelection(int row);

// Opens the properties of that row's queue; a double click or Return.
void QueueActivated(int row);

// The Delete key deletes as the Delete button does, but asks first where several queues are meant.
// A "key-press-event" handler of the list.
gboolean DeleteByKey(GtkWidget *list, GdkEventKey *event, gpointer data);

// The list shows what the search entry says; Return in the entry goes to the first row of it.
void ShowSearchedQueues();
void LeaveSearch();

// Escape in the search entry ends the search; it is Cancel's only where nothing is searched. A
// "key-press-event" handler of the window.
gboolean EndSearchByEscape(GtkWidget *window, GdkEventKey *event, gpointer data);

// Logs double and triple clicks. A "button-press-event" handler.
gboolean LogMultipleClick(GtkWidget *list, GdkEventButton *event, gpointer data);

// Adds a row for the queue of the working set; its number, or -1, after a report on standard error,
// when the queue is unknown or incomplete.
[[nodiscard]] int AddItemInQueuesCListWidget(const char *name);

// Leaves exactly that row selected and in view; a search that leaves it out ends. Out of range:
// nothing selected.
void UnselectAllAndSelectOneInQueuesCList(int row);
