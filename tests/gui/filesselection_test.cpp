// The file selection of the print tool: several files at once, a folder, a whole folder.

#include <algorithm>

#include "FilesSelectionWindow.h"
#include "ListWidget.h"
#include "Support.h"
#include "ToolWindow.h"
#include "ToolWindowFct.h"
#include "guisupport.h"
#include "xinput.h"

namespace {

using Lines = std::vector<std::string>;

class FilesSelection : public GuiTest {
 protected:
  void SetUp() override {
    tool_ = create_ToolWindow();
    ShowWindowOf(tool_);
    std::filesystem::create_directories(files_.Path("docs/below"));
    for (const char *name :
         {"a.ps", "docs/one", "docs/two", "docs/below/three", "docs/below/four"}) {
      files_.Write(name, name);
    }
  }

  void TearDown() override {
    GuiTest::TearDown();
    G_FilesSelectionWindow_helper.reset();
    G_QueuesWindow_helper.reset();
    G_FilesList.reset();
  }

  static std::string FolderOf(GtkWidget *window) {
    gchar *folder = gtk_file_chooser_get_current_folder(GTK_FILE_CHOOSER(window));
    const std::string result = folder == nullptr ? "" : folder;
    g_free(folder);
    return result;
  }

  // Opens the window in `folder` and waits until it is there.
  static GtkWidget *Open(const std::string &folder) {
    ButtonAddFilesPressed();
    GtkWidget *window = G_FilesSelectionWindow_helper->window;
    gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(window), folder.c_str());
    ShowWindowOf(window);
    EXPECT_TRUE(RunUntil([&] { return FolderOf(window) == folder; }));
    return window;
  }

  static size_t CountSelected(GtkWidget *window) {
    GSList *names = gtk_file_chooser_get_filenames(GTK_FILE_CHOOSER(window));
    const size_t count = g_slist_length(names);
    g_slist_free_full(names, g_free);
    return count;
  }

  static GtkWidget *FindList(GtkWidget *widget) {
    if (GTK_IS_TREE_VIEW(widget)) return widget;
    if (!GTK_IS_CONTAINER(widget)) return nullptr;
    GtkWidget *found = nullptr;
    GList *children = gtk_container_get_children(GTK_CONTAINER(widget));
    for (GList *link = children; link != nullptr && found == nullptr; link = link->next) {
      found = FindList(GTK_WIDGET(link->data));
    }
    g_list_free(children);
    return found;
  }

  // Selects everything that the window lists, `count` entries, with the keyboard.
  static void SelectAll(GtkWidget *window, int count) {
    GtkWidget *list = FindList(window);
    ASSERT_NE(nullptr, list);
    const auto listed = [&] {
      GtkTreeModel *model = gtk_tree_view_get_model(GTK_TREE_VIEW(list));
      return model == nullptr ? -1 : gtk_tree_model_iter_n_children(model, nullptr);
    };
    ASSERT_TRUE(RunUntil([&] { return listed() == count; })) << listed();
    gtk_widget_grab_focus(list);
    XInputChord("ctrl+a");
    ASSERT_TRUE(RunUntil([&] { return CountSelected(window) == static_cast<size_t>(count); }));
  }

  // Whether the folder has been read to its end: then the cursor is put on its first row.
  static bool HasCursor(GtkWidget *list) {
    GtkTreePath *path = nullptr;
    gtk_tree_view_get_cursor(GTK_TREE_VIEW(list), &path, nullptr);
    const bool has_cursor = path != nullptr;
    gtk_tree_path_free(path);
    return has_cursor;
  }

  // Selects the last of two rows, which is a folder.
  static void SelectLastRow(GtkWidget *window) {
    GtkWidget *list = FindList(window);
    ASSERT_TRUE(RunUntil([&] {
      GtkTreeModel *model = gtk_tree_view_get_model(GTK_TREE_VIEW(list));
      return model != nullptr && gtk_tree_model_iter_n_children(model, nullptr) == 2 &&
             HasCursor(list);
    }));
    gtk_widget_grab_focus(list);
    XInputChord("End");
    ASSERT_TRUE(RunUntil([&] {
      GSList *names = gtk_file_chooser_get_filenames(GTK_FILE_CHOOSER(window));
      const bool is_folder = g_slist_length(names) == 1 &&
                             std::filesystem::is_directory(static_cast<char *>(names->data));
      g_slist_free_full(names, g_free);
      return is_folder;
    }));
  }

