// The about box, the error box, the help box and the error-and-warning list.

#include "MessageDialogs.h"

#include "ConfirmationWindow.h"
#include "ListWidget.h"
#include "LprCmdWindow.h"
#include "Pixmaps.h"
#include "chelp.h"
#include "debug.h"
#include "guisupport.h"
#include "paths.h"
#include "xinput.h"

namespace {

class MessageDialogs : public GuiTest {
 protected:
  void SetUp() override {
    add_pixmap_directory(kPixmapDir);
    G_Help = CreateHelp(kInstalledHelp);
    fFillFromHelp_Function(G_Help.get());
  }
  void TearDown() override {
    GuiTest::TearDown();
    G_Help.reset();
    G_ErrorWarningWindow_helper.reset();
  }

  // Shows the dialog, checks what all have, presses Return and expects it gone.
  static void ShowAndCloseWithReturn(GtkWidget *dialog, const char *name) {
    EXPECT_STREQ(name, gtk_widget_get_name(dialog));
    EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(dialog)));
    ShowWindowOf(dialog);
    XInputChord("Return");
    EXPECT_TRUE(RunUntil([&] { return WindowNamed(name) == nullptr; }));
  }

  static std::string TitleOf(GtkWidget *dialog) { return gtk_window_get_title(GTK_WINDOW(dialog)); }
  static std::string LabelText(GtkWidget *dialog, const char *name) {
    return gtk_label_get_text(GTK_LABEL(lookup_widget(dialog, name)));
  }
};

}  // namespace

TEST_F(MessageDialogs, TheErrorBoxShowsItsText) {
  GtkWidget *dialog = create_ErrorWindow(nullptr, "something went wrong");
  EXPECT_EQ(CatalogueText("DEF_WND_ERROR_TITLE"), TitleOf(dialog));
  EXPECT_EQ("something went wrong", LabelText(dialog, "ErrorLabel1"));
  EXPECT_EQ("", LabelText(dialog, "ErrorLabel2"));
  EXPECT_NE(nullptr, lookup_widget(dialog, "DataErrorVbox"));
  ShowAndCloseWithReturn(dialog, "ErrorDialog");
}

TEST_F(MessageDialogs, TheErrorBoxShowsItsDetailBelow) {
  GtkWidget *dialog = create_ErrorWindow("the detail", "the text");
  EXPECT_EQ("the text", LabelText(dialog, "ErrorLabel1"));
  EXPECT_EQ("the detail", LabelText(dialog, "ErrorLabel2"));
  ShowWindowOf(dialog);
  RunPending();
  EXPECT_GT(OnScreen(lookup_widget(dialog, "ErrorLabel2")).y,
            OnScreen(lookup_widget(dialog, "ErrorLabel1")).y);
  ClickOn(lookup_widget(dialog, "OKButton"));
  EXPECT_EQ(nullptr, WindowNamed("ErrorDialog"));
}

TEST_F(MessageDialogs, MessagesAreAlertsAndWhatTheySayIsRead) {
  const Owned<CList> list = CreateList();
  const std::string about = fGetHelp_Function(G_Help.get(), "KPX_ABOUT_BEGIN");
  const struct {
    GtkWidget *dialog;
    AtkRole role;
    std::string description;
  } rows[] = {
      {create_ErrorWindow(nullptr, "the text"), ATK_ROLE_ALERT, "the text"},
      {create_ErrorWindow("the detail", "the text"), ATK_ROLE_ALERT, "the text\nthe detail"},
      {create_ErrorWarningWindow(list.get(), kReturn), ATK_ROLE_ALERT,
       CatalogueText("ERR_ERRS_AND_WRNS")},
      {create_ConfirmationWindow(1), ATK_ROLE_ALERT, CatalogueText("DEF_LBL_CONFIRM_MSG_CPS")},
      {create_AboutWindow(), ATK_ROLE_DIALOG, about},
      {create_HelpWindow("help"), ATK_ROLE_DIALOG, ""},
  };
  for (const auto &row : rows) {
    AtkObject *object = gtk_widget_get_accessible(row.dialog);
    const char *description = atk_object_get_description(object);
    EXPECT_EQ(row.role, atk_object_get_role(object)) << gtk_widget_get_name(row.dialog);
    EXPECT_EQ(row.description, description == nullptr ? "" : description)
        << gtk_widget_get_name(row.dialog);
  }
  ButtonNOConfirmationPressed();
}

