#include "printerjobs.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "deadline.h"
#include "spooler.h"
#include "temporarydirectory.h"

namespace {

constexpr char kEnterPostScript[] = "@PJL ENTER LANGUAGE=POSTSCRIPT";
constexpr char kUniversalExit[] = "\x1B%-12345X";

// What a command prints on both streams; throws when it fails.
std::string OutputOf(const std::string &command) {
  const CommandResult result = RunProgram({"/bin/sh", "-c", command});
  if (result.status != 0) throw std::runtime_error(command + " failed: " + result.output);
  return result.output;
}

std::string SpoolerLog() {
  const std::string log = ContentOf("/var/log/cups/error_log");
  return log.substr(log.size() - std::min<size_t>(log.size(), 8000));
}

}  // namespace

PrinterJobs::PrinterJobs(const char *directory) : watch_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
  if (directory == nullptr) throw std::runtime_error("no printer stand-in: run in the sandbox");
  directory_ = directory;
  inotify_add_watch(watch_.get(), directory, IN_MOVED_TO);
  while (HasMore()) ++next_;
}

std::string PrinterJobs::PathOf(int number) const {
  char name[32];
  std::snprintf(name, sizeof name, "/job-%04d.prn", number);
  return directory_ + name;
}

bool PrinterJobs::HasMore() const { return std::filesystem::exists(PathOf(next_)); }

std::string PrinterJobs::Next() {
  while (!HasMore()) {
    if (!HasEvents(watch_.get(), POLLIN, Deadline(EventPatience()))) {
      throw std::runtime_error("no job came to the printer; the spooler says:\n" + SpoolerLog());
    }
    char events[4096];
    while (read(watch_.get(), events, sizeof events) > 0) {
    }
  }
  return ContentOf(PathOf(next_++));
}

std::vector<std::string> PostScriptOf(const std::string &job) {
  std::vector<std::string> programs;
  size_t start = 0;
  while ((start = job.find(kEnterPostScript, start)) != std::string::npos) {
    start = job.find('\n', start) + 1;
    const size_t end = std::min(job.find(kUniversalExit, start), job.size());
    programs.push_back(job.substr(start, end - start));
    start = end;
  }
  return programs;
}

int PagesOf(const std::string &postscript) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("job.ps", postscript);
  // One line a page, which ends in "OK".
  return CountOf(OutputOf("gs -q -dSAFER -o - -sDEVICE=inkcov " + path), "OK\n");
}

void MakePostScriptFile(const std::string &path, int pages) {
  OutputOf("gs -q -dSAFER -sDEVICE=ps2write -sPAPERSIZE=a4 -o " + path +
           " -c '/Helvetica 72 selectfont 1 1 " + std::to_string(pages) +
           " { 72 600 moveto (Page ) show 10 string cvs show showpage } for'");
}

int CountOf(const std::string &text, const std::string &part) {
  int count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
    ++count;
  return count;
}
