#include "OptionCombos.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "ComboWidget.h"
#include "FieldGrid.h"
#include "Pixmaps.h"
#include "Support.h"
#include "constraints.h"
#include "cprintqueue.h"
#include "debug.h"
#include "featuretable.h"
#include "moreoptions.h"
#include "multipleup.h"
#include "optionchange.h"
#include "optionlists.h"
#include "optionstate.h"
#include "printermodels.h"
#include "settingkeys.h"

OptionChangeHooks G_OptionChangeHooks;

namespace {

constexpr int L_PictureSpacing = 12;  // pixels

struct OptionWidgets {
  const char *feature = nullptr;  // of ListedFeatures
  std::string shown;              // the printer's feature that the row shows
  GtkWidget *combo = nullptr;     // all lent by the window
  GtkWidget *entry = nullptr;
  GtkWidget *picture = nullptr;
};

// The rows that are there, in the order of ListedFeatures.
std::vector<OptionWidgets> L_Rows;

const OptionWidgets *RowOf(const char *feature) {
  for (const OptionWidgets &row : L_Rows) {
    if (std::strcmp(row.feature, feature) == 0 || row.shown == feature) return &row;
  }
  return nullptr;
}

size_t NumberOf(const char *feature) {
  const std::vector<ListedFeature> &features = ListedFeatures();
  size_t number = 0;
  while (number < features.size() && std::strcmp(features[number].feature, feature) != 0) ++number;
  return number;
}

void Keep(const OptionWidgets &widgets) {
  auto place = L_Rows.begin();
  while (place != L_Rows.end() && NumberOf(place->feature) < NumberOf(widgets.feature)) ++place;
  L_Rows.insert(place, widgets);
}

// The queue's choice or, failing that, the printer's default.
std::string ChoiceOf(const char *feature) {
  std::string chosen = QueueFeatureValue(feature);
  if (!chosen.empty()) return chosen;
  const char *usual =
      fGet_CString_Value_Function(G_GetPPDDefaultOptionForFeature(G_PrinterFeatures_hash, feature));
  return usual == nullptr ? "" : usual;
}

std::string PictureFor(const char *feature) {
  const std::string option = ChoiceOf(ShownFeature(feature).c_str());
  return PictureOfChoice(feature, option, IsCustomChoice(feature, option.c_str()));
}

int RowWithText(const OptionList &list) {
  for (size_t i = 0; i < list.rows.size(); ++i) {
    if (list.rows[i].text == list.current_text) return static_cast<int>(i);
  }
  return -1;
}

void ShowDependents(const char *feature, const std::string &option) {
  const OptionChangeHooks &hooks = G_OptionChangeHooks;
  if (std::strcmp(feature, kDeliveryKey) == 0 && hooks.delivery_shown != nullptr) {
    hooks.delivery_shown(option.c_str());
  }
  if (std::strcmp(feature, kNotificationKey) == 0 && hooks.notification_shown != nullptr) {
    hooks.notification_shown(option.c_str());
  }
}

void LogFilling(const char *feature) {
  if (G_DebugLevel == 0) return;  // this runs sixteen times a choice
  const size_t number = NumberOf(feature);
  if (number == ListedFeatures().size()) return;
  Log(3, std::string("Fill the ") + ListedFeatures()[number].name + " Combo");
}

void FillCombo(GtkWidget *combo, const char *feature, std::optional<SettingsSnapshot> &snapshot) {
  const LogScope log("G_FillComboWithOptions");
  LogFilling(feature);
  const std::string shown = ShownFeature(feature);
  // That an added model lacks one is no fault.
  const bool is_added = G_PrinterModel == kAddedModelNumber;
  if (is_added && HashFind(G_PrinterFeatures_hash, shown.c_str()) == nullptr) return;
  const std::optional<OptionList> list =
      GetOptionsForFeature(G_PrinterFeatures_hash, shown.c_str(), snapshot);
  if (!list) {
    Log(2, std::string("The options_glist is empty for feature >>") + feature + "<<");
    return;
  }
  std::vector<ComboRow> rows;
  rows.reserve(list->rows.size());
  for (const OptionListRow &row : list->rows) rows.push_back({row.text, row.reason});
  ComboFillRows(combo, rows);
  if (list->current_text.empty() || list->current_option.empty()) {
    Log(2, std::string("The translation for the default option for feature >>") + feature +
               "<< was not founded");
    ComboForgetRow(combo);
  } else {
    ComboSetRow(combo, RowWithText(*list));
  }
  ShowDependents(feature, list->current_option);
}

void Run(void (*hook)()) {
  if (hook != nullptr) hook();
}

void ShowOrderBoxes(OrderBoxes boxes) {
  if (G_OptionChangeHooks.show_nup_orders != nullptr) G_OptionChangeHooks.show_nup_orders(boxes);
}

// What shows how the sheet lies.
void RedrawTurnedPictures() {
  for (const ListedFeature &listed : ListedFeatures()) {
    if (listed.turns_with_sheet) RedrawOptionPicture(listed.feature);
  }
  if (CurrentQueueType().has_pages_a_sheet) Run(G_OptionChangeHooks.redraw_multiple_up);
}

}  // namespace

