// A question that is answered with yes or no.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

// The window "QuestionDialog", not yet shown, which destroys itself. "YESButton" runs `yes` before;
// Escape and closing the window press "NOButton".
GtkWidget *create_QuestionWindow(const std::string &question, std::function<void()> yes);
