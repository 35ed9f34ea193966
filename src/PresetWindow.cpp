#include "PresetWindow.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "CustomDialog.h"
#include "DialogFrame.h"
#include "FieldGrid.h"
#include "FilteredEntry.h"
#include "MessageDialogs.h"
#include "QuestionDialog.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "presets.h"
#include "textscan.h"

namespace {

constexpr int L_TextHeight = 110;  // pixels

// Of the open dialog.
struct State {
  GtkWidget *window = nullptr;
  GtkWidget *entry = nullptr;
  Preset preset;
  std::function<void(const std::string &name)> kept;
};
std::unique_ptr<State> L_State;

std::string TypedName() {
  return std::string(Trimmed(gtk_entry_get_text(GTK_ENTRY(L_State->entry)), " "));
}

// The box about what was typed; the focus is there when it is closed.
void Refuse(const std::string &reason) {
  gtk_widget_grab_focus(L_State->entry);
  gtk_widget_show(create_ErrorWindow(nullptr, reason));
}

void Keep() {
  if (L_State == nullptr) return;
  const std::string fault = ChangeKeptPresets([](std::vector<Preset> &presets) {
    PutPreset(presets, L_State->preset);
    return std::string();
  });
  if (!fault.empty()) return Refuse(fault);
  const auto kept = std::move(L_State->kept);
  const std::string name = L_State->preset.name;
  ButtonCancelPresetPressed();
  kept(name);
}

std::string WordsOf(const Preset &preset) {
  std::string text;
  for (const std::string &line : PresetWords(preset)) text += (text.empty() ? "" : "\n") + line;
  return text;
}

// What the preset will set, below the words that say so.
void AddSettings(GtkWidget *box) {
  GtkWidget *scrolled = NewScrolledText(L_State->window, "PresetScrolledwindow", "PresetText",
                                        WordsOf(L_State->preset));
  GtkWidget *text = lookup_widget(L_State->window, "PresetText");
  GtkWidget *label = NewLabel(L_State->window, "PresetSettingsLabel",
                              G_Translate("DEF_LBL_PRESET_SETTINGS"), text);
  gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(scrolled), L_TextHeight);
  gtk_box_pack_start(GTK_BOX(box), label, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(box), scrolled, TRUE, TRUE, 0);
}

}  // namespace

GtkWidget *create_PresetWindow(const Preset &preset,
                               std::function<void(const std::string &name)> kept) {
  const LogScope log("create_PresetWindow");
  const Dialog dialog = NewDialog("PresetWindow", "DEF_WND_PRESET_TITLE");
  L_State = std::make_unique<State>(State{dialog.window, nullptr, preset, std::move(kept)});
  L_State->entry = NewNameEntry(dialog.window, "PresetNameEntry", PresetName_EntryText);
  gtk_entry_set_max_length(GTK_ENTRY(L_State->entry), kPresetNameLength);
  AddField(dialog.window, AddFieldGrid(dialog.box), 0, {"PresetNameLabel", "DEF_LBL_PRESET_NAME"},
           L_State->entry);
  AddSettings(dialog.box);
  AddOkCancelHelp(dialog, "PresetHbuttonbox",
                  {ButtonOkPresetPressed, ButtonCancelPresetPressed, ButtonHelpPresetPressed});
  gtk_widget_grab_focus(L_State->entry);
  return dialog.window;
}

void ButtonOkPresetPressed() {
  const LogScope log("ButtonOkPresetPressed");
  const std::string name = TypedName();
  if (!IsPresetName(name)) return Refuse(G_Message("PRESET_NAME_BAD", {name, kPresetNameLength}));
  if (IsBuiltInPresetName(name)) return Refuse(G_Message("PRESET_NAME_OWN", {name}));
  const KeptPresets presets = ReadKeptPresets();
  if (!presets.fault.empty()) return Refuse(presets.fault);
  L_State->preset.name = name;
  if (FindPreset(presets.presets, name) == nullptr) return Keep();
  gtk_widget_show(create_QuestionWindow(G_Message("ASK_REPLACE_PRESET", {name}), Keep));
}

void ButtonCancelPresetPressed() {
  const LogScope log("ButtonCancelPresetPressed");
  if (L_State == nullptr) return;
  GtkWidget *window = L_State->window;
  L_State.reset();
  gtk_widget_destroy(window);
}

void ButtonHelpPresetPressed() {
  const LogScope log("ButtonHelpPresetPressed");
  ShowHelp("KPX_PRESETS_BEGIN");
}

void PresetName_EntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                          gpointer data) {
  const LogScope log("PresetName_EntryText");
  std::string taken(InsertedText(text, length));
  std::erase_if(taken, IsControlCharacter);
  InsertFiltered(entry, PresetName_EntryText, taken, position, data);
}
