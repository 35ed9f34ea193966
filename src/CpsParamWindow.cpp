#include "CpsParamWindow.h"

#include <algorithm>
#include <clocale>
#include <string>

#include "CustomDialog.h"
#include "DialogFrame.h"
#include "FieldGrid.h"
#include "FilteredEntry.h"
#include "MessageDialogs.h"
#include "Support.h"
#include "ccpsparams.h"
#include "cmessages.h"
#include "customsizes.h"
#include "debug.h"
#include "entryfilters.h"

std::unique_ptr<CpsParamWindowHelper> G_CpsParamWindow_helper;

namespace {

constexpr int L_Edit = 1;
constexpr int L_MeasureWidth = 7;  // characters
constexpr int L_PageSteps = 10;    // steps of a spin button that one page is

int L_AddOrEdit = 0;
int L_CurrentUnit = kPels;
// The printer's limits in pels, as its description has them.
std::string L_MinWidthString;
std::string L_MaxWidthString;
std::string L_MinLengthString;
std::string L_MaxLengthString;

struct UnitButton {
  const char *name;
  const char *title_key;
  void (*pressed)();
};
constexpr UnitButton L_UnitButtons[] = {
    {"PelsRadiobutton", "DEF_BTN_PELS_TITLE", RadioButtonPelsPressed},
    {"InchesRadiobutton", "DEF_BTN_INCHES_TITLE", RadioButtonInchesPressed},
    {"MillimetersRadiobutton", "DEF_BTN_MILLIMETERS_TITLE", RadioButtonMillimetersPressed}};

std::string LimitText(const char *name) {
  const char *limit = PrinterLimit(name);
  return limit == nullptr ? "" : limit;
}

void ReadLimits() {
  L_MinWidthString = LimitText("MinWidth");
  L_MaxWidthString = LimitText("MaxWidth");
  L_MinLengthString = LimitText("MinLength");
  L_MaxLengthString = LimitText("MaxLength");
}

// What the spin button holds, with what was typed last even while the keyboard is still there.
double ValueOf(GtkWidget *spin) {
  gtk_spin_button_update(GTK_SPIN_BUTTON(spin));
  return gtk_spin_button_get_value(GTK_SPIN_BUTTON(spin));
}

// Makes a spin button with its label take `value` in `unit`, between limits in pels.
void ShowMeasure(GtkWidget *spin, GtkWidget *label, int unit, double value, const std::string &min,
                 const std::string &max) {
  std::string range_text;
  BuildRange(min.c_str(), max.c_str(), unit, range_text);
  gtk_label_set_text(GTK_LABEL(label), range_text.c_str());
  const MeasureRange range = EnterableRange(unit, min.c_str(), max.c_str());
  auto *button = GTK_SPIN_BUTTON(spin);
  gtk_spin_button_set_digits(button, static_cast<guint>(UnitDecimals(unit)));
  gtk_spin_button_set_increments(button, UnitStep(unit), L_PageSteps * UnitStep(unit));
  gtk_spin_button_set_range(button, range.min, range.max);
  gtk_spin_button_set_value(button, value);
}

// Both measures in `unit`.
void ShowMeasures(int unit, double width, double length) {
  const CpsParamWindowHelper &helper = *G_CpsParamWindow_helper;
  ShowMeasure(helper.width_spin, helper.width_range, unit, width, L_MinWidthString,
              L_MaxWidthString);
  ShowMeasure(helper.length_spin, helper.length_range, unit, length, L_MinLengthString,
              L_MaxLengthString);
  L_CurrentUnit = unit;
}

void ChangeUnit(int unit) {
  if (G_CpsParamWindow_helper == nullptr) return;
  const double width = ValueOf(G_CpsParamWindow_helper->width_spin);
  const double length = ValueOf(G_CpsParamWindow_helper->length_spin);
  ShowMeasures(unit, ConvertMetrics(L_CurrentUnit, unit, width),
               ConvertMetrics(L_CurrentUnit, unit, length));
}

// One of the buttons is switched off when another is switched on.
void RunWhenOn(GtkToggleButton *button, gpointer pressed) {
  if (gtk_toggle_button_get_active(button) != FALSE) reinterpret_cast<void (*)()>(pressed)();
}

GtkWidget *NewUnitFrame(GtkWidget *window) {
  GtkWidget *frame = gtk_frame_new(G_Translate("DEF_LBL_CPS_UNITS"));
  StoreWidget(window, frame, "CpsUnitsFrame");
  GtkWidget *box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 2 * kFieldSpacing);
  gtk_container_set_border_width(GTK_CONTAINER(box), kFieldSpacing);
  gtk_container_add(GTK_CONTAINER(frame), box);
  GtkRadioButton *group = nullptr;
  for (const UnitButton &unit : L_UnitButtons) {
    GtkWidget *button =
        gtk_radio_button_new_with_label_from_widget(group, G_Translate(unit.title_key));
    group = GTK_RADIO_BUTTON(button);
    g_signal_connect(button, "toggled", G_CALLBACK(RunWhenOn),
                     reinterpret_cast<gpointer>(unit.pressed));
    gtk_box_pack_start(GTK_BOX(box), StoreWidget(window, button, unit.name), FALSE, FALSE, 0);
  }
  return frame;
}

