// The print tool's list of files, and the files that a selection or a drop stands for.
#include "filelist.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "coresupport.h"
#include "cselection.h"
#include "must.h"
#include "temporarydirectory.h"

namespace {

using Strings = std::vector<std::string>;

class FilesList : public testing::Test {
 protected:
  void SetUp() override { G_FilesList = CreateList(); }
  void TearDown() override {
    G_FilesList.reset();
    G_StdinFileName.clear();
  }
  static Strings Paths() {
    Strings paths;
    for (const CSelection *record : Elements<CSelection>(G_FilesList.get())) {
      paths.emplace_back(fGet_CSelection_Value_Function(record));
    }
    return paths;
  }
  static void Select(CNodeList *position) {
    Must(fSet_Selected_Function(ObjectCast<CSelection>(fGet_CNodeList_Function(position)), 1));
  }
  // Removes the selected ones; the paths that were announced before.
  static Strings Remove() {
    Strings announced;
    RemoveSelectedFiles([&](const CNodeList *position) {
      announced.emplace_back(fGet_CSelection_Value_Function(
          ObjectCast<CSelection>(fGet_CNodeList_Function(position))));
    });
    return announced;
  }
};

}  // namespace

TEST_F(FilesList, AppendsUnselectedRecordsAndTellsTheirPosition) {
  const CNodeList *first = AppendFile("/a");
  const CNodeList *second = AppendFile("/b");
  EXPECT_EQ(first, fGetHeadPosition_CList_Function(G_FilesList.get()));
  EXPECT_EQ(second, fGetTailPosition_CList_Function(G_FilesList.get()));
  EXPECT_EQ(Paths(), (Strings{"/a", "/b"}));
  EXPECT_EQ(fIsSelected_CSelection_Function(ObjectCast<CSelection>(fGet_CNodeList_Function(first))),
            0);
}

TEST_F(FilesList, TheSameFileIsListedAsOftenAsItIsChosen) {
  AppendFile("/a");
  AppendFile("/a");
  EXPECT_EQ(Paths(), (Strings{"/a", "/a"}));
}

TEST_F(FilesList, WithoutListNothingIsAppended) {
  G_FilesList.reset();
  EXPECT_EQ(AppendFile("/a"), nullptr);
}

TEST_F(FilesList, RemovesExactlyTheSelectedRecordsInOrder) {
  for (const char *path : {"/a", "/b", "/c", "/d"}) {
    CNodeList *position = AppendFile(path);
    if (std::string("/a/b/d").find(path) != std::string::npos) Select(position);
  }
  EXPECT_EQ(Remove(), (Strings{"/a", "/b", "/d"}));
  EXPECT_EQ(Paths(), Strings{"/c"});
}

TEST_F(FilesList, RemovesAllWhenAllAreSelected) {
  for (const char *path : {"/a", "/b"}) Select(AppendFile(path));
  EXPECT_EQ(Remove().size(), 2U);
  EXPECT_EQ(fIsEmpty_CList_Function(G_FilesList.get()), 1);
  EXPECT_EQ(Remove(), Strings{});
}

TEST_F(FilesList, RemovingTheCapturedInputRemovesItsFileAtOnce) {
  const TemporaryDirectory directory;
  G_StdinFileName = directory.Write("captured", "hi\n");
  const std::string other = directory.Write("other", "");
  Select(AppendFile(G_StdinFileName));
  Select(AppendFile(other));
  Remove();
  EXPECT_FALSE(std::filesystem::exists(directory.Path("captured")));
  EXPECT_TRUE(std::filesystem::exists(other));
}

TEST_F(FilesList, CapturedInputThatIsNotSelectedStays) {
  const TemporaryDirectory directory;
  G_StdinFileName = directory.Write("captured", "hi\n");
  AppendFile(G_StdinFileName);
  Select(AppendFile("/a"));
  Remove();
  EXPECT_TRUE(std::filesystem::exists(directory.Path("captured")));
  EXPECT_EQ(IsStdinDataToPrint(), 1);
}

TEST_F(FilesList, CapturedInputIsToBePrintedAsLongAsItsRecordIsThere) {
  EXPECT_EQ(IsStdinDataToPrint(), 0);
  AppendFile("");
  EXPECT_EQ(IsStdinDataToPrint(), 0) << "nothing was captured";
  G_StdinFileName = "/tmp/captured";
  AppendFile("/tmp/captured2");
  EXPECT_EQ(IsStdinDataToPrint(), 0);
  Select(AppendFile("/tmp/captured"));
  EXPECT_EQ(IsStdinDataToPrint(), 1);
  Remove();
  EXPECT_EQ(IsStdinDataToPrint(), 0);
  G_FilesList.reset();
  EXPECT_EQ(IsStdinDataToPrint(), 0);
}

TEST(FilesOfSelection, APathStandsForItselfUnchecked) {
  EXPECT_EQ(FilesOfSelection("/nonexistent/a"), Strings{"/nonexistent/a"});
}

TEST(FilesOfSelection, AFolderStandsForItsPlainFilesAndNotForItsSubdirectories) {
  const TemporaryDirectory directory;
  directory.Write("a", "");
  directory.Write(".hidden", "");
  std::filesystem::create_directory(directory.Path("sub"));
  directory.Write("sub/b", "");
  std::filesystem::create_symlink(directory.Path("a"), directory.Path("link"));
  std::filesystem::create_directory_symlink(directory.Path("sub"), directory.Path("sublink"));
  std::filesystem::create_symlink(directory.Path("none"), directory.Path("dangling"));
  Strings files = FilesOfSelection(directory.Path() + "/");
  std::sort(files.begin(), files.end());
  EXPECT_EQ(files,
            (Strings{directory.Path(".hidden"), directory.Path("a"), directory.Path("link")}));
}

