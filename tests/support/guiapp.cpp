#include "guiapp.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "deadline.h"
#include "xinput.h"

namespace {

// How long to watch for X events before looking again; only a bound, what happens ends it.
constexpr int kPauseMilliseconds = 10;

struct User {
  uid_t id = 0;
  gid_t group = 0;
  std::string home;
};

User UserNamed(const std::string &name) {
  if (name.empty()) return {getuid(), getgid(), ""};
  const passwd *entry = getpwnam(name.c_str());
  if (entry == nullptr) throw std::runtime_error("no user " + name);
  return {entry->pw_uid, entry->pw_gid, entry->pw_dir};
}

std::string NewDirectory() {
  std::string pattern = "/tmp/kpxgui.XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp");
  chmod(pattern.c_str(), 0755);
  return pattern;
}

// The other user may be unable to reach the build directory.
std::string CopyInto(const std::string &directory, const std::string &file) {
  const std::string copy = directory + "/" + std::filesystem::path(file).filename().string();
  std::filesystem::copy_file(file, copy);
  std::filesystem::permissions(copy, std::filesystem::perms{0755});
  return copy;
}

// Puts the module where GTK finds it without the program's environment, which the administration
// does not trust. Another program may be running with it, so the file is replaced, not written
// over. No animations: what is on the screen is then finished.
void InstallInspection() {
  static bool installed = false;
  if (installed) return;
  const std::string modules = std::string(KPX_LIBRARIES) + "/gtk-3.0/modules";
  std::filesystem::create_directories(modules);
  const std::string module = modules + "/libkpxinspect.so";
  std::filesystem::copy_file(KPX_INSPECT_MODULE, module + ".new",
                             std::filesystem::copy_options::overwrite_existing);
  std::filesystem::rename(module + ".new", module);
  std::filesystem::create_directories("/etc/gtk-3.0");
  std::ofstream("/etc/gtk-3.0/settings.ini")
      << "[Settings]\ngtk-modules=kpxinspect\ngtk-enable-animations=false\n";
  installed = true;
}

void SetVariable(std::vector<std::string> &environment, const std::string &setting) {
  const std::string name = setting.substr(0, setting.find('='));
  std::erase_if(environment, [&](const std::string &entry) {
    return entry.compare(0, name.size() + 1, name + "=") == 0;
  });
  if (setting.size() > name.size()) environment.push_back(setting);
}

std::vector<std::string> EnvironmentFor(const GuiAppOptions &options, const User &user,
                                        const std::string &directory) {
  std::vector<std::string> environment;
  for (char **entry = environ; *entry != nullptr; ++entry) environment.emplace_back(*entry);
  const std::string inner = directory + "/inner";
  SetVariable(environment, "KPX_INSPECT_SOCKET=" + inner + "/socket");
  SetVariable(environment, "XDG_CONFIG_HOME=" + directory + "/config");
  if (std::getenv("LSAN_OPTIONS") != nullptr) {
    SetVariable(environment, "LSAN_OPTIONS=print_suppressions=0:suppressions=" +
                                 CopyInto(directory, KPX_LEAK_SUPPRESSIONS));
  }
  if (!options.user.empty()) {
    SetVariable(environment, "HOME=" + user.home);
    SetVariable(environment, "USER=" + options.user);
    SetVariable(environment, "LOGNAME=" + options.user);
  }
  for (const std::string &setting : options.environment) SetVariable(environment, setting);
  return environment;
}

std::vector<char *> Pointers(std::vector<std::string> &texts) {
  std::vector<char *> pointers;
  for (std::string &text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// The reading end of a pipe in which all of `input` already waits.
int PipeWith(const std::string &input) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe");
  fcntl(ends[1], F_SETPIPE_SZ, std::max<int>(65536, static_cast<int>(input.size())));
  const ssize_t written = write(ends[1], input.data(), input.size());
  close(ends[1]);
  if (written != static_cast<ssize_t>(input.size())) throw std::runtime_error("input too long");
  return ends[0];
}

// In the child: becomes the program.
[[noreturn]] void Become(const std::string &program, const User &user, char **arguments,
                         char **environment) {
  if (user.id != getuid() &&
      (setgroups(0, nullptr) != 0 || setgid(user.group) != 0 || setuid(user.id) != 0)) {
    _exit(126);
  }
  execve(program.c_str(), arguments, environment);
  _exit(127);
}

std::vector<std::string> LinesOf(const std::string &text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

ScreenArea AreaFrom(const std::string &text) {
  ScreenArea area;
  std::istringstream(text) >> area.x >> area.y >> area.width >> area.height;
  return area;
}

// Added to the place of a click: so far apart, two clicks on one widget are no double click.
int ApartFromLast() {
  static int turn = 0;
  turn = (turn + 1) % 5;
  return 6 * turn - 12;
}

// The same picture gives the same file: no time is written into it.
void RunImport(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(),
                   {"import", "-silent", "-define", "png:exclude-chunks=date,time"});
  std::vector<char *> pointers = Pointers(arguments);
  const pid_t child = fork();
  if (child == 0) {
    execvp(pointers[0], pointers.data());
    _exit(127);
  }
  if (AwaitChild(child, "import") != 0) throw std::runtime_error("import failed");
}

}  // namespace

