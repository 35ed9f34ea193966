// What the print service says about the queues of the administration's list: the tooltips of their
// rows, and whether jobs wait.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

// Once the window is shown, begins to ask the print service, in a thread. The names stand in the
// first column of `list`.
void WatchListedQueues(GtkWidget *list);

// A row is new or another queue's.
void ShowQueueTip(int row);

// What to ask before the Delete key takes these queues off the list; empty when nothing is.
std::string QuestionBeforeDeletion(const std::vector<std::string> &names);

// Ends the asking, as the end of the list does.
void ForgetListedQueues();
