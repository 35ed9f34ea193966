// Names of queues, and adding and cloning queues of the working set. Runs in the sandbox: names
// are looked for in the spooler's own directory.
#include "queuenames.h"

#include <gtest/gtest.h>

#include "addqueue.h"
#include "coresupport.h"
#include "cprinter.h"
#include "globals.h"
#include "must.h"
#include "optionstate.h"
#include "queuesupport.h"
#include "spoolerstandin.h"

namespace {

constexpr char kMessages[] =
    "#postscript\nPostScript file\n#text\nPlain text\n#pcl6\nPCL\n#raw\nAs it is\n"
    "#tcpip\nTCP/IP\n#ERR_UNEXPECTED2\nunexpected2 <%s>\n";

class QueueNames : public testing::Test {
 protected:
  QueueNames()
      : messages_(kMessages),
        queues_(CreateHash()),
        original_(CreateHash()),
        printers_(CreateHash()) {
    G_Queues_hash = queues_.get();
    G_OrgQueues_hash = original_.get();
    G_Printers_hash = printers_.get();
    Owned<CPrinter> printer = CreatePrinter("/nowhere/vek41201.paf");
    printer->ppd_file = CreateStringWithValue("vek41201.ppd");
    Must(HashPut(printers_.get(), "Vek Norvel 4120ES", std::move(printer)));
  }
  ~QueueNames() override {
    G_Queues_hash = nullptr;
    G_OrgQueues_hash = nullptr;
    G_Printers_hash = nullptr;
    G_CurrentQueue_name.reset();
  }

  void Put(const QueueValues &values) {
    Must(HashPut(G_Queues_hash, values.name.c_str(), MakeQueue(values)));
  }
  int IsUnique(const char *name) {
    const Owned<CList> errors = CreateList();
    return G_CheckUniqueQueueName(name, errors.get());
  }

