// The multi-column list: one callback for each row whose state changed, numbers, data, refilling.

#include "ListWidget.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include "guisupport.h"
#include "xinput.h"

namespace {

using Reports = std::vector<std::pair<char, int>>;  // '+' selected, '-' unselected; the row

Reports g_reports;
GtkWidget *g_list = nullptr;

void NoteSelected(int row) { g_reports.emplace_back('+', row); }
void NoteUnselected(int row) { g_reports.emplace_back('-', row); }

Reports TakeReports() { return std::exchange(g_reports, {}); }

class ListWidget : public GuiTest {
 protected:
  // A shown list of `rows` rows "row 0", "row 1"..., whose data are their numbers from 1.
  GtkWidget *NewShownList(int rows, GtkSelectionMode mode = GTK_SELECTION_MULTIPLE) {
    list_ = NewList({{nullptr, 0}}, mode);
    ListOnSelection(list_, NoteSelected, NoteUnselected);
    for (int i = 0; i < rows; ++i) {
      ListAppend(list_, {"row " + std::to_string(i)}, Datum(i + 1));
    }
    GtkWidget *scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_container_add(GTK_CONTAINER(scrolled), list_);
    Show(scrolled);
    ListUnselectAll(list_);
    g_reports.clear();
    g_list = list_;
    return list_;
  }

  static gpointer Datum(int number) { return GINT_TO_POINTER(number); }

  void ClickRow(int row, const std::string &held = "") {
    RunPending();
    GtkTreePath *path = gtk_tree_path_new_from_indices(row, -1);
    GdkRectangle cell;
    gtk_tree_view_get_cell_area(GTK_TREE_VIEW(list_), path,
                                gtk_tree_view_get_column(GTK_TREE_VIEW(list_), 0), &cell);
    gtk_tree_path_free(path);
    gtk_tree_view_convert_bin_window_to_widget_coords(GTK_TREE_VIEW(list_), cell.x, cell.y, &cell.x,
                                                      &cell.y);
    const GdkRectangle area = OnScreen(list_, cell);
    if (!held.empty()) XInputKey(held, true);
    XInputClick(area.x + 10, area.y + area.height / 2);
    if (!held.empty()) XInputKey(held, false);
    RunPending();
  }

  GtkWidget *list_ = nullptr;
};

}  // namespace

TEST_F(ListWidget, SelectingARowRunsItsHandlerOnce) {
  NewShownList(3);
  ListSelectRow(list_, 1);
  ListSelectRow(list_, 1);
  EXPECT_EQ((Reports{{'+', 1}}), TakeReports());
  EXPECT_TRUE(ListIsSelected(list_, 1));
}

TEST_F(ListWidget, AClickReportsTheRowsItUnselectsFirst) {
  NewShownList(4);
  ClickRow(2);
  ClickRow(0);
  EXPECT_EQ((Reports{{'+', 2}, {'-', 2}, {'+', 0}}), TakeReports());
}

TEST_F(ListWidget, AShiftClickReportsEveryRowOfTheRangeOnceInRowOrder) {
  NewShownList(5);
  ClickRow(1);
  ClickRow(4, "shift");
  EXPECT_EQ((Reports{{'+', 1}, {'+', 2}, {'+', 3}, {'+', 4}}), TakeReports());
  ClickRow(2, "ctrl");
  EXPECT_EQ((Reports{{'-', 2}}), TakeReports());
  ClickRow(0);
  EXPECT_EQ((Reports{{'-', 1}, {'-', 3}, {'-', 4}, {'+', 0}}), TakeReports());
}

TEST_F(ListWidget, KeysSelectAsTheMouseDoes) {
  NewShownList(3);
  ClickRow(0);
  XInputChord("Down");
  RunPending();
  EXPECT_EQ((Reports{{'+', 0}, {'-', 0}, {'+', 1}}), TakeReports());
  XInputChord("ctrl+a");
  RunPending();
  EXPECT_EQ((Reports{{'+', 0}, {'+', 2}}), TakeReports());
}

TEST_F(ListWidget, SingleSelectionHasOneRowAtATime) {
  NewShownList(3, GTK_SELECTION_SINGLE);
  ListSelectRow(list_, 0);
  ListSelectRow(list_, 2);
  EXPECT_EQ((Reports{{'+', 0}, {'-', 0}, {'+', 2}}), TakeReports());
}

TEST_F(ListWidget, UnselectingAllReportsEachRowOnce) {
  NewShownList(3);
  ListSelectRow(list_, 2);
  ListSelectRow(list_, 0);
  TakeReports();
  ListUnselectAll(list_);
  EXPECT_EQ((Reports{{'-', 0}, {'-', 2}}), TakeReports());
}

TEST_F(ListWidget, RemovingASelectedRowReportsItsUnselection) {
  NewShownList(3);
  ListSelectRow(list_, 1);
  TakeReports();
  ListRemove(list_, 1);
  EXPECT_EQ((Reports{{'-', 1}}), TakeReports());
  EXPECT_EQ(2, ListRowCount(list_));
  EXPECT_EQ("row 2", ListCell(list_, 1, 0));
}

TEST_F(ListWidget, TheRowIsStillThereWhenItsUnselectionIsReported) {
  NewShownList(2);
  ListSelectRow(list_, 1);
  static gpointer seen;
  seen = nullptr;
  ListOnSelection(list_, nullptr, [](int row) { seen = ListRowData(g_list, row); });
  ListRemove(list_, 1);
  EXPECT_EQ(Datum(2), seen);
}

