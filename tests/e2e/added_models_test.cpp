// kpxctl model: printers of other makers, from the PPD file to the page.
#include <gtest/gtest.h>

#include <fstream>

#include "addedmodels.h"
#include "adminsession.h"
#include "cprinter.h"
#include "globals.h"
#include "installation.h"
#include "models.h"
#include "networkprinter.h"
#include "paths.h"
#include "printermodels.h"
#include "privateworld.h"
#include "queuelistkeep.h"

namespace fs = std::filesystem;

namespace {

constexpr int kRawPort = 9100;

std::string Added(const std::string &name) {
  return CatalogueText("CTL_MODEL_ADDED", {name}) + "\n";
}

int CountOfPrinters() {
  int count = 0;
  for ([[maybe_unused]] const auto &printer : Pairs<CPrinter>(G_Printers_hash)) ++count;
  return count;
}

// Every file below the places where models have theirs, with a number for its content.
std::map<std::string, size_t> FilesOfModels() {
  std::map<std::string, size_t> files;
  for (const char *root : {kModelsDir, kSpoolModelsDir}) {
    if (!fs::exists(root)) continue;
    for (const auto &entry : fs::recursive_directory_iterator(root)) {
      if (entry.is_regular_file())
        files[entry.path()] = std::hash<std::string>()(ContentOf(entry.path()));
    }
  }
  return files;
}

class AddedModels : public testing::Test {
 protected:
  AddedModels() {
    RequirePrivateWorld();
    setenv("LANG", "C", 1);
  }
  // Makes a queue of the model as the administration does.
  static void MakeQueue(const std::string &name, const std::string &printer) {
    LoadCatalogues();
    LoadQueues(nullptr);
    ASSERT_TRUE(AddQueueToSession(name, "postscript", printer, "127.0.0.1"));
    ASSERT_EQ(SaveSession(), 0u);
  }
  static void DeleteQueue(const std::string &name) {
    LoadCatalogues();
    LoadQueues(nullptr);
    DeleteQueueInSession(name);
    ASSERT_EQ(SaveSession(), 0u);
  }
};

TEST_F(AddedModels, AreAddedOnceAndListed) {
  EXPECT_EQ(Kpxctl({"model", "list"}).output, CatalogueText("CTL_MODEL_NONE") + "\n");
  const AddedTestModel model(kForeignPrinter, {kForeignPpd});
  EXPECT_EQ(model.Said(), Added(kForeignPrinter));
  const auto files = FilesOfModels();
  const CommandResult again = Kpxctl({"model", "add", kForeignPpd});
  EXPECT_EQ(again.status, 0);
  EXPECT_EQ(again.output, CatalogueText("CTL_MODEL_THERE", {kForeignPrinter}) + "\n");
  EXPECT_EQ(FilesOfModels(), files);
  EXPECT_EQ(Kpxctl({"model", "list"}).output, std::string(kForeignPrinter) + "\n");
}

TEST_F(AddedModels, LeaveNothingBehind) {
  const auto before = FilesOfModels();
  { const AddedTestModel model(kForeignPrinter, {kForeignPpd}); }
  EXPECT_EQ(FilesOfModels(), before);
}

TEST_F(AddedModels, StandInTheCatalogueOfEachLanguage) {
  const AddedTestModel model(kForeignPrinter, {kForeignPpd});
  for (const char *lang : {"C", "de_DE.UTF-8", "de_DE", "pt_BR.UTF-8"}) {
    setenv("LANG", lang, 1);
    LoadCatalogues();
    EXPECT_NE(HashFind(G_Printers_hash, kForeignPrinter), nullptr) << lang;
    EXPECT_EQ(CountOfPrinters(), 7) << lang;
  }
  EXPECT_STREQ(FindPrinterModel(kForeignPrinter).spooler_model, "ppd-hp-laserjet-5000-series-ps");
  EXPECT_STREQ(FindPrinterModel("HP LaserJet 5000 Series PS 2").spooler_model, "Unknown_printer");
}

TEST_F(AddedModels, PrintOverTheRawPort) {
  const AddedTestModel model(kForeignPrinter, {kForeignPpd});
  MakeQueue("foreign", kForeignPrinter);
  NetworkPrinter printer(kRawPort);
  PrinterJobs others;
  const CommandResult lp = RunProgram(
      {"/usr/bin/lp", "-d", "foreign", "-o", "*Duplex=DuplexNoTumble"}, "%!PS\nshowpage\n");
  EXPECT_EQ(lp.status, 0) << lp.output;
  const std::string job = printer.Next();
  EXPECT_NE(job.find("%%BeginFeature: *Duplex DuplexNoTumble"), std::string::npos) << job;
  EXPECT_NE(job.find("@PJL ENTER LANGUAGE"), std::string::npos) << job;
  // The maker's own commands are for its printers.
  EXPECT_EQ(job.find("JOBNAME"), std::string::npos) << job;
  EXPECT_EQ(job.find("USERNAME"), std::string::npos) << job;
  EXPECT_FALSE(printer.HasMore());
  EXPECT_FALSE(others.HasMore());
  DeleteQueue("foreign");
}

TEST_F(AddedModels, GetTrueAndFalseAsTheJobSaysThem) {
  const AddedTestModel model("Example Copier 300", {KPX_TEST_DATA "/data/ppd/copier.ppd"});
  MakeQueue("foreign", "Example Copier 300");
  NetworkPrinter printer(kRawPort);
  const auto printed = [&](const std::vector<std::string> &words) {
    std::vector<std::string> command = {"/usr/bin/lp", "-d", "foreign"};
    for (const std::string &word : words) command.insert(command.end(), {"-o", word});
    const CommandResult lp = RunProgram(command, "%!PS\nshowpage\n");
    EXPECT_EQ(lp.status, 0) << lp.output;
    return printer.Next();
  };
  EXPECT_NE(printed({"*TonerSave=True"}).find("Economode true"), std::string::npos);
  EXPECT_NE(printed({"TonerSave=True"}).find("Economode true"), std::string::npos);
  EXPECT_NE(printed({"TonerSave=True", "*TonerSave=False"}).find("Economode false"),
            std::string::npos);
  DeleteQueue("foreign");
}

TEST_F(AddedModels, StayWhileAQueueUsesThem) {
  const AddedTestModel model(kForeignPrinter, {kForeignPpd});
  MakeQueue("foreign", kForeignPrinter);
  const auto files = FilesOfModels();
  for (const std::vector<std::string> &words :
       {std::vector<std::string>{"model", "remove", kForeignPrinter},
        {"model", "add", kForeignPpd, "--port", "9101"}}) {
    const CommandResult refused = Kpxctl(words);
    EXPECT_EQ(refused.status, 3) << words[1];
    EXPECT_NE(refused.output.find("foreign"), std::string::npos) << refused.output;
    EXPECT_EQ(FilesOfModels(), files) << words[1];
  }
  DeleteQueue("foreign");
  EXPECT_EQ(Kpxctl({"model", "remove", kForeignPrinter}).status, 0);
}

TEST_F(AddedModels, OfOneNameAreToldApart) {
  const AddedTestModel model(kForeignPrinter, {kForeignPpd});
  const TemporaryDirectory directory;
  const std::string other = directory.Write("other.ppd", ContentOf(kForeignPpd) + "*% another\n");
  const std::string name = std::string(kForeignPrinter) + " (2)";
  const AddedTestModel second(name, {other});
  EXPECT_EQ(second.Said(),
            CatalogueText("CTL_MODEL_NAME_TAKEN", {kForeignPrinter, name}) + "\n" + Added(name));
  const AddedTestModel third("Vek Norvel 4120ES (2)",
                             {std::string(kNlsDir) + "/enu/ppds/vek41201.ppd"});
  LoadCatalogues();
  EXPECT_EQ(CountOfPrinters(), 9);
  EXPECT_STREQ(FindPrinterModel("Vek Norvel 4120ES (2)").spooler_model, "ppd-vek-norvel-4120es-2");
  EXPECT_STREQ(FindPrinterModel("Vek Norvel 4120ES").spooler_model, "vek4120");
}

TEST_F(AddedModels, KeepTheTranslationsThatTheirPpdHas) {
  const TemporaryDirectory directory;
  std::string ppd = ContentOf(kForeignPpd);
  const std::string ui = "*OpenUI *Duplex";
  ASSERT_NE(ppd.find(ui), std::string::npos);
  ppd.insert(ppd.find(ui),
             "*cupsLanguages: \"de\"\n*de.Translation Duplex/Beidseitig für alle: \"\"\n"
             "*de.Duplex None/Ausgeschaltet: \"\"\n");
  const AddedTestModel model(kForeignPrinter, {directory.Write("german.ppd", ppd)});
  const std::string id = "ppd-hp-laserjet-5000-series-ps";
  EXPECT_NE(ContentOf(AddedModelPafPath(id, "deu/utf8")).find("\nBeidseitig für alle\n"),
            std::string::npos);
  EXPECT_NE(ContentOf(AddedModelPafPath(id, "deu")).find("\nBeidseitig f\xFCr alle\n"),
            std::string::npos);
  EXPECT_NE(ContentOf(AddedModelPpdPath(id, "deu")).find("*Duplex None/Ausgeschaltet:"),
            std::string::npos);
  EXPECT_EQ(ContentOf(AddedModelPafPath(id, "enu")).find("Beidseitig"), std::string::npos);
}

// ISO-8859-1 has control characters where Windows-1252 has signs, and files that say the one are in
// the other. What stands in quotation marks is the printer's code.
TEST_F(AddedModels, HaveNoControlCharactersForTheSignsOfWindows) {
  const TemporaryDirectory directory;
  std::string ppd = ContentOf(kForeignPpd);
  ASSERT_NE(ppd.find("*LanguageEncoding: ISOLatin1"), std::string::npos);
  const std::string ui = "*OpenUI *Duplex";
  ASSERT_NE(ppd.find(ui), std::string::npos);
  ppd.insert(ppd.find(ui),
             "*OpenUI *Unit/Unit\351 d\222Alimentation \223A\224\205: PickOne\n*DefaultUnit: No\n"
             "*Unit No/Non\231: \"(\222) pop\"\n*Unit Yes/Oui: \"\"\n*CloseUI: *Unit\n");
  const AddedTestModel model(kForeignPrinter, {directory.Write("windows.ppd", ppd)});
  const std::string id = "ppd-hp-laserjet-5000-series-ps";
  EXPECT_NE(ContentOf(AddedModelPafPath(id, "fra")).find("\nUnit\351 d'Alimentation 'A'...\n"),
            std::string::npos);
  EXPECT_NE(ContentOf(AddedModelPafPath(id, "enu")).find("\nUnité d'Alimentation 'A'...\n"),
            std::string::npos);
  EXPECT_NE(ContentOf(AddedModelPpdPath(id, "fra")).find("*Unit No/Non(TM): \"(\222) pop\"\n"),
            std::string::npos);
}

TEST_F(AddedModels, UnusableFilesAreRefusedWithTheReason) {
  const TemporaryDirectory directory;
  const auto before = FilesOfModels();
  const auto refused = [&](const std::vector<std::string> &words, int status,
                           const std::string &reason) {
    const CommandResult result = Kpxctl(words);
    EXPECT_EQ(result.status, status) << result.output;
    EXPECT_NE(result.output.find(reason), std::string::npos) << result.output;
    EXPECT_EQ(FilesOfModels(), before);
  };
  refused({"model", "add", directory.Write("text.ppd", "no PPD\n")}, 1, "text.ppd: line 1");
  refused({"model", "add", directory.Path("missing.ppd")}, 1, "missing.ppd");
  refused({"model", "add", "/usr/share/ppd/hp-ppd/HP/HP_DeskJet_990C.ppd"}, 1, "cupsomatic");
  refused({"model", "add", kForeignPpd, "--port", "70000"}, 2, "70000");
  refused({"model", "add", kForeignPpd, "--transport", "pigeon"}, 2, "pigeon");
  refused({"model", "add"}, 2, "FILE");
  refused({"model", "remove", "no such"}, 1, "no such");
  refused({"model", "ad", kForeignPpd}, 2, "model ad");
  refused({"model", "add", kForeignPpd, "--dry-run"}, 0, kForeignPrinter);
}

TEST_F(AddedModels, OneAdministratorAtATimeChangesThem) {
  const ChildResult child = RunInChild([] {
    if (LockQueueList(kQueuesFile) != 1) _exit(9);
    const CommandResult refused = Kpxctl({"model", "add", kForeignPpd});
    _exit(refused.status);
  });
  EXPECT_EQ(child.status, 3);
  if (HasOrdinaryUsers()) {
    EXPECT_EQ(RunProgram({"/usr/sbin/kpxctl", "model", "add", kForeignPpd}, "", "anna").status, 1);
  }
  EXPECT_FALSE(fs::exists(AddedModelPath("ppd-hp-laserjet-5000-series-ps")));
}

TEST_F(AddedModels, ThatCannotBeReadAreToldAndLeftOut) {
  const AddedTestModel model(kForeignPrinter, {kForeignPpd});
  const std::string id = "ppd-hp-laserjet-5000-series-ps";
  std::ofstream(AddedModelPath(id)) << "name=\n";
  LoadCatalogues();
  EXPECT_EQ(CountOfPrinters(), 6);
  EXPECT_EQ(Kpxctl({"model", "list"}).status, 1);
  EXPECT_EQ(Kpxctl({"model", "remove", id}).status, 0);
  EXPECT_EQ(Kpxctl({"model", "list"}).output, CatalogueText("CTL_MODEL_NONE") + "\n");
}

TEST_F(AddedModels, GetTheirFilesBackByAnUpdate) {
  const AddedTestModel model(kForeignPrinter, {kForeignPpd});
  const auto files = FilesOfModels();
  const std::string id = "ppd-hp-laserjet-5000-series-ps";
  fs::remove(AddedModelPafPath(id, "deu/utf8"));
  fs::remove(AddedModelInterfacePath(id));
  EXPECT_EQ(Kpxctl({"model", "update"}).status, 0);
  EXPECT_EQ(FilesOfModels(), files);
}

TEST_F(AddedModels, AreFoundAmongThoseOfCups) {
  const CommandResult found = Kpxctl({"model", "search", "HP", "laserjet_9050-ps"});
  EXPECT_EQ(found.status, 0);
  const std::string name = found.output.substr(0, found.output.find(' '));
  ASSERT_NE(name.find("hp-laserjet_9050-ps"), std::string::npos) << found.output;
  const CommandResult added = Kpxctl({"model", "add", "--from-cups", name, "--json"});
  EXPECT_EQ(added.status, 0) << added.output;
  EXPECT_NE(added.output.find("\"pages-a-minute\": 50"), std::string::npos) << added.output;
  EXPECT_EQ(Kpxctl({"model", "remove", "HP LaserJet 9050 Postscript (recommended)"}).status, 0);
  EXPECT_EQ(Kpxctl({"model", "search", "no", "such", "printer"}).output,
            CatalogueText("CTL_CUPS_NOTHING") + "\n");
}

}  // namespace
