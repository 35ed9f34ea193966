#include "QuestionDialog.h"

#include <memory>
#include <utility>

#include "AccessKeys.h"
#include "ButtonBox.h"
#include "DialogFrame.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"

namespace {

constexpr int L_LineLength = 60;  // characters, beyond which the question is broken
constexpr char L_YesKey[] = "kpx-question-yes";

using Handler = std::function<void()>;

void CloseWindowOf(GtkWidget *button, gpointer) {
  gtk_widget_destroy(gtk_widget_get_toplevel(button));
}

// The window goes first: what the handler opens belongs above the one that asked.
void RunAndClose(GtkWidget *button, gpointer) {
  GtkWidget *window = gtk_widget_get_toplevel(button);
  const Handler yes = *static_cast<Handler *>(g_object_get_data(G_OBJECT(window), L_YesKey));
  gtk_widget_destroy(window);
  yes();
}

}  // namespace

GtkWidget *create_QuestionWindow(const std::string &question, Handler yes) {
  const LogScope log("create_QuestionWindow");
  const Dialog dialog = NewDialog("QuestionDialog", "DEF_WND_CONFIRM_TITLE");
  g_object_set_data_full(
      G_OBJECT(dialog.window), L_YesKey, std::make_unique<Handler>(std::move(yes)).release(),
      [](gpointer data) { std::default_delete<Handler>()(static_cast<Handler *>(data)); });
  GtkWidget *label = NewLabel(dialog.window, "QuestionLabel", question, nullptr);
  BreakLines(label, L_LineLength);
  gtk_box_pack_start(GTK_BOX(dialog.box), label, TRUE, TRUE, 0);
  SetAlert(dialog.window, question);
  GtkWidget *buttons =
      NewButtonBox(dialog.window, GTK_ORIENTATION_HORIZONTAL, "QuestionHbuttonbox");
  gtk_box_pack_end(GTK_BOX(dialog.box), buttons, FALSE, FALSE, 0);
  GtkWidget *yes_button =
      NewButton(dialog.window, buttons, "YESButton", "DEF_BTN_YES_TITLE", nullptr);
  GtkWidget *no_button = NewButton(dialog.window, buttons, "NOButton", "DEF_BTN_NO_TITLE", nullptr);
  g_signal_connect(yes_button, "clicked", G_CALLBACK(RunAndClose), nullptr);
  g_signal_connect(no_button, "clicked", G_CALLBACK(CloseWindowOf), nullptr);
  AddAccelerator(dialog.window, no_button, GDK_KEY_Escape);
  gtk_widget_grab_focus(yes_button);
  gtk_widget_show_all(dialog.box);
  GiveAccessKeys(dialog.window);
  return dialog.window;
}
