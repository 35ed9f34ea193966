#include "ModuleGuard.h"

#include <dlfcn.h>
#include <gmodule.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

constexpr char L_ModuleSwitch[] = "--gtk-module";

// What names modules, or files and directories that do.
constexpr std::array L_Variables = {
    "GTK_MODULES",
    "GTK3_MODULES",
    "GTK_PATH",
    "GTK_EXE_PREFIX",
    "GTK_DATA_PREFIX",
    "GTK_IM_MODULE_FILE",
    "GIO_EXTRA_MODULES",
    "GDK_PIXBUF_MODULE_FILE",
    "GDK_PIXBUF_MODULEDIR",
    "GIO_MODULE_DIR",
    "GIO_USE_VFS",
    "GIO_USE_VOLUME_MONITOR",
    "GIO_USE_TLS",
    "GIO_USE_PROXY_RESOLVER",
    "GIO_USE_FILE_MONITOR",
    "LIBGL_DRIVERS_PATH",
    "GBM_BACKENDS_PATH",
    "GCONV_PATH",
};

// The real directory of GTK's library, with "/" at its end; empty: modules are not guarded.
std::string L_Directory;

std::string RealPath(const char *path) {
  std::error_code error;
  return std::filesystem::canonical(path, error).string();
}

std::string ToolkitDirectory() {
  Dl_info library = {};
  void *function = dlsym(RTLD_DEFAULT, "gtk_init");
  if (function == nullptr || dladdr(function, &library) == 0) return "/";
  return std::filesystem::path(RealPath(library.dli_fname)).parent_path().string() + "/";
}

void TakeSwitchesAway(int *argc, char **argv) {
  const size_t length = std::strlen(L_ModuleSwitch);
  int kept = 1;
  for (int i = 1; i < *argc; ++i) {
    if (std::strncmp(argv[i], L_ModuleSwitch, length) == 0 && argv[i][length] == '=') continue;
    if (std::strcmp(argv[i], L_ModuleSwitch) == 0) {
      ++i;  // the module's name
      continue;
    }
    argv[kept++] = argv[i];
  }
  if (kept < *argc) argv[kept] = nullptr;
  *argc = std::min(kept, *argc);
}

template <typename Function>
Function *NextOf(Function *, const char *name) {
  return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

// The path under which a module may be opened; empty when it may not.
std::string AllowedPath(const char *file) {
  if (L_Directory.empty()) return file;
  const std::string real = RealPath(file);
  return real.starts_with(L_Directory) ? real : "";
}

}  // namespace

void GuardModules(int *argc, char **argv) {
  L_Directory = ToolkitDirectory();
  for (const char *name : L_Variables) unsetenv(name);
  TakeSwitchesAway(argc, argv);
}

extern "C" G_MODULE_EXPORT GModule *g_module_open_full(const gchar *file_name, GModuleFlags flags,
                                                       GError **error) {
  static const auto next = NextOf(&g_module_open_full, "g_module_open_full");
  if (file_name == nullptr) return next(nullptr, flags, error);
  const std::string path = AllowedPath(file_name);
  if (!path.empty()) return next(path.c_str(), flags, error);
  g_set_error(error, G_FILE_ERROR, G_FILE_ERROR_ACCES, "%s is not below %s", file_name,
              L_Directory.c_str());
  return nullptr;
}

extern "C" G_MODULE_EXPORT GModule *g_module_open(const gchar *file_name, GModuleFlags flags) {
  return g_module_open_full(file_name, flags, nullptr);
}
