#include "PropTabDestination.h"

#include <algorithm>
#include <string>

#include "FieldGrid.h"
#include "FilteredEntry.h"
#include "OptionCombos.h"
#include "OptionDefaults.h"
#include "PropertiesFrame.h"
#include "PropertiesPages.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "entryfilters.h"
#include "globals.h"
#include "jobrules.h"
#include "settingkeys.h"

std::unique_ptr<PropTabDestinationHelper> G_PropTabDestination_helper;
const PageWidgets kDestinationPage = {create_PropTabDestination,
                                      [] { G_PropTabDestination_helper.reset(); }};

namespace {

using Helper = PropTabDestinationHelper;

constexpr int L_TextWidth = 32;  // characters that are seen at once, at least

// A free text: its entry, what it is limited to, and the feature that holds it.
struct TextField {
  GtkWidget *Helper::*entry;
  const char *name;
  const char *label_name;
  const char *label_key;
  const char *feature;
  int max_length;  // characters
  InsertHandler filter;
};

constexpr TextField L_JobName = {&Helper::job_name,         "JobNameEntry", "JobNameLabel",
                                 "DEF_LBL_JOBNAME",         kJobNameKey,    kJobNameLength,
                                 Job_User_Message_EntryText};
constexpr TextField L_UserName = {&Helper::user_name,        "UserNameEntry", "UserNameLabel",
                                  "DEF_LBL_USERNAME",        kUserNameKey,    kUserNameLength,
                                  Job_User_Message_EntryText};
constexpr TextField L_Pin = {&Helper::pin, "PinEntry", "PinLabel",  "DEF_LBL_PIN",
                             kPinKey,      kPinLength, PinEntryText};
constexpr TextField L_Address = {
    &Helper::email_address, "EmailNotifAddressEntry", "EmailNotifAddressLabel", "DEF_LBL_ADDRESS",
    kEmailAddressKey,       kEmailTextLength,         EmailAddressEntryText};
constexpr TextField L_Message = {
    &Helper::email_message, "EmailNotifMessageEntry", "EmailNotifMessageLabel",  "DEF_LBL_MESSAGE",
    kEmailMessageKey,       kEmailTextLength,         Job_User_Message_EntryText};

std::string TextIn(GtkWidget *entry) {
  return entry == nullptr ? "" : gtk_entry_get_text(GTK_ENTRY(entry));
}

GtkWidget *NewTextEntry(const TextField &field) {
  GtkWidget *entry = gtk_entry_new();
  StoreWidget(G_PropertiesWindow_helper->window, entry, field.name);
  gtk_entry_set_max_length(GTK_ENTRY(entry), field.max_length);
  // Of several pasted lines the first: none of these texts can hold a line's end.
  KeepOneLine(entry);
  g_signal_connect(entry, "insert-text", G_CALLBACK(field.filter), nullptr);
  FillDestinationTextEntry(entry, field.feature);
  *G_PropTabDestination_helper.*field.entry = entry;
  return entry;
}

// Attaches a row of the field's label and `content`, its entry or what that stands in.
void AttachRow(GtkGrid *grid, int row, const TextField &field, GtkWidget *content) {
  AddField(G_PropertiesWindow_helper->window, grid, row, {field.label_name, field.label_key},
           content, *G_PropTabDestination_helper.*field.entry);
}

void AddTextRow(GtkGrid *grid, int row, const TextField &field) {
  GtkWidget *entry = NewTextEntry(field);
  gtk_entry_set_width_chars(GTK_ENTRY(entry), std::min(field.max_length, L_TextWidth));
  AttachRow(grid, row, field, entry);
}

void AddPinRow(GtkGrid *grid, int row) {
  GtkWidget *entry = NewTextEntry(L_Pin);
  gtk_entry_set_width_chars(GTK_ENTRY(entry), static_cast<int>(kPinLength) + 2);
  gtk_entry_set_input_purpose(GTK_ENTRY(entry), GTK_INPUT_PURPOSE_DIGITS);
  GtkWidget *range =
      NewLabel(G_PropertiesWindow_helper->window, "PinRangeLabel", "( 0000 - 9999 )", nullptr);
  AttachRow(grid, row, L_Pin, NewDescribedField(entry, range));
}

// The filter of every user must be able to read a queue's defaults.
void AddPinWarning(GtkGrid *grid, int row) {
  GtkWidget *label = NewLabel(G_PropertiesWindow_helper->window, "PinReadableLabel",
                              G_Translate("DEF_LBL_PIN_READABLE"), nullptr);
  BreakLines(label, L_TextWidth);
  gtk_grid_attach(grid, label, 1, row, 1, 1);
  DescribeBy(G_PropTabDestination_helper->pin, label);
}

// The entry with its label.
void SetSensitive(GtkWidget *entry, bool sensitive) {
  gtk_widget_set_sensitive(entry, sensitive ? TRUE : FALSE);
  GList *labels = gtk_widget_list_mnemonic_labels(entry);
  for (GList *link = labels; link != nullptr; link = link->next) {
    gtk_widget_set_sensitive(GTK_WIDGET(link->data), sensitive ? TRUE : FALSE);
  }
  g_list_free(labels);
}

void DeliveryShown(const char *option) {
  if (G_PropTabDestination_helper == nullptr) return;
  const bool takes_pin = option != nullptr && TakesPin(option);
  SetSensitive(G_PropTabDestination_helper->pin, takes_pin);
  gtk_widget_set_sensitive(lookup_widget(G_PropertiesWindow_helper->window, "PinRangeLabel"),
                           takes_pin ? TRUE : FALSE);
}

void NotificationShown(const char *option) {
  if (G_PropTabDestination_helper == nullptr) return;
  const Helper &helper = *G_PropTabDestination_helper;
  const bool notifies = option != nullptr && Notifies(option);
  SetSensitive(helper.email_address, notifies);
  SetSensitive(helper.email_message, notifies);
}

// The rows of job and delivery. What depends on a list is made before the list, which makes it
// sensitive when the printer has the feature.
void AddJobRows(GtkGrid *grid) {
  AddTextRow(grid, 0, L_JobName);
  AddTextRow(grid, 1, L_UserName);
  AddPinRow(grid, 3);
  if (G_ProgName == kModeAdministration) AddPinWarning(grid, 4);
  DeliveryShown(nullptr);
  AddOptionRow(G_PropertiesWindow_helper->window, grid, kDeliveryKey);
}

GtkWidget *NewNotificationFrame() {
  GtkWidget *window = G_PropertiesWindow_helper->window;
  GtkWidget *frame = gtk_frame_new(G_Translate("DEF_LBL_EMAILNOTIF_TITLE"));
  StoreWidget(window, frame, "EmailNotifFrame");
  GtkGrid *grid = NewFieldGrid();
  gtk_container_set_border_width(GTK_CONTAINER(grid), kTabSpacing);
  gtk_container_add(GTK_CONTAINER(frame), GTK_WIDGET(grid));
  AddTextRow(grid, 1, L_Address);
  AddTextRow(grid, 2, L_Message);
  NotificationShown(nullptr);
  AddOptionRow(window, grid, kNotificationKey);
  return frame;
}

}  // namespace

