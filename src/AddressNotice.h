// Tells, before they are saved, of the queues that are new or changed whose printer's name the name
// service does not know. Nothing waits for it.
#pragma once

#include <gtk/gtk.h>

#include <string>

// The label "AddressNoticeLabel", only there while there is such a queue; floating.
GtkWidget *NewAddressNotice(GtkWidget *window);

// Looks up the address of that queue of the working set, in a thread, unless it has been looked up
// already, and tells of it if it is not known.
void CheckAddressOfQueue(const std::string &name);

// Queues have gone from the working set.
void ShowUnknownAddresses();

// The window ends.
void ForgetAddresses();
