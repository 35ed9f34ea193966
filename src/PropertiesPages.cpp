#include "PropertiesPages.h"

#include <algorithm>
#include <vector>

#include "PropTabCustoms.h"
#include "PropTabDestination.h"
#include "PropTabFeatures.h"
#include "PropTabGeneral.h"
#include "PropTabOptions.h"
#include "PropTabOutput.h"
#include "PropTabSetup.h"
#include "PropTabTextOptions.h"
#include "PropertiesWindow.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "globals.h"
#include "multipleup.h"
#include "optionlists.h"
#include "properties.h"

namespace {

struct Tab {
  GtkWidget *(*create)();
  const char *label_name;
  const char *label_key;
};

constexpr Tab L_Setup = {create_PropTabSetup, "SetupLabel", "DEF_TAB_SETUP"};
constexpr Tab L_Output = {create_PropTabOutput, "OutputLabel", "DEF_TAB_OUTPUT"};
constexpr Tab L_Options = {create_PropTabOptions, "OptionsLabel", "DEF_TAB_OPTIONS"};
constexpr Tab L_Destination = {create_PropTabDestination, "DestinationLabel",
                               "DEF_TAB_DESTINATION"};
constexpr Tab L_Fonts = {create_PropTabTextOptions, "FontsLabel", "DEF_TAB_FONTS"};

// What the pages of the programs, in all languages, are at most: pictures, which stay as they are,
// in pixels, and texts. The choices of pages a sheet are wider than anything else.
struct PageSize {
  double pixels;
  double ems;
};
constexpr PageSize L_Width = {100, 30};
constexpr PageSize L_WidthWithPagesASheet = {285, 36};
// Of six rows with pictures, which are higher than texts, or of two lists in large text.
constexpr int L_Height = 490;
constexpr double L_UsualResolution = 96;
constexpr double L_PointsPerInch = 72;

// The open window's, from 0. Its place in the notebook is a scrolled window, empty until then.
std::vector<Tab> L_Tabs;
guint L_Idle = 0;  // the source that builds the rest

std::vector<Tab> TabsOfProgram() {
  if (G_ProgName == kModeAdministration) {
    return {{create_PropTabGenAdmin, "GeneralLabel", "DEF_TAB_GENERAL"},
            L_Setup,
            L_Output,
            L_Options,
            L_Destination,
            {create_PropTabFeatures, "FeaturesLabel", "DEF_TAB_FEATURES"},
            {create_PropTabCustoms, "CustomsLabel", "DEF_TAB_CUSTOMS"},
            L_Fonts};
  }
  return {{create_PropTabGenTool, "GeneralLabel", "DEF_TAB_GENERAL"},
          L_Setup,
          L_Output,
          L_Options,
          L_Destination,
          L_Fonts};
}

// The first number of a page that is not built; the number of tabs when all are.
int FirstMissing() {
  auto *notebook = GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook);
  int number = 0;
  for (; number < static_cast<int>(L_Tabs.size()); ++number) {
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
void ForgetPages(GtkWidget *, gpointer) {
  if (L_Idle != 0) g_source_remove(L_Idle);
  L_Idle = 0;
  L_Tabs.clear();
}

void AddTab(const PropertiesWindowHelper &helper, const Tab &tab) {
  GtkWidget *place = gtk_scrolled_window_new(nullptr, nullptr);
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(place), GTK_POLICY_AUTOMATIC,
                                 GTK_POLICY_AUTOMATIC);
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
  L_Tabs = TabsOfProgram();
  // What building all pages changes in the work copy, in their order: so it does not matter which
  // page is built when.
  RepairCustomChoices();
  AddDefaultMultipleUpSettings();
  for (const Tab &tab : L_Tabs) AddTab(helper, tab);
  NeedPropertiesPage(0);
  g_signal_connect(helper.window, "destroy", G_CALLBACK(ForgetPages), nullptr);
  g_signal_connect_after(helper.window, "draw", G_CALLBACK(BuildRestAfterDrawing), nullptr);
}

void NeedPropertiesPage(int number) {
  const LogScope log("NeedPropertiesPage");
  if (number < 0 || number >= static_cast<int>(L_Tabs.size())) return;
  auto *notebook = GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook);
  GtkWidget *place = gtk_notebook_get_nth_page(notebook, number);
  if (gtk_bin_get_child(GTK_BIN(place)) != nullptr) return;
  gtk_container_add(GTK_CONTAINER(place), L_Tabs.at(static_cast<size_t>(number)).create());
  gtk_widget_show(gtk_bin_get_child(GTK_BIN(place)));
}

void NeedAllPropertiesPages() {
  for (int number = 0; number < static_cast<int>(L_Tabs.size()); ++number) {
    NeedPropertiesPage(number);
  }
}

bool ArePropertiesPagesBuilt() {
  return G_PropertiesWindow_helper != nullptr && FirstMissing() == static_cast<int>(L_Tabs.size());
}

GtkRequisition LargestPropertiesPage() {
  const PageSize width = CurrentLanguage() == "text" ? L_WidthWithPagesASheet : L_Width;
  return {static_cast<int>(width.pixels + width.ems * Em()), L_Height};
}