GtkWidget *create_PropTabDestination() {
  const LogScope log("create_PropTabDestination");
  G_PropTabDestination_helper = std::make_unique<Helper>();
  G_OptionChangeHooks.delivery_shown = DeliveryShown;
  G_OptionChangeHooks.notification_shown = NotificationShown;
  const OptionTab tab = NewOptionTab("DestinationVbox");
  AddJobRows(GTK_GRID(tab.grid));
  gtk_box_pack_start(GTK_BOX(tab.page), NewNotificationFrame(), FALSE, FALSE, 0);
  AddDefaultsButton(tab, "DefaultDestinationButton", ButtonDestinationDefaultsPressed);
  return tab.page;
}

void FillDestinationTextEntry(GtkWidget *entry, const char *feature) {
  const LogScope log("FillDestinationTextEntry");
  if (g_strcmp0(feature, L_JobName.feature) == 0 && UsesApplicationsJobName()) {
    // The one text of an entry that is not typed: a translation may hold what the filter drops.
    ShowPastFilter(entry, DestinationText(feature), Job_User_Message_EntryText);
  } else {
    gtk_entry_set_text(GTK_ENTRY(entry), DestinationText(feature).c_str());
  }
}

void PinEntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                  gpointer data) {
  const LogScope log("PinEntryText");
  InsertFiltered(entry, PinEntryText, FilterDigits(InsertedText(text, length)), position, data);
}

void Job_User_Message_EntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                                gpointer data) {
  const LogScope log("Job_User_Message_EntryText");
  InsertFiltered(entry, Job_User_Message_EntryText, FilterJobText(InsertedText(text, length)),
                 position, data);
}

void EmailAddressEntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                           gpointer data) {
  const LogScope log("EmailAddressEntryText");
  InsertFiltered(entry, EmailAddressEntryText, FilterEmailAddress(InsertedText(text, length)),
                 position, data);
}

void ButtonDestinationDefaultsPressed() {
  const LogScope log("ButtonDestinationDefaultsPressed");
  bool changed = false;
  if (!SetDestinationDefaults(&changed)) return;
  if (changed) G_FillAllComboWithOptions();
  // Kept on purpose: the PIN's entry keeps its text.
  for (const TextField &field : {L_JobName, L_UserName, L_Address, L_Message}) {
    FillDestinationTextEntry(*G_PropTabDestination_helper.*field.entry, field.feature);
  }
}

DestinationEntries ReadDestinationEntries() {
  const Helper &helper = *G_PropTabDestination_helper;
  return {TextIn(helper.job_name),
          TextIn(helper.user_name),
          TextIn(OptionComboEntry(kDeliveryKey)),
          TextIn(helper.pin),
          TextIn(OptionComboEntry(kNotificationKey)),
          TextIn(helper.email_address),
          TextIn(helper.email_message)};
}

void FocusPinEntry() { FocusInProperties(G_PropTabDestination_helper->pin); }

void FocusEmailEntry() { FocusInProperties(G_PropTabDestination_helper->email_address); }
