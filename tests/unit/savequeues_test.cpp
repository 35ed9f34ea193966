// A save and what keeps the queue list safe meanwhile. Runs in the sandbox: the option files have
// their fixed place and the spooler is a stand-in.
#include "savequeues.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "coresupport.h"
#include "cprintqueues.h"
#include "debug.h"
#include "globals.h"
#include "ignoreresult.h"
#include "loadqueues.h"
#include "must.h"
#include "paths.h"
#include "porting.h"
#include "queuelistkeep.h"
#include "queuelistwriter.h"
#include "queuesupport.h"
#include "spoolerstandin.h"
#include "temporarydirectory.h"
#include "unfinishedsave.h"

namespace fs = std::filesystem;

namespace {

constexpr char kRestored[] = "#WARN_QUEUE_LIST_RESTORED\nrestored <%s>\n";

TEST(WholeQueueList, EndsWhereAQueueEnds) {
  const std::string header = QueueListHeader();
  EXPECT_TRUE(IsWholeQueueList(header));
  EXPECT_TRUE(IsWholeQueueList(header + "#queue\nx\n#end_queue\n"));
  EXPECT_TRUE(IsWholeQueueList(header + "#end_queue\n\n## end\n"));
  EXPECT_FALSE(IsWholeQueueList(""));
  EXPECT_FALSE(IsWholeQueueList(header + "#queue\nx\n#end_que"));
  EXPECT_FALSE(IsWholeQueueList(header + "#queue\nx\n"));
  EXPECT_FALSE(IsWholeQueueList(header + "#end_queue\n#queue\n"));
  EXPECT_FALSE(IsWholeQueueList(header + "#end_queue"));
}

class Save : public testing::Test {
 protected:
  Save() : messages_(std::string(kQueueMessages) + kRestored), errors_(CreateList()) {
    setenv("LANG", "C", 1);
    for (const auto &entry : fs::directory_iterator(kDataDir)) {
      if (entry.is_regular_file()) fs::remove(entry.path());
    }
    Start();
  }
  ~Save() override {
    G_Queues.reset();
    G_OrgQueues.reset();
    G_Queues_hash = nullptr;
    G_OrgQueues_hash = nullptr;
  }

  // What a start does: reads the list, looks for its queues, and takes the snapshot.
  void Start() {
    G_Queues = CreatePrintQueues(kQueuesFile);
    IgnoreResult(LoadQueueList(G_Queues.get(), 1, errors_.get()), "there may be no list yet");
    G_Queues_hash = fGetPrintQueues_Function(G_Queues.get());
    RemoveInexistentSystemVQueues(errors_.get());
    G_OrgQueues = CloneOf(G_Queues.get());
    G_OrgQueues_hash = fGetPrintQueues_Function(G_OrgQueues.get());
  }
  void Put(const std::string &name) {
    Must(HashPut(G_Queues_hash, name.c_str(), MakeQueue({.name = name})));
  }
  SaveResult SaveAll(const std::vector<std::string> &deleted = {}) {
    const Owned<CList> names = ListOf(deleted);
    return SaveQueues(names.get(), errors_.get(),
                      [this](const SaveStep &step) { steps_.push_back(step); });
  }
  std::vector<std::string> Errors() { return Texts(errors_.get()); }

  // The number of each step that was told, "!" behind it when a command follows.
  std::string Steps() const {
    std::string text;
    for (const SaveStep &step : steps_) {
      text += std::to_string(step.number) + (step.runs_command ? "! " : " ");
    }
    return text;
  }

