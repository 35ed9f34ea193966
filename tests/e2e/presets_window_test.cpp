// Presets in the print tool's properties, with keys alone: the program's own and the user's are
// chosen, kept, replaced and deleted, and the printer receives what was chosen.
#include <cstdlib>
#include <filesystem>

#include "assistive.h"
#include "installation.h"
#include "keyboard.h"
#include "paths.h"
#include "printerjobs.h"
#include "propertiesdriver.h"
#include "temporarydirectory.h"
#include "tooldriver.h"

namespace {

using Strings = std::vector<std::string>;

class Presets : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_EQ(0, std::system(KPX_MAKEQUEUES " lp1=postscript='Vek Norvel 4110ES'"
                                            " txt1=text='Vek Norvel 4105'"));
  }

  Presets() {
    std::filesystem::permissions(files_.Path(), std::filesystem::perms{0755});
    MakePostScriptFile(files_.Path("document.ps"), 2);
  }
  ~Presets() override {
    for (const std::string &name : NamesIn(kUsersDir)) {
      std::filesystem::remove_all(std::string(kUsersDir) + "/" + name);
    }
  }

  GuiAppOptions Options(const Strings &environment = {}) const {
    GuiAppOptions options;
    options.environment = {"XDG_CONFIG_HOME=" + files_.Path("config")};
    options.environment.insert(options.environment.end(), environment.begin(), environment.end());
    return options;
  }
  std::string PresetsPath() const { return files_.Path("config/kpx/presets"); }
  std::string Kept() const { return ContentOf(PresetsPath()); }
  void Keep(const std::string &text) const {
    std::filesystem::create_directories(files_.Path("config/kpx"));
    files_.Write("config/kpx/presets", text);
  }

  static void Open(GuiApp &app) {
    app.WaitWindow("ToolWindow");
    OpenProperties(app);
  }
  // The texts of the menus that are open.
  static Strings Items(GuiApp &app) {
    Strings items;
    for (const std::string &line : app.ShownTexts()) {
      const size_t label = line.find("/GtkAccelLabel\t");
      if (label != std::string::npos) items.push_back(line.substr(line.find('\t') + 1));
    }
    return items;
  }
  static void OpenMenu(GuiApp &app) {
    Keyboard(app).Press(CatalogueText("DEF_BTN_PRESETS_TITLE"));
    app.WaitUntil("the menu", [&] { return app.HasWidget("PresetsMenu"); });
    app.WaitDrawn();
  }
  // Goes down to the item of the menu and presses Return.
  static void Choose(GuiApp &app, const std::string &text) {
    OpenMenu(app);
    const Strings items = Items(app);
    const auto place = std::find(items.begin(), items.end(), text);
    ASSERT_NE(items.end(), place) << text;
    for (auto item = items.begin(); item != place; ++item) app.Key("Down");
    app.Key("Return");
    app.WaitUntil("the end of the menu", [&] { return !app.HasWidget("PresetsMenu"); });
  }
  static void Pick(GuiApp &app, const std::string &label_key, const std::string &row,
                   const std::string &option) {
    Keyboard keys(app);
    keys.GoTo(CatalogueText(label_key), row + "ComboEntry");
    keys.Choose(row, option);
  }
  static void TypeCopies(GuiApp &app, const std::string &copies) {
    Keyboard(app).GoTo(CatalogueText("DEF_LBL_COPIES"), "NrCopiesSpinbutton");
    app.Key("ctrl+a");
    app.Type(copies);
    app.WaitUntil(copies + " copies", [&] { return app.Text("NrCopiesSpinbutton") == copies; });
  }
  static void AwaitResult(GuiApp &app, const std::string &key, const std::string &name) {
    const std::string text = CatalogueText(key, {name});
    app.WaitUntil(text, [&] { return app.Text("PresetResultLabel") == text; });
  }
  static void KeepAs(GuiApp &app, const std::string &name) {
    Choose(app, CatalogueText("PRESET_SAVE"));
    Keyboard keys(app);
    keys.Await("PresetWindow");
    EXPECT_EQ("PresetWindow/PresetNameEntry", app.Focus());
    keys.Type(name);
    app.Key("Return");
  }
  // The texts of the box in front, which is closed.
  static Strings TakeBox(GuiApp &app) {
    app.WaitWindow("ErrorDialog");
    Strings texts;
    for (const char *label : {"ErrorLabel1", "ErrorLabel2"}) {
      const std::string text = app.HasWidget(label) ? app.Text(label) : "";
      if (!text.empty()) texts.push_back(text);
    }
    app.Key("Escape");
    app.WaitGone("ErrorDialog");
    return texts;
  }
  // The row, the menu and the dialog, in a language at a size of the text.
  void ExpectWhole(const std::string &lang, const std::string &scale) {
    SCOPED_TRACE(lang + " " + scale);
    GuiApp app(Options({"LANG=" + lang, "GDK_DPI_SCALE=" + scale}));
    app.WaitWindow("ToolWindow");
    app.Click("PropertiesButton");
    app.WaitWindow("PropertiesWindow");
    app.WaitDrawn();
    EXPECT_EQ(Strings{}, app.ClippedTexts());
    EXPECT_EQ(Strings{}, app.UnnamedControls());
    app.Click("PresetsButton");
    app.WaitUntil("the menu", [&] { return app.HasWidget("PresetsMenu"); });
    app.WaitDrawn();
    EXPECT_EQ(Strings{}, app.ClippedTexts());
    app.Key("Return");
    app.WaitUntil("the choice", [&] { return !app.Text("PresetResultLabel").empty(); });
    app.WaitDrawn();
    EXPECT_EQ(Strings{}, app.ClippedTexts());
    app.Click("PresetsButton");
    app.WaitUntil("the menu", [&] { return app.HasWidget("PresetsMenu"); });
    app.Key("Down");
    app.Key("Return");
    app.WaitWindow("PresetWindow");
    app.WaitDrawn();
    EXPECT_EQ(Strings{}, app.ClippedTexts());
    EXPECT_EQ(Strings{}, app.UnnamedControls());
    for (const std::string &line : app.AccessKeys()) EXPECT_FALSE(line.ends_with("\t-")) << line;
    ExpectEveryTabStopSeen(app, "PresetWindow");
  }
  std::string Print(GuiApp &app) {
    app.Click("PrintButton");
    EXPECT_EQ(0, app.WaitExit()) << app.Stderr();
    EXPECT_EQ(std::string::npos, app.Stderr().find("WARNING")) << app.Stderr();
    return jobs_.Next();
  }

  TemporaryDirectory files_;
  PrinterJobs jobs_;
};

