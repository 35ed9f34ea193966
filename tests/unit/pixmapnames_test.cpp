// Which picture shows an option. Runs in the sandbox: the pictures are looked for at their real
// place.
#include "pixmapnames.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "debug.h"
#include "optionchange.h"
#include "optionsupport.h"
#include "paths.h"
#include "printermodels.h"
#include "privateworld.h"

namespace {

class PixmapNames : public testing::Test {
 protected:
  static void SetUpTestSuite() { RequirePrivateWorld(); }

  // Only the pictures that the test makes are there.
  PixmapNames() {
    std::filesystem::remove_all(kPixmapDir);
    std::filesystem::create_directories(kPixmapDir);
    G_CurrentQueue->PpdFile = Text("vek41201.ppd");
  }
  ~PixmapNames() override { std::filesystem::remove_all(kPixmapDir); }

  static void Picture(const std::string &name) {
    std::ofstream(std::string(kPixmapDir) + "/" + name) << "/* XPM */\n";
  }

  // The name of the picture's file when every name that is asked for exists.
  static std::string FirstName(const char *feature, const char *option,
                               const std::string &expected) {
    Picture(expected);
    const std::string name = G_GetPixmapNameFor(feature, option);
    std::filesystem::remove(std::string(kPixmapDir) + "/" + expected);
    return name;
  }

