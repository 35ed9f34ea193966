// Saves that fail for real: the list of messages in the dialog, its OK ending the program with
// status 1, and the state that is left.
#include <sys/mount.h>
#include <sys/stat.h>

#include "savedqueues.h"

namespace {

using Strings = std::vector<std::string>;

const QueueInput kLp1 = {.name = "lp1"};
const QueueInput kLp2 = {.name = "lp2"};
const QueueInput kLp3 = {.name = "lp3"};

std::string CommandFailed(const std::string &command, const std::string &queue) {
  return CatalogueText("ERR_CMD_FOR_QUEUE", {command, queue});
}
std::string CannotRead(const std::string &path) {
  return CatalogueText("ERR_UNABLE_TO_READ_FILE", {path});
}
std::string CannotWrite(const std::string &path) {
  return CatalogueText("ERR_UNABLE_TO_WRITE_FILE", {path});
}

// For its lifetime a command of the spooler is a script that fails when the shell condition
// `fails` holds and runs the command otherwise.
class FailingCommand {
 public:
  FailingCommand(const std::string &path, const std::string &fails)
      : path_(path), away_(path + ".away") {
    std::filesystem::rename(path_, away_);
    std::ofstream(path_) << "#!/bin/sh\nif " + fails + "; then exit 1; fi\nexec " + away_ +
                                " \"$@\"\n";
    std::filesystem::permissions(path_, std::filesystem::perms(0755));
  }
  ~FailingCommand() { std::filesystem::rename(away_, path_); }
  FailingCommand(const FailingCommand &) = delete;
  FailingCommand &operator=(const FailingCommand &) = delete;

 private:
  std::string path_;
  std::string away_;
};

// For its lifetime the file cannot be written, whoever tries.
class ReadOnlyFile {
 public:
  explicit ReadOnlyFile(const std::string &path) : path_(path) {
    if (mount(path.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) != 0 ||
        mount(nullptr, path.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) != 0) {
      throw std::runtime_error("cannot make " + path + " read-only");
    }
  }
  ~ReadOnlyFile() { umount(path_.c_str()); }
  ReadOnlyFile(const ReadOnlyFile &) = delete;
  ReadOnlyFile &operator=(const ReadOnlyFile &) = delete;

