// The Debian package: what is in it, and what dpkg makes of it on a machine that lacks the system.
#include <gtest/gtest.h>

#include <map>

#include "guiapp.h"
#include "paths.h"
#include "printerjobs.h"
#include "spooler.h"
#include "temporarydirectory.h"

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

constexpr char kOptionFile[] = "/opt/orlan/data/users/anna:lp1.def";

// What a shell command writes, without the last line feed; throws when it fails.
std::string Shell(const std::string &command) {
  CommandResult result = RunProgram({"sh", "-c", command});
  if (result.status != 0) throw std::runtime_error(command + ": " + result.output);
  if (result.output.ends_with('\n')) result.output.pop_back();
  return result.output;
}

// dpkg without the triggers, which take seconds and are other packages' own.
CommandResult Dpkg(Strings arguments) {
  arguments.insert(arguments.begin(), {"dpkg", "--no-triggers", "--force-unsafe-io"});
  return RunProgram(arguments);
}

void MustDpkg(const Strings &arguments) {
  const CommandResult result = Dpkg(arguments);
  if (result.status != 0) throw std::runtime_error("dpkg: " + result.output);
}

const std::string &Package() {
  static const std::string path = [] {
    for (const std::string &name : NamesIn(KPX_PACKAGE_DIR)) {
      if (name.starts_with("kpx_" KPX_PROJECT_VERSION "_") && name.ends_with(".deb")) {
        return KPX_PACKAGE_DIR "/" + name;
      }
    }
    throw std::runtime_error("no package in " KPX_PACKAGE_DIR);
  }();
  return path;
}

// For every path below `root`: its type and mode, a link's target.
std::map<std::string, std::string> TreeOf(const std::string &root) {
  std::map<std::string, std::string> tree;
  for (const auto &entry : fs::recursive_directory_iterator(root)) {
    char mode[16];
    std::snprintf(mode, sizeof mode, "%o", ModeOf(entry.path()));
    std::string what = mode;
    if (entry.is_symlink())
      what = "-> " + fs::read_symlink(entry.path()).string();
    else if (entry.is_directory())
      what += " directory";
    tree[entry.path().string().substr(root.size())] = what;
  }
  return tree;
}

// What the packaging adds to an installation, or packs.
std::map<std::string, std::string> AsPackaged(std::map<std::string, std::string> installed) {
  std::map<std::string, std::string> packaged = {
      {"/usr/share/doc", "755 directory"},        {"/usr/share/doc/kpx", "755 directory"},
      {"/usr/share/doc/kpx/changelog.gz", "644"}, {"/usr/share/doc/kpx/copyright", "644"},
      {"/usr/share/lintian", "755 directory"},    {"/usr/share/lintian/overrides", "755 directory"},
      {"/usr/share/lintian/overrides/kpx", "644"}};
  for (const auto &[path, what] : installed) {
    const bool page = path.starts_with("/usr/share/man/") && what == "644";
    packaged[page ? path + ".gz" : path] = what.ends_with(" directory") ? "755 directory" : what;
  }
  return packaged;
}

// The state of everything in the directories that the package writes to, apart from /opt.
std::string StateOfItsDirectories() {
  return Shell("dpkg-deb -c " + Package() +
               " | sed -n 's|^d.* \\./\\(usr/.*\\)/$|/\\1|p' | while read -r directory; do"
               "  [ ! -d \"$directory\" ] || find \"$directory\" -maxdepth 1 -mindepth 1 "
               "    \\( -type d -printf '%p %M %u %g\\n' -o -printf '%p %M %u %g %s %T@ %l\\n' \\);"
               "done | sort");
}

// The same package as a later version, in `directory`; `change` is a shell command that changes its
// files.
std::string LaterPackage(const TemporaryDirectory &directory, const std::string &change = ":") {
  const std::string tree = directory.Path("tree");
  Shell("dpkg-deb -R " + Package() + " " + tree + " && cd " + tree + " && " + change +
        " && sed -i 's/^Version:.*/&+later/' DEBIAN/control && dpkg-deb -Znone -b . " +
        directory.Path("later.deb"));
  return directory.Path("later.deb");
}

class PackageTest : public testing::Test {
 protected:
  void SetUp() override {
    RequirePrivateWorld();
    if (!HasOrdinaryUsers()) GTEST_SKIP() << "without root dpkg cannot install";
  }
  void TearDown() override {
    Dpkg({"--purge", "kpx"});
    EXPECT_EQ("", Shell("ls -d /opt/orlan /usr/spool 2>/dev/null || :"));
  }

