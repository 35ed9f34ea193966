// The dialog that keeps the settings of the properties window as a preset.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

#include "presetfile.h"

// The dialog "PresetWindow", not yet shown: it asks for the name of the preset, whose own is not
// looked at, shows what it sets, and keeps it. `kept` is run with the name when that is done, after
// the dialog has gone.
GtkWidget *create_PresetWindow(const Preset &preset,
                               std::function<void(const std::string &name)> kept);

// "clicked" handlers.
void ButtonOkPresetPressed();
void ButtonCancelPresetPressed();
void ButtonHelpPresetPressed();

// "insert-text" handler of the name.
void PresetName_EntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                          gpointer data);