 private:
  std::string path_;
};

std::string DefPath(const std::string &queue) {
  return std::string(kDataDir) + "/" + queue + ".def";
}

class AdminFailures : public RealSpoolerTest {};

TEST_F(AdminFailures, AQueueThatLpadminCannotMakeIsNamedAndLeftOut) {
  const FailingCommand lpadmin("/usr/lib/lpadmin", "[ \"$2\" = lp2 ]");
  AdminApp app;
  for (const QueueInput &queue : {kLp1, kLp2, kLp3}) app.AddQueue(queue);
  SaveWithErrors(app, {CommandFailed("lpadmin", "lp2")});
  EXPECT_EQ("lp1\nlp3\n", SpoolerQueues());
  EXPECT_EQ(ScriptOf(kLp3, k4110), Script("lp3"));
  EXPECT_EQ(kListHeader + ListEntry(kLp1, k4110.ppd) + ListEntry(kLp3, k4110.ppd),
            ContentOf(kQueuesFile));
  EXPECT_TRUE(std::filesystem::exists(DefPath("lp1")));
  EXPECT_FALSE(std::filesystem::exists(DefPath("lp2")));
}

TEST_F(AdminFailures, AFailedRemovalKeepsTheQueueAndMakesNoOther) {
  AddAndSave({kLp1, kLp2});
  const auto before = SavedState();
  std::ofstream(std::string(kUsersDir) + "/root:lp1.def") << "*Nup=2\n";
  {
    const FailingCommand lpadmin("/usr/lib/lpadmin", "[ \"$1\" = -x ]");
    AdminApp app;
    app.SelectQueues({0});
    app.Click("DeleteButton");
    app.AddQueue(kLp3);
    SaveWithErrors(app, {CommandFailed("lpadmin", "lp1")});
  }
  EXPECT_EQ("lp1\nlp2\n", SpoolerQueues());
  EXPECT_TRUE(std::filesystem::exists(std::string(kUsersDir) + "/root:lp1.def"));
  // Kept as the working set has it: the queue that was to be made too.
  EXPECT_EQ(kListHeader + ListEntry(kLp1, k4110.ppd) + ListEntry(kLp2, k4110.ppd) +
                ListEntry(kLp3, k4110.ppd),
            ContentOf(kQueuesFile));
  EXPECT_EQ(before.at(InterfacePath("lp1")), Script("lp1"));
  AdminApp app;
  EXPECT_EQ((Strings{"-lp1", "-lp2"}), app.QueueNames()) << "visible again after the save";
}

TEST_F(AdminFailures, FailedAcceptAndEnableAreToldAndTheQueueStays) {
  const FailingCommand accept("/usr/bin/accept", "true");
  const FailingCommand enable("/usr/bin/enable", "true");
  AdminApp app;
  app.AddQueue(kLp1);
  SaveWithErrors(
      app, {CommandFailed("/usr/bin/accept", "lp1"), CommandFailed("/usr/bin/enable", "lp1")});
  EXPECT_EQ(ScriptOf(kLp1, k4110), Script("lp1"));
  EXPECT_EQ(kListHeader + ListEntry(kLp1, k4110.ppd), ContentOf(kQueuesFile));
}

TEST_F(AdminFailures, AnUnreadableScriptAtTheStartIsToldAndItsQueueNotShown) {
  PutQueues(Strings{"directory", "link", "lp2", "pipe"});
  for (const char *name : {"directory", "link", "pipe"}) {
    std::filesystem::remove(InterfacePath(name));
  }
  std::filesystem::create_directory(InterfacePath("directory"));
  std::filesystem::create_symlink("/nowhere", InterfacePath("link"));  // as good as gone
  ASSERT_EQ(0, mkfifo(InterfacePath("pipe").c_str(), 0600));
  AdminApp app;
  app.WaitWindow("KPXErrorWarningDialog");
  EXPECT_EQ(
      CannotRead(InterfacePath("directory")) + "\n" + CannotRead(InterfacePath("pipe")) + "\n",
      app.Text("ErrorWarningText"));
  app.Key("Return");
  app.WaitGone("KPXErrorWarningDialog");
  EXPECT_EQ(Strings{"-lp2"}, app.QueueNames());
}

TEST_F(AdminFailures, AnUnreadableScriptAtTheSaveIsToldAndItsDeletedQueueStaysInTheSpooler) {
  AddAndSave({kLp1, kLp2});
  AdminApp app;
  app.SelectQueues({0});
  app.Click("DeleteButton");
  std::filesystem::remove(InterfacePath("lp1"));
  std::filesystem::create_directory(InterfacePath("lp1"));
  SaveWithErrors(app, {CannotRead(InterfacePath("lp1"))});
  EXPECT_EQ("lp1\nlp2\n", SpoolerQueues());
  EXPECT_EQ(kListHeader + ListEntry(kLp2, k4110.ppd), ContentOf(kQueuesFile));
}

TEST_F(AdminFailures, AScriptThatCannotBeAppendedToIsToldAndTheQueueStays) {
  AdminApp app;
  app.AddQueue(kLp1);
  // The spooler makes the queue, but its script is then a directory.
  const FailingCommand enable("/usr/bin/enable",
                              "rm /usr/spool/lp/admins/lp/interfaces/\"$1\" && "
                              "mkdir /usr/spool/lp/admins/lp/interfaces/\"$1\" && false");
  SaveWithErrors(app, {CannotWrite(InterfacePath("lp1"))});
  EXPECT_EQ(kListHeader + ListEntry(kLp1, k4110.ppd), ContentOf(kQueuesFile));
}

TEST_F(AdminFailures, AnUnwritableListEndsTheProgramBeforeTheSpoolerIsTouched) {
  AddAndSave({kLp1});
  const auto before = SavedState();
  AdminApp app({.arguments = {"-verbose", "2"}});
  app.SelectQueues({0});
  app.Click("DeleteButton");
  app.AddQueue(kLp2);
  const ReadOnlyFile list(kQueuesFile);
  app.Click("SaveButton");
  EXPECT_EQ(0, app.WaitExit());
  EXPECT_NE(std::string::npos,
            app.Stderr().find(CannotWrite(kQueuesFile) +
                              "\nCannot open for writting the queues.paf file\n"))
      << app.Stderr();
  EXPECT_EQ(before, SavedState());
  EXPECT_EQ("lp1\n", SpoolerQueues());
}

TEST_F(AdminFailures, WithoutASchedulerEveryQueueIsNamedAndTheDeletedOneRestored) {
  AddAndSave({kLp1});
  const auto before = SavedState();
  AdminApp app;
  app.AddQueue(kLp2);
  {
    const NoScheduler none;
    SaveWithErrors(app, {CommandFailed("lpadmin", "lp2")});
    EXPECT_EQ(before, SavedState()) << "only the old queue is saved";
    AdminApp second;
    second.SelectQueues({0});
    second.Click("DeleteButton");
    SaveWithErrors(second, {CommandFailed("lpadmin", "lp1")});
    EXPECT_EQ(before, SavedState());
  }
  EXPECT_EQ("lp1\n", SpoolerQueues());
}

// A full disk below the data directory, while the program runs. Its pages have 4096 bytes.
class FullDisk : public AdminFailures {
 protected:
  static void Fill(const std::string &list) {
    std::filesystem::create_directory(kUsersDir);
    std::ofstream(kQueuesFile) << list;
  }
};

TEST_F(FullDisk, WithoutRoomForTheKeptCopyNothingIsTouched) {
  AddAndSave({kLp1});
  const std::string list = ContentOf(kQueuesFile);
  AdminApp app;
  app.SelectQueues({0});
  app.Click("DeleteButton");
  app.AddQueue(kLp2);
  const SmallDisk disk(kDataDir, 4096);
  Fill(list);
  SaveWithErrors(app, {CannotWrite(std::string(kQueuesFile) + ".save")});
  EXPECT_EQ(list, ContentOf(kQueuesFile));
  EXPECT_EQ((Strings{"queues.paf", "users"}), NamesIn(kDataDir));
  EXPECT_EQ("lp1\n", SpoolerQueues());
}

TEST_F(FullDisk, WithoutRoomForWhatIsIntendedNothingIsTouched) {
  AddAndSave({kLp1});
  const std::string list = ContentOf(kQueuesFile);
  AdminApp app;
  app.SelectQueues({0});
  app.Click("DeleteButton");
  app.AddQueue(kLp2);
  const SmallDisk disk(kDataDir, 2 * 4096);
  Fill(list);
  SaveWithErrors(app, {CannotWrite(std::string(kQueuesFile) + ".next")});
  EXPECT_EQ(list, ContentOf(kQueuesFile));
  EXPECT_EQ("lp1\n", SpoolerQueues());
}

TEST_F(FullDisk, WithoutRoomForTheNewListTheNextStartFinishesTheSave) {
  AddAndSave({kLp1});
  const std::string list = ContentOf(kQueuesFile);
  const std::string kept = std::string(kQueuesFile) + ".save";
  const std::string next = std::string(kQueuesFile) + ".next";
  std::string intended;
  {
    AdminApp app;
    app.SelectQueues({0});
    for (int i = 0; i < 12; ++i) app.Click("CloneButton");
    const SmallDisk disk(kDataDir, 4 * 4096);
    Fill(list);
    SaveWithErrors(app, {CannotWrite(kQueuesFile)});
    EXPECT_EQ(list, ContentOf(kept));
    EXPECT_EQ("", ContentOf(kQueuesFile));
    intended = ContentOf(next);
  }
  // What the small disk held, with room again.
  std::ofstream(kQueuesFile, std::ios::trunc).flush();
  std::ofstream(kept) << list;
  std::ofstream(next) << intended;
  AdminApp app;
  app.WaitWindow("KPXErrorWarningDialog");
  EXPECT_EQ(CatalogueText("WARN_SAVE_UNFINISHED") + "\n", app.Text("ErrorWarningText"));
  app.Key("Return");
  app.WaitGone("KPXErrorWarningDialog");
  EXPECT_EQ(13U, app.QueueNames().size());
  app.Click("SaveButton");
  EXPECT_EQ(0, app.WaitExit());
  EXPECT_EQ(intended.substr(0, intended.find("##complete")), ContentOf(kQueuesFile));
  EXPECT_FALSE(std::filesystem::exists(kept));
  EXPECT_FALSE(std::filesystem::exists(next));
}

TEST_F(AdminFailures, AKeptCopyAloneBringsTheOldQueuesBack) {
  AddAndSave({kLp1});
  const std::string list = ContentOf(kQueuesFile);
  std::filesystem::rename(kQueuesFile, std::string(kQueuesFile) + ".save");
  std::ofstream(kQueuesFile, std::ios::trunc).flush();
  AdminApp app;
  app.WaitWindow("KPXErrorWarningDialog");
  EXPECT_EQ(CatalogueText("WARN_QUEUE_LIST_RESTORED", {kQueuesFile}) + "\n",
            app.Text("ErrorWarningText"));
  app.Key("Return");
  app.WaitGone("KPXErrorWarningDialog");
  EXPECT_EQ(Strings{"-lp1"}, app.QueueNames());
  app.Click("SaveButton");
  EXPECT_EQ(0, app.WaitExit());
  EXPECT_EQ(list, ContentOf(kQueuesFile));
  EXPECT_FALSE(std::filesystem::exists(std::string(kQueuesFile) + ".save"));
}

}  // namespace
