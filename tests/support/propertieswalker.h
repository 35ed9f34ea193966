// A user who changes things in the open properties window at random.
#pragma once

#include <gtk/gtk.h>

#include <random>
#include <string>
#include <vector>

// Uses what the window of the current queue offers: nothing that is insensitive, no page's widgets
// without showing the page. The window may be closed by what is done.
class PropertiesWalker {
 public:
  explicit PropertiesWalker(unsigned seed) : random_(seed) {}

  // Does one thing; what it was, in words.
  std::string Step();

 private:
  using Words = std::vector<std::string>;

  size_t OneOf(size_t count) {
    return std::uniform_int_distribution<size_t>(0, count - 1)(random_);
  }
  bool Once(size_t in) { return OneOf(in) == 0; }

  std::string ChooseOption();
  std::string ChooseByKey(GtkWidget *entry);
  std::string ChooseInCombo(const std::string &name);
  std::string Text();
  std::string PagesASheet();
  std::string Defaults();
  std::string MoveFeature();
  std::string Customs();
  std::string AddOrEditPaper(const std::string &button);
  std::string AddOrEditMedia(const std::string &button);
  std::string Delete(const std::string &button);
  void SelectRows(GtkWidget *list, size_t count);
  std::string Finish(const std::string &button);
  std::string ShowPage();
  std::string CustomName();

  // Shows the page of the widget and presses it; false when it cannot be pressed.
  bool Press(const std::string &name);
  // Presses what closes the error boxes that are open, after having the conflict resolved or not.
  void CloseErrors();

  std::mt19937 random_;
};
