// The progress dialog of a long save.
#pragma once

#include <gtk/gtk.h>

#include "savequeues.h"

// Lives as long as one save. While it does, no input reaches the other windows, and what has come
// is forgotten at its end; the dialog appears when the save has lasted longer than half a second
// and is drawn between the save's commands.
class SaveProgressWindow {
 public:
  SaveProgressWindow();
  ~SaveProgressWindow();
  SaveProgressWindow(const SaveProgressWindow &) = delete;
  SaveProgressWindow &operator=(const SaveProgressWindow &) = delete;

  // Shows the step that begins now, when it is time: what is shown while a command runs is its
  // queue, the queues that need none are passed over.
  void Show(const SaveStep &step);

 private:
  void Create();

  gint64 start_;          // microseconds, as g_get_monotonic_time gives them
  gint64 drawn_ = 0;      // the same, of the last drawing
  int number_shown_ = 0;  // of the step drawn last
  GtkWidget *window_ = nullptr;
  GtkWidget *label_ = nullptr;
  GtkWidget *bar_ = nullptr;
};
