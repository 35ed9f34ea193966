// The German texts in locales of either character set, and the English ones in none: in windows,
// from the files of both character sets, on standard error, and in the queue list that is written.
#include "locales.h"

#include "administration.h"
#include "installedtexts.h"
#include "propertiesdriver.h"
#include "savedqueues.h"

namespace {

struct Locale {
  const char *name;  // of the test
  const char *lang;
  const char *directory;  // that start-up chooses for it
  bool is_latin1;         // its character set
};
void PrintTo(const Locale &locale, std::ostream *out) { *out << locale.lang; }

std::string Latin1From(const std::string &utf8) {
  std::string bytes;
  for (size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    if (byte < 0x80) {
      bytes += utf8[i];
    } else {
      bytes += static_cast<char>((byte & 0x03) << 6 | (utf8.at(++i) & 0x3F));
    }
  }
  return bytes;
}

class Locales : public RealSpoolerTest, public testing::WithParamInterface<Locale> {
 protected:
  static void SetUpTestSuite() {
    for (const char *name : {"de_DE", "de_DE.UTF-8", "de_DE.utf8"}) MakeLocale(name);
  }

  Locales()
      : messages_(MessagesIn(IsGerman() ? "deu/utf8" : "enu")),
        printer_(PrinterTextsIn(IsGerman() ? "deu/utf8" : "enu", "vek41101")),
        help_(HelpIn(IsGerman() ? "deu/utf8" : "enu")) {}

  static bool IsGerman() { return std::string(GetParam().lang) != "C"; }
  static GuiAppOptions Options() {
    GuiAppOptions options = InLocale(GetParam().lang);
    options.program = kAdmin;
    return options;
  }

  const TextsByPlace messages_;
  const TextsByPlace printer_;
  const TextsByPlace help_;
};

TEST_P(Locales, ShowTheCataloguesTheHelpAndThePrintersTextsInWindows) {
  AdminApp app(Options());
  EXPECT_EQ(IsGerman() ? "Löschen" : "Delete", app.Text("DeleteButton"));
  EXPECT_EQ(messages_.at("DEF_WND_ADMIN_TITLE"), app.Text("AdminWindow"));
  app.Key("F1");
  app.WaitWindow("KPXHelpDialog");
  EXPECT_EQ(help_.at("KPX_ADMIN_BEGIN"), app.Text("HelpText"));
  app.Key("Escape");
  app.WaitGone("KPXHelpDialog");
  app.AddQueue({.name = "lp1"});
  app.SelectQueues({0});
  OpenProperties(app);
  ShowTab(app, "Setup");
  EXPECT_EQ(printer_.at("*MediaType " + printer_.at("*MediaType default")),
            ShownOption(app, "PaperType"));
  const std::vector<std::string> rows = app.Rows("PaperTypeCombo");
  EXPECT_TRUE(std::any_of(rows.begin(), rows.end(), [](const std::string &row) {
    return row.ends_with(IsGerman() ? "Dünnes Papier" : "Thin");
  }));
}

TEST_P(Locales, TakeTheTextsFromTheFilesOfTheirDirectory) {
  const std::string path = InstalledPaf(GetParam().directory, "messages");
  const ChangedFile away(path, std::nullopt);
  GuiApp app(Options());
  EXPECT_NE(0, app.WaitExit());
  EXPECT_NE(std::string::npos, app.Stderr().find(path)) << app.Stderr();
}

TEST_P(Locales, WriteMessagesToStandardErrorInTheirCharacterSet) {
  AdminApp first(Options());
  GuiApp second(Options());
  second.WaitWindow("ErrorDialog");
  const std::string text = messages_.at("ERR_ADMIN_RUNNING");
  EXPECT_EQ(text, second.Text("ErrorLabel1"));
  EXPECT_EQ(IsGerman(), text.find("läuft") != std::string::npos);
  EXPECT_EQ((GetParam().is_latin1 ? Latin1From(text) : text) + "\n", second.Stderr());
}

TEST_P(Locales, KeepWhatTheUserTypes) {
  const std::string typed = IsGerman() ? "Büttenpapier" : "Handmade";
  {
    AdminApp app(Options());
    app.AddQueue({.name = "lp1"});
    app.SelectQueues({0});
    OpenProperties(app);
    ShowTab(app, "Customs");
    app.Click("CmtButtonAdd");
    app.WaitWindow("CmtParamWindow");
    app.Type(typed);
    app.Click("CmtParamWindow/OKButton");
    app.WaitGone("CmtParamWindow");
    AcceptProperties(app);
    Save(app);
  }
  EXPECT_NE(std::string::npos, ContentOf(kQueuesFile).find(typed));
  AdminApp app(Options());
  app.SelectQueues({0});
  OpenProperties(app);
  ShowTab(app, "Customs");
  EXPECT_EQ(std::vector<std::string>{"-" + typed}, app.Rows("CmtCList"));
}

INSTANTIATE_TEST_SUITE_P(, Locales,
                         testing::Values(Locale{"german", "de_DE", "deu", true},
                                         Locale{"german_utf8", "de_DE.UTF-8", "deu/utf8", false},
                                         Locale{"german_utf8_short", "de_DE.utf8", "deu", false},
                                         Locale{"none", "C", "enu", false}),
                         [](const auto &row) { return std::string(row.param.name); });

}  // namespace