  static GtkWidget *FindEntry(GtkWidget *widget) {
    if (std::string(G_OBJECT_TYPE_NAME(widget)) == "GtkFileChooserEntry") return widget;
    if (!GTK_IS_CONTAINER(widget)) return nullptr;
    GtkWidget *found = nullptr;
    gtk_container_forall(
        GTK_CONTAINER(widget),
        [](GtkWidget *child, gpointer result) {
          auto **entry = static_cast<GtkWidget **>(result);
          if (*entry == nullptr) *entry = FindEntry(child);
        },
        &found);
    return found;
  }

  // Opens the location entry and types a path.
  static void TypePath(GtkWidget *window, const std::string &path) {
    XInputChord("ctrl+l");
    ASSERT_TRUE(RunUntil([&] { return FindEntry(window) != nullptr; }));
    XInputType(path);
    ASSERT_TRUE(RunUntil([&] { return gtk_entry_get_text(GTK_ENTRY(FindEntry(window))) == path; }))
        << gtk_entry_get_text(GTK_ENTRY(FindEntry(window)));
  }

  // What the place "Recent" of the side bar does.
  static void ShowRecentFiles(GtkWidget *window) {
    XInputChord("alt+r");
    ASSERT_TRUE(RunUntil([&] { return FolderOf(window).empty(); }));
  }

  static Lines Records() {
    Lines records;
    for (const CSelection *record : Elements<CSelection>(G_FilesList.get())) {
      EXPECT_EQ(0, fIsSelected_CSelection_Function(record));
      records.emplace_back(fGet_CSelection_Value_Function(record));
    }
    std::sort(records.begin(), records.end());
    return records;
  }

  static std::string ErrorText() {
    GtkWidget *label = lookup_widget(WindowNamed("ErrorDialog"), "ErrorLabel1");
    return gtk_label_get_text(GTK_LABEL(label));
  }

  static bool IsClosed() { return G_FilesSelectionWindow_helper == nullptr; }

  TemporaryDirectory files_;
  GtkWidget *tool_ = nullptr;
};

}  // namespace

TEST_F(FilesSelection, SeveralFilesAreTakenAtOnce) {
  GtkWidget *window = Open(files_.Path("docs/below"));
  SelectAll(window, 2);
  ClickOn(lookup_widget(window, "OKButton"));
  ASSERT_TRUE(RunUntil(IsClosed));
  EXPECT_EQ((Lines{files_.Path("docs/below/four"), files_.Path("docs/below/three")}), Records());
  EXPECT_EQ(2, ListRowCount(G_QueuesWindow_helper->files_list));
  EXPECT_EQ(nullptr, WindowNamed("FilesSelectionWindow"));
}

TEST_F(FilesSelection, TheSameFileCanBeTakenTwice) {
  for (int i = 0; i < 2; ++i) {
    GtkWidget *window = Open(files_.Path());
    TypePath(window, files_.Path("a.ps"));
    ButtonOkFilesPressed();
  }
  EXPECT_EQ((Lines{files_.Path("a.ps"), files_.Path("a.ps")}), Records());
}

TEST_F(FilesSelection, TheWholeFolderIsItsPlainFilesAndNoneOfTheFoldersBelow) {
  GtkWidget *window = Open(files_.Path("docs"));
  ClickOn(lookup_widget(window, "FolderButton"));
  ASSERT_TRUE(RunUntil(IsClosed));
  EXPECT_EQ((Lines{files_.Path("docs/one"), files_.Path("docs/two")}), Records());
}

TEST_F(FilesSelection, TheWholeFolderIsTheOneThatIsHighlighted) {
  GtkWidget *window = Open(files_.Path());
  SelectLastRow(window);
  ClickOn(lookup_widget(window, "FolderButton"));
  ASSERT_TRUE(RunUntil(IsClosed));
  EXPECT_EQ((Lines{files_.Path("docs/one"), files_.Path("docs/two")}), Records());
}

TEST_F(FilesSelection, AFolderThatTheToolkitHighlightsByItselfIsNotChosen) {
  GtkWidget *window = Open(files_.Path());
  gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(window), files_.Path("docs").c_str());
  GtkWidget *list = FindList(window);
  ASSERT_TRUE(RunUntil([&] {
    GtkTreeModel *model = gtk_tree_view_get_model(GTK_TREE_VIEW(list));
    return FolderOf(window) == files_.Path("docs") && model != nullptr &&
           gtk_tree_model_iter_n_children(model, nullptr) == 3 && HasCursor(list);
  }));
  ClickOn(lookup_widget(window, "FolderButton"));
  ASSERT_TRUE(RunUntil(IsClosed));
  EXPECT_EQ((Lines{files_.Path("docs/one"), files_.Path("docs/two")}), Records());
}