TEST_F(MessageDialogs, TheHelpBoxShowsTheBlock) {
  GtkWidget *dialog = create_HelpWindow(fGetHelp_Function(G_Help.get(), "KPX_TOOL_BEGIN"));
  EXPECT_EQ(CatalogueText("DEF_WND_HELP_TITLE"), TitleOf(dialog));
  EXPECT_EQ(fGetHelp_Function(G_Help.get(), "KPX_TOOL_BEGIN"),
            TextOf(lookup_widget(dialog, "HelpText")));
  int width = 0;
  int height = 0;
  gtk_window_get_default_size(GTK_WINDOW(dialog), &width, &height);
  EXPECT_EQ(480, width);
  EXPECT_EQ(360, height);
  GtkPolicyType horizontal = GTK_POLICY_NEVER;
  GtkPolicyType vertical = GTK_POLICY_NEVER;
  gtk_scrolled_window_get_policy(GTK_SCROLLED_WINDOW(lookup_widget(dialog, "HelpScrolledwindow")),
                                 &horizontal, &vertical);
  EXPECT_EQ(GTK_POLICY_AUTOMATIC, horizontal);
  EXPECT_EQ(GTK_POLICY_ALWAYS, vertical);
  ShowAndCloseWithReturn(dialog, "KPXHelpDialog");
}

TEST_F(MessageDialogs, TheHelpBoxIsAsWideAsItsLongestLineAndBreaksNone) {
  const std::string line(90, 'w');
  GtkWidget *dialog = create_HelpWindow("short\n" + line + "\n");
  gtk_widget_show(dialog);
  RunPending();
  GtkWidget *area = lookup_widget(dialog, "HelpText");
  EXPECT_TRUE(RunUntil([&] { return gtk_widget_get_allocated_width(area) > 90; }));
  GtkAdjustment *place = gtk_scrolled_window_get_hadjustment(
      GTK_SCROLLED_WINDOW(lookup_widget(dialog, "HelpScrolledwindow")));
  EXPECT_GT(gtk_adjustment_get_page_size(place), 480);
  EXPECT_LE(gtk_adjustment_get_upper(place), gtk_adjustment_get_page_size(place));
  EXPECT_EQ(GTK_WRAP_NONE, gtk_text_view_get_wrap_mode(GTK_TEXT_VIEW(area)));
  gtk_widget_destroy(dialog);
}

TEST_F(MessageDialogs, AMissingHelpBlockShowsItsName) {
  testing::internal::CaptureStderr();
  ShowHelp("KPX_NOWHERE_BEGIN");
  testing::internal::GetCapturedStderr();
  GtkWidget *dialog = WindowNamed("KPXHelpDialog");
  ASSERT_NE(nullptr, dialog);
  EXPECT_EQ("KPX_NOWHERE_BEGIN", TextOf(lookup_widget(dialog, "HelpText")));
}

