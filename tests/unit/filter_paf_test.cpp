// The PAF form of a PPD: read back with the reader of the core.
#include <gtest/gtest.h>

#include <set>

#include "cconstrain.h"
#include "cfeature.h"
#include "pafformat.h"
#include "pafreader.h"
#include "pafwriter.h"
#include "ppdadaptor.h"
#include "ppdconstraints.h"
#include "textencoding.h"

using namespace kpx::filter;

namespace {

PafContent Read(const std::string &paf) {
  LineReader lines(paf);
  auto read = ReadPaf(lines);
  if (const auto *error = std::get_if<PafError>(&read)) {
    ADD_FAILURE() << "line " << error->line_number << ": " << error->reason << "\n" << paf;
    return {};
  }
  return std::move(std::get<PafContent>(read));
}

std::string Value(const CString *text) {
  const char *value = fGet_CString_Value_Function(text);
  return value == nullptr ? "(null)" : value;
}

PpdModel Office() {
  PpdError error;
  return ReadPpdFile(std::string(KPX_TEST_DATA) + "/data/ppd/office.ppd", &error)
      .value_or(PpdModel{});
}

// A model with one feature of these choices.
PpdModel Model(const std::string &name, const std::vector<PpdChoice> &choices) {
  PpdModel model;
  model.nick_name = name;
  PpdFeature feature;
  feature.keyword = "Mode";
  feature.text = "Mode";
  feature.choices = choices;
  model.features.push_back(feature);
  return model;
}

using Ends = std::pair<std::string, std::string>;

std::set<Ends> PairTexts(const PpdModel &model, size_t *left_out) {
  const ConstraintPairs result = ExpandConstraints(model);
  std::set<Ends> texts;
  for (const OptionPair &pair : result.pairs) {
    texts.insert({pair.feature1 + " " + pair.option1, pair.feature2 + " " + pair.option2});
  }
  EXPECT_EQ(texts.size(), result.pairs.size());
  *left_out = result.left_out;
  return texts;
}

class OfficePaf : public testing::Test {
 protected:
  const PpdModel model_ = Office();
  const std::string text_ = PafText(model_, "vekoffice.ppd");
  const PafContent paf_ = Read(text_);