  CurrentOptions options_;
};

// `expected` is what is looked for first.
#define EXPECT_FIRST_NAME(feature, option, expected) \
  EXPECT_EQ(FirstName(feature, option, expected), expected)

TEST_F(PixmapNames, ThePictureOfTheModelIsTakenFirst) {
  Picture("InputSlot_Tray1.xpm");
  Picture("InputSlot_Tray1_41201.xpm");
  EXPECT_EQ(G_GetPixmapNameFor("*InputSlot", "Tray1"), "InputSlot_Tray1_41201.xpm");
}

TEST_F(PixmapNames, ThePictureOfEveryModelIsTakenSecond) {
  Picture("InputSlot_Tray1.xpm");
  EXPECT_EQ(G_GetPixmapNameFor("*InputSlot", "Tray1"), "InputSlot_Tray1.xpm");
}

TEST_F(PixmapNames, ThePictureOfTheFeatureIsTakenLastWithoutLooking) {
  EXPECT_EQ(G_GetPixmapNameFor("*Duplex", "None"), "Duplex.xpm");
}

TEST_F(PixmapNames, OnlyRegularFilesArePictures) {
  std::filesystem::create_directory(std::string(kPixmapDir) + "/InputSlot_Tray1_41201.xpm");
  Picture("InputSlot_Tray1.xpm");
  EXPECT_EQ(G_GetPixmapNameFor("*InputSlot", "Tray1"), "InputSlot_Tray1.xpm");
}

TEST_F(PixmapNames, ThreeHolesInPortraitOnModel1) {
  G_PrinterModel = 1;
  options_.SetInstalled("*OptionPunch", "Punch3Hole");
  options_.Set("*Orientation", "Portrait");
  EXPECT_FIRST_NAME("*Punch", "Punch", "Punch_Punch3P_41201.xpm");
}

TEST_F(PixmapNames, TheHolesOfThePunchUnitAreAddedOnModels1And2) {
  const std::pair<const char *, const char *> units[] = {{"None", "2"},
                                                         {"Punch2Hole", "2"},
                                                         {"Punch3Hole", "3"},
                                                         {"Punch4Hole", "4"},
                                                         {"Punch5Hole", ""}};
  for (const int model : {1, 2}) {
    G_PrinterModel = model;
    for (const auto &[unit, holes] : units) {
      options_.SetInstalled("*OptionPunch", unit);
      EXPECT_FIRST_NAME("*Punch", "Punch", std::string("Punch_Punch") + holes + "_41201.xpm");
    }
    HashRemove(G_QueueInstallableOptions_hash, "*OptionPunch");
    EXPECT_FIRST_NAME("*Punch", "Punch", "Punch_Punch_41201.xpm");
  }
}

TEST_F(PixmapNames, NoHolesWithoutPunchingOnOtherModelsAndForOtherFeatures) {
  options_.SetInstalled("*OptionPunch", "Punch3Hole");
  for (const int model : {0, 3, 4, 5, 6}) {
    G_PrinterModel = model;
    EXPECT_FIRST_NAME("*Punch", "Punch", "Punch_Punch_41201.xpm");
  }
  G_PrinterModel = 2;
  EXPECT_FIRST_NAME("*Punch", "None", "Punch_None_41201.xpm");
  EXPECT_FIRST_NAME("*Duplex", "Punch", "Duplex_Punch_41201.xpm");
}

TEST_F(PixmapNames, ThePageOrderShowsTwoOrFourPages) {
  const std::pair<const char *, const char *> pages[] = {{"2", "2"}, {"4", "4"}, {"1", ""}};
  for (const auto &[nup, digit] : pages) {
    options_.Set("*Nup", nup);
    EXPECT_FIRST_NAME("*NupOrder", "Left", std::string("NupOrder_Left") + digit + "_41201.xpm");
  }
  options_.Set("*Nup", "2");
  EXPECT_FIRST_NAME("*Nup", "2", "Nup_2_41201.xpm");
}

TEST_F(PixmapNames, ThePageOrderComesBeforeTheOrientation) {
  options_.Set("*Nup", "4");
  options_.Set("*Orientation", "RotLandscape");
  EXPECT_FIRST_NAME("*NupOrder", "Left", "NupOrder_Left4L_41201.xpm");
}

TEST_F(PixmapNames, SixFeaturesShowTheOrientation) {
  const std::pair<const char *, const char *> letters[] = {
      {"Portrait", "P"}, {"Landscape", "L"}, {"RotLandscape", "L"}, {"Sideways", ""}};
  for (const auto &[orientation, letter] : letters) {
    options_.Set("*Orientation", orientation);
    for (const char *feature :
         {"*StapleLocation", "*Punch", "*Nup", "*NupOrder", "*Booklet", "*Duplex"}) {
      EXPECT_FIRST_NAME(feature, "x", std::string(feature + 1) + "_x" + letter + "_41201.xpm");
    }
    for (const char *feature : {"*PageSize", "*Orientation", "*Jog"}) {
      EXPECT_FIRST_NAME(feature, "x", std::string(feature + 1) + "_x_41201.xpm");
    }
  }
}

TEST_F(PixmapNames, WithoutAnOrientationNoLetterIsAdded) {
  EXPECT_FIRST_NAME("*Duplex", "x", "Duplex_x_41201.xpm");
}

TEST_F(PixmapNames, TheSecondChoiceKeepsHolesAndOrientation) {
  G_PrinterModel = 2;
  options_.SetInstalled("*OptionPunch", "Punch4Hole");
  options_.Set("*Orientation", "Landscape");
  EXPECT_FIRST_NAME("*Punch", "Punch", "Punch_Punch4L.xpm");
}

TEST_F(PixmapNames, AQueueWithoutPpdFileHasNoModelNumber) {
  G_CurrentQueue->PpdFile.reset();
  EXPECT_FIRST_NAME("*Jog", "On", "Jog_On_.xpm");
  EXPECT_EQ(G_GetPixmapNameFor("*Jog", "On"), "Jog.xpm");
}

TEST_F(PixmapNames, AnOptionThatIsNoCustomOneHasItsOwnPicture) {
  Picture("PageSize_A4.xpm");
  EXPECT_EQ(PictureOfChoice("*PageSize", "A4", false), "PageSize_A4.xpm");
  EXPECT_EQ(PictureOfChoice("*PageSize", "Ticket", true), "cps.xpm");
  EXPECT_EQ(PictureOfChoice("*MediaType", "Gloss", true), "cmt.xpm");
}

TEST_F(PixmapNames, TheModelNumberIsTheFirstPieceWithoutTheMaker) {
  EXPECT_EQ(GetPPDNo("vek41201.ppd"), "41201");
  EXPECT_EQ(GetPPDNo("/opt/orlan/ppd/vek41201.ppd"), "41201");
  EXPECT_EQ(GetPPDNo("vek41201"), "41201");
  EXPECT_EQ(GetPPDNo("vek41201.ppd.gz"), "41201");
  EXPECT_EQ(GetPPDNo("/dir.d/vek41201.ppd"), "41201");
  EXPECT_EQ(GetPPDNo(".vek41201.ppd"), "41201");
  EXPECT_EQ(GetPPDNo("vek.ppd"), "");
  EXPECT_EQ(GetPPDNo("ab.ppd"), "");
}

TEST_F(PixmapNames, ANameWithoutAFirstPieceHasNoModelNumber) {
  for (const char *name : {"", ".", "...", "/opt/", "/opt/..."}) {
    EXPECT_EQ(GetPPDNo(name), "") << name;
  }
  G_DebugLevel = 4;
  testing::internal::CaptureStderr();
  GetPPDNo("...");
  G_DebugLevel = 0;
  EXPECT_NE(testing::internal::GetCapturedStderr().find("PPD name not in a correct format"),
            std::string::npos);
}

TEST_F(PixmapNames, OtherMakersSheetsStandAndWhatTheyDoNotDoIsNotShownDone) {
  for (const char *name : {"StapleLocation.xpm", "StapleLocation_NoneP.xpm", "Duplex.xpm",
                           "Duplex_DuplexTumbleP.xpm", "Collate_False.xpm"}) {
    Picture(name);
  }
  EXPECT_EQ(G_GetPixmapNameFor("*StapleLocation", "None"), "StapleLocation.xpm");
  G_PrinterModel = kAddedModelNumber;
  EXPECT_EQ(G_GetPixmapNameFor("*StapleLocation", "None"), "StapleLocation_NoneP.xpm");
  EXPECT_EQ(G_GetPixmapNameFor("*StapleLocation", "Off"), "StapleLocation_NoneP.xpm");
  EXPECT_EQ(G_GetPixmapNameFor("*StapleLocation", "SaddleStitch"), "StapleLocation.xpm");
  EXPECT_EQ(G_GetPixmapNameFor("*Duplex", "DuplexTumble"), "Duplex_DuplexTumbleP.xpm");
  EXPECT_EQ(G_GetPixmapNameFor("*Collate", "False"), "Collate_False.xpm");
}

}  // namespace