TEST(FilesOfSelection, AFolderThatIsEmptyOrMissingStandsForNothing) {
  const TemporaryDirectory directory;
  EXPECT_EQ(FilesOfSelection(directory.Path() + "/"), Strings{});
  EXPECT_EQ(FilesOfSelection("/nonexistent/"), Strings{});
}

namespace {

struct Drop {
  const char *rule;
  std::string text;
  Strings paths;
};

class UriList : public testing::TestWithParam<Drop> {};

}  // namespace

TEST_P(UriList, GivesTheLocalPaths) {
  EXPECT_EQ(PathsFromUriList(GetParam().text), GetParam().paths) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Rules, UriList,
    testing::Values(
        Drop{"LinesEndInCrLf", "file:///a\r\nfile:///b\r\n", {"/a", "/b"}},
        Drop{"PlainLineFeedsAreTaken", "file:///a\nfile:///b", {"/a", "/b"}},
        Drop{"CommentsAreLeftOut", "# x\r\nfile:///a\r\n#file:///b\r\n", {"/a"}},
        Drop{"EmptyLinesAreLeftOut", "\r\n\r\nfile:///a\r\n\r\n", {"/a"}},
        Drop{"EscapesAreDecoded", "file:///a%20b%C3%A9%2c%25", {"/a b\xC3\xA9,%"}},
        Drop{"NamesMayBeInAnyEncoding", "file:///%E9", {"/\xE9"}},
        Drop{"LocalhostIsLocal", "file://localhost/a\nfile://LocalHost/b", {"/a", "/b"}},
        Drop{"OtherHostsAreLeftOut", "file://other/a\nfile://localhost.x/b\nfile:///c", {"/c"}},
        Drop{"TheShortFormIsTaken", "file:/a/b", {"/a/b"}},
        Drop{"TheSchemeIgnoresCase", "FILE:///a", {"/a"}},
        Drop{"OtherSchemesAreLeftOut", "http://x/a\nsmb://x/b\n/plain\nfiles:///c", {}},
        Drop{"RelativePathsAreLeftOut", "file:a\nfile:\nfile://\nfile://localhost", {}},
        Drop{"BrokenEscapesAreLeftOut", "file:///%\nfile:///%4\nfile:///%4g\nfile:///%-1", {}},
        Drop{"EncodedNulAndSlashAreLeftOut", "file:///a%00b\nfile:///a%2Fb\nfile:///a%2fb", {}},
        Drop{"QueryAndFragmentAreNoPartOfAFileUri", "file:///a?b\nfile:///a#b", {}},
        Drop{"EscapedQueryAndFragmentAreNames", "file:///a%3Fb%23c", {"/a?b#c"}},
        Drop{"BlanksAroundAreDropped", " file:///a \t\r\n", {"/a"}},
        Drop{"FoldersKeepTheirSlash", "file:///a/", {"/a/"}},
        Drop{"TheTextEndsAtANulByte", std::string("file:///a\0file:///b", 19), {"/a"}},
        Drop{"Empty", "", {}}),
    [](const auto &parameter) { return parameter.param.rule; });

TEST(UriListText, LongerThanAnyLineLimitIsTakenWhole) {
  const std::string name(5000, 'x');
  std::string text;
  for (int i = 0; i < 100; ++i) text += "file:///" + name + "\r\n";
  EXPECT_EQ(PathsFromUriList(text), Strings(100, "/" + name));
}

namespace {

class Dropped : public testing::Test {
 protected:
  const ProgramMessages messages_{
      "#ERR_DROP_CONTROL\ncontrol <%s>\n#ERR_DROP_MISSING\nmissing <%s>\n"
      "#ERR_DROP_REMOTE\nremote <%s>\n"};
  const Owned<CList> errors_ = CreateList();
  const TemporaryDirectory directory_;
};

}  // namespace

TEST_F(Dropped, FilesAndFoldersThatAreThereAreTaken) {
  const std::string file = directory_.Write("a;b$(c).ps", "");
  const std::string uris = "file://" + file + "\r\nfile://" + directory_.Path() + "\r\n# x\r\n\r\n";
  EXPECT_EQ((Strings{file, directory_.Path()}), DroppedPaths(uris, errors_.get()));
  EXPECT_EQ(Strings{}, Texts(errors_.get()));
}

TEST_F(Dropped, WhatIsNotThereIsTold) {
  EXPECT_EQ(Strings{}, DroppedPaths("file://" + directory_.Path("none"), errors_.get()));
  EXPECT_EQ(Strings{"missing <" + directory_.Path("none") + ">"}, Texts(errors_.get()));
}

TEST_F(Dropped, ANameWithControlCharactersIsToldWithoutThem) {
  const std::string file = directory_.Write("a\n\x1B[2J", "");
  EXPECT_EQ(Strings{}, DroppedPaths("file://" + directory_.Path("a%0A%1b[2J"), errors_.get()));
  EXPECT_EQ(Strings{"control <" + directory_.Path("a??[2J") + ">"}, Texts(errors_.get()));
}

TEST_F(Dropped, WhatNamesNoFileOfThisComputerIsTold) {
  EXPECT_EQ(Strings{}, DroppedPaths("http://x/a\r\nfile://other/b\r\nfile:///%zz", errors_.get()));
  EXPECT_EQ((Strings{"remote <http://x/a>", "remote <file://other/b>", "remote <file:///%zz>"}),
            Texts(errors_.get()));
}