  const std::string kept_ = KeptQueueListPath(kQueuesFile);
  SpoolerStandIn spooler_;
  ProgramMessages messages_;
  Owned<CList> errors_;
  std::vector<SaveStep> steps_;
};

TEST_F(Save, WritesSpoolerListAndOptionFilesAndLeavesNoKeptCopy) {
  Put("lp1");
  Put("lp2");
  EXPECT_EQ(SaveAll(), SaveResult::Ended);
  EXPECT_TRUE(Errors().empty());
  int left_out = 0;
  EXPECT_EQ(ContentOf(kQueuesFile), QueueListText(G_Queues_hash, &left_out));
  EXPECT_TRUE(fs::exists("/opt/orlan/data/lp1.def"));
  EXPECT_TRUE(SpoolerStandIn::HasQueue("lp2"));
  EXPECT_FALSE(fs::exists(kept_));
}

TEST_F(Save, TellsEachQueueBeforeItIsHandled) {
  Put("lp1");
  SaveAll();
  Put("lp2");
  steps_.clear();
  HashRemove(G_Queues_hash, "lp1");
  SaveAll({"lp1"});
  ASSERT_GE(steps_.size(), 3U);
  EXPECT_STREQ(steps_[0].text_key, "SAVE_REMOVING");
  EXPECT_EQ(steps_[0].queue, "lp1");
  EXPECT_EQ(steps_[0].number, 1);
  EXPECT_STREQ(steps_[2].text_key, "SAVE_CREATING");
  EXPECT_EQ(steps_[2].queue, "lp2");
  EXPECT_EQ(steps_[2].number, 2);
  EXPECT_EQ(steps_[2].total, 2);
}

TEST_F(Save, TellsAQueueAgainBeforeEachOfTheSixCommandsThatMakeIt) {
  Put("lp1");
  Put("lp2");
  SaveAll();
  EXPECT_EQ(Steps(), "1 1! 1! 1! 1! 1! 1! 2 2! 2! 2! 2! 2! 2! ");
}

TEST_F(Save, TellsThatNoCommandIsRunForAQueueThatNeedsNone) {
  for (const char *name : {"lp1", "lp2", "lp3", "lp4"}) Put(name);
  SaveAll();
  Start();
  steps_.clear();
  HashRemove(G_Queues_hash, "lp2");
  Must(fSet_Address_Function(HashValue<CPrintQueue>(G_Queues_hash, "lp3"), Text("new.host").get()));
  SaveAll({"lp2", "never-saved"});
  EXPECT_EQ(Steps(), "1 1! 2 3 4 4! 5 ");
}

TEST_F(Save, TheKeptCopyStaysWhenAnOptionFileCouldNotBeWritten) {
  Put("lp1");
  SaveAll();
  const std::string list = ContentOf(kQueuesFile);
  fs::remove("/opt/orlan/data/lp1.def");
  fs::create_directory("/opt/orlan/data/lp1.def");
  SaveAll();
  EXPECT_EQ(Errors(), std::vector<std::string>{"write </opt/orlan/data/lp1.def>"});
  EXPECT_EQ(ContentOf(kept_), list);
  fs::remove("/opt/orlan/data/lp1.def");
  SaveAll();
  EXPECT_FALSE(fs::exists(kept_));
}

TEST_F(Save, TheListIsEmptyAndItsOldContentKeptWhileTheSpoolerWorks) {
  Put("lp1");
  SaveAll();
  const std::string old_list = ContentOf(kQueuesFile);
  chmod(kQueuesFile, 0640);
  Put("lp2");
  const Owned<CList> none = CreateList();
  std::string kept;
  std::string list = "unset";
  mode_t mode = 0;
  EXPECT_EQ(SaveResult::Ended, SaveQueues(none.get(), errors_.get(), [&](const SaveStep &) {
              kept = ContentOf(kept_);
              list = ContentOf(kQueuesFile);
              struct stat status = {};
              stat(kept_.c_str(), &status);
              mode = status.st_mode & 07777;
            }));
  EXPECT_EQ(kept, old_list);
  EXPECT_EQ(list, "");
  EXPECT_EQ(mode, 0640U);
  EXPECT_FALSE(fs::exists(kept_));
}

TEST_F(Save, EveryOptionFileIsThereBeforeTheFirstQueueIsMade) {
  Put("lp1");
  SaveAll();
  Start();
  Put("lp2");
  Must(HashPutText(HashValue<CPrintQueue>(G_Queues_hash, "lp1")->Options.get(), "*Nup", "2"));
  Must(HashPutText(HashValue<CPrintQueue>(G_Queues_hash, "lp2")->Options.get(), "*Nup", "4"));
  const Owned<CList> none = CreateList();
  int steps = 0;
  EXPECT_EQ(SaveResult::Ended, SaveQueues(none.get(), errors_.get(), [&](const SaveStep &) {
              ++steps;
              EXPECT_EQ(ContentOf("/opt/orlan/data/lp1.def"), "*Nup=2\n");
              EXPECT_EQ(ContentOf("/opt/orlan/data/lp2.def"), "*Nup=4\n");
            }));
  EXPECT_GT(steps, 5);
}

TEST_F(Save, AQueueWhoseScriptCannotBeReadIsNotForgotten) {
  Put("lp1");
  Put("lp2");
  SaveAll();
  const std::string list = ContentOf(kQueuesFile);
  fs::remove(SpoolerStandIn::ScriptPath("lp1"));
  fs::create_symlink("lp1", SpoolerStandIn::ScriptPath("lp1"));  // ELOOP
  Start();
  EXPECT_EQ(Keys(G_Queues_hash), std::vector<std::string>{"lp2"});
  const size_t calls = SpoolerStandIn::Calls().size();
  SaveAll();
  EXPECT_EQ(ContentOf(kQueuesFile), list);
  EXPECT_TRUE(fs::exists("/opt/orlan/data/lp1.def"));
  EXPECT_EQ(SpoolerStandIn::Calls().size(), calls);
  EXPECT_EQ(Errors(), std::vector<std::string>{"read <" + SpoolerStandIn::ScriptPath("lp1") + ">"});
}

TEST_F(Save, AfterAFailedRemovalNothingIsCreatedButTheFilesAreWritten) {
  Put("lp1");
  SaveAll();
  Start();
  SpoolerStandIn::Fail("lpadmin");
  HashRemove(G_Queues_hash, "lp1");
  Put("lp2");
  EXPECT_EQ(SaveAll({"lp1"}), SaveResult::Ended);
  EXPECT_EQ(Errors(), std::vector<std::string>{"command <lpadmin> <lp1>"});
  EXPECT_FALSE(SpoolerStandIn::HasQueue("lp2"));
  EXPECT_EQ(Keys(G_Queues_hash), (std::vector<std::string>{"lp1", "lp2"}));
  EXPECT_NE(ContentOf(kQueuesFile).find("lp1"), std::string::npos);
}

TEST_F(Save, AnUnwritableListEndsItBeforeTheSpoolerIsTouched) {
  Put("lp1");
  fs::remove(kQueuesFile);
  fs::create_directory(kQueuesFile);
  EXPECT_EQ(SaveAll(), SaveResult::ListNotWritable);
  EXPECT_EQ(Errors(), std::vector<std::string>{"write </opt/orlan/data/queues.paf>"});
  EXPECT_TRUE(SpoolerStandIn::Calls().empty());
  fs::remove(kQueuesFile);
}

TEST_F(Save, AListThatCannotBeKeptIsNotEmptied) {
  Put("lp1");
  SaveAll();
  const std::string old_list = ContentOf(kQueuesFile);
  fs::create_directory(kept_);
  Put("lp2");
  SaveAll();
  EXPECT_EQ(Errors(), std::vector<std::string>{"write <" + kept_ + ">"});
  EXPECT_EQ(ContentOf(kQueuesFile), old_list);
  EXPECT_FALSE(SpoolerStandIn::HasQueue("lp2"));
  fs::remove(kept_);
}

TEST_F(Save, AStartAfterAnInterruptedSaveReadsTheKeptListAndSaysSo) {
  Put("lp1");
  SaveAll();
  const std::string list = ContentOf(kQueuesFile);
  for (const std::string &left : {std::string(), list.substr(0, list.size() / 2)}) {
    std::ofstream(kept_) << list;
    std::ofstream(kQueuesFile) << left;
    errors_ = CreateList();
    Start();
    EXPECT_EQ(Keys(G_Queues_hash), std::vector<std::string>{"lp1"}) << left;
    EXPECT_EQ(Errors(), std::vector<std::string>{"restored </opt/orlan/data/queues.paf>"});
  }
}

TEST_F(Save, ThePrintToolReadsTheKeptListWithoutChangingAnything) {
  Put("lp1");
  SaveAll();
  fs::rename(kQueuesFile, kept_);
  std::ofstream{kQueuesFile};
  const Owned<CPrintQueues> queues = CreatePrintQueues(kQueuesFile);
  Must(LoadQueueList(queues.get(), 0, nullptr));
  EXPECT_EQ(Keys(fGetPrintQueues_Function(queues.get())), std::vector<std::string>{"lp1"});
  EXPECT_EQ(ContentOf(kQueuesFile), "");
  EXPECT_TRUE(fs::exists(kept_));
}

// Its user cannot save.
TEST_F(Save, ThePrintToolDoesNotSayThatAListWasRestored) {
  Put("lp1");
  SaveAll();
  fs::rename(kQueuesFile, kept_);
  std::ofstream{kQueuesFile};
  const ChildResult start = RunInChild([] {
    const Owned<CPrintQueues> queues = CreatePrintQueues(kQueuesFile);
    Must(LoadQueueList(queues.get(), 0, nullptr));
    _exit(HashIsEmpty(fGetPrintQueues_Function(queues.get())) ? 1 : 0);
  });
  EXPECT_EQ(start.errors, "");
  EXPECT_EQ(start.status, 0);
}

TEST_F(Save, AKeptListThatCannotBeReadIsReportedAndNothingIsCalledRestored) {
  fs::create_directory(kept_);
  for (const char *left : {"", "#queue\n"}) {
    std::ofstream(kQueuesFile) << left;
    errors_ = CreateList();
    Start();
    EXPECT_EQ(Errors(), std::vector<std::string>{"read <" + kept_ + ">"});
    EXPECT_TRUE(Keys(G_Queues_hash).empty());
  }
  fs::remove(kept_);
}

TEST_F(Save, AKeptListThatIsNeededAndCannotBeReadIsNeitherOverwrittenNorDropped) {
  std::ofstream{kQueuesFile};
  fs::create_directory(kept_);
  Start();
  errors_ = CreateList();
  Put("lp1");
  EXPECT_EQ(SaveAll(), SaveResult::Ended);
  EXPECT_EQ(Errors(), std::vector<std::string>{"read <" + kept_ + ">"});
  EXPECT_TRUE(fs::is_directory(kept_));
  EXPECT_EQ(ContentOf(kQueuesFile), "");
  EXPECT_FALSE(SpoolerStandIn::HasQueue("lp1"));
  fs::remove(kept_);
}

TEST_F(Save, AKeptCopyThatCannotBeRemovedIsLogged) {
  fs::create_directory(kept_);
  G_DebugLevel = 1;
  testing::internal::CaptureStderr();
  DropKeptQueueList(kQueuesFile);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            kept_ + " cannot be removed: " + std::strerror(EISDIR) + "\n");
  G_DebugLevel = 0;
  fs::remove(kept_);
}

