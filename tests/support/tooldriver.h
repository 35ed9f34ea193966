// What a user does again and again in the print tool's window.
#pragma once

#include <string>

#include "guiapp.h"

// Types a path into the open file selection and waits until its location entry, which takes a
// moment to open, holds it.
void TypeLocation(GuiApp &app, const std::string &path);

// Adds a file through the file selection window, by its path.
void AddFile(GuiApp &app, const std::string &path);

// Chooses the queue `name` with the arrow keys; throws std::runtime_error when there is none.
void ChooseQueue(GuiApp &app, const std::string &name);

// Shows the print command, closes its window and returns the text.
std::string ShownCommand(GuiApp &app);

// Where the tool keeps the standard input that it captured.
std::string CapturedFileOf(const GuiApp &app);
