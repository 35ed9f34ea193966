// The diagnostics log on standard error; silent unless the program was started with "-verbose <n>".
#pragma once

#include <source_location>
#include <string>

#ifndef __cpp_lib_source_location
// Clang before version 16 lacks what libstdc++ builds the standard class on.
#include <experimental/source_location>
using SourceLocation = std::experimental::source_location;
#else
using SourceLocation = std::source_location;
#endif

// 0 = no output at all; 1 start-up milestones ... 4 everything. A negative level prints nothing.
extern int G_DebugLevel;

// Scratch for a message; whoever logs may overwrite it. No text object, because records log until
// the very end of the process.
extern char debug_mess[1024];

// Writes `message` (UTF-8, to standard error in the locale's character set) when G_DebugLevel is at
// least `level` (clamped to 1..4): the message alone, or, when KPXDEBUG is "TRUE", file and line
// before it, "<file>[<line>]: <message>", indented by the nesting of BEGIN and END messages. The
// form is decided on the first call that is not silent.
void debugout(const char *file, int line, int level, const char *message);

// The same with the caller's own place.
inline void Log(int level, const std::string &message,
                const SourceLocation place = SourceLocation::current()) {
  if (G_DebugLevel != 0) {
    debugout(place.file_name(), static_cast<int>(place.line()), level, message.c_str());
  }
}

// Logs "BEGIN <name>() function" when made and "END   <name>() function" when it goes, at level 4.
// `name` must outlive the guard. While the log is silent both ends cost one test.
class LogScope {
 public:
  explicit LogScope(const char *name, const SourceLocation place = SourceLocation::current())
      : name_(name), place_(place) {
    if (G_DebugLevel != 0) Write("BEGIN ");
  }
  ~LogScope() {
    if (G_DebugLevel != 0) Write("END   ");
  }
  LogScope(const LogScope &) = delete;
  LogScope &operator=(const LogScope &) = delete;

 private:
  void Write(const char *word) const;

  const char *name_;
  SourceLocation place_;
};

// "%p" of an address, for log lines.
std::string PointerText(const void *pointer);
