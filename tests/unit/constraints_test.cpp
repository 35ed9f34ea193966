// Forbidden pairs of choices, and what a choice conflicts with among the queue's settings.
#include "constraints.h"

#include <gtest/gtest.h>

#include "must.h"
#include "optionsupport.h"

namespace {

class Constraints : public testing::Test {
 protected:
  Constraints() {
    options_.Feature({"*PageSize", "A4", {{"A4", "A4 sheet"}, {"Letter", "US Letter"}}});
    options_.Feature({"*MediaType", "Plain", {{"Plain", "Plain"}, {"Thick", "Thick"}}});
    options_.Feature({"*Duplex", "None", {{"None", "Off"}, {"Long", "Long edge"}}});
    SetCurrentPrinter(options_.Printer());
  }

  static int IsInvalid(const char *f1, const char *o1, const char *f2, const char *o2) {
    return G_IsInvalidCombination(CreateStringWithValue(f1).get(), CreateStringWithValue(o1).get(),
                                  CreateStringWithValue(f2).get(), CreateStringWithValue(o2).get());
  }

  // "1 <feature> <option>" or "0 <> <>".
  static std::string Check(const char *feature, const char *option) {
    std::string setting = "left over";
    std::string value = "left over";
    const int result =
        G_CheckConstraintsForFeature(CreateStringWithValue(feature).get(),
                                     CreateStringWithValue(option).get(), &setting, &value);
    return std::to_string(result) + " <" + setting + "> <" + value + ">";
  }

  CurrentOptions options_;
};

constexpr char kNone[] = "0 <> <>";

TEST_F(Constraints, APairIsForbiddenInEitherOrder) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  EXPECT_EQ(IsInvalid("*Duplex", "Long", "*MediaType", "Thick"), 1);
  EXPECT_EQ(IsInvalid("*MediaType", "Thick", "*Duplex", "Long"), 1);
}

TEST_F(Constraints, OtherPairsOfTheSameFeaturesOrOptionsAreAllowed) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  EXPECT_EQ(IsInvalid("*Duplex", "None", "*MediaType", "Thick"), 0);
  EXPECT_EQ(IsInvalid("*Duplex", "Long", "*MediaType", "Plain"), 0);
  EXPECT_EQ(IsInvalid("*Duplex", "Thick", "*MediaType", "Long"), 0);
  EXPECT_EQ(IsInvalid("*Duplex", "Long", "*Duplex", "Long"), 0);
  EXPECT_EQ(IsInvalid("*duplex", "Long", "*MediaType", "Thick"), 0);
}

TEST_F(Constraints, AMissingTextForbidsNothing) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  options_.Forbid("*Duplex", nullptr, "*MediaType", "Thick");
  EXPECT_EQ(IsInvalid(nullptr, "Long", "*MediaType", "Thick"), 0);
  EXPECT_EQ(IsInvalid("*Duplex", nullptr, "*MediaType", "Thick"), 0);
  EXPECT_EQ(IsInvalid("*Duplex", "Long", nullptr, "Thick"), 0);
  EXPECT_EQ(IsInvalid("*Duplex", "Long", "*MediaType", nullptr), 0);
  EXPECT_EQ(G_IsInvalidCombination(Text("*Duplex").get(), CreateString().get(),
                                   Text("*MediaType").get(), Text("Thick").get()),
            0);
}

TEST_F(Constraints, AConstraintWithoutAnOptionEqualsNoPairOfTwoChoices) {
  options_.Forbid("*Duplex", nullptr, "*MediaType", "Thick");
  options_.Forbid("*Duplex", nullptr, "*MediaType", nullptr);
  options_.Forbid(nullptr, "Long", "*MediaType", "Thick");
  EXPECT_EQ(IsInvalid("*Duplex", "Long", "*MediaType", "Thick"), 0);
  EXPECT_EQ(IsInvalid("*Duplex", "", "*MediaType", "Thick"), 0);
}

