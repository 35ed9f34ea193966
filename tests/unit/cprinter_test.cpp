// The printer record: reading its file, its clone, and how the process ends on a bad file.
#include "cprinter.h"

#include <gtest/gtest.h>

#include "childprocess.h"
#include "coresupport.h"
#include "ignoreresult.h"
#include "must.h"
#include "pafsupport.h"
#include "temporarydirectory.h"

namespace {

using std::string;

constexpr char kMessages[] =
    "#ERR_UNABLE_TO_READ_FILE\ncannot read <%s>\n"
    "#ERR_FILE_CORRUPTED\ncorrupted <%s> <%s>\n";

const char *Get(const CString *text) { return fGet_CString_Value_Function(text); }

// A description as it is read, less the printer's name.
string Content(const CPrinter *printer) {
  const CHash *custom = fGetCustomPaper_Function(printer);
  return "ppd" + Shown(fGetPpdFile_Function(printer)) + "\n" +
         ShownFeatures("feature", fGetFeatures_Function(printer)) +
         ShownFeatures("installable", fGetInstallableOptions_Function(printer)) +
         (custom == nullptr ? "" : "custom" + ShownTexts(custom) + "\n") +
         ShownConstraints(fGetConstraints_Function(printer));
}

class Printer : public testing::Test {
 protected:
  // A printer read from a description with `text`.
  Owned<CPrinter> Read(const string &text) {
    Owned<CPrinter> printer = CreatePrinter(directory_.Write("vek.paf", text).c_str());
    name_ = fFillFromPaf_Function(printer.get());
    return printer;
  }

