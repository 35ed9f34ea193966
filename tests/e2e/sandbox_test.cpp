// The test sandbox: what a command finds in it, and that nothing of it remains.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>

#include <csignal>
#include <filesystem>

#include "childprocess.h"
#include "spooler.h"
#include "temporarydirectory.h"

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

// Everything the sandbox and the command in it write is in `output`.
struct Ending {
  int status = -1;  // as ChildResult has it
  std::string output;
};

// The user and group that a test without root's rights runs as.
constexpr unsigned kOrdinaryUser = 65534;

// A sandbox that runs a shell script; ended when it goes.
class Sandbox {
 public:
  struct Options {
    bool bare = false;
    unsigned user = 0;  // 0: whoever runs the test
    std::string stage = KPX_STAGE_DIR;
  };

  Sandbox(const std::string &script, const Options &options) {
    Strings words = {KPX_SANDBOX_PROGRAM, "--stage", options.stage};
    if (options.bare) words.insert(words.begin() + 1, "--bare");
    for (const char *word : {"sh", "-c", script.c_str()}) words.emplace_back(word);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe");
    process_ = fork();
    if (process_ == 0) {
      // A run of the tests in the background or under nohup ignores some.
      for (const int signal : {SIGHUP, SIGINT, SIGTERM}) ::signal(signal, SIG_DFL);
      dup2(ends[1], STDOUT_FILENO);
      dup2(ends[1], STDERR_FILENO);
      const int null = open("/dev/null", O_RDONLY);
      dup2(null, STDIN_FILENO);
      if (options.user != 0 && (setgid(options.user) != 0 || setuid(options.user) != 0)) _exit(126);
      std::vector<char *> argv;
      for (std::string &word : words) argv.push_back(word.data());
      argv.push_back(nullptr);
      execv(argv[0], argv.data());
      _exit(127);
    }
    close(ends[1]);
    output_ = ends[0];
  }
  ~Sandbox() {
    if (process_ > 0) kill(process_, SIGKILL), waitpid(process_, nullptr, 0);
    close(output_);
  }
  Sandbox(const Sandbox &) = delete;
  Sandbox &operator=(const Sandbox &) = delete;

  void Send(int signal) const { kill(process_, signal); }

  // The output up to `words`; throws when it ends or a minute passes before.
  std::string ReadUntil(const std::string &words) {
    while (read_.find(words) == std::string::npos) {
      pollfd ready = {output_, POLLIN, 0};
      char buffer[4096];
      const ssize_t count =
          poll(&ready, 1, 60000) == 1 ? read(output_, buffer, sizeof buffer) : ssize_t{0};
      if (count <= 0) throw std::runtime_error("no \"" + words + "\" in: " + read_);
      read_.append(buffer, static_cast<size_t>(count));
    }
    return read_;
  }

  // The output ends only when no process of the sandbox is left.
  Ending Wait() {
    read_ += ReadToEnd(output_);
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    return {WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status), read_};
  }

 private:
  pid_t process_ = -1;
  int output_ = -1;
  std::string read_;
};

Ending InSandbox(const std::string &script, const Sandbox::Options &options = {}) {
  return Sandbox(script, options).Wait();
}

// A copy of the stage in `directory`, for an ordinary user, to whom it has to belong.
Sandbox::Options OptionsOfAnOrdinaryUser(const TemporaryDirectory &directory) {
  const std::string stage = directory.Path("stage");
  fs::copy(KPX_STAGE_DIR, stage, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  fs::create_directory(directory.Path("tests"));
  fs::copy(std::string(KPX_STAGE_DIR) + "/../tests/printerd", directory.Path("tests/printerd"));
  Sandbox::Options options{.stage = stage};
  if (getuid() == 0) {
    options.user = kOrdinaryUser;
    const auto give = [](const fs::path &path) {
      EXPECT_EQ(0, lchown(path.c_str(), kOrdinaryUser, kOrdinaryUser)) << path;
    };
    give(directory.Path());
    for (const auto &entry : fs::recursive_directory_iterator(directory.Path())) give(entry.path());
  }
  return options;
}

constexpr char kPrintOnePage[] = R"sh(
set -e
/usr/lib/lpadmin -p lp1 -v /dev/null -I any -o nobanner -m vek4120
/usr/bin/accept lp1
/usr/bin/enable lp1
cat >>/usr/spool/lp/admins/lp/interfaces/lp1 <<'END'
id -un >&2
status=0
/opt/orlan/bin/kpxnbtrans 127.0.0.1 2501 120 <"$1" || status=$?
echo "$status" >/tmp/arrived
# End of the script
END
mkfifo -m 666 /tmp/arrived
echo "a page" | /usr/bin/lp -d lp1
read -r status </tmp/arrived
cat "$KPX_JOBS/job-0001.prn"
grep -o 'Set job-printer-state-message to "lp"' /var/log/cups/error_log
)sh";

