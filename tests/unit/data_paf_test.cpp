// The printer descriptions made by the build read as the records that the program works with.
#include <gtest/gtest.h>

#include "cconstrain.h"
#include "cfeature.h"
#include "data_ppd.h"
#include "pafreader.h"

namespace {

class ShippedPaf : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override {
    const std::string text = FileText(std::filesystem::path(KPX_PAF_DIR) / (GetParam() + ".paf"));
    LineReader lines(text);
    auto read = ReadPaf(lines);
    ASSERT_TRUE(std::holds_alternative<PafContent>(read))
        << std::get<PafError>(read).line_number << ": " << std::get<PafError>(read).reason;
    paf_ = std::move(std::get<PafContent>(read));
  }

  const CFeature *Feature(const std::string &keyword) const {
    const CFeature *feature = HashValue<CFeature>(paf_.features.get(), keyword.c_str());
    if (feature != nullptr) return feature;
    return HashValue<CFeature>(paf_.installable_options.get(), keyword.c_str());
  }

  PafContent paf_;
  const Ppd ppd_ = ReadPpd(std::filesystem::path(KPX_PPD_DIR) / (GetParam() + ".ppd"));
};

TEST_P(ShippedPaf, CarriesTheNameOfModelAndPpd) {
  EXPECT_EQ(fGet_CString_Value_Function(paf_.name.get()), ppd_.attributes.at("NickName"));
  EXPECT_EQ(fGet_CString_Value_Function(paf_.ppd_file.get()), GetParam() + ".ppd");
}

TEST_P(ShippedPaf, HasTheFeaturesOfThePpdWithTheirOptionsAndDefaults) {
  for (const auto &[name, expected] : ppd_.features) {
    const CFeature *feature = Feature("*" + name);
    ASSERT_NE(feature, nullptr) << name;
    const CHash *table =
        expected.is_installable ? paf_.installable_options.get() : paf_.features.get();
    EXPECT_NE(HashFind(table, ("*" + name).c_str()), nullptr) << name;
    EXPECT_EQ(fGet_CString_Value_Function(feature->default_option.get()), expected.default_option);
    EXPECT_EQ(fGet_CString_Value_Function(feature->type.get()), expected.type) << name;
    size_t count = 0;
    for (const auto [option, text] : Pairs<CString>(feature->options.get())) {
      EXPECT_TRUE(expected.Has(option)) << name << " " << option;
      EXPECT_STRNE(fGet_CString_Value_Function(text), "") << name << " " << option;
      ++count;
    }
    EXPECT_EQ(count, expected.options.size()) << name;
  }
}

TEST_P(ShippedPaf, TellsTheOptionsOfAFeatureApartByTheirTexts) {
  for (const auto [name, feature] : Pairs<CFeature>(paf_.features.get())) {
    std::set<std::string> texts;
    for (const auto [option, text] : Pairs<CString>(feature->options.get())) {
      EXPECT_TRUE(texts.insert(fGet_CString_Value_Function(text)).second) << name << " " << option;
    }
  }
}

TEST_P(ShippedPaf, LimitsCustomSizesInWholePels) {
  ASSERT_NE(paf_.custom_paper, nullptr);
  for (const char *key : {"MinWidth", "MaxWidth", "MinLength", "MaxLength"}) {
    const std::string text = HashText(paf_.custom_paper.get(), key);
    EXPECT_FALSE(text.empty()) << key;
    EXPECT_EQ(text.find_first_not_of("0123456789"), std::string::npos) << key << " " << text;
  }
}

TEST_P(ShippedPaf, HasAConstraintForEveryPairOfThePpd) {
  std::set<std::string> present;
  for (const CConstrain *constraint : Elements<CConstrain>(paf_.constraints.get())) {
    const std::string first = fGet_CString_Value_Function(constraint->feature1.get());
    const std::string second = fGet_CString_Value_Function(constraint->feature2.get());
    present.insert(first + " " + fGet_CString_Value_Function(constraint->option1.get()) + " " +
                   second + " " + fGet_CString_Value_Function(constraint->option2.get()));
  }
  const auto options = [this](const PpdEnd &end) {
    if (!end.option.empty()) return std::vector<std::string>{end.option};
    std::vector<std::string> names;
    for (const PpdOption &option : ppd_.features.at(end.keyword).options) {
      if (option.name != "None" && option.name != "False" && option.name != "Off") {
        names.push_back(option.name);
      }
    }
    return names;
  };
  std::set<std::string> expected;
  for (const auto &words : ppd_.conflicts) {
    const auto [first, second] = Ends(words);
    for (const std::string &a : options(first)) {
      for (const std::string &b : options(second)) {
        const std::string straight =
            "*" + first.keyword + " " + a + " *" + second.keyword + " " + b;
        const std::string crossed = "*" + second.keyword + " " + b + " *" + first.keyword + " " + a;
        EXPECT_NE(present.contains(straight), present.contains(crossed)) << straight;
        expected.insert(present.contains(straight) ? straight : crossed);
      }
    }
  }
  EXPECT_EQ(present, expected);
}

INSTANTIATE_TEST_SUITE_P(Models, ShippedPaf,
                         testing::Values("vek41201", "vek41101", "vek41051", "vek41211", "vek41001",
                                         "vek41021"),
                         [](const auto &row) { return row.param; });

}  // namespace
