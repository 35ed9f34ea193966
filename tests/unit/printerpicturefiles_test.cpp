// Which files the picture of the printer is made of. Runs in the sandbox: the pictures are looked
// for at their real place.

#include "printerpicturefiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "multipleup.h"
#include "optionsupport.h"
#include "paths.h"
#include "privateworld.h"

namespace {

class PrinterPictures : public testing::Test {
 protected:
  static void SetUpTestSuite() { RequirePrivateWorld(); }

  // Only the pictures that the test makes are there.
  PrinterPictures() {
    std::filesystem::remove_all(kPixmapDir);
    std::filesystem::create_directories(kPixmapDir);
    G_PrinterModel = 5;
  }
  ~PrinterPictures() override { std::filesystem::remove_all(kPixmapDir); }

  static void Picture(const std::string &name) {
    std::ofstream(std::string(kPixmapDir) + "/" + name) << "/* XPM */\n";
  }

  // The overlays, "-" for none.
  static std::string Overlays() {
    std::string names;
    for (const std::string &name : CurrentPrinterPictureFiles().overlays) {
      names += (names.empty() ? "" : " ") + (name.empty() ? "-" : name);
    }
    return names;
  }

  CurrentOptions options_;
};

}  // namespace

TEST_F(PrinterPictures, TheBaseIsTheModels) {
  Picture("Printer.xpm");
  Picture("Printer_5.xpm");
  EXPECT_EQ(CurrentPrinterPictureFiles().base, "Printer_5.xpm");
  G_PrinterModel = 6;
  EXPECT_EQ(CurrentPrinterPictureFiles().base, "Printer.xpm");
}

TEST_F(PrinterPictures, TheBaseIsNamedEvenWhenThereIsNoPicture) {
  EXPECT_EQ(CurrentPrinterPictureFiles().base, "Printer.xpm");
}

TEST_F(PrinterPictures, NothingInstalledLaysNothingOver) {
  for (const char *option : {"OptionHCF", "OptionFinisher", "OptionTray4", "OptionBypassTray"}) {
    Picture(std::string("Printer_5_") + option + ".xpm");
  }
  EXPECT_EQ(Overlays(), "- - -");
  options_.SetInstalled("*OptionHCF", "False");
  options_.SetInstalled("*OptionFinisher", "None");
  EXPECT_EQ(Overlays(), "- - -");
}

TEST_F(PrinterPictures, EveryGroupHasItsOverlay) {
  Picture("Printer_5_OptionHCF.xpm");
  Picture("Printer_5_OptionFinisher.xpm");
  Picture("Printer_5_OptionTray4.xpm");
  Picture("Printer_5_OptionBypassTray.xpm");
  Picture("Printer_5_OptionTray4_OptionBypassTray.xpm");
  options_.SetInstalled("*OptionHCF", "True");
  EXPECT_EQ(Overlays(), "Printer_5_OptionHCF.xpm - -");
  options_.SetInstalled("*OptionFinisher", "Stacker");
  options_.SetInstalled("*OptionTray4", "True");
  EXPECT_EQ(Overlays(),
            "Printer_5_OptionHCF.xpm Printer_5_OptionFinisher.xpm Printer_5_OptionTray4.xpm");
  options_.SetInstalled("*OptionHCF", "False");
  options_.SetInstalled("*OptionBypassTray", "True");
  EXPECT_EQ(Overlays(),
            "- Printer_5_OptionFinisher.xpm Printer_5_OptionTray4_OptionBypassTray.xpm");
  options_.SetInstalled("*OptionTray4", "False");
  EXPECT_EQ(Overlays(), "- Printer_5_OptionFinisher.xpm Printer_5_OptionBypassTray.xpm");
}

TEST_F(PrinterPictures, AnOverlayOfEveryModelStandsInAndWithoutOneThereIsNone) {
  options_.SetInstalled("*OptionHCF", "True");
  EXPECT_EQ(Overlays(), "- - -");
  Picture("Printer_OptionHCF.xpm");
  EXPECT_EQ(Overlays(), "Printer_OptionHCF.xpm - -");
}

TEST_F(PrinterPictures, WhatIsInstalledIsSaidInWords) {
  options_.Installable({"*OptionTray4", "False", {}, "Boolean", "Tray 4"});
  options_.SetInstalled("*OptionTray4", "True");
  options_.SetInstalled("*OptionBypassTray", "True");
  EXPECT_EQ(InstalledOfGroup(2), "Tray 4, OptionBypassTray");
  EXPECT_EQ(InstalledOfGroup(0), "");
}

TEST_F(PrinterPictures, FourOptionsHaveAPlace) {
  for (const char *option :
       {"*OptionHCF", "*OptionFinisher", "*OptionTray4", "*OptionBypassTray"}) {
    EXPECT_TRUE(IsInPrinterPicture(option)) << option;
  }
  EXPECT_FALSE(IsInPrinterPicture("*OptionPunch"));
  EXPECT_FALSE(IsInPrinterPicture("*InstalledMemory"));
}

TEST_F(PrinterPictures, PagesASheetHavePicturesOfTheSheetAsItLies) {
  Picture("Nup_2L.xpm");
  Picture("Booklet_1P.xpm");
  Picture("NupOrder_Down4P.xpm");
  options_.Set("*Orientation", "RotLandscape");
  EXPECT_EQ(MultipleUpPicture("2"), "Nup_2L.xpm");
  EXPECT_EQ(MultipleUpPicture("*Booklet"), "Booklet.xpm");
  options_.Set("*Orientation", "Portrait");
  options_.Set("*Nup", "4");
  EXPECT_EQ(MultipleUpPicture("*Booklet"), "Booklet_1P.xpm");
  EXPECT_EQ(NupOrderPicture("Down"), "NupOrder_Down4P.xpm");
}