  ProgramMessages messages_{kMessages};
  TemporaryDirectory directory_;
  Owned<CString> name_;
};

TEST_F(Printer, IsEmptyButForItsFileNameWhenNew) {
  const Owned<CPrinter> printer = CreatePrinter("/nowhere/vek.paf");
  EXPECT_EQ(ClassIdOf(printer.get()), 280);
  EXPECT_STREQ(CPrinter::Ops()->Class_Name(), "CPrinter");
  EXPECT_STREQ(Get(printer->paf_file.get()), "/nowhere/vek.paf");
  EXPECT_EQ(fGetFeatures_Function(printer.get()), nullptr);
  EXPECT_EQ(fGetInstallableOptions_Function(printer.get()), nullptr);
  EXPECT_EQ(fGetCustomPaper_Function(printer.get()), nullptr);
  EXPECT_EQ(fGetConstraints_Function(printer.get()), nullptr);
  EXPECT_EQ(fGetPpdFile_Function(printer.get()), nullptr);
}

TEST_F(Printer, IsNotMadeWithoutAFileName) { EXPECT_EQ(CreatePrinter(nullptr), nullptr); }

TEST_F(Printer, MissingRecordHasNothing) {
  EXPECT_EQ(fGetFeatures_Function(nullptr), nullptr);
  EXPECT_EQ(fGetInstallableOptions_Function(nullptr), nullptr);
  EXPECT_EQ(fGetCustomPaper_Function(nullptr), nullptr);
  EXPECT_EQ(fGetConstraints_Function(nullptr), nullptr);
  EXPECT_EQ(fGetPpdFile_Function(nullptr), nullptr);
  EXPECT_EQ(fFillFromPaf_Function(static_cast<CPrinter *>(nullptr)), nullptr);
  EXPECT_EQ(fDelete_CPrinter_Function(nullptr), 1);
  EXPECT_EQ(fClone_CPrinter_Function(nullptr), nullptr);
}

TEST_F(Printer, ReadsItsFileAndReturnsItsName) {
  const Owned<CPrinter> printer = Read(kFullPaf);
  EXPECT_EQ("name" + Shown(name_.get()) + "\n" + Content(printer.get()), kFullText);
}

TEST_F(Printer, WithoutBlocksHasEmptyTablesAndNoCustomPaper) {
  const Owned<CPrinter> printer = Read(kPafHeader);
  EXPECT_TRUE(HashIsEmpty(fGetFeatures_Function(printer.get())));
  EXPECT_TRUE(HashIsEmpty(fGetInstallableOptions_Function(printer.get())));
  EXPECT_EQ(fGetCustomPaper_Function(printer.get()), nullptr);
  ASSERT_NE(fGetConstraints_Function(printer.get()), nullptr);
  EXPECT_EQ(fIsEmpty_CList_Function(fGetConstraints_Function(printer.get())), 1);
}

TEST_F(Printer, ReadAgainHasOnlyWhatTheFileSaysNow) {
  const Owned<CPrinter> printer = Read(kFullPaf);
  directory_.Write("vek.paf", "##Name:Other\n##PPD:other.ppd\n");
  EXPECT_STREQ(Get(fFillFromPaf_Function(printer.get()).get()), "Other");
  EXPECT_EQ(Content(printer.get()), "ppd <other.ppd>\n");
}

TEST_F(Printer, CloneIsDeepButHasNoPpdFileName) {
  const Owned<CPrinter> printer = Read(kFullPaf);
  const Owned<CPrinter> clone = CloneOf(printer.get());
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(fGetPpdFile_Function(clone.get()), nullptr);
  EXPECT_STREQ(Get(clone->paf_file.get()), Get(printer->paf_file.get()));
  EXPECT_NE(clone->features, printer->features);
  EXPECT_NE(clone->constraints, printer->constraints);
  EXPECT_EQ("ppd <vek41201.ppd>\n" + Content(clone.get()).substr(sizeof "ppd (none)"),
            Content(printer.get()));
  // And so the clone itself cannot be cloned.
  EXPECT_EQ(CloneOf(clone.get()), nullptr);
}

TEST_F(Printer, WithoutCustomPaperBlockIsNotCloned) {
  const string full = kFullPaf;
  const size_t start = full.find("#cps");
  const size_t end = full.find("#ccc");
  const Owned<CPrinter> printer = Read(full.substr(0, start) + full.substr(end));
  EXPECT_EQ(fGetCustomPaper_Function(printer.get()), nullptr);
  EXPECT_EQ(CloneOf(printer.get()), nullptr);
}

TEST_F(Printer, IsNotClonedWithoutEachOfItsMembers) {
  for (const auto member :
       {&CPrinter::features, &CPrinter::installable_options, &CPrinter::custom_paper}) {
    const Owned<CPrinter> printer = Read(kFullPaf);
    ((*printer).*member).reset();
    EXPECT_EQ(CloneOf(printer.get()), nullptr);
  }
  for (const auto member : {&CPrinter::paf_file, &CPrinter::ppd_file}) {
    const Owned<CPrinter> printer = Read(kFullPaf);
    ((*printer).*member).reset();
    EXPECT_EQ(CloneOf(printer.get()), nullptr);
  }
  const Owned<CPrinter> printer = Read(kFullPaf);
  printer->constraints.reset();
  EXPECT_EQ(CloneOf(printer.get()), nullptr);
}

TEST_F(Printer, WithAFeatureThatCannotBeClonedIsNotCloned) {
  for (const auto member : {&CPrinter::features, &CPrinter::installable_options}) {
    const Owned<CPrinter> printer = Read(kFullPaf);
    Must(HashPut(((*printer).*member).get(), "*Bare", CreateFeature()));
    EXPECT_EQ(CloneOf(printer.get()), nullptr);
  }
}

TEST_F(Printer, FileThatCannotBeReadEndsTheProcess) {
  for (const string &path : {directory_.Path("absent.paf"), directory_.Path()}) {
    const ChildResult result = RunInChild([&path] {
      const Owned<CPrinter> printer = CreatePrinter(path.c_str());
      IgnoreResult(fFillFromPaf_Function(printer.get()), "ends the process");
    });
    EXPECT_EQ(result.status, 5) << path;
    EXPECT_EQ(result.errors, "cannot read <" + path + ">\n");
  }
}

TEST_F(Printer, CorruptFileEndsTheProcessNamingFileAndLine) {
  const struct {
    const char *text;
    const char *line;
  } rows[] = {
      {"##Name:A\n##PPD:a.ppd\n#id of something\n", "#id of something"},
      {"##Name:A\n##PPD:a.ppd\n#uio\n#end_ui", "#end_ui"},
      {"##Name:A\n##PPD:a.ppd\n#default\nvalue\n", "value"},
      {"##Name:A\n", ""},
      {"", ""},
  };
  for (const auto &row : rows) {
    const string path = directory_.Write("vek.paf", row.text);
    const ChildResult result = RunInChild([this, &row] { Read(row.text); });
    EXPECT_EQ(result.status, 5) << row.text;
    EXPECT_EQ(result.errors, "corrupted <" + path + "> <" + row.line + ">\n");
  }
}

}  // namespace