TEST_F(Save, AStartAtAnyMomentOfASaveFindsEveryQueue) {
  constexpr int kQueues = 40;
  for (int i = 0; i < kQueues; ++i) Put("lp" + std::to_string(i));
  ASSERT_EQ(1, fWriteToPaf_Function(G_Queues.get(), errors_.get()));
  const pid_t saver = fork();
  if (saver == 0) {
    // What a save does to the list, again and again.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (;;) {
      Must(KeepQueueList(kQueuesFile, nullptr));
      if (truncate(kQueuesFile, 0) != 0) _exit(1);
      usleep(200);
      Must(fWriteToPaf_Function(G_Queues.get(), nullptr));
      DropKeptQueueList(kQueuesFile);
      usleep(200);
    }
  }
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
  int starts = 0;
  int incomplete = 0;
  while (std::chrono::steady_clock::now() < end || starts <= 100) {
    const Owned<CPrintQueues> queues = CreatePrintQueues(kQueuesFile);
    Must(LoadQueueList(queues.get(), 0, nullptr));
    ++starts;
    if (Keys(fGetPrintQueues_Function(queues.get())).size() != kQueues) ++incomplete;
  }
  kill(saver, SIGKILL);
  int status = 0;
  waitpid(saver, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status)) << "the saves did not go on";
  EXPECT_EQ(incomplete, 0) << "of " << starts << " starts";
}

