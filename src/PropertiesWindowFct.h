// The properties window: its handlers.

#pragma once

#include <gtk/gtk.h>

// "clicked" handlers of the buttons; Cancel is also the window's close.
void ButtonOKPropertiesPressed();
void ButtonApplyPropertiesPressed();
void ButtonCancelPropertiesPressed();
void ButtonHelpPropertiesPressed();

// "switch-page" handler: the window's title follows the page.
void SwitchPageProperties(GtkNotebook *notebook, GtkWidget *page, guint number, gpointer data);

// Reads the free-text fields into the work copy and puts that back into G_Queues_hash: 1. 0, after
// telling the user where there is something to tell, when a value is refused; what was stored
// before it stays in the work copy, and the focus is on what was refused.
[[nodiscard]] int GetAndSaveUserDataProperties();