TEST_F(Constraints, WithoutPrinterOrConstraintsNothingIsForbidden) {
  EXPECT_EQ(IsInvalid("*Duplex", "Long", "*MediaType", "Thick"), 0);
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  SetCurrentPrinter(nullptr);
  EXPECT_EQ(IsInvalid("*Duplex", "Long", "*MediaType", "Thick"), 0);
}

TEST_F(Constraints, AnotherPrintersConstraintsReplaceThoseBefore) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  const Owned<CPrinter> other = CreatePrinter("/nowhere/other.paf");
  SetCurrentPrinter(other.get());
  EXPECT_EQ(IsInvalid("*Duplex", "Long", "*MediaType", "Thick"), 0);
  SetCurrentPrinter(options_.Printer());
  EXPECT_EQ(IsInvalid("*Duplex", "Long", "*MediaType", "Thick"), 1);
}

TEST_F(Constraints, AConflictNamesTheSettingThatConflicts) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  options_.Set("*MediaType", "Thick");
  EXPECT_EQ(Check("*Duplex", "Long"), "1 <*MediaType> <Thick>");
}

TEST_F(Constraints, WithoutConflictTheOutputsAreEmpty) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  options_.Set("*MediaType", "Thick");
  EXPECT_EQ(Check("*Duplex", "None"), kNone);
  EXPECT_EQ(Check("*Unknown", "Long"), kNone);
}

TEST_F(Constraints, AMissingFeatureOrOptionConflictsWithNothing) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  options_.Set("*MediaType", "Thick");
  EXPECT_EQ(Check(nullptr, "Long"), kNone);
  EXPECT_EQ(Check("*Duplex", nullptr), kNone);
}

TEST_F(Constraints, TheFirstConflictInTheOrderOfTheSettingsIsNamed) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  options_.Forbid("*Duplex", "Long", "*Jog", "On");
  options_.Set("*MediaType", "Thick");
  options_.Set("*Jog", "On");
  EXPECT_EQ(Check("*Duplex", "Long"), "1 <*Jog> <On>");
}

TEST_F(Constraints, FeaturesAreComparedBeforeInstallableOptions) {
  options_.Forbid("*Duplex", "Long", "*ADuplexUnit", "False");
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  options_.SetInstalled("*ADuplexUnit", "False");
  EXPECT_EQ(Check("*Duplex", "Long"), "1 <*ADuplexUnit> <False>");
  options_.Set("*MediaType", "Thick");
  EXPECT_EQ(Check("*Duplex", "Long"), "1 <*MediaType> <Thick>");
}

TEST_F(Constraints, AnInstallableOptionIsACandidateLikeAnyOther) {
  options_.Forbid("*Duplex", "Long", "*ADuplexUnit", "False");
  options_.Set("*Duplex", "Long");
  EXPECT_EQ(Check("*ADuplexUnit", "False"), "1 <*Duplex> <Long>");
  EXPECT_EQ(Check("*ADuplexUnit", "True"), kNone);
}

TEST_F(Constraints, ACustomPaperThatIsSetConflictsByItsName) {
  options_.Forbid("*CustomPageSize", "True", "*Duplex", "Long");
  options_.Set("*PageSize", "Ticket");
  EXPECT_EQ(Check("*Duplex", "Long"), "1 <*PageSize> <Ticket>");
  options_.Set("*PageSize", "A4");
  EXPECT_EQ(Check("*Duplex", "Long"), kNone);
}

TEST_F(Constraints, ACustomMediaThatIsSetConflictsByItsName) {
  options_.Forbid("*Duplex", "Long", "*CustomMediaType", "True");
  options_.Set("*MediaType", "Gloss");
  EXPECT_EQ(Check("*Duplex", "Long"), "1 <*MediaType> <Gloss>");
  options_.Set("*MediaType", "Thick");
  EXPECT_EQ(Check("*Duplex", "Long"), kNone);
}

