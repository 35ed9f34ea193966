// What a user does again and again in the administration window.
#pragma once

#include <string>

#include "guiapp.h"

struct QueueToAdd {
  std::string name;
  std::string printer;
  int type_row = 0;  // in the list of types
  std::string address = "127.0.0.1";
};

// Opens the dialog for a new queue and fills it in, going from field to field with the keyboard.
// Throws std::runtime_error when there is no such printer.
void FillNewQueue(GuiApp &admin, const QueueToAdd &queue);

// Closes the dialog with its OK button.
void TakeNewQueue(GuiApp &admin);
