// Windows inside the test program: the toolkit, the installed texts, and running the main loop.
#pragma once

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <string>

#include "Support.h"
#include "cselection.h"
#include "globals.h"
#include "installation.h"

// Runs the main loop until `holds`; false when that takes too long.
bool RunUntil(const std::function<bool()> &holds);

// Runs what waits, input of the X server included.
void RunPending();

// The screen rectangle of a widget, or of an area in the widget's coordinates.
GdkRectangle OnScreen(GtkWidget *widget);
GdkRectangle OnScreen(GtkWidget *widget, GdkRectangle area);

// Real clicks of the left button.
void ClickOn(GtkWidget *widget);

// Drags with the pointer from the middle of one widget to that of another, which takes it.
void Drag(GtkWidget *from, GtkWidget *to);

// Gives the top-level window of `widget` the input focus.
void FocusWindowOf(GtkWidget *widget);

// Takes the input focus from all windows.
void FocusNoWindow();

// The description that assistive technology reads of the cell with that text; "(no cell)" without
// it.
std::string CellDescription(AtkObject *list, const std::string &text);

// What a text area shows.
std::string TextOf(GtkWidget *text_view);

// Every test has the toolkit and the installed English texts. A complaint of the toolkit about a
// wrong call ends the test program.
class GuiTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    static const bool started = [] {
      gtk_init(nullptr, nullptr);
      g_object_set(gtk_settings_get_default(), "gtk-enable-animations", FALSE, nullptr);
      g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL |
                                                         G_LOG_LEVEL_WARNING | G_LOG_FATAL_MASK));
      InstallStyle();
      return true;
    }();
    ASSERT_TRUE(started);
  }

  // Shows the top-level window of `widget` and gives it the input focus.
  static void ShowWindowOf(GtkWidget *widget) {
    GtkWidget *window = gtk_widget_get_toplevel(widget);
    gtk_widget_show_all(window);
    ASSERT_TRUE(RunUntil([&] { return gtk_widget_get_mapped(window) != FALSE; }));
    RunPending();
    FocusWindowOf(window);
    ASSERT_TRUE(RunUntil([&] { return gtk_window_is_active(GTK_WINDOW(window)) != FALSE; }));
  }

  // A window around `child`, shown.
  static GtkWidget *Show(GtkWidget *child) {
    GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window), 400, 300);
    gtk_container_add(GTK_CONTAINER(window), child);
    ShowWindowOf(child);
    return window;
  }

  // The visible top-level window of that name, or null.
  static GtkWidget *WindowNamed(const std::string &name) {
    GtkWidget *found = nullptr;
    GList *windows = gtk_window_list_toplevels();
    for (GList *link = windows; link != nullptr; link = link->next) {
      GtkWidget *window = GTK_WIDGET(link->data);
      if (gtk_widget_get_visible(window) != FALSE && name == gtk_widget_get_name(window)) {
        found = window;
      }
    }
    g_list_free(windows);
    return found;
  }

  void TearDown() override {
    GList *windows = gtk_window_list_toplevels();
    g_list_foreach(
        windows, [](gpointer window, gpointer) { g_object_ref(window); }, nullptr);
    for (GList *link = windows; link != nullptr; link = link->next) {
      // Pop-ups go with the widget that they belong to.
      GtkWindow *window = GTK_WINDOW(link->data);
      if (gtk_window_get_window_type(window) != GTK_WINDOW_TOPLEVEL) continue;
      gtk_widget_destroy(GTK_WIDGET(window));
    }
    g_list_free_full(windows, g_object_unref);
    RunPending();
  }

 private:
  ProgramMessages messages_{ContentOf(kInstalledCatalogue)};
};
