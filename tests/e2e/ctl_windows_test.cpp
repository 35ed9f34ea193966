// What the properties windows can set, kpxctl sets: every choice of every list, every part that can
// be installed, on every printer, refused where the windows mark it.
#include "adminsession.h"
#include "cfeature.h"
#include "cmessages.h"
#include "constraints.h"
#include "cprinter.h"
#include "ctltest.h"
#include "featuretable.h"
#include "fontmap.h"
#include "globals.h"
#include "installables.h"
#include "optionlists.h"
#include "optionstate.h"
#include "properties.h"
#include "textoptions.h"

namespace {

using Strings = std::vector<std::string>;

class CtlWindows : public CtlTest {
 protected:
  // Starts the administration on a queue of each printer.
  CtlWindows() {
    LoadCatalogues();
    G_Fonts_hash = ParseFontmap();
    for (const auto [printer, record] : Pairs<CPrinter>(G_Printers_hash)) {
      const std::string name = "q" + std::to_string(names_.size());
      Must({"add", name, "--printer", printer, "--address", "127.0.0.1", "--type", "text"});
      names_.push_back(name);
    }
    LoadQueues(nullptr);
  }

  static std::string Try(const std::string &queue, const std::string &key, const std::string &value,
                         int *status) {
    const CommandResult result = Kpxctl({"set", queue, key + "=" + value, "--dry-run"});
    *status = result.status;
    return result.output;
  }

  // Compares what kpxctl makes of a choice with what the window's list says of it.
  static void ExpectAsInList(const std::string &queue, const std::string &key,
                             const std::string &value, const std::string &current, bool is_marked) {
    int status = -1;
    const std::string said = Try(queue, key, value, &status);
    const std::string what = queue + " " + key + "=" + value + ": " + said;
    if (value == current) {
      EXPECT_EQ(CatalogueText("CTL_NOTHING_TO_DO") + "\n", said) << what;
    } else if (is_marked) {
      EXPECT_EQ(3, status) << what;
    } else {
      EXPECT_EQ(0, status) << what;
      const std::string line = "~ " + queue + "  " + key + ": " + current + " -> " + value + "\n";
      EXPECT_NE(said.find(line), std::string::npos) << what;
    }
  }

  Strings names_;
};

TEST_F(CtlWindows, ListNoChoiceThatItDoesNotTake) {
  int choices = 0, marked = 0;
  for (const std::string &name : names_) {
    std::string error;
    ASSERT_TRUE(OpenProperties(name, &error)) << error;
    for (const ListedFeature &listed : ListedFeatures()) {
      if (HashFind(G_PrinterFeatures_hash, listed.feature) == nullptr) continue;
      const auto list = G_GetOptionsForFeature(G_PrinterFeatures_hash, listed.feature);
      ASSERT_TRUE(list);
      size_t row = 0;
      const auto *feature = HashValue<CFeature>(G_PrinterFeatures_hash, listed.feature);
      for (const auto [option, text] : Pairs<CString>(fGet_Options_Function(feature))) {
        const bool is_marked = list->rows.at(row++).text.starts_with(kConflictMark);
        // These two ask for more: a PIN, an address.
        if (listed.page == Page::kDestination) continue;
        ExpectAsInList(name, listed.feature + 1, option, list->current_option, is_marked);
        ++choices;
        marked += is_marked ? 1 : 0;
      }
    }
    CloseProperties();
  }
  EXPECT_GT(choices, 300);
  EXPECT_GT(marked, 10);
}

TEST_F(CtlWindows, InstallNoPartThatItDoesNotInstall) {
  int parts = 0, refused = 0;
  for (const std::string &name : names_) {
    std::string error;
    ASSERT_TRUE(OpenProperties(name, &error)) << error;
    for (const InstallableRow &row : InstallableRows()) {
      const std::string display = TextWithoutMark(row.text);
      const std::string value = row.is_installed ? ValueThatRemoves(row.feature, display)
                                                 : ValueThatInstalls(row.feature, display);
      const std::string current = HashText(G_QueueInstallableOptions_hash, row.feature.c_str());
      SetQueueValue(G_QueueInstallableOptions_hash, row.feature.c_str(), value);
      const bool is_refused = FindLinearConflict(G_QueueFeatures_hash).has_value() ||
                              FindLinearConflict(G_QueueInstallableOptions_hash).has_value();
      SetQueueValue(G_QueueInstallableOptions_hash, row.feature.c_str(), current);
      ExpectAsInList(name, row.feature.substr(1), value, current, is_refused);
      refused += is_refused ? 1 : 0;
      ++parts;
    }
    CloseProperties();
  }
  EXPECT_GT(parts, 10);
  EXPECT_GT(refused, 0);
}

TEST_F(CtlWindows, OfferNoFontThatItDoesNotTake) {
  int fonts = 0;
  for (const std::string &font : FontNames()) {
    for (const std::string &style : FontStyles(font)) {
      const std::string afm_name = GetAfmFontName(font.c_str(), style.c_str());
      int status = -1;
      const std::string said = Try(names_.front(), "FontName", afm_name, &status);
      EXPECT_EQ(0, status) << said;
      EXPECT_EQ(afm_name == kDefaultFontName, said == CatalogueText("CTL_NOTHING_TO_DO") + "\n")
          << said;
      ++fonts;
    }
  }
  EXPECT_GT(fonts, 8);
}

}  // namespace
