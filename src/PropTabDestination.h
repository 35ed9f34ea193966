// The Destination tab of the properties window: the job's names, its delivery, who is notified.

#pragma once

#include <gtk/gtk.h>

#include <memory>

#include "destination.h"

struct PropTabDestinationHelper {
  GtkWidget *job_name = nullptr;  // entries
  GtkWidget *user_name = nullptr;
  GtkWidget *pin = nullptr;
  GtkWidget *email_address = nullptr;
  GtkWidget *email_message = nullptr;
};
extern std::unique_ptr<PropTabDestinationHelper> G_PropTabDestination_helper;

// Builds and fills the page; floating.
GtkWidget *create_PropTabDestination();

// Shows in `entry` what the work copy has for one of the free-text features.
void FillDestinationTextEntry(GtkWidget *entry, const char *feature);

// "insert-text" handlers: digits alone; all but what a job's texts, or e-mail addresses, may not
// hold.
void PinEntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                  gpointer data);
void Job_User_Message_EntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                                gpointer data);
void EmailAddressEntryText(GtkEditable *entry, const gchar *text, gint length, gint *position,
                           gpointer data);

// "clicked" handler of Defaults.
void ButtonDestinationDefaultsPressed();

// What the tab shows now.
DestinationEntries ReadDestinationEntries();

// Show the tab with the focus in that entry.
void FocusPinEntry();
void FocusEmailEntry();
