#include "PropTabFeatures.h"

#include <algorithm>
#include <string>
#include <vector>

#include "ButtonBox.h"
#include "InstallableLists.h"
#include "ListWidget.h"
#include "OptionCombos.h"
#include "OptionDefaults.h"
#include "PrinterPicture.h"
#include "PropertiesFrame.h"
#include "PropertiesPages.h"
#include "Support.h"
#include "cmessages.h"
#include "conflictresolution.h"
#include "cstring.h"
#include "debug.h"
#include "installables.h"
#include "optionlists.h"
#include "optionstate.h"
#include "printerpicturefiles.h"
#include "settingkeys.h"

std::unique_ptr<PropTabFeaturesHelper> G_PropTabFeatures_helper;
const PageWidgets kFeaturesPage = {create_PropTabFeatures,
                                   [] { G_PropTabFeatures_helper.reset(); }};

namespace {

struct HalfFacts {
  const char *box_name;
  const char *label_name;
  const char *label_key;
  const char *scrolled_name;
  const char *list_name;
  ListRowHandler selected;
  ListRowHandler unselected;
};

constexpr HalfFacts L_Available = {
    "AvailableVbox",  "AvailableLabel",   "DEF_LBL_AVAILABLE_TITLE", "AvailableScrolledwindow",
    "AvailableClist", AvailableRowSelect, AvailableRowUnSelect};
constexpr HalfFacts L_Installed = {
    "InstalledVbox",  "InstalledLabel",   "DEF_LBL_INSTALLED_TITLE", "InstalledScrolledwindow",
    "InstalledClist", InstalledRowSelect, InstalledRowUnSelect};

void Select(FeaturesListHelper &half, int row) {
  half.row = row;
  gtk_widget_set_sensitive(half.button, TRUE);
}

void Unselect(FeaturesListHelper &half) {
  half.row = -1;
  gtk_widget_set_sensitive(half.button, FALSE);
}

// A list under its label.
GtkWidget *NewHalf(const HalfFacts &facts, FeaturesListHelper &half) {
  GtkWidget *window = G_PropertiesWindow_helper->window;
  GtkWidget *box =
      StoreWidget(window, gtk_box_new(GTK_ORIENTATION_VERTICAL, kTabSpacing), facts.box_name);
  half.list = StoreWidget(window, NewList({{nullptr, 0}}, GTK_SELECTION_SINGLE), facts.list_name);
  ListOnSelection(half.list, facts.selected, facts.unselected);
  GtkWidget *label = NewLabel(window, facts.label_name, G_Translate(facts.label_key), half.list);
  gtk_box_pack_start(GTK_BOX(box), label, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(box), NewScrolledList(window, facts.scrolled_name, half.list), TRUE,
                     TRUE, 0);
  return box;
}

GtkWidget *NewMoveButtons(PropTabFeaturesHelper &helper) {
  GtkWidget *window = G_PropertiesWindow_helper->window;
  GtkWidget *box = NewButtonBox(window, GTK_ORIENTATION_VERTICAL, "FeaturesVbuttonbox");
  gtk_widget_set_valign(box, GTK_ALIGN_CENTER);
  helper.available.button = NewButton(window, box, "AddFeaturesButton", "DEF_BTN_ADD_FEATURE_TITLE",
                                      ButtonFeaturesAddPressed);
  helper.installed.button = NewButton(window, box, "RemoveFeaturesButton", "DEF_BTN_REMOVE_TITLE",
                                      ButtonFeaturesRemovePressed);
  for (GtkWidget *button : {helper.available.button, helper.installed.button}) {
    gtk_widget_set_sensitive(button, FALSE);
  }
  return box;
}

// Both lists, as wide as each other, with the buttons between them.
GtkWidget *NewLists(PropTabFeaturesHelper &helper) {
  GtkWidget *window = G_PropertiesWindow_helper->window;
  GtkWidget *row =
      StoreWidget(window, gtk_box_new(GTK_ORIENTATION_HORIZONTAL, kTabSpacing), "FeaturesHbox");
  GtkWidget *available = NewHalf(L_Available, helper.available);
  GtkWidget *buttons = NewMoveButtons(helper);
  GtkWidget *installed = NewHalf(L_Installed, helper.installed);
  gtk_box_pack_start(GTK_BOX(row), available, TRUE, TRUE, 0);
  gtk_box_pack_start(GTK_BOX(row), buttons, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(row), installed, TRUE, TRUE, 0);
  GtkSizeGroup *sizes = gtk_size_group_new(GTK_SIZE_GROUP_HORIZONTAL);
  gtk_size_group_add_widget(sizes, available);
  gtk_size_group_add_widget(sizes, installed);
  g_object_unref(sizes);
  return row;
}

void RefillLists() { G_FillInstallableCLists(); }

// Moves the selected row of `half` to the other list: the option gets the value that `value_for`
// finds.
void Move(FeaturesListHelper &half,
          std::string (*value_for)(const std::string &feature, const std::string &display)) {
  if (half.row < 0) return;
  const auto *id = static_cast<const CString *>(ListRowData(half.list, half.row));
  const char *text = fGet_CString_Value_Function(id);
  if (text == nullptr) return;
  const std::string feature = text;  // the row's own text ends with the row
  const std::string value = value_for(feature, TextWithoutMark(ListCell(half.list, half.row, 0)));
  if (value.empty()) return;
  SetQueueValue(G_QueueInstallableOptions_hash, feature.c_str(), value);
  NoteUserChoice(feature.c_str());
  // The button can no longer have the keyboard.
  gtk_widget_grab_focus(half.list);
  Unselect(half);
  ShowInstallableChange(feature);
}

bool Holds(const std::vector<std::string> &features, const char *feature) {
  return std::find(features.begin(), features.end(), feature) != features.end();
}

}  // namespace

