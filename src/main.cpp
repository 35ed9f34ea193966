// Start-up and shut-down of the one executable behind KPXadmin, KPXtool and KPXjobs.

#include <X11/Xlib.h>
#include <fcntl.h>
#include <glib-unix.h>
#include <gtk/gtk.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "AdminWindow.h"
#include "AdminWindowFct.h"
#include "JobsWindow.h"
#include "JobsWindowFct.h"
#include "MessageDialogs.h"
#include "ModuleGuard.h"
#include "Pixmaps.h"
#include "QueueBar.h"
#include "ReadyAhead.h"
#include "Support.h"
#include "ToolWindow.h"
#include "ToolWindowFct.h"
#include "chelp.h"
#include "cmessages.h"
#include "cprintqueues.h"
#include "debug.h"
#include "endprogram.h"
#include "filelist.h"
#include "fontmap.h"
#include "foundqueues.h"
#include "globals.h"
#include "ignoreresult.h"
#include "language.h"
#include "loadprinters.h"
#include "loadqueues.h"
#include "paths.h"
#include "printcommand.h"
#include "printsettings.h"
#include "queuelistkeep.h"
#include "startarguments.h"
#include "stdindata.h"
#include "textencoding.h"
#include "utils.h"

namespace {

constexpr char L_VerboseSwitch[] = "-verbose";
constexpr int L_WrongCall = 2;  // exit status

// The first file opened gets the lowest free descriptor: without this the connection to the X
// server could become standard error, and every message would break it.
void OpenStandardStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) == -1) open("/dev/null", O_RDWR);
  }
}

int ModeFromProgramName(const char *path) {
  const char *slash = std::strrchr(path, '/');
  const char *name = slash == nullptr ? path : slash + 1;
  if (std::strcmp(name, "KPXadmin") == 0) return kModeAdministration;
  if (std::strcmp(name, "KPXtool") == 0) return kModePrintTool;
  if (std::strcmp(name, "KPXjobs") == 0) return kModeJobs;
  return kModeNeither;
}

void PrintUsage(const char *program) {
  std::fprintf(stderr, "Usage: %s -verbose <n>\n", program);
  std::fprintf(stderr, "\n");
  std::fflush(stderr);
}

// A rule of the site may let a user start the administration through pkexec and nothing else as
// root, so nothing that this user says besides reaches the toolkit.
bool IsRefusedByPkexec(int argc, char **argv) {
  if (G_ProgName != kModeAdministration || std::getenv("PKEXEC_UID") == nullptr) return false;
  return argc != 1 && (argc != 3 || std::strcmp(argv[1], L_VerboseSwitch) != 0);
}

// Sets the log level; false when only the usage was wanted.
bool ReadVerboseSwitch(int argc, char **argv) {
  if (argc < 2 || std::strcmp(argv[1], L_VerboseSwitch) != 0) return true;
  if (argc == 2) {
    PrintUsage(argv[0]);
    return false;
  }
  // As atoi reads it, but defined for numbers out of range too.
  G_DebugLevel = static_cast<int>(std::strtol(argv[2], nullptr, 10));
  return true;
}

void LoadMessages() {
  lng_dir = G_GetNlsDirFromLang();
  BuildMessagesPath();
  Log(1, "Create the CMessages structure");
  G_Messages = CreateMessages(msg_path.c_str());
  fFillFromPaf_Function(G_Messages.get());
}

// What the print tool was called with.
StartArguments L_Arguments;

// The words behind the program's name and "-verbose N".
std::vector<std::string> WordsOfCall(int argc, char **argv) {
  const bool verbose = argc > 2 && std::strcmp(argv[1], L_VerboseSwitch) == 0;
  return {argv + std::min(argc, verbose ? 3 : 1), argv + argc};
}

// What neither the toolkit nor the program takes of the arguments.
void TellOfArguments(int argc, char **argv) {
  std::vector<std::string> others = WordsOfCall(argc, argv);
  if (G_ProgName == kModePrintTool) {
    L_Arguments = ReadStartArguments(others);
    others = L_Arguments.others;
  }
  for (const std::string &word : others) PrintErrorLine(G_Message("WARN_ARGUMENT", {word}));
}

