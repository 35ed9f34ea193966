// The program that draws the pictures: what a description may hold, and what comes out.
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "childprocess.h"
#include "description.h"
#include "elements.h"
#include "glyphs.h"
#include "temporarydirectory.h"
#include "xpm.h"

using namespace kpx::pixmaps;

namespace {

constexpr char kHead[] = "colour ink #234\ncolour paper #FFF\nsize 8 8\n";

Description Read(const std::string &text) {
  Description description;
  ReadDescription(text, &description);
  return description;
}

Image DrawOne(const std::string &steps) {
  const Description description = Read(kHead + ("picture p\n" + steps) + "end\n");
  return Draw(description.pictures.at(0), description.colours);
}

unsigned PixelOf(const Image &image, int x, int y) {
  return image.pixels.at(static_cast<size_t>(y * image.width + x));
}

// What is wrong with it, "" when nothing is.
std::string FaultOf(const std::string &description) {
  try {
    const Description read = Read(description);
    for (const Picture &picture : read.pictures) Draw(picture, read.colours);
  } catch (const DescriptionError &error) {
    return error.what();
  }
  return "";
}

TEST(Describing, TellsLineAndReasonOfAFault) {
  const std::string head = kHead;
  EXPECT_EQ(FaultOf("rectangle\n"), "line 1: outside a picture: rectangle");
  EXPECT_EQ(FaultOf("colour ink 234\n"), "line 1: no colour of the form #RGB: 234");
  EXPECT_EQ(FaultOf("colour ink #23G\n"), "line 1: no colour of the form #RGB: #23G");
  EXPECT_EQ(FaultOf("colour ink\n"), "line 1: colour takes 2 words");
  EXPECT_EQ(FaultOf("size 0 8\n"), "line 1: no size: 0");
  EXPECT_EQ(FaultOf("size 8 9999\n"), "line 1: no size: 9999");
  EXPECT_EQ(FaultOf("picture p\nend\n"), "line 1: a picture before its size");
  EXPECT_EQ(FaultOf(head + "picture p\n"), "line 4: the last block has no end");
  EXPECT_EQ(FaultOf(head + "picture p\nend\npicture p\nend\n"), "line 6: drawn twice: p");
  EXPECT_EQ(FaultOf("define d\nend\ndefine d\nend\n"), "line 3: defined twice: d");
}

TEST(Describing, TellsWhatIsWrongWithAStep) {
  const std::string head = std::string(kHead) + "picture p\n";
  EXPECT_EQ(FaultOf(head + "circle 1\nend\n"), "line 5: no such step: circle");
  EXPECT_EQ(FaultOf(head + "pen\nend\n"), "line 5: too few or too many words");
  EXPECT_EQ(FaultOf(head + "pen 1 2\nend\n"), "line 5: too few or too many words");
  EXPECT_EQ(FaultOf(head + "pen 1x\nend\n"), "line 5: no number: 1x");
  EXPECT_EQ(FaultOf(head + "box 0 0 4 4 0 red -\nend\n"), "line 5: no colour red");
  EXPECT_EQ(FaultOf(head + "line ink 0 0 1 1 2\nend\n"), "line 5: a point lacks its Y");
  EXPECT_EQ(FaultOf(head + "text ink 4 1 1 A%\nend\n"), "line 5: no glyph for %");
  EXPECT_EQ(FaultOf(head + "pop\nend\n"), "line 5: pop without push");
}

TEST(Describing, ADefinitionUsesOnlyEarlierOnes) {
  const std::string head = kHead;
  EXPECT_EQ(FaultOf(head + "picture p\nuse d\nend\ndefine d\nend\n"), "line 5: not defined: d");
  EXPECT_EQ(FaultOf("define d\nuse d\nend\n"), "line 2: not defined: d");
  EXPECT_EQ(FaultOf("define d\nuse\nend\n"), "line 2: use of nothing");
}

TEST(Describing, WordsOfAUseTakeThePlaceOfParametersAlsoInDefinitionsThatUseOthers) {
  const Description read = Read(std::string(kHead) +
                                "define inner\nbox $1 2 $2 4 0 ink -\nend\n"
                                "define outer\nuse inner 1 $1\nend\n"
                                "picture p\nuse outer 3\nend\n");
  const std::vector<std::string> expected = {"box", "1", "2", "3", "4", "0", "ink", "-"};
  ASSERT_EQ(read.pictures.at(0).steps.size(), 1u);
  EXPECT_EQ(read.pictures[0].steps[0].words, expected);
  EXPECT_EQ(FaultOf(std::string(kHead) + "define d\npen $2\nend\npicture p\nuse d 1\nend\n"),
            "line 8: d needs $2");
}

TEST(Describing, APictureThatIsOneUseNeedsNoEnd) {
  const Description read =
      Read(std::string(kHead) + "define d\npen $1\nend\npicture p use d 3\npicture q use d 4\n");
  ASSERT_EQ(read.pictures.size(), 2u);
  EXPECT_EQ(read.pictures[1].name, "q");
  EXPECT_EQ(read.pictures[1].steps.at(0).words, (std::vector<std::string>{"pen", "4"}));
  EXPECT_EQ(FaultOf(std::string(kHead) + "picture p pen 3\n"), "line 4: picture takes 1 words");
}

TEST(Describing, WhatOneFileNamesHoldsInTheNext) {
  Description description;
  ReadDescription(std::string(kHead) + "define d\npen 3\nend\n", &description);
  ReadDescription("picture p use d\n", &description);
  EXPECT_EQ(description.pictures.at(0).width, 8);
  EXPECT_EQ(description.pictures[0].steps.at(0).words.at(0), "pen");
}

TEST(Drawing, SurroundsWhatIsDrawnByALightRimOnATransparentGround) {
  const Image image = DrawOne("box 2 2 4 4 0 ink -\n");
  EXPECT_EQ(PixelOf(image, 0, 0), kTransparent);
  EXPECT_EQ(PixelOf(image, 1, 1), 0xEEEEEEu);
  EXPECT_EQ(PixelOf(image, 2, 2), 0x223344u);
  EXPECT_EQ(PixelOf(image, 5, 5), 0x223344u);
  EXPECT_EQ(PixelOf(image, 6, 3), 0xEEEEEEu);
  EXPECT_EQ(PixelOf(image, 7, 3), kTransparent);
}

TEST(Drawing, LeavesTheRimOffWhereThePictureLiesOverAnother) {
  const Image image = DrawOne("norim 0 0 4 8\nbox 2 2 4 4 0 ink -\n");
  EXPECT_EQ(PixelOf(image, 1, 3), kTransparent);
  EXPECT_EQ(PixelOf(image, 2, 3), 0x223344u);
  EXPECT_EQ(PixelOf(image, 6, 3), 0xEEEEEEu);
}

TEST(Drawing, AnOutlineRunsInsideTheEdge) {
  const Image image = DrawOne("pen 1\nbox 1 1 6 6 0 paper ink\n");
  EXPECT_EQ(PixelOf(image, 0, 3), 0xEEEEEEu);
  EXPECT_EQ(PixelOf(image, 1, 3), 0x223344u);
  EXPECT_EQ(PixelOf(image, 2, 3), 0xFFFFFFu);
}

TEST(Drawing, PopBringsPenAndPlaceBack) {
  const Image image = DrawOne("pen 1\npush\nmove 3 3\npen 4\npop\nbox 1 1 6 6 0 paper ink\n");
  EXPECT_EQ(PixelOf(image, 1, 3), 0x223344u);
  EXPECT_EQ(PixelOf(image, 2, 3), 0xFFFFFFu);
}

TEST(Lettering, IsAsWideAsItsGlyphsAndTheGapsBetweenThem) {
  EXPECT_EQ(TextWidth(""), 0);
  EXPECT_EQ(TextWidth("A"), 4);
  EXPECT_EQ(TextWidth("A4"), 4 + kGlyphGap + 4);
}

TEST(XpmWriting, WritesSizeColoursAndRows) {
  const Image image{2, 2, {kTransparent, 0x102030, 0x102030, 0xFFFFFF}};
  EXPECT_EQ(XpmText(image, "a-b"),
            "/* XPM */\nstatic const char *a_b_xpm[] = {\n\"2 2 3 1\",\n"
            "\"  c None\",\n\". c #102030\",\n\"+ c #FFFFFF\",\n\" .\",\n\".+\"\n};\n");
}

TEST(XpmWriting, TakesTwoCharactersForManyColours) {
  Image image{16, 16, {}};
  for (unsigned i = 0; i < 256; ++i) image.pixels.push_back(i);
  const std::string text = XpmText(image, "many");
  EXPECT_NE(text.find("\"16 16 256 2\""), std::string::npos);
  std::set<std::string> codes;
  for (size_t at = text.find(" c #"); at != std::string::npos; at = text.find(" c #", at + 1)) {
    codes.insert(text.substr(at - 2, 2));
  }
  EXPECT_EQ(codes.size(), 256u);
}

// The descriptions of the program's own pictures.
std::vector<std::string> Arguments(std::vector<std::string> arguments) {
  std::istringstream files(KPX_PICTURES);
  for (std::string file; std::getline(files, file, ':');) arguments.push_back(file);
  return arguments;
}

// kpxdraw with these arguments.
ChildResult RunDraw(const std::vector<std::string> &arguments) {
  return RunInChild([&arguments] {
    std::vector<char *> words = {const_cast<char *>(KPX_DRAW)};
    for (const std::string &argument : arguments) {
      words.push_back(const_cast<char *>(argument.c_str()));
    }
    words.push_back(nullptr);
    execv(KPX_DRAW, words.data());
    _exit(127);
  });
}

size_t FilesIn(const std::string &path) {
  return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(path), {}));
}

