// The table of listed features: no two rows claim the same place.
#include "featuretable.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

namespace {

// 0, 1, 2 and so on.
std::set<int> FirstNumbers(size_t count) {
  std::set<int> numbers;
  for (size_t number = 0; number < count; ++number) numbers.insert(static_cast<int>(number));
  return numbers;
}

TEST(FeatureTable, EachFeatureEachNameAndEachLabelIsThereOnce) {
  std::set<std::string> features;
  std::set<std::string> names;
  std::set<std::string> labels;
  for (const ListedFeature &listed : ListedFeatures()) {
    EXPECT_TRUE(features.insert(listed.feature).second) << listed.feature;
    EXPECT_TRUE(names.insert(listed.name).second) << listed.name;
    EXPECT_TRUE(labels.insert(listed.label_key).second) << listed.label_key;
    EXPECT_EQ(listed.feature[0], '*') << listed.feature;
    EXPECT_EQ(FindListedFeature(listed.feature), &listed);
  }
  EXPECT_EQ(FindListedFeature("*Nup"), nullptr);
}

TEST(FeatureTable, TheListsOfAPageHaveRowsOfTheirOwn) {
  std::map<Page, std::set<int>> rows;
  for (const ListedFeature &listed : ListedFeatures()) {
    // The two of the Destination page are in grids of their own, between other fields.
    if (listed.page == Page::kDestination) continue;
    EXPECT_TRUE(rows[listed.page].insert(listed.row).second) << listed.feature;
  }
  for (const auto &[page, taken] : rows) EXPECT_EQ(taken, FirstNumbers(taken.size()));
}

TEST(FeatureTable, DefaultsOfAPageSetEachOfItsFeaturesInItsPlace) {
  size_t features = 0;
  for (const Page page : {Page::kGeneral, Page::kSetup, Page::kOutput, Page::kOptions,
                          Page::kDestination, Page::kFeatures, Page::kCustoms, Page::kFonts}) {
    int place = 0;
    for (const ListedFeature *listed : DefaultsOfPage(page)) {
      EXPECT_EQ(listed->page, page) << listed->feature;
      EXPECT_EQ(listed->default_place, place++) << listed->feature;
      ++features;
    }
  }
  EXPECT_EQ(features, ListedFeatures().size());
}

}  // namespace
