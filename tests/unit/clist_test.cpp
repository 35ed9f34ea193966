// CList and CNodeList: order, positions, ownership, and the count with its kept oddities.
#include "clist.h"

#include <gtest/gtest.h>

#include <list>
#include <random>
#include <vector>

#include "countingrecord.h"
#include "ignoreresult.h"
#include "must.h"

namespace {

Owned<CObject> Number(int number) { return CountingRecord::New(number); }

std::vector<int> Numbers(const CList *list) {
  std::vector<int> numbers;
  CNodeList *position = fGetHeadPosition_CList_Function(list);
  while (position != nullptr) {
    const auto *record = ObjectCast<CountingRecord>(fGetNext_CList_Function(list, &position));
    numbers.push_back(record == nullptr ? -1 : record->number);
  }
  return numbers;
}

std::vector<int> NumbersBackwards(const CList *list) {
  std::vector<int> numbers;
  CNodeList *position = fGetTailPosition_CList_Function(list);
  while (position != nullptr) {
    numbers.push_back(ObjectCast<CountingRecord>(fGetPrev_CList_Function(list, &position))->number);
  }
  return numbers;
}

class List : public testing::Test {
 protected:
  // Makes a list of 1 .. n.
  void Fill(int n) {
    for (int i = 1; i <= n; ++i) Must(fAddTail_CList_Function(list_.get(), Number(i)));
  }
  CNodeList *Head() const { return fGetHeadPosition_CList_Function(list_.get()); }
  CNodeList *Tail() const { return fGetTailPosition_CList_Function(list_.get()); }
  int Count() const { return fGetCount_CList_Function(list_.get()); }
  void TearDown() override {
    list_.reset();
    EXPECT_EQ(CountingRecord::alive, 0) << "elements alive after their list";
  }

  Owned<CList> list_ = CreateList();
};

using Numbered = std::vector<int>;

}  // namespace

TEST_F(List, FreshListIsEmpty) {
  EXPECT_EQ(fIsEmpty_CList_Function(list_.get()), 1);
  EXPECT_EQ(Count(), 0);
  EXPECT_EQ(Head(), nullptr);
  EXPECT_EQ(Tail(), nullptr);
}

TEST_F(List, AddsAtBothEnds) {
  EXPECT_EQ(fAddTail_CList_Function(list_.get(), Number(2)), 1);
  EXPECT_EQ(fAddTail_CList_Function(list_.get(), Number(3)), 1);
  EXPECT_EQ(fAddHead_CList_Function(list_.get(), Number(1)), 1);
  EXPECT_EQ(Numbers(list_.get()), (Numbered{1, 2, 3}));
  EXPECT_EQ(NumbersBackwards(list_.get()), (Numbered{3, 2, 1}));
  EXPECT_EQ(Count(), 3);
}

TEST_F(List, RemovingAnEndOfAnEmptyListSucceedsAndLeavesTheCountAtZero) {
  EXPECT_EQ(fRemoveHead_CList_Function(list_.get()), 1);
  EXPECT_EQ(fRemoveTail_CList_Function(list_.get()), 1);
  EXPECT_EQ(Count(), 0);
}

TEST_F(List, InsertBeforeTheHeadCountsTwice) {
  Fill(1);
  EXPECT_EQ(fInsertBefore_CList_Function(list_.get(), Head(), Number(0)), 1);
  EXPECT_EQ(Count(), 3);
  EXPECT_EQ(Numbers(list_.get()), (Numbered{0, 1}));
}

TEST_F(List, InsertAfterTheTailCountsTwice) {
  Fill(1);
  EXPECT_EQ(fInsertAfter_CList_Function(list_.get(), Tail(), Number(2)), 1);
  EXPECT_EQ(Count(), 3);
  EXPECT_EQ(Numbers(list_.get()), (Numbered{1, 2}));
  EXPECT_EQ(NumbersBackwards(list_.get()), (Numbered{2, 1}));
}

TEST_F(List, InsertionsInTheMiddleCountOnce) {
  Fill(2);
  EXPECT_EQ(fInsertBefore_CList_Function(list_.get(), Tail(), Number(10)), 1);
  EXPECT_EQ(fInsertAfter_CList_Function(list_.get(), Head(), Number(20)), 1);
  EXPECT_EQ(Numbers(list_.get()), (Numbered{1, 20, 10, 2}));
  EXPECT_EQ(NumbersBackwards(list_.get()), (Numbered{2, 10, 20, 1}));
  EXPECT_EQ(Count(), 4);
}

TEST_F(List, PopHandsTheFirstElementOverAndKeepsTheCount) {
  EXPECT_EQ(fPush_CList_Function(list_.get(), Number(7)), 1);
  Owned<CObject> element = fPop_CList_Function(list_.get());
  ASSERT_NE(element, nullptr);
  EXPECT_EQ(ObjectCast<CountingRecord>(element.get())->number, 7);
  EXPECT_EQ(fIsEmpty_CList_Function(list_.get()), 1);
  EXPECT_EQ(Count(), 1);
  EXPECT_EQ(fPop_CList_Function(list_.get()), nullptr);
}

