// The queue record: its members, its clone, its defaults.
#include "cprintqueue.h"

#include <gtest/gtest.h>

#include "cfeature.h"
#include "childprocess.h"
#include "cprinter.h"
#include "ignoreresult.h"
#include "must.h"
#include "queuesupport.h"

namespace {

using TextGetter = CString *(*)(const CPrintQueue *);
using TextSetter = int (*)(CPrintQueue *, const CString *);
using TableGetter = CHash *(*)(const CPrintQueue *);
using TableSetter = int (*)(CPrintQueue *, const CHash *);

struct TextMember {
  const char *name;
  TextGetter get;
  TextSetter set;
};

constexpr TextMember kTextMembers[] = {
    {"PpdFile", fGet_PpdFile_Function, fSet_PpdFile_Function},
    {"DefFile", fGet_DefFile_Function, fSet_DefFile_Function},
    {"PrinterName", fGet_PrinterName_Function, fSet_PrinterName_Function},
    {"Language", fGet_Language_Function, fSet_Language_Function},
    {"Address", fGet_Address_Function, fSet_Address_Function},
    {"AddressType", fGet_AddressType_Function, fSet_AddressType_Function},
    {"PrintingSystem", fGet_PrintingSystem_Function, fSet_PrintingSystem_Function},
};

struct TableMember {
  const char *name;
  TableGetter get;
  TableSetter set;
};

constexpr TableMember kTableMembers[] = {
    {"Options", fGet_Options_Function, fSet_Options_Function},
    {"CustomPapers", fGet_CustomPapers_Function, fSet_CustomPapers_Function},
    {"CustomMedias", fGet_CustomMedias_Function, fSet_CustomMedias_Function},
    {"InstallableFeatures", fGet_InstallableFeatures_Function, fSet_InstallableFeatures_Function},
};

TEST(CPrintQueue, HasItsIdentifierAndName) {
  const Owned<CPrintQueue> queue = CreatePrintQueue();
  EXPECT_EQ(queue->ops->Class_ID(), 230);
  EXPECT_STREQ(queue->ops->Class_Name(), "CPrintQueue");
  EXPECT_STREQ(CPrintQueueClassName, "CPrintQueue");
}

TEST(CPrintQueue, DeletingNullFails) { EXPECT_EQ(fDelete_CPrintQueue_Function(nullptr), 0); }

TEST(CPrintQueue, DeletingARecordSucceeds) {
  EXPECT_EQ(fDelete_CPrintQueue_Function(MakeFullQueue().release()), 1);
}

TEST(CPrintQueue, ANewRecordHasOnlyNullMembers) {
  const Owned<CPrintQueue> queue = CreatePrintQueue();
  for (const TextMember &member : kTextMembers) EXPECT_EQ(member.get(queue.get()), nullptr);
  for (const TableMember &member : kTableMembers) EXPECT_EQ(member.get(queue.get()), nullptr);
}

TEST(CPrintQueue, GettersOfANullRecordGiveNull) {
  for (const TextMember &member : kTextMembers) EXPECT_EQ(member.get(nullptr), nullptr);
  for (const TableMember &member : kTableMembers) EXPECT_EQ(member.get(nullptr), nullptr);
}

TEST(CPrintQueue, ATextSetterStoresACloneInItsOwnMemberAlone) {
  for (const TextMember &member : kTextMembers) {
    SCOPED_TRACE(member.name);
    const Owned<CPrintQueue> queue = CreatePrintQueue();
    const Owned<CString> value = Text("first");
    EXPECT_EQ(member.set(queue.get(), value.get()), 1);
    EXPECT_NE(member.get(queue.get()), value.get());
    Must(fSet_CString_Value_Function(value.get(), "changed afterwards"));
    EXPECT_EQ(TextOrNull(member.get(queue.get())), "first");
    EXPECT_EQ(member.set(queue.get(), Text("second").get()), 1);
    for (const TextMember &other : kTextMembers) {
      EXPECT_EQ(TextOrNull(other.get(queue.get())), &other == &member ? "second" : "(null)");
    }
  }
}

TEST(CPrintQueue, ATableSetterStoresACloneInItsOwnMemberAlone) {
  for (const TableMember &member : kTableMembers) {
    SCOPED_TRACE(member.name);
    const Owned<CPrintQueue> queue = CreatePrintQueue();
    const Owned<CHash> value = CreateHash();
    Must(HashPutText(value.get(), "*Nup", "2"));
    EXPECT_EQ(member.set(queue.get(), value.get()), 1);
    Must(HashPutText(value.get(), "*Later", "x"));
    EXPECT_EQ(Keys(member.get(queue.get())), std::vector<std::string>{"*Nup"});
    for (const TableMember &other : kTableMembers) {
      EXPECT_EQ(other.get(queue.get()) != nullptr, &other == &member);
    }
  }
}

TEST(CPrintQueue, ASetterGivenItsOwnMemberKeepsTheValue) {
  const Owned<CPrintQueue> queue = MakeQueue();
  EXPECT_EQ(fSet_Address_Function(queue.get(), fGet_Address_Function(queue.get())), 1);
  EXPECT_EQ(TextOrNull(queue->Address.get()), "10.0.0.1");
}

TEST(CPrintQueue, SettersRefuseNullAndChangeNothing) {
  const Owned<CPrintQueue> queue = MakeFullQueue();
  for (const TextMember &member : kTextMembers) {
    const CString *before = member.get(queue.get());
    EXPECT_EQ(member.set(queue.get(), nullptr), 0);
    EXPECT_EQ(member.get(queue.get()), before);
    EXPECT_EQ(member.set(nullptr, Text("x").get()), 0);
  }
  for (const TableMember &member : kTableMembers) {
    const CHash *before = member.get(queue.get());
    EXPECT_EQ(member.set(queue.get(), nullptr), 0);
    EXPECT_EQ(member.get(queue.get()), before);
    EXPECT_EQ(member.set(nullptr, CreateHash().get()), 0);
  }
}

TEST(CPrintQueue, ACloneHasEveryMember) {
  const Owned<CPrintQueue> queue = MakeFullQueue();
  const Owned<CPrintQueue> clone = fClone_CPrintQueue_Function(queue.get());
  ASSERT_NE(clone, nullptr);
  for (const TextMember &member : kTextMembers) {
    EXPECT_EQ(TextOrNull(member.get(clone.get())), TextOrNull(member.get(queue.get())));
    EXPECT_NE(member.get(clone.get()), member.get(queue.get()));
  }
  for (const TableMember &member : kTableMembers) {
    EXPECT_EQ(Keys(member.get(clone.get())), Keys(member.get(queue.get())));
    EXPECT_NE(member.get(clone.get()), member.get(queue.get()));
  }
}

TEST(CPrintQueue, ARecordThatLacksAnyOneMemberCannotBeCloned) {
  const auto without = [](auto member) {
    const Owned<CPrintQueue> queue = MakeFullQueue();
    (queue.get()->*member).reset();
    EXPECT_FALSE(IsComplete(queue.get()));
    return fClone_CPrintQueue_Function(queue.get()) == nullptr;
  };
  EXPECT_TRUE(without(&CPrintQueue::Options));
  EXPECT_TRUE(without(&CPrintQueue::CustomPapers));
  EXPECT_TRUE(without(&CPrintQueue::CustomMedias));
  EXPECT_TRUE(without(&CPrintQueue::InstallableFeatures));
  EXPECT_TRUE(without(&CPrintQueue::PpdFile));
  EXPECT_TRUE(without(&CPrintQueue::DefFile));
  EXPECT_TRUE(without(&CPrintQueue::PrinterName));
  EXPECT_TRUE(without(&CPrintQueue::Language));
  EXPECT_TRUE(without(&CPrintQueue::Address));
  EXPECT_TRUE(without(&CPrintQueue::AddressType));
  EXPECT_TRUE(without(&CPrintQueue::PrintingSystem));
  EXPECT_EQ(fClone_CPrintQueue_Function(nullptr), nullptr);
}

TEST(CPrintQueue, TheTableHoldsTheOperationsInTheirOrder) {
  const auto *ops = reinterpret_cast<const CPrintQueueOps *>(CPrintQueue::Ops());
  const Owned<CPrintQueue> queue = MakeFullQueue();
  EXPECT_EQ(ops->Get_CustomPapers(queue.get()), queue->CustomPapers.get());
  EXPECT_EQ(ops->Get_CustomMedias(queue.get()), queue->CustomMedias.get());
  EXPECT_EQ(ops->Get_Options(queue.get()), queue->Options.get());
  EXPECT_EQ(ops->Get_InstallableFeatures(queue.get()), queue->InstallableFeatures.get());
  EXPECT_EQ(ops->Get_PpdFile(queue.get()), queue->PpdFile.get());
  EXPECT_EQ(ops->Get_DefFile(queue.get()), queue->DefFile.get());
  EXPECT_EQ(ops->Get_PrinterName(queue.get()), queue->PrinterName.get());
  EXPECT_EQ(ops->Get_Language(queue.get()), queue->Language.get());
  EXPECT_EQ(ops->Get_Address(queue.get()), queue->Address.get());
  EXPECT_EQ(ops->Get_AddressType(queue.get()), queue->AddressType.get());
  EXPECT_EQ(ops->Get_PrintingSystem(queue.get()), queue->PrintingSystem.get());
  EXPECT_EQ(ops->FillWithDefaultOptions, fFillWithDefaultOptions_Function);
  EXPECT_EQ(ops->FillFromDefFile, fFillFromDefFile_Function);
  testing::internal::CaptureStderr();
  EXPECT_EQ(ops->WriteDefFile(CreatePrintQueue().get(), 1), 0);
  EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

// Defaults.

void PutFeature(CHash *features, const char *key, const char *default_option) {
  Owned<CFeature> feature = CreateFeature();
  feature->default_option = CreateStringWithValue(default_option);
  Must(HashPut(features, key, std::move(feature)));
}

Owned<CPrinter> MakePrinter() {
  Owned<CPrinter> printer = CreatePrinter("/x/vek41101.paf");
  printer->features = CreateHash();
  PutFeature(printer->features.get(), "*PageSize", "A4");
  PutFeature(printer->features.get(), "*Duplex", "None");
  printer->installable_options = CreateHash();
  PutFeature(printer->installable_options.get(), "*OptionHCF", "False");
  return printer;
}

Owned<CHash> Catalogue(Owned<CPrinter> printer) {
  Owned<CHash> printers = CreateHash();
  Must(HashPut(printers.get(), "Vek Norvel 4110ES", std::move(printer)));
  return printers;
}

TEST(FillWithDefaultOptions, TakesThePrintersDefaultsAndTracesEachOnStandardError) {
  const Owned<CHash> printers = Catalogue(MakePrinter());
  const Owned<CPrintQueue> queue = MakeFullQueue();
  Must(HashPutText(queue->Options.get(), "*Stale", "x"));
  testing::internal::CaptureStderr();
  const int result = fFillWithDefaultOptions_Function(queue.get(), printers.get());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Put in queue:*Duplex=None\n"
            "Put in queue:*PageSize=A4\n"
            "Put in queue:*OptionHCF=False\n");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(Keys(queue->Options.get()), (std::vector<std::string>{"*Duplex", "*PageSize"}));
  EXPECT_STREQ(HashText(queue->Options.get(), "*PageSize"), "A4");
  EXPECT_EQ(Keys(queue->InstallableFeatures.get()), std::vector<std::string>{"*OptionHCF"});
  EXPECT_STREQ(HashText(queue->InstallableFeatures.get(), "*OptionHCF"), "False");
}

TEST(FillWithDefaultOptions, EmptiesTheCustomPapersAndLeavesTheCustomMedias) {
  const Owned<CHash> printers = Catalogue(MakePrinter());
  const Owned<CPrintQueue> queue = MakeFullQueue();
  const CHash *papers = queue->CustomPapers.get();
  const CHash *medias = queue->CustomMedias.get();
  testing::internal::CaptureStderr();
  Must(fFillWithDefaultOptions_Function(queue.get(), printers.get()));
  testing::internal::GetCapturedStderr();
  ASSERT_NE(queue->CustomPapers, nullptr);
  EXPECT_TRUE(HashIsEmpty(queue->CustomPapers.get()));
  EXPECT_EQ(queue->CustomMedias.get(), medias);
  EXPECT_EQ(Keys(medias), std::vector<std::string>{"Gloss"});
  // The old table was dropped, not deleted: it can still be read.
  EXPECT_EQ(Keys(papers), std::vector<std::string>{"Ticket"});
}

void ExpectUnexpected2(CPrintQueue *queue, const CHash *printers) {
  const ChildResult result = RunInChild([&] {
    const ProgramMessages messages(kQueueMessages);
    IgnoreResult(fFillWithDefaultOptions_Function(queue, printers), "ends the process");
  });
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(SplitLines(result.errors).back(), "unexpected2 <CPrintQueue>");
}

TEST(FillWithDefaultOptions, AnUnsetPrinterNameEndsTheProcessWithStatus5) {
  const Owned<CPrintQueue> queue = MakeQueue();
  queue->PrinterName.reset();
  ExpectUnexpected2(queue.get(), Catalogue(MakePrinter()).get());
}

TEST(FillWithDefaultOptions, AnUnknownPrinterEndsTheProcessWithStatus5) {
  ExpectUnexpected2(MakeQueue({.printer = "Another"}).get(), Catalogue(MakePrinter()).get());
  ExpectUnexpected2(MakeQueue().get(), nullptr);
}

TEST(FillWithDefaultOptions, APrinterWithoutFeaturesEndsTheProcessWithStatus5) {
  Owned<CPrinter> printer = MakePrinter();
  printer->features.reset();
  ExpectUnexpected2(MakeQueue().get(), Catalogue(std::move(printer)).get());
}

TEST(FillWithDefaultOptions, APrinterWithoutInstallableOptionsEndsTheProcessWithStatus5) {
  Owned<CPrinter> printer = MakePrinter();
  printer->installable_options.reset();
  ExpectUnexpected2(MakeQueue().get(), Catalogue(std::move(printer)).get());
}

}  // namespace
