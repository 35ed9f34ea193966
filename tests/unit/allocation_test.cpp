// Running out of memory. Not for builds with AddressSanitizer, which itself reserves far more
// address space than the limit that these tests set.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "childprocess.h"
#include "coresupport.h"
#include "cselection.h"
#include "ignoreresult.h"
#include "must.h"
#include "temporarydirectory.h"

namespace {

constexpr char kMessages[] = "#AllocMemoryError\nno memory left\n";

// How `body`, which allocates without end, ends a process that may not grow.
ChildResult WithoutMemory(const std::function<void()> &body) {
  return RunInChild([&] {
    InstallAllocationHandler();
    const rlimit none = {.rlim_cur = 1, .rlim_max = 1};
    setrlimit(RLIMIT_AS, &none);
    body();
  });
}

// A catalogue from a file, which is what lends the text.
void LoadMessages(const TemporaryDirectory &directory) {
  G_Messages = CreateMessages(directory.Write("messages.paf", kMessages).c_str());
  fFillFromPaf_Function(G_Messages.get());
}

void MakeRecordsWithoutEnd() {
  const Owned<CList> list = CreateList();
  while (true) Must(fAddTail_CList_Function(list.get(), CreateString()));
}

void MakeSelectionsWithoutEnd() {
  // Kept nowhere: a list would need memory of its own.
  while (true) CreateSelection(nullptr, 0).release();
}

}  // namespace

TEST(OutOfMemory, TheObjectLibraryEndsTheProcessWithItsOwnWords) {
  const ChildResult result = WithoutMemory(MakeRecordsWithoutEnd);
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.errors, "Memory allocation error\n");
}

TEST(OutOfMemory, TheObjectLibraryKeepsItsWordsWhenACatalogueIsLoaded) {
  const TemporaryDirectory directory;
  LoadMessages(directory);
  const ChildResult result = WithoutMemory(MakeRecordsWithoutEnd);
  EXPECT_EQ(result.errors, "Memory allocation error\n");
  const ChildResult of_text = WithoutMemory([] {
    const std::string text(1000, 'x');
    while (true) IgnoreResult(CreateStringWithValue(text.c_str()).release(), "leaks on purpose");
  });
  EXPECT_EQ(of_text.status, 3);
  EXPECT_EQ(of_text.errors, "Memory allocation error\n");
  G_Messages.reset();
}

TEST(OutOfMemory, ASelectionRecordSpeaksTheCataloguesWords) {
  const TemporaryDirectory directory;
  LoadMessages(directory);
  const ChildResult result = WithoutMemory(MakeSelectionsWithoutEnd);
  G_Messages.reset();
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.errors, "no memory left\n");
}

TEST(OutOfMemory, WithoutCatalogueTheConstantStandsForItsWords) {
  const ChildResult result = WithoutMemory(MakeSelectionsWithoutEnd);
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.errors, "Memory allocation error\n");
}

TEST(OutOfMemory, ACloneOfTheCatalogueDoesNotTakeTheWordsWithIt) {
  const TemporaryDirectory directory;
  LoadMessages(directory);
  G_Messages->language = CreateStringWithValue("English");
  IgnoreResult(CloneOf(G_Messages.get()), "the copy goes at once");
  const ChildResult result = WithoutMemory(MakeSelectionsWithoutEnd);
  G_Messages.reset();
  EXPECT_EQ(result.errors, "no memory left\n");
}

TEST(OutOfMemory, AGrowingTextEndsTheProcessToo) {
  const TemporaryDirectory directory;
  LoadMessages(directory);
  const ChildResult result = WithoutMemory([] {
    std::string text = "x";
    while (true) text += text;
  });
  G_Messages.reset();
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.errors, "no memory left\n");
}
