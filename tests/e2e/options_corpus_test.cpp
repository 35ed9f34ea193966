// The option logic on real printers: those that ship, and ten that others described, loaded through
// the printer catalogue. Runs in the sandbox, where the catalogue finds the filter program.
#include <gtest/gtest.h>

#include <random>

#include "cprinters.h"
#include "foreignprinters.h"
#include "installables.h"
#include "installation.h"
#include "linearwalk.h"
#include "optionchange.h"
#include "optionsupport.h"
#include "paths.h"

namespace {

using std::string;
using Strings = std::vector<string>;

constexpr int kChanges = 200;
constexpr int kChangesBetweenChecks = 20;

class OptionsCorpus : public testing::Test {
 protected:
  static void SetUpTestSuite() { RequirePrivateWorld(); }

  OptionsCorpus() : messages_(ContentOf(kInstalledCatalogue)) {}

  void Load(const string &ppds, const string &pafs) {
    catalogue_ = CreatePrinters(ppds.c_str(), pafs.c_str());
    ASSERT_EQ(fBuildPrinters_Function(catalogue_.get()), 1);
  }

  void CheckEachPrinter(size_t expected_count) {
    size_t count = 0;
    for (const auto [name, printer] : Pairs<CPrinter>(fGetPrinters_Function(catalogue_.get()))) {
      SCOPED_TRACE(name);
      ++count;
      CheckPrinter(printer);
      if (HasFailure()) return;
    }
    EXPECT_EQ(count, expected_count);
  }

 private:
  void CheckPrinter(CPrinter *printer) {
    const CurrentOptions options;
    SetCurrentPrinter(printer);
    SetDefaults();
    options.Paper("Ticket");
    options.Media("Gloss");
    CheckLists();
    for (int change = 1; change <= kChanges && !HasFailure(); ++change) {
      SCOPED_TRACE("change " + std::to_string(change));
      Change();
      if (change % kChangesBetweenChecks == 0) CheckLists();
    }
    EXPECT_GT(marks_, 0u) << "no change led to any mark";
    marks_ = 0;
  }

  size_t OneOf(size_t count) {
    return std::uniform_int_distribution<size_t>(0, count - 1)(random_);
  }

  static void SetDefaults() {
    for (const auto [id, feature] : Pairs<CFeature>(G_PrinterFeatures_hash)) {
      SetQueueValue(G_QueueFeatures_hash, id, TextOrNull(feature->default_option.get()));
    }
    for (const auto [id, feature] : Pairs<CFeature>(G_PrinterInstallableOptions_hash)) {
      SetQueueValue(G_QueueInstallableOptions_hash, id, TextOrNull(feature->default_option.get()));
    }
  }

  // One entry of one list is chosen, or one installable option gets another value.
  void Change() {
    const Strings features = Keys(G_PrinterFeatures_hash);
    const Strings installables = Keys(G_PrinterInstallableOptions_hash);
    const size_t number = OneOf(features.size() + installables.size());
    if (number < features.size()) {
      Choose(features[number].c_str());
    } else {
      const string &id = installables[number - features.size()];
      const Strings values =
          Keys(HashValue<CFeature>(G_PrinterInstallableOptions_hash, id.c_str())->options.get());
      SetQueueValue(G_QueueInstallableOptions_hash, id.c_str(), values[OneOf(values.size())]);
    }
  }

  void Choose(const char *feature) {
    SCOPED_TRACE(feature);
    const OptionList list = G_GetOptionsForFeature(G_PrinterFeatures_hash, feature).value();
    const string text = list.rows[OneOf(list.rows.size())].text;
    const string before = QueueFeatureValue(feature);
    const auto change = ChangeOption(feature, text);
    const string after = QueueFeatureValue(feature);
    EXPECT_EQ(OptionDisplayText(feature, after.c_str()), TextWithoutMark(text));
    EXPECT_EQ(change.has_value(), before != after);
    if (change) {
      EXPECT_EQ(change->option, after);
      EXPECT_EQ(change->is_custom, !IsOptionOf(G_PrinterFeatures_hash, feature, after.c_str()));
    }
  }

