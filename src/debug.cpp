#include "debug.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "textencoding.h"

int G_DebugLevel = 0;
char debug_mess[1024];

namespace {

int is_debug = -1;  // -1 not yet decided, 1 traced form, 0 terse form
int indentation = 0;

bool StartsWith(const char *text, const char *prefix) {
  return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

}  // namespace

void debugout(const char *file, int line, int level, const char *message) {
  if (G_DebugLevel == 0) return;
  if (is_debug == -1) {
    const char *form = std::getenv("KPXDEBUG");
    is_debug = form != nullptr && std::strcmp(form, "TRUE") == 0 ? 1 : 0;
  }
  if (G_DebugLevel < std::clamp(level, 1, 4)) return;
  if (is_debug == 0) {
    PrintErrorLine(message);
    return;
  }
  if (StartsWith(message, "END")) indentation = std::max(0, indentation - 2);
  for (int i = 0; i < indentation; ++i) {
    std::fputc(' ', stderr);
    std::fflush(stderr);
  }
  PrintErrorLine(std::string(file) + "[" + std::to_string(line) + "]: " + message);
  if (StartsWith(message, "BEGIN")) indentation += 2;
}

void LogScope::Write(const char *word) const {
  std::snprintf(debug_mess, sizeof debug_mess, "%s%s() function", word, name_);
  debugout(place_.file_name(), static_cast<int>(place_.line()), 4, debug_mess);
}

std::string PointerText(const void *pointer) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", pointer);
  return text;
}
