#include "cupslibrary.h"

#include <dlfcn.h>

#include <csignal>
#include <optional>

namespace {

constexpr char L_Name[] = "libcups.so.2";

template <typename Function>
bool Find(void *library, const char *name, Function *function) {
  *function = reinterpret_cast<Function>(dlsym(library, name));
  return *function != nullptr;
}

std::optional<CupsLibrary> Load() {
  void *library = dlopen(L_Name, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return std::nullopt;
  CupsLibrary cups = {};
  bool whole = true;
#define KPX_CUPS(name) whole = Find(library, #name, &cups.name) && whole;
#include "cupsfunctions.inc"
#undef KPX_CUPS
  if (!whole) return std::nullopt;
  // It has SIGPIPE ignored, which the commands that are run from here would inherit.
  struct sigaction before = {};
  sigaction(SIGPIPE, nullptr, &before);
  cups.httpInitialize();
  sigaction(SIGPIPE, &before, nullptr);
  return cups;
}

}  // namespace

const CupsLibrary *LoadCups() {
  static const std::optional<CupsLibrary> cups = Load();
  return cups ? &*cups : nullptr;
}
