// What keeps a queue or a job, step by step.
#pragma once

#include <gtk/gtk.h>

#include <string>

// The window "WhyWindow", not yet shown, which destroys itself, about "QUEUE" or the job
// "QUEUE-NUMBER". The steps are looked at in a thread and shown as they come.
GtkWidget *create_WhyWindow(const std::string &name);
