#include "LprCmdWindow.h"

#include "DialogFrame.h"
#include "Support.h"
#include "debug.h"

GtkWidget *create_LprCmdWindow(const std::string &text) {
  const LogScope log("create_LprCmdWindow");
  const Dialog dialog = NewDialog("LprCmdDialog", "DEF_WND_LPR_TITLE");
  gtk_window_set_default_size(GTK_WINDOW(dialog.window), 480, 240);
  gtk_box_pack_start(GTK_BOX(dialog.box),
                     NewScrolledText(dialog.window, "LprCmdScrolledwindow", "LprCmdText", text),
                     TRUE, TRUE, 0);
  // One line, as a terminal takes it.
  gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(lookup_widget(dialog.window, "LprCmdText")),
                              GTK_WRAP_NONE);
  AddOkButton(dialog, "OKButton", nullptr);
  return dialog.window;
}