TEST_F(List, AfterTheLastPopThereIsNoTailAndTheNextElementIsHeadAndTail) {
  Fill(1);
  EXPECT_NE(fPop_CList_Function(list_.get()), nullptr);
  EXPECT_EQ(Tail(), nullptr);
  Must(fAddTail_CList_Function(list_.get(), Number(2)));
  EXPECT_NE(Head(), nullptr);
  EXPECT_EQ(Head(), Tail());
  EXPECT_EQ(Count(), 2);
}

TEST_F(List, PushAndPopAreAStackAtTheHead) {
  Must(fPush_CList_Function(list_.get(), Number(1)));
  Must(fPush_CList_Function(list_.get(), Number(2)));
  EXPECT_EQ(ObjectCast<CountingRecord>(fPop_CList_Function(list_.get()).get())->number, 2);
  EXPECT_EQ(ObjectCast<CountingRecord>(fPop_CList_Function(list_.get()).get())->number, 1);
}

TEST_F(List, GetNextAtTheTailReturnsTheTailAndLeavesNoPosition) {
  Fill(2);
  CNodeList *position = Tail();
  const CObject *element = fGetNext_CList_Function(list_.get(), &position);
  EXPECT_EQ(static_cast<const CountingRecord *>(element)->number, 2);
  EXPECT_EQ(position, nullptr);
  EXPECT_EQ(fGetNext_CList_Function(list_.get(), &position), nullptr);
}

TEST_F(List, SetAtDeletesTheOldElement) {
  Fill(2);
  EXPECT_EQ(fSetAt_CList_Function(list_.get(), Head(), Number(9)), 1);
  EXPECT_EQ(Numbers(list_.get()), (Numbered{9, 2}));
  EXPECT_EQ(CountingRecord::alive, 2);
}

TEST_F(List, RemoveAtWorksAtHeadMiddleAndTail) {
  Fill(5);
  EXPECT_EQ(fRemoveAt_CList_Function(list_.get(), Head()), 1);
  EXPECT_EQ(fRemoveAt_CList_Function(list_.get(), Tail()), 1);
  CNodeList *middle = Head();
  fGetNext_CList_Function(list_.get(), &middle);
  EXPECT_EQ(fRemoveAt_CList_Function(list_.get(), middle), 1);
  EXPECT_EQ(Numbers(list_.get()), (Numbered{2, 4}));
  EXPECT_EQ(NumbersBackwards(list_.get()), (Numbered{4, 2}));
  EXPECT_EQ(Count(), 2);
  EXPECT_EQ(CountingRecord::alive, 2);
}

TEST_F(List, RemoveAllBringsAnyCountBackToZero) {
  Fill(3);
  Must(fInsertBefore_CList_Function(list_.get(), Head(), Number(0)));
  EXPECT_EQ(fRemoveAll_CList_Function(list_.get()), 1);
  EXPECT_EQ(Count(), 0);
  EXPECT_EQ(CountingRecord::alive, 0);
}

TEST_F(List, CloneHoldsClonesThatOutliveTheSource) {
  Fill(3);
  const Owned<CList> clone = fClone_CList_Function(list_.get());
  list_.reset();
  EXPECT_EQ(Numbers(clone.get()), (Numbered{1, 2, 3}));
  EXPECT_EQ(CountingRecord::alive, 3);
  Must(fRemoveAll_CList_Function(clone.get()));
}

TEST_F(List, CloneCountsItsElementsWhateverTheSourceCounted) {
  Fill(1);
  Must(fInsertBefore_CList_Function(list_.get(), Head(), Number(0)));
  const Owned<CList> clone = fClone_CList_Function(list_.get());
  EXPECT_EQ(fGetCount_CList_Function(clone.get()), 2);
  Must(fRemoveAll_CList_Function(clone.get()));
}

TEST_F(List, AnElementThatIsNullIsNullInTheClone) {
  EXPECT_EQ(fAddTail_CList_Function(list_.get(), nullptr), 1);
  const Owned<CList> clone = fClone_CList_Function(list_.get());
  ASSERT_NE(fGetHeadPosition_CList_Function(clone.get()), nullptr);
  EXPECT_EQ(fGetAt_CList_Function(clone.get(), fGetHeadPosition_CList_Function(clone.get())),
            nullptr);
}