// Whether nothing has chosen the print tool's queue: it is the first one because one has to be.
bool L_QueueIsOpen = false;

// The queue of the environment, which lp would print on, else the user's last one, if it is ours.
[[nodiscard]] bool ShowUsualQueue() {
  for (const char *name : {"LPDEST", "PRINTER"}) {
    const char *queue = std::getenv(name);
    if (queue != nullptr && ShowQueue(queue)) return true;
  }
  const std::string last = LastQueue();
  return !last.empty() && ShowQueue(last);
}

void ShowDefaultQueue(const std::string &queue) {
  IgnoreResult(ShowQueue(queue), "the default need not be one of ours");
}

void TakeArguments() {
  if (L_Arguments.queue.empty()) {
    L_QueueIsOpen = !ShowUsualQueue();
  } else if (!ShowQueue(L_Arguments.queue)) {
    PrintErrorLine(G_Message("WARN_NO_SUCH_QUEUE", {L_Arguments.queue}));
  }
  for (const std::string &path : L_Arguments.files) {
    AddChosenPath(IsDirectory(path) && !path.ends_with('/') ? path + "/" : path);
  }
}

// Answers "--help" and "--version" without a display; the program then ends.
bool HasAnswered(int argc, char **argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (words.size() != 1 || (words[0] != "--help" && words[0] != "--version")) return false;
  std::setlocale(LC_ALL, "");
  LoadMessages();
  const std::string program = argv[0];
  return AnswerQuestion(words, program.substr(program.rfind('/') + 1));
}

// Administration is the superuser's alone.
void RefuseOtherAdministrators() {
  const char *name = GetUserName(nullptr);
  const std::string user = name == nullptr ? "" : name;
  if (G_ProgName != kModeAdministration || user == "root") return;
  PrintErrorLine(G_Translate("MSG2"));
  G_Messages.reset();
  EndProgram(3);
}

// A second administrator's program says so and ends.
void RefuseSecondAdministrator() {
  if (G_ProgName != kModeAdministration || LockQueueList(kQueuesFile) == 1) return;
  AwaitFont();
  GtkWidget *window = create_ErrorWindow(nullptr, G_Translate("ERR_ADMIN_RUNNING"));
  CallNote(window);
  PrintErrorLine(G_Translate("ERR_ADMIN_RUNNING"));
  g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);
  SetIconOnceDrawn(window);
  gtk_widget_show(window);
  gtk_main();
  EndProgram(1);
}

void LoadHelp() {
  BuildHelpPath();
  Log(1, "Create the CHelp structure");
  G_Help = CreateHelp(hlp_path.c_str());
  fFillFromHelp_Function(G_Help.get());
}

// What is wrong with the queues is added to `messages`.
void LoadQueueCollections(CList *messages) {
  BuildQueuesPath();
  Log(1, "Create the CPrintQueues structure");
  G_Queues = CreatePrintQueues(queues_path.c_str());
  LoadQueuesAtStart(messages);
  // After the snapshot, which holds the administrator's values.
  if (G_ProgName == kModePrintTool) fFillAllFromDef_Function(G_Queues.get());
}

// The data that stands at standard input becomes the first file to print.
void TakeStandardInput() {
  std::string name;
  std::string error;
  if (GetStdinData(&name, &error) == 0) {
    PrintErrorLine(error);
    RemoveUnfinishedCapture();
    EndProgram(1);
  }
  if (name.empty()) return;
  AddFileRow(name, G_Translate("MSG3"));
  G_StdinFileName = name;
}

GtkWidget *CreateMainWindow() {
  // The print tool's window waits by itself, later: it first makes what has no texts.
  if (G_ProgName != kModePrintTool) AwaitFont();
  if (G_ProgName == kModeAdministration) return create_AdminWindow();
  if (G_ProgName == kModePrintTool) {
    GtkWidget *window = create_ToolWindow();
    TakeStandardInput();
    TakeArguments();
    return window;
  }
  if (G_ProgName == kModeJobs) return create_JobsWindow();
  return nullptr;
}

