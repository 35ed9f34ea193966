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
  app.Click("ErrorDialog/OKButton");
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

TEST_F(AddedModelsInWindows, TheMakersOwnShowNoSuchList) {
  AdminApp app;
  app.AddQueue({.name = "own", .printer = "Vek Norvel 4110ES"});
  OpenOptions(app);
  EXPECT_FALSE(app.HasWidget("MoreOptionsClist"));
  EXPECT_FALSE(app.HasWidget("MoreOptionCombo"));
}

}  // namespace
