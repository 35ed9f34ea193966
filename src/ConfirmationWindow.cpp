#include "ConfirmationWindow.h"

#include "AccessKeys.h"
#include "ButtonBox.h"
#include "CustomDialog.h"
#include "DialogFrame.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"

std::unique_ptr<ConfirmationWindowHelper> G_ConfirmationWindow_helper;
int Cps_Or_Cmt = 0;

namespace {

constexpr int L_Spacing = 8;
constexpr int L_LineLength = 60;  // characters, beyond which the question is broken

void AddQuestion(const Dialog &dialog) {
  GtkWidget *box = StoreWidget(dialog.window, gtk_box_new(GTK_ORIENTATION_VERTICAL, L_Spacing),
                               "DataConfirmationVbox");
  gtk_box_pack_start(GTK_BOX(dialog.box), box, TRUE, TRUE, 0);
  const char *key = Cps_Or_Cmt == 1 ? "DEF_LBL_CONFIRM_MSG_CPS" : "DEF_LBL_CONFIRM_MSG_CMT";
  GtkWidget *label = NewLabel(dialog.window, "ConfirmationLabel", G_Translate(key), nullptr);
  BreakLines(label, L_LineLength);
  gtk_box_pack_start(GTK_BOX(box), label, TRUE, TRUE, 0);
  SetAlert(dialog.window, G_Translate(key));
}

}  // namespace

GtkWidget *create_ConfirmationWindow(int kind) {
  const LogScope log("create_ConfirmationWindow");
  Cps_Or_Cmt = kind;
  const Dialog dialog = NewDialog("ConfirmationDialog", "DEF_WND_CONFIRM_TITLE");
  StoreWidget(dialog.window, dialog.box, "ConfirmationDialogVbox");
  OnDeleteEvent(dialog.window, ButtonNOConfirmationPressed);
  AddQuestion(dialog);
  GtkWidget *buttons =
      NewButtonBox(dialog.window, GTK_ORIENTATION_HORIZONTAL, "ConfirmationDialogActionArea");
  gtk_box_pack_end(GTK_BOX(dialog.box), buttons, FALSE, FALSE, 0);
  GtkWidget *yes = NewButton(dialog.window, buttons, "YESButton", "DEF_BTN_YES_TITLE",
                             ButtonYESConfirmationPressed);
  GtkWidget *no = NewButton(dialog.window, buttons, "NOButton", "DEF_BTN_NO_TITLE",
                            ButtonNOConfirmationPressed);
  AddAccelerator(dialog.window, no, GDK_KEY_Escape);
  // Return presses the button that has the focus.
  gtk_widget_grab_focus(yes);
  gtk_widget_show_all(dialog.box);
  GiveAccessKeys(dialog.window);
  G_ConfirmationWindow_helper =
      std::make_unique<ConfirmationWindowHelper>(ConfirmationWindowHelper{dialog.window, yes, no});
  return dialog.window;
}

void ButtonYESConfirmationPressed() {
  const LogScope log("ButtonYESConfirmationPressed");
  G_CustomsTab.delete_selected(Cps_Or_Cmt == 1 ? CustomKind::kPaper : CustomKind::kMedia);
  ButtonNOConfirmationPressed();
}

void ButtonNOConfirmationPressed() {
  const LogScope log("ButtonNOConfirmationPressed");
  if (G_ConfirmationWindow_helper == nullptr) return;
  gtk_widget_destroy(G_ConfirmationWindow_helper->window);
  G_ConfirmationWindow_helper.reset();
}
