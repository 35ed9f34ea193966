// Queues in a real spooler: made, printed to, re-addressed, removed.
#include <gtest/gtest.h>

#include <fstream>

#include "command.h"
#include "cprintqueues.h"
#include "deffile.h"
#include "ignoreresult.h"
#include "interfacescript.h"
#include "must.h"
#include "printedjobs.h"
#include "privateworld.h"
#include "queuecreation.h"
#include "queuesupport.h"

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

constexpr char kInterfaces[] = "/usr/spool/lp/admins/lp/interfaces/";

std::string Script(const std::string &queue) { return ContentOf(kInterfaces + queue); }

// The script that the spooler makes from its interface of `model`, before anything is added.
std::string ModelScript(const std::string &model) {
  EXPECT_EQ(RunCommand("/usr/lib/lpadmin -p probe -v /dev/null -I any -o nobanner -m " + model), 0);
  const std::string script = Script("probe");
  EXPECT_EQ(RunCommand("/usr/lib/lpadmin -x probe"), 0);
  return script;
}

std::string OutputOf(const std::string &command) {
  const TemporaryDirectory directory;
  [[maybe_unused]] const int status =
      std::system((command + " >" + directory.Path("output") + " 2>&1").c_str());
  return ContentOf(directory.Path("output"));
}

// The destinations that the print server itself knows.
std::string ServerQueues() { return OutputOf("LC_ALL=C lpstat -e"); }

class QueuesInARealSpooler : public testing::Test {
 protected:
  QueuesInARealSpooler() {
    RequirePrivateWorld();
    setenv("LANG", "C", 1);
    G_Queues = CreatePrintQueues("/opt/orlan/data/queues.paf");
    G_Queues->queues = CreateHash();
    G_Queues_hash = G_Queues->queues.get();
    Put({.name = "ps1", .printer = "Vek Norvel 4110ES", .address = "127.0.0.1"});
    Put({.name = "raw1", .printer = "Vek Norvel 4105", .language = "raw", .address = "127.0.0.1"});
    EXPECT_EQ(AddQueuesSysV(errors_.get()), 1);
    EXPECT_EQ(Texts(errors_.get()), Strings{});
    EXPECT_EQ(fWriteAllToDef_Function(G_Queues.get()), 1);
    EXPECT_EQ(fWriteToPaf_Function(G_Queues.get()), 1);  // as a save does before its queues print
    TakeSnapshot();
  }
  ~QueuesInARealSpooler() override {
    IgnoreResult(DeleteQueuesSysV(ListOf({"ps1", "raw1"}).get(), errors_.get()),
                 "not every test has both");
    G_Queues_hash = G_OrgQueues_hash = nullptr;
    G_Queues.reset();
    G_OrgQueues.reset();
  }

  void TakeSnapshot() {
    G_OrgQueues = CloneOf(G_Queues.get());
    G_OrgQueues_hash = G_OrgQueues->queues.get();
  }

  static void Put(const QueueValues &values) {
    Must(HashPut(G_Queues_hash, values.name.c_str(), MakeQueue(values)));
  }

  static void ChangeAddress(const char *queue, const char *address) {
    Must(fSet_Address_Function(HashValue<CPrintQueue>(G_Queues_hash, queue), Text(address).get()));
  }

  // The job that the printer gets when `content` is printed to the queue.
  std::string Printed(const std::string &arguments, const std::string &content) {
    const std::string file = files_.Write("file to print", content);
    fs::permissions(files_.Path(), fs::perms(0755));
    PrintedJobs jobs;
    EXPECT_EQ(RunCommand("/usr/bin/lp " + arguments + " '" + file + "' >/dev/null"), 0);
    return jobs.Next().value_or("(no job arrived)");
  }

  CList *Errors() { return errors_.get(); }

 private:
  const Owned<CList> errors_ = CreateList();
  const TemporaryDirectory files_;
};

