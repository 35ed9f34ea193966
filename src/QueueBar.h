// The bar of the print tool that is there while the chosen queue does not print.
#pragma once

#include <gtk/gtk.h>

#include <string>

// Begins to ask the print service how the queues are doing, in a thread; once the window is shown.
// The bar comes to the top of `parent`; `chosen` tells the queue that the window shows. `usual`
// (may be null) is told the service's default queue once, and only as long as the user has neither
// pressed a key nor a button nor waited for more than two seconds.
void WatchChosenQueue(GtkWidget *parent, std::string (*chosen)(),
                      void (*usual)(const std::string &queue));

// The user has chosen a queue.
void ShowChosenQueue();

// Ends the asking.
void ForgetChosenQueue();
