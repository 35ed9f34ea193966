// Five questions that users of print queues ask, each answered in the job window within two
// actions: a click on the job, and one on "Why?". The programs of the queues are the installed
// ones.
#include <sys/socket.h>

#include "changedfile.h"
#include "interfacescript.h"
#include "jobstest.h"
#include "loopback.h"
#include "must.h"
#include "paths.h"

namespace {

constexpr char kSnmpget[] = "/usr/bin/snmpget";

class Questions : public Jobs {
 protected:
  // A queue for a printer at the address, with these lines among its settings.
  void MakeQueue(const std::string &name, const std::string &address,
                 const std::string &settings = "") {
    ASSERT_EQ(0, RunProgram({KPX_MAKEQUEUES, name + "=postscript=Vek Norvel 4110ES"}).status);
    Must(ChangeAddressInInterface(name.c_str(), address.c_str(), nullptr));
    std::ofstream(std::string(kDataDir) + "/" + name + ".def", std::ios::app) << settings;
    name_ = name;
  }

  ~Questions() override {
    if (!name_.empty()) RunProgram({"/usr/lib/lpadmin", "-x", name_});
  }

  void Print(const std::string &document) const {
    ASSERT_EQ(0, RunProgram({"/usr/bin/lp", "-d", name_, "-t", "letter"}, document).status);
  }

  // The first action, and what the window says then below its lists.
  static void ExpectAnswer(JobsApp &app, const std::string &answer) {
    app.WaitRow("JobsClist", "letter");
    app.Select("JobsClist", "letter");
    app.WaitUntil("the answer " + answer, [&] { return app.Text("ReasonLabel") == answer; });
  }

  // The second one: all steps.
  static std::string Explanation(JobsApp &app) {
    app.Click("WhyButton");
    app.WaitWindow("WhyWindow");
    const std::string last = CatalogueText("WHY_ROOM_GOOD");
    app.WaitUntil("the last step",
                  [&] { return app.Text("WhyText").find(last) != std::string::npos; });
    return app.Text("WhyText");
  }

  static void ExpectStep(const std::string &steps, const std::string &step) {
    EXPECT_NE(std::string::npos, steps.find(step)) << step << " is not among:\n" << steps;
  }

  static constexpr char kDocument[] = "%!PS-Adobe-3.0\n%%EndComments\nshowpage\n%%EOF\n";

