// Widgets by name, buttons, accelerators and texts of the windows.

#include "Support.h"

#include "guisupport.h"
#include "xinput.h"

namespace {

int g_pressed = 0;

// Whether the X server has an icon of the window.
bool HasIcon(GtkWidget *window) {
  GdkWindow *shown = gtk_widget_get_window(window);
  if (shown == nullptr) return false;
  guchar *icon = nullptr;
  const gboolean there = gdk_property_get(shown, gdk_atom_intern("_NET_WM_ICON", FALSE), GDK_NONE,
                                          0, sizeof(long), FALSE, nullptr, nullptr, nullptr, &icon);
  g_free(icon);
  return there != FALSE;
}

class Support : public GuiTest {
 protected:
  void SetUp() override {
    g_pressed = 0;
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    StoreWidget(window_, window_, "TestWindow");
    box_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_container_add(GTK_CONTAINER(window_), box_);
  }

  GtkWidget *window_ = nullptr;
  GtkWidget *box_ = nullptr;
};

}  // namespace

TEST_F(Support, AWidgetIsFoundByNameFromAnyOtherOfItsWindow) {
  GtkWidget *entry = StoreWidget(window_, gtk_entry_new(), "QueueEntry");
  GtkWidget *label = gtk_label_new("deep");
  GtkWidget *inner = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
  gtk_container_add(GTK_CONTAINER(inner), label);
  gtk_container_add(GTK_CONTAINER(box_), inner);
  gtk_container_add(GTK_CONTAINER(box_), entry);
  EXPECT_EQ(entry, lookup_widget(label, "QueueEntry"));
  EXPECT_EQ(entry, lookup_widget(window_, "QueueEntry"));
  EXPECT_EQ(window_, lookup_widget(label, "TestWindow"));
  EXPECT_STREQ("QueueEntry", gtk_widget_get_name(entry));
}

TEST_F(Support, AMissingNameGivesNullWithoutAMessage) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(nullptr, lookup_widget(window_, "Nobody"));
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

TEST_F(Support, AMenuGoesOnFromTheWidgetThatItIsAttachedTo) {
  GtkWidget *entry = StoreWidget(window_, gtk_entry_new(), "QueueEntry");
  gtk_container_add(GTK_CONTAINER(box_), entry);
  GtkWidget *menu = gtk_menu_new();
  GtkWidget *item = gtk_menu_item_new_with_label("item");
  gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
  gtk_menu_attach_to_widget(GTK_MENU(menu), entry, nullptr);
  EXPECT_EQ(entry, lookup_widget(item, "QueueEntry"));
}

TEST_F(Support, AStoredWidgetLivesAsLongAsItsWindow) {
  GtkWidget *label = StoreWidget(window_, gtk_label_new("kept"), "KeptLabel");
  gtk_container_add(GTK_CONTAINER(box_), label);
  gtk_container_remove(GTK_CONTAINER(box_), label);
  EXPECT_EQ(label, lookup_widget(window_, "KeptLabel"));
  EXPECT_STREQ("kept", gtk_label_get_text(GTK_LABEL(label)));
  GtkWidget *weak = label;
  g_object_add_weak_pointer(G_OBJECT(label), reinterpret_cast<gpointer *>(&weak));
  gtk_widget_destroy(window_);
  EXPECT_EQ(nullptr, weak);
}

TEST_F(Support, ButtonsShowTheirTextAndRunTheirHandler) {
  GtkWidget *button = NewButton(window_, box_, "OKButton", "DEF_BTN_OK_TITLE", [] { ++g_pressed; });
  EXPECT_EQ(CatalogueText("DEF_BTN_OK_TITLE"), gtk_button_get_label(GTK_BUTTON(button)));
  ShowWindowOf(button);
  ClickOn(button);
  EXPECT_EQ(1, g_pressed);
}

TEST_F(Support, ReturnPressesItsButtonWhateverElseHasTheFocus) {
  GtkWidget *button = NewButton(window_, box_, "OKButton", "DEF_BTN_OK_TITLE", [] { ++g_pressed; });
  AddReturnAccelerator(window_, button);
  int presses = 0;
  for (GtkWidget *other : {gtk_entry_new(), gtk_spin_button_new_with_range(1, 9, 1),
                           gtk_radio_button_new(nullptr), gtk_check_button_new(), button}) {
    if (other != button) gtk_container_add(GTK_CONTAINER(box_), other);
    ShowWindowOf(button);
    gtk_widget_grab_focus(other);
    for (const char *key : {"Return", "KP_Enter"}) {
      XInputChord(key);
      ++presses;
      EXPECT_TRUE(RunUntil([&] { return g_pressed >= presses; })) << G_OBJECT_TYPE_NAME(other);
      EXPECT_EQ(presses, g_pressed) << G_OBJECT_TYPE_NAME(other);
    }
  }
}

TEST_F(Support, ReturnPressesTheButtonThatHasTheFocusInstead) {
  GtkWidget *ok = NewButton(window_, box_, "OKButton", "DEF_BTN_OK_TITLE", [] { g_pressed += 10; });
  GtkWidget *other = NewButton(window_, box_, "Other", "DEF_BTN_HELP_TITLE", [] { ++g_pressed; });
  AddReturnAccelerator(window_, ok);
  ShowWindowOf(ok);
  gtk_widget_grab_focus(other);
  for (int presses = 1; presses <= 2; ++presses) {
    XInputChord(presses == 1 ? "Return" : "KP_Enter");
    EXPECT_TRUE(RunUntil([&] { return g_pressed >= presses; }));
    EXPECT_EQ(presses, g_pressed);
  }
}

