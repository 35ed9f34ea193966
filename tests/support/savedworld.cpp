#include "savedworld.h"

#include <cups/cups.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "paths.h"
#include "spooler.h"

namespace fs = std::filesystem;

namespace {

constexpr char kSpool[] = "/usr/spool/lp/admins/lp";
constexpr char kInterfaceFile[] = "interfaces/";
constexpr char kPrinterFile[] = "printers/";

const std::vector<std::string> kSchedulerPlaces = {"/etc/cups", "/var/spool/cups",
                                                   "/var/cache/cups"};

void Must(bool done, const std::string &what) {
  if (!done) throw std::runtime_error(what + ": errno " + std::to_string(errno));
}

// What is the installation's own, or a lock, which lasts.
bool IsLeftOut(const fs::path &path) {
  return path == std::string(kDataDir) + "/nls" || path == std::string(kSpool) + "/lock" ||
         path.extension() == ".lock";
}

DiskState::Entry EntryAt(const std::string &path) {
  struct stat status = {};
  Must(lstat(path.c_str(), &status) == 0, path);
  DiskState::Entry entry{status.st_mode, status.st_uid, status.st_gid, {}};
  if (S_ISREG(status.st_mode)) entry.content = ContentOf(path);
  if (S_ISLNK(status.st_mode)) entry.content = fs::read_symlink(path);
  return entry;
}

void TakeBelow(const std::string &directory, DiskState &state) {
  state.entries[directory] = EntryAt(directory);
  for (const auto &found : fs::directory_iterator(directory)) {
    if (IsLeftOut(found.path())) continue;
    if (found.is_directory() && !found.is_symlink()) {
      TakeBelow(found.path(), state);
    } else {
      state.entries[found.path()] = EntryAt(found.path());
    }
  }
}

void PutEntry(const std::string &path, const DiskState::Entry &entry) {
  if (S_ISDIR(entry.mode)) {
    fs::create_directory(path);
  } else if (S_ISLNK(entry.mode)) {
    fs::create_symlink(entry.content, path);
    return;
  } else if (S_ISREG(entry.mode)) {
    std::ofstream(path, std::ios::binary) << entry.content;
  } else {
    return;  // a server makes its sockets itself
  }
  Must(chown(path.c_str(), entry.user, entry.group) == 0, path);
  Must(chmod(path.c_str(), entry.mode & 07777) == 0, path);
}

std::string Octal(mode_t mode) {
  std::ostringstream text;
  text << std::oct << mode;
  return text.str();
}

std::string ValueOf(const DiskState::Entry &entry) {
  return Octal(entry.mode) + " " + std::to_string(entry.user) + ":" + std::to_string(entry.group) +
         "\n" + entry.content;
}

// The list's text by queue; what stands before the first one is the list's own.
void PutList(const DiskState::Entry &entry, World &world) {
  world[""]["list's file"] = ValueOf({entry.mode, entry.user, entry.group, {}});
  std::istringstream lines(entry.content);
  std::string line;
  std::string block;
  std::string name;
  bool is_name = false;
  while (std::getline(lines, line)) {
    if (line == "#queue") {
      world[""]["list's start"] += block;
      block.clear();
    }
    block += line + "\n";
    if (is_name) name = line;
    is_name = line == "#name_queue";
    if (line != "#end_queue") continue;
    world[name]["list"] += block;
    block.clear();
  }
  world[""]["list's end"] = block;
}

// The queue whose file it is, and what it is of that queue; "" for none.
std::pair<std::string, std::string> QueueOfFile(const std::string &path) {
  constexpr std::string_view kExtension = ".def";
  const std::string data = std::string(kDataDir) + "/";
  const std::string users = std::string(kUsersDir) + "/";
  const std::string spool = std::string(kSpool) + "/";
  const auto rest = [&](const std::string &start) { return path.substr(start.size()); };
  const auto is_name = [](const std::string &name) {
    return !name.empty() && name.find_first_of("./:") == std::string::npos;
  };
  const auto without_extension = [&](const std::string &name) {
    return name.ends_with(kExtension) ? name.substr(0, name.size() - kExtension.size()) : "";
  };
  std::string name;
  std::string thing;
  if (path.starts_with(users)) {
    const std::string file = without_extension(rest(users));
    name = file.substr(std::min(file.find(':') + 1, file.size()));
    thing = rest(users);
  } else if (path.starts_with(data)) {
    name = without_extension(rest(data));
    thing = "options";
  } else if (path.starts_with(spool + kInterfaceFile)) {
    name = rest(spool + kInterfaceFile);
    thing = "script";
  } else if (path.starts_with(spool + kPrinterFile)) {
    name = rest(spool + kPrinterFile);
    thing = "entry";
  }
  return is_name(name) ? std::pair(name, thing) : std::pair(std::string(), path);
}

// The first line in which `text` is not like `other`, as it stands in messages.
std::string DifferentLine(const std::string &text, const std::string &other) {
  size_t start = 0;
  while (start < text.size()) {
    const size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
    if (text.compare(0, end, other, 0, end) != 0) {
      return "\"" + text.substr(start, end - start - (text[end - 1] == '\n' ? 1 : 0)) + "\"";
    }
    start = end;
  }
  return "the end";
}

struct IppDeleter {
  void operator()(ipp_t *message) const { ippDelete(message); }
};
using Ipp = std::unique_ptr<ipp_t, IppDeleter>;

Ipp QueuesOfCups() {
  static const char *const attributes[] = {"printer-name",
                                           "device-uri",
                                           "printer-state",
                                           "printer-is-accepting-jobs",
                                           "printer-state-message",
                                           "printer-error-policy",
                                           "job-cancel-after-default"};
  ipp_t *request = ippNewRequest(IPP_OP_CUPS_GET_PRINTERS);
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes",
                std::size(attributes), nullptr, attributes);
  const std::unique_ptr<http_t, decltype(&httpClose)> http(
      httpConnect2("/run/cups/cups.sock", 0, nullptr, AF_UNSPEC, HTTP_ENCRYPTION_IF_REQUESTED, 1,
                   30000, nullptr),
      httpClose);
  Must(http != nullptr, "no connection to the scheduler");
  return Ipp(cupsDoRequest(http.get(), request, "/"));
}

}  // namespace

