// What the choice of pages a sheet stores, and which page orders go with it.

#include "multipleup.h"

#include <gtest/gtest.h>

#include "optionsupport.h"

namespace {

class MultipleUp : public testing::Test {
 protected:
  // What the work copy holds: "*Booklet", "*Nup" and "*NupOrder" as "booklet/pages/order".
  static std::string Stored() {
    std::string stored;
    for (const char *key : {"*Booklet", "*Nup", "*NupOrder"}) {
      const char *value = HashText(G_QueueFeatures_hash, key);
      stored += std::string(stored.empty() ? "" : "/") + (value == nullptr ? "-" : value);
    }
    return stored;
  }

  CurrentOptions options_;
};

}  // namespace

TEST_F(MultipleUp, AQueueWithoutSettingsGetsOnePageASheetNoBooklet) {
  AddDefaultMultipleUpSettings();
  EXPECT_EQ(Stored(), "0/1/Left");
}

TEST_F(MultipleUp, DefaultsAreAddedOnlyWhereTheKeyIsMissing) {
  options_.Set("*Nup", "4");
  options_.Set("*NupOrder", "Back");
  AddDefaultMultipleUpSettings();
  EXPECT_EQ(Stored(), "0/4/Back");
}

TEST_F(MultipleUp, AStoredBookletStaysWithoutANumberOfPages) {
  options_.Set("*Booklet", "1");
  AddDefaultMultipleUpSettings();
  EXPECT_EQ(Stored(), "1/-/Left");
  EXPECT_EQ(CurrentMultipleUp(), "*Booklet");
}

TEST_F(MultipleUp, ABookletThatIsSwitchedOffIsNone) {
  options_.Set("*Booklet", "0");
  AddDefaultMultipleUpSettings();
  EXPECT_EQ(Stored(), "0/1/Left");
  EXPECT_EQ(CurrentMultipleUp(), "1");
}

TEST_F(MultipleUp, PagesBesideABookletAreTheChoice) {
  options_.Set("*Booklet", "1");
  options_.Set("*Nup", "2");
  EXPECT_EQ(CurrentMultipleUp(), "2");
}

TEST_F(MultipleUp, EveryChoiceReplacesWhatWasStored) {
  struct Row {
    const char *value;
    const char *stored;
    OrderBoxes portrait;
    OrderBoxes lying;
  };
  const Row rows[] = {{"1", "-/1/-", OrderBoxes::kNone, OrderBoxes::kNone},
                      {"*Booklet", "1/-/-", OrderBoxes::kNone, OrderBoxes::kNone},
                      {"2", "-/2/-", OrderBoxes::kLeftAndRight, OrderBoxes::kNone},
                      {"4", "-/4/-", OrderBoxes::kAll, OrderBoxes::kAll},
                      {"6", "-/6/-", OrderBoxes::kNone, OrderBoxes::kNone},
                      {"9", "-/9/-", OrderBoxes::kNone, OrderBoxes::kNone},
                      {"16", "-/16/-", OrderBoxes::kNone, OrderBoxes::kNone}};
  for (const Row &before : rows) {
    for (const Row &row : rows) {
      for (const char *orientation : {"Portrait", "Landscape", "RotLandscape", "Other"}) {
        const std::string where = std::string(before.value) + " " + row.value + " " + orientation;
        options_.Set("*Orientation", orientation);
        ChooseMultipleUp(before.value);
        ChooseNupOrder("Back");
        const bool lies = std::string(orientation).ends_with("andscape");
        EXPECT_EQ(ChooseMultipleUp(row.value), lies ? row.lying : row.portrait) << where;
        EXPECT_EQ(Stored(), row.stored) << where;
        EXPECT_EQ(CurrentMultipleUp(), row.value) << where;
        EXPECT_EQ(CurrentOrderBoxes(), lies ? row.lying : row.portrait) << where;
      }
    }
  }
}

TEST_F(MultipleUp, ThePageOrderIsReplaced) {
  EXPECT_EQ(CurrentNupOrder(), "Left");
  ChooseNupOrder("Down");
  ChooseNupOrder("Back");
  EXPECT_EQ(Stored(), "-/-/Back");
  EXPECT_EQ(CurrentNupOrder(), "Back");
}

TEST_F(MultipleUp, WithoutSettingsNoOrderIsShown) {
  EXPECT_EQ(CurrentMultipleUp(), "");
  EXPECT_EQ(CurrentOrderBoxes(), OrderBoxes::kNone);
}

TEST_F(MultipleUp, WithoutPicturesThoseOfTheFeaturesAreNamed) {
  EXPECT_EQ(MultipleUpPicture("2"), "Nup.xpm");
  EXPECT_EQ(MultipleUpPicture("*Booklet"), "Booklet.xpm");
  EXPECT_EQ(NupOrderPicture("Down"), "NupOrder.xpm");
}
