// The printers that programs of this host find on the network, offered while an address is typed.
#pragma once

#include <gtk/gtk.h>

#include "printersearch.h"

// Searches in programs of their own from now on until the entry goes, which ends them; what they
// have found is offered as completions of what stands in the entry. `chosen` runs with the printer
// whose address the user has taken. What earlier searches of this run found is offered at once.
void OfferFoundPrinters(GtkWidget *entry, void (*chosen)(const FoundPrinter &));