TEST_F(Save, AWholeListIsPreferredToTheKeptOne) {
  Put("lp1");
  SaveAll();
  fs::copy_file(kQueuesFile, kept_);
  Put("lp2");
  spooler_.AddQueue("lp2", std::string(kMarkerLine) + "\n");
  Must(WriteQueueList(kQueuesFile, G_Queues_hash));
  Start();
  EXPECT_EQ(Keys(G_Queues_hash), (std::vector<std::string>{"lp1", "lp2"}));
  EXPECT_TRUE(Errors().empty());
}

TEST_F(Save, TheNextSaveAfterARestoredListKeepsItUntilEverythingIsWritten) {
  Put("lp1");
  SaveAll();
  fs::rename(kQueuesFile, kept_);
  std::ofstream{kQueuesFile};
  Start();
  std::string kept;
  const Owned<CList> none = CreateList();
  EXPECT_EQ(SaveResult::Ended, SaveQueues(none.get(), errors_.get(),
                                          [&](const SaveStep &) { kept = ContentOf(kept_); }));
  EXPECT_NE(kept.find("lp1"), std::string::npos);
  EXPECT_FALSE(fs::exists(kept_));
  EXPECT_NE(ContentOf(kQueuesFile).find("lp1"), std::string::npos);
}

// What a save intends.

