// The choice of another queue for jobs.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

// The window "MoveJobsWindow", not yet shown, which destroys itself; OK hands the chosen one of
// `queues` to `chosen` before.
GtkWidget *create_MoveJobsWindow(const std::vector<std::string> &queues,
                                 void (*chosen)(const std::string &queue));