GuiApp::GuiApp(GuiAppOptions options) : directory_(NewDirectory()) { Start(options); }

GuiApp::~GuiApp() {
  if (!HasEnded()) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
}

void GuiApp::Start(const GuiAppOptions &options) {
  const User user = UserNamed(options.user);
  InstallInspection();
  std::vector<std::string> environment = EnvironmentFor(options, user, directory_);
  std::vector<std::string> arguments = options.arguments;
  arguments.insert(arguments.begin(),
                   options.program_name.empty() ? options.program : options.program_name);
  const std::string inner = directory_ + "/inner";
  std::filesystem::create_directory(inner);
  if (chown(inner.c_str(), user.id, user.group) != 0) throw std::runtime_error("chown");
  const Descriptor input(options.input ? PipeWith(*options.input)
                                       : open(options.input_path.c_str(), O_RDONLY | O_CLOEXEC));
  const Descriptor errors(
      open((directory_ + "/stderr").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  const std::vector<char *> argument_pointers = Pointers(arguments);
  const std::vector<char *> environment_pointers = Pointers(environment);

  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("fork");
  if (pid_ == 0) {
    // A run of the tests in the background or under nohup ignores some.
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) std::signal(signal, SIG_DFL);
    dup2(input.get(), STDIN_FILENO);
    dup2(errors.get(), STDERR_FILENO);
    Become(options.program, user, const_cast<char **>(argument_pointers.data()),
           const_cast<char **>(environment_pointers.data()));
  }
  process_ = Descriptor(static_cast<int>(syscall(SYS_pidfd_open, pid_, 0)));
}

bool GuiApp::HasEnded() {
  if (status_ >= 0) return true;
  int status = 0;
  if (waitpid(pid_, &status, WNOHANG) != pid_) return false;
  status_ = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return true;
}

bool GuiApp::Pause() {
  pollfd watched[] = {{process_.get(), POLLIN, 0}, {XInputDescriptor(), POLLIN, 0}};
  XInputDrain();
  poll(watched, 2, kPauseMilliseconds);
  return HasEnded();
}

bool GuiApp::Connect() {
  if (connection_) return true;
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  const std::string path = directory_ + "/inner/socket";
  std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
  Descriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (connect(connection.get(), reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) {
    return false;
  }
  connection_ = std::move(connection);
  return true;
}

std::optional<std::string> GuiApp::Ask(const std::string &request,
                                       const std::function<void()> &meanwhile) {
  const Deadline deadline(EventPatience());
  while (!Connect()) {
    if (Pause() || deadline.Left() == 0) Fail("the program shows no windows");
  }
  const std::string line = request + "\n";
  send(connection_.get(), line.data(), line.size(), MSG_NOSIGNAL);
  meanwhile();
  std::string answer;
  size_t expected = std::string::npos;
  while (answer.size() < expected) {
    char buffer[4096];
    const ssize_t count = HasEvents(connection_.get(), POLLIN, Deadline(EventPatience()))
                              ? read(connection_.get(), buffer, sizeof buffer)
                              : -1;
    if (count <= 0) Fail("no answer to \"" + request + "\"");
    answer.append(buffer, static_cast<size_t>(count));
    const size_t head = answer.find('\n');
    if (head == std::string::npos) continue;
    expected = head + 1 + std::stoul(answer.substr(answer.find(' ') + 1));
  }
  if (answer.compare(0, 3, "ok ") != 0) return std::nullopt;
  return answer.substr(answer.find('\n') + 1);
}

std::string GuiApp::Demand(const std::string &request) {
  const std::optional<std::string> answer = Ask(request);
  if (!answer) Fail("nothing to answer \"" + request + "\" with");
  return *answer;
}

void GuiApp::Fail(const std::string &what) {
  std::string text = what;
  if (HasEnded()) {
    text += "; the program ended with status " + std::to_string(status_);
  } else if (what.find("\"windows\"") == std::string::npos && connection_) {
    text += "; it shows";
    for (const std::string &window : Windows()) text += " " + window;
  }
  throw std::runtime_error(text + "; it wrote:\n" + Stderr());
}

void GuiApp::WaitUntil(const std::string &what, const std::function<bool()> &holds) {
  const Deadline deadline(EventPatience());
  while (!holds()) {
    if (Pause() || deadline.Left() == 0) Fail("waited in vain for " + what);
  }
}

void GuiApp::WaitWindow(const std::string &name) {
  WaitUntil("the window " + name, [&] {
    const std::vector<std::string> windows = Windows();
    return std::find(windows.begin(), windows.end(), name) != windows.end();
  });
  FocusForemost();
}

void GuiApp::WaitGone(const std::string &name) {
  WaitUntil(name + " to go", [&] {
    const std::vector<std::string> windows = Windows();
    return std::find(windows.begin(), windows.end(), name) == windows.end();
  });
}

int GuiApp::WaitExit() {
  const Deadline deadline(EventPatience());
  while (!HasEnded()) {
    HasEvents(process_.get(), POLLIN, deadline);
    if (!HasEnded() && deadline.Left() == 0) Fail("waited in vain for the program's end");
  }
  return status_;
}

// Without a window manager nobody else gives the foremost window the focus. With one, the frame of
// a window that has gone stays on the screen until the manager has taken notice.
void GuiApp::FocusForemost() {
  WaitUntil("the focus", [&] {
    const std::vector<std::string> windows = Windows();
    if (windows.empty()) return false;
    const std::optional<std::string> xid = Ask("xid " + windows.front());
    // A pop-up has grabbed all input.
    if (!xid) return true;
    const unsigned long window = std::stoul(*xid);
    const auto has_focus = [&] {
      return Focus().starts_with(windows.front() + "/") && !XInputFollowsPointer();
    };
    if (!has_focus()) XInputFocus(window);
    return has_focus() && XInputIsActive(window);
  });
}

void GuiApp::Click(const std::string &name) {
  WaitUntil("the widget " + name, [&] { return Ask("geometry " + name).has_value(); });
  FocusForemost();
  const ScreenArea area = Geometry(name);
  XInputClick(area.x + area.width / 2 + ApartFromLast(), area.y + area.height / 2);
}

void GuiApp::ClickRow(const std::string &list, int row, const std::string &keys) {
  ClickRowAt(list, row, 20 + ApartFromLast(), keys);
}

void GuiApp::ClickRowAt(const std::string &list, int row, int place, const std::string &keys) {
  const std::string request = "row " + list + " " + std::to_string(row);
  WaitUntil("row " + std::to_string(row) + " of " + list, [&] { return Ask(request).has_value(); });
  FocusForemost();
  const ScreenArea area = AreaFrom(Demand(request));
  if (!keys.empty()) XInputKey(keys, true);
  // Near the row's start: a cell is as wide as its column, which may reach out of the window.
  XInputClick(area.x + std::min(area.width / 2, place), area.y + area.height / 2);
  if (!keys.empty()) XInputKey(keys, false);
}

void GuiApp::DoubleClickRow(const std::string &list, int row) {
  ClickRowAt(list, row, 20, "");
  ClickRowAt(list, row, 20, "");
}

void GuiApp::Wheel(const std::string &name, int steps) {
  const ScreenArea area = Geometry(name);
  const int button = steps > 0 ? 5 : 4;
  for (int i = 0; i < std::abs(steps); ++i) {
    XInputClick(area.x + area.width / 2, area.y + area.height / 2, button);
  }
}

void GuiApp::Type(const std::string &text) {
  FocusForemost();
  XInputType(text);
}

void GuiApp::Key(const std::string &key) {
  FocusForemost();
  XInputChord(key);
}

void GuiApp::TabTo(const std::string &name) {
  constexpr int kMostWidgets = 40;
  for (int i = 0; i < kMostWidgets; ++i) {
    if (Focus().ends_with("/" + name)) return;
    Key("Tab");
  }
  Fail("the Tab key does not reach " + name);
}

void GuiApp::CloseWindow(const std::string &name) {
  XInputClose(std::stoul(Demand("xid " + name)));
}

void GuiApp::LoseDisplay(const std::string &window) {
  XInputDisconnect(std::stoul(Demand("xid " + window)));
}

bool GuiApp::HasWidget(const std::string &name) { return Ask("geometry " + name).has_value(); }

std::string GuiApp::Text(const std::string &name) { return Demand("text " + name); }

std::string GuiApp::NextText(const std::string &name, const std::function<void()> &action) {
  const std::string request = "now text " + name;
  const std::optional<std::string> answer = Ask(request, action);
  if (!answer) Fail("nothing to answer \"" + request + "\" with");
  return *answer;
}

bool GuiApp::IsButtonHeld() { return !Demand("held").empty(); }

bool GuiApp::IsSensitive(const std::string &name) { return Demand("sensitive " + name) == "1"; }

bool GuiApp::IsActive(const std::string &name) { return Demand("active " + name) == "1"; }

std::vector<std::string> GuiApp::Rows(const std::string &list) {
  return LinesOf(Demand("rows " + list));
}

int GuiApp::RowCount(const std::string &list) { return std::stoi(Demand("count " + list)); }

std::string GuiApp::RowTip(const std::string &list, int row) {
  return Demand("rowtip " + list + " " + std::to_string(row));
}

std::string GuiApp::Focus() { return Demand("focus"); }

ScreenArea GuiApp::FocusArea() { return AreaFrom(Demand("focusarea")); }

std::string GuiApp::FocusFault() {
  FocusForemost();
  WaitDrawn();  // a list scrolls to its cursor when it is drawn next
  return Demand("focusfault");
}

std::vector<std::string> GuiApp::Windows() {
  std::vector<std::string> names;
  for (const std::string &line : LinesOf(Demand("windows"))) {
    names.push_back(line.substr(0, line.find('\t')));
  }
  return names;
}

std::vector<std::string> GuiApp::ClippedTexts() {
  WaitDrawn();  // a window gives its widgets their room when it is drawn next
  return LinesOf(Demand("clipped"));
}

std::vector<std::string> GuiApp::AccessKeys() { return LinesOf(Demand("keys")); }
std::vector<std::string> GuiApp::UnnamedControls() { return LinesOf(Demand("unnamed")); }

std::vector<std::string> GuiApp::ShownTexts() { return LinesOf(Demand("texts")); }

ScreenArea GuiApp::Geometry(const std::string &name) {
  return AreaFrom(Demand("geometry " + name));
}

std::vector<SeenArea> GuiApp::SeenAreas() {
  std::vector<SeenArea> areas;
  for (const std::string &line : LinesOf(Demand("seen"))) {
    SeenArea seen{AreaFrom(line), "", ""};
    std::istringstream words(line);
    std::string number;
    words >> number >> number >> number >> number >> seen.state >> seen.widget;
    areas.push_back(seen);
  }
  return areas;
}

void GuiApp::WaitDrawn() { Demand("drawn"); }

std::string GuiApp::Stderr() const {
  std::ifstream file(directory_ + "/stderr", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

double GuiApp::ProcessorSeconds() const {
  std::ifstream file("/proc/" + std::to_string(pid_) + "/stat");
  std::string line;
  std::getline(file, line);
  // Behind the name, which may hold anything: the state, ten numbers, then user and system time.
  std::istringstream fields(line.substr(line.rfind(')') + 1));
  std::string skipped;
  for (int i = 0; i < 11; ++i) fields >> skipped;
  double user = 0;
  double system = 0;
  if (!(fields >> user >> system)) throw std::runtime_error("no times in " + line);
  return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

GuiApp::Turn GuiApp::LongestTurn() {
  std::istringstream words(Demand("turn"));
  Turn turn;
  words >> turn.passed >> turn.worked;
  return turn;
}

void Screenshot(const std::string &path) { RunImport({"-window", "root", path}); }

void Screenshot(const std::string &path, const ScreenArea &area) {
  RunImport({"-window", "root", "-crop",
             std::to_string(area.width) + "x" + std::to_string(area.height) + "+" +
                 std::to_string(area.x) + "+" + std::to_string(area.y),
             "+repage", path});
}

void Screenshot(GuiApp &app, const std::string &path) {
  constexpr int kFrame = 28;
  app.WaitDrawn();
  int left = 1 << 20;
  int top = 1 << 20;
  int right = 0;
  int bottom = 0;
  for (const std::string &window : app.Windows()) {
    const ScreenArea area = app.Geometry(window);
    left = std::max(0, std::min(left, area.x - kFrame));
    top = std::max(0, std::min(top, area.y - kFrame));
    right = std::max(right, area.x + area.width + kFrame);
    bottom = std::max(bottom, area.y + area.height + kFrame);
  }
  Screenshot(path, {left, top, right - left, bottom - top});
}