TEST_F(List, NullArgumentsFailAndARefusedElementStaysTheCallers) {
  Owned<CObject> element = Number(1);
  EXPECT_EQ(fAddHead_CList_Function(nullptr, std::move(element)), 0);
  EXPECT_EQ(fAddTail_CList_Function(nullptr, std::move(element)), 0);
  EXPECT_EQ(fPush_CList_Function(nullptr, std::move(element)), 0);
  EXPECT_EQ(fInsertBefore_CList_Function(list_.get(), nullptr, std::move(element)), 0);
  EXPECT_EQ(fInsertAfter_CList_Function(list_.get(), nullptr, std::move(element)), 0);
  EXPECT_EQ(fSetAt_CList_Function(list_.get(), nullptr, std::move(element)), 0);
  EXPECT_NE(element, nullptr);
  EXPECT_EQ(fIsEmpty_CList_Function(nullptr), 1);
  EXPECT_EQ(fRemoveHead_CList_Function(nullptr), 0);
  EXPECT_EQ(fRemoveTail_CList_Function(nullptr), 0);
  EXPECT_EQ(fRemoveAll_CList_Function(nullptr), 0);
  EXPECT_EQ(fRemoveAt_CList_Function(list_.get(), nullptr), 0);
  EXPECT_EQ(fGetHeadPosition_CList_Function(nullptr), nullptr);
  EXPECT_EQ(fGetTailPosition_CList_Function(nullptr), nullptr);
  EXPECT_EQ(fGetAt_CList_Function(list_.get(), nullptr), nullptr);
  EXPECT_EQ(fPop_CList_Function(nullptr), nullptr);
  EXPECT_EQ(fClone_CList_Function(nullptr), nullptr);
  EXPECT_EQ(fDelete_CList_Function(nullptr), 1);
}

TEST_F(List, AMillionElementsAreDeletedWithoutDeepRecursion) {
  for (int i = 0; i < 1'000'000; ++i) Must(fAddTail_CList_Function(list_.get(), nullptr));
  EXPECT_EQ(Count(), 1'000'000);
}

TEST_F(List, BehavesLikeAStandardListUnderRandomOperations) {
  std::mt19937 random(20240607);
  std::list<int> model;
  for (int step = 0; step < 5000; ++step) {
    const int number = step;
    switch (random() % 6) {
      case 0:
        Must(fAddHead_CList_Function(list_.get(), Number(number)));
        model.push_front(number);
        break;
      case 1:
        Must(fAddTail_CList_Function(list_.get(), Number(number)));
        model.push_back(number);
        break;
      case 2:
        Must(fRemoveTail_CList_Function(list_.get()));
        if (!model.empty()) model.pop_back();
        break;
      case 3:
        IgnoreResult(fPop_CList_Function(list_.get()), "the list may be empty");
        if (!model.empty()) model.pop_front();
        break;
      default:
        if (model.empty()) break;
        const size_t index = random() % model.size();
        auto at = model.begin();
        CNodeList *position = Head();
        for (size_t i = 0; i < index; ++i, ++at) fGetNext_CList_Function(list_.get(), &position);
        if (random() % 2 == 0) {
          Must(fInsertAfter_CList_Function(list_.get(), position, Number(number)));
          model.insert(std::next(at), number);
        } else {
          Must(fRemoveAt_CList_Function(list_.get(), position));
          model.erase(at);
        }
    }
    ASSERT_EQ(CountingRecord::alive, static_cast<int>(model.size())) << "after step " << step;
  }
  EXPECT_EQ(Numbers(list_.get()), Numbered(model.begin(), model.end()));
  EXPECT_EQ(NumbersBackwards(list_.get()), Numbered(model.rbegin(), model.rend()));
}

TEST_F(List, AnswersTheHeaderOperationsThroughItsTable) {
  Fill(2);
  EXPECT_EQ(list_->ops->Class_ID(), 130);
  EXPECT_STREQ(list_->ops->Class_Name(), "CList");
  const Owned<CObject> clone = list_->ops->Clone(list_.get());
  EXPECT_EQ(Numbers(ObjectCast<CList>(clone.get())), (Numbered{1, 2}));
  const auto *table = reinterpret_cast<const CListOps *>(list_->ops);
  EXPECT_EQ(table->GetCount(list_.get()), 2);
  EXPECT_EQ(table->RemoveHead(list_.get()), 1);
  EXPECT_EQ(Numbers(list_.get()), (Numbered{2}));
}

TEST(NodeList, CloneShowsTheSameElement) {
  const Owned<CNodeList> node = CreateNodeListWithValue(Number(5));
  const Owned<CNodeList> clone = fClone_CNodeList_Function(node.get());
  EXPECT_EQ(fGet_CNodeList_Function(clone.get()), fGet_CNodeList_Function(node.get()));
  EXPECT_EQ(CountingRecord::alive, 1);
}

TEST(NodeList, SetDeletesTheOldElementAndRefusesANullNode) {
  const Owned<CNodeList> node = CreateNodeListWithValue(Number(5));
  EXPECT_EQ(fSet_CNodeList_Function(node.get(), Number(6)), 1);
  EXPECT_EQ(CountingRecord::alive, 1);
  Owned<CObject> element = Number(7);
  EXPECT_EQ(fSet_CNodeList_Function(nullptr, std::move(element)), 0);
  EXPECT_NE(element, nullptr);
}

TEST(NodeList, AnswersTheHeaderOperations) {
  EXPECT_EQ(fCNodeList_Class_ID_Function(), 120);
  EXPECT_STREQ(fCNodeList_Class_Name_Function(), "CNodeList");
  EXPECT_EQ(fDelete_CNodeList_Function(nullptr), 1);
  EXPECT_EQ(fGet_CNodeList_Function(nullptr), nullptr);
  EXPECT_EQ(fClone_CNodeList_Function(nullptr), nullptr);
}
