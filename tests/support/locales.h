// Locales that a test makes for itself in the sandbox's own view of the system.
#pragma once

#include <stdexcept>
#include <string>

#include "guiapp.h"
#include "privateworld.h"

// Makes the locale that is named as LANG names it: "de_DE.UTF-8"; without a character set it is the
// ISO-8859-1 one. "C" is there anyway.
inline void MakeLocale(const std::string &name) {
  RequirePrivateWorld();
  if (name == "C") return;
  const size_t dot = name.find('.');
  const std::string set = dot == std::string::npos ? "ISO-8859-1" : "UTF-8";
  const std::string command =
      "localedef -i " + name.substr(0, dot) + " -f " + set + " --no-archive " + name;
  if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

// A program that the user starts with LANG alone.
inline GuiAppOptions InLocale(const std::string &name) {
  return {.environment = {"LANG=" + name, "LC_ALL", "LC_CTYPE", "LC_MESSAGES", "LANGUAGE"}};
}