TEST(KpxdrawProgram, DrawsTheSameFilesEveryTime) {
  const TemporaryDirectory directory;
  for (const char *name : {"a", "b"}) {
    ASSERT_EQ(RunDraw(Arguments({directory.Path(name)})).status, 0);
  }
  ASSERT_GT(FilesIn(directory.Path("a")), 100u);
  ASSERT_EQ(FilesIn(directory.Path("a")), FilesIn(directory.Path("b")));
  for (const auto &entry : std::filesystem::directory_iterator(directory.Path("a"))) {
    const std::string name = entry.path().filename();
    EXPECT_EQ(ContentOf(entry.path()), ContentOf(directory.Path("b/" + name))) << name;
  }
}

TEST(KpxdrawProgram, DrawsTwiceAsLargeOnRequest) {
  const TemporaryDirectory directory;
  const std::string description = directory.Write(
      "pictures.txt", std::string(kHead) + "picture p\nnorim 0 0 2 8\nbox 2 2 4 4 0 ink -\nend\n");
  ASSERT_EQ(RunDraw({"--double", directory.Path("2x"), description}).status, 0);
  const std::string bare(16, ' ');
  const std::string text = ContentOf(directory.Path("2x/p.xpm"));
  EXPECT_NE(std::string::npos, text.find("\"16 16 3 1\"")) << text;
  // Every pixel of the usual picture is a square of four: the box, and the rim right of it.
  std::string rows;
  for (int y = 0; y < 16; ++y) {
    std::string row = bare;
    for (int x = 4; x < 14; ++x) {
      const bool box = x < 12 && y >= 4 && y < 12;
      if (y >= 2 && y < 14) row[static_cast<size_t>(x)] = box ? '+' : '.';
    }
    rows += ",\n\"" + row + "\"";
  }
  EXPECT_NE(std::string::npos, text.find(rows)) << text;
}

