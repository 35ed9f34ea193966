// Models that take their data by LPD or IPP: a job arrives once, and faults are told in plain
// words.
#include <gtest/gtest.h>

#include <fstream>

#include "adminsession.h"
#include "models.h"
#include "must.h"
#include "networkprinter.h"
#include "privateworld.h"

namespace fs = std::filesystem;

namespace {

constexpr char kBackend[] = "/opt/orlan/bin/kpxbackend";
constexpr char kQueue[] = "carried";
// Without job control, which the stand-in for IPP takes for no PostScript.
constexpr char kPpd[] = KPX_TEST_DATA "/data/ppd/copier.ppd";
constexpr char kPrinter[] = "Example Copier 300";
constexpr char kDocument[] = "%!PS\nshowpage\n";
constexpr int kPort = 5150;
constexpr char kPortText[] = "5150";
constexpr char kLpdPrinter[] = KPX_TEST_DATA "/support/lpdprinter";
constexpr char kIppPrinter[] = KPX_TEST_DATA "/support/ippprinter";

// A queue of a model with the transport, on the port of the tests; gone with this.
class CarriedQueue {
 public:
  CarriedQueue(const std::string &transport, const std::string &address)
      : model_(kPrinter, {kPpd, "--transport", transport, "--port", kPortText}) {
    LoadCatalogues();
    LoadQueues(nullptr);
    Must(AddQueueToSession(kQueue, "postscript", kPrinter, address) ? 1 : 0);
    Must(SaveSession() == 0 ? 1 : 0);
  }
  ~CarriedQueue() {
    LoadCatalogues();
    LoadQueues(nullptr);
    DeleteQueueInSession(kQueue);
    SaveSession();
  }
  CarriedQueue(const CarriedQueue &) = delete;
  CarriedQueue &operator=(const CarriedQueue &) = delete;

  // The number of the job.
  static std::string Print() {
    const CommandResult lp = RunProgram(
        {"/usr/bin/lp", "-d", kQueue, "-t", "A title", "-o", "*Duplex=DuplexNoTumble"}, kDocument);
    const std::string start = "request id is carried-";
    if (!lp.output.starts_with(start)) throw std::runtime_error("lp: " + lp.output);
    return lp.output.substr(start.size(), lp.output.find(' ', start.size()) - start.size());
  }

 private:
  AddedTestModel model_;
};

// What kpxbackend says and ends with when it sends to a printer.
CommandResult Carry(const std::string &address, const std::string &backend) {
  const char *user = HasOrdinaryUsers() ? "lp" : nullptr;
  return RunProgram({kBackend, address, kPortText, backend}, kDocument, user);
}

class Transports : public testing::Test {
 protected:
  Transports() {
    RequirePrivateWorld();
    setenv("LANG", "C", 1);
  }
};

// For its lifetime CUPS's backend is a program that says and does what it is told.
class StandInBackend {
 public:
  StandInBackend(const std::string &says, int status) : before_(ContentOf(kPath)) {
    fs::remove(kPath);
    std::ofstream(kPath) << "#!/bin/sh\ncat >/dev/null\ncat >&2 <<'EOF'\n"
                         << says << "EOF\nexit " << status << "\n";
    fs::permissions(kPath, fs::perms(0755));
  }
  ~StandInBackend() {
    std::ofstream(kPath) << before_;
    fs::permissions(kPath, fs::perms(0755));
  }
  StandInBackend(const StandInBackend &) = delete;
  StandInBackend &operator=(const StandInBackend &) = delete;