  // A queue that prints text, and an option file of a user.
  static void MakeWhatUsersMake() {
    Shell(KPX_MAKEQUEUES " lp1=text='Vek Norvel 4105'");
    Shell(std::string("su anna -c 'umask 027; echo mine >") + kOptionFile + "'");
  }
  static void ExpectWhatUsersMade() {
    EXPECT_NE(std::string::npos, ContentOf(kQueuesFile).find("lp1"));
    EXPECT_EQ("640 anna lp", Shell(std::string("stat -c '%a %U %G' ") + kOptionFile));
    EXPECT_TRUE(fs::exists(std::string(kBridgeInterfaces) + "/lp1"));
    EXPECT_EQ("device for lp1: kpxlp:/interface", Shell("lpstat -v"));
    EXPECT_EQ("3777 root lp", Shell(std::string("stat -c '%a %U %G' ") + kUsersDir));
  }
};

}  // namespace

TEST_F(PackageTest, ItsControlFieldsNameItAndWhatItNeeds) {
  const auto field = [](const std::string &name) {
    return Shell("dpkg-deb -f " + Package() + " " + name);
  };
  EXPECT_EQ("kpx", field("Package"));
  EXPECT_EQ(KPX_PROJECT_VERSION, field("Version"));
  EXPECT_EQ(Shell("dpkg --print-architecture"), field("Architecture"));
  EXPECT_EQ("KPX developers <kpx@example.org>", field("Maintainer"));
  EXPECT_EQ("admin", field("Section"));
  const Strings description = SplitLines(field("Description"));
  EXPECT_EQ("print queues of network printers in windows", description.at(0));
  EXPECT_EQ(9u, description.size());
  const std::string needs = ", " + field("Depends");
  for (const char *package : {"cups-client", "cups-daemon", "libcups2", "libgtk-3-0", "libc6"}) {
    EXPECT_NE(std::string::npos, needs.find(std::string(", ") + package)) << needs;
  }
}

// The programs that the package runs, or has run for it, and that are not its own.
constexpr const char *kForeignPrograms[] = {
    "/bin/bash",
    "/bin/chgrp",
    "/bin/chmod",
    "/bin/chown",
    "/bin/sh",
    "/usr/bin/awk",
    "/usr/bin/cat",
    "/usr/bin/find",
    "/usr/bin/lp",
    "/usr/bin/lpstat",
    "/usr/bin/mktemp",
    "/usr/bin/sed",
    "/usr/lib/cups/filter/gziptoany",
    "/usr/sbin/cupsaccept",
    "/usr/sbin/cupsd",
    "/usr/sbin/cupsdisable",
    "/usr/sbin/cupsenable",
    "/usr/sbin/lpadmin",
};

TEST_F(PackageTest, ItNeedsEveryPackageWhoseProgramsItRuns) {
  const std::string needs = " " + Shell("dpkg-deb -f " + Package() + " Depends") + ",";
  for (const std::string program : kForeignPrograms) {
    // The package database may know a file without the /usr that leads to it.
    const std::string owner = Shell("file=$(readlink -f " + program +
                                    "); { dpkg -S \"$file\" || dpkg -S \"${file#/usr}\"; }"
                                    " 2>/dev/null | sed 's/:.*//'");
    const std::string importance = Shell("dpkg-query -W -f '${Essential} ${Priority}' " + owner);
    const bool is_everywhere = importance == "yes required" || importance == "no required";
    EXPECT_TRUE(is_everywhere || needs.find(" " + owner + ",") != std::string::npos ||
                needs.find(" " + owner + " ") != std::string::npos)
        << program << " is in " << owner << "; the package needs" << needs;
  }
}

TEST_F(PackageTest, EveryCommandOfItHasAManualPage) {
  const TemporaryDirectory directory;
  const std::string tree = directory.Path("tree");
  Shell("dpkg-deb -x " + Package() + " " + tree);
  Strings commands = NamesIn(tree + "/usr/bin");
  for (const std::string &program : NamesIn(tree + "/opt/orlan/bin")) commands.push_back(program);
  for (const std::string &command : commands) {
    const std::string page = Shell("cd " + tree + "/usr/share/man && zcat man[18]/" + command +
                                   ".[18].gz | sed 's/^\\.so \\(.*\\)/\\1/;q'");
    const std::string other = tree + "/usr/share/man/" + page + ".gz";
    EXPECT_TRUE(page.starts_with(".TH") || fs::is_regular_file(other)) << command << ": " << page;
  }
}