// In a mount namespace: what a sandbox needs, copied, and an empty /tmp. Arguments: the stage, the
// sandbox, the number of an ordinary user.
constexpr char kCopiedSandbox[] = R"sh(
set -e
mount -t tmpfs -o mode=755 tmpfs /mnt
mkdir /mnt/tests
cp -a "$1" /mnt/stage
cp "$1/../tests/printerd" /mnt/tests/
cp "$2" /mnt/sandbox
cd /mnt # the new /tmp hides a tree that is in the old one
mount -t tmpfs -o mode=1777 tmpfs /tmp
)sh";

// An X server of root's, and sandboxes beside it. The same arguments.
const std::string kBesideAnXServer = kCopiedSandbox + std::string(R"sh(
Xvfb :0 -nolisten tcp 2>/dev/null &
tries=0
until [ -S /tmp/.X11-unix/X0 ]; do
  sleep 0.1
  tries=$((tries + 1))
  [ "$tries" -lt 600 ]
done
screen='xdotool getdisplaygeometry >/dev/null && echo "$0 sees a screen"'
/mnt/sandbox --stage /mnt/stage sh -c "$screen" root
chown -R "$3:$3" /mnt
setpriv --reuid "$3" --regid "$3" --clear-groups /mnt/sandbox --stage /mnt/stage sh -c "$screen" user
)sh");

// A sandbox of an ordinary user where something is mounted below what it lays its views over. The
// same arguments.
const std::string kAboveOtherMounts = kCopiedSandbox + std::string(R"sh(
chown -R "$3:$3" /mnt
mkdir /tmp/image
mount -t tmpfs tmpfs /tmp/image
echo mounted >/tmp/image/file
mount -t tmpfs tmpfs /var/opt
setpriv --reuid "$3" --regid "$3" --clear-groups /mnt/sandbox --bare --stage /mnt/stage \
  sh -c 'cat /tmp/image/file; echo written >/var/lib/trace; cat /var/lib/trace; ls /opt/orlan/bin/KPXtool'
[ ! -e /var/lib/trace ]
)sh");

}  // namespace

TEST(SandboxTool, EndsWithTheCommandsStatus) {
  EXPECT_EQ(7, InSandbox("exit 7", {.bare = true}).status);
  EXPECT_EQ(0, InSandbox("true").status);
  EXPECT_EQ(137, InSandbox("kill -KILL $$", {.bare = true}).status);
}

TEST(SandboxTool, WrongUsageIsToldWithStatus125) {
  EXPECT_EQ(125, InSandbox("true", {.stage = "/nowhere"}).status);
}

TEST(SandboxTool, ShowsTheInstallationAtItsRealPlaces) {
  const Ending ending = InSandbox(
      "ls -d /opt/orlan/bin/kpxnbtrans /usr/lib/lpadmin /usr/bin/accept /usr/bin/enable "
      "/usr/spool/lp/admins/lp/printers /usr/spool/lp/admins/lp/interfaces /usr/spool/lp/model "
      "/usr/lib/cups/backend/kpxlp",
      {.bare = true});
  EXPECT_EQ(0, ending.status) << ending.output;
}

TEST(SandboxTool, WhatIsWrittenInItNeverReachesTheMachine) {
  const Strings paths = {"/opt/orlan/kpx-trace",      "/usr/kpx-trace",    "/usr/bin/kpx-trace",
                         "/usr/spool/lp/kpx-trace",   "/tmp/kpx-trace",    "/run/kpx-trace",
                         "/var/spool/cups/kpx-trace", "/dev/shm/kpx-trace"};
  std::string script = "true";
  for (const std::string &path : paths) script += " && echo trace >" + path;
  const Ending ending = InSandbox(script);
  EXPECT_EQ(0, ending.status) << ending.output;
  for (const std::string &path : paths) EXPECT_FALSE(fs::exists(path)) << path;
}

TEST(SandboxTool, LeavesNoProcessAndNoMountBehind) {
  const std::string mounts = ContentOf("/proc/self/mountinfo");
  // Wait returns when the last process that has the output open has ended.
  const Ending ending = InSandbox("setsid sleep 1000 & echo ready");
  EXPECT_EQ(0, ending.status) << ending.output;
  EXPECT_EQ(mounts, ContentOf("/proc/self/mountinfo"));
}

TEST(SandboxTool, SignalsEndTheCommandAndEverythingElse) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    Sandbox sandbox("setsid sleep 1000 & echo ready; exec sleep 1000", {});
    sandbox.ReadUntil("ready\n");
    sandbox.Send(signal);
    EXPECT_EQ(128 + SIGTERM, sandbox.Wait().status) << signal;
  }
}