const std::string kIntention = IntentionPath(kQueuesFile);

TEST(Intention, IsTheListWithTheRemovalsBehindIt) {
  const Owned<CHash> queues = CreateHash();
  Must(HashPut(queues.get(), "lp1", MakeQueue()));
  // A value that looks like a removal is none.
  Must(HashPutText(HashValue<CPrintQueue>(queues.get(), "lp1")->Options.get(), "*A", "##remove x"));
  int left_out = 0;
  const std::string list = QueueListText(queues.get(), &left_out);
  const std::string text = IntentionText(queues.get(), ListOf({"lp2", "lp3"}).get());
  EXPECT_EQ(text, list + "##remove lp2\n##remove lp3\n##complete\n");
  EXPECT_EQ(RemovalsOf(text), (std::vector<std::string>{"lp2", "lp3"}));
  EXPECT_EQ(RemovalsOf(IntentionText(queues.get(), nullptr)), std::vector<std::string>{});
  EXPECT_TRUE(IsWholeQueueList(text)) << "readers of lists skip the rest";
}

TEST(Intention, IsNotWholeWhereverItBreaksOff) {
  const Owned<CHash> queues = CreateHash();
  Must(HashPut(queues.get(), "lp1", MakeQueue()));
  const std::string text = IntentionText(queues.get(), ListOf({"lp2"}).get());
  for (size_t size = 0; size < text.size(); ++size) {
    EXPECT_EQ(RemovalsOf(text.substr(0, size)), std::nullopt) << size;
  }
}

// A start of the administration program.
class UnfinishedSave : public Save {
 protected:
  UnfinishedSave() { G_ProgName = kModeAdministration; }
  ~UnfinishedSave() override {
    G_ProgName = kModeNeither;
    G_UnfinishedRemovals.reset();
  }

