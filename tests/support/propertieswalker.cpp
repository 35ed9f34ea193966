#include "propertieswalker.h"

#include "CmtParamWindow.h"
#include "ConfirmationWindow.h"
#include "CpsParamWindow.h"
#include "ListWidget.h"
#include "OptionCombos.h"
#include "PropTabCustoms.h"
#include "PropTabFeatures.h"
#include "PropTabOptions.h"
#include "PropertiesWindow.h"
#include "Support.h"
#include "featuretable.h"
#include "guisupport.h"
#include "optionlists.h"
#include "xinput.h"

namespace {

GtkWidget *Window() { return G_PropertiesWindow_helper->window; }
GtkNotebook *Notebook() { return GTK_NOTEBOOK(G_PropertiesWindow_helper->notebook); }

bool ShowPageOf(GtkWidget *widget) {
  for (int page = 0; page < gtk_notebook_get_n_pages(Notebook()); ++page) {
    if (gtk_widget_is_ancestor(widget, gtk_notebook_get_nth_page(Notebook(), page)) == FALSE) {
      continue;
    }
    gtk_notebook_set_current_page(Notebook(), page);
  }
  return gtk_widget_is_sensitive(widget) != FALSE && gtk_widget_is_visible(widget) != FALSE;
}

void Click(GtkWidget *window, const char *button) {
  gtk_button_clicked(GTK_BUTTON(lookup_widget(window, button)));
}

int RowsOf(GtkWidget *combo) {
  return gtk_tree_model_iter_n_children(gtk_combo_box_get_model(GTK_COMBO_BOX(combo)), nullptr);
}

std::vector<GtkWidget *> WindowsNamed(const std::string &name) {
  std::vector<GtkWidget *> found;
  GList *windows = gtk_window_list_toplevels();
  for (GList *link = windows; link != nullptr; link = link->next) {
    GtkWidget *window = GTK_WIDGET(link->data);
    if (name == gtk_widget_get_name(window)) found.push_back(window);
  }
  g_list_free(windows);
  return found;
}

}  // namespace

std::string PropertiesWalker::Step() {
  const size_t number = OneOf(100);
  if (number < 60) return ChooseOption();
  if (number < 68) return PagesASheet();
  if (number < 76) return MoveFeature();
  if (number < 84) return Customs();
  if (number < 89) return Defaults();
  if (number < 94) return Text();
  if (number < 96) return ShowPage();
  if (number < 98) return Finish("ApplyButton");
  return Finish(Once(2) ? "OKButton" : "CancelButton");
}

bool PropertiesWalker::Press(const std::string &name) {
  GtkWidget *button = lookup_widget(Window(), name.c_str());
  if (button == nullptr || !ShowPageOf(button)) return false;
  gtk_button_clicked(GTK_BUTTON(button));
  return true;
}

std::string PropertiesWalker::ChooseOption() {
  std::vector<GtkWidget *> combos;
  Words features;
  for (const ListedFeature &listed : ListedFeatures()) {
    GtkWidget *combo = OptionCombo(listed.feature);
    if (combo == nullptr || RowsOf(combo) == 0) continue;
    combos.push_back(combo);
    features.emplace_back(listed.feature);
  }
  const size_t number = OneOf(combos.size());
  GtkWidget *combo = combos[number];
  if (!ShowPageOf(combo)) return "nothing with " + features[number];
  if (Once(20)) return ChooseByKey(OptionComboEntry(features[number].c_str()));
  const auto row = static_cast<int>(OneOf(static_cast<size_t>(RowsOf(combo))));
  gtk_combo_box_set_active(GTK_COMBO_BOX(combo), row);
  return features[number] + " to row " + std::to_string(row);
}

std::string PropertiesWalker::ChooseByKey(GtkWidget *entry) {
  FocusWindowOf(entry);
  gtk_widget_grab_focus(entry);
  RunPending();
  const Words keys = {"Down", "Up", "a", "l", "n", "s", "t"};
  const std::string key = keys[OneOf(keys.size())];
  XInputChord(key);
  RunPending();
  return "key " + key + " in " + gtk_widget_get_name(entry);
}

std::string PropertiesWalker::ChooseInCombo(const std::string &name) {
  GtkWidget *combo = lookup_widget(Window(), name.c_str());
  if (!ShowPageOf(combo)) return "nothing with " + name;
  gtk_combo_box_set_active(GTK_COMBO_BOX(combo),
                           static_cast<int>(OneOf(static_cast<size_t>(RowsOf(combo)))));
  return name;
}

// What the tabs have besides the lists of options.
std::string PropertiesWalker::Text() {
  const size_t number = OneOf(9);
  if (number == 0) return ChooseInCombo("FontNameCombo");
  if (number == 1) return ChooseInCombo("FontStyleCombo");
  if (number == 2) return ChooseInCombo("FontSizeCombo");
  if (number == 3) {
    GtkWidget *copies = lookup_widget(Window(), "NrCopiesSpinbutton");
    ShowPageOf(copies);
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(copies), static_cast<double>(1 + OneOf(99)));
    return "copies";
  }
  const Words names = {"JobNameEntry", "UserNameEntry", "PinEntry", "EmailNotifAddressEntry",
                       "EmailNotifMessageEntry"};
  const Words texts = {"", "7", "1234", "anna@example.org", "no address", "Größe <3>", "0000"};
  const std::string name = names[number - 4];
  GtkWidget *entry = lookup_widget(Window(), name.c_str());
  if (!ShowPageOf(entry)) return "nothing in " + name;
  const std::string text = texts[OneOf(texts.size())];
  gtk_entry_set_text(GTK_ENTRY(entry), text.c_str());
  return name + " is " + text;
}

