// What nobody but its owner may learn: a PIN, an e-mail address and names that a user's settings
// add to the jobs of applications.
#include <sys/stat.h>

#include "applicationtest.h"
#include "queueppd.h"

namespace {

constexpr char kPin[] = "4711", kAddress[] = "anna@private.example";
constexpr char kJobName[] = "Dismissal", kUserName[] = "Incognito";
constexpr const char *kSecrets[] = {kPin, kAddress, kJobName, kUserName};

// Where others can look while a job is on its way and afterwards.
std::string SeenByBob(const std::string &job) {
  const std::string request =
      "{ OPERATION Get-Job-Attributes GROUP operation-attributes-tag\n"
      "ATTR charset attributes-charset utf-8 ATTR language attributes-natural-language en\n"
      "ATTR uri printer-uri $uri ATTR integer job-id " +
      job +
      " ATTR name requesting-user-name bob\n"
      "ATTR keyword requested-attributes all }\n";
  const char *printer = "ipp://%2Frun%2Fcups%2Fcups.sock/printers/lp1";
  return RunProgram({"sh", "-c", "cat /proc/[0-9]*/cmdline 2>/dev/null | tr '\\0' ' '"}, {}, "bob")
             .output +
         RunProgram({"lpstat", "-l", "-W", "all", "-o", "lp1"}, {}, "bob").output +
         RunProgram({"lpstat", "-l", "-p", "lp1"}, {}, "bob").output +
         RunProgram({"ipptool", "-tv", printer, "/dev/stdin"}, request, "bob").output;
}

class Privacy : public Applications {
 protected:
  void SetUp() override {
    if (!HasOrdinaryUsers()) GTEST_SKIP() << "no ordinary users without root";
  }

  // Anna's settings, as her print tool stores them; another `delivery` is what her dialog chooses.
  void Store(const std::string &delivery) {
    const std::string path = "/opt/orlan/data/users/anna:lp1.def";
    std::ofstream(path) << "*Delivery=" << delivery << "\n*DeliveryPIN=" << kPin
                        << "\n*EmailAddress=" << kAddress << "\n*EmailNotification=JobFailed\n"
                        << "*JobName=" << kJobName << "\n*UserName=" << kUserName << "\n";
    const passwd *anna = getpwnam("anna");
    ASSERT_EQ(chown(path.c_str(), anna->pw_uid, getgrnam("lp")->gr_gid), 0);
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
  }

