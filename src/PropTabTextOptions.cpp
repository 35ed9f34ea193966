#include "PropTabTextOptions.h"

#include <algorithm>
#include <vector>

#include "ComboWidget.h"
#include "FieldGrid.h"
#include "FilteredEntry.h"
#include "OptionDefaults.h"
#include "PropertiesFrame.h"
#include "PropertiesPages.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "entryfilters.h"
#include "fontmap.h"
#include "ignoreresult.h"
#include "optionstate.h"
#include "properties.h"
#include "textoptions.h"

std::unique_ptr<PropTabTextOptionsHelper> G_PropTabTextOptions_helper;
const PageWidgets kFontsPage = {create_PropTabTextOptions,
                                [] { G_PropTabTextOptions_helper.reset(); }};

namespace {

constexpr int L_SizeWidth = 4;    // characters
constexpr int L_LineLength = 40;  // characters

GtkWidget *EntryOf(GtkWidget *combo) { return gtk_bin_get_child(GTK_BIN(combo)); }

// The row that is `text`, or -1.
int RowOf(const std::vector<std::string> &texts, const std::string &text) {
  const auto found = std::find(texts.begin(), texts.end(), text);
  return found == texts.end() ? -1 : static_cast<int>(found - texts.begin());
}

std::vector<std::string> Sizes() { return {kFontSizes.begin(), kFontSizes.end()}; }

void ShowSize(const std::string &size) {
  GtkWidget *combo = G_PropTabTextOptions_helper->size;
  const int row = RowOf(Sizes(), size);
  ComboSetRow(combo, row);
  if (row < 0) gtk_entry_set_text(GTK_ENTRY(EntryOf(combo)), size.c_str());
}

// Shows `font`, which must be one of the list, and `style`.
void ShowFontAndStyle(const std::string &font, const std::string &style) {
  const PropTabTextOptionsHelper &helper = *G_PropTabTextOptions_helper;
  if (!font.empty()) ComboSetRow(helper.font, RowOf(FontNames(), font));
  if (FillFontStyleComboBox(font) == 0 || style.empty()) return;
  ComboSetRow(helper.style, RowOf(FontStyles(font), style));
}

GtkWidget *AddCombo(GtkGrid *grid, int row, const std::string &name, const char *label_key,
                    void (*changed)()) {
  GtkWidget *window = G_PropertiesWindow_helper->window;
  GtkWidget *combo =
      NewCombo(window, (name + "Combo").c_str(), (name + "ComboEntry").c_str(), changed);
  AddField(window, grid, row, {name + "Label", label_key}, combo);
  return combo;
}

void MakeSizeEditable(GtkWidget *combo) {
  GtkWidget *entry = EntryOf(combo);
  ComboMakeEditable(combo);
  gtk_entry_set_width_chars(GTK_ENTRY(entry), L_SizeWidth);
  gtk_widget_set_halign(combo, GTK_ALIGN_START);
  g_signal_connect(entry, "insert-text", G_CALLBACK(FontSize_EntryText), nullptr);
  g_signal_connect(entry, "focus-out-event", G_CALLBACK(FontSizeEntryFocusOut), nullptr);
}

// The page of other queues stays, since the pages are known by their numbers; it says why it is
// empty.
GtkWidget *PageOfOtherTypes(const OptionTab &tab) {
  gtk_widget_set_no_show_all(tab.page, TRUE);
  gtk_widget_hide(tab.page);
  GtkWidget *page = gtk_box_new(GTK_ORIENTATION_VERTICAL, kTabSpacing);
  gtk_container_set_border_width(GTK_CONTAINER(page), kTabBorder);
  gtk_box_pack_start(GTK_BOX(page), tab.page, FALSE, FALSE, 0);
  GtkWidget *label = NewLabel(G_PropertiesWindow_helper->window, "FontsOfTextLabel",
                              G_Translate("DEF_LBL_FONT_TEXT_ONLY"), nullptr);
  BreakLines(label, L_LineLength);
  gtk_box_pack_start(GTK_BOX(page), label, FALSE, FALSE, 0);
  gtk_widget_show(label);
  return page;
}

}  // namespace