const std::vector<std::string> &SavePlaces() {
  static const std::vector<std::string> places = {kDataDir, kSpool};
  return places;
}

DiskState TakeDisk(const std::vector<std::string> &places) {
  DiskState state;
  for (const std::string &place : places) TakeBelow(place, state);
  return state;
}

void PutDisk(const DiskState &state, const std::vector<std::string> &places) {
  const DiskState now = TakeDisk(places);
  // The longest paths first: a directory is empty by its turn.
  for (auto found = now.entries.rbegin(); found != now.entries.rend(); ++found) {
    const auto old = state.entries.find(found->first);
    const bool stays =
        old != state.entries.end() && (old->second == found->second ||
                                       (S_ISDIR(old->second.mode) && S_ISDIR(found->second.mode)));
    if (!stays) fs::remove(found->first);
  }
  for (const auto &[path, entry] : state.entries) {
    const auto found = now.entries.find(path);
    if (found == now.entries.end() || !(found->second == entry)) PutEntry(path, entry);
  }
}

World CupsWorld() {
  const Ipp answer = QueuesOfCups();
  World world;
  std::string name;
  QueueThings things;
  const auto finish = [&] {
    if (!name.empty()) world[name] = things;
    name.clear();
    things.clear();
  };
  for (ipp_attribute_t *attribute = ippFirstAttribute(answer.get()); attribute != nullptr;
       attribute = ippNextAttribute(answer.get())) {
    if (ippGetGroupTag(attribute) != IPP_TAG_PRINTER) {
      finish();
      continue;
    }
    char value[1024] = "";
    ippAttributeString(attribute, value, sizeof value);
    const std::string key = ippGetName(attribute);
    if (key == "printer-name") name = value;
    if (key != "printer-name") things["cups " + key] = value;
  }
  finish();
  return world;
}

World WorldOf(const DiskState &disk, const World &in_cups) {
  World world = in_cups;
  for (const auto &[path, entry] : disk.entries) {
    if (path == kQueuesFile) {
      PutList(entry, world);
      continue;
    }
    const auto [queue, thing] = QueueOfFile(path);
    world[queue][thing] = ValueOf(entry);
  }
  return world;
}

World TakeWorld() { return WorldOf(TakeDisk(SavePlaces()), CupsWorld()); }

std::string Differences(const World &got, const World &expected) {
  std::string lines;
  const auto value = [](const World &world, const std::string &queue,
                        const std::string &thing) -> const std::string * {
    const auto things = world.find(queue);
    if (things == world.end()) return nullptr;
    const auto found = things->second.find(thing);
    return found == things->second.end() ? nullptr : &found->second;
  };
  World both = expected;
  for (const auto &[queue, things] : got) both[queue].insert(things.begin(), things.end());
  for (const auto &[queue, things] : both) {
    for (const auto &[thing, ignored] : things) {
      const std::string *is = value(got, queue, thing);
      const std::string *should_be = value(expected, queue, thing);
      if (is != nullptr && should_be != nullptr && *is == *should_be) continue;
      const std::string none;
      lines += queue;
      lines += " ";
      lines += thing;
      lines += ": ";
      lines +=
          is == nullptr ? "missing" : DifferentLine(*is, should_be == nullptr ? none : *should_be);
      lines += should_be == nullptr
                   ? " should be missing"
                   : " instead of " + DifferentLine(*should_be, is == nullptr ? none : *is);
      lines += "\n";
    }
  }
  return lines;
}

void KillScheduler() {
  int pid = 0;
  std::ifstream("/run/cups/cupsd.pid") >> pid;
  Must(pid > 1, "no scheduler");
  const int handle = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
  Must(handle >= 0, "no scheduler");
  kill(pid, SIGKILL);
  pollfd ended = {handle, POLLIN, 0};
  poll(&ended, 1, 30000);
  close(handle);
}

void StartScheduler() {
  Must(std::system("\"$KPX_CUPSD\" >/dev/null 2>&1 </dev/null") == 0, "cupsd did not start");
}

SchedulerState SchedulerState::Taken() {
  const NoScheduler down;
  SchedulerState state;
  state.disk_ = TakeDisk(kSchedulerPlaces);
  return state;
}

void SchedulerState::PutBack() const {
  KillScheduler();
  PutDisk(disk_, kSchedulerPlaces);
  StartScheduler();
}
