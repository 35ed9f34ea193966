// What every window builder uses: widgets by name, buttons, accelerators, labels, text areas.
#pragma once

#include <gtk/gtk.h>

#include <string>

// Stores `widget` on the top-level `window` under `name`, with a reference held until the window
// dies (none when it is the window itself), and gives the widget that name. Returns `widget`.
GtkWidget *StoreWidget(GtkWidget *window, GtkWidget *widget, const char *name);

// The widget stored under `name` on the top-level window of `widget` (a menu goes on from the
// widget that it is attached to), lent; null, without a message, when there is none.
GtkWidget *lookup_widget(GtkWidget *widget, const char *name);

// A button stored as `name` with the text of `title_key`, at the end of `box`; `pressed` is its
// "clicked" handler and may be null.
GtkWidget *NewButton(GtkWidget *window, GtkWidget *box, const char *name, const char *title_key,
                     void (*pressed)());

// A left-aligned label stored as `name`; assistive technology reads it as the label of `target`, a
// combo's entry included. `target` may be null.
GtkWidget *NewLabel(GtkWidget *window, const char *name, const std::string &text,
                    GtkWidget *target);

// Assistive technology reads `label`, or `description`, with `widget`. A widget that only holds
// others takes no label, and any other one takes a single label.
void LabelBy(GtkWidget *widget, GtkWidget *label);
void DescribeBy(GtkWidget *widget, GtkWidget *description);

// The name under which assistive technology knows what no label names.
void SetAccessibleName(GtkWidget *widget, const std::string &name);

// Assistive technology reads the message of a window as soon as that appears.
void SetAlert(GtkWidget *window, const std::string &message);

// The label breaks its text beyond so many characters a line.
void BreakLines(GtkWidget *label, int characters);

// A scrolled window stored as `scrolled_name` with a read-only, word-wrapped text area stored as
// `text_name` that shows `text` (UTF-8; anything else, as in a file name, is read as ISO-8859-1).
// Assistive technology knows it by the title of `window`.
GtkWidget *NewScrolledText(GtkWidget *window, const char *scrolled_name, const char *text_name,
                           const std::string &text);

// A scrolled window stored as `name` around `list`, with bars when needed.
GtkWidget *NewScrolledList(GtkWidget *window, const char *name, GtkWidget *list);

// `key` presses `button` wherever the focus is, through the window's one accelerator group.
void AddAccelerator(GtkWidget *window, GtkWidget *button, guint key);

// Return and the keypad's Enter press `button`, except when the focus is on another button, which
// they press then; a check or radio button does not count as one. Once a window.
void AddReturnAccelerator(GtkWidget *window, GtkWidget *button);

// The window shows which widget has the focus before a key has been pressed.
void ShowFocusAtOnce(GtkWidget *window);

// For its lifetime: a widget of `window` that loses the focus because it is insensitive for a while
// has it again at the end; `instead` (may be null) gets it when that widget stays insensitive.
class FocusKeeper {
 public:
  explicit FocusKeeper(GtkWidget *window, GtkWidget *instead = nullptr);
  ~FocusKeeper();
  FocusKeeper(const FocusKeeper &) = delete;
  FocusKeeper &operator=(const FocusKeeper &) = delete;

 private:
  GtkWidget *window_;
  GtkWidget *instead_;
  GtkWidget *focus_;  // referenced; null without one
};

// Closing `window` through its manager runs `handler` and leaves the rest to it.
void OnDeleteEvent(GtkWidget *window, void (*handler)());

// The width, in pixels, of the longest line of `text` in the widget's font.
[[nodiscard]] int TextWidth(GtkWidget *widget, const std::string &text);

// Gives the label room for that many lines, whatever it says and however large its font becomes.
void KeepRoomForLines(GtkWidget *label, int lines);

// The size, in pixels, in which a window opens: larger when its content, which is shown, wants more
// (`unwanted` of its width left out), but never larger than the screen.
void SetOpeningSize(GtkWidget *window, int width, int height, int unwanted = 0);

// What the first screen has for a window without its frame, in pixels.
GtkRequisition RoomOnScreen();

// Whether so many pixels side by side are more than that.
[[nodiscard]] bool IsTooWideForScreen(int width);

// Keeps a window that chooses its own size from becoming larger than that.
void KeepOnScreen(GtkWidget *window);

// Puts a dialog above the window that the user works in and keeps input to it.
void MakeModal(GtkWidget *dialog);

// Of several pasted or dropped lines `entry` takes the first.
void KeepOneLine(GtkWidget *entry);

// Throws away what was typed and clicked while the program was busy: it was not meant for the
// window that comes next. Everything else that waits from the X server is handled.
void DropInput();

// The style class of entries that nothing can be typed into: they show no text cursor.
inline constexpr char kNotEditableClass[] = "kpx-not-editable";

// The style class of buttons that open a menu: they have an arrow.
inline constexpr char kMenuButtonClass[] = "kpx-menu";

// Style settings that every window needs; once, after gtk_init.
void InstallStyle();

// Runs `action` when the window has been drawn and there is nothing else to do; not if that never
// comes.
void OnceDrawn(GtkWidget *window, void (*action)(GtkWidget *window));

// Gives all windows the programs' icon, those that are there and those to come, once `window` has
// been drawn: reading it in all its sizes takes a fifth of a start.
void SetIconOnceDrawn(GtkWidget *window);

// Frees one string of GLib (null is ignored).
void FreeString(char *string);

// FreeString for every element; the list's cells stay the caller's.
void G_FreeStringsFrom_g_list(GList *list);