  const CFeature *Feature(const char *id) const {
    return HashValue<CFeature>(paf_.features.get(), id);
  }
};

TEST_F(OfficePaf, NamesThePrinterUpToTheFirstColonAndThePpdFile) {
  EXPECT_EQ(Value(paf_.name.get()), "Büro 100");
  EXPECT_EQ(Value(paf_.ppd_file.get()), "vekoffice.ppd");
}

TEST_F(OfficePaf, KindsOfFeaturesHaveTheirOwnBlocks) {
  EXPECT_NE(text_.find("#uio\n#id\n*PageRegion\n"), std::string::npos);
  EXPECT_NE(text_.find("#uij\n#id\n*Delivery\n"), std::string::npos);
  EXPECT_NE(text_.find("#uij\n#id\n*EmailNotification\n"), std::string::npos);
  EXPECT_NE(text_.find("#uiio\n#id\n*OptionDuplex\n"), std::string::npos);
  EXPECT_NE(HashFind(paf_.installable_options.get(), "*OptionDuplex"), nullptr);
  EXPECT_EQ(HashFind(paf_.features.get(), "*OptionDuplex"), nullptr);
}

TEST_F(OfficePaf, TypesAreThoseOfThePpd) {
  EXPECT_EQ(Value(Feature("*PageSize")->type.get()), "PickOne");
  EXPECT_EQ(Value(Feature("*Overlay")->type.get()), "Boolean");
  EXPECT_EQ(Value(Feature("*Glue")->type.get()), "PickMany");
}

TEST_F(OfficePaf, AFeatureWithoutADefaultGetsItsFirstChoice) {
  EXPECT_EQ(Value(Feature("*Duplex")->default_option.get()), "None");
}

TEST_F(OfficePaf, ADefaultThatIsNoChoiceGivesWayToTheFirstChoice) {
  EXPECT_EQ(Value(Feature("*MediaType")->default_option.get()), "Plain");
}

TEST_F(OfficePaf, AFeatureWithoutChoicesIsLeftOut) { EXPECT_EQ(Feature("*Nothing"), nullptr); }

TEST_F(OfficePaf, TranslationsAreUtf8OnOneLine) {
  EXPECT_STREQ(HashText(Feature("*MediaType")->options.get(), "Plain"), "Papier léger");
  EXPECT_STREQ(HashText(Feature("*PageSize")->options.get(), "Letter"), "US  Letter");
}

TEST_F(OfficePaf, AnEmptyTranslationBecomesTheKeyword) {
  EXPECT_STREQ(HashText(Feature("*Glue")->options.get(), "Left"), "Left");
}

TEST_F(OfficePaf, ATranslationThatWouldBeAKeywordGetsABlankBeforeIt) {
  EXPECT_STREQ(HashText(Feature("*MediaType")->options.get(), "Card"), " #end_ui");
}

TEST_F(OfficePaf, CustomSizesAreInPoints) {
  EXPECT_STREQ(HashText(paf_.custom_paper.get(), "MinWidth"), "72");
  EXPECT_STREQ(HashText(paf_.custom_paper.get(), "MaxWidth"), "700");
  EXPECT_STREQ(HashText(paf_.custom_paper.get(), "MinLength"), "100.25");
  EXPECT_STREQ(HashText(paf_.custom_paper.get(), "MaxLength"), "1300.5");
}

TEST_F(OfficePaf, ALeftOutChoiceMeansEveryChoiceThatIsNotOff) {
  size_t left_out = 0;
  const std::set<Ends> pairs = PairTexts(model_, &left_out);
  EXPECT_TRUE(pairs.contains({"*Duplex DuplexTumble", "*OptionDuplex False"}));
  EXPECT_TRUE(pairs.contains({"*Duplex DuplexNoTumble", "*OptionDuplex False"}));
  EXPECT_FALSE(pairs.contains({"*Duplex None", "*OptionDuplex False"}));
}

TEST_F(OfficePaf, APairListedInBothDirectionsIsWrittenOnce) {
  size_t left_out = 0;
  const std::set<Ends> pairs = PairTexts(model_, &left_out);
  EXPECT_FALSE(pairs.contains({"*OptionDuplex False", "*Duplex DuplexTumble"}));
  EXPECT_EQ(pairs.size(), 6u);
}

TEST_F(OfficePaf, CustomPaperAndCustomMediaAreOptions) {
  size_t left_out = 0;
  const std::set<Ends> pairs = PairTexts(model_, &left_out);
  EXPECT_TRUE(pairs.contains({"*CustomPageSize True", "*Duplex DuplexTumble"}));
  EXPECT_TRUE(pairs.contains({"*CustomMediaType True", "*InputSlot Upper"}));
}

TEST_F(OfficePaf, ConstraintsOnWhatThePpdDoesNotDefineAreLeftOutAndCounted) {
  size_t left_out = 0;
  PairTexts(model_, &left_out);
  EXPECT_EQ(left_out, 3u);
  EXPECT_NE(text_.find("\n## 3 constraints left out: "), std::string::npos);
}

TEST_F(OfficePaf, ConstraintsAreReadBackInTheirOrder) {
  const auto *first =
      ObjectCast<CConstrain>(fGetHeadPosition_CList_Function(paf_.constraints.get())->value);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(Value(first->feature1.get()), "*Duplex");
  EXPECT_EQ(Value(first->option1.get()), "DuplexTumble");
  EXPECT_EQ(Value(first->feature2.get()), "*OptionDuplex");
  EXPECT_EQ(Value(first->option2.get()), "False");
}

TEST(PafSafety, ANameFallsBackToTheModelNameAndThenToTheFile) {
  PpdModel model = Model("", {{"A", "a", ""}});
  EXPECT_EQ(PrinterName(model, "vek1.ppd"), "vek1");
  model.model_name = "Model: 7";
  EXPECT_EQ(PrinterName(model, "vek1.ppd"), "Model");
  model.nick_name = ": all behind the colon";
  EXPECT_EQ(PrinterName(model, "vek1.ppd"), "Model");
}

TEST(PafSafety, LinesPastTheLimitAreCutBetweenCharacters) {
  std::string text(1022, 'x');
  text += "éé";
  const PafContent paf = Read(PafText(Model(text, {{"A", text, ""}}), "vek1.ppd"));
  const CFeature *feature = HashValue<CFeature>(paf.features.get(), "*Mode");
  ASSERT_NE(feature, nullptr);
  EXPECT_EQ(std::string(HashText(feature->options.get(), "A")), std::string(1022, 'x'));
  EXPECT_EQ(Value(paf.name.get()), std::string(1016, 'x'));
}

TEST(PafSafety, AChoiceWhoseKeywordTheFormatUsesIsLeftOut) {
  PpdModel model = Model("P", {{"#id", "bad", ""}, {"##x", "bad", ""}, {"#10", "Envelope", ""}});
  model.features[0].default_choice = "#id";
  model.constraints = {{"Mode", "#id", "Mode", "#10"}};
  const PafContent paf = Read(PafText(model, "vek1.ppd"));
  const CFeature *feature = HashValue<CFeature>(paf.features.get(), "*Mode");
  ASSERT_NE(feature, nullptr);
  EXPECT_EQ(Value(feature->default_option.get()), "#10");
  EXPECT_STREQ(HashText(feature->options.get(), "#10"), "Envelope");
  EXPECT_EQ(HashText(feature->options.get(), "#id"), nullptr);
  EXPECT_EQ(fGetHeadPosition_CList_Function(paf.constraints.get()), nullptr);
}

TEST(PafSafety, TextsThatMerelyBeginWithANumberSignStay) {
  EXPECT_EQ(PafValue("#10 Envelope", "x"), "#10 Envelope");
  EXPECT_EQ(PafValue("#id", "x"), " #id");
  EXPECT_EQ(PafValue("## note", "x"), " ## note");
  EXPECT_EQ(PafValue("#translated", "x"), " #translated");
  EXPECT_EQ(PafValue("", "x"), "x");
}

TEST(PafSafety, APrinterWithoutAnythingIsStillReadable) {
  const PafContent paf = Read(PafText(PpdModel{}, "vek1.ppd"));
  EXPECT_EQ(Value(paf.name.get()), "vek1");
  EXPECT_EQ(paf.custom_paper, nullptr);
}

}  // namespace