TEST_F(QueuesInARealSpooler, HaveTheirModelsScriptAndTheBlockByteForByte) {
  EXPECT_EQ(Script("ps1"),
            ModelScript("vek4110") +
                InterfaceBlockText({.queue_type = "postscript",
                                    .ppd_path = "/opt/orlan/data/nls/enu/ppds/vek41101.ppd",
                                    .def_path = "/opt/orlan/data/ps1.def",
                                    .address = "127.0.0.1",
                                    .transport_parameter = "110"}));
  EXPECT_EQ(Script("raw1"),
            ModelScript("vek4105") +
                InterfaceBlockText({.queue_type = "raw",
                                    .ppd_path = "/opt/orlan/data/nls/enu/ppds/vek41051.ppd",
                                    .def_path = "/opt/orlan/data/raw1.def",
                                    .address = "127.0.0.1",
                                    .transport_parameter = "45"}));
}

TEST_F(QueuesInARealSpooler, AreKnownToTheSpoolerAsOurs) {
  const Owned<CList> ours = CreateList();
  const Owned<CList> all = GetQueueNamesSysV(ours.get(), Errors());
  Strings names = Texts(ours.get());
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (Strings{"ps1", "raw1"}));
  EXPECT_EQ(ServerQueues(), "ps1\nraw1\n");
  EXPECT_EQ(ModeOf(std::string(kInterfaces) + "ps1"), 0755u);
}

TEST_F(QueuesInARealSpooler, PrintARawFileUnchanged) {
  const std::string bytes = std::string("\0\xFF\x1B%-12345X\r\n", 13) + std::string(100000, 'r');
  EXPECT_EQ(Printed("-d raw1", bytes), bytes);
}

TEST_F(QueuesInARealSpooler, PrintPostScriptThroughTheFilter) {
  const std::string job = Printed("-d ps1 -o \"*NrCopies=2\"",
                                  "%!PS-Adobe-3.0\n%%Pages: 1\n%%EndComments\n"
                                  "%%Page: 1 1\n% the only page\nshowpage\n%%EOF\n");
  EXPECT_NE(job.find("% the only page\n"), std::string::npos) << job;
  EXPECT_NE(job.find("/NumCopies 2"), std::string::npos) << job;
}

TEST_F(QueuesInARealSpooler, PrintToTheirNewAddressAfterAChange) {
  const std::string before = Script("raw1");
  ChangeAddress("raw1", "localhost");
  EXPECT_EQ(AddQueuesSysV(Errors()), 1);
  EXPECT_EQ(Texts(Errors()), Strings{});
  std::string expected = before;
  const std::string old_line = "\nNETWORK_ADDRESS=127.0.0.1\n";
  expected.replace(expected.find(old_line), old_line.size(), "\nNETWORK_ADDRESS=localhost\n");
  EXPECT_EQ(Script("raw1"), expected);
  EXPECT_EQ(Printed("-d raw1", "again"), "again");
}

TEST_F(QueuesInARealSpooler, AreGoneAfterTheirRemoval) {
  const std::string users_file = "/opt/orlan/data/users/anna:ps1.def";
  std::ofstream(users_file) << "*Nup=2\n";
  EXPECT_EQ(DeleteQueuesSysV(ListOf({"ps1", "raw1"}).get(), Errors()), 1);
  EXPECT_EQ(Texts(Errors()), Strings{});
  EXPECT_EQ(ServerQueues(), "");
  EXPECT_FALSE(fs::exists(std::string(kInterfaces) + "ps1"));
  EXPECT_FALSE(fs::exists(users_file));
  EXPECT_EQ(RemoveInexistentSystemVQueues(Errors()), 1);
  EXPECT_EQ(Keys(G_Queues_hash), Strings{});
  EXPECT_EQ(Texts(Errors()), Strings{}) << "queues that are gone are dropped silently";
}

TEST_F(QueuesInARealSpooler, KeepTheirMessageWhenTheScriptLosesTheMarker) {
  std::ofstream(std::string(kInterfaces) + "ps1") << "#!/bin/sh\n";
  testing::internal::CaptureStderr();
  RemoveInexistentSystemVQueues(Errors());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "WARN_QUEUE_SCRIPT_CHANGED\n");
  EXPECT_EQ(Keys(G_Queues_hash), Strings{"raw1"});
  EXPECT_EQ(RunCommand("/usr/lib/lpadmin -x ps1"), 0);
}

}  // namespace
