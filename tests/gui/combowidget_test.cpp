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

TEST_F(ComboWidget, OnlyAnEditableEntryHasATextCursor) {
  GtkWidget *entry = lookup_widget(combo_, "ComboEntry");
  const auto opacity = [entry] {
    GtkStyleContext *style = gtk_widget_get_style_context(entry);
    GdkRGBA *color = nullptr;
    gtk_style_context_get(style, gtk_style_context_get_state(style), "caret-color", &color,
                          nullptr);
    const double alpha = color == nullptr ? -1 : color->alpha;
    gdk_rgba_free(color);
    return alpha;
  };
  EXPECT_EQ(0, opacity());
  ComboMakeEditable(combo_);
  EXPECT_EQ(1, opacity());
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

TEST_F(ComboWidget, OnlyRowsThatDifferAreWritten) {
  GtkTreeModel *model = gtk_combo_box_get_model(GTK_COMBO_BOX(combo_));
  static int changed;
  static int inserted;
  static int deleted;
  changed = inserted = deleted = 0;
  using RowHandler = void (*)(GtkTreeModel *, GtkTreePath *, GtkTreeIter *, gpointer);
  const RowHandler count_change = [](auto, auto, auto, auto) { ++changed; };
  const RowHandler count_insertion = [](auto, auto, auto, auto) { ++inserted; };
  g_signal_connect(model, "row-changed", G_CALLBACK(count_change), nullptr);
  g_signal_connect(model, "row-inserted", G_CALLBACK(count_insertion), nullptr);
  g_signal_connect(model, "row-deleted",
                   G_CALLBACK(+[](GtkTreeModel *, GtkTreePath *, gpointer) { ++deleted; }),
                   nullptr);
  ComboFill(combo_, {"first", "second", "third"});
  EXPECT_EQ(0, changed + inserted + deleted);
  ComboFillRows(combo_, {{"first", "why"}, {"second"}, {"other"}, {"fourth"}});
  EXPECT_EQ(2, changed);
  EXPECT_EQ(1, inserted);
  EXPECT_EQ(0, deleted);
  ComboFill(combo_, {"first"});
  EXPECT_EQ(3, deleted);
}

TEST_F(ComboWidget, TheChoiceStaysTheRowOfItsNumber) {
  ComboSetRow(combo_, 1);
  ComboFill(combo_, {"a", "b", "c"});
  EXPECT_EQ("second", ComboText(combo_));
  ComboSetRow(combo_, 1);
  EXPECT_EQ("b", ComboText(combo_));
  EXPECT_EQ(0, g_choices);
}

TEST_F(ComboWidget, AChoiceWhoseRowIsRemovedIsNoChoiceAnyMore) {
  ComboSetRow(combo_, 2);
  ComboFill(combo_, {"a", "b"});
  EXPECT_EQ("third", ComboText(combo_));
  EXPECT_EQ(-1, gtk_combo_box_get_active(GTK_COMBO_BOX(combo_)));
  EXPECT_EQ(0, g_choices);
}

TEST_F(ComboWidget, TheEntryHasTheTooltipOfTheChoice) {
  GtkWidget *entry = lookup_widget(combo_, "ComboEntry");
  const auto tip = [&] {
    gchar *text = gtk_widget_get_tooltip_text(entry);
    const std::string result = text == nullptr ? "(none)" : text;
    g_free(text);
    return result;
  };
  EXPECT_EQ("(none)", tip());
  ComboFillRows(combo_, {{"first", "one & <one>"}, {"second"}, {"third", "three"}});
  EXPECT_EQ("one & <one>", tip());
  ComboSetRow(combo_, 1);
  EXPECT_EQ("(none)", tip());
  gtk_widget_grab_focus(entry);
  XInputChord("Down");
  ASSERT_TRUE(RunUntil([&] { return tip() == "three"; }));
  ComboForgetRow(combo_);
  EXPECT_EQ("(none)", tip());
  EXPECT_EQ("third", ComboText(combo_));
}

TEST_F(ComboWidget, ALetterChoosesTheNextRowThatBeginsWithIt) {
  ComboFill(combo_, {"    Tray 1", "!   tray 2", "    Été", "!x", "    "});
  ComboSetRow(combo_, 1);
  gtk_widget_grab_focus(lookup_widget(combo_, "ComboEntry"));
  XInputType("t");
  ASSERT_TRUE(RunUntil([&] { return ComboText(combo_) == "    Tray 1"; }));
  XInputType("é");
  ASSERT_TRUE(RunUntil([&] { return ComboText(combo_) == "    Été"; }));
  XInputType("!");
  ASSERT_TRUE(RunUntil([&] { return ComboText(combo_) == "!x"; }));
  EXPECT_EQ(3, g_choices);
  XInputChord("ctrl+t");
  XInputType("q ");
  RunPending();
  EXPECT_EQ("!x", ComboText(combo_));
  EXPECT_EQ(3, g_choices);
}
