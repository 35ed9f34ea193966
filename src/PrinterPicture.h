// The picture of the printer with its installed options, on the Features tab and on the print
// tool's General tab.

#pragma once

#include <gtk/gtk.h>

// The picture, drawn and stored on `window` as "PrinterPixmapsFixed" with "PrinterBasePixmap" and,
// over it, "PrinterFeature1Pixmap" (feeder), "PrinterFeature2Pixmap" (finisher) and
// "PrinterFeature3Pixmap" (trays).
GtkWidget *NewPrinterPicture(GtkWidget *window);

// Draws the properties window's picture anew for what the queue has installed now; nothing without
// one.
void RedrawFeaturesPixmaps();