void AddOptionRow(GtkWidget *window, GtkGrid *grid, int row, const char *feature,
                  const char *label_key, bool with_picture) {
  const LogScope log("AddOptionRow");
  const size_t number = NumberOf(feature);
  if (number == ListedFeatures().size()) return;
  const ListedFeature &listed = ListedFeatures()[number];
  const std::string name = listed.name;
  OptionWidgets widgets;
  widgets.feature = listed.feature;
  widgets.shown = ShownFeature(listed.feature);
  widgets.combo = NewCombo(window, (name + "Combo").c_str(), (name + "ComboEntry").c_str(),
                           [&listed] { G_ComboBoxOptionChanged(listed.feature); });
  widgets.entry = lookup_widget(window, (name + "ComboEntry").c_str());
  GtkWidget *label = AddField(window, grid, row, {name + "Label", label_key}, widgets.combo);
  gtk_widget_set_valign(widgets.combo, GTK_ALIGN_CENTER);
  const bool offered = HashFind(G_PrinterFeatures_hash, widgets.shown.c_str()) != nullptr;
  if (with_picture) {
    widgets.picture =
        offered ? create_pixmap(window, PictureFor(feature).c_str()) : create_dummy_pixmap(window);
    StoreWidget(window, widgets.picture, (name + "Pixmap").c_str());
    gtk_widget_set_margin_start(widgets.picture, L_PictureSpacing);
    LabelBy(widgets.picture, label);
    gtk_grid_attach(grid, widgets.picture, 2, row, 1, 1);
  }
  Keep(widgets);
  G_FillComboWithOptions(widgets.combo, widgets.entry, feature);
  for (GtkWidget *widget : {label, widgets.combo, widgets.picture}) {
    if (widget != nullptr && !offered) gtk_widget_set_sensitive(widget, FALSE);
  }
}

void AddOptionRow(GtkWidget *window, GtkGrid *grid, const char *feature) {
  const ListedFeature *listed = FindListedFeature(feature);
  if (listed == nullptr) return;
  AddOptionRow(window, grid, listed->row, feature, listed->label_key, listed->has_picture);
}

int AddOptionRows(GtkWidget *window, GtkGrid *grid, Page page) {
  int free = 0;
  for (const ListedFeature &listed : ListedFeatures()) {
    if (listed.page != page) continue;
    free = std::max(free, listed.row + 1);
    const bool is_halftone = std::strcmp(listed.feature, kHalfToneKey) == 0;
    if (is_halftone && !CurrentQueueType().has_halftones) continue;
    AddOptionRow(window, grid, listed.feature);
  }
  return free;
}

void ForgetOptionRows() { L_Rows.clear(); }

GtkWidget *OptionCombo(const char *feature) {
  const OptionWidgets *row = RowOf(feature);
  return row == nullptr ? nullptr : row->combo;
}

GtkWidget *OptionComboEntry(const char *feature) {
  const OptionWidgets *row = RowOf(feature);
  return row == nullptr ? nullptr : row->entry;
}

GtkWidget *OptionPicture(const char *feature) {
  const OptionWidgets *row = RowOf(feature);
  return row == nullptr ? nullptr : row->picture;
}

void G_FillComboWithOptions(GtkWidget *combo, GtkWidget *, const char *feature) {
  std::optional<SettingsSnapshot> snapshot;
  FillCombo(combo, feature, snapshot);
}

void G_FillAllComboWithOptions() {
  const LogScope log("G_FillAllComboWithOptions");
  std::optional<SettingsSnapshot> snapshot;
  for (const OptionWidgets &row : L_Rows) {
    if (IsListFilled(row.feature)) FillCombo(row.combo, row.feature, snapshot);
  }
  Run(G_OptionChangeHooks.refill_more_options);
}

void G_ComboBoxOptionChanged(const char *feature) {
  const LogScope log("G_ComboBoxOptionChanged");
  const OptionWidgets *row = RowOf(feature);
  if (row == nullptr) return;
  const std::optional<OptionChange> change =
      ChangeOption(row->shown.c_str(), ComboText(row->combo));
  if (!change) return;
  if (change->order_boxes) ShowOrderBoxes(*change->order_boxes);
  if (row->picture != nullptr) {
    const std::string file = PictureOfChoice(feature, change->option, change->is_custom);
    change_pixmap(row->picture, file.c_str());
  }
  G_FillAllComboWithOptions();
  if (std::strcmp(feature, kOrientationKey) == 0) RedrawTurnedPictures();
  if (ChangesInstallableMarks(feature)) Run(G_OptionChangeHooks.refill_installables);
}

void ShowTurnedSheet() {
  if (CurrentMultipleUp() == "2") ShowOrderBoxes(CurrentOrderBoxes());
  RedrawTurnedPictures();
}

void RedrawOptionPicture(const char *feature) {
  const OptionWidgets *row = RowOf(feature);
  if (row == nullptr || row->picture == nullptr) return;
  if (HashFind(G_PrinterFeatures_hash, row->shown.c_str()) == nullptr) return;
  // The pictures have the names of our own features.
  change_pixmap(row->picture, PictureFor(row->feature).c_str());
}