TEST_F(PackageTest, ItHoldsWhatAnInstallationHoldsAndNothingElse) {
  const TemporaryDirectory directory;
  const std::string tree = directory.Path("tree");
  Shell("dpkg-deb -x " + Package() + " " + tree);
  EXPECT_EQ(AsPackaged(TreeOf(KPX_STAGE_DIR)), TreeOf(tree));
  EXPECT_EQ("", Shell("find " + tree + " ! -user 0 -o ! -group 0"));
  // The programs are stripped, the manual pages compressed.
  EXPECT_EQ("", Shell("cd " + tree +
                      " && find opt usr -type f ! -path 'opt/orlan/bin/*' "
                      "! -path 'usr/share/*' ! -exec cmp -s {} " KPX_STAGE_DIR "/{} \\; -print"));
}

TEST_F(PackageTest, OnceInstalledAQueuePrintsOnTheNetwork) {
  MustDpkg({"-i", Package()});
  EXPECT_EQ("", Shell("dpkg --verify kpx"));
  MakeWhatUsersMake();
  ExpectWhatUsersMade();

  GuiApp tool;
  tool.WaitWindow("ToolWindow");
  EXPECT_TRUE(tool.Text("QueueComboEntry").starts_with("lp1 "));
  tool.Click("CancelButton");
  EXPECT_EQ(0, tool.WaitExit());

  PrinterJobs jobs;
  Shell("echo 'Hello from lp' | lp -d lp1");
  EXPECT_EQ(1, PagesOf(PostScriptOf(jobs.Next()).at(0)));
}

TEST_F(PackageTest, AnUpgradeKeepsWhatUsersMade) {
  const TemporaryDirectory directory;
  const std::string later = LaterPackage(directory);
  MustDpkg({"-i", Package()});
  MakeWhatUsersMake();
  MustDpkg({"-i", later});
  EXPECT_EQ(KPX_PROJECT_VERSION "+later", Shell("dpkg-query -W -f '${Version}' kpx"));
  ExpectWhatUsersMade();
  EXPECT_EQ("", Shell("dpkg --verify kpx"));
}

TEST_F(PackageTest, AnUpgradeGivesTheQueuesOfAnOlderVersionTheirOptions) {
  const TemporaryDirectory directory;
  const std::string later = LaterPackage(directory);
  MustDpkg({"-i", Package()});
  MakeWhatUsersMake();
  // As the bridge made them before print dialogs knew their options.
  Shell("/usr/sbin/lpadmin -x lp1 && /usr/sbin/lpadmin -p lp1 -E -v kpxlp:/interface");
  const std::string options = "lpoptions -p lp1 -l 2>&1 || :";
  ASSERT_EQ(std::string::npos, Shell(options).find("Duplex"));
  Shell("echo 'Patience' | lp -d lp1 -H hold");
  MustDpkg({"-i", later});
  EXPECT_NE(std::string::npos, Shell(options).find("Duplex/Two-sided printing: *None"));

  PrinterJobs jobs;
  Shell("lp -i $(lpstat -o lp1 | cut -d' ' -f1) -H resume");
  EXPECT_EQ(1, PagesOf(PostScriptOf(jobs.Next()).at(0)));
  Shell("echo 'After that' | lp -d lp1 -o sides=two-sided-short-edge");
  EXPECT_NE(std::string::npos, jobs.Next().find("*Duplex DuplexTumble\n"));
}

TEST_F(PackageTest, AnUpgradeBringsChangedModelScriptsToTheQueues) {
  const TemporaryDirectory directory;
  const std::string later =
      LaterPackage(directory, "sed -i \"s/^CAT='cat'/CAT='cat -u'/\" usr/spool/lp/model/vek4105");
  MustDpkg({"-i", Package()});
  MakeWhatUsersMake();
  Shell(KPX_MAKEQUEUES " lp2=text='Vek Norvel 4105'");
  const std::string scripts = kBridgeInterfaces;
  const std::string lines = Shell("sed '1,/^# End of the model/d' " + scripts + "/lp1");
  Shell("sed -i 's/^set -e$/set -e # mine/' " + scripts + "/lp2");
  const NoScheduler down;  // which an upgrade may have stopped
  MustDpkg({"-i", later});
  EXPECT_EQ("CAT='cat -u'", Shell("grep ^CAT= " + scripts + "/lp1"));
  EXPECT_EQ(lines, Shell("sed '1,/^# End of the model/d' " + scripts + "/lp1"));
  EXPECT_EQ("755 lp bin", Shell("stat -c '%a %U %G' " + scripts + "/lp1"));
  EXPECT_EQ("CAT='cat'", Shell("grep ^CAT= " + scripts + "/lp2")) << "somebody changed it";
  EXPECT_FALSE(fs::exists("/opt/orlan/data/former-models"));
}

