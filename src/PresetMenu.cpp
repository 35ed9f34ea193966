#include "PresetMenu.h"

#include <algorithm>
#include <string>
#include <vector>

#include "MessageDialogs.h"
#include "OptionCombos.h"
#include "OptionDefaults.h"
#include "PresetWindow.h"
#include "PropTabOptions.h"
#include "PropTabSetup.h"
#include "PropTabSetupFct.h"
#include "PropertiesFrame.h"
#include "PropertiesPages.h"
#include "QuestionDialog.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "featuretable.h"
#include "optionstate.h"
#include "presets.h"
#include "settingkeys.h"

namespace {

constexpr int L_Spacing = 12;      // pixels
constexpr int L_Margin = 8;        // that of the pages
constexpr int L_ResultWidth = 44;  // characters

GtkWidget *L_Result = nullptr;   // the label; null without a window
std::vector<Preset> L_Choices;   // of the menu that was opened last
std::vector<std::string> L_Own;  // names of the user's own, likewise
std::string L_Fault;             // why they cannot be read

void ShowBox(const std::string &text, const std::string &detail) {
  gtk_widget_show(create_ErrorWindow(detail.empty() ? nullptr : detail.c_str(), text));
}

void ShowResult(const char *key, const std::string &name) {
  if (L_Result != nullptr) {
    gtk_label_set_text(GTK_LABEL(L_Result), G_Message(key, {name}).c_str());
  }
}

// All that the window shows of the settings, on all of its pages.
void ShowSettings(const PresetResult &result) {
  for (const ListedFeature &listed : ListedFeatures()) RedrawOptionPicture(listed.feature);
  for (const ResolvedConflict &other : result.others) {
    const char *feature = other.feature.c_str();
    GtkWidget *combo = OptionCombo(feature);
    // For some printers the resolutions are not filled with the others.
    if (combo != nullptr) G_FillComboWithOptions(combo, OptionComboEntry(feature), feature);
  }
  RefillAfterDefaults();
  ShowMultipleUp();
}

void ShowCopies(const Preset &preset) {
  if (!preset.settings.contains(kCopiesKey)) return;
  const int copies = std::atoi(preset.settings.at(kCopiesKey).c_str());
  gtk_spin_button_set_value(GTK_SPIN_BUTTON(G_PropTabSetup_helper->copies), copies);
}

// What else was changed: a line each.
std::string OthersText(const PresetResult &result) {
  std::string text;
  for (const ResolvedConflict &other : result.others) {
    const char *feature = other.feature.c_str();
    text += (text.empty() ? "" : "\n") +
            G_Message("CONSTR_Resolved", {FeatureDisplayText(feature),
                                          OptionDisplayText(feature, other.option.c_str())});
  }
  return text;
}

void Choose(const Preset &preset) {
  NeedAllPropertiesPages();
  const PresetResult result = ApplyPreset(preset);
  if (!result.refusal.empty()) {
    ShowBox(G_Message("PRESET_REFUSED", {preset.name}), result.refusal);
    return;
  }
  ShowCopies(preset);
  ShowSettings(result);
  ShowResult("PRESET_CHOSEN", preset.name);
  if (result.others.empty()) return;
  GtkWidget *box = create_ErrorWindow(OthersText(result).c_str(),
                                      G_Message("PRESET_CHOSEN_OTHERS", {preset.name}));
  CallNote(box);
  gtk_widget_show(box);
}

void Delete(const std::string &name) {
  const std::string fault = ChangeKeptPresets([&name](std::vector<Preset> &presets) {
    const auto is_it = [&name](const Preset &preset) { return preset.name == name; };
    return std::erase_if(presets, is_it) == 0 ? G_Message("PRESET_GONE", {name}) : std::string();
  });
  if (!fault.empty()) return ShowBox(fault, "");
  ShowResult("PRESET_DELETED", name);
}

void ChoiceActivated(GtkWidget *, gpointer number) {
  const LogScope log("PresetChoiceActivated");
  Choose(Preset(L_Choices.at(GPOINTER_TO_SIZE(number))));
}

void DeleteActivated(GtkWidget *, gpointer number) {
  const LogScope log("PresetDeleteActivated");
  const std::string name = L_Own.at(GPOINTER_TO_SIZE(number));
  gtk_widget_show(
      create_QuestionWindow(G_Message("ASK_DELETE_PRESET", {name}), [name] { Delete(name); }));
}

void SaveActivated(GtkWidget *, gpointer) {
  const LogScope log("PresetSaveActivated");
  if (!L_Fault.empty()) return ShowBox(L_Fault, "");
  NeedAllPropertiesPages();
  const Preset preset = PresetOfSettings("", CopiesOfSetupTab());
  if (preset.settings.empty()) return ShowBox(G_Translate("PRESET_NOTHING"), "");
  const std::string conflict = WhyPresetMisfits(preset);
  if (!conflict.empty()) return ShowBox(G_Translate("PRESET_CONFLICT"), conflict);
  gtk_widget_show(create_PresetWindow(
      preset, [](const std::string &name) { ShowResult("PRESET_KEPT", name); }));
}

void FaultActivated(GtkWidget *, gpointer) { ShowBox(L_Fault, ""); }

void DestroyMenu(GtkWidget *menu, gpointer) { gtk_widget_destroy(menu); }

using Activated = void (*)(GtkWidget *, gpointer);

GtkWidget *AddItem(GtkWidget *menu, const char *name, const std::string &text, Activated activated,
                   size_t number = 0) {
  GtkWidget *item = gtk_menu_item_new_with_label(text.c_str());
  gtk_widget_set_name(item, name);
  gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
  if (activated != nullptr) {
    g_signal_connect(item, "activate", G_CALLBACK(activated), GSIZE_TO_POINTER(number));
  }
  return item;
}

void AddLine(GtkWidget *menu) {
  gtk_menu_shell_append(GTK_MENU_SHELL(menu), gtk_separator_menu_item_new());
}

// Adds items for the presets that are for the queue; whether there are any.
bool AddChoices(GtkWidget *menu, const std::vector<Preset> &presets) {
  const size_t before = L_Choices.size();
  for (const Preset &preset : presets) {
    if (!WhyPresetMisfits(preset).empty()) continue;
    AddItem(menu, "PresetItem", preset.name, ChoiceActivated, L_Choices.size());
    L_Choices.push_back(preset);
  }
  if (L_Choices.size() > before) AddLine(menu);
  return L_Choices.size() > before;
}

// What opens the menu, for the toolkit: a button that its access key has pressed is clicked later,
// when there is no event any more.
GdkEvent *NewTrigger(GtkWidget *button) {
  GdkEvent *event = gdk_event_new(GDK_KEY_PRESS);
  event->key.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(button)));
  event->key.time = gtk_get_current_event_time();
  GdkSeat *seat = gdk_display_get_default_seat(gtk_widget_get_display(button));
  gdk_event_set_device(event, gdk_seat_get_keyboard(seat));
  return event;
}