std::string PropertiesWalker::PagesASheet() {
  std::vector<GtkWidget *> buttons;
  for (const NupButton &choice : G_PropTabOptions_helper->pages) buttons.push_back(choice.button);
  for (const NupButton &choice : G_PropTabOptions_helper->orders) buttons.push_back(choice.button);
  GtkWidget *button = buttons[OneOf(buttons.size())];
  if (button == nullptr) return ChooseOption();
  if (!ShowPageOf(button)) return "no pages a sheet";
  gtk_button_clicked(GTK_BUTTON(button));
  return gtk_widget_get_name(button);
}

std::string PropertiesWalker::Defaults() {
  const Words tabs = {"Setup", "Output", "Options", "Destination", "Features", "Text"};
  const std::string button = "Default" + tabs[OneOf(tabs.size())] + "Button";
  return Press(button) ? button : "no " + button;
}

std::string PropertiesWalker::MoveFeature() {
  if (G_PropTabFeatures_helper == nullptr) return ChooseOption();
  const bool adds = Once(2);
  GtkWidget *list =
      adds ? G_PropTabFeatures_helper->available.list : G_PropTabFeatures_helper->installed.list;
  SelectRows(list, 1);
  const std::string button = adds ? "AddFeaturesButton" : "RemoveFeaturesButton";
  return Press(button) ? button : "no " + button;
}

void PropertiesWalker::SelectRows(GtkWidget *list, size_t count) {
  ListUnselectAll(list);
  const auto rows = static_cast<size_t>(ListRowCount(list));
  for (size_t i = 0; rows > 0 && i < count; ++i) ListSelectRow(list, static_cast<int>(OneOf(rows)));
}

std::string PropertiesWalker::Customs() {
  if (G_PropTabCustoms_helper == nullptr) return ChooseOption();
  const bool is_paper = Once(2);
  const std::string kind = is_paper ? "Cps" : "Cmt";
  const Words actions = {"Add", "Add", "Edit", "Delete"};
  const std::string action = actions[OneOf(actions.size())];
  const size_t count = action == "Delete" ? 1 + OneOf(3) : 1;
  SelectRows(CustomList(is_paper ? CustomKind::kPaper : CustomKind::kMedia).list, count);
  const std::string button = kind + "Button" + action;
  if (!Press(button)) return "no " + button;
  if (action == "Delete") return Delete(button);
  return is_paper ? AddOrEditPaper(button) : AddOrEditMedia(button);
}

std::string PropertiesWalker::CustomName() {
  const Words names = {"Card", "Banner 3", "Label", "Ticket", "Roll", "A4", "", "Map", "Gloss"};
  return names[OneOf(names.size())];
}

std::string PropertiesWalker::AddOrEditPaper(const std::string &button) {
  const CpsParamWindowHelper &helper = *G_CpsParamWindow_helper;
  const std::string name = CustomName();
  if (!Once(3)) gtk_entry_set_text(GTK_ENTRY(helper.name_entry), name.c_str());
  if (Once(3)) RadioButtonInchesPressed();
  if (Once(3)) RadioButtonMillimetersPressed();
  for (GtkWidget *spin : {helper.width_spin, helper.length_spin}) {
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(spin), static_cast<double>(OneOf(1500)));
  }
  RunPending();
  Click(helper.window, Once(8) ? "CancelButton" : "OKButton");
  CloseErrors();
  ButtonCancelCpsPressed();
  return button + " " + name;
}

std::string PropertiesWalker::AddOrEditMedia(const std::string &button) {
  const CmtParamWindowHelper &helper = *G_CmtParamWindow_helper;
  const std::string name = CustomName();
  if (!Once(3)) gtk_entry_set_text(GTK_ENTRY(helper.name_entry), name.c_str());
  RunPending();
  Click(helper.window, Once(8) ? "CancelButton" : "OKButton");
  CloseErrors();
  ButtonCancelCmtPressed();
  return button + " " + name;
}

std::string PropertiesWalker::Delete(const std::string &button) {
  RunPending();
  Click(G_ConfirmationWindow_helper->window, Once(4) ? "NOButton" : "YESButton");
  return button;
}

std::string PropertiesWalker::Finish(const std::string &button) {
  Press(button);
  RunPending();
  CloseErrors();
  return button;
}

void PropertiesWalker::CloseErrors() {
  for (GtkWidget *box : WindowsNamed("ErrorDialog")) {
    GtkWidget *resolve = lookup_widget(box, "ResolveButton");
    if (resolve != nullptr && Once(2)) gtk_button_clicked(GTK_BUTTON(resolve));
    RunPending();
    Click(box, "OKButton");
  }
}

// Goes to a page and reads its help.
std::string PropertiesWalker::ShowPage() {
  const auto pages = static_cast<size_t>(gtk_notebook_get_n_pages(Notebook()));
  const auto page = static_cast<int>(OneOf(pages));
  gtk_notebook_set_current_page(Notebook(), page);
  Press("HelpButton");
  RunPending();
  for (GtkWidget *box : WindowsNamed("KPXHelpDialog")) Click(box, "OKButton");
  return "page " + std::to_string(page);
}
