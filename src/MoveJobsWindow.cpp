#include "MoveJobsWindow.h"

#include "ComboWidget.h"
#include "DialogFrame.h"
#include "MessageDialogs.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"

namespace {

constexpr int L_Spacing = 8;

GtkWidget *L_Window = nullptr;  // the one that is open
GtkWidget *L_Combo = nullptr;
void (*L_Chosen)(const std::string &queue) = nullptr;

void Cancel() {
  const LogScope log("ButtonCancelMovePressed");
  gtk_widget_destroy(L_Window);
}

void Ok() {
  const LogScope log("ButtonOkMovePressed");
  const std::string queue = ComboText(L_Combo);
  gtk_widget_destroy(L_Window);
  L_Chosen(queue);
}

void Help() {
  const LogScope log("ButtonHelpMovePressed");
  ShowHelp("KPX_JOBS_BEGIN");
}

}  // namespace

GtkWidget *create_MoveJobsWindow(const std::vector<std::string> &queues,
                                 void (*chosen)(const std::string &queue)) {
  const LogScope log("create_MoveJobsWindow");
  const Dialog dialog = NewDialog("MoveJobsWindow", "DEF_WND_MOVE_TITLE");
  L_Window = dialog.window;
  L_Chosen = chosen;
  GtkWidget *row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, L_Spacing);
  gtk_box_pack_start(GTK_BOX(dialog.box), row, FALSE, FALSE, 0);
  L_Combo = NewCombo(dialog.window, "TargetCombo", "TargetComboEntry", nullptr);
  gtk_box_pack_start(
      GTK_BOX(row),
      NewLabel(dialog.window, "TargetLabel", G_Translate("DEF_LBL_QUEUE_TITLE"), L_Combo), FALSE,
      FALSE, 0);
  gtk_box_pack_start(GTK_BOX(row), L_Combo, TRUE, TRUE, 0);
  ComboFill(L_Combo, queues);
  ComboSetRow(L_Combo, queues.empty() ? -1 : 0);
  AddOkCancelHelp(dialog, "MoveHbuttonbox", {Ok, Cancel, Help});
  return dialog.window;
}