TEST_F(ListWidget, RemovingAnotherRowReportsNothingAndMovesTheNumbers) {
  NewShownList(4);
  ListSelectRow(list_, 2);
  TakeReports();
  ListRemove(list_, 0);
  EXPECT_EQ(Reports{}, TakeReports());
  EXPECT_TRUE(ListIsSelected(list_, 1));
  ListUnselectRow(list_, 1);
  EXPECT_EQ((Reports{{'-', 1}}), TakeReports());
}

TEST_F(ListWidget, RemovingARowOutOfRangeDoesNothing) {
  NewShownList(2);
  ListRemove(list_, 2);
  ListRemove(list_, -1);
  EXPECT_EQ(2, ListRowCount(list_));
}

TEST_F(ListWidget, ClearingReportsNothing) {
  NewShownList(3);
  ListSelectRow(list_, 0);
  TakeReports();
  ListClear(list_);
  RunPending();
  EXPECT_EQ(Reports{}, TakeReports());
  EXPECT_EQ(0, ListRowCount(list_));
  ListAppend(list_, {"new"}, nullptr);
  ListSelectRow(list_, 0);
  EXPECT_EQ((Reports{{'+', 0}}), TakeReports());
}

TEST_F(ListWidget, ASelectionMadeInAHandlerIsReportedToo) {
  NewShownList(3);
  ListOnSelection(
      list_,
      [](int row) {
        NoteSelected(row);
        if (row == 0) ListSelectRow(g_list, 2);
      },
      NoteUnselected);
  ListSelectRow(list_, 0);
  EXPECT_EQ((Reports{{'+', 0}, {'+', 2}}), TakeReports());
}

TEST_F(ListWidget, RowsAreFoundByTheirData) {
  NewShownList(3);
  EXPECT_EQ(1, ListFindData(list_, Datum(2)));
  EXPECT_EQ(Datum(3), ListRowData(list_, 2));
  ListRemove(list_, 0);
  EXPECT_EQ(0, ListFindData(list_, Datum(2)));
  EXPECT_EQ(-1, ListFindData(list_, Datum(1)));
  EXPECT_EQ(nullptr, ListRowData(list_, 2));
}

TEST_F(ListWidget, CellsOutOfRangeAreEmpty) {
  NewShownList(1);
  EXPECT_EQ("row 0", ListCell(list_, 0, 0));
  EXPECT_EQ("", ListCell(list_, 1, 0));
  EXPECT_EQ("", ListCell(list_, 0, 1));
  EXPECT_EQ("", ListCell(list_, 0, -1));
}

TEST_F(ListWidget, ARefilledListSelectsAndReportsAsBefore) {
  NewShownList(3);
  ListSelectRow(list_, 1);
  TakeReports();
  ListFreeze(list_);
  ListClear(list_);
  for (const char *text : {"a", "b"}) ListAppend(list_, {text}, nullptr);
  ListThaw(list_);
  EXPECT_EQ((Reports{{'-', 1}}), TakeReports());
  EXPECT_FALSE(ListIsSelected(list_, 1));
  ClickRow(1);
  EXPECT_EQ((Reports{{'+', 1}}), TakeReports());
}

TEST_F(ListWidget, FreezingUnselectsAndReportsWhileTheRowsAreStillThere) {
  NewShownList(3);
  ListSelectRow(list_, 1);
  TakeReports();
  ListFreeze(list_);
  EXPECT_EQ((Reports{{'-', 1}}), TakeReports());
  EXPECT_FALSE(ListIsSelected(list_, 1));
  ListAppend(list_, {"more"}, Datum(4));
  ListThaw(list_);
  EXPECT_EQ(Reports{}, TakeReports());
  EXPECT_FALSE(ListIsSelected(list_, 1));
}

TEST_F(ListWidget, RowsCanBeRemovedWhileFrozen) {
  NewShownList(3);
  ListFreeze(list_);
  ListRemove(list_, 1);
  ListThaw(list_);
  EXPECT_EQ(2, ListRowCount(list_));
  EXPECT_EQ("row 2", ListCell(list_, 1, 0));
}

TEST_F(ListWidget, FourTimesTheRowsCostLittleMoreThanFourTimesTheWork) {
  // Processor time to fill, select and remove rows.
  const auto seconds_of = [&](int rows) {
    const std::clock_t start = std::clock();
    NewShownList(rows);
    gtk_tree_selection_select_all(gtk_tree_view_get_selection(GTK_TREE_VIEW(list_)));
    EXPECT_EQ(static_cast<size_t>(rows), TakeReports().size());
    for (int row = rows - 1; row >= 0; --row) ListRemove(list_, row);
    EXPECT_EQ(0, ListRowCount(list_));
    EXPECT_EQ(static_cast<size_t>(rows), TakeReports().size());
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  };
  const double small = std::min(seconds_of(2500), seconds_of(2500));
  const double large = seconds_of(10000);
  // A walk of the list for each row would make it 16.
  EXPECT_LT(large, 9 * small) << small << " s for 2,500 rows, " << large << " s for 10,000";
}

TEST_F(ListWidget, ARowHasTheTooltipItWasGivenAndNoOther) {
  NewShownList(2);
  ListSetTip(list_, 1, "why <this> & that");
  ListSetTip(list_, 2, "no such row");
  EXPECT_EQ("", ListTip(list_, 0));
  EXPECT_EQ("why <this> & that", ListTip(list_, 1));
  EXPECT_EQ("", ListTip(list_, 2));
  ListSetTip(list_, 1, "");
  EXPECT_EQ("", ListTip(list_, 1));
}