TEST_F(Presets, DraftReachesThePrinter) {
  GuiApp app(Options());
  app.WaitWindow("ToolWindow");
  AddFile(app, files_.Path("document.ps"));
  Open(app);
  OpenMenu(app);
  // There is no finisher for a stapled handout.
  EXPECT_EQ((Strings{CatalogueText("PRESET_DRAFT"), CatalogueText("PRESET_SAVE"),
                     CatalogueText("PRESET_DELETE")}),
            Items(app));
  app.Key("Escape");
  app.WaitUntil("the end of the menu", [&] { return !app.HasWidget("PresetsMenu"); });
  Choose(app, CatalogueText("PRESET_DRAFT"));
  AwaitResult(app, "PRESET_CHOSEN", CatalogueText("PRESET_DRAFT"));
  ShowTab(app, "Options");
  EXPECT_EQ("Draft", ShownOption(app, "PrintQuality"));
  EXPECT_EQ("300 dpi", ShownOption(app, "Resolution"));
  AcceptProperties(app);
  const std::string job = Print(app);
  if (!HasOrdinaryUsers()) return;  // the filter takes lp for the file's owner
  for (const char *part : {"@PJL SET ECONOMODE=ON", "/HWResolution[300 300]"}) {
    EXPECT_NE(std::string::npos, job.find(part)) << part << " in\n" << job.substr(0, 3000);
  }
}