TEST_F(Support, ADialogBelongsToTheNewestWindowWhenNoneIsActive) {
  gtk_widget_show(window_);
  GtkWidget *newer = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_widget_show(newer);
  RunPending();
  FocusNoWindow();
  ASSERT_TRUE(RunUntil([&] {
    return gtk_window_is_active(GTK_WINDOW(window_)) == FALSE &&
           gtk_window_is_active(GTK_WINDOW(newer)) == FALSE;
  }));
  GtkWidget *dialog = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  MakeModal(dialog);
  EXPECT_EQ(GTK_WINDOW(newer), gtk_window_get_transient_for(GTK_WINDOW(dialog)));
  EXPECT_EQ(ATK_ROLE_DIALOG, atk_object_get_role(gtk_widget_get_accessible(dialog)));
}

TEST_F(Support, WindowsGetTheIconOfTheProgramsOnceTheFirstIsDrawn) {
  SetIconOnceDrawn(window_);
  EXPECT_EQ(nullptr, gtk_window_get_default_icon_name());
  gtk_widget_show_all(window_);
  EXPECT_TRUE(RunUntil([&] { return HasIcon(window_); }));
  EXPECT_STREQ("printer", gtk_window_get_default_icon_name());

  GtkWidget *later = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_widget_realize(later);
  EXPECT_TRUE(HasIcon(later));
}

TEST_F(Support, AnAcceleratorOfAnInsensitiveButtonDoesNothing) {
  GtkWidget *button = NewButton(window_, box_, "OKButton", "DEF_BTN_OK_TITLE", [] { ++g_pressed; });
  AddAccelerator(window_, button, GDK_KEY_Delete);
  gtk_widget_set_sensitive(button, FALSE);
  ShowWindowOf(button);
  XInputChord("Delete");
  RunPending();
  EXPECT_EQ(0, g_pressed);
}

TEST_F(Support, ClosingThroughTheManagerRunsTheHandlerAndLeavesTheRestToIt) {
  OnDeleteEvent(window_, [] { ++g_pressed; });
  ShowWindowOf(box_);
  GdkEvent *event = gdk_event_new(GDK_DELETE);
  event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window_)));
  gtk_main_do_event(event);
  gdk_event_free(event);
  EXPECT_EQ(1, g_pressed);
  EXPECT_TRUE(GTK_IS_WIDGET(window_));
  EXPECT_TRUE(gtk_widget_get_visible(window_));
}

TEST_F(Support, ALabelNamesItsWidgetToAssistiveTechnology) {
  GtkWidget *entry = gtk_entry_new();
  gtk_container_add(GTK_CONTAINER(box_), entry);
  gtk_container_add(GTK_CONTAINER(box_), NewLabel(window_, "EntryLabel", "Queue", entry));
  GList *labels = gtk_widget_list_mnemonic_labels(entry);
  ASSERT_EQ(1U, g_list_length(labels));
  EXPECT_STREQ("Queue", gtk_label_get_text(GTK_LABEL(labels->data)));
  g_list_free(labels);
}

TEST_F(Support, ALabelNamesTheEntryOfAComboBoxAsLongAsItIsThere) {
  GtkWidget *combo = gtk_combo_box_text_new_with_entry();
  GtkWidget *entry = gtk_bin_get_child(GTK_BIN(combo));
  gtk_container_add(GTK_CONTAINER(box_), combo);
  GtkWidget *label = NewLabel(window_, "ComboLabel", "Queue", combo);
  gtk_container_add(GTK_CONTAINER(box_), label);
  AtkRelationSet *relations = atk_object_ref_relation_set(gtk_widget_get_accessible(entry));
  AtkRelation *relation =
      atk_relation_set_get_relation_by_type(relations, ATK_RELATION_LABELLED_BY);
  ASSERT_NE(nullptr, relation);
  const GPtrArray *labels = atk_relation_get_target(relation);
  ASSERT_EQ(1U, labels->len);
  EXPECT_EQ(gtk_widget_get_accessible(label), g_ptr_array_index(labels, 0));
  g_object_unref(relations);
  gtk_widget_destroy(label);
  EXPECT_EQ(nullptr, gtk_widget_list_mnemonic_labels(entry));
}

TEST_F(Support, ATextAreaShowsItsTextAndCannotBeEdited) {
  gtk_container_add(GTK_CONTAINER(box_),
                    NewScrolledText(window_, "Scrolled", "Area", "one\ntwo\n"));
  GtkWidget *area = lookup_widget(window_, "Area");
  EXPECT_EQ("one\ntwo\n", TextOf(area));
  ShowWindowOf(area);
  gtk_widget_grab_focus(area);
  XInputType("x");
  RunPending();
  EXPECT_EQ("one\ntwo\n", TextOf(area));
}

TEST_F(Support, ATextThatIsNoUtf8IsShownAsLatin1) {
  gtk_container_add(GTK_CONTAINER(box_), NewScrolledText(window_, "Scrolled", "Area", "caf\xE9"));
  EXPECT_EQ("caf\xC3\xA9", TextOf(lookup_widget(window_, "Area")));
}

TEST_F(Support, FreeingStringsLeavesTheCellsToTheCaller) {
  GList *list = g_list_append(nullptr, g_strdup("one"));
  list = g_list_append(list, nullptr);
  list = g_list_append(list, g_strdup("two"));
  G_FreeStringsFrom_g_list(list);
  EXPECT_EQ(3U, g_list_length(list));
  g_list_free(list);
  G_FreeStringsFrom_g_list(nullptr);
}