  void CheckLists() {
    for (const auto [feature, record] : Pairs<CFeature>(G_PrinterFeatures_hash)) {
      SCOPED_TRACE(feature);
      CheckList(feature, record);
    }
    CheckInstallables();
    for (const CHash *settings : {G_QueueFeatures_hash, G_QueueInstallableOptions_hash}) {
      EXPECT_TRUE(FindLinearConflict(settings) == linearwalk::LinearConflict(settings));
    }
  }

  static string Marked(bool is_marked, const string &text) {
    return (is_marked ? "!   " : "    ") + text;
  }

  void CheckList(const char *feature, const CFeature *record) {
    Strings expected;
    for (const auto [option, text] : Pairs<CString>(record->options.get())) {
      expected.push_back(
          Marked(linearwalk::ConflictOf(feature, option).has_value(), TextOrNull(text)));
    }
    const string name = feature;
    if (name == "*PageSize") {
      expected.push_back(
          Marked(linearwalk::ConflictOf("*CustomPageSize", "True").has_value(), "Ticket"));
    }
    if (name == "*MediaType") {
      expected.push_back(
          Marked(linearwalk::ConflictOf("*CustomMediaType", "True").has_value(), "Gloss"));
    }
    const OptionList list = G_GetOptionsForFeature(G_PrinterFeatures_hash, feature).value();
    EXPECT_EQ(RowTexts(list), expected);
    EXPECT_EQ(list.current_option, QueueFeatureValue(feature));
    EXPECT_EQ(TextWithoutMark(list.current_text),
              OptionDisplayText(feature, list.current_option.c_str()));
    for (const OptionListRow &row : list.rows) {
      marks_ += row.text.front() == '!' ? 1u : 0u;
      EXPECT_EQ(row.reason.empty(), row.text.front() != '!') << row.text;
    }
  }

  static Strings ExpectedInstallables() {
    Strings rows;
    for (const auto [id, record] : Pairs<CFeature>(G_PrinterInstallableOptions_hash)) {
      const string name = id;
      if (name == "*InstalledMemory") continue;
      const string value = HashText(G_QueueInstallableOptions_hash, id);
      const bool is_marked = linearwalk::ConflictOf(id, value.c_str()).has_value();
      const auto row = [&](const string &text, bool is_installed) {
        rows.push_back(name + (is_installed ? " + " : " - ") + Marked(is_marked, text));
      };
      if (TextOrNull(record->type.get()) == "Boolean") {
        if (value == "True" || value == "False") {
          row(TextOrNull(record->translation.get()), value == "True");
        }
        continue;
      }
      for (const auto [option, text] : Pairs<CString>(record->options.get())) {
        if (string(option) != "None") row(TextOrNull(text), value == option);
      }
    }
    return rows;
  }

  void CheckInstallables() {
    Strings rows;
    for (const InstallableRow &row : InstallableRows()) {
      rows.push_back(row.feature + (row.is_installed ? " + " : " - ") + row.text);
      EXPECT_EQ(row.reason.empty(), row.text.front() != '!') << row.text;
    }
    EXPECT_EQ(rows, ExpectedInstallables());
  }

  ProgramMessages messages_;
  Owned<CPrinters> catalogue_;
  std::mt19937 random_{1};
  size_t marks_ = 0;
};

TEST_F(OptionsCorpus, TheShippedPrintersKeepTheRulesThrough200Changes) {
  const string directory = string(kNlsDir) + "/enu/";
  Load(directory + "ppds", directory + "pafs");
  CheckEachPrinter(6);
}

TEST_F(OptionsCorpus, TenPrintersOfAnotherMakerKeepTheRulesThrough200Changes) {
  const TemporaryDirectory ppds;
  const TemporaryDirectory pafs;
  CopyForeignPpds(ppds);
  Load(ppds.Path(), pafs.Path());
  CheckEachPrinter(kForeignPrinters);
}

}  // namespace
