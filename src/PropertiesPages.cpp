#include "PropertiesPages.h"

#include "AccessKeys.h"
#include "PropertiesFrame.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "globals.h"
#include "multipleup.h"
#include "optionlists.h"
#include "optionstate.h"
#include "pagetable.h"

namespace {

const PageWidgets &WidgetsOf(Page page) {
  switch (page) {
#define PAGE(name, ...) \
  case Page::k##name:   \
    return k##name##Page;
#include "pagetable.inc"
#undef PAGE
  }
  return kGeneralPage;  // for no page
}

// What the pages of the programs, in all languages, are at most: pictures, which stay as they are,
// in pixels, and texts. The choices of pages a sheet are wider than anything else.
struct PageSize {
  double pixels;
  double ems;
};
constexpr PageSize L_Width = {100, 30};
constexpr PageSize L_WidthWithPagesASheet = {285, 36};
// Of six rows with pictures, or of the two lists with their buttons.
constexpr PageSize L_Height = {290, 15};
constexpr double L_UsualResolution = 96;
constexpr double L_PointsPerInch = 72;

guint L_Idle = 0;  // the source that builds the rest

int NumberOfPages() {
  return gtk_notebook_get_n_pages(GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook));
}

// The first number of a page that is not built; the number of tabs when all are.
int FirstMissing() {
  auto *notebook = GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook);
  int number = 0;
  for (; number < NumberOfPages(); ++number) {
    GtkWidget *place = gtk_notebook_get_nth_page(notebook, number);
    if (gtk_bin_get_child(GTK_BIN(place)) == nullptr) break;
  }
  return number;
}

gboolean BuildNext(gpointer) {
  NeedPropertiesPage(FirstMissing());
  if (!ArePropertiesPagesBuilt()) return G_SOURCE_CONTINUE;
  L_Idle = 0;
  return G_SOURCE_REMOVE;
}

gboolean BuildRestAfterDrawing(GtkWidget *window, cairo_t *, gpointer) {
  const auto handler = reinterpret_cast<gpointer>(BuildRestAfterDrawing);
  g_signal_handlers_disconnect_by_func(window, handler, nullptr);
  if (L_Idle == 0) L_Idle = g_idle_add(BuildNext, nullptr);
  return FALSE;
}

// From now on nothing is built any more.
void StopBuilding(GtkWidget *, gpointer) {
  if (L_Idle != 0) g_source_remove(L_Idle);
  L_Idle = 0;
}

// A page's place in the notebook is a scrolled window, empty until the page is built.
void AddTab(const PropertiesWindowHelper &helper, const PropertyPage &tab) {
  GtkWidget *place = gtk_scrolled_window_new(nullptr, nullptr);
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(place), GTK_POLICY_AUTOMATIC,
                                 GTK_POLICY_AUTOMATIC);
  // A bar that shows only under the pointer would hide that the page goes on.
  gtk_scrolled_window_set_overlay_scrolling(GTK_SCROLLED_WINDOW(place), FALSE);
  gtk_scrolled_window_set_propagate_natural_width(GTK_SCROLLED_WINDOW(place), TRUE);
  gtk_scrolled_window_set_propagate_natural_height(GTK_SCROLLED_WINDOW(place), TRUE);
  gtk_widget_show(place);
  GtkWidget *label = NewLabel(helper.window, tab.label_name, G_Translate(tab.label_key), nullptr);
  gtk_notebook_append_page(GTK_NOTEBOOK(helper.notebook), place, label);
}

// The size of the current text, in pixels.
double Em() {
  GtkWidget *notebook = G_PropertiesWindow_helper->notebook;
  PangoContext *context = gtk_widget_get_pango_context(notebook);
  const PangoFontDescription *font = pango_context_get_font_description(context);
  const double size = pango_units_to_double(pango_font_description_get_size(font));
  if (pango_font_description_get_size_is_absolute(font) != FALSE) return size;
  const double resolution = gdk_screen_get_resolution(gtk_widget_get_screen(notebook));
  return size * (resolution > 0 ? resolution : L_UsualResolution) / L_PointsPerInch;
}

}  // namespace

void AddPropertiesPages() {
  const LogScope log("AddPropertiesPages");
  const PropertiesWindowHelper &helper = *G_PropertiesWindow_helper;
  // What building all pages changes in the work copy, in their order: so it does not matter which
  // page is built when.
  RepairCustomChoices();
  AddDefaultMultipleUpSettings();
  for (const PropertyPage &page : PropertyPages()) AddTab(helper, page);
  NeedPropertiesPage(0);
  g_signal_connect(helper.window, "destroy", G_CALLBACK(StopBuilding), nullptr);
  g_signal_connect_after(helper.window, "draw", G_CALLBACK(BuildRestAfterDrawing), nullptr);
}

void NeedPropertiesPage(int number) {
  const LogScope log("NeedPropertiesPage");
  if (G_PropertiesWindow_helper == nullptr || number < 0 || number >= NumberOfPages()) return;
  auto *notebook = GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook);
  GtkWidget *place = gtk_notebook_get_nth_page(notebook, number);
  if (gtk_bin_get_child(GTK_BIN(place)) != nullptr) return;
  const PropertyPage &page = PropertyPages()[static_cast<size_t>(number)];
  for (const Page needed : page.needs) NeedPropertiesPage(PlaceOf(needed));
  gtk_container_add(GTK_CONTAINER(place), WidgetsOf(page.page).create());
  gtk_widget_show(gtk_bin_get_child(GTK_BIN(place)));
  GiveAccessKeys(G_PropertiesWindow_helper->window);
}

void NeedAllPropertiesPages() {
  if (G_PropertiesWindow_helper == nullptr) return;
  for (int number = 0; number < NumberOfPages(); ++number) NeedPropertiesPage(number);
}

void ForgetPropertiesPages() {
#define PAGE(name, ...) k##name##Page.forget();
#include "pagetable.inc"
#undef PAGE
}

bool ArePropertiesPagesBuilt() {
  return G_PropertiesWindow_helper != nullptr && FirstMissing() == NumberOfPages();
}

GtkRequisition LargestPropertiesPage() {
  const PageSize width = CurrentQueueType().has_pages_a_sheet ? L_WidthWithPagesASheet : L_Width;
  const auto pixels = [em = Em()](const PageSize &size) {
    return static_cast<int>(size.pixels + size.ems * em);
  };
  return {pixels(width), pixels(L_Height)};
}