  // As Start, with the messages that it gives.
  std::vector<std::string> StartAdministration() {
    const Owned<CList> messages = CreateList();
    G_Queues = CreatePrintQueues(kQueuesFile);
    LoadQueuesAtStart(messages.get());
    return Texts(messages.get());
  }
  void PutIntention(const std::vector<std::string> &removed) {
    const Owned<CList> names = ListOf(removed);
    ASSERT_TRUE(KeepIntention(kQueuesFile, G_Queues_hash, names.get(), nullptr));
  }
  // What the window's Save does.
  void SaveShown() {
    SaveQueues(G_UnfinishedRemovals.get(), errors_.get(), {});
    EXPECT_EQ(Errors(), std::vector<std::string>{});
  }
};

TEST_F(UnfinishedSave, TheIntentionIsThereFromBeforeTheFirstCommandUntilTheEnd) {
  Put("lp1");
  SaveAll();
  Put("lp2");
  HashRemove(G_Queues_hash, "lp1");
  const std::string expected = IntentionText(G_Queues_hash, ListOf({"lp1"}).get());
  int steps = 0;
  const Owned<CList> names = ListOf({"lp1"});
  SaveQueues(names.get(), errors_.get(), [&](const SaveStep &) {
    ++steps;
    EXPECT_EQ(ContentOf(kIntention), expected);
  });
  EXPECT_GT(steps, 5);
  EXPECT_FALSE(fs::exists(kIntention));
}

TEST_F(UnfinishedSave, AStartShowsWhatWasIntendedAndSaveFinishesIt) {
  Put("lp1");
  Put("lp2");
  SaveAll();
  HashRemove(G_Queues_hash, "lp1");
  Put("lp3");
  PutIntention({"lp1"});
  for (int start = 0; start < 3; ++start) {
    EXPECT_EQ(StartAdministration(), std::vector<std::string>{"unfinished"});
    EXPECT_EQ(Keys(G_Queues_hash), (std::vector<std::string>{"lp2", "lp3"}));
    EXPECT_EQ(Texts(G_UnfinishedRemovals.get()), std::vector<std::string>{"lp1"});
  }
  SaveShown();
  EXPECT_FALSE(SpoolerStandIn::HasQueue("lp1"));
  EXPECT_TRUE(SpoolerStandIn::HasQueue("lp3"));
  EXPECT_FALSE(fs::exists(kIntention));
  EXPECT_EQ(StartAdministration(), std::vector<std::string>{});
  EXPECT_EQ(G_UnfinishedRemovals, nullptr);
}

TEST_F(UnfinishedSave, AQueueThatTheSpoolerKeepsComesBackAsTheListHadIt) {
  Put("lp1");
  SaveAll();
  HashRemove(G_Queues_hash, "lp1");
  PutIntention({"lp1"});
  StartAdministration();
  SpoolerStandIn::Fail("lpadmin");
  SaveQueues(G_UnfinishedRemovals.get(), errors_.get(), {});
  EXPECT_EQ(Errors(), std::vector<std::string>{"command <lpadmin> <lp1>"});
  EXPECT_EQ(Keys(G_Queues_hash), std::vector<std::string>{"lp1"});
}

TEST_F(UnfinishedSave, ADamagedIntentionIsToldAndNotUsed) {
  Put("lp1");
  SaveAll();
  Put("lp2");
  PutIntention({"lp1"});
  const std::string text = ContentOf(kIntention);
  std::string incomplete = text;
  incomplete.replace(incomplete.find("#address\n"), 9, "");
  for (const std::string &damaged : {std::string(), text.substr(0, text.size() / 2), incomplete}) {
    std::ofstream(kIntention) << damaged;
    EXPECT_EQ(StartAdministration(), std::vector<std::string>{"unknown <" + kIntention + ">"});
    EXPECT_EQ(Keys(G_Queues_hash), std::vector<std::string>{"lp1"});
    EXPECT_EQ(G_UnfinishedRemovals, nullptr);
  }
  SaveShown();
  EXPECT_FALSE(fs::exists(kIntention));
}