TEST_F(Constraints, ACustomSizeIsNotComparedByItsName) {
  options_.Forbid("*PageSize", "Ticket", "*Duplex", "Long");
  options_.Set("*PageSize", "Ticket");
  EXPECT_EQ(Check("*Duplex", "Long"), kNone);
}

TEST_F(Constraints, ACustomPaperAsCandidateCountsAsTheCustomSize) {
  options_.Forbid("*CustomPageSize", "True", "*Duplex", "Long");
  options_.Set("*Duplex", "Long");
  EXPECT_EQ(Check("*PageSize", "Ticket"), "1 <*Duplex> <Long>");
  EXPECT_EQ(Check("*CustomPageSize", "True"), "1 <*Duplex> <Long>");
  EXPECT_EQ(Check("*PageSize", "A4"), kNone);
}

TEST_F(Constraints, ACustomMediaAsCandidateCountsAsTheCustomMedia) {
  options_.Forbid("*CustomMediaType", "True", "*Duplex", "Long");
  options_.Set("*Duplex", "Long");
  EXPECT_EQ(Check("*MediaType", "Gloss"), "1 <*Duplex> <Long>");
  EXPECT_EQ(Check("*MediaType", "Plain"), kNone);
}

TEST_F(Constraints, ACustomPaperClashesWithACustomMedia) {
  options_.Forbid("*CustomPageSize", "True", "*CustomMediaType", "True");
  options_.Set("*PageSize", "Ticket");
  options_.Set("*MediaType", "Gloss");
  EXPECT_EQ(Check("*PageSize", "Ticket"), "1 <*MediaType> <Gloss>");
  EXPECT_EQ(Check("*MediaType", "Gloss"), "1 <*PageSize> <Ticket>");
  const auto conflict = FindLinearConflict(G_QueueFeatures_hash);
  EXPECT_EQ(conflict, (SettingsConflict{"*MediaType", "Gloss", "*PageSize", "Ticket"}));
}

TEST_F(Constraints, AnInstallableOptionIsNeverTakenForACustomSize) {
  options_.Forbid("*CustomPageSize", "True", "*Duplex", "Long");
  options_.SetInstalled("*PageSize", "Ticket");
  EXPECT_EQ(Check("*Duplex", "Long"), kNone);
}

class ExemptFeature : public Constraints, public testing::WithParamInterface<const char *> {};

TEST_P(ExemptFeature, IsNeverCheckedNeitherAsChoiceNorAsSetting) {
  options_.Forbid(GetParam(), "Some", "*Duplex", "Long");
  options_.Set(GetParam(), "Some");
  options_.Set("*Duplex", "Long");
  EXPECT_EQ(Check(GetParam(), "Some"), kNone);
  EXPECT_EQ(Check("*Duplex", "Long"), kNone);
  EXPECT_EQ(FindLinearConflict(G_QueueFeatures_hash), std::nullopt);
  EXPECT_EQ(IsInvalid(GetParam(), "Some", "*Duplex", "Long"), 1);
}

TEST_P(ExemptFeature, AmongTheInstalledOptionsIsNotExempt) {
  options_.Forbid(GetParam(), "Some", "*Duplex", "Long");
  options_.SetInstalled(GetParam(), "Some");
  EXPECT_EQ(Check("*Duplex", "Long"), std::string("1 <") + GetParam() + "> <Some>");
}

INSTANTIATE_TEST_SUITE_P(Each, ExemptFeature, testing::ValuesIn(kExemptFeatures),
                         [](const auto &each) { return std::string(each.param + 1); });

TEST_F(Constraints, AChoiceThatIsSetAndForbiddenWithItselfConflictsWithItself) {
  options_.Forbid("*Duplex", "Long", "*Duplex", "Long");
  options_.Set("*Duplex", "Long");
  EXPECT_EQ(Check("*Duplex", "Long"), "1 <*Duplex> <Long>");
}