// Characters of the longest range label of any unit, so that the window keeps its size.
int LongestRange(const std::string &min, const std::string &max) {
  glong longest = 0;
  for (const int unit : {kPels, kInches, kMillimetres}) {
    std::string text;
    BuildRange(min.c_str(), max.c_str(), unit, text);
    longest = std::max(longest, g_utf8_strlen(text.c_str(), -1));
  }
  return static_cast<int>(longest);
}

// The toolkit's own filter would drop the point of another locale than the user's.
void CpsMeasure_EntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                          gpointer data) {
  const std::string point = std::localeconv()->decimal_point;
  const std::string shown = gtk_entry_get_text(GTK_ENTRY(entry));
  const bool takes_point = gtk_spin_button_get_digits(GTK_SPIN_BUTTON(entry)) > 0 &&
                           shown.find(point) == std::string::npos;
  InsertFiltered(entry, CpsMeasure_EntryText,
                 FilterMeasure(InsertedText(text, length), takes_point, point), position, data);
}

// A row of label, spin button and range; the last two come back through the pointers.
void AddMeasureRow(GtkGrid *grid, int row, const std::string &name, const char *label_key,
                   GtkWidget **spin, GtkWidget **range) {
  GtkWidget *window = G_CpsParamWindow_helper->window;
  *spin = StoreWidget(window, gtk_spin_button_new(nullptr, 0, 0), (name + "Spinbutton").c_str());
  g_signal_connect(*spin, "insert-text", G_CALLBACK(CpsMeasure_EntryText), nullptr);
  gtk_entry_set_width_chars(GTK_ENTRY(*spin), L_MeasureWidth);
  *range = NewLabel(window, (name + "RangeLabel").c_str(), "", nullptr);
  AddField(window, grid, row, {name + "Label", label_key}, NewDescribedField(*spin, *range), *spin);
}

void AddFields(GtkWidget *box) {
  CpsParamWindowHelper &helper = *G_CpsParamWindow_helper;
  const std::string name =
      L_AddOrEdit == L_Edit ? SelectedCustomName(CustomKind::kPaper) : std::string();
  GtkGrid *grid = AddFieldGrid(box);
  helper.name_entry = NewNameEntry(helper.window, "CpsNameEntry", CpsName_EntryText);
  ShowPastFilter(helper.name_entry, name, CpsName_EntryText);
  AddField(helper.window, grid, 0, {"CpsNameLabel", "DEF_LBL_CPS_NAME"}, helper.name_entry);
  gtk_grid_attach(grid, NewUnitFrame(helper.window), 0, 1, 2, 1);
  AddMeasureRow(grid, 2, "CpsWidth", "DEF_LBL_CPS_WIDTH", &helper.width_spin, &helper.width_range);
  AddMeasureRow(grid, 3, "CpsLength", "DEF_LBL_CPS_LENGTH", &helper.length_spin,
                &helper.length_range);
  const auto *params = HashValue<CCpsParams>(CustomEntries(CustomKind::kPaper), name.c_str());
  gtk_label_set_width_chars(GTK_LABEL(helper.width_range),
                            LongestRange(L_MinWidthString, L_MaxWidthString));
  gtk_label_set_width_chars(GTK_LABEL(helper.length_range),
                            LongestRange(L_MinLengthString, L_MaxLengthString));
  // A new size starts as the smallest one.
  ShowMeasures(kPels, fGetWidth_Function(params), fGetLength_Function(params));
}

}  // namespace

