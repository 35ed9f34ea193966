// Models of other makers in the windows: in the list of printers, and with every option that their
// PPD files have.
#include "models.h"
#include "propertiesdriver.h"
#include "savedqueues.h"

namespace {

constexpr char kCopier[] = "Example Copier 300";

class AddedModelsInWindows : public RealSpoolerTest {
 protected:
  AddedModelsInWindows() : model_(kCopier, {KPX_TEST_DATA "/data/ppd/copier.ppd"}) {}

  static void OpenOptions(AdminApp &app) {
    app.SelectQueues({0});
    OpenProperties(app);
    ShowTab(app, "Options");
  }
  static std::string Def(const std::string &name) {
    return ContentOf(std::string(kDataDir) + "/" + name + ".def");
  }

 private:
  AddedTestModel model_;
};

TEST_F(AddedModelsInWindows, ShowAllTheirOptions) {
  AdminApp app;
  app.AddQueue({.name = "copier", .printer = kCopier});
  OpenOptions(app);
  EXPECT_EQ(app.Rows("MoreOptionsClist"),
            (std::vector<std::string>{"-Finishing\t", "-    Fold\tOff", "-Effects\t",
                                      "-    Watermark\tOff", "-    Toner Saving\tOff"}));
  EXPECT_FALSE(app.IsSensitive("ResolutionCombo"));
  ShowTab(app, "Output");
  EXPECT_EQ(ShownOption(app, "Staple"), "Off");
  EXPECT_TRUE(app.IsSensitive("StapleCombo"));
  EXPECT_FALSE(app.IsSensitive("PunchCombo"));
  EXPECT_EQ(app.Stderr(), "");
}

TEST_F(AddedModelsInWindows, ChoicesAreMarkedExplainedSavedAndResolvedByKeyboard) {
  AdminApp app;
  app.AddQueue({.name = "copier", .printer = kCopier});
  OpenOptions(app);
  app.ClickRow("MoreOptionsClist", 3);
  ChooseOption(app, "MoreOption", "Draft");
  // With keys alone: down to the next option, and on to its choices.
  app.TabTo("MoreOptionsClist");
  app.Key("Down");
  app.TabTo("MoreOptionComboEntry");
  app.Key("Down");
  EXPECT_EQ(app.Text("MoreOptionComboEntry"), "!   On");
  // The choices keep the keyboard.
  app.Key("Up");
  EXPECT_EQ(app.Text("MoreOptionComboEntry"), "    Off");
  app.Key("Down");
  EXPECT_EQ(app.Rows("MoreOptionsClist"),
            (std::vector<std::string>{"-Finishing\t", "-    Fold\tOff", "-Effects\t",
                                      "-!   Watermark\tDraft", "*!   Toner Saving\tOn"}));
  PressProperties(app, "OK");
  app.WaitWindow("ErrorDialog");
  app.Click("ErrorDialog/ResolveButton");
  app.WaitUntil("the mark is gone", [&] {
    return app.Rows("MoreOptionsClist")[3] == "-    Watermark\tOff" ||
           app.Rows("MoreOptionsClist")[3] == "*    Watermark\tOff";
  });
  app.Key("Return");  // OK, which the button that went has made room for
  app.WaitGone("ErrorDialog");
  AcceptProperties(app);
  Save(app);
  EXPECT_EQ(Def("copier"), "*JobName=UseAppSetting\n*TonerSave=True\n*UserName=root\n");
}

TEST_F(AddedModelsInWindows, ARowOfATabStandsForTheMakersName) {
  AdminApp app;
  app.AddQueue({.name = "copier", .printer = kCopier});
  OpenOptions(app);
  app.ClickRow("MoreOptionsClist", 1);
  ChooseOption(app, "MoreOption", "Half Fold");
  ShowTab(app, "Output");
  EXPECT_EQ(app.Rows("StapleCombo"), (std::vector<std::string>{"*    Off", "-!   Top Left"}));
  ShowTab(app, "Options");
  app.Click("DefaultOptionsButton");
  EXPECT_EQ(app.Rows("MoreOptionsClist")[1].substr(1), "    Fold\tOff");
  ShowTab(app, "Output");
  ChooseOption(app, "Staple", "Top Left");
  AcceptProperties(app);
  Save(app);
  EXPECT_EQ(Def("copier"), "*JobName=UseAppSetting\n*RIStaple=UpperLeft\n*UserName=root\n");
}

TEST_F(AddedModelsInWindows, ARowOfATabThatIsSetBackShowsItsPicture) {
  AdminApp app;
  app.AddQueue({.name = "copier", .printer = kCopier});
  OpenOptions(app);
  ShowTab(app, "Output");
  ChooseOption(app, "Staple", "Top Left");
  ShowTab(app, "Options");
  app.ClickRow("MoreOptionsClist", 1);
  ChooseOption(app, "MoreOption", "Half Fold");
  PressProperties(app, "OK");
  app.WaitWindow("ErrorDialog");
  app.Click("ErrorDialog/ResolveButton");
  app.WaitUntil("the row", [&] { return ShownOption(app, "Staple") == "Off"; });
  app.Key("Return");  // OK, which the button that went has made room for
  app.WaitGone("ErrorDialog");
  EXPECT_EQ(app.Stderr(), "");
}

// Booklets and pages a sheet of text queues are our own settings, and other makers have options of
// these names.
TEST_F(AddedModelsInWindows, AnOptionWithANameOfOurOwnIsKept) {
  const std::string name = "Example Folder";
  std::string ppd = ContentOf(KPX_TEST_DATA "/data/ppd/copier.ppd");
  for (size_t at = 0; (at = ppd.find(kCopier, at)) != std::string::npos; ++at) {
    ppd.replace(at, std::string(kCopier).size(), name);
  }
  ppd +=
      "*OpenUI *Booklet/Booklet: PickOne\n*DefaultBooklet: None\n*Booklet None/Off: \"\"\n"
      "*Booklet Left/On: \"1 pop\"\n*CloseUI: *Booklet\n";
  const TemporaryDirectory files;
  const AddedTestModel model(name, {files.Write("folder.ppd", ppd)});
  AdminApp app;
  app.AddQueue({.name = "folder", .printer = name});
  OpenOptions(app);
  SelectRowOf(app, "MoreOptionsClist", "Booklet");
  ChooseOption(app, "MoreOption", "On");
  AcceptProperties(app);
  Save(app);
  const std::string others = "*JobName=UseAppSetting\n*UserName=root\n";
  EXPECT_EQ(Def("folder"), "*Booklet=Left\n" + others);
  EXPECT_EQ(Kpxctl({"set", "folder", "Booklet=None"}).status, 0);
  EXPECT_EQ(Def("folder"), others);
  EXPECT_EQ(Kpxctl({"set", "folder", "Booklet=Left"}).status, 0);
  EXPECT_NE(Kpxctl({"export"}).output.find("\"Booklet\": \"Left\""), std::string::npos);
  EXPECT_EQ(Def("folder"), "*Booklet=Left\n" + others);
}

TEST_F(AddedModelsInWindows, TheMakersOwnShowNoSuchList) {
  AdminApp app;
  app.AddQueue({.name = "own", .printer = "Vek Norvel 4110ES"});
  OpenOptions(app);
  EXPECT_FALSE(app.HasWidget("MoreOptionsClist"));
  EXPECT_FALSE(app.HasWidget("MoreOptionCombo"));
}

}  // namespace