TEST_F(Constraints, AConstraintWrittenTwiceChangesNothing) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  options_.Forbid("*MediaType", "Thick", "*Duplex", "Long");
  options_.Set("*MediaType", "Thick");
  EXPECT_EQ(Check("*Duplex", "Long"), "1 <*MediaType> <Thick>");
}

TEST_F(Constraints, ASettingWithoutATextConflictsWithNothing) {
  options_.Forbid("*CustomPageSize", "True", "*Duplex", "Long");
  Must(HashPut(G_QueueFeatures_hash, "*PageSize", CreateString()));
  Must(HashPut(G_QueueFeatures_hash, "*MediaType", Owned<CString>()));
  Must(HashPut(G_QueueInstallableOptions_hash, "*OptionHCF", Owned<CString>()));
  EXPECT_EQ(Check("*Duplex", "Long"), kNone);
  EXPECT_EQ(FindLinearConflict(G_QueueFeatures_hash), std::nullopt);
}

TEST_F(Constraints, WithoutAQueueNothingConflicts) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  SetCurrentQueue(nullptr, nullptr);
  EXPECT_EQ(Check("*Duplex", "Long"), kNone);
  EXPECT_EQ(FindLinearConflict(G_QueueFeatures_hash), std::nullopt);
}

TEST_F(Constraints, ASnapshotKeepsItsAnswersForManyChoices) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  options_.Set("*MediaType", "Thick");
  const SettingsSnapshot snapshot;
  ASSERT_NE(snapshot.ConflictOf("*Duplex", "Long"), nullptr);
  EXPECT_STREQ(snapshot.ConflictOf("*Duplex", "Long")->feature, "*MediaType");
  EXPECT_STREQ(snapshot.ConflictOf("*Duplex", "Long")->option, "Thick");
  EXPECT_EQ(snapshot.ConflictOf("*Duplex", "None"), nullptr);
}

TEST_F(Constraints, AnInstalledOptionBlocksSavingThoughTheFeaturesAloneDoNot) {
  options_.Forbid("*OptionFinisher", "None", "*OptionPunch", "Punch2Hole");
  options_.Set("*PageSize", "A4");
  options_.SetInstalled("*OptionFinisher", "None");
  options_.SetInstalled("*OptionPunch", "Punch2Hole");
  EXPECT_EQ(FindLinearConflict(G_QueueFeatures_hash), std::nullopt);
  const auto conflict = FindLinearConflict(G_QueueInstallableOptions_hash);
  EXPECT_EQ(conflict, (SettingsConflict{"*OptionFinisher", "None", "*OptionPunch", "Punch2Hole"}));
}

TEST_F(Constraints, AFeatureThatClashesWithAnInstalledOptionBlocksFromEitherSide) {
  options_.Forbid("*OptionDuplex", "False", "*Duplex", "Long");
  options_.Set("*Duplex", "Long");
  options_.SetInstalled("*OptionDuplex", "False");
  EXPECT_EQ(FindLinearConflict(G_QueueFeatures_hash),
            (SettingsConflict{"*Duplex", "Long", "*OptionDuplex", "False"}));
  EXPECT_EQ(FindLinearConflict(G_QueueInstallableOptions_hash),
            (SettingsConflict{"*OptionDuplex", "False", "*Duplex", "Long"}));
}

TEST_F(Constraints, SettingsWithoutConflictDoNotBlockSaving) {
  options_.Forbid("*Duplex", "Long", "*MediaType", "Thick");
  options_.Set("*Duplex", "Long");
  options_.Set("*MediaType", "Plain");
  EXPECT_EQ(FindLinearConflict(G_QueueFeatures_hash), std::nullopt);
  EXPECT_EQ(FindLinearConflict(G_QueueInstallableOptions_hash), std::nullopt);
}

}  // namespace
