// The printer catalogue: which files it loads, under which names, and the installed printers.
#include "cprinters.h"

#include <gtest/gtest.h>

#include "childprocess.h"
#include "coresupport.h"
#include "cprinter.h"
#include "ignoreresult.h"
#include "must.h"
#include "pafsupport.h"
#include "standinfilter.h"
#include "temporarydirectory.h"

namespace {

using std::string;
using Strings = std::vector<string>;

constexpr char kMessages[] =
    "#ERR_UNABLE_TO_READ_DIR\nno directory <%s>\n"
    "#ERR_FILE_CORRUPTED\ncorrupted <%s> <%s>\n";

const char *Get(const CString *text) { return fGet_CString_Value_Function(text); }

TEST(Catalogue, HoldsBothPathsAndNoPrintersWhenNew) {
  const Owned<CPrinters> catalogue = CreatePrinters("/ppds", "/pafs");
  EXPECT_EQ(ClassIdOf(catalogue.get()), 290);
  EXPECT_STREQ(CPrinters::Ops()->Class_Name(), "CPrinters");
  EXPECT_STREQ(Get(catalogue->ppd_directory.get()), "/ppds");
  EXPECT_STREQ(Get(catalogue->paf_directory.get()), "/pafs");
  EXPECT_EQ(fGetPrinters_Function(catalogue.get()), nullptr);
}

TEST(Catalogue, IsNotMadeWithoutAPath) {
  EXPECT_EQ(CreatePrinters(nullptr, "/pafs"), nullptr);
  EXPECT_EQ(CreatePrinters("/ppds", nullptr), nullptr);
}

TEST(Catalogue, MissingRecordHasNoPrinters) {
  EXPECT_EQ(fGetPrinters_Function(nullptr), nullptr);
  EXPECT_EQ(fBuildPrinters_Function(nullptr), 0);
  EXPECT_EQ(fClone_CPrinters_Function(nullptr), nullptr);
  EXPECT_EQ(fDelete_CPrinters_Function(nullptr), 1);
}

class Catalogued : public testing::Test {
 protected:
  CHash *Build() {
    catalogue_ = CreatePrinters(ppds_.Path().c_str(), pafs_.Path().c_str());
    EXPECT_EQ(fBuildPrinters_Function(catalogue_.get()), 1);
    return fGetPrinters_Function(catalogue_.get());
  }

  static string Paf(const string &name) { return "##Name:" + name + "\n##PPD:a.ppd\n"; }

  ProgramMessages messages_{kMessages};
  TemporaryDirectory ppds_;
  TemporaryDirectory pafs_;
  Owned<CPrinters> catalogue_;
};

TEST_F(Catalogued, EmptyDirectoriesGiveAnEmptyCatalogue) {
  const CHash *printers = Build();
  ASSERT_NE(printers, nullptr);
  EXPECT_TRUE(HashIsEmpty(printers));
}

TEST_F(Catalogued, OnlyPafNamesThatBeginWithTheMakersPrefixAreLoaded) {
  pafs_.Write("vek1.paf", Paf("One"));
  pafs_.Write("vek2.paf.old", Paf("Two"));  // the second piece of the name decides
  pafs_.Write("other.paf", Paf("Other"));
  pafs_.Write("Vek3.paf", Paf("Three"));
  pafs_.Write("vek4.PAF", Paf("Four"));
  pafs_.Write("vek5.old.paf", Paf("Five"));
  pafs_.Write("messages.paf", "#AllocMemoryError\nno memory\n");
  pafs_.Write("vek6", "not a description");
  EXPECT_EQ(Keys(Build()), (Strings{"One", "Two"}));
}

TEST_F(Catalogued, APrinterIsFiledUnderItsNameWithItsContent) {
  pafs_.Write("vek1.paf", kFullPaf);
  const CPrinter *printer = HashValue<CPrinter>(Build(), "Vek Norvel 4120");
  ASSERT_NE(printer, nullptr);
  EXPECT_STREQ(Get(fGetPpdFile_Function(printer)), "vek41201.ppd");
  EXPECT_EQ(ShownConstraints(fGetConstraints_Function(printer)),
            "constraint <*PageSize> <A4> <*OptionHCF> <True>\n");
}

TEST_F(Catalogued, OfPrintersWithOneNameTheOneReadLastStays) {
  for (const char *file : {"vek3.paf", "vek1.paf", "vek4.paf", "vek2.paf"}) {
    pafs_.Write(file, Paf("Same"));
  }
  // A directory that nobody writes to yields its entries in the same order each time.
  string last;
  for (const auto &entry : std::filesystem::directory_iterator(pafs_.Path())) last = entry.path();
  const CHash *printers = Build();
  EXPECT_EQ(Keys(printers), Strings{"Same"});
  EXPECT_EQ(Get(HashValue<CPrinter>(printers, "Same")->paf_file.get()), last);
}

TEST_F(Catalogued, BuiltAgainHoldsOnlyWhatIsThere) {
  pafs_.Write("vek1.paf", Paf("One"));
  Build();
  std::filesystem::remove(pafs_.Path("vek1.paf"));
  EXPECT_EQ(fBuildPrinters_Function(catalogue_.get()), 1);
  EXPECT_TRUE(HashIsEmpty(fGetPrinters_Function(catalogue_.get())));
}

TEST_F(Catalogued, CorruptFileEndsTheProcess) {
  pafs_.Write("vek1.paf", "##Name:One\n");
  const ChildResult result = RunInChild([this] { Build(); });
  EXPECT_EQ(result.status, 5);
  EXPECT_EQ(result.errors, "corrupted <" + pafs_.Path("vek1.paf") + "> <>\n");
}

TEST_F(Catalogued, MissingPafDirectoryEndsTheProcess) {
  const ChildResult result = RunInChild([this] {
    const auto catalogue = CreatePrinters(ppds_.Path().c_str(), pafs_.Path("absent").c_str());
    IgnoreResult(fBuildPrinters_Function(catalogue.get()), "ends the process");
  });
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.errors, "no directory <" + pafs_.Path("absent") + ">\n");
}