GtkWidget *create_PropTabFeatures() {
  const LogScope log("create_PropTabFeatures");
  G_PropTabFeatures_helper = std::make_unique<PropTabFeaturesHelper>();
  PropTabFeaturesHelper &helper = *G_PropTabFeatures_helper;
  const OptionTab tab = NewOptionTab("FeaturesVbox");
  GtkWidget *picture = NewPrinterPicture(G_PropertiesWindow_helper->window);
  gtk_widget_set_halign(picture, GTK_ALIGN_CENTER);
  gtk_box_pack_start(GTK_BOX(tab.page), picture, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(tab.page), NewLists(helper), TRUE, TRUE, 0);
  G_InstallableLists.available = helper.available.list;
  G_InstallableLists.installed = helper.installed.list;
  G_OptionChangeHooks.refill_installables = RefillLists;
  G_FillInstallableCLists();
  AddDefaultsButton(tab, "DefaultFeaturesButton", ButtonFeaturesDefaultsPressed);
  return tab.page;
}

void ShowInstallableChange(const std::string &feature) {
  G_FillInstallableCLists();
  if (IsInPrinterPicture(feature)) RedrawFeaturesPixmaps();
  G_FillAllComboWithOptions();
  if (feature == kPunchUnitKey) RedrawOptionPicture(kPunchKey);
}

void AvailableRowSelect(int row) {
  const LogScope log("AvailableRowSelect");
  Select(G_PropTabFeatures_helper->available, row);
}

void AvailableRowUnSelect(int) {
  const LogScope log("AvailableRowUnSelect");
  Unselect(G_PropTabFeatures_helper->available);
}

void InstalledRowSelect(int row) {
  const LogScope log("InstalledRowSelect");
  Select(G_PropTabFeatures_helper->installed, row);
}

void InstalledRowUnSelect(int) {
  const LogScope log("InstalledRowUnSelect");
  Unselect(G_PropTabFeatures_helper->installed);
}

void ButtonFeaturesAddPressed() {
  const LogScope log("ButtonFeaturesAddPressed");
  Move(G_PropTabFeatures_helper->available, ValueThatInstalls);
}

void ButtonFeaturesRemovePressed() {
  const LogScope log("ButtonFeaturesRemovePressed");
  Move(G_PropTabFeatures_helper->installed, ValueThatRemoves);
}

void ButtonFeaturesDefaultsPressed() {
  const LogScope log("ButtonFeaturesDefaultsPressed");
  const InstallableDefaults defaults = SetInstallablesToDefaults();
  if (!defaults.is_complete || defaults.changed.empty()) return;
  G_FillInstallableCLists();
  // Kept on purpose: finisher and trays leave the picture as it is here.
  if (Holds(defaults.changed, kFeederKey)) RedrawFeaturesPixmaps();
  G_FillAllComboWithOptions();
  if (Holds(defaults.changed, kPunchUnitKey)) RedrawOptionPicture(kPunchKey);
}
