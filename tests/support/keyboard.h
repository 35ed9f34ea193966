// A user who has no pointer: what the keys do to the foremost window, and that it is always seen
// which control they go to.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "guiapp.h"
#include "xinput.h"

// The key of the widget whose shown text that is, as Key takes it; "" when it has none.
inline std::string AccessKeyOf(GuiApp &app, const std::string &text) {
  for (const std::string &line : app.AccessKeys()) {
    const size_t key = line.rfind('\t');
    const size_t begin = line.find('\t') + 1;
    if (line.substr(begin, key - begin) == text) return "alt+" + line.substr(key + 1);
  }
  return "";
}

class Keyboard {
 public:
  explicit Keyboard(GuiApp &app) : app_(app) {}

  void Key(const std::string &key) {
    app_.Key(key);
    ExpectFocusSeen("after " + key);
  }
  void Type(const std::string &text) {
    app_.Type(text);
    ExpectFocusSeen("after \"" + text + "\"");
  }
  // Alt and the letter of the button, tab or field of that text.
  void Press(const std::string &text) {
    const std::string key = AccessKeyOf(app_, text);
    ASSERT_NE("", key) << "no key for " << text;
    app_.Key(key);
  }
  // The same for a button that leaves its window open, until it is clicked: GTK shows it pressed
  // for a quarter of a second first.
  void Click(const std::string &text) {
    Press(text);
    app_.WaitUntil("the click on " + text, [&] { return !app_.IsButtonHeld(); });
  }
  // The same for a field, which then has the focus.
  void GoTo(const std::string &text, const std::string &widget) {
    Press(text);
    app_.WaitUntil("the focus on " + widget, [&] { return app_.Focus().ends_with("/" + widget); });
    ExpectFocusSeen("in " + widget);
  }
  void TabTo(const std::string &widget) {
    app_.TabTo(widget);
    ExpectFocusSeen("in " + widget);
  }
  // Presses the arrow keys in the list of a combo until it shows the option, behind its mark.
  void Choose(const std::string &row, const std::string &option) {
    const auto chosen = [&] { return app_.Text(row + "ComboEntry").ends_with(option); };
    const size_t rows = app_.Rows(row + "Combo").size();
    for (const char *key : {"Up", "Down"}) {
      for (size_t i = 0; i < rows && !chosen(); ++i) {
        Key(key);
        app_.WaitDrawn();
      }
    }
    EXPECT_TRUE(chosen()) << row << " shows " << app_.Text(row + "ComboEntry");
  }
  // Until the window is there, with its focus.
  void Await(const std::string &window) {
    app_.WaitWindow(window);
    app_.WaitDrawn();
    ExpectFocusSeen("in " + window);
  }
  // A key that closes the window; the focus is then in another.
  void Close(const std::string &window, const std::string &key) {
    app_.Key(key);
    app_.WaitGone(window);
    ExpectFocusSeen("without " + window);
  }

  void ExpectFocusSeen(const std::string &when) { EXPECT_EQ("", app_.FocusFault()) << when; }

 private:
  GuiApp &app_;
};

// Whether the pictures differ in the area or in the frame around it.
inline bool Differ(const ScreenPixels &before, const ScreenPixels &after, const ScreenArea &area) {
  constexpr int kFrame = 2;
  const int bottom = std::min(area.y + area.height + kFrame, after.height);
  const int right = std::min(area.x + area.width + kFrame, after.width);
  for (int y = std::max(0, area.y - kFrame); y < bottom; ++y) {
    for (int x = std::max(0, area.x - kFrame); x < right; ++x) {
      if (before.At(x, y) != after.At(x, y)) return true;
    }
  }
  return false;
}

// Goes round the window with the Tab key until it is back; on the way every place that the focus
// comes to must look another way than before.
inline void ExpectEveryTabStopSeen(GuiApp &app, const std::string &window) {
  app.WaitWindow(window);
  constexpr int kMostStops = 60;
  const std::string first = app.Focus();
  int stops = 0;
  do {
    app.WaitDrawn();
    const ScreenPixels before = XInputPixels();
    app.Key("Tab");
    EXPECT_EQ("", app.FocusFault()) << window;
    app.WaitDrawn();
    const ScreenPixels after = XInputPixels();
    EXPECT_TRUE(Differ(before, after, app.FocusArea()))
        << app.Focus() << " looks as it does without the focus";
  } while (app.Focus() != first && ++stops < kMostStops);
  EXPECT_EQ(first, app.Focus()) << "the Tab key does not come back";
}