  SpoolerStandIn spooler_;
  ProgramMessages messages_;
  Owned<CHash> queues_;
  Owned<CHash> original_;
  Owned<CHash> printers_;
  const NewQueue input_{"lp1", "Vek Norvel 4120ES", "Plain text", "TCP/IP", "10.0.0.1"};
};

TEST_F(QueueNames, AListHoldsATextOnlyExactly) {
  const Owned<CList> list = ListOf({"lp1", "LP2"});
  EXPECT_EQ(G_IsStringInCList(list.get(), "lp1"), 1);
  EXPECT_EQ(G_IsStringInCList(list.get(), "LP1"), 0);
  EXPECT_EQ(G_IsStringInCList(list.get(), "lp"), 0);
  EXPECT_EQ(G_IsStringInCList(nullptr, "lp1"), 0);
  EXPECT_EQ(G_IsStringInCList(list.get(), nullptr), 0);
}

TEST_F(QueueNames, ANameOfTheWorkingSetIsTaken) {
  Put({.name = "lp1"});
  EXPECT_EQ(IsUnique("lp1"), 0);
  EXPECT_EQ(IsUnique("LP1"), 1);
}

TEST_F(QueueNames, ANameOfAForeignSpoolerQueueIsTaken) {
  SpoolerStandIn::AddQueue("foreign", "#!/bin/sh\n");
  EXPECT_EQ(IsUnique("foreign"), 0);
}

TEST_F(QueueNames, TheNameOfTheQueueBeingEditedIsFree) {
  Put({.name = "lp1"});
  G_CurrentQueue_name = CreateStringWithValue("lp1");
  EXPECT_EQ(IsUnique("lp1"), 1);
}

TEST_F(QueueNames, ClonesAreCalledCopyOfThenCopy2Of) {
  Put({.name = "lp"});
  EXPECT_EQ(CloneQueue("lp"), "CopyOf_lp");
  EXPECT_EQ(CloneQueue("lp"), "Copy2Of_lp");
  EXPECT_EQ(CloneQueue("lp"), "Copy3Of_lp");
  EXPECT_EQ(TextOrNull(HashValue<CPrintQueue>(G_Queues_hash, "Copy2Of_lp")->DefFile.get()),
            "Copy2Of_lp.def");
}

TEST_F(QueueNames, ARecordThatLacksAMemberIsNotCloned) {
  Put({.name = "lp"});
  HashValue<CPrintQueue>(G_Queues_hash, "lp")->CustomMedias.reset();
  EXPECT_EQ(CloneQueue("lp"), "");
  EXPECT_EQ(Keys(G_Queues_hash), std::vector<std::string>{"lp"});
}

TEST_F(QueueNames, ThePrintingSystemComesFromTheWorkingSetOrElseFromTheStart) {
  const auto put = [](CHash *hash, const char *name, const char *system) {
    Owned<CPrintQueue> queue = MakeQueue({.name = name});
    queue->PrintingSystem = CreateStringWithValue(system);
    Must(HashPut(hash, name, std::move(queue)));
  };
  put(queues_.get(), "a", "CUPS");
  put(original_.get(), "a", "LPRng");
  put(original_.get(), "b", "LPRng");
  put(queues_.get(), "c", "SystemV");
  EXPECT_EQ(G_GetQueuePrnSys("a"), 2);
  EXPECT_EQ(G_GetQueuePrnSys("b"), 1);
  EXPECT_EQ(G_GetQueuePrnSys("c"), 0);
  EXPECT_EQ(G_GetQueuePrnSys("unknown"), 0);
}

TEST_F(QueueNames, ARecordWithoutAPrintingSystemIsReported) {
  Put({.name = "lp1"});
  HashValue<CPrintQueue>(G_Queues_hash, "lp1")->PrintingSystem.reset();
  testing::internal::CaptureStderr();
  EXPECT_EQ(G_GetQueuePrnSys("lp1"), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "unexpected2 <CPrintQueue>\n");
}

TEST_F(QueueNames, AnAddedQueueIsCompleteAndWithoutSettings) {
  const AddQueueResult result = AddQueue(input_);
  EXPECT_TRUE(result.added);
  const CPrintQueue *queue = HashValue<CPrintQueue>(G_Queues_hash, "lp1");
  ASSERT_NE(queue, nullptr);
  EXPECT_NE(CloneOf(queue), nullptr);
  EXPECT_EQ(TextOrNull(queue->PrinterName.get()), "Vek Norvel 4120ES");
  EXPECT_EQ(TextOrNull(queue->Language.get()), "text");
  EXPECT_EQ(TextOrNull(queue->AddressType.get()), "tcpip");
  EXPECT_EQ(TextOrNull(queue->Address.get()), "10.0.0.1");
  EXPECT_EQ(TextOrNull(queue->PrintingSystem.get()), "SystemV");
  EXPECT_EQ(TextOrNull(queue->DefFile.get()), "lp1.def");
  EXPECT_EQ(TextOrNull(queue->PpdFile.get()), "vek41201.ppd");
  for (const CHash *table : {queue->Options.get(), queue->InstallableFeatures.get(),
                             queue->CustomPapers.get(), queue->CustomMedias.get()}) {
    EXPECT_TRUE(HashIsEmpty(table));
  }
}

TEST_F(QueueNames, WhatIsMissingIsSaidInTheOrderOfTheChecks) {
  Put({.name = "taken"});
  const struct {
    NewQueue input;
    const char *warning;
  } rows[] = {
      {{"", "", "", "", ""}, "KPXadminWarn003"},
      {{"taken", "", "", "", ""}, "KPXadminWarn004"},
      {{"lp2", "", "", "", ""}, "KPXadminWarn001"},
      {{"lp2", "Vek Norvel 4120ES", "PCL", "TCP/IP", ""}, "KPXadminWarn002"},
      {{"lp2", "Vek Norvel 4120ES", "no type", "TCP/IP", "x"}, nullptr},
      {{"lp2", "Vek Norvel 4120ES", "PCL", "pigeons", "x"}, nullptr},
  };
  for (const auto &row : rows) {
    const AddQueueResult result = AddQueue(row.input);
    EXPECT_FALSE(result.added);
    EXPECT_STREQ(result.warning_key, row.warning);
  }
  EXPECT_EQ(Keys(G_Queues_hash), std::vector<std::string>{"taken"});
}

TEST_F(QueueNames, TheSameNameCannotBeAddedTwice) {
  EXPECT_TRUE(AddQueue(input_).added);
  EXPECT_STREQ(AddQueue(input_).warning_key, "KPXadminWarn004");
}

TEST_F(QueueNames, ARowShowsTheTranslatedType) {
  Put({.name = "lp1", .printer = "P", .language = "raw", .address = "host"});
  EXPECT_EQ(QueueRow("lp1"), (std::vector<std::string>{"lp1", "P", "As it is", "host"}));
}

TEST_F(QueueNames, AnUnknownOrIncompleteQueueHasNoRow) {
  Put({.name = "lp1"});
  HashValue<CPrintQueue>(G_Queues_hash, "lp1")->Address.reset();
  testing::internal::CaptureStderr();
  EXPECT_TRUE(QueueRow("lp1").empty());
  EXPECT_TRUE(QueueRow("none").empty());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "unexpected2 <CPrintQueue>\nunexpected2 <CPrintQueues>\n");
}

TEST(QueueButtons, CloneAndPropertiesTakeOneQueueDeleteAnyNumber) {
  const struct {
    int selected;
    bool one, any;
  } rows[] = {{0, false, false}, {1, true, true}, {2, false, true}, {3, false, true}};
  for (const auto &row : rows) {
    const QueueButtons buttons = QueueButtonsFor(row.selected);
    EXPECT_EQ(buttons.clone, row.one) << row.selected;
    EXPECT_EQ(buttons.properties, row.one) << row.selected;
    EXPECT_EQ(buttons.remove, row.any) << row.selected;
  }
}

TEST(QueueInput, IsCompleteWithNameAddressAndPrinter) {
  EXPECT_TRUE(IsQueueInputComplete("lp1", "host", true));
  EXPECT_FALSE(IsQueueInputComplete("", "host", true));
  EXPECT_FALSE(IsQueueInputComplete("lp1", "", true));
  EXPECT_FALSE(IsQueueInputComplete("lp1", "host", false));
}

}  // namespace
