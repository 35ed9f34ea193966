// Code that the caller names stays out of the administration, whatever way it is named. The print
// tool, which runs as its user, loads it: so the ways are real ones.
#include <filesystem>
#include <fstream>

#include "administration.h"
#include "temporarydirectory.h"

namespace {

using Strings = std::vector<std::string>;

constexpr char kTool[] = "/usr/bin/KPXtool";

// "@" stands for a directory with the module, as "libmarking.so" and in "modules", and with files
// that name it.
struct Way {
  const char *name;
  Strings arguments;
  Strings environment;
};

void PrintTo(const Way &way, std::ostream *out) { *out << way.name; }

class ModuleGuard : public AdministrationTest, public testing::WithParamInterface<Way> {
 protected:
  ModuleGuard() {
    const std::string module = directory_.Path("libmarking.so");
    std::filesystem::copy_file(KPX_MARKING_MODULE, module);
    std::filesystem::create_directories(directory_.Path("modules"));
    std::filesystem::copy_file(module, directory_.Path("modules/libmarking.so"));
    Write("gtk-3.0/settings.ini", "[Settings]\ngtk-modules=" + module + ":kpxinspect\n");
    Write(".config/gtk-3.0/settings.ini", "[Settings]\ngtk-modules=" + module + ":kpxinspect\n");
    std::filesystem::remove(KPX_MODULE_MARK);
    PutQueues(Strings{"lp1"});
  }

  bool IsLoadedBy(const std::string &program, const char *window) {
    GuiApp app({.program = program,
                .arguments = InDirectory(GetParam().arguments),
                .environment = InDirectory(GetParam().environment)});
    app.WaitWindow(window);
    return std::filesystem::remove(KPX_MODULE_MARK);
  }

 private:
  void Write(const std::string &file, const std::string &text) {
    const std::filesystem::path path = directory_.Path(file);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
  }

  Strings InDirectory(Strings texts) {
    for (std::string &text : texts) {
      for (size_t at = text.find('@'); at != std::string::npos; at = text.find('@')) {
        text.replace(at, 1, directory_.Path("."));
      }
    }
    return texts;
  }

  TemporaryDirectory directory_;
};

TEST_P(ModuleGuard, KeepsTheModuleOutOfTheAdministrationOnly) {
  EXPECT_FALSE(IsLoadedBy(kAdmin, "AdminWindow"));
  EXPECT_TRUE(IsLoadedBy(kTool, "ToolWindow"));
}

INSTANTIATE_TEST_SUITE_P(
    , ModuleGuard,
    testing::Values(Way{"argument", {"--gtk-module=@/libmarking.so"}, {}},
                    Way{"two_arguments", {"-verbose", "0", "--gtk-module", "@/libmarking.so"}, {}},
                    Way{"modules", {}, {"GTK_MODULES=@/libmarking.so"}},
                    Way{"path", {}, {"GTK_MODULES=marking", "GTK_PATH=@"}},
                    Way{"files_of_gio", {}, {"GIO_EXTRA_MODULES=@/modules"}},
                    Way{"settings", {}, {"XDG_CONFIG_HOME=@"}},
                    Way{"settings_of_all", {}, {"XDG_CONFIG_DIRS=@"}},
                    Way{"home", {}, {"HOME=@", "XDG_CONFIG_HOME"}}),
    [](const auto &way) { return way.param.name; });

class Pkexec : public AdministrationTest {};

TEST_F(Pkexec, TakesNoArgumentButTheLevelOfTheLog) {
  for (const Strings &arguments : {Strings{"--display=:0"}, Strings{"--gtk-module=x"},
                                   Strings{"-verbose", "0", "--help"}, Strings{"some", "words"}}) {
    GuiApp app({.program = kAdmin, .arguments = arguments, .environment = {"PKEXEC_UID=1000"}});
    EXPECT_EQ(2, app.WaitExit()) << arguments.front();
    EXPECT_EQ("Usage: " + std::string(kAdmin) + " -verbose <n>\n\n", app.Stderr());
  }
}

TEST_F(Pkexec, OpensTheAdministrationWithTheLevelOrWithoutArguments) {
  for (const Strings &arguments : {Strings{}, Strings{"-verbose", "0"}}) {
    AdminApp app({.arguments = arguments, .environment = {"PKEXEC_UID=1000"}});
    app.Key("Escape");
    EXPECT_EQ(0, app.WaitExit());
  }
}

TEST_F(Pkexec, IsNotAskedByThePrintToolNorOutsideOfIt) {
  GuiApp tool({.program = kTool, .arguments = {"word"}, .environment = {"PKEXEC_UID=1000"}});
  tool.WaitWindow("ToolWindow");
  AdminApp admin({.arguments = {"word", "--sync"}});
  EXPECT_EQ(Strings{"AdminWindow"}, admin.Windows());
}

}  // namespace
