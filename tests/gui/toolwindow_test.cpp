// The print tool's window inside the test program: its widgets, its list of files, dropped files.

#include "ToolWindow.h"

#include "ComboWidget.h"
#include "ListWidget.h"
#include "ToolWindowFct.h"
#include "cprintqueues.h"
#include "guisupport.h"
#include "must.h"
#include "queuesupport.h"
#include "xinput.h"

namespace {

class ToolWindow : public GuiTest {
 protected:
  void SetUp() override {
    G_Queues = CreatePrintQueues("/nowhere");
    G_Queues->queues = CreateHash();
    G_Queues_hash = fGetPrintQueues_Function(G_Queues.get());
    Must(HashPut(G_Queues_hash, "lp2", MakeQueue({.name = "lp2", .language = "text"})));
    Must(HashPut(G_Queues_hash, "lp1", MakeQueue()));
    window_ = create_ToolWindow();
  }

  void TearDown() override {
    GuiTest::TearDown();
    G_QueuesWindow_helper.reset();
    G_FilesList.reset();
    G_StdinFileName.clear();
    G_Queues.reset();
    G_Queues_hash = nullptr;
  }

  GtkWidget *Widget(const char *name) const { return lookup_widget(window_, name); }
  GtkWidget *List() const { return Widget("FilesClist"); }
  bool IsSensitive(const char *name) const {
    return gtk_widget_get_sensitive(Widget(name)) != FALSE;
  }
  static int Selected() { return G_QueuesWindow_helper->selected_files; }

  // The file list's records: "*" before a selected one.
  static std::vector<std::string> Records() {
    std::vector<std::string> records;
    for (const CSelection *record : Elements<CSelection>(G_FilesList.get())) {
      records.push_back((fIsSelected_CSelection_Function(record) != 0 ? "*" : "") +
                        std::string(fGet_CSelection_Value_Function(record)));
    }
    return records;
  }

  std::vector<std::string> Rows() const {
    std::vector<std::string> rows;
    for (int row = 0; row < ListRowCount(List()); ++row) rows.push_back(ListCell(List(), row, 0));
    return rows;
  }

  static void AddFiles(const std::vector<std::string> &paths) {
    for (const std::string &path : paths) AddFileRow(path, path);
  }

  GtkWidget *window_ = nullptr;
};

using Lines = std::vector<std::string>;

// A window from which URIs are dragged; stands beside the tool's window.
GtkWidget *NewDragSource(const std::string &uris) {
  GtkWidget *source = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_default_size(GTK_WINDOW(source), 100, 100);
  gtk_window_move(GTK_WINDOW(source), 900, 500);
  gtk_widget_add_events(source, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_MOTION_MASK);
  const GtkTargetEntry target = {const_cast<gchar *>("text/uri-list"), 0, 0};
  gtk_drag_source_set(source, GDK_BUTTON1_MASK, &target, 1, GDK_ACTION_COPY);
  static std::string carried;
  carried = uris;
  g_signal_connect(source, "drag-data-get",
                   G_CALLBACK(+[](GtkWidget *, GdkDragContext *, GtkSelectionData *data, guint,
                                  guint, gpointer) {
                     gtk_selection_data_set(data, gtk_selection_data_get_target(data), 8,
                                            reinterpret_cast<const guchar *>(carried.data()),
                                            static_cast<gint>(carried.size()));
                   }),
                   nullptr);
  return source;
}

}  // namespace

TEST_F(ToolWindow, HasAllItsWidgetsUnderTheirNames) {
  for (const char *name :
       {"ToolVbox", "DataToolVbox", "QueueHbuttonbox", "QueueLabel", "QueueCombo",
        "QueueComboEntry", "FilesFrame", "FilesHbox", "FilesScrolledwindow", "FilesClist",
        "FilesVbuttonbox", "AddButton", "DeleteButton", "ToolHbuttonbox", "PrintButton",
        "LprCommandButton", "PropertiesButton", "CancelButton", "HelpButton"}) {
    EXPECT_NE(nullptr, Widget(name)) << name;
  }
  EXPECT_STREQ("ToolWindow", gtk_widget_get_name(window_));
  EXPECT_EQ(CatalogueText("DEF_WND_TOOL_TITLE"), gtk_window_get_title(GTK_WINDOW(window_)));
}