// A terminating signal ends the program as its Cancel button does, so that nothing is left behind.
gboolean CancelOnSignal(gpointer) {
  if (G_ProgName == kModeAdministration) {
    ButtonCancelPressed();
  } else if (G_ProgName == kModeJobs) {
    ButtonCloseJobsPressed();
  } else {
    ButtonCancelToolPressed();
  }
  return G_SOURCE_CONTINUE;
}

gboolean TidyOnce(gpointer) {
  if (G_QueuesWindow_helper != nullptr) {
    WatchChosenQueue(lookup_widget(G_QueuesWindow_helper->window, "DataToolVbox"), ChosenQueue,
                     L_QueueIsOpen ? ShowDefaultQueue : nullptr);
  }
  TidyUsersFiles();
  RemoveLeftCaptures();
  return G_SOURCE_REMOVE;
}

XIOErrorHandler L_ToolkitErrorHandler = nullptr;

// The session has ended with the window open: the toolkit ends the program at once.
int EndWithoutDisplay(Display *display) {
  RemoveCapturedFile();
  return L_ToolkitErrorHandler(display);
}

// Everything up to the main window; null when the program's name is none of the three.
GtkWidget *StartUp(CList *messages) {
  if (G_ProgName == kModeJobs) {
    LoadHelp();
    return CreateMainWindow();
  }
  // Its answer comes while the texts and printers are read.
  if (G_ProgName == kModeAdministration) AskSpooler();
  G_Fonts_hash = ParseFontmap();
  LoadHelp();
  Log(1, "Set the pixmaps dir");
  add_pixmap_directory(kPixmapDir);
  LoadPrinters(messages);
  LoadQueueCollections(messages);
  return CreateMainWindow();
}

// Nothing here is drawn with OpenGL. Left to itself, the first GTK program on a display loads the
// OpenGL drivers to rate the display's visuals, which costs as much time as all else up to the
// window. The user's own setting is kept, but not as root: drivers are code that the environment
// can name. The commands started from here draw nothing.
void InitialiseGtk(int *argc, char ***argv) {
  const bool administration = G_ProgName == kModeAdministration;
  if (administration) GuardModules(argc, *argv);
  g_setenv("GDK_GL", "disable", administration ? TRUE : FALSE);
  gtk_init(argc, argv);
}

int Run(int argc, char **argv) {
  const LogScope log("main");
  std::setlocale(LC_ALL, "");
  InitialiseGtk(&argc, &argv);
  L_ToolkitErrorHandler = XSetIOErrorHandler(EndWithoutDisplay);
  BeginReadyAhead();
  InstallStyle();
  LoadFontAhead();
  LoadMessages();
  TellOfArguments(argc, argv);
  RefuseOtherAdministrators();
  RefuseSecondAdministrator();
  const Owned<CList> messages = CreateList();
  GtkWidget *window = StartUp(messages.get());
  if (window == nullptr) return 1;
  SetIconOnceDrawn(window);
  gtk_widget_show(window);
  if (fIsEmpty_CList_Function(messages.get()) == 0) {
    GtkWidget *list = create_ErrorWarningWindow(messages.get(), kReturn);
    if (AreNotes(messages.get())) CallNote(list);
    gtk_widget_show(list);
  }
  // Once the window is there: the spooler may take its time.
  if (G_ProgName == kModePrintTool) g_idle_add(TidyOnce, nullptr);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    g_unix_signal_add(signal, CancelOnSignal, nullptr);
  }
  gtk_main();
  DeleteGlobalVars();
  return 0;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc == 0 || argv[0] == nullptr) return 0;
  OpenStandardStreams();
  // The log ends with main; what the globals' own destruction would write is not part of it.
  std::atexit([] { G_DebugLevel = 0; });
  std::atexit(RemoveCapturedFile);
  InstallAllocationHandler();
  G_ProgName = ModeFromProgramName(argv[0]);
  if (!ReadVerboseSwitch(argc, argv)) return 0;
  if (IsRefusedByPkexec(argc, argv)) {
    PrintUsage(argv[0]);
    return L_WrongCall;
  }
  if (G_ProgName != kModeNeither && HasAnswered(argc, argv)) return 0;
  return Run(argc, argv);
}
