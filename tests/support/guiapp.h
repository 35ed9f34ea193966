// Drives a program of the project through its windows, as a user does: it is started as it ships,
// clicks and keys come from the X server at the places where the widgets are, and a module that GTK
// loads into it tells what the windows show (inspect.cpp).
//
// Whatever is waited for has a deadline; a wait that ends without it, and a widget that is not
// there, throw std::runtime_error, whose words tell what the program showed and wrote instead.
#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "descriptor.h"

using kpx::transport::Descriptor;

struct GuiAppOptions {
  std::string program = "/usr/bin/KPXtool";
  std::vector<std::string> arguments = {};
  std::vector<std::string> environment = {};  // "NAME=VALUE"; "NAME" alone takes NAME away
  std::optional<std::string> input = {};      // waits in a pipe at standard input
  std::string input_path = "/dev/null";       // opened as standard input when there is no `input`
  std::string user = "";                      // empty: the user of the test
  std::string program_name = "";              // argv[0]; empty: `program`
};

struct ScreenArea {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

struct SeenArea {
  ScreenArea area;
  std::string state;   // "text", "dead" when it is insensitive, "chosen" when selected; "picture"
  std::string widget;  // "<window>/<widget>"
};

class GuiApp {
 public:
  explicit GuiApp(GuiAppOptions options = {});
  // Ends the program when it still runs.
  ~GuiApp();
  GuiApp(const GuiApp &) = delete;
  GuiApp &operator=(const GuiApp &) = delete;

  pid_t pid() const { return pid_; }

  // Until the window is shown (and has the input focus), or is gone.
  void WaitWindow(const std::string &name);
  void WaitGone(const std::string &name);
  // Until `holds`; `what` names it in the message.
  void WaitUntil(const std::string &what, const std::function<bool()> &holds);
  // Until the program ends: its exit status, 128 plus the signal's number when a signal ended it.
  int WaitExit();

  // The left button at the middle of a widget or a list row; `keys` are held down ("ctrl",
  // "shift"). Two of these are never a double click, however fast they follow each other.
  void Click(const std::string &name);
  void ClickRow(const std::string &list, int row, const std::string &keys = "");
  void DoubleClickRow(const std::string &list, int row);
  // Turns the wheel down (or up when negative) `steps` notches over a widget.
  void Wheel(const std::string &name, int steps);
  // Types UTF-8 text, or one key with its modifiers ("Return", "ctrl+a"), into what has the focus.
  void Type(const std::string &text);
  void Key(const std::string &key);
  // Moves the focus with the Tab key to the widget; throws when that goes round past it.
  void TabTo(const std::string &name);
  // What a window manager sends when its close button is pressed.
  void CloseWindow(const std::string &name);
  // Ends the program's connection to the X server, as the end of a session does.
  void LoseDisplay(const std::string &window);

  bool HasWidget(const std::string &name);
  std::string Text(const std::string &name);
  // The text that a program which is busy shows next: it is asked for before `action` lets the
  // program go on, and told before the program draws.
  std::string NextText(const std::string &name, const std::function<void()> &action);
  // Whether a button that a key has pressed is not clicked yet.
  bool IsButtonHeld();
  bool IsSensitive(const std::string &name);
  bool IsActive(const std::string &name);
  // Lines of cells with tabs between; the first character is "*" for a selected row, else "-".
  std::vector<std::string> Rows(const std::string &list);
  // Their number alone, which costs nothing however many there are.
  int RowCount(const std::string &list);
  // Of a row as the list shows it, from 0; empty without one.
  std::string RowTip(const std::string &list, int row);
  // "<window>/<widget>" of the focus.
  std::string Focus();
  // Where it is seen: all of the widget, of a list the cursor's row.
  ScreenArea FocusArea();
  // What keeps a user from seeing where it is, in words; empty when nothing does.
  std::string FocusFault();
  // Names of the windows shown, the foremost first.
  std::vector<std::string> Windows();
  // Every text in the windows, their lists and tooltips, line by line, "<window>/<widget> TAB
  // <text>"; without those of the toolkit's own file chooser.
  std::vector<std::string> ShownTexts();
  // The texts that are not shown whole or are covered, "<window>/<widget> TAB <text>".
  std::vector<std::string> ClippedTexts();
  // The access keys of the foremost window, "<window>/<widget> TAB <text> TAB <letter>"; "-"
  // without one, "*" for a button that another key presses.
  std::vector<std::string> AccessKeys();
  // The controls, lists, pictures and windows without a name for assistive technology,
  // "<window>/<widget> TAB <role>"; without those of the toolkit's own file chooser.
  std::vector<std::string> UnnamedControls();
  ScreenArea Geometry(const std::string &name);
  // Every text and picture that is seen in the foremost window, and where.
  std::vector<SeenArea> SeenAreas();

  // Until the screen shows all windows as they are now; before a screenshot.
  void WaitDrawn();

  // What the program has written to standard error so far.
  std::string Stderr() const;
  // The processor time that the program has used, in seconds; the system counts in hundredths.
  double ProcessorSeconds() const;
  // The longest turn of its main loop since this was last asked, in milliseconds: by the clock, and
  // by the processor time of its thread.
  struct Turn {
    int passed = 0;
    int worked = 0;
  };
  Turn LongestTurn();

 private:
  std::optional<std::string> Ask(
      const std::string &request, const std::function<void()> &meanwhile = [] {});
  std::string Demand(const std::string &request);
  void Start(const GuiAppOptions &options);
  bool Connect();
  void ClickRowAt(const std::string &list, int row, int place, const std::string &keys);
  bool HasEnded();
  // True when the program has ended within the pause.
  bool Pause();
  void FocusForemost();
  [[noreturn]] void Fail(const std::string &what);

  pid_t pid_ = -1;
  int status_ = -1;
  Descriptor process_;
  Descriptor connection_;
  std::string directory_;
};

// A picture of the whole screen, or of a part of it, as PNG.
void Screenshot(const std::string &path);
void Screenshot(const std::string &path, const ScreenArea &area);
// Of all windows of a program with their frames, as soon as they are drawn.
void Screenshot(GuiApp &app, const std::string &path);