TEST_F(MessageDialogs, TheAboutBoxHasItsFixedSizeAndPlaces) {
  G_ButtonAboutPressed();
  GtkWidget *dialog = WindowNamed("dialogAbout");
  ASSERT_NE(nullptr, dialog);
  EXPECT_EQ(CatalogueText("DEF_WND_ABOUT_TITLE"), TitleOf(dialog));
  EXPECT_FALSE(gtk_window_get_resizable(GTK_WINDOW(dialog)));
  ShowWindowOf(dialog);
  RunPending();
  const GdkRectangle window = OnScreen(dialog);
  EXPECT_EQ(410, window.width);
  EXPECT_EQ(360, window.height);
  const GdkRectangle picture = OnScreen(lookup_widget(dialog, "AboutPixmap"));
  EXPECT_EQ(40, picture.x - window.x);
  EXPECT_EQ(15, picture.y - window.y);
  EXPECT_EQ(328, picture.width);
  EXPECT_EQ(117, picture.height);
  const GdkRectangle label = OnScreen(lookup_widget(dialog, "label1"));
  EXPECT_EQ(10, label.x - window.x);
  EXPECT_EQ(140, label.y - window.y);
  EXPECT_EQ(370, label.width);
  EXPECT_EQ(200, label.height);
  EXPECT_EQ(fGetHelp_Function(G_Help.get(), "KPX_ABOUT_BEGIN"), LabelText(dialog, "label1"));
  EXPECT_NE(nullptr, lookup_widget(dialog, "fixed1"));
  ClickOn(lookup_widget(dialog, "ButtonOk"));
  EXPECT_EQ(nullptr, WindowNamed("dialogAbout"));
}

TEST_F(MessageDialogs, TheAboutPictureIsShownWhole) {
  testing::internal::CaptureStderr();
  GtkWidget *dialog = create_AboutWindow();
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  const GdkPixbuf *pixbuf = gtk_image_get_pixbuf(GTK_IMAGE(lookup_widget(dialog, "AboutPixmap")));
  EXPECT_EQ(328, gdk_pixbuf_get_width(pixbuf));
  EXPECT_EQ(117, gdk_pixbuf_get_height(pixbuf));
}

TEST_F(MessageDialogs, TheListShowsItsMessagesInOrderOneALine) {
  const Owned<CList> messages = ListOf({"first %s", "second", "third"});
  GtkWidget *dialog = create_ErrorWarningWindow(messages.get(), kReturn);
  EXPECT_EQ(CatalogueText("DEF_WND_ERROR_TITLE"), TitleOf(dialog));
  EXPECT_EQ(CatalogueText("ERR_ERRS_AND_WRNS"), LabelText(dialog, "ErrorWarningLabel"));
  EXPECT_EQ("first %s\nsecond\nthird\n", TextOf(lookup_widget(dialog, "ErrorWarningText")));
  ASSERT_NE(nullptr, G_ErrorWarningWindow_helper);
  EXPECT_EQ(dialog, G_ErrorWarningWindow_helper->window);
  EXPECT_EQ(lookup_widget(dialog, "ErrorWarningText"), G_ErrorWarningWindow_helper->text);
  ShowAndCloseWithReturn(dialog, "KPXErrorWarningDialog");
  EXPECT_EQ(nullptr, G_ErrorWarningWindow_helper);
}

TEST_F(MessageDialogs, AnEmptyListShowsOnlyItsLabel) {
  const Owned<CList> messages = CreateList();
  GtkWidget *dialog = create_ErrorWarningWindow(messages.get(), kReturn);
  EXPECT_EQ(CatalogueText("ERR_ERRS_AND_WRNS"), LabelText(dialog, "ErrorWarningLabel"));
  EXPECT_EQ("", TextOf(lookup_widget(dialog, "ErrorWarningText")));
}

TEST_F(MessageDialogs, AMessageIsCutAt1023BytesAndNeverInsideACharacter) {
  const Owned<CList> messages = ListOf({std::string(1022, 'a') + "\xC3\xA9" + "b", "next"});
  GtkWidget *dialog = create_ErrorWarningWindow(messages.get(), kReturn);
  EXPECT_EQ(std::string(1022, 'a') + "\nnext\n", TextOf(lookup_widget(dialog, "ErrorWarningText")));
}

TEST_F(MessageDialogs, OkOfAListThatExitsEndsTheProgramWithStatusOne) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // the toolkit has threads
  EXPECT_EXIT(
      {
        const Owned<CList> messages = ListOf({"pointless"});
        create_ErrorWarningWindow(messages.get(), kExit);
        ButtonOkErrorWarningPressed();
        _exit(0);
      },
      testing::ExitedWithCode(1), "");
}

