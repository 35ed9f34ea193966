#include "MoreOptionsList.h"

#include <optional>
#include <string>
#include <vector>

#include "ComboWidget.h"
#include "FieldGrid.h"
#include "ListWidget.h"
#include "OptionCombos.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "moreoptions.h"
#include "optionchange.h"
#include "optionlists.h"
#include "optionstate.h"
#include "properties.h"

namespace {

constexpr int L_Border = 10;  // pixels
constexpr int L_LeastHeight = 110;

// Of the window that is open; empty without one.
struct State {
  std::vector<MoreOption> options;
  std::vector<MoreOptionRow> rows;  // as the list shows them
  GtkWidget *list = nullptr;
  GtkWidget *combo = nullptr;
  GtkWidget *label = nullptr;
  int row = -1;  // that is selected
};
State L_State;

void ForgetMoreOptions() { L_State = {}; }

std::string SelectedFeature() {
  const bool is_row = L_State.row >= 0 && L_State.row < static_cast<int>(L_State.rows.size());
  return is_row ? L_State.rows[static_cast<size_t>(L_State.row)].feature : std::string();
}

// The combo has the choices of the selected option; of none it is empty.
void FillChoices() {
  const std::string feature = SelectedFeature();
  std::vector<ComboRow> rows;
  int current = -1;
  if (!feature.empty()) {
    const auto list = G_GetOptionsForFeature(G_PrinterFeatures_hash, feature.c_str());
    for (size_t i = 0; list && i < list->rows.size(); ++i) {
      if (list->rows[i].text == list->current_text) current = static_cast<int>(i);
      rows.push_back({list->rows[i].text, list->rows[i].reason});
    }
  }
  ComboFillRows(L_State.combo, rows);
  ComboSetRow(L_State.combo, current);
  const gboolean usable = rows.empty() ? FALSE : TRUE;
  gtk_widget_set_sensitive(L_State.combo, usable);
  gtk_widget_set_sensitive(L_State.label, usable);
}

void AppendRow(const MoreOptionRow &row) {
  const int number = ListAppend(L_State.list, {row.text, row.choice}, nullptr);
  ListSetTip(L_State.list, number, row.reason);
}

void FillList() {
  L_State.rows = MoreOptionRows(L_State.options);
  for (const MoreOptionRow &row : L_State.rows) AppendRow(row);
}

// After a change anywhere. The rows stay, so that the selection does, and the choices keep the
// keyboard.
void Refill() {
  const std::vector<MoreOptionRow> rows = MoreOptionRows(L_State.options);
  for (size_t i = 0; i < rows.size(); ++i) {
    const int number = static_cast<int>(i);
    ListSetCell(L_State.list, number, 0, rows[i].text);
    ListSetCell(L_State.list, number, 1, rows[i].choice);
    ListSetTip(L_State.list, number, rows[i].reason);
  }
  L_State.rows = rows;
  FillChoices();
}

void RowSelected(int row) {
  const LogScope log("MoreOptionsCListRowSelection");
  L_State.row = row;
  FillChoices();
}

void RowUnselected(int row) {
  const LogScope log("MoreOptionsCListRowUnSelection");
  if (L_State.row == row) L_State.row = -1;
  FillChoices();
}

void Forget(GtkWidget *, gpointer) { ForgetMoreOptions(); }

void ChoiceMade() {
  const std::string feature = SelectedFeature();
  if (feature.empty()) return;
  if (!ChangeOption(feature.c_str(), ComboText(L_State.combo))) return;
  G_FillAllComboWithOptions();
  if (G_OptionChangeHooks.refill_installables != nullptr) G_OptionChangeHooks.refill_installables();
}

}  // namespace

void AddMoreOptions(GtkWidget *window, GtkWidget *page) {
  const LogScope log("AddMoreOptions");
  ForgetMoreOptions();
  L_State.options = MoreOptionsOf(G_CurrentPrinter);
  if (L_State.options.empty()) return;
  GtkWidget *frame =
      StoreWidget(window, gtk_frame_new(G_Translate("DEF_LBL_MORE_OPTIONS")), "MoreOptionsFrame");
  gtk_widget_set_margin_start(gtk_frame_get_label_widget(GTK_FRAME(frame)), L_Border);
  gtk_box_pack_start(GTK_BOX(page), frame, TRUE, TRUE, 0);
  GtkWidget *box =
      StoreWidget(window, gtk_box_new(GTK_ORIENTATION_VERTICAL, kFieldSpacing), "MoreOptionsVbox");
  gtk_container_set_border_width(GTK_CONTAINER(box), L_Border);
  gtk_container_add(GTK_CONTAINER(frame), box);
  L_State.list = StoreWidget(window, NewList({{nullptr, 0}, {nullptr, 0}}, GTK_SELECTION_BROWSE),
                             "MoreOptionsClist");
  SetAccessibleName(L_State.list, G_Translate("DEF_LBL_MORE_OPTIONS"));
  GtkWidget *scrolled = NewScrolledList(window, "MoreOptionsScrolledwindow", L_State.list);
  gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(scrolled), L_LeastHeight);
  gtk_box_pack_start(GTK_BOX(box), scrolled, TRUE, TRUE, 0);
  g_signal_connect(L_State.list, "destroy", G_CALLBACK(Forget), nullptr);
  L_State.combo = NewCombo(window, "MoreOptionCombo", "MoreOptionComboEntry", ChoiceMade);
  GtkGrid *grid = NewFieldGrid();
  L_State.label =
      AddField(window, grid, 0, {"MoreOptionLabel", "DEF_LBL_MORE_OPTION"}, L_State.combo);
  gtk_box_pack_start(GTK_BOX(box), GTK_WIDGET(grid), FALSE, FALSE, 0);
  ListOnSelection(L_State.list, RowSelected, RowUnselected);
  G_OptionChangeHooks.refill_more_options = Refill;
  FillList();
  FillChoices();
}

GtkWidget *ShowMoreOption(const std::string &feature) {
  for (size_t i = 0; i < L_State.rows.size(); ++i) {
    if (L_State.rows[i].feature != feature) continue;
    ListSelectRow(L_State.list, static_cast<int>(i));
    ListShowRow(L_State.list, static_cast<int>(i));
    return L_State.combo;
  }
  return nullptr;
}

bool ResetMoreOptions() {
  bool changed = false;
  for (const MoreOption &option : L_State.options) {
    if (ResetFeature(option.feature.c_str()) == FeatureReset::kChanged) changed = true;
  }
  return changed;
}