TEST_F(PackageTest, ARemovalKeepsWhatUsersMadeAndAPurgeTakesIt) {
  MustDpkg({"-i", Package()});
  MakeWhatUsersMake();
  MustDpkg({"-r", "kpx"});
  EXPECT_FALSE(fs::exists("/opt/orlan/bin"));
  EXPECT_FALSE(fs::exists("/usr/lib/cups/backend/kpxlp"));
  ExpectWhatUsersMade();

  MustDpkg({"-i", Package()});
  ExpectWhatUsersMade();
  MustDpkg({"--purge", "kpx"});
  EXPECT_FALSE(fs::exists("/opt/orlan"));
  EXPECT_FALSE(fs::exists("/usr/spool"));
  EXPECT_NE(0, RunProgram({"lpstat", "-v", "lp1"}).status);
}

TEST_F(PackageTest, ARemovalStopsTheQueuesAndTheNextInstallationLetsThemGoOn) {
  MustDpkg({"-i", Package()});
  Shell(KPX_MAKEQUEUES " lp1=text='Vek Norvel 4105' lp2=text='Vek Norvel 4105'");
  Shell("cupsdisable -r 'Out of toner' lp2");
  PrinterJobs jobs;
  MustDpkg({"-r", "kpx"});
  Shell("echo 'Sent meanwhile' | lp -d lp1");
  EXPECT_NE(std::string::npos, Shell("lpstat -p lp1").find("The package kpx is not installed"));
  EXPECT_NE(std::string::npos, Shell("lpstat -p lp2").find("Out of toner"));

  MustDpkg({"-i", Package()});
  EXPECT_NE(std::string::npos, jobs.Next().find("Sent meanwhile"));
  EXPECT_NE(std::string::npos, Shell("lpstat -p lp2").find("Out of toner"));
}

TEST_F(PackageTest, APurgeLeavesQueuesThatAreNotOurs) {
  MustDpkg({"-i", Package()});
  MakeWhatUsersMake();
  // Somebody has put another queue in the place of ours.
  Shell("lpadmin -x lp1 && lpadmin -p lp1 -v ipp://127.0.0.1/elsewhere");
  MustDpkg({"--purge", "kpx"});
  EXPECT_EQ("device for lp1: ipp://127.0.0.1/elsewhere", Shell("lpstat -v"));
  Shell("lpadmin -x lp1");
}

TEST_F(PackageTest, APurgeNeedsNoScheduler) {
  MustDpkg({"-i", Package()});
  MakeWhatUsersMake();
  {
    const NoScheduler down;
    MustDpkg({"--purge", "kpx"});
    EXPECT_FALSE(fs::exists("/opt/orlan"));
  }
  Shell("lpadmin -x lp1");
}

TEST_F(PackageTest, NothingElseInItsDirectoriesIsChanged) {
  const std::string before = StateOfItsDirectories();
  EXPECT_NE(std::string::npos, before.find("/usr/lib/cups/backend/socket "));
  MustDpkg({"-i", Package()});
  EXPECT_NE(before, StateOfItsDirectories());
  MustDpkg({"--purge", "kpx"});
  EXPECT_EQ(before, StateOfItsDirectories());
}

TEST_F(PackageTest, AnotherPackagesCommandIsNotOverwritten) {
  const TemporaryDirectory directory;
  const std::string tree = directory.Path("other");
  fs::create_directories(tree + "/DEBIAN");
  fs::create_directories(tree + "/usr/bin");
  directory.Write("other/usr/bin/accept", "other\n");
  directory.Write("other/DEBIAN/control",
                  "Package: other-spooler\nVersion: 1\nArchitecture: all\n"
                  "Maintainer: none <none@example.org>\nDescription: has a command accept\n");
  Shell("dpkg-deb -b " + tree + " " + directory.Path("other.deb"));
  MustDpkg({"-i", directory.Path("other.deb")});

  const CommandResult result = Dpkg({"-i", Package()});
  EXPECT_NE(0, result.status);
  EXPECT_NE(std::string::npos, result.output.find("trying to overwrite '/usr/bin/accept'"))
      << result.output;
  EXPECT_EQ("other\n", ContentOf("/usr/bin/accept"));
  EXPECT_FALSE(fs::exists("/opt/orlan/bin/KPXtool"));
  MustDpkg({"--purge", "other-spooler"});
}

TEST_F(PackageTest, TheAdministratorsModeOfTheUsersDirectoryHolds) {
  Shell(std::string("dpkg-statoverride --add root lp 2770 ") + kUsersDir);
  MustDpkg({"-i", Package()});
  EXPECT_EQ("2770 root lp", Shell(std::string("stat -c '%a %U %G' ") + kUsersDir));
  Shell(std::string("dpkg-statoverride --remove ") + kUsersDir);
}
