// Look-ups that are still under way when their window goes have nothing to tell their answer to.
#include "AddressNotice.h"
#include "AddressTest.h"
#include "guisupport.h"

namespace {

class AddressLookUps : public GuiTest {
 protected:
  GtkWidget *window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
};

std::string NoPrinter() { return ""; }

TEST_F(AddressLookUps, OfTheNoticeEndWithItsWindow) {
  GtkWidget *label = NewAddressNotice(window_);
  gtk_container_add(GTK_CONTAINER(window_), label);
  bool is_gone = false;
  g_object_weak_ref(
      G_OBJECT(label), [](gpointer gone, GObject *) { *static_cast<bool *>(gone) = true; },
      &is_gone);
  ShowUnknownAddresses();
  EXPECT_FALSE(is_gone);
  gtk_widget_destroy(window_);
  EXPECT_TRUE(is_gone);
  ShowUnknownAddresses();  // a complaint of the toolkit would end the test
}

TEST_F(AddressLookUps, OfTheTestButtonEndWithItsWindow) {
  GtkWidget *entry = gtk_entry_new();
  g_object_ref_sink(entry);  // somebody may keep it longer than the window does
  const AddressTest test = NewAddressTest(window_, entry, NoPrinter);
  gtk_container_add(GTK_CONTAINER(window_), test.field);
  gtk_box_pack_start(GTK_BOX(test.field), test.result, FALSE, FALSE, 0);
  gtk_entry_set_text(GTK_ENTRY(entry), "127.0.0.1");
  gtk_button_clicked(GTK_BUTTON(lookup_widget(window_, "TestButton")));
  EXPECT_NE(nullptr, g_main_context_find_source_by_user_data(nullptr, entry));
  gtk_widget_destroy(window_);
  EXPECT_EQ(nullptr, g_main_context_find_source_by_user_data(nullptr, entry));
  g_object_unref(entry);
}

}  // namespace