GtkWidget *create_CpsParamWindow(int add_or_edit) {
  const LogScope log("create_CpsParamWindow");
  L_AddOrEdit = add_or_edit;
  ReadLimits();
  const Dialog dialog = NewDialog("CpsParamWindow", "DEF_WND_CPS_PARAM_TITLE");
  G_CpsParamWindow_helper = std::make_unique<CpsParamWindowHelper>();
  G_CpsParamWindow_helper->window = dialog.window;
  AddFields(dialog.box);
  AddOkCancelHelp(dialog, "CpsButtonsHbuttonbox",
                  {ButtonOkCpsPressed, ButtonCancelCpsPressed, ButtonHelpCpsPressed});
  gtk_widget_grab_focus(G_CpsParamWindow_helper->name_entry);
  return dialog.window;
}

int CheckUniqueCpsName(const char *name) {
  const LogScope log("CheckUniqueCpsName");
  return CheckUniqueCustomName(CustomKind::kPaper, name, L_AddOrEdit == L_Edit);
}

int GetAndSaveUserDataCpsParam() {
  const LogScope log("GetAndSaveUserDataCpsParam");
  const CpsParamWindowHelper &helper = *G_CpsParamWindow_helper;
  const std::string name = gtk_entry_get_text(GTK_ENTRY(helper.name_entry));
  if (CheckUniqueCpsName(name.c_str()) == 0) {
    gtk_widget_grab_focus(helper.name_entry);
    return 0;
  }
  const double width = ConvertMetrics(L_CurrentUnit, kPels, ValueOf(helper.width_spin));
  const double length = ConvertMetrics(L_CurrentUnit, kPels, ValueOf(helper.length_spin));
  if (L_AddOrEdit == L_Edit) G_CustomsTab.remove_edited(CustomKind::kPaper);
  AddCustomPaper(name, width, length);
  G_CustomsTab.show_new(CustomKind::kPaper, name);
  return 1;
}

void ButtonOkCpsPressed() {
  const LogScope log("ButtonOkCpsPressed");
  // The tab's buttons are dead while the edited entry is replaced, and Add is with the last one.
  GtkWidget *list = G_CustomsTab.list(CustomKind::kPaper);
  const FocusKeeper keeper(gtk_widget_get_toplevel(list), list);
  if (GetAndSaveUserDataCpsParam() == 0) return;
  ButtonCancelCpsPressed();
  G_CustomsTab.count_new(CustomKind::kPaper);
}

void ButtonCancelCpsPressed() {
  const LogScope log("ButtonCancelCpsPressed");
  if (G_CpsParamWindow_helper == nullptr) return;
  GtkWidget *window = G_CpsParamWindow_helper->window;
  G_CpsParamWindow_helper.reset();
  gtk_widget_destroy(window);
}

void ButtonHelpCpsPressed() {
  const LogScope log("ButtonHelpCpsPressed");
  ShowHelp("KPX_CPS_PARAMS_BEGIN");
}

void RadioButtonPelsPressed() {
  const LogScope log("RadioButtonPelsPressed");
  ChangeUnit(kPels);
}

void RadioButtonInchesPressed() {
  const LogScope log("RadioButtonInchesPressed");
  ChangeUnit(kInches);
}

void RadioButtonMillimetersPressed() {
  const LogScope log("RadioButtonMillimetersPressed");
  ChangeUnit(kMillimetres);
}

void CpsName_EntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                       gpointer data) {
  const LogScope log("CpsName_EntryText");
  InsertFiltered(entry, CpsName_EntryText, FilterCustomPaperName(InsertedText(text, length)),
                 position, data);
}
