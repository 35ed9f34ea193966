// The shut-down of the process-wide records.
#include "globals.h"

#include <gtest/gtest.h>

#include "chelp.h"
#include "childprocess.h"
#include "cmessages.h"
#include "cprinters.h"
#include "cprintqueues.h"
#include "debug.h"

namespace {

// The lines without the addresses.
std::vector<std::string> ShutDownLines(const std::function<void()> &prepare) {
  const ChildResult result = RunInChild([&] {
    unsetenv("KPXDEBUG");
    prepare();
    G_DebugLevel = 4;
    DeleteGlobalVars();
    G_DebugLevel = 0;
  });
  EXPECT_EQ(result.status, 0);
  std::vector<std::string> lines = SplitLines(result.errors);
  for (std::string &line : lines) {
    const size_t address = line.find(" is 0x");
    if (address != std::string::npos) line.resize(address + 4);
  }
  return lines;
}

}  // namespace

TEST(DeleteGlobalVars, DeletesInItsOrderAndNamesEach) {
  const std::vector<std::string> lines = ShutDownLines([] {
    G_Printers = CreatePrinters("ppds", "pafs");
    G_Queues = CreatePrintQueues("queues");
    G_OrgQueues = CreatePrintQueues("queues");
    G_Messages = CreateMessages("messages");
    G_Help = CreateHelp("help");
    G_StdinFileName = "/tmp/x";
  });
  std::vector<std::string> own;
  for (const std::string &line : lines) {
    if (line.find("_Function() function") == std::string::npos) own.push_back(line);
  }
  EXPECT_EQ(own,
            (std::vector<std::string>{"BEGIN DeleteGlobalVars() function", "G_Printers is ",
                                      "Delete G_Printers...", "G_Queues is ", "Delete G_Queues...",
                                      "G_OrgQueues is ", "Delete G_OrgQueues...", "G_Messages is ",
                                      "Delete G_Messages...", "G_Helps is ", "Delete G_Help...",
                                      "G_StdinFileName is ", "END   DeleteGlobalVars() function"}));
}

TEST(DeleteGlobalVars, LeavesOutWhatIsNotSet) {
  EXPECT_EQ(ShutDownLines([] {}),
            (std::vector<std::string>{
                "BEGIN DeleteGlobalVars() function", "G_Printers is (nil)", "G_Queues is (nil)",
                "G_OrgQueues is (nil)", "G_Messages is (nil)", "G_Helps is (nil)",
                "G_StdinFileName is (nil)", "END   DeleteGlobalVars() function"}));
}

TEST(DeleteGlobalVars, ForgetsWhatItDeleted) {
  G_Messages = CreateMessages("messages");
  G_Help = CreateHelp("help");
  G_StdinFileName = "/tmp/x";
  DeleteGlobalVars();
  EXPECT_EQ(G_Messages, nullptr);
  EXPECT_EQ(G_Help, nullptr);
  EXPECT_EQ(G_StdinFileName, "");
}