TEST_F(ToolWindow, ItsWidgetsShowTheirCatalogueTexts) {
  const std::vector<std::pair<const char *, const char *>> buttons = {
      {"AddButton", "DEF_BTN_ADD_TITLE"},
      {"DeleteButton", "DEF_BTN_DELETE_TITLE"},
      {"PrintButton", "DEF_BTN_PRINT_TITLE"},
      {"LprCommandButton", "DEF_BTN_LPR_TITLE"},
      {"PropertiesButton", "DEF_BTN_PROPERTIES_TITLE"},
      {"CancelButton", "DEF_BTN_CANCEL_TITLE"},
      {"HelpButton", "DEF_BTN_HELP_TITLE"}};
  for (const auto &[name, key] : buttons) {
    EXPECT_EQ(CatalogueText(key), gtk_button_get_label(GTK_BUTTON(Widget(name)))) << name;
  }
  EXPECT_EQ(CatalogueText("DEF_LBL_QUEUE_TITLE"),
            gtk_label_get_text(GTK_LABEL(Widget("QueueLabel"))));
  EXPECT_EQ(CatalogueText("DEF_LBL_FILES_TITLE"),
            gtk_frame_get_label(GTK_FRAME(Widget("FilesFrame"))));
}

TEST_F(ToolWindow, TheComboListsTheQueuesInKeyOrderAndShowsTheFirst) {
  GList *list = BuildQueuesGList();
  Lines entries;
  for (GList *link = list; link != nullptr; link = link->next) {
    entries.emplace_back(static_cast<char *>(link->data));
  }
  G_FreeStringsFrom_g_list(list);
  g_list_free(list);
  EXPECT_EQ((Lines{"lp1    [ Vek Norvel 4110ES ]    " + CatalogueText("postscript"),
                   "lp2    [ Vek Norvel 4110ES ]    " + CatalogueText("text")}),
            entries);
  EXPECT_EQ(entries[0], ComboText(Widget("QueueCombo")));
}

TEST_F(ToolWindow, WithoutQueuesNothingCanBePrinted) {
  HashRemove(G_Queues_hash, "lp1");
  HashRemove(G_Queues_hash, "lp2");
  ShowQueues();
  EXPECT_EQ("", ComboText(Widget("QueueCombo")));
  EXPECT_FALSE(IsSensitive("PrintButton"));
  EXPECT_FALSE(IsSensitive("LprCommandButton"));
  EXPECT_FALSE(IsSensitive("QueueCombo"));
  for (const char *name : {"QueueCombo", "PrintButton"}) {
    gchar *tip = gtk_widget_get_tooltip_text(Widget(name));
    EXPECT_EQ(CatalogueText("TOOL_NO_QUEUE"), tip == nullptr ? "" : tip) << name;
    g_free(tip);
  }
}

TEST_F(ToolWindow, DeleteIsInsensitiveWhileNoRowIsSelected) {
  AddFiles({"/a", "/b", "/c"});
  EXPECT_FALSE(IsSensitive("DeleteButton"));
  ListSelectRow(List(), 0);
  EXPECT_TRUE(IsSensitive("DeleteButton"));
  ListSelectRow(List(), 2);
  EXPECT_EQ(2, Selected());
  EXPECT_EQ((Lines{"*/a", "/b", "*/c"}), Records());
  ListUnselectRow(List(), 0);
  EXPECT_TRUE(IsSensitive("DeleteButton"));
  EXPECT_EQ(1, Selected());
  ListUnselectRow(List(), 2);
  EXPECT_FALSE(IsSensitive("DeleteButton"));
  EXPECT_EQ(0, Selected());
}

TEST_F(ToolWindow, ARowThatIsAlreadyMarkedIsCountedOnce) {
  AddFiles({"/a"});
  FilesCListRowSelection(0);
  FilesCListRowSelection(0);
  EXPECT_EQ(1, Selected());
  FilesCListRowUnSelection(0);
  FilesCListRowUnSelection(0);
  EXPECT_EQ(0, Selected());
}

TEST_F(ToolWindow, DeleteRemovesEverySelectedRowAndItsRecord) {
  AddFiles({"/a", "/b", "/c", "/d"});
  for (const int row : {0, 1, 3}) ListSelectRow(List(), row);
  ButtonDeleteFilesPressed();
  EXPECT_EQ(Lines{"/c"}, Rows());
  EXPECT_EQ(Lines{"/c"}, Records());
  EXPECT_EQ(0, Selected());
  EXPECT_FALSE(IsSensitive("DeleteButton"));
}