// All of the user's own, those for other queues too.
void AddDeletions(GtkWidget *menu, const std::vector<Preset> &presets) {
  GtkWidget *item = AddItem(menu, "DeletePresetItem", G_Translate("PRESET_DELETE"), nullptr);
  gtk_widget_set_sensitive(item, presets.empty() ? FALSE : TRUE);
  if (presets.empty()) return;
  GtkWidget *names = gtk_menu_new();
  gtk_menu_item_set_submenu(GTK_MENU_ITEM(item), names);
  for (const Preset &preset : presets) {
    AddItem(names, "DeletedPresetItem", preset.name, DeleteActivated, L_Own.size());
    L_Own.push_back(preset.name);
  }
}

GtkWidget *NewMenu() {
  GtkWidget *menu = gtk_menu_new();
  gtk_widget_set_name(menu, "PresetsMenu");
  L_Choices.clear();
  L_Own.clear();
  const KeptPresets kept = ReadKeptPresets();
  L_Fault = kept.fault;
  AddChoices(menu, BuiltInPresets());
  AddChoices(menu, kept.presets);
  if (!L_Fault.empty()) {
    AddItem(menu, "PresetsFaultItem", G_Translate("PRESETS_FAULT"), FaultActivated);
    AddLine(menu);
  }
  AddItem(menu, "SavePresetItem", G_Translate("PRESET_SAVE"), SaveActivated);
  AddDeletions(menu, kept.presets);
  return menu;
}

void Forget(GtkWidget *, gpointer) {
  L_Result = nullptr;
  L_Choices.clear();
  L_Own.clear();
  L_Fault.clear();
}

}  // namespace

void AddPresets(GtkWidget *box) {
  const LogScope log("AddPresets");
  GtkWidget *window = G_PropertiesWindow_helper->window;
  GtkWidget *row =
      StoreWidget(window, gtk_box_new(GTK_ORIENTATION_HORIZONTAL, L_Spacing), "PresetsHbox");
  gtk_widget_set_margin_start(row, L_Margin);
  gtk_widget_set_margin_end(row, L_Margin);
  gtk_box_pack_end(GTK_BOX(box), row, FALSE, FALSE, 0);
  GtkWidget *button =
      NewButton(window, row, "PresetsButton", "DEF_BTN_PRESETS_TITLE", ButtonPresetsPressed);
  gtk_widget_set_tooltip_text(button, G_Translate("PRESETS_TIP"));
  gtk_widget_set_valign(button, GTK_ALIGN_CENTER);
  gtk_style_context_add_class(gtk_widget_get_style_context(button), kMenuButtonClass);
  L_Result = NewLabel(window, "PresetResultLabel", "", nullptr);
  BreakLines(L_Result, L_ResultWidth);
  gtk_box_pack_start(GTK_BOX(row), L_Result, TRUE, TRUE, 0);
  g_signal_connect(L_Result, "destroy", G_CALLBACK(Forget), nullptr);
  gtk_widget_show_all(row);
}

void ButtonPresetsPressed() {
  const LogScope log("ButtonPresetsPressed");
  GtkWidget *button = lookup_widget(G_PropertiesWindow_helper->window, "PresetsButton");
  GtkWidget *menu = NewMenu();
  // Not to the button: assistive technology is shown no menu of a button that is not the toolkit's
  // own menu button.
  gtk_menu_attach_to_widget(GTK_MENU(menu), gtk_widget_get_parent(button), nullptr);
  g_signal_connect(menu, "selection-done", G_CALLBACK(DestroyMenu), nullptr);
  gtk_widget_show_all(menu);
  GdkEvent *trigger = NewTrigger(button);
  gtk_menu_popup_at_widget(GTK_MENU(menu), button, GDK_GRAVITY_SOUTH_WEST, GDK_GRAVITY_NORTH_WEST,
                           trigger);
  gdk_event_free(trigger);
  // The keys begin at the first one, as they do in a list.
  gtk_menu_shell_select_first(GTK_MENU_SHELL(menu), TRUE);
}
