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

  // Shows the step that begins now, when it is time.
  void Show(const SaveStep &step);

 private:
  void Create();

  gint64 start_;
  GtkWidget *window_ = nullptr;
  GtkWidget *label_ = nullptr;
  GtkWidget *bar_ = nullptr;
};