TEST_F(ToolWindow, DeletingAllRowsLeavesAnEmptyListThatStillWorks) {
  AddFiles({"/a", "/b"});
  for (const int row : {0, 1}) ListSelectRow(List(), row);
  ButtonDeleteFilesPressed();
  EXPECT_EQ(Lines{}, Rows());
  AddFiles({"/c"});
  EXPECT_EQ(Lines{"/c"}, Rows());
  EXPECT_EQ(Lines{"/c"}, Records());
}

TEST_F(ToolWindow, TheDeleteKeyDeletesTheRowsClickedOn) {
  AddFiles({"/a", "/b", "/c"});
  ShowWindowOf(window_);
  RunPending();
  GdkRectangle cell;
  GtkTreePath *path = gtk_tree_path_new_from_indices(1, -1);
  gtk_tree_view_get_cell_area(GTK_TREE_VIEW(List()), path,
                              gtk_tree_view_get_column(GTK_TREE_VIEW(List()), 0), &cell);
  gtk_tree_path_free(path);
  const GdkRectangle area = OnScreen(List(), cell);
  XInputClick(area.x + 10, area.y + area.height / 2);
  ASSERT_TRUE(RunUntil([&] { return Selected() == 1; }));
  XInputChord("Delete");
  ASSERT_TRUE(RunUntil([&] { return Rows().size() == 2; }));
  EXPECT_EQ((Lines{"/a", "/c"}), Records());
  EXPECT_EQ(0, Selected()) << "no other row may get selected";
}

TEST_F(ToolWindow, RowDataIsTheFilesPositionInTheList) {
  AddFiles({"/a", "/b"});
  EXPECT_EQ(fGetHeadPosition_CList_Function(G_FilesList.get()), ListRowData(List(), 0));
  EXPECT_EQ(fGetTailPosition_CList_Function(G_FilesList.get()), ListRowData(List(), 1));
}

TEST_F(ToolWindow, APathThatEndsInASlashStandsForThePlainFilesOfThatFolder) {
  const TemporaryDirectory directory;
  directory.Write("one", "1");
  std::filesystem::create_directories(directory.Path("below"));
  directory.Write("below/two", "2");
  AddChosenPath(directory.Path() + "/");
  EXPECT_EQ(Lines{directory.Path("one")}, Records());
}

TEST_F(ToolWindow, AFileNameInAnotherEncodingIsShownAsUtf8AndPrintedAsItIs) {
  AddChosenPath("/tmp/caf\xE9.ps");
  EXPECT_EQ(Lines{"/tmp/caf\xE9.ps"}, Records());
  EXPECT_NE(FALSE, g_utf8_validate(Rows()[0].c_str(), -1, nullptr)) << Rows()[0];
}

TEST_F(ToolWindow, FilesDroppedFromAFileManagerAreAddedAsChosenOnes) {
  const TemporaryDirectory directory;
  directory.Write("a file.ps", "1");
  std::filesystem::create_directories(directory.Path("folder"));
  directory.Write("folder/inside", "2");
  ShowWindowOf(window_);
  GtkWidget *source = NewDragSource("# dragged\r\nfile://" + directory.Path() +
                                    "/a%20file.ps\r\nhttp://example.org/x\r\nfile://" +
                                    directory.Path("folder") + "\r\n");
  ShowWindowOf(source);
  RunPending();
  Drag(source, List());
  ASSERT_TRUE(RunUntil([&] { return Rows().size() == 2; }));
  EXPECT_EQ((Lines{directory.Path("a file.ps"), directory.Path("folder/inside")}), Records());
  ASSERT_TRUE(RunUntil([&] { return WindowNamed("KPXErrorWarningDialog") != nullptr; }));
  GtkWidget *told = WindowNamed("KPXErrorWarningDialog");
  EXPECT_EQ(CatalogueText("ERR_DROP_REMOTE", {"http://example.org/x"}) + "\n",
            TextOf(lookup_widget(told, "ErrorWarningText")));
  gtk_button_clicked(GTK_BUTTON(lookup_widget(told, "OKButton")));
  EXPECT_EQ(nullptr, WindowNamed("KPXErrorWarningDialog"));
}

TEST_F(ToolWindow, FilesCanBeDroppedAnywhereOnTheWindow) {
  ShowWindowOf(window_);
  GtkWidget *source = NewDragSource("file:///etc/hostname\r\n");
  ShowWindowOf(source);
  RunPending();
  Drag(source, Widget("PrintButton"));
  ASSERT_TRUE(RunUntil([&] { return Rows().size() == 1; }));
  EXPECT_EQ(Lines{"/etc/hostname"}, Records());
}