TEST_F(Catalogued, PafDirectoryThatIsGoneAfterTheConversionEndsTheProcess) {
  StandInFilter filter;
  filter.PutText("#!/bin/sh\nexec rmdir \"${4%/*}\"\n");
  ppds_.Write("vek1.ppd", "");
  const ChildResult result = RunInChild([this] { Build(); });
  EXPECT_EQ(result.status, 7);
  EXPECT_EQ(result.errors, "no directory <" + pafs_.Path() + ">\n");
}

TEST_F(Catalogued, APpdIsConvertedAndLoadedInOneStart) {
  StandInFilter filter;
  filter.PutText(kCopyingFilter);
  setenv("KPX_CONVERTED", "/dev/null", 1);
  ppds_.Write("vek1.ppd", "##Name:One\n##PPD:vek1.ppd\n");
  ppds_.Write("other.ppd", "##Name:Other\n##PPD:other.ppd\n");
  EXPECT_EQ(Keys(Build()), Strings{"One"});
  EXPECT_EQ(NamesIn(pafs_.Path()), (Strings{"other.paf", "vek1.paf"}));
}

TEST_F(Catalogued, CloneHasClonesOfThePrinters) {
  pafs_.Write("vek1.paf", kFullPaf);
  pafs_.Write("vek2.paf", Paf("Bare"));  // without custom paper it cannot be cloned
  CHash *printers = Build();
  const Owned<CPrinters> clone = CloneOf(catalogue_.get());
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(Get(clone->ppd_directory.get()), ppds_.Path());
  EXPECT_EQ(Get(clone->paf_directory.get()), pafs_.Path());
  const CHash *cloned = fGetPrinters_Function(clone.get());
  EXPECT_EQ(Keys(cloned), (Strings{"Bare", "Vek Norvel 4120"}));
  EXPECT_EQ(HashFind(cloned, "Bare"), nullptr);
  ASSERT_NE(HashFind(cloned, "Vek Norvel 4120"), nullptr);
  EXPECT_NE(HashFind(cloned, "Vek Norvel 4120"), HashFind(printers, "Vek Norvel 4120"));
}

TEST_F(Catalogued, CloneOfACatalogueThatIsNotBuiltHasNoPrinters) {
  catalogue_ = CreatePrinters("/ppds", "/pafs");
  const Owned<CPrinters> clone = CloneOf(catalogue_.get());
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(fGetPrinters_Function(clone.get()), nullptr);
}

constexpr char kInstalledPpds[] = "/opt/orlan/data/nls/enu/ppds";

TEST_F(Catalogued, TheInstalledFilterConvertsEveryInstalledPpdOnce) {
  RequirePrivateWorld();
  const Strings ppds = NamesIn(kInstalledPpds);
  ASSERT_FALSE(ppds.empty());
  catalogue_ = CreatePrinters(kInstalledPpds, pafs_.Path().c_str());
  Must(fBuildPrinters_Function(catalogue_.get()));
  const CHash *printers = fGetPrinters_Function(catalogue_.get());
  EXPECT_EQ(Keys(printers).size(), ppds.size());
  for (const auto [name, printer] : Pairs<CPrinter>(printers)) {
    EXPECT_FALSE(HashIsEmpty(fGetFeatures_Function(printer))) << name;
    EXPECT_NE(CloneOf(printer), nullptr) << name;
  }
  for (const string &paf : NamesIn(pafs_.Path())) {
    std::filesystem::last_write_time(pafs_.Path(paf), {});
  }
  Must(fBuildPrinters_Function(catalogue_.get()));
  for (const string &paf : NamesIn(pafs_.Path())) {
    EXPECT_EQ(std::filesystem::last_write_time(pafs_.Path(paf)), std::filesystem::file_time_type())
        << paf << " was converted again";
  }
}

}  // namespace
