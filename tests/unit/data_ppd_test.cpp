// The shipped printer descriptions offer what the program's windows show, in a form that an
// interpreter and the constraint logic can work with.
#include "data_ppd.h"

#include <gtest/gtest.h>

namespace {

struct Model {
  const char *file;
  const char *name;
};

constexpr Model kModels[] = {
    {"vek41201", "Vek Norvel 4120ES"}, {"vek41101", "Vek Norvel 4110ES"},
    {"vek41051", "Vek Norvel 4105"},   {"vek41211", "Vek Norvel 4121"},
    {"vek41001", "Vek Norvel 4100ES"}, {"vek41021", "Vek Norvel 4102ES"},
};

std::filesystem::path PpdPath(const Model &model) {
  return std::filesystem::path(KPX_PPD_DIR) / (std::string(model.file) + ".ppd");
}

class ShippedPpd : public testing::TestWithParam<Model> {
 protected:
  const Ppd ppd_ = ReadPpd(PpdPath(GetParam()));

  void ExpectOptions(const char *feature, const std::vector<const char *> &options) {
    const auto found = ppd_.features.find(feature);
    ASSERT_NE(found, ppd_.features.end()) << feature;
    for (const char *option : options) {
      EXPECT_TRUE(found->second.Has(option)) << feature << " lacks " << option;
    }
  }

  // Whether an end names something that the printer offers.
  bool IsDefined(const PpdEnd &end) const {
    if (end.keyword.starts_with("Custom")) return end.option == "True";
    const auto found = ppd_.features.find(end.keyword);
    if (found == ppd_.features.end()) return false;
    return end.option.empty() || found->second.Has(end.option);
  }