TEST_F(UnfinishedSave, ThePrintToolNeverUsesIt) {
  Put("lp1");
  SaveAll();
  Put("lp2");
  PutIntention({"lp1"});
  G_ProgName = kModePrintTool;
  EXPECT_EQ(StartAdministration(), std::vector<std::string>{});
  EXPECT_EQ(Keys(G_Queues_hash), std::vector<std::string>{"lp1"});
}

TEST_F(UnfinishedSave, AnIntentionThatCannotBeWrittenEndsTheSaveBeforeAnythingIsTouched) {
  Put("lp1");
  SaveAll();
  const std::string list = ContentOf(kQueuesFile);
  fs::create_directory(kIntention);
  Put("lp2");
  EXPECT_EQ(SaveAll({"lp1"}), SaveResult::Ended);
  EXPECT_EQ(Errors(), std::vector<std::string>{"write <" + kIntention + ">"});
  EXPECT_EQ(ContentOf(kQueuesFile), list);
  EXPECT_TRUE(SpoolerStandIn::HasQueue("lp1"));
  EXPECT_FALSE(SpoolerStandIn::HasQueue("lp2"));
  fs::remove(kIntention);
}

TEST_F(UnfinishedSave, TheIntentionStaysWhenAnOptionFileCouldNotBeWritten) {
  Put("lp1");
  fs::create_directory("/opt/orlan/data/lp1.def");
  SaveAll();
  EXPECT_TRUE(fs::exists(kIntention));
  fs::remove("/opt/orlan/data/lp1.def");
  errors_ = CreateList();
  EXPECT_EQ(StartAdministration(), std::vector<std::string>{"unfinished"});
  SaveShown();
  EXPECT_FALSE(fs::exists(kIntention));
  EXPECT_TRUE(fs::exists("/opt/orlan/data/lp1.def"));
}

TEST_F(UnfinishedSave, AStartRemovesWhatKilledProgramsLeftBesideTheirFiles) {
  const std::string data = std::string(kDataDir) + "/";
  const std::vector<std::string> leftovers = {
      data + "queues.a1B2c3.paf", data + "queues.paf.a1B2c3.save", data + "queues.paf.a1B2c3.next",
      data + "lp1.a1B2c3.def", SpoolerStandIn::ScriptPath("lp1.KPXadmin")};
  const std::vector<std::string> kept = {data + "lp1.def", data + "queues.paf.bak",
                                         data + "my.notes", SpoolerStandIn::ScriptPath("theirs")};
  for (const auto &paths : {leftovers, kept}) {
    for (const std::string &path : paths) std::ofstream(path) << "x";
  }
  EXPECT_EQ(StartAdministration(), std::vector<std::string>{});
  for (const std::string &path : leftovers) EXPECT_FALSE(fs::exists(path)) << path;
  for (const std::string &path : kept) EXPECT_TRUE(fs::exists(path)) << path;
}

TEST(QueueListLock, IsHeldByOneProcessAtATimeAndGoesWithIt) {
  RequirePrivateWorld();
  const auto take = [] { _exit(LockQueueList(kQueuesFile) == 1 ? 0 : 9); };
  int holding[2];
  int release[2];
  ASSERT_EQ(pipe2(holding, O_CLOEXEC), 0);
  ASSERT_EQ(pipe2(release, O_CLOEXEC), 0);
  const pid_t holder = fork();
  if (holder == 0) {
    const char locked = LockQueueList(kQueuesFile) == 1 ? 'y' : 'n';
    char c = 0;
    if (write(holding[1], &locked, 1) != 1 || read(release[0], &c, 1) != 1) _exit(1);
    raise(SIGKILL);
  }
  char locked = 0;
  ASSERT_EQ(read(holding[0], &locked, 1), 1);
  EXPECT_EQ(locked, 'y');
  EXPECT_EQ(RunInChild(take).status, 9);
  ASSERT_EQ(write(release[1], "x", 1), 1);
  waitpid(holder, nullptr, 0);
  EXPECT_EQ(RunInChild(take).status, 0);
  close(holding[0]);
  close(holding[1]);
  close(release[0]);
  close(release[1]);
}

}  // namespace
