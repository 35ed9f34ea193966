// The file selection of the print tool: several files at once, a folder, a whole folder.

#include <algorithm>

#include "FilesSelectionWindow.h"
#include "ListWidget.h"
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

  // Selects one file by its path.
  static void Select(GtkWidget *window, const std::string &path) {
    gtk_file_chooser_select_filename(GTK_FILE_CHOOSER(window), path.c_str());
    ASSERT_TRUE(RunUntil([&] { return CountSelected(window) == 1; })) << path;
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
    Select(window, files_.Path("a.ps"));
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

TEST_F(FilesSelection, AFolderAmongTheSelectedStandsForItsPlainFiles) {
  GtkWidget *window = Open(files_.Path());
  SelectAll(window, 2);
  ButtonOkFilesPressed();
  EXPECT_EQ((Lines{files_.Path("a.ps"), files_.Path("docs/one"), files_.Path("docs/two")}),
            Records());
}

TEST_F(FilesSelection, CancelTakesNothing) {
  GtkWidget *window = Open(files_.Path());
  Select(window, files_.Path("a.ps"));
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
