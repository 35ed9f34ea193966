// The combo box: its handler runs for every choice of the user and for nothing else.

#include "ComboWidget.h"

#include "guisupport.h"
#include "xinput.h"

namespace {

int g_choices = 0;

class ComboWidget : public GuiTest {
 protected:
  void SetUp() override {
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window_), 400, 60);
    combo_ = NewCombo(window_, "Combo", "ComboEntry", [] { ++g_choices; });
    gtk_container_add(GTK_CONTAINER(window_), combo_);
    ComboFill(combo_, {"first", "second", "third"});
    ComboSetRow(combo_, 0);
    ShowWindowOf(combo_);
    g_choices = 0;
  }

  GtkWidget *window_ = nullptr;
  GtkWidget *combo_ = nullptr;
};

}  // namespace

TEST_F(ComboWidget, ArrowKeysChooseAndRunTheHandlerOnce) {
  gtk_widget_grab_focus(lookup_widget(combo_, "ComboEntry"));
  XInputChord("Down");
  ASSERT_TRUE(RunUntil([&] { return ComboText(combo_) == "second"; }));
  EXPECT_EQ(1, g_choices);
}

TEST_F(ComboWidget, TheWheelChoosesAndRunsTheHandlerOnce) {
  const GdkRectangle area = OnScreen(lookup_widget(combo_, "ComboEntry"));
  XInputClick(area.x + 20, area.y + area.height / 2, 5);
  ASSERT_TRUE(RunUntil([&] { return ComboText(combo_) == "second"; }));
  EXPECT_EQ(1, g_choices);
}

TEST_F(ComboWidget, AChoiceInThePopUpRunsTheHandlerOnce) {
  const GdkRectangle area = OnScreen(combo_);
  XInputClick(area.x + area.width - 10, area.y + area.height / 2);
  const auto popped_up = [&] {
    gboolean shown = FALSE;
    g_object_get(combo_, "popup-shown", &shown, nullptr);
    return shown != FALSE;
  };
  ASSERT_TRUE(RunUntil(popped_up));
  RunPending();
  for (const char *key : {"Down", "Down", "Return"}) {
    XInputChord(key);
    RunPending();
  }
  ASSERT_TRUE(RunUntil([&] { return !popped_up(); }));
  EXPECT_EQ("third", ComboText(combo_));
  EXPECT_EQ(1, g_choices);
}

TEST_F(ComboWidget, RefillingRunsNoHandlerAndKeepsTheEntry) {
  ComboSetRow(combo_, 1);
  ComboFill(combo_, {"fourth", "fifth"});
  RunPending();
  EXPECT_EQ("second", ComboText(combo_));
  EXPECT_EQ(0, g_choices);
}

TEST_F(ComboWidget, SettingARowRunsNoHandler) {
  ComboSetRow(combo_, 2);
  RunPending();
  EXPECT_EQ("third", ComboText(combo_));
  EXPECT_EQ(0, g_choices);
}

TEST_F(ComboWidget, RowMinusOneShowsNothing) {
  ComboSetRow(combo_, 2);
  ComboSetRow(combo_, -1);
  EXPECT_EQ("", ComboText(combo_));
}

TEST_F(ComboWidget, TheUserChoosesAgainAfterARefill) {
  ComboFill(combo_, {"first", "other"});
  ComboSetRow(combo_, 0);
  gtk_widget_grab_focus(lookup_widget(combo_, "ComboEntry"));
  XInputChord("Down");
  ASSERT_TRUE(RunUntil([&] { return ComboText(combo_) == "other"; }));
  EXPECT_EQ(1, g_choices);
}

TEST_F(ComboWidget, TheHandlerMayRefillTheCombo) {
  static GtkWidget *combo;
  combo = combo_;
  gtk_widget_destroy(window_);
  window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  combo_ = NewCombo(window_, "Combo", "ComboEntry", [] {
    ++g_choices;
    ComboFill(combo, {"    a", "!   b"});
  });
  combo = combo_;
  gtk_container_add(GTK_CONTAINER(window_), combo_);
  ComboFill(combo_, {"a", "b"});
  ComboSetRow(combo_, 0);
  ShowWindowOf(combo_);
  gtk_widget_grab_focus(lookup_widget(combo_, "ComboEntry"));
  XInputChord("Down");
  ASSERT_TRUE(RunUntil([&] { return g_choices != 0; }));
  EXPECT_EQ(1, g_choices);
  EXPECT_EQ("b", ComboText(combo_));
}

TEST_F(ComboWidget, TheEntryCannotBeEdited) {
  gtk_widget_grab_focus(lookup_widget(combo_, "ComboEntry"));
  XInputType("x");
  RunPending();
  EXPECT_EQ("first", ComboText(combo_));
}