  static std::string PrintAsAnna(const std::vector<std::string> &arguments) {
    std::vector<std::string> command = {"/usr/bin/lp", "-d", "lp1"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const CommandResult run = RunProgram(command, {}, "anna");
    if (run.status != 0) throw std::runtime_error("lp: " + run.output);
    const std::string start = "request id is lp1-";
    return run.output.substr(start.size(), run.output.find(' ', start.size()) - start.size());
  }

  static std::string LogOf(const char *name) {
    return ContentOf(std::string("/var/log/cups/") + name);
  }
};

std::string SayingAll() {
  std::string text = SchedulerConfiguration::Current();
  const std::string level = "LogLevel debug\n";
  return text.replace(text.find(level), level.size(), "LogLevel debug2\n");
}

TEST_F(Privacy, AStoredPinGoesWithTheDeliveryThatADialogChooses) {
  Describe();
  Store("PrintImmediately");
  PrintAsAnna({"-o", "Delivery=HoldJobUntilYouEnterPIN", pdf_});
  const std::string job = printed_.Next().value_or("");
  for (const char *command :
       {"DELIVERY=HOLDPIN", "DELIVERYPIN=\"4711\"", "EMAILADDRESS=\"anna@private.example\"",
        "JOBNAME=\"Dismissal\"", "USERNAME=\"Incognito\""}) {
    EXPECT_NE(job.find("@PJL SET " + std::string(command) + "\n"), std::string::npos)
        << command << job;
  }
  PrintAsAnna({pdf_});
  EXPECT_EQ(printed_.Next().value_or(kPin).find(kPin), std::string::npos);
}

TEST_F(Privacy, ADialogsUsualDeliveryDoesNotUndoTheUsersPin) {
  Describe();
  Store("HoldJobUntilYouEnterPIN");
  const std::string held = "@PJL SET DELIVERY=HOLDPIN\n";
  SchedulerLog log;
  // As GTK's dialog sends all options, changed or not.
  PrintAsAnna({"-o", "Delivery=PrintImmediately", "-o", "Duplex=None", pdf_});
  const std::string job = printed_.Next().value_or("");
  EXPECT_NE(job.find(held), std::string::npos) << job;
  EXPECT_NE(job.find("@PJL SET DELIVERYPIN=\"4711\"\n"), std::string::npos) << job;
  log.WaitFor("kpxfilter: the job is held for the PIN of the user");
  // What differs from the queue's default is somebody's wish.
  PrintAsAnna({"-o", "Delivery=ArchiveToDocumentServer", pdf_});
  EXPECT_NE(printed_.Next().value_or("").find("@PJL SET DELIVERY=ARCHIVE\n"), std::string::npos);
  PrintAsAnna({"-o", "*Delivery=PrintImmediately", pdf_});
  EXPECT_NE(printed_.Next().value_or("").find("@PJL SET DELIVERY=PRINT\n"), std::string::npos);
}

TEST_F(Privacy, NothingShowsWhatTheUsersSettingsAdd) {
  const SchedulerConfiguration configuration(SayingAll());
  const std::string unreachable = "127.0.0.99";
  std::string block = Block("postscript");
  const std::string address = "NETWORK_ADDRESS=127.0.0.1";
  const size_t at = block.find(address);
  ASSERT_NE(at, std::string::npos) << block;
  queue_.Append(block.replace(at, address.size(), "NETWORK_ADDRESS=" + unreachable));
  Run({kDescriptions});
  Store("HoldJobUntilYouEnterPIN");
  // More than the transport and the pipes hold, so that all wait for the printer.
  const std::string many = files_.Write(
      "many.ps", "%!PS\n0 1 200000 {dup 500 mod exch 500 idiv 1 1 rectfill} for showpage\n");
  const std::string document = files_.Path("many.pdf");
  Run({"gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=pdfwrite", "-o", document, many});
  SchedulerLog log;
  const std::string job = PrintAsAnna({"-o", "Duplex=DuplexTumble", document});
  log.WaitFor("cannot reach " + unreachable);
  // Every program that has part in it is there to be seen.
  const Deadline deadline(EventPatience());
  std::string meanwhile = SeenByBob(job);
  while (meanwhile.find("/usr/bin/pdftops ") == std::string::npos && deadline.Left() > 0) {
    meanwhile += SeenByBob(job);
  }
  RunProgram({"cancel", "lp1-" + job});
  log.WaitFor("[Job " + job + "] Unloading");
  const std::string all =
      meanwhile + SeenByBob(job) + log.Text() + LogOf("page_log") + LogOf("access_log");
  for (const char *seen : {"/opt/orlan/bin/kpxfilter ", "/usr/bin/pdftops ",
                           "kpxnbtrans "
                           "127.0.0.99",
                           "DuplexTumble", "job-state (enum) = processing"}) {
    EXPECT_NE(meanwhile.find(seen), std::string::npos) << "did not look at " << seen << meanwhile;
  }
  for (const char *secret : kSecrets) {
    const size_t found = all.find(secret);
    EXPECT_EQ(found, std::string::npos) << secret << " in\n"
                                        << all.substr(found < 200 ? 0 : found - 200, 400);
  }
}

// Why dialogs are not given fields for them (D-spooler-13): the spooler hands a job's options to
// its programs as arguments, which everybody sees, and to whoever asks for the job's attributes.
TEST_F(Privacy, TheSpoolerWouldShowWhatADialogAsksFor) {
  Describe();
  const SchedulerConfiguration configuration(SayingAll());
  std::string ppd = ContentOf("/etc/cups/ppd/lp1.ppd");
  ppd +=
      "*OpenUI *OwnPIN/PIN: PickOne\n*DefaultOwnPIN: None\n*OwnPIN None/None: \"\"\n"
      "*CloseUI: *OwnPIN\n*CustomOwnPIN True: \"\"\n"
      "*ParamCustomOwnPIN Text/PIN: 1 passcode 4 4\n";
  Run({"/usr/sbin/lpadmin", "-p", "lp1", "-P", files_.Write("asks.ppd", ppd)});
  ASSERT_NE(RunProgram({"lpoptions", "-p", "lp1", "-l"}).output.find("Custom.PASSCODE"),
            std::string::npos);
  SchedulerLog log;
  const std::string job = PrintAsAnna({"-o", "OwnPIN=Custom.4711", pdf_});
  ASSERT_TRUE(printed_.Next());
  EXPECT_NE(SeenByBob(job).find("OwnPIN (nameWithoutLanguage) = Custom.4711"), std::string::npos);
  EXPECT_NE(log.Text().find("OwnPIN=Custom.4711"), std::string::npos);
}

TEST_F(Privacy, NoDialogAsksForASecret) {
  for (const auto &model : std::filesystem::directory_iterator("/opt/orlan/data/nls/enu/ppds")) {
    const kpx::filter::QueuePpd ppd =
        kpx::filter::MakeQueuePpd({ContentOf(model.path()), "postscript", {}, {}});
    for (const char *kind : {"passcode", "password"}) {
      EXPECT_EQ(ppd.text.find(std::string(" 1 ") + kind), std::string::npos) << model.path();
    }
    for (const char *name : {"DeliveryPIN", "EmailAddress", "JobName", "UserName"}) {
      EXPECT_EQ(ppd.text.find("*ParamCustom" + std::string(name)), std::string::npos)
          << model.path();
    }
    EXPECT_NE(ppd.text.find("*Delivery HoldJobUntilYouEnterPIN"), std::string::npos)
        << model.path();
  }
}

}  // namespace
