#include "AdminWindowFct.h"

#include <gtk/gtk.h>

#include "debug.h"

void ButtonCancelPressed() {
  const LogScope log("ButtonCancelPressed");
  gtk_main_quit();
}