TEST_F(FilesSelection, TheWholeFolderIsTheOneThatIsTyped) {
  for (const char *typed : {"docs/", "docs/below"}) {
    G_FilesList = CreateList();
    GtkWidget *window = Open(files_.Path());
    TypePath(window, files_.Path(typed));
    // Not by a click: the list of completions, which opens at a time of its own, would take it.
    ButtonFolderFilesPressed();
    ASSERT_TRUE(IsClosed()) << typed;
    EXPECT_EQ(typed == std::string("docs/")
                  ? (Lines{files_.Path("docs/one"), files_.Path("docs/two")})
                  : (Lines{files_.Path("docs/below/four"), files_.Path("docs/below/three")}),
              Records());
  }
}

TEST_F(FilesSelection, TheWholeFolderOfATypedNameThatIsNotThereIsToldAndAddsNothing) {
  GtkWidget *window = Open(files_.Path());
  TypePath(window, files_.Path("docx"));
  ClickOn(lookup_widget(window, "FolderButton"));
  ASSERT_TRUE(RunUntil([] { return WindowNamed("ErrorDialog") != nullptr; }));
  EXPECT_EQ(CatalogueText("ERR_UNABLE_TO_READ_DIR", {files_.Path("docx")}), ErrorText());
  EXPECT_FALSE(IsClosed());
  EXPECT_EQ(Lines{}, Records());
}

TEST_F(FilesSelection, WithoutAnyFolderTheWholeFolderIsToldAndAddsNothing) {
  GtkWidget *window = Open(files_.Path());
  ShowRecentFiles(window);
  ClickOn(lookup_widget(window, "FolderButton"));
  ASSERT_TRUE(RunUntil([] { return WindowNamed("ErrorDialog") != nullptr; }));
  EXPECT_EQ(CatalogueText("MSG_NO_FOLDER"), ErrorText());
  EXPECT_FALSE(IsClosed());
}

TEST_F(FilesSelection, AFolderAmongTheSelectedStandsForItsPlainFiles) {
  GtkWidget *window = Open(files_.Path());
  SelectAll(window, 2);
  ButtonOkFilesPressed();
  EXPECT_EQ((Lines{files_.Path("a.ps"), files_.Path("docs/one"), files_.Path("docs/two")}),
            Records());
}

TEST_F(FilesSelection, CancelTakesNothing) {
  GtkWidget *window = Open(files_.Path());
  TypePath(window, files_.Path("a.ps"));
  ClickOn(lookup_widget(window, "CancelButton"));
  ASSERT_TRUE(RunUntil(IsClosed));
  EXPECT_EQ(Lines{}, Records());
}

TEST_F(FilesSelection, ClosingTheWindowIsCancel) {
  GtkWidget *window = Open(files_.Path());
  GdkEvent *event = gdk_event_new(GDK_DELETE);
  event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window)));
  gtk_main_do_event(event);
  gdk_event_free(event);
  ASSERT_TRUE(RunUntil(IsClosed));
  EXPECT_EQ(Lines{}, Records());
}

TEST_F(FilesSelection, ItStartsInTheProgramsFolder) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(files_.Path("docs"));
  GtkWidget *window = create_FilesSelectionWindow();
  std::filesystem::current_path(before);
  ShowWindowOf(window);
  EXPECT_TRUE(RunUntil([&] { return FolderOf(window) == files_.Path("docs"); }))
      << FolderOf(window);
}

TEST_F(FilesSelection, ItsButtonsAndTitleAreThoseOfTheCatalogue) {
  GtkWidget *window = Open(files_.Path());
  EXPECT_EQ(CatalogueText("DEF_WND_FILE_TITLE"), gtk_window_get_title(GTK_WINDOW(window)));
  const std::vector<std::pair<const char *, const char *>> buttons = {
      {"OKButton", "DEF_BTN_OK_TITLE"},
      {"CancelButton", "DEF_BTN_CANCEL_TITLE"},
      {"FolderButton", "DEF_BTN_FOLDER_TITLE"}};
  for (const auto &[name, key] : buttons) {
    EXPECT_EQ(CatalogueText(key), gtk_button_get_label(GTK_BUTTON(lookup_widget(window, name))));
  }
}
