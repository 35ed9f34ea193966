// What the windows store is what the filter reads: each rule of both, from the writer to the
// reader.
#include "jobrules.h"

#include <gtest/gtest.h>

#include "copies.h"
#include "deffile.h"
#include "filterjob.h"
#include "must.h"
#include "optionfiles.h"
#include "paths.h"
#include "queuesupport.h"
#include "settingkeys.h"
#include "textline.h"
#include "utils.h"

namespace {

// The settings of a job on the queue, read from its own option file.
class Written {
 public:
  explicit Written(const CPrintQueue *queue) : model_(TestPpd("office.ppd")), settings_(model_) {
    settings_.ApplyQueue(KeyValuesOf(QueueDefFileText(queue)));
  }

  const JobSettings &Settings() const { return settings_; }

 private:
  PpdModel model_;
  JobSettings settings_;
};

void Set(CPrintQueue *queue, const char *key, const char *value) {
  Must(HashPutText(queue->Options.get(), key, value));
}

TEST(JobRules, ACustomPaperOfTheQueueIsReadAsItWasWritten) {
  for (const char *name : {"Ticket", "A 5", "d'Anna", "two''quotes", "::"}) {
    const Owned<CPrintQueue> queue = MakeQueue();
    PutPaper(queue.get(), name, 210, 400);
    Set(queue.get(), kPageSizeKey, name);
    const Written written(queue.get());
    EXPECT_EQ(written.Settings().PaperName(), name);
    ASSERT_TRUE(written.Settings().Paper()) << name;
    EXPECT_EQ(written.Settings().Paper()->width, 210) << name;
    EXPECT_EQ(written.Settings().Paper()->length, 400) << name;
    EXPECT_TRUE(written.Settings().Warnings().empty()) << written.Settings().Warnings().front();
  }
}

TEST(JobRules, ACustomMediaOfTheQueueIsReadAsItWasWritten) {
  for (const char *name : {"Gloss", "A b", "d''A"}) {
    const Owned<CPrintQueue> queue = MakeQueue();
    PutMedia(queue.get(), name, "Shown: as typed");
    Set(queue.get(), kMediaTypeKey, name);
    const Written written(queue.get());
    EXPECT_EQ(written.Settings().MediaName(), name);
    EXPECT_TRUE(written.Settings().Warnings().empty()) << written.Settings().Warnings().front();
  }
}

TEST(JobRules, AValueWithoutItsPartsIsNoCustomPaperOrMedia) {
  for (const char *value : {"", "Ticket", "Ticket''210", "''", "'''", "x'''5"}) {
    EXPECT_FALSE(CustomPaperOf(value)) << value;
  }
  EXPECT_FALSE(CustomMediaOf("Gloss:Glossy"));
}

TEST(JobRules, TheMostCopiesThatTheWindowTakesAreCopiesOfTheJob) {
  const Owned<CPrintQueue> queue = MakeQueue();
  Set(queue.get(), kCopiesKey, std::to_string(kMostCopies).c_str());
  EXPECT_EQ(Written(queue.get()).Settings().Copies(), kMostCopies);
  Set(queue.get(), kCopiesKey, std::to_string(kMostCopies + 1).c_str());
  EXPECT_EQ(Written(queue.get()).Settings().Copies(), 1);
}

TEST(JobRules, OfABookletAndSeveralPagesASheetTheLaterOneIsReadByBoth) {
  for (const auto &[first, second] : {std::pair{kBookletKey, kNupKey}, {kNupKey, kBookletKey}}) {
    const std::string text = std::string(first) + "=1\n" + second + "=1\n";
    const Owned<CHash> shown = CreateHash();
    OverlayDefFile(text, shown.get());
    const PpdModel model = TestPpd("office.ppd");
    JobSettings printed(model);
    printed.Apply(KeyValuesOf(text));
    EXPECT_EQ(HashFind(shown.get(), first), nullptr) << first;
    EXPECT_EQ(printed.Other(first), "") << first;
    EXPECT_STREQ(HashText(shown.get(), second), "1") << second;
    EXPECT_EQ(printed.Other(second), "1") << second;
  }
}

TEST(JobRules, TheJobNameOfTheProgramIsTheTitle) {
  const Owned<CPrintQueue> queue = MakeQueue();
  Set(queue.get(), kJobNameKey, kApplicationsJobName);
  const JobIdentity identity{"The title", "", "anna"};
  const std::string header = JobControlHeader(Written(queue.get()).Settings(), identity, "", "PCL");
  EXPECT_NE(header.find("@PJL SET JOBNAME=\"The title\"\n"), std::string::npos) << header;
}

TEST(JobRules, TheUsersFileThatIsWrittenIsTheOneThatIsRead) {
  const std::string queue_file = QueueDefFilePath("lp1.def");
  EXPECT_EQ(UsersDirectoryBeside(queue_file), kUsersDir);
  const char *login = GetUserName(nullptr);
  ASSERT_NE(login, nullptr);
  EXPECT_EQ(UserOptionFile(queue_file, login), CallersDefFilePath("lp1.def"));
}

}  // namespace
