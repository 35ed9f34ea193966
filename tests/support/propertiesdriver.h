// What a user does in the properties window of either program.
#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "guiapp.h"

// The administration program's tabs, in order; the print tool lacks Features and Customs.
inline const std::vector<std::string> kAdminTabs = {"General",     "Setup",    "Output",  "Options",
                                                    "Destination", "Features", "Customs", "Fonts"};
inline const std::vector<std::string> kToolTabs = {"General", "Setup",       "Output",
                                                   "Options", "Destination", "Fonts"};

// Opens the properties from the main window; administration: of the selected queue.
inline void OpenProperties(GuiApp &app) {
  app.Click("PropertiesButton");
  app.WaitWindow("PropertiesWindow");
  app.WaitDrawn();  // its widgets have their places
}

// The page of the tab of that name.
inline std::string PageOfTab(const std::string &name) {
  if (name == "Customs") return "CustomsVBox";
  return (name == "Fonts" ? "Text" : name) + "Vbox";
}

// Shows the tab of that name. In a large text the last tabs are seen only when one beside them is
// shown.
inline void ShowTab(GuiApp &app, const std::string &name) {
  for (size_t i = 0; i < kAdminTabs.size() && !app.HasWidget(name + "Label"); ++i) {
    app.Key("ctrl+alt+Page_Down");  // a list would take the key without Alt
    app.WaitDrawn();                // or the next key would go on before the tab is seen
  }
  app.Click(name + "Label");
  // The one of the fonts is empty unless the queue takes text.
  if (name != "Fonts") {
    app.WaitUntil("the tab " + name, [&] { return app.HasWidget(PageOfTab(name)); });
  }
  app.WaitDrawn();  // a page that was built now has its place
}

// Presses a button of the window; OK and Cancel close it.
inline void PressProperties(GuiApp &app, const std::string &button) {
  app.Click("PropertiesWindow/" + button + "Button");
}
inline void AcceptProperties(GuiApp &app) {
  PressProperties(app, "OK");
  app.WaitGone("PropertiesWindow");
}

// The text that a row's combo shows, without its mark.
inline std::string ShownOption(GuiApp &app, const std::string &row) {
  const std::string text = app.Text(row + "ComboEntry");
  return text.size() <= 4 ? "" : text.substr(4);
}

// Chooses the option that is shown as `text` with the arrow keys; throws std::runtime_error when
// the list has none.
inline void ChooseOption(GuiApp &app, const std::string &row, const std::string &text) {
  const size_t rows = app.Rows(row + "Combo").size();
  app.Click(row + "ComboEntry");
  for (const char *key : {"Up", "Down"}) {
    for (size_t i = 0; i <= rows && ShownOption(app, row) != text; ++i) app.Key(key);
  }
  if (ShownOption(app, row) != text) throw std::runtime_error(row + " has no " + text);
}

// Replaces what stands in an entry by typing.
inline void TypeInto(GuiApp &app, const std::string &entry, const std::string &text) {
  app.Click(entry);
  app.Key("ctrl+a");
  app.Key("Delete");
  app.Type(text);
}

// Selects the row whose cells, without their mark, begin with `text`.
inline void SelectRowOf(GuiApp &app, const std::string &list, const std::string &text) {
  const std::vector<std::string> rows = app.Rows(list);
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].find(text) == std::string::npos) continue;
    app.ClickRow(list, static_cast<int>(i));
    return;
  }
  throw std::runtime_error(list + " has no row " + text);
}