TEST_F(Presets, OwnOnesAreKeptChosenReplacedAndDeleted) {
  GuiApp app(Options());
  app.WaitWindow("ToolWindow");
  AddFile(app, files_.Path("document.ps"));
  Open(app);
  ShowTab(app, "Setup");
  Pick(app, "DEF_LBL_DUPLEX", "Duplex", "Two-sided, short edge");
  TypeCopies(app, "2");
  KeepAs(app, "Both sides");
  AwaitResult(app, "PRESET_KEPT", "Both sides");
  EXPECT_NE(std::string::npos, Kept().find("\n[Both sides]\n*Duplex=DuplexTumble\n*NrCopies=2\n"))
      << Kept();
  app.Key("Escape");
  app.WaitGone("PropertiesWindow");

  OpenProperties(app);
  Choose(app, "Both sides");
  AwaitResult(app, "PRESET_CHOSEN", "Both sides");
  ShowTab(app, "Setup");
  EXPECT_EQ("Two-sided, short edge", ShownOption(app, "Duplex"));
  EXPECT_EQ("2", app.Text("NrCopiesSpinbutton"));
  TypeCopies(app, "3");
  KeepAs(app, "Both sides");
  app.WaitWindow("QuestionDialog");
  app.Key("Return");
  AwaitResult(app, "PRESET_KEPT", "Both sides");
  EXPECT_NE(std::string::npos, Kept().find("\n[Both sides]\n*Duplex=DuplexTumble\n*NrCopies=3\n"))
      << Kept();
  AcceptProperties(app);
  const std::string job = Print(app);
  if (HasOrdinaryUsers()) {
    EXPECT_NE(std::string::npos, job.find("/Duplex true/Tumble true"));
  }

  GuiApp next(Options());
  Open(next);
  OpenMenu(next);
  next.Key("End");  // the deletions
  next.Key("Right");
  next.WaitUntil("the names", [&] { return next.HasWidget("DeletedPresetItem"); });
  next.Key("Return");
  next.WaitWindow("QuestionDialog");
  next.Key("Return");
  AwaitResult(next, "PRESET_DELETED", "Both sides");
  EXPECT_EQ(std::string::npos, Kept().find("Both sides"));
}

TEST_F(Presets, WhatExcludesAPresetIsChangedAndTold) {
  Keep("[Both sides]\n*Duplex=DuplexTumble\n[Marked]\n*Watermark=On\n");
  GuiApp app(Options());
  Open(app);
  ShowTab(app, "Setup");
  Pick(app, "DEF_LBL_PAPERSIZE", "PaperSize", "A6");
  OpenMenu(app);
  const Strings items = Items(app);
  EXPECT_EQ(items.end(), std::find(items.begin(), items.end(), "Marked"));
  app.Key("Escape");
  app.WaitUntil("the end of the menu", [&] { return !app.HasWidget("PresetsMenu"); });
  Choose(app, "Both sides");
  EXPECT_EQ((Strings{CatalogueText("PRESET_CHOSEN_OTHERS", {"Both sides"}),
                     CatalogueText("CONSTR_Resolved", {"Paper size", "A4"})}),
            TakeBox(app));
  EXPECT_EQ("A4", ShownOption(app, "PaperSize"));
  EXPECT_EQ("Two-sided, short edge", ShownOption(app, "Duplex"));
}

TEST_F(Presets, PagesOnASheetAreShownByTheirButtons) {
  GuiApp app(Options());
  app.WaitWindow("ToolWindow");
  ChooseQueue(app, "txt1");
  OpenProperties(app);
  Choose(app, CatalogueText("PRESET_DRAFT"));
  AwaitResult(app, "PRESET_CHOSEN", CatalogueText("PRESET_DRAFT"));
  ShowTab(app, "Options");
  EXPECT_TRUE(app.IsActive("Nup2Radiobutton"));
  EXPECT_TRUE(app.IsActive("NupLeftRadiobutton"));
  EXPECT_FALSE(app.HasWidget("NupDownRadiobutton"));
}