GtkWidget *create_PropTabTextOptions() {
  const LogScope log("create_PropTabTextOptions");
  G_PropTabTextOptions_helper = std::make_unique<PropTabTextOptionsHelper>();
  PropTabTextOptionsHelper &helper = *G_PropTabTextOptions_helper;
  const OptionTab tab = NewOptionTab("TextVbox");
  StoreWidget(G_PropertiesWindow_helper->window, tab.grid, "DataTextVbox");
  GtkGrid *grid = GTK_GRID(tab.grid);
  helper.font = AddCombo(grid, 0, "FontName", "DEF_LBL_FONT", FontComboBoxOptionChanged);
  helper.style = AddCombo(grid, 1, "FontStyle", "DEF_LBL_STYLE", nullptr);
  helper.size = AddCombo(grid, 2, "FontSize", "DEF_LBL_SIZE", nullptr);
  MakeSizeEditable(helper.size);
  FillFontComboBox();
  FillFontSizeComboBox();
  AddDefaultsButton(tab, "DefaultTextButton", ButtonTextDefaultsPressed);
  return CurrentQueueType().has_fonts ? tab.page : PageOfOtherTypes(tab);
}

void FillFontComboBox() {
  const LogScope log("FillFontComboBox");
  GtkWidget *combo = G_PropTabTextOptions_helper->font;
  ComboFill(combo, FontNames());
  ComboSetRow(combo, FontNames().empty() ? -1 : 0);
  std::string font;
  std::string style;
  if (GetGuiFont(WantedFontName().c_str(), &font, &style) == 0) font = ComboText(combo);
  ShowFontAndStyle(font, style);
}

int FillFontStyleComboBox(const std::string &font) {
  const LogScope log("FillFontStyleComboBox");
  const std::vector<std::string> styles = FontStyles(font);
  if (styles.empty()) return 0;
  GtkWidget *combo = G_PropTabTextOptions_helper->style;
  const int same = RowOf(styles, ComboText(combo));
  ComboFill(combo, styles);
  ComboSetRow(combo, std::max(same, 0));
  return 1;
}

void FillFontSizeComboBox() {
  const LogScope log("FillFontSizeComboBox");
  ComboFill(G_PropTabTextOptions_helper->size, Sizes());
  ShowSize(WantedFontSize());
}

void FontComboBoxOptionChanged() {
  const LogScope log("FontComboBoxOptionChanged");
  IgnoreResult(FillFontStyleComboBox(ComboText(G_PropTabTextOptions_helper->font)),
               "a font of the list has styles");
}

void FontSize_EntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                        gpointer data) {
  const LogScope log("FontSize_EntryText");
  InsertFiltered(entry, FontSize_EntryText, FilterDigits(InsertedText(text, length)), position,
                 data);
}

gboolean FontSizeEntryFocusOut(GtkWidget *entry, GdkEventFocus *, gpointer) {
  const LogScope log("FontSizeEntryFocusOut");
  const std::string size = gtk_entry_get_text(GTK_ENTRY(entry));
  const std::string clamped = ClampedFontSize(size);
  if (size != clamped) gtk_entry_set_text(GTK_ENTRY(entry), clamped.c_str());
  return FALSE;
}

void ButtonTextDefaultsPressed() {
  const LogScope log("ButtonTextDefaultsPressed");
  std::string font;
  std::string style;
  IgnoreResult(GetGuiFont(kDefaultFontName, &font, &style),
               "without that font the first one is shown");
  ShowFontAndStyle(font, style);
  ShowSize(kDefaultFontSize);
}

int G_GetAndSaveUserDataPropTabText() {
  const LogScope log("G_GetAndSaveUserDataPropTabText");
  const PropTabTextOptionsHelper &helper = *G_PropTabTextOptions_helper;
  const bool stored =
      StoreTextOptions(ComboText(helper.font), ComboText(helper.style), ComboText(helper.size));
  return stored ? 1 : 0;
}

void FocusFontEntry() {
  const PropTabTextOptionsHelper &helper = *G_PropTabTextOptions_helper;
  const bool font_is_known = !FontStyles(ComboText(helper.font)).empty();
  FocusInProperties(EntryOf(font_is_known ? helper.style : helper.font));
}
