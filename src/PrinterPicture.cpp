#include "PrinterPicture.h"

#include <string>

#include "Pixmaps.h"
#include "PropertiesFrame.h"
#include "Support.h"
#include "cprintqueue.h"
#include "debug.h"
#include "optionstate.h"
#include "printerpicturefiles.h"

namespace {

std::string OverlayName(size_t group) {
  return "PrinterFeature" + std::to_string(group + 1) + "Pixmap";
}

void DrawOverlay(GtkWidget *overlay, size_t group, const std::string &file) {
  gtk_widget_set_visible(overlay, file.empty() ? FALSE : TRUE);
  if (file.empty()) return;
  change_pixmap(overlay, file.c_str());
  SetAccessibleName(overlay, InstalledOfGroup(group));
}

}  // namespace

GtkWidget *NewPrinterPicture(GtkWidget *window) {
  const LogScope log("NewPrinterPicture");
  const PrinterPictureFiles files = CurrentPrinterPictureFiles();
  GtkWidget *fixed = StoreWidget(window, gtk_fixed_new(), "PrinterPixmapsFixed");
  GtkWidget *base =
      StoreWidget(window, create_pixmap(window, files.base.c_str()), "PrinterBasePixmap");
  const char *printer =
      fGet_CString_Value_Function(fGet_PrinterName_Function(G_CurrentQueue.get()));
  SetAccessibleName(base, printer == nullptr ? "" : printer);
  gtk_fixed_put(GTK_FIXED(fixed), base, 0, 0);
  gtk_widget_show(base);
  for (size_t group = 0; group < kPrinterOptionGroups; ++group) {
    GtkWidget *overlay =
        StoreWidget(window, create_dummy_pixmap(window), OverlayName(group).c_str());
    gtk_widget_set_no_show_all(overlay, TRUE);
    gtk_fixed_put(GTK_FIXED(fixed), overlay, 0, 0);
    DrawOverlay(overlay, group, files.overlays.at(group));
  }
  return fixed;
}

void RedrawFeaturesPixmaps() {
  const LogScope log("RedrawFeaturesPixmaps");
  if (G_PropertiesWindow_helper == nullptr) return;
  GtkWidget *window = G_PropertiesWindow_helper->window;
  GtkWidget *base = lookup_widget(window, "PrinterBasePixmap");
  if (base == nullptr) return;
  const PrinterPictureFiles files = CurrentPrinterPictureFiles();
  change_pixmap(base, files.base.c_str());
  for (size_t group = 0; group < kPrinterOptionGroups; ++group) {
    DrawOverlay(lookup_widget(window, OverlayName(group).c_str()), group, files.overlays.at(group));
  }
}