TEST_F(Presets, AFileThatCannotBeReadIsToldAndKept) {
  const std::string text = "[Both sides]\nDuplex=DuplexTumble\n";
  Keep(text);
  const std::string fault =
      FormatMessage(CatalogueText("PRESETS_LINE"),
                    {PresetsPath(), 2, CatalogueText("PRESET_LINE_BAD", {"Duplex=DuplexTumble"})});
  GuiApp app(Options());
  Open(app);
  Choose(app, CatalogueText("PRESETS_FAULT"));
  EXPECT_EQ(Strings{fault}, TakeBox(app));
  Choose(app, CatalogueText("PRESET_SAVE"));
  EXPECT_EQ(Strings{fault}, TakeBox(app));
  EXPECT_EQ(text, Kept());
}

TEST_F(Presets, WhatCannotBeKeptIsRefusedWithTheReason) {
  GuiApp app(Options());
  Open(app);
  Choose(app, CatalogueText("PRESET_SAVE"));
  EXPECT_EQ(Strings{CatalogueText("PRESET_NOTHING")}, TakeBox(app));
  ShowTab(app, "Setup");
  Pick(app, "DEF_LBL_DUPLEX", "Duplex", "Two-sided, short edge");
  KeepAs(app, CatalogueText("PRESET_DRAFT"));
  EXPECT_EQ(Strings{CatalogueText("PRESET_NAME_OWN", {CatalogueText("PRESET_DRAFT")})},
            TakeBox(app));
  app.WaitWindow("PresetWindow");
  EXPECT_EQ("PresetWindow/PresetNameEntry", app.Focus());
  app.Key("Escape");
  app.WaitGone("PresetWindow");
  Pick(app, "DEF_LBL_PAPERSIZE", "PaperSize", "A6");
  Choose(app, CatalogueText("PRESET_SAVE"));
  EXPECT_EQ(CatalogueText("PRESET_CONFLICT"), TakeBox(app).at(0));
  EXPECT_FALSE(std::filesystem::exists(PresetsPath()));
}

TEST_F(Presets, AreWholeInEveryLanguage) {
  for (const char *lang :
       {"C.UTF-8", "de_DE.UTF-8", "es_ES.UTF-8", "fr_FR.UTF-8", "it_IT.UTF-8", "pt_BR.UTF-8"}) {
    ExpectWhole(lang, "1");
  }
}

TEST_F(Presets, AreWholeInLargeTexts) {
  ExpectWhole("C.UTF-8", "2");
  ExpectWhole("fr_FR.UTF-8", "1.5");
}

TEST_F(Presets, AreChosenKeptAndDeletedByAssistiveTechnology) {
  const auto button = [](const char *name) {
    return CatalogueText("DEF_BTN_" + std::string(name) + "_TITLE");
  };
  const std::string presets = button("PRESETS");
  const auto result = [](const char *key, const std::string &name) {
    return "~" + CatalogueText(key, {name});
  };
  const CommandResult used = UseAssistively(
      {button("PROPERTIES"), presets, ">" + CatalogueText("PRESET_DRAFT"),
       result("PRESET_CHOSEN", CatalogueText("PRESET_DRAFT")), presets,
       ">" + CatalogueText("PRESET_SAVE"), CatalogueText("DEF_LBL_PRESET_NAME") + "<Mine",
       button("OK"), result("PRESET_KEPT", "Mine"), presets, ">Mine",
       result("PRESET_CHOSEN", "Mine"), presets, ">" + CatalogueText("PRESET_DELETE") + ">Mine",
       button("YES"), result("PRESET_DELETED", "Mine"), button("CANCEL"), button("CANCEL")},
      {"env", "XDG_CONFIG_HOME=" + files_.Path("config"), "/usr/bin/KPXtool", "-d", "lp1"});
  EXPECT_EQ(0, used.status) << used.output;
  EXPECT_EQ(std::string::npos, Kept().find("[Mine]")) << Kept();
}

}  // namespace