 private:
  static constexpr char kPath[] = "/usr/lib/cups/backend/ipp";
  std::string before_;
};

TEST_F(Transports, FaultsHaveOurStatusesAndWords) {
  struct Row {
    std::string says;
    int backend_status;
    int status;
    std::string words;
  };
  for (const Row &row : std::vector<Row>{
           {"INFO: Printing page 1\n", 0, 0, "kpxbackend: Printing page 1"},
           {"STATE: +media-empty-error\nDEBUG: secret\n", 0, 0, "the printer says: out of paper"},
           {"STATE: +toner-low\nSTATE: -toner-low\n", 0, 0, "ready again"},
           {"STATE: +media-jam-error,cover-open\n", 4, 129, "the printer says: paper jam"},
           {"STATE: +connecting-to-device\n", 1, 75, "took nothing of the job"},
           {"ERROR: Unable to add document to print job.\n", 0, 69, "refused the job"},
           {"DEBUG: job-state enum aborted\n", 0, 76, "cancelled at the printer"},
           {"STATE: +connecting-to-device\nSTATE: -connecting-to-device\n", 1, 76,
            "may have been printed"},
           {"ERROR: Try again later\n", 6, 75, "Try again later"},
           {"", 7, 75, "took nothing of the job"},
           {"", 2, 69, "a user name and a password"},
           {"", 3, 76, "may have been printed"}}) {
    const StandInBackend backend(row.says, row.backend_status);
    const CommandResult result = RunProgram({kBackend, "printer.example", "631", "ipp"}, "data");
    EXPECT_EQ(result.status, row.status) << row.says << result.output;
    EXPECT_NE(result.output.find(row.words), std::string::npos) << row.says << result.output;
    EXPECT_EQ(result.output.find("secret"), std::string::npos) << result.output;
  }
  for (const std::vector<std::string> &words : {std::vector<std::string>{kBackend},
                                                {kBackend, "host", "631", "pigeon"},
                                                {kBackend, "host", "many", "ipp"},
                                                {kBackend, "", "631", "ipp"}}) {
    EXPECT_EQ(RunProgram(words, "data").status, 64);
  }
}

// A job comes once, whole, with its title and owner.
void ExpectPrinted(const std::string &transport, const std::string &address,
                   NetworkPrinter &printer) {
  const CarriedQueue queue(transport, address);
  SchedulerLog log;
  const std::string number = CarriedQueue::Print();
  const std::string job = printer.Next();
  EXPECT_NE(job.find("%%BeginFeature: *Duplex DuplexNoTumble"), std::string::npos) << job;
  EXPECT_NE(job.find("showpage"), std::string::npos) << job;
  log.WaitFor("[Job " + number + "] Job completed.");
  EXPECT_FALSE(printer.HasMore());
  const std::string control = ContentOf(printer.Path("job-0001.control"));
  EXPECT_NE(control.find("A title"), std::string::npos) << control;
  EXPECT_NE(control.find("root"), std::string::npos) << control;
}

TEST_F(Transports, LpdBringsAJobOnce) {
  NetworkPrinter printer(kPort, kLpdPrinter);
  ExpectPrinted("lpd", "127.0.0.1/raw", printer);
}

TEST_F(Transports, IppBringsAJobOnce) {
  NetworkPrinter printer(kPort, kIppPrinter);
  ExpectPrinted("ipp", "127.0.0.1", printer);
}

TEST_F(Transports, IppsBringsAJobOnce) {
  NetworkPrinter printer(kPort, kIppPrinter);
  ExpectPrinted("ipps", "localhost/ipp/print", printer);
}

TEST_F(Transports, AJobWaitsForAPrinterThatIsOff) {
  for (const auto &[transport, program] : {std::pair{"lpd", kLpdPrinter}, {"ipp", kIppPrinter}}) {
    const CarriedQueue queue(transport, "127.0.0.1");
    SchedulerLog log;
    const std::string number = CarriedQueue::Print();
    log.WaitFor("kpxbackend: cannot reach 127.0.0.1 port 5150");
    NetworkPrinter printer(kPort, program);
    EXPECT_NE(printer.Next().find("showpage"), std::string::npos) << transport;
    log.WaitFor("[Job " + number + "] Job completed.");
    EXPECT_FALSE(printer.HasMore()) << transport;
  }
}

TEST_F(Transports, FaultsOfPrintersAreTold) {
  struct Row {
    const char *transport, *program, *fault;
    int status;
    std::string words;
  };
  for (const Row &row :
       std::vector<Row>{{"lpd", kLpdPrinter, "queue", 69, "127.0.0.1 refused the job"},
                        {"lpd", kLpdPrinter, "data", 69, "127.0.0.1 refused the job"},
                        {"lpd", kLpdPrinter, "gone", 76, "may have been printed"},
                        {"ipp", kIppPrinter, "format", 69, "127.0.0.1 refused the job"},
                        {"ipp", kIppPrinter, "jam", 0, "the printer says: paper jam"},
                        {"ipp", kIppPrinter, "job", 76, "parts of it may have been printed"}}) {
    NetworkPrinter printer(kPort, row.program, {"--fail", row.fault});
    const CommandResult result = Carry("127.0.0.1", row.transport);
    EXPECT_EQ(result.status, row.status) << row.fault << ": " << result.output;
    EXPECT_NE(result.output.find(row.words), std::string::npos) << row.fault << result.output;
  }
}

TEST_F(Transports, AnUnknownHostIsToldAndTheJobWaits) {
  for (const char *transport : {"lpd", "ipp"}) {
    const CarriedQueue queue(transport, "no-such-host.invalid");
    SchedulerLog log;
    CarriedQueue::Print();
    log.WaitFor("(cannot look up the name no-such-host.invalid)");
  }
}

}  // namespace
