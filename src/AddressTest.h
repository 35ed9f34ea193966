// The Test button beside the entry of a printer's address: whether the printer answers there.
#pragma once

#include <gtk/gtk.h>

#include <string>

// Two parts of a form; floating.
struct AddressTest {
  GtkWidget *field;   // the entry and, beside it, the button "TestButton"
  GtkWidget *result;  // the label "AddressResultLabel", only there while there is something to say
};

// For the entry of `window`, which is shown later. The button looks at the address that stands in
// the entry then, as it is needed for the model of the printer that `printer` names (empty: none is
// chosen); nothing waits for the answer.
AddressTest NewAddressTest(GtkWidget *window, GtkWidget *entry, std::string (*printer)());