TEST(KpxdrawProgram, RemovesPicturesThatTheDescriptionLacksAndNothingElse) {
  const TemporaryDirectory directory;
  directory.Write("old.xpm", "");
  directory.Write("notes.txt", "");
  const std::string description =
      directory.Write("pictures.txt", std::string(kHead) + "picture p\nbox 1 1 4 4 0 ink -\nend\n");
  ASSERT_EQ(RunDraw({directory.Path(), description}).status, 0);
  EXPECT_FALSE(std::filesystem::exists(directory.Path("old.xpm")));
  EXPECT_TRUE(std::filesystem::exists(directory.Path("p.xpm")));
  EXPECT_TRUE(std::filesystem::exists(directory.Path("notes.txt")));
}

TEST(KpxdrawProgram, ReportsAFaultyDescriptionAndLeavesThePicturesAlone) {
  const TemporaryDirectory directory;
  directory.Write("old.xpm", "");
  const std::string description = directory.Write("pictures.txt", "rectangle\n");
  const ChildResult result = RunDraw({directory.Path(), description});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "kpxdraw: " + description + ": line 1: outside a picture: rectangle\n");
  EXPECT_TRUE(std::filesystem::exists(directory.Path("old.xpm")));
  EXPECT_EQ(RunDraw({directory.Path(), directory.Path("missing")}).status, 1);
  EXPECT_EQ(RunDraw({}).status, 1);
}

TEST(KpxdrawProgram, DrawsAContactSheet) {
  const TemporaryDirectory directory;
  const std::string sheet = directory.Path("sheet.png");
  ASSERT_EQ(RunDraw(Arguments({"--sheet", sheet})).status, 0);
  EXPECT_EQ(ContentOf(sheet).substr(1, 3), "PNG");
  EXPECT_LT(std::filesystem::file_size(sheet), 400'000u);
  EXPECT_EQ(RunDraw(Arguments({"--sheet", directory.Path("none/sheet.png")})).status, 1);
}

}  // namespace
