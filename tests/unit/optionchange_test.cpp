// What a choice in an option list does to the queue's settings.
#include "optionchange.h"

#include <gtest/gtest.h>

#include "optionsupport.h"

namespace {

class OptionChanges : public testing::Test {
 protected:
  OptionChanges() {
    options_.Feature({"*PageSize", "A4", {{"A4", "A4 sheet"}, {"Letter", "US Letter"}}});
    options_.Feature({"*MediaType", "Plain", {{"Plain", "Plain paper"}, {"Thick", "Thick"}}});
    options_.Feature({"*Duplex", "None", {{"None", "Off"}, {"Long", "Long edge"}}});
    options_.Feature(
        {"*Orientation",
         "Portrait",
         {{"Portrait", "Upright"}, {"Landscape", "Across"}, {"RotLandscape", "Across, turned"}}});
    SetCurrentPrinter(options_.Printer());
    options_.Set("*PageSize", "A4");
    options_.Set("*Duplex", "None");
  }

  // Two pages a sheet, in that orientation, with a page order that no change gives.
  void TwoPages(const char *orientation) {
    options_.Set("*Nup", "2");
    options_.Set("*NupOrder", "Up");
    options_.Set("*Orientation", orientation);
  }

  CurrentOptions options_;
};

TEST_F(OptionChanges, TheChoiceReplacesTheQueuesValue) {
  const auto change = ChangeOption("*Duplex", "    Long edge");
  ASSERT_TRUE(change);
  EXPECT_EQ(change->option, "Long");
  EXPECT_FALSE(change->is_custom);
  EXPECT_EQ(change->order_boxes, std::nullopt);
  EXPECT_EQ(QueueFeatureValue("*Duplex"), "Long");
}

TEST_F(OptionChanges, AMarkedEntryCanBeChosen) {
  options_.Forbid("*Duplex", "Long", "*PageSize", "A4");
  EXPECT_TRUE(ChangeOption("*Duplex", "!   Long edge"));
  EXPECT_EQ(QueueFeatureValue("*Duplex"), "Long");
}

TEST_F(OptionChanges, TheFirstChoiceOfAFeatureIsStoredThoughItIsTheDefault) {
  EXPECT_TRUE(ChangeOption("*MediaType", "    Plain paper"));
  EXPECT_EQ(QueueFeatureValue("*MediaType"), "Plain");
}

TEST_F(OptionChanges, TheCurrentEntryChangesNothing) {
  const CObject *before = HashFind(G_QueueFeatures_hash, "*Duplex");
  EXPECT_FALSE(ChangeOption("*Duplex", "    Off"));
  EXPECT_FALSE(ChangeOption("*Duplex", "!   Off"));
  EXPECT_EQ(HashFind(G_QueueFeatures_hash, "*Duplex"), before);
}

TEST_F(OptionChanges, ATextOfNoMoreThanAMarkIsIgnored) {
  for (const char *text : {"", "!", "    ", "!   ", "Off"}) {
    EXPECT_FALSE(ChangeOption("*PageSize", text)) << text;
  }
  EXPECT_EQ(QueueFeatureValue("*PageSize"), "A4");
}

TEST_F(OptionChanges, ATextThatNoOptionHasChangesNothing) {
  EXPECT_FALSE(ChangeOption("*Duplex", "    Short edge"));
  EXPECT_FALSE(ChangeOption("*Duplex", "    Long"));
  EXPECT_FALSE(ChangeOption("*Watermark", "    Off"));
  EXPECT_EQ(QueueFeatureValue("*Duplex"), "None");
}

TEST_F(OptionChanges, ACustomPaperIsStoredByItsName) {
  options_.Paper("Ticket");
  const auto change = ChangeOption("*PageSize", "    Ticket");
  ASSERT_TRUE(change);
  EXPECT_EQ(change->option, "Ticket");
  EXPECT_TRUE(change->is_custom);
  EXPECT_EQ(QueueFeatureValue("*PageSize"), "Ticket");
  EXPECT_EQ(PictureOfChoice("*PageSize", "Ticket", change->is_custom), "cps.xpm");
}

TEST_F(OptionChanges, ACustomMediaIsStoredByItsName) {
  options_.Media("Gloss");
  const auto change = ChangeOption("*MediaType", "!   Gloss");
  ASSERT_TRUE(change);
  EXPECT_TRUE(change->is_custom);
  EXPECT_EQ(QueueFeatureValue("*MediaType"), "Gloss");
  EXPECT_EQ(PictureOfChoice("*MediaType", "Gloss", change->is_custom), "cmt.xpm");
}

TEST_F(OptionChanges, APrintersOptionGoesBeforeACustomPaperOfThatName) {
  options_.Paper("US Letter");
  const auto change = ChangeOption("*PageSize", "    US Letter");
  ASSERT_TRUE(change);
  EXPECT_EQ(change->option, "Letter");
  EXPECT_FALSE(change->is_custom);
}

TEST_F(OptionChanges, APageSizeThatIsGoneBecomesThePrintersDefault) {
  options_.Paper("Other");
  options_.Set("*PageSize", "Letter");
  const auto change = ChangeOption("*PageSize", "    Ticket");
  ASSERT_TRUE(change);
  EXPECT_EQ(change->option, "A4");
  EXPECT_FALSE(change->is_custom);
  EXPECT_EQ(QueueFeatureValue("*PageSize"), "A4");
  EXPECT_FALSE(ChangeOption("*PageSize", "    Ticket"));
}

TEST_F(OptionChanges, AMediaTypeThatIsGoneBecomesThePrintersDefault) {
  options_.Set("*MediaType", "Thick");
  const auto change = ChangeOption("*MediaType", "    Gloss");
  ASSERT_TRUE(change);
  EXPECT_EQ(change->option, "Plain");
  EXPECT_FALSE(change->is_custom);
  EXPECT_EQ(QueueFeatureValue("*MediaType"), "Plain");
}

TEST_F(OptionChanges, CustomNamesBelongToTheirFeature) {
  options_.Paper("Ticket");
  EXPECT_FALSE(ChangeOption("*Duplex", "    Ticket"));
  options_.Set("*MediaType", "Thick");
  EXPECT_EQ(ChangeOption("*MediaType", "    Ticket").value().option, "Plain");
}

struct Turn {
  const char *before;
  const char *text;
  const char *order;
  std::optional<OrderBoxes> boxes;
};

void PrintTo(const Turn &turn, std::ostream *out) { *out << turn.before << " to" << turn.text; }

class TurnOfTwoPages : public OptionChanges, public testing::WithParamInterface<Turn> {};

TEST_P(TurnOfTwoPages, SetsThePageOrder) {
  const Turn &turn = GetParam();
  TwoPages(turn.before);
  const auto change = ChangeOption("*Orientation", turn.text);
  ASSERT_TRUE(change);
  EXPECT_EQ(QueueFeatureValue("*NupOrder"), turn.order);
  EXPECT_EQ(change->order_boxes, turn.boxes);
}

INSTANTIATE_TEST_SUITE_P(
    Each, TurnOfTwoPages,
    testing::Values(Turn{"Portrait", "    Across", "Left", OrderBoxes::kNone},
                    Turn{"Portrait", "    Across, turned", "Right", OrderBoxes::kNone},
                    Turn{"Landscape", "    Upright", "Up", OrderBoxes::kLeftAndRight},
                    Turn{"Landscape", "    Across, turned", "Right", OrderBoxes::kNone},
                    Turn{"RotLandscape", "    Upright", "Up", OrderBoxes::kLeftAndRight},
                    Turn{"RotLandscape", "    Across", "Left", OrderBoxes::kNone}));

TEST_F(OptionChanges, ThePageOrderIsMadeWhenThereWasNone) {
  TwoPages("Portrait");
  HashRemove(G_QueueFeatures_hash, "*NupOrder");
  EXPECT_TRUE(ChangeOption("*Orientation", "    Across"));
  EXPECT_EQ(QueueFeatureValue("*NupOrder"), "Left");
}

TEST_F(OptionChanges, OtherNumbersOfPagesKeepTheirOrder) {
  for (const char *pages : {"", "1", "4"}) {
    TwoPages("Portrait");
    options_.Set("*Nup", pages);
    const auto change = ChangeOption("*Orientation", "    Across");
    ASSERT_TRUE(change);
    EXPECT_EQ(change->order_boxes, std::nullopt);
    EXPECT_EQ(QueueFeatureValue("*NupOrder"), "Up");
  }
}

TEST_F(OptionChanges, OtherFeaturesKeepThePageOrder) {
  TwoPages("Portrait");
  const auto change = ChangeOption("*Duplex", "    Long edge");
  ASSERT_TRUE(change);
  EXPECT_EQ(change->order_boxes, std::nullopt);
  EXPECT_EQ(QueueFeatureValue("*NupOrder"), "Up");
}

TEST_F(OptionChanges, TheCurrentOrientationKeepsThePageOrder) {
  TwoPages("Landscape");
  EXPECT_FALSE(ChangeOption("*Orientation", "    Across"));
  EXPECT_EQ(QueueFeatureValue("*NupOrder"), "Up");
}

TEST_F(OptionChanges, OnlyCheckedFeaturesChangeTheInstallableMarks) {
  for (const char *feature : kExemptFeatures) {
    EXPECT_FALSE(ChangesInstallableMarks(feature)) << feature;
  }
  for (const char *feature : {"*PageSize", "*Duplex", "*Resolution", "*Punch"}) {
    EXPECT_TRUE(ChangesInstallableMarks(feature)) << feature;
  }
}

}  // namespace
