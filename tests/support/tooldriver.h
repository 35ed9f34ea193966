// What a user does again and again in the print tool's window.
#pragma once

#include <functional>
#include <string>

#include "guiapp.h"

// Types a path into the open file selection and waits until its location entry, which takes a
// moment to open, holds it.
void TypeLocation(GuiApp &app, const std::string &path);

// Has the typed path taken by `act`, until `taken`, called `what` in the message. The list of
// completions, which opens at a time of its own, takes the first key or click for itself: as a user
// would, it is done again when nothing came of it.
void TakeLocation(GuiApp &app, const std::string &what, const std::function<void()> &act,
                  const std::function<bool()> &taken);

// Adds a file through the file selection window, by its path.
void AddFile(GuiApp &app, const std::string &path);

// Chooses the queue `name` with the arrow keys; throws std::runtime_error when there is none.
void ChooseQueue(GuiApp &app, const std::string &name);

// Shows the print command, closes its window and returns the text.
std::string ShownCommand(GuiApp &app);

// Where the tool keeps the standard input that it captured.
std::string CapturedFileOf(const GuiApp &app);