TEST(SandboxTool, ACommandMayCleanUpWhenItIsEnded) {
  Sandbox sandbox("trap 'echo cleaned; exit 5' TERM; echo ready; sleep 1000 & wait",
                  {.bare = true});
  sandbox.ReadUntil("ready\n");
  sandbox.Send(SIGTERM);
  const Ending ending = sandbox.Wait();
  EXPECT_EQ(5, ending.status);
  EXPECT_EQ("ready\ncleaned\n", ending.output);
}

TEST(SandboxTool, ACommandThatIgnoresTheSignalIsEndedAllTheSame) {
  Sandbox sandbox("trap '' TERM; echo ready; while :; do sleep 1; done", {.bare = true});
  sandbox.ReadUntil("ready\n");
  sandbox.Send(SIGTERM);
  EXPECT_EQ(128 + SIGKILL, sandbox.Wait().status);
}

TEST(SandboxTool, KillingItEndsEverythingInIt) {
  Sandbox sandbox("setsid sleep 1000 & echo ready; sleep 1000", {});
  sandbox.ReadUntil("ready\n");
  sandbox.Send(SIGKILL);
  EXPECT_EQ(128 + SIGKILL, sandbox.Wait().status);
}

TEST(SandboxTool, TwoAtOnceHaveTheirOwnPrinters) {
  Sandbox first("echo ready; read -r _; exit 3", {});
  first.ReadUntil("ready\n");
  EXPECT_EQ(0, InSandbox("[ -z \"$(ls \"$KPX_JOBS\")\" ]").status);
}

TEST(SandboxTool, AQueueMadeInItPrintsAsLp) {
  const Ending ending = InSandbox(kPrintOnePage);
  EXPECT_EQ(0, ending.status) << ending.output;
  EXPECT_NE(std::string::npos, ending.output.find("a page\n")) << ending.output;
}

TEST(SandboxTool, WithoutRootAQueueMadeInItPrintsAsLpToo) {
  const TemporaryDirectory directory;
  const Ending ending = InSandbox(kPrintOnePage, OptionsOfAnOrdinaryUser(directory));
  EXPECT_EQ(0, ending.status) << ending.output;
  EXPECT_NE(std::string::npos, ending.output.find("a page\n")) << ending.output;
}

TEST(SandboxTool, WithoutRootTestsGiveTheToolkitModulesAndSettingsToo) {
  const TemporaryDirectory directory;
  const Ending ending = InSandbox(
      "set -e; echo settings >/etc/gtk-3.0/settings.ini; cat /etc/gtk-3.0/settings.ini;"
      "for toolkit in /usr/lib/*/gtk-3.0; do mkdir -p $toolkit/modules; done;"
      "echo module >$toolkit/modules/trace; cat $toolkit/modules/trace",
      OptionsOfAnOrdinaryUser(directory));
  EXPECT_EQ(0, ending.status);
  EXPECT_EQ("settings\nmodule\n", ending.output);
}

TEST(SandboxTool, StartsBesideAnXServerOfTheMachineAsRootAndAsAnOrdinaryUser) {
  if (getuid() != 0) GTEST_SKIP() << "only root can make a machine of its own with an X server";
  const CommandResult run = RunProgram(
      {"unshare", "--mount", "--net", "--pid", "--fork", "--mount-proc", "--kill-child", "sh", "-c",
       kBesideAnXServer, "sh", KPX_STAGE_DIR, KPX_SANDBOX_PROGRAM, std::to_string(kOrdinaryUser)});
  EXPECT_EQ(0, run.status);
  EXPECT_EQ("root sees a screen\nuser sees a screen\n", run.output);
}

TEST(SandboxTool, StartsAsAnOrdinaryUserWhereOtherThingsAreMounted) {
  if (getuid() != 0) GTEST_SKIP() << "only root can mount them";
  const CommandResult run =
      RunProgram({"unshare", "--mount", "sh", "-c", kAboveOtherMounts, "sh", KPX_STAGE_DIR,
                  KPX_SANDBOX_PROGRAM, std::to_string(kOrdinaryUser)});
  EXPECT_EQ(0, run.status);
  EXPECT_EQ("mounted\nwritten\n/opt/orlan/bin/KPXtool\n", run.output);
}

TEST(SandboxTool, AnnaAndBobAreOrdinaryUsersAndOptionFilesAreSafeFromEachOther) {
  if (getuid() != 0) GTEST_SKIP() << "without root there is one user alone";
  const Ending ending = InSandbox(
      "stat -c '%a %G' /opt/orlan/data/users;"
      "su anna -c 'id -un; umask 027; echo x >/opt/orlan/data/users/anna:lp1.def';"
      "stat -c '%U %G' /opt/orlan/data/users/anna:lp1.def;"
      "su bob -c 'rm -f /opt/orlan/data/users/anna:lp1.def' 2>/dev/null || echo refused",
      {.bare = true});
  EXPECT_EQ("3777 lp\nanna\nanna lp\nrefused\n", ending.output);
}
