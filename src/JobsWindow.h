// The job window: builder and widget set.
#pragma once

#include <gtk/gtk.h>

#include <map>
#include <memory>

#include "jobrows.h"
#include "spoolerwatch.h"

struct JobsWindowHelper {
  GtkWidget *window = nullptr;
  GtkWidget *contact_label = nullptr;  // shown while the print service does not answer
  GtkWidget *queues_list = nullptr;
  GtkWidget *jobs_list = nullptr;
  GtkWidget *reason_label = nullptr;  // of the selected row
  GtkWidget *why_button = nullptr;
  std::map<SpoolerAction, GtkWidget *> queue_buttons;  // empty for an ordinary user
  std::map<SpoolerAction, GtkWidget *> job_buttons;
  QueueRows queues;
  JobRows jobs;
  std::unique_ptr<SpoolerWatch> watch;
  guint watch_source = 0;
  guint rows_source = 0;  // while rows are still to be shown
};
extern std::unique_ptr<JobsWindowHelper> G_JobsWindow_helper;

// Builds the window, not yet shown, and begins to watch the print service.
GtkWidget *create_JobsWindow();
