// The entry filters on the ways of text into an entry that are neither typing nor Ctrl+V: input
// methods, dropped text, the middle button, and the program itself.

#include "EntryHandlers.h"
#include "guisupport.h"
#include "xinput.h"

namespace {

class FilteredEntry : public GuiTest {
 protected:
  void SetUp() override {
    entry_ = gtk_entry_new();
    source_ = gtk_event_box_new();
    gtk_widget_set_size_request(source_, 100, 60);
    box_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 20);
    gtk_container_add(GTK_CONTAINER(box_), entry_);
    gtk_container_add(GTK_CONTAINER(box_), source_);
  }

  // Shows the entry, which has the focus, above the widget that text is dragged from.
  void ShowEntry() {
    Show(box_);
    gtk_widget_grab_focus(entry_);
    RunPending();
  }

  std::string Text() const { return gtk_entry_get_text(GTK_ENTRY(entry_)); }

  // Inserts at a position, as the program does; tells where the cursor would go.
  int Insert(const std::string &text, int length, int position) {
    gtk_editable_insert_text(GTK_EDITABLE(entry_), text.c_str(), length, &position);
    return position;
  }

  void Paste(const char *text) {
    gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), text, -1);
    XInputChord("ctrl+v");
    EXPECT_TRUE(RunUntil([this] { return !Text().empty(); }));
  }

  void OfferForDragging(const char *text) {
    gtk_widget_add_events(source_, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_MOTION_MASK);
    gtk_drag_source_set(source_, GDK_BUTTON1_MASK, nullptr, 0, GDK_ACTION_COPY);
    gtk_drag_source_add_text_targets(source_);
    g_signal_connect(source_, "drag-data-get",
                     G_CALLBACK(+[](GtkWidget *, GdkDragContext *, GtkSelectionData *data, guint,
                                    guint, gpointer offered) {
                       gtk_selection_data_set_text(data, static_cast<const char *>(offered), -1);
                     }),
                     const_cast<char *>(text));
  }

  GtkWidget *entry_ = nullptr;
  GtkWidget *source_ = nullptr;
  GtkWidget *box_ = nullptr;
};

// Types the character of a hexadecimal code by GTK's own input method.
void TypeCode(const char *code) {
  XInputChord("ctrl+shift+u");
  XInputType(code);
  XInputChord("space");
  RunPending();
}

}  // namespace

TEST_F(FilteredEntry, ANameTakesFromAnInputMethodWhatItTakesFromKeys) {
  FilterAsQueueName(entry_);
  ShowEntry();
  TypeCode("37");  // the digit 7, at the start
  EXPECT_EQ("", Text());
  TypeCode("2e");  // a dot
  EXPECT_EQ("", Text());
  TypeCode("e9");
  EXPECT_EQ("é", Text());
  TypeCode("37");
  EXPECT_EQ("é7", Text());
}

TEST_F(FilteredEntry, ANameTakesDroppedTextFiltered) {
  FilterAsQueueName(entry_);
  OfferForDragging("42 my queue.1 é");
  ShowEntry();
  Drag(source_, entry_);
  EXPECT_TRUE(RunUntil([this] { return !Text().empty(); }));
  EXPECT_EQ("myqueue1é", Text());
}

TEST_F(FilteredEntry, AnAddressTakesDroppedTextWithoutBlanks) {
  FilterAsAddress(entry_);
  OfferForDragging(" 10. 0.0 .1/é ");
  ShowEntry();
  Drag(source_, entry_);
  EXPECT_TRUE(RunUntil([this] { return !Text().empty(); }));
  EXPECT_EQ("10.0.0.1/é", Text());
}

TEST_F(FilteredEntry, OfSeveralPastedLinesANameTakesTheFirst) {
  FilterAsQueueName(entry_);
  ShowEntry();
  Paste("lp1\nlp2\n");
  EXPECT_EQ("lp1", Text());
}

TEST_F(FilteredEntry, OfSeveralPastedLinesAnAddressTakesTheFirst) {
  FilterAsAddress(entry_);
  ShowEntry();
  Paste("10.0.0.1\nreboot\n");
  EXPECT_EQ("10.0.0.1", Text());
}

TEST_F(FilteredEntry, OfSeveralDroppedLinesAnAddressTakesTheFirst) {
  FilterAsAddress(entry_);
  OfferForDragging("10.0.0.1\n10.0.0.2");
  ShowEntry();
  Drag(source_, entry_);
  EXPECT_TRUE(RunUntil([this] { return !Text().empty(); }));
  EXPECT_EQ("10.0.0.1", Text());
}

TEST_F(FilteredEntry, ANameTakesTheSelectionOfTheMiddleButtonFiltered) {
  FilterAsQueueName(entry_);
  ShowEntry();
  gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_PRIMARY), "9l p#", -1);
  const GdkRectangle place = OnScreen(entry_);
  XInputClick(place.x + place.width / 2, place.y + place.height / 2, 2);
  EXPECT_TRUE(RunUntil([this] { return !Text().empty(); }));
  EXPECT_EQ("lp", Text());
}

TEST_F(FilteredEntry, TheProgramsOwnTextIsFilteredToo) {
  FilterAsQueueName(entry_);
  gtk_entry_set_text(GTK_ENTRY(entry_), "007 b.ö nd");
  EXPECT_EQ("bönd", Text());
  EXPECT_EQ(3, Insert("a. b", -1, 1)) << "the cursor stands behind what was kept";
  EXPECT_EQ("babönd", Text());
  EXPECT_EQ(5, Insert("1.2345", 3, 3)) << "the first three bytes";
  EXPECT_EQ("bab12önd", Text());
  EXPECT_EQ(0, Insert("12.", -1, 0));
  EXPECT_EQ("bab12önd", Text());
  gtk_editable_delete_text(GTK_EDITABLE(entry_), 0, 3);
  EXPECT_EQ("bab12önd", Text()) << "a digit would become the first character";
  gtk_editable_delete_text(GTK_EDITABLE(entry_), 0, 5);
  EXPECT_EQ("önd", Text());
  gtk_editable_delete_text(GTK_EDITABLE(entry_), 0, -1);
  EXPECT_EQ("", Text());
}

TEST_F(FilteredEntry, ALongerTextIsCutAtTheEntrysLengthAfterTheFilter) {
  FilterAsQueueName(entry_);
  gtk_entry_set_max_length(GTK_ENTRY(entry_), 3);
  EXPECT_EQ(3, Insert(". ä.b c d", -1, 0));
  EXPECT_EQ("äbc", Text());
}
