// The printers at a start.
#pragma once

#include "clist.h"

// Fills the catalogue G_Printers in the user's language (lng_dir), the models that were added among
// it. What is wrong with those is reported to `messages` (may be null).
void LoadPrinters(CList *messages);