  // Whether an end holds while every feature has its default.
  bool HoldsByDefault(const PpdEnd &end) const {
    const auto found = ppd_.features.find(end.keyword);
    if (found == ppd_.features.end()) return false;
    const std::string &chosen = found->second.default_option;
    if (!end.option.empty()) return chosen == end.option;
    return chosen != "None" && chosen != "False" && chosen != "Off";
  }
};

TEST_P(ShippedPpd, IsNamedAfterItsModel) {
  EXPECT_EQ(ppd_.attributes.at("NickName"), GetParam().name);
  EXPECT_EQ(ppd_.attributes.at("Manufacturer"), "Vek");
  EXPECT_EQ(ppd_.attributes.at("PCFileName"), std::string(GetParam().file) + ".ppd");
  EXPECT_EQ(ppd_.attributes.at("LanguageLevel"), "3");
}

TEST_P(ShippedPpd, HasEveryFeatureThatTheTabsShow) {
  for (const char *name :
       {"PageSize", "MediaType", "InputSlot", "Collate", "Duplex", "OutputBin", "Jog",
        "StapleLocation", "Punch", "Orientation", "EdgeToEdge", "Resolution", "OutputMode",
        "HalfTone", "Delivery", "EmailNotification"}) {
    const auto found = ppd_.features.find(name);
    ASSERT_NE(found, ppd_.features.end()) << name;
    EXPECT_FALSE(found->second.is_installable) << name;
    EXPECT_GE(found->second.options.size(), 2u) << name;
  }
  ExpectOptions("PageSize", {"A3", "A4", "A5", "Letter", "Legal", "Tabloid", "Executive"});
  ExpectOptions("Duplex", {"None", "DuplexNoTumble", "DuplexTumble"});
  ExpectOptions("Orientation", {"Portrait", "Landscape", "RotLandscape"});
  ExpectOptions("Delivery", {"HoldJobUntilYouEnterPIN", "ArchiveToDocumentServer"});
  ExpectOptions("EmailNotification", {"None"});
  ExpectOptions("Punch", {"None"});
  ExpectOptions("StapleLocation", {"None"});
  ExpectOptions("Jog", {"None"});
}

TEST_P(ShippedPpd, HasTheInstallableOptions) {
  for (const char *name : {"OptionHCF", "OptionFinisher", "OptionTray4", "OptionBypassTray"}) {
    ASSERT_TRUE(ppd_.features.contains(name)) << name;
    EXPECT_EQ(ppd_.features.at(name).type, "Boolean") << name;
    EXPECT_TRUE(ppd_.features.at(name).is_installable) << name;
  }
  EXPECT_TRUE(ppd_.features.at("InstalledMemory").is_installable);
  EXPECT_TRUE(ppd_.features.at("OptionPunch").is_installable);
  ExpectOptions("OptionPunch", {"None", "Punch2Hole", "Punch3Hole"});
}

TEST_P(ShippedPpd, LeavesMultipleUpToTheProgram) {
  for (const char *name : {"Nup", "NupOrder", "Booklet"}) {
    EXPECT_FALSE(ppd_.features.contains(name)) << name;
  }
}

TEST_P(ShippedPpd, GivesEveryFeatureADefaultThatItOffers) {
  for (const auto &[name, feature] : ppd_.features) {
    EXPECT_TRUE(feature.Has(feature.default_option)) << name << ": " << feature.default_option;
  }
}

TEST_P(ShippedPpd, ConstrainsOnlyWhatItOffers) {
  EXPECT_GT(ppd_.conflicts.size(), 100u);
  for (const auto &words : ppd_.conflicts) {
    const auto [first, second] = Ends(words);
    EXPECT_TRUE(IsDefined(first)) << first.keyword << " " << first.option;
    EXPECT_TRUE(IsDefined(second)) << second.keyword << " " << second.option;
  }
}

TEST_P(ShippedPpd, HasDefaultsThatGoTogether) {
  for (const auto &words : ppd_.conflicts) {
    const auto [first, second] = Ends(words);
    EXPECT_FALSE(HoldsByDefault(first) && HoldsByDefault(second))
        << first.keyword << " " << first.option << " / " << second.keyword << " " << second.option;
  }
}

// The pairs of features for which the program has a message of its own.
TEST_P(ShippedPpd, ConstrainsThePairsThatHaveAMessage) {
  std::set<std::pair<std::string, std::string>> pairs;
  for (const auto &words : ppd_.conflicts) {
    const auto [first, second] = Ends(words);
    pairs.insert({first.keyword, second.keyword});
    pairs.insert({second.keyword, first.keyword});
  }
  for (const auto &[first, second] :
       std::vector<std::pair<const char *, const char *>>{{"PageSize", "MediaType"},
                                                          {"PageSize", "InputSlot"},
                                                          {"PageSize", "Duplex"},
                                                          {"PageSize", "StapleLocation"},
                                                          {"Jog", "StapleLocation"},
                                                          {"PageSize", "Punch"},
                                                          {"MediaType", "InputSlot"},
                                                          {"MediaType", "Duplex"},
                                                          {"MediaType", "StapleLocation"},
                                                          {"MediaType", "Punch"},
                                                          {"OutputBin", "StapleLocation"},
                                                          {"InputSlot", "OptionHCF"},
                                                          {"Punch", "OptionPunch"},
                                                          {"InputSlot", "OptionTray4"},
                                                          {"InputSlot", "OptionBypassTray"},
                                                          {"OutputBin", "OptionFinisher"},
                                                          {"OptionPunch", "OptionFinisher"},
                                                          {"CustomPageSize", "Duplex"},
                                                          {"CustomPageSize", "StapleLocation"},
                                                          {"CustomMediaType", "InputSlot"}}) {
    EXPECT_TRUE(pairs.contains({first, second})) << first << " / " << second;
  }
  const bool shares_place = pairs.contains({"OptionBypassTray", "OptionHCF"});
  EXPECT_EQ(shares_place, std::string(GetParam().file) != "vek41051");
}

TEST_P(ShippedPpd, AllowsCustomSizesInWholePoints) {
  const std::string text = FileText(PpdPath(GetParam()));
  for (const char *name : {"Width: 1", "Height: 2"}) {
    const std::regex limits(std::string("\\*ParamCustomPageSize ") + name +
                            " points [0-9]+ [0-9]+\n");
    EXPECT_TRUE(std::regex_search(text, limits)) << name;
  }
}

// Job commands end in a line feed, or the next one would be lost.
TEST_P(ShippedPpd, EndsEveryJobCommandInALineFeed) {
  for (const auto &[name, feature] : ppd_.features) {
    if (!feature.is_jcl) continue;
    for (const PpdOption &option : feature.options) {
      EXPECT_TRUE(option.code.starts_with("@PJL ")) << name << " " << option.name;
      EXPECT_TRUE(option.code.ends_with("<0A>")) << name << " " << option.name;
    }
  }
}

TEST_P(ShippedPpd, HasAJobCommandForWhatAPclJobCannotSetItself) {
  static const std::regex command(R"re(\*KPXPJL(\w+) (\w+): "[A-Z]+=\w+( [A-Z]+=\w+)*")re");
  std::set<std::string> commands;
  for (const std::string &line : FileLines(PpdPath(GetParam()))) {
    if (!line.starts_with("*KPXPJL")) continue;
    std::smatch found;
    ASSERT_TRUE(std::regex_match(line, found, command)) << line;
    EXPECT_TRUE(ppd_.features.at(found[1]).Has(found[2])) << line;
    EXPECT_TRUE(commands.insert(found[1].str() + " " + found[2].str()).second) << line;
  }
  for (const char *feature : {"PageSize", "MediaType", "InputSlot", "Duplex", "OutputBin", "Jog",
                              "StapleLocation", "Punch", "Resolution"}) {
    for (const PpdOption &option : ppd_.features.at(feature).options) {
      EXPECT_TRUE(commands.contains(std::string(feature) + " " + option.name))
          << feature << " " << option.name;
    }
  }
}

TEST_P(ShippedPpd, HasOptionCodeThatAnInterpreterRuns) {
  std::string program;
  for (const auto &[name, feature] : ppd_.features) {
    for (const PpdOption &option : feature.options) {
      if (feature.is_jcl || option.code.empty()) continue;
      const std::string label = "(" + name + " " + option.name;
      program += "mark {" + option.code + "} stopped {" + label +
                 " fails) =} if counttomark 0 ne {" + label +
                 " leaves something on the stack) =} if cleartomark\n";
    }
  }
  program +=
      "mark 300 500 0 0 0 {pop pop pop <</PageSize[5 -2 roll]/ImagingBBox null>>"
      "setpagedevice} stopped {(custom size fails) =} if cleartomark\n";
  program +=
      "mark (Own type) {<</MediaType 3 -1 roll>>setpagedevice} stopped "
      "{(custom type fails) =} if counttomark 0 ne {(custom type leaves its name) =} if\n";
  EXPECT_EQ(InterpreterOutput(program), "");
}

TEST_P(ShippedPpd, KeepsTheChosenHalftoneWhenTheJobSetsItsPageDevice) {
  for (const PpdOption &option : ppd_.features.at("HalfTone").options) {
    const std::string frequency =
        "currenthalftone /Frequency 2 copy known {get cvi} {pop pop 0} ifelse ";
    const std::string shown = InterpreterOutput(
        option.code + " " + frequency + "=\n<</NumCopies 2/PageSize[300 400]>>setpagedevice " +
        frequency + "=\n");
    std::istringstream lines(shown);
    std::string before, after;
    lines >> before >> after;
    EXPECT_EQ(after, before) << option.name;
    if (option.name == "Fine") {
      EXPECT_EQ(after, "106");
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Models, ShippedPpd, testing::ValuesIn(kModels),
                         [](const auto &row) { return std::string(row.param.file); });

TEST(ShippedPpds, OfferPunchUnitsThatDifferBetweenModels) {
  const Ppd office = ReadPpd(PpdPath(kModels[2]));
  const Ppd production = ReadPpd(PpdPath(kModels[0]));
  EXPECT_FALSE(office.features.at("OptionPunch").Has("Punch4Hole"));
  EXPECT_TRUE(production.features.at("OptionPunch").Has("Punch4Hole"));
  // Where the unit decides, the job only says yes; elsewhere the job says how many holes.
  EXPECT_TRUE(office.features.at("Punch").Has("Punch"));
  EXPECT_TRUE(production.features.at("Punch").Has("Punch3Hole"));
}

}  // namespace