TEST_F(MessageDialogs, OkOfAListWithAnotherValueDoesNothing) {
  const Owned<CList> messages = ListOf({"stays"});
  GtkWidget *dialog = create_ErrorWarningWindow(messages.get(), 2);
  gtk_widget_show(dialog);
  ButtonOkErrorWarningPressed();
  EXPECT_EQ(dialog, WindowNamed("KPXErrorWarningDialog"));
  EXPECT_NE(nullptr, G_ErrorWarningWindow_helper);
}

TEST_F(MessageDialogs, TheListsOkIsLoggedUnderItsOtherName) {
  const Owned<CList> messages = CreateList();
  gtk_widget_show(create_ErrorWarningWindow(messages.get(), kReturn));
  G_DebugLevel = 4;
  testing::internal::CaptureStderr();
  ButtonOkErrorWarningPressed();
  G_DebugLevel = 0;
  EXPECT_EQ(
      "BEGIN ButtonOkErrorWindowPressed() function\nEND   ButtonOkErrorWindowPressed() function\n",
      testing::internal::GetCapturedStderr());
}

// The places in a shown text where a new line begins, as numbers of characters.
static std::vector<int> LineStarts(GtkWidget *area) {
  GtkTextView *view = GTK_TEXT_VIEW(area);
  std::vector<int> starts;
  GtkTextIter place;
  gtk_text_buffer_get_start_iter(gtk_text_view_get_buffer(view), &place);
  while (gtk_text_view_forward_display_line(view, &place) != FALSE) {
    starts.push_back(gtk_text_iter_get_offset(&place));
  }
  return starts;
}

TEST_F(MessageDialogs, ALongWordOfAMessageIsNeverBroken) {
  const std::string word = "/home/anna/" + std::string(150, 'w') + "International/Division.ps";
  const std::string text = "short words come before and after the long one: ";
  const Owned<CList> messages = ListOf({text + word + " " + text});
  GtkWidget *dialog = create_ErrorWarningWindow(messages.get(), kReturn);
  ShowWindowOf(dialog);
  RunPending();
  const std::string shown = text + word + " " + text + "\n";
  const std::vector<int> starts = LineStarts(lookup_widget(dialog, "ErrorWarningText"));
  EXPECT_GE(starts.size(), 2U) << "the message fits: nothing was tested";
  for (const int start : starts) {
    const char before = shown[static_cast<size_t>(start) - 1];
    EXPECT_TRUE(before == ' ' || before == '\n' || before == '/') << shown.substr(0, start);
  }
  gtk_widget_destroy(dialog);
  G_ErrorWarningWindow_helper.reset();
}

TEST_F(MessageDialogs, TheCommandIsOneLineHoweverLongItIs) {
  const std::string command = "/usr/bin/lp -d lp1 -o \"*NrCopies=1\" /home/anna/" +
                              std::string(150, 'w') + "International-Division.ps /b /c";
  GtkWidget *dialog = create_LprCmdWindow(command);
  ShowWindowOf(dialog);
  RunPending();
  GtkWidget *area = lookup_widget(dialog, "LprCmdText");
  EXPECT_EQ(std::vector<int>{}, LineStarts(area));
  GtkAdjustment *place = gtk_scrolled_window_get_hadjustment(
      GTK_SCROLLED_WINDOW(lookup_widget(dialog, "LprCmdScrolledwindow")));
  EXPECT_GT(gtk_adjustment_get_upper(place), gtk_adjustment_get_page_size(place));
  gtk_widget_destroy(dialog);
}

TEST_F(MessageDialogs, TheCommandWindowShowsItsText) {
  GtkWidget *dialog = create_LprCmdWindow("/usr/bin/lp -d lp1");
  EXPECT_EQ(CatalogueText("DEF_WND_LPR_TITLE"), TitleOf(dialog));
  EXPECT_EQ("/usr/bin/lp -d lp1", TextOf(lookup_widget(dialog, "LprCmdText")));
  EXPECT_NE(nullptr, lookup_widget(dialog, "LprCmdScrolledwindow"));
  ShowAndCloseWithReturn(dialog, "LprCmdDialog");
}