 private:
  std::string name_;
};

TEST_F(Questions, IsThePrinterOff) {
  MakeQueue("off", "127.0.0.77");  // where nothing listens
  Print(kDocument);
  JobsApp app;
  ExpectAnswer(app, CatalogueText("TROUBLE_UNREACHABLE", {"127.0.0.77", "Connection refused"}));
  const std::string steps = Explanation(app);
  ExpectStep(steps, CatalogueText("WHY_PORT_BAD", {"127.0.0.77", "2501"}));
  ExpectStep(steps, CatalogueText("WHY_PORT_MEND"));
}

TEST_F(Questions, IsTheNameWrong) {
  MakeQueue("lost", "no-such-printer.invalid");
  Print(kDocument);
  JobsApp app;
  ExpectAnswer(app, CatalogueText("TROUBLE_NAME", {"no-such-printer.invalid"}));
  ExpectStep(Explanation(app), CatalogueText("WHY_NAME_MEND"));
}

TEST_F(Questions, IsThePinWrong) {
  MakeQueue("secret", "127.0.0.1", "*Delivery=HoldJobUntilYouEnterPIN\n*DeliveryPIN=12\n");
  Print(kDocument);
  JobsApp app;
  ExpectAnswer(app, CatalogueText("TROUBLE_PIN"));
  ExpectStep(Explanation(app), CatalogueText("TROUBLE_PIN"));
}

// The queue's part is done: who typed another PIN at the printer learns where to look.
TEST_F(Questions, DoesThePrinterWaitForAPin) {
  MakeQueue("kept", "127.0.0.1", "*Delivery=HoldJobUntilYouEnterPIN\n*DeliveryPIN=1234\n");
  Print(kDocument);
  JobsApp app;
  app.WaitCell("JobsClist", "letter", 5, CatalogueText("JOB_PRINTED"));
  app.Select("JobsClist", "letter");
  ExpectStep(Explanation(app), CatalogueText("WHY_PIN"));
}

// A printer that answers what the job has asked it (PJL USTATUS).
TEST_F(Questions, IsThePrinterOutOfPaper) {
  const TestQueue queue("empty");
  Listener printer;
  printer.Listen();
  queue.Complete("/opt/orlan/bin/kpxnbtrans 127.0.0.1 " + printer.port() + " <\"$1\"");
  queue.Print({"-t", "letter"}, "data");
  const Descriptor connection = printer.Accept();
  const std::string status = "@PJL USTATUS DEVICE\r\nCODE=41213\r\nONLINE=FALSE\r\n\f";
  ASSERT_EQ(static_cast<ssize_t>(status.size()),
            write(connection.get(), status.data(), status.size()));
  JobsApp app;
  ExpectAnswer(app, CatalogueText("PRINTER_PAPER_OUT"));
  EXPECT_EQ("data", ReceiveText(connection.get()));
  shutdown(connection.get(), SHUT_RDWR);
  app.WaitCell("JobsClist", "letter", 5, CatalogueText("JOB_PRINTED"));
}

// One that is asked over the network: what snmpget says is a stand-in's.
TEST_F(Questions, DoesThePrinterSayWhatItLacks) {
  MakeQueue("asked", "127.0.0.1");
  Print(kDocument);
  const ChangedFile snmpget(kSnmpget, "#!/bin/sh\necho '\"40 00 \"'\n");
  std::filesystem::permissions(kSnmpget, std::filesystem::perms(0755));
  JobsApp app;
  app.WaitCell("JobsClist", "letter", 5, CatalogueText("JOB_PRINTED"));
  app.Select("JobsClist", "letter");
  const std::string steps = Explanation(app);
  ExpectStep(steps, CatalogueText("PRINTER_PAPER_OUT"));
  ExpectStep(steps, CatalogueText("WHY_STATUS_MEND"));
}

TEST_F(Questions, DoesThePrinterSayNothing) {
  MakeQueue("silent", "127.0.0.1");
  Print(kDocument);
  const ChangedFile none(kSnmpget, std::nullopt);
  JobsApp app;
  app.WaitCell("JobsClist", "letter", 5, CatalogueText("JOB_PRINTED"));
  app.Select("JobsClist", "letter");
  ExpectStep(Explanation(app), CatalogueText("WHY_STATUS_UNKNOWN"));
}

// One that says nothing. The words are those of the transport, which speaks them after half a
// minute.
TEST_F(Questions, DoesThePrinterTakeNothing) {
  const TestQueue queue("empty");
  queue.Complete(
      "echo 'kpxnbtrans: the printer has taken no data for 30 s (it last answered 1 s ago); it may "
      "be out of paper or paused; waiting' >&2; sleep 600");
  queue.Print({"-t", "letter"}, "data");
  JobsApp app;
  ExpectAnswer(app, CatalogueText("TROUBLE_NO_DATA"));
  ExpectStep(Explanation(app), CatalogueText("TROUBLE_NO_DATA"));
}

TEST_F(Questions, WhyDidTheFilterFail) {
  MakeQueue("filter", "127.0.0.1");
  Print("\033E\033&l0OThis is PCL\033E");
  JobsApp app;
  const std::string cause =
      "kpxfilter: the file is PCL data, but this queue prints only PostScript";
  ExpectAnswer(app, CatalogueText("TROUBLE_FAILED", {cause}));
  ExpectStep(Explanation(app), CatalogueText("TROUBLE_FAILED", {cause}));
}

}  // namespace
