#include "admindriver.h"

#include <stdexcept>

namespace {

// The row of a list that shows `text`.
int RowOf(const std::vector<std::string> &rows, const std::string &text) {
  for (size_t row = 0; row < rows.size(); ++row) {
    if (rows[row].substr(1) == text) return static_cast<int>(row);
  }
  throw std::runtime_error("no row " + text);
}

void TabTo(GuiApp &app, const std::string &widget) {
  const auto there = [&] { return app.Focus().ends_with("/" + widget); };
  for (int i = 0; i < 20 && !there(); ++i) {
    const std::string from = app.Focus();
    app.Key("Tab");
    app.WaitUntil("the focus to move", [&] { return app.Focus() != from; });
  }
  if (!there()) throw std::runtime_error("Tab does not lead to " + widget);
}

}  // namespace

void FillNewQueue(GuiApp &admin, const QueueToAdd &queue) {
  admin.Click("AddButton");
  admin.WaitWindow("AddQueueWindow");
  TabTo(admin, "QueueEntry");
  admin.Type(queue.name);
  TabTo(admin, "PrinterClist");
  admin.Key("Home");
  for (int i = RowOf(admin.Rows("PrinterClist"), queue.printer); i > 0; --i) admin.Key("Down");
  TabTo(admin, "QueueTypeComboEntry");
  for (int i = 0; i < queue.type_row; ++i) admin.Key("Down");
  TabTo(admin, "AddressEntry");
  admin.Type(queue.address);
}

void TakeNewQueue(GuiApp &admin) {
  admin.Click("AddQueueWindow/OKButton");
  admin.WaitGone("AddQueueWindow");
}
