// The small records of a printer description: who owns what, clones, and when two constraints are
// equal.
#include <gtest/gtest.h>

#include <iterator>

#include "ccmtparams.h"
#include "cconstrain.h"
#include "ccpsparams.h"
#include "cfeature.h"
#include "must.h"

namespace {

Owned<CString> Text(const char *text) { return CreateStringWithValue(text); }

const char *Get(const CString *text) { return fGet_CString_Value_Function(text); }

TEST(Classes, HaveTheirIdentifiersAndNames) {
  EXPECT_EQ(ClassIdOf(CreateFeature().get()), 250);
  EXPECT_EQ(ClassIdOf(CreateConstrain().get()), 260);
  EXPECT_EQ(ClassIdOf(CreateCpsParams(1, 2).get()), 270);
  EXPECT_EQ(ClassIdOf(CreateCmtParams(nullptr).get()), 275);
  EXPECT_STREQ(CFeature::Ops()->Class_Name(), "CFeature");
  EXPECT_STREQ(CConstrain::Ops()->Class_Name(), "CConstrain");
  EXPECT_STREQ(CCpsParams::Ops()->Class_Name(), "CCpsParams");
  EXPECT_STREQ(CCmtParams::Ops()->Class_Name(), "CmtParams");
}

TEST(Classes, DeleteOfNothingSucceeds) {
  EXPECT_EQ(fDelete_CFeature_Function(nullptr), 1);
  EXPECT_EQ(fDelete_CConstrain_Function(nullptr), 1);
  EXPECT_EQ(fDelete_CCpsParams_Function(nullptr), 1);
  EXPECT_EQ(fDelete_CCmtParams_Function(nullptr), 1);
}

TEST(Classes, CloneOfNothingIsNothing) {
  EXPECT_EQ(fClone_CFeature_Function(nullptr), nullptr);
  EXPECT_EQ(fClone_CConstrain_Function(nullptr), nullptr);
  EXPECT_EQ(fClone_CCpsParams_Function(nullptr), nullptr);
  EXPECT_EQ(fClone_CCmtParams_Function(nullptr), nullptr);
}

// CFeature

struct FeatureText {
  const char *name;
  CString *(*get)(const CFeature *);
  int (*set)(CFeature *, const CString *);
};

constexpr FeatureText kFeatureTexts[] = {
    {"translation", fGet_Translation_Function, fSet_Translation_Function},
    {"default", fGet_Default_Function, fSet_Default_Function},
    {"type", fGet_Type_Function, fSet_Type_Function},
};

Owned<CFeature> MakeFeature() {
  Owned<CFeature> feature = CreateFeature();
  for (const FeatureText &member : kFeatureTexts)
    member.set(feature.get(), Text(member.name).get());
  const Owned<CHash> options = CreateHash();
  Must(HashPutText(options.get(), "A4", "A4 sheet"));
  Must(fSet_Options_Function(feature.get(), options.get()));
  return feature;
}

TEST(Feature, IsEmptyWhenNew) {
  const Owned<CFeature> feature = CreateFeature();
  for (const FeatureText &member : kFeatureTexts) {
    EXPECT_EQ(member.get(feature.get()), nullptr) << member.name;
  }
  EXPECT_EQ(fGet_Options_Function(feature.get()), nullptr);
}

TEST(Feature, StoresACopyOfATextAndTheCallerKeepsItsOwn) {
  const Owned<CFeature> feature = CreateFeature();
  for (const FeatureText &member : kFeatureTexts) {
    const Owned<CString> mine = Text("one");
    EXPECT_EQ(member.set(feature.get(), mine.get()), 1);
    EXPECT_NE(member.get(feature.get()), mine.get()) << member.name;
    EXPECT_STREQ(Get(mine.get()), "one");
    EXPECT_STREQ(Get(member.get(feature.get())), "one") << member.name;
    EXPECT_EQ(member.set(feature.get(), Text("two").get()), 1);
    EXPECT_STREQ(Get(member.get(feature.get())), "two") << member.name;
  }
}

TEST(Feature, TakesItsOwnTextAgain) {
  const Owned<CFeature> feature = MakeFeature();
  EXPECT_EQ(fSet_Type_Function(feature.get(), fGet_Type_Function(feature.get())), 1);
  EXPECT_STREQ(Get(fGet_Type_Function(feature.get())), "type");
}

TEST(Feature, StoresADeepCopyOfOptions) {
  const Owned<CFeature> feature = CreateFeature();
  const Owned<CHash> mine = CreateHash();
  Must(HashPutText(mine.get(), "A4", "A4 sheet"));
  EXPECT_EQ(fSet_Options_Function(feature.get(), mine.get()), 1);
  Must(HashPutText(mine.get(), "A4", "changed"));
  EXPECT_NE(fGet_Options_Function(feature.get()), mine.get());
  EXPECT_STREQ(HashText(fGet_Options_Function(feature.get()), "A4"), "A4 sheet");
}

TEST(Feature, RefusesAMissingRecordOrArgument) {
  const Owned<CFeature> feature = MakeFeature();
  for (const FeatureText &member : kFeatureTexts) {
    EXPECT_EQ(member.set(feature.get(), nullptr), 0) << member.name;
    EXPECT_STREQ(Get(member.get(feature.get())), member.name);
    EXPECT_EQ(member.set(nullptr, Text("x").get()), 0) << member.name;
    EXPECT_EQ(member.get(nullptr), nullptr) << member.name;
  }
  EXPECT_EQ(fSet_Options_Function(feature.get(), nullptr), 0);
  EXPECT_NE(fGet_Options_Function(feature.get()), nullptr);
  EXPECT_EQ(fSet_Options_Function(nullptr, CreateHash().get()), 0);
  EXPECT_EQ(fGet_Options_Function(nullptr), nullptr);
}

TEST(Feature, CloneIsDeep) {
  const Owned<CFeature> feature = MakeFeature();
  const Owned<CFeature> clone = CloneOf(feature.get());
  ASSERT_NE(clone, nullptr);
  for (const FeatureText &member : kFeatureTexts) {
    EXPECT_NE(member.get(clone.get()), member.get(feature.get()));
    EXPECT_STREQ(Get(member.get(clone.get())), member.name);
  }
  EXPECT_NE(fGet_Options_Function(clone.get()), fGet_Options_Function(feature.get()));
  EXPECT_STREQ(HashText(fGet_Options_Function(clone.get()), "A4"), "A4 sheet");
}

TEST(Feature, IsNotClonedWithoutEachOfItsMembers) {
  for (const auto member : {&CFeature::translation, &CFeature::default_option, &CFeature::type}) {
    const Owned<CFeature> feature = MakeFeature();
    ((*feature).*member).reset();
    EXPECT_EQ(CloneOf(feature.get()), nullptr);
    (*feature).*member = CreateString();  // has no clone either
    EXPECT_EQ(CloneOf(feature.get()), nullptr);
  }
  const Owned<CFeature> feature = MakeFeature();
  feature->options.reset();
  EXPECT_EQ(CloneOf(feature.get()), nullptr);
}

// CConstrain

struct ConstrainText {
  const char *name;
  CString *(*get)(const CConstrain *);
  int (*set)(CConstrain *, Owned<CString> &&);
};

constexpr ConstrainText kConstrainTexts[] = {
    {"feature1", fGetFeature1_Function, fSetFeature1_Function},
    {"option1", fGetOption1_Function, fSetOption1_Function},
    {"feature2", fGetFeature2_Function, fSetFeature2_Function},
    {"option2", fGetOption2_Function, fSetOption2_Function},
};

// Null texts are missing ones.
Owned<CConstrain> MakeConstrain(const char *f1, const char *o1, const char *f2, const char *o2) {
  Owned<CConstrain> constrain = CreateConstrain();
  Must(fSetData_Function(constrain.get(), Text(f1), Text(o1), Text(f2), Text(o2)));
  return constrain;
}

TEST(Constrain, TakesOverTheVeryTextItIsGiven) {
  const Owned<CConstrain> constrain = CreateConstrain();
  for (const ConstrainText &member : kConstrainTexts) {
    EXPECT_EQ(member.get(constrain.get()), nullptr) << member.name;
    for (const char *value : {"one", "two"}) {
      Owned<CString> text = Text(value);
      const CString *given = text.get();
      EXPECT_EQ(member.set(constrain.get(), std::move(text)), 1);
      EXPECT_EQ(text, nullptr);  // NOLINT(bugprone-use-after-move): tells who owns it
      EXPECT_EQ(member.get(constrain.get()), given) << member.name;
    }
  }
}

TEST(Constrain, RefusesAMissingRecordOrTextWhichStaysTheCallers) {
  const Owned<CConstrain> constrain = MakeConstrain("feature1", "option1", "feature2", "option2");
  for (const ConstrainText &member : kConstrainTexts) {
    EXPECT_EQ(member.set(constrain.get(), nullptr), 0);
    EXPECT_STREQ(Get(member.get(constrain.get())), member.name);
    Owned<CString> mine = Text("x");
    EXPECT_EQ(member.set(nullptr, std::move(mine)), 0);
    EXPECT_STREQ(Get(mine.get()), "x");  // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(member.get(nullptr), nullptr);
  }
}

TEST(Constrain, SetDataTakesAllFourAlsoMissingOnes) {
  const Owned<CConstrain> constrain = MakeConstrain("a", "b", "c", "d");
  Owned<CString> text = Text("new");
  const CString *given = text.get();
  EXPECT_EQ(fSetData_Function(constrain.get(), std::move(text), nullptr, Text("z"), nullptr), 1);
  EXPECT_EQ(fGetFeature1_Function(constrain.get()), given);
  EXPECT_EQ(fGetOption1_Function(constrain.get()), nullptr);
  EXPECT_STREQ(Get(fGetFeature2_Function(constrain.get())), "z");
  EXPECT_EQ(fGetOption2_Function(constrain.get()), nullptr);
  EXPECT_EQ(fSetData_Function(nullptr, Text("a"), Text("b"), Text("c"), Text("d")), 0);
}

TEST(Constrain, ATextSharedByTwoConstraintsIsSetInOneAlone) {
  const SharedText shared("shared");
  const Owned<CConstrain> one = CreateConstrain();
  const Owned<CConstrain> other = CreateConstrain();
  one->option1.Share(shared);
  other->option1.Share(shared);
  EXPECT_EQ(Get(fGetOption1_Function(one.get())), Get(fGetOption1_Function(other.get())));
  EXPECT_EQ(ClassIdOf(fGetOption1_Function(one.get())), 100);
  EXPECT_EQ(fSet_CString_Value_Function(fGetOption1_Function(one.get()), "changed"), 1);
  EXPECT_STREQ(Get(fGetOption1_Function(one.get())), "changed");
  EXPECT_STREQ(Get(fGetOption1_Function(other.get())), "shared");
  EXPECT_EQ(fSetOption1_Function(other.get(), Text("given")), 1);
  EXPECT_STREQ(Get(fGetOption1_Function(other.get())), "given");
}

TEST(Constrain, CloneIsDeepAndNeedsAllFour) {
  const Owned<CConstrain> constrain = MakeConstrain("feature1", "option1", "feature2", "option2");
  const Owned<CConstrain> clone = CloneOf(constrain.get());
  ASSERT_NE(clone, nullptr);
  for (const ConstrainText &member : kConstrainTexts) {
    EXPECT_STREQ(Get(member.get(clone.get())), member.name);
    EXPECT_NE(member.get(clone.get()), member.get(constrain.get()));
  }
  EXPECT_EQ(CloneOf(MakeConstrain(nullptr, "b", "c", "d").get()), nullptr);
  EXPECT_EQ(CloneOf(MakeConstrain("a", nullptr, "c", "d").get()), nullptr);
  EXPECT_EQ(CloneOf(MakeConstrain("a", "b", nullptr, "d").get()), nullptr);
  EXPECT_EQ(CloneOf(MakeConstrain("a", "b", "c", nullptr).get()), nullptr);
}

struct EqualCase {
  const char *rule;
  const char *a[4];
  const char *b[4];
  int expected;
};

constexpr EqualCase kEqualCases[] = {
    {"the same ends", {"F", "x", "G", "y"}, {"F", "x", "G", "y"}, 1},
    {"the same ends crossed", {"F", "x", "G", "y"}, {"G", "y", "F", "x"}, 1},
    {"the duplex example",
     {"*Duplex", "X", "*MediaType", "Y"},
     {"*MediaType", "Y", "*Duplex", "X"},
     1},
    {"another first option", {"F", "x", "G", "y"}, {"F", "z", "G", "y"}, 0},
    {"another second option", {"F", "x", "G", "y"}, {"F", "x", "G", "z"}, 0},
    {"another feature", {"F", "x", "G", "y"}, {"F", "x", "H", "y"}, 0},
    {"features crossed but options not", {"F", "x", "G", "y"}, {"G", "x", "F", "y"}, 0},
    {"options crossed but features not", {"F", "x", "G", "y"}, {"F", "y", "G", "x"}, 0},
    {"case counts", {"F", "x", "G", "y"}, {"F", "X", "G", "y"}, 0},
    {"one feature twice, straight", {"F", "x", "F", "y"}, {"F", "x", "F", "y"}, 1},
    {"one feature twice, reached by the crossed comparison",
     {"F", "x", "F", "y"},
     {"F", "y", "F", "x"},
     1},
    {"first option missing in both", {"F", nullptr, "G", "y"}, {"F", nullptr, "G", "y"}, 1},
    {"second option missing in both", {"F", "x", "G", nullptr}, {"F", "x", "G", nullptr}, 1},
    {"first option missing in one", {"F", nullptr, "G", "y"}, {"F", "x", "G", "y"}, 0},
    {"second option missing in one", {"F", "x", "G", "y"}, {"F", "x", "G", nullptr}, 0},
    {"missing option crossed", {"F", nullptr, "G", "y"}, {"G", "y", "F", nullptr}, 1},
    {"the other missing option crossed", {"F", "x", "G", nullptr}, {"G", nullptr, "F", "x"}, 1},
    {"missing option against the other feature's",
     {"F", nullptr, "G", "y"},
     {"G", nullptr, "F", "y"},
     0},
    {"missing option and another present one",
     {"F", nullptr, "G", "y"},
     {"F", nullptr, "G", "z"},
     0},
    {"both options missing in both, kept on purpose",
     {"F", nullptr, "G", nullptr},
     {"F", nullptr, "G", nullptr},
     0},
    {"both options missing in both, crossed",
     {"F", nullptr, "G", nullptr},
     {"G", nullptr, "F", nullptr},
     0},
    {"both options missing in one", {"F", nullptr, "G", nullptr}, {"F", "x", "G", "y"}, 0},
    {"first feature missing", {nullptr, "x", "G", "y"}, {nullptr, "x", "G", "y"}, 0},
    {"second feature missing", {"F", "x", nullptr, "y"}, {"F", "x", nullptr, "y"}, 0},
    {"a feature missing in one", {"F", "x", "G", "y"}, {"F", "x", nullptr, "y"}, 0},
    {"an empty option is present", {"F", "", "G", "y"}, {"F", nullptr, "G", "y"}, 0},
    {"empty options are equal", {"F", "", "G", "y"}, {"F", "", "G", "y"}, 1},
};

TEST(Constrain, IsAnUnorderedPairOfEnds) {
  for (const EqualCase &row : kEqualCases) {
    const auto a = MakeConstrain(row.a[0], row.a[1], row.a[2], row.a[3]);
    const auto b = MakeConstrain(row.b[0], row.b[1], row.b[2], row.b[3]);
    EXPECT_EQ(fIsEqual_Function(a.get(), b.get()), row.expected) << row.rule;
    EXPECT_EQ(fIsEqual_Function(b.get(), a.get()), row.expected) << row.rule << ", swapped";
  }
}

TEST(Constrain, IsNotEqualToNothing) {
  const auto constrain = MakeConstrain("F", "x", "G", "y");
  EXPECT_EQ(fIsEqual_Function(constrain.get(), nullptr), 0);
  EXPECT_EQ(fIsEqual_Function(nullptr, constrain.get()), 0);
  EXPECT_EQ(fIsEqual_Function(nullptr, nullptr), 0);
}

// CCpsParams

TEST(CpsParams, HoldsWidthAndLength) {
  const Owned<CCpsParams> params = CreateCpsParams(209.6, -1.5);
  EXPECT_EQ(fGetWidth_Function(params.get()), 209.6);
  EXPECT_EQ(fGetLength_Function(params.get()), -1.5);
  EXPECT_EQ(fSetWidth_Function(params.get(), 1), 1);
  EXPECT_EQ(fSetLength_Function(params.get(), 2), 1);
  EXPECT_EQ(fGetWidth_Function(params.get()), 1);
  EXPECT_EQ(fGetLength_Function(params.get()), 2);
  EXPECT_EQ(fSetData_Function(params.get(), 3, 4), 1);
  const Owned<CCpsParams> clone = CloneOf(params.get());
  EXPECT_EQ(fSetData_Function(params.get(), 0, 0), 1);
  EXPECT_EQ(fGetWidth_Function(clone.get()), 3);
  EXPECT_EQ(fGetLength_Function(clone.get()), 4);
}

TEST(CpsParams, MissingRecordHasNoSize) {
  EXPECT_EQ(fGetWidth_Function(nullptr), 0.0);
  EXPECT_EQ(fGetLength_Function(nullptr), 0.0);
  EXPECT_EQ(fSetWidth_Function(nullptr, 1), 0);
  EXPECT_EQ(fSetLength_Function(nullptr, 1), 0);
  EXPECT_EQ(fSetData_Function(nullptr, 1, 1), 0);
}

// CCmtParams

TEST(CmtParams, TakesOverTheVeryNameItIsGivenAndDoesNotDeleteTheOldOne) {
  for (const auto set :
       {fSetGuiName_Function,
        static_cast<int (*)(CCmtParams *, Owned<CString> &&)>(fSetData_Function)}) {
    Owned<CString> first = Text("first");
    const CString *given = first.get();
    const Owned<CCmtParams> params = CreateCmtParams(std::move(first));
    EXPECT_EQ(fGetGuiName_Function(params.get()), given);

    Owned<CString> name = Text("second");
    const CString *second = name.get();
    EXPECT_EQ(set(params.get(), std::move(name)), 1);
    EXPECT_EQ(fGetGuiName_Function(params.get()), second);
    EXPECT_EQ(name.get(), given);  // NOLINT(bugprone-use-after-move): the old name comes back
    EXPECT_STREQ(Get(name.get()), "first");
  }
}

TEST(CmtParams, TakesAMissingName) {
  const Owned<CCmtParams> params = CreateCmtParams(Text("name"));
  EXPECT_EQ(fSetGuiName_Function(params.get(), nullptr), 1);
  EXPECT_EQ(fGetGuiName_Function(params.get()), nullptr);
  const Owned<CCmtParams> clone = CloneOf(params.get());
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(fGetGuiName_Function(clone.get()), nullptr);
}

TEST(CmtParams, MissingRecordRefusesTheNameWhichStaysTheCallers) {
  Owned<CString> mine = Text("mine");
  EXPECT_EQ(fSetGuiName_Function(nullptr, std::move(mine)), 0);
  EXPECT_STREQ(Get(mine.get()), "mine");  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(fGetGuiName_Function(nullptr), nullptr);
}

TEST(CmtParams, CloneHoldsACloneOfTheName) {
  const Owned<CCmtParams> params = CreateCmtParams(Text("Glossy"));
  const Owned<CCmtParams> clone = CloneOf(params.get());
  EXPECT_NE(fGetGuiName_Function(clone.get()), fGetGuiName_Function(params.get()));
  EXPECT_STREQ(Get(fGetGuiName_Function(clone.get())), "Glossy");
}

}  // namespace
