// What the words of the bridge, the filter and the transport are taken for.
#include "jobstates.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>

#include "temporarydirectory.h"

namespace {

struct Row {
  const char *words;
  Trouble kind;
  const char *printer;
  const char *cause;
};

const Row kRows[] = {
    {"", Trouble::None, "", ""},
    {"Rendering completed.", Trouble::None, "", "Rendering completed."},
    {"kpxnbtrans: cannot reach 10.9.0.5 port 2501 (Connection refused); the printer may be busy or "
     "switched off; trying again in 8 s",
     Trouble::Unreachable, "10.9.0.5", "Connection refused"},
    {"kpxnbtrans: cannot reach 10.9.0.5 port 2501 (10.9.0.5: No route to host); the printer may be "
     "busy or switched off; trying again in 8 s",
     Trouble::Unreachable, "10.9.0.5", "No route to host"},
    {"kpxnbtrans: cannot reach nowhere port 2501 (cannot look up the name nowhere: Name or service "
     "not known)",
     Trouble::UnknownName, "nowhere", "cannot look up the name nowhere: Name or service not known"},
    {"kpxnbtrans: the printer has taken no data for 30 s (it last answered 1 s ago); it may be out "
     "of paper or paused; waiting",
     Trouble::TakesNoData, "",
     "the printer has taken no data for 30 s (it last answered 1 s ago); it may be out of paper or "
     "paused; waiting"},
    {"kpxnbtrans: the printer says: out of paper (code 41213)", Trouble::SaysItself, "",
     "the printer says: out of paper (code 41213)"},
    {"kpxnbtrans: the printer has taken no data for 30 s (it last answered 1 s ago); the printer "
     "says: door open; waiting",
     Trouble::SaysItself, "",
     "the printer has taken no data for 30 s (it last answered 1 s ago); the printer says: door "
     "open; waiting"},
    {"kpxbackend: the printer says: paper jam", Trouble::SaysItself, "",
     "the printer says: paper jam"},
    {"kpxbackend: cannot reach 10.9.0.5 port 515 (it is off or busy)", Trouble::Unreachable,
     "10.9.0.5", "it is off or busy"},
    {"kpxnbtrans: the printer says: ready again", Trouble::None, "",
     "the printer says: ready again"},
    {"kpxnbtrans: the connection to p broke after 8 bytes (reset); giving up: the printer may have "
     "printed the job or a part of it; the job is held (status 76)",
     Trouble::InDoubt, "",
     "the connection to p broke after 8 bytes (reset); giving up: the printer may have printed the "
     "job or a part of it"},
    {"It may have been printed; the job is held (the exit status of its interface script is "
     "unknown)",
     Trouble::InDoubt, "", "It may have been printed"},
    {"kpxfilter: the delivery \"Hold\" needs a PIN of four digits, which is missing; the job is "
     "held "
     "(status 1)",
     Trouble::BadPin, "",
     "kpxfilter: the delivery \"Hold\" needs a PIN of four digits, which is missing"},
    {"kpxfilter: no such setting; the job is held (status 1)", Trouble::Failed, "",
     "kpxfilter: no such setting"},
    {"Not enough space to unpack the file; the job is held", Trouble::NoSpace, "",
     "Not enough space to unpack the file"},
    {"The interface script /x is empty or incomplete; the job is held: move it", Trouble::NotSetUp,
     "", "The interface script /x is empty or incomplete"},
};

TEST(Troubles, AreReadFromTheWords) {
  for (const Row &row : kRows) {
    const TroubleReading reading = ReadTrouble(row.words);
    EXPECT_EQ(row.kind, reading.kind) << row.words;
    EXPECT_EQ(row.printer, reading.printer) << row.words;
    EXPECT_EQ(row.cause, reading.cause) << row.words;
  }
}

// The transport writes what it met in English.
TEST(Troubles, TellSystemErrorsInTheUsersLanguage) {
  EXPECT_EQ("No route to host", SystemErrorInLocale("No route to host"));
  const TemporaryDirectory directory;
  const std::string make = "localedef -i de_DE -f UTF-8 '" + directory.Path("de_DE.UTF-8") + "'";
  ASSERT_EQ(0, std::system(make.c_str()));
  setenv("LOCPATH", directory.Path().c_str(), 1);
  unsetenv("LANGUAGE");
  const char *set = std::setlocale(LC_ALL, "de_DE.UTF-8");
  unsetenv("LOCPATH");
  ASSERT_NE(nullptr, set);
  const std::string german = std::strerror(EHOSTUNREACH);
  const std::string shown = SystemErrorInLocale("No route to host");
  const std::string other = SystemErrorInLocale("it is off or busy");
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(german, shown);
  EXPECT_EQ("it is off or busy", other);
  if (german == "No route to host") GTEST_SKIP() << "this system has no German error texts";
}

TEST(Troubles, NeverHaveControlCharactersOfOthers) {
  EXPECT_EQ("a?b", ReadTrouble("a\x1B"
                               "b; the job is held (status 1)")
                       .cause);
}

TEST(Reasons, OfPrintersAreSaidOnce) {
  EXPECT_EQ("", PrinterReasonsText("none"));
  EXPECT_EQ("PRINTER_PAPER_OUT PRINTER_DOOR_OPEN",
            PrinterReasonsText("media-empty-error media-needed cover-open-report"));
}

// The keywords are those of RFC 8011, section 5.4.12, and offline, which CUPS adds.
TEST(Reasons, OfPrintersAreAllKnown) {
  constexpr std::pair<const char *, const char *> kReasons[] = {
      {"media-empty", "PRINTER_PAPER_OUT"},         {"media-needed", "PRINTER_PAPER_OUT"},
      {"media-low", "PRINTER_PAPER_LOW"},           {"media-jam", "PRINTER_JAM"},
      {"door-open", "PRINTER_DOOR_OPEN"},           {"cover-open", "PRINTER_DOOR_OPEN"},
      {"toner-empty", "PRINTER_TONER_OUT"},         {"toner-low", "PRINTER_TONER_LOW"},
      {"marker-supply-empty", "PRINTER_TONER_OUT"}, {"marker-supply-low", "PRINTER_TONER_LOW"},
      {"output-area-full", "PRINTER_BIN_FULL"},     {"offline", "PRINTER_OFFLINE"},
  };
  for (const auto &[keyword, key] : kReasons) {
    EXPECT_EQ(key, PrinterReasonsText(keyword)) << keyword;
  }
  EXPECT_EQ("", PrinterReasonsText("none moving-to-paused"));
}

TEST(Reasons, OfAJobThatSomebodyHoldsAreNotItsOlderWords) {
  SpoolerJob job;
  job.state = JobState::Held;
  job.words = "kpxnbtrans: cannot reach p port 2501 (Connection refused); the printer may be busy";
  EXPECT_EQ("JOB_HELD_REASON", JobReasonText(job, nullptr));
  job.words += "; the job is held (status 1)";
  EXPECT_EQ("TROUBLE_UNREACHABLE", JobReasonText(job, nullptr));
}

TEST(Hindrances, AreOfTheQueueAndNotOfAJobThatIsHeld) {
  SpoolerQueue queue;
  queue.words = "kpxfilter: broken; the job is held (status 1)";
  queue.waiting = 1;
  EXPECT_EQ("", QueueHindranceText(queue));
  EXPECT_EQ("", QueueReasonText(queue));
  queue.state = QueueState::Printing;
  EXPECT_EQ("", QueueHindranceText(queue));
  queue.words = "kpxnbtrans: cannot reach p port 2501 (No route to host); the printer may be busy";
  EXPECT_EQ("TROUBLE_UNREACHABLE", QueueHindranceText(queue));
  queue.accepts = false;
  EXPECT_EQ("QUEUE_REFUSES_REASON TROUBLE_UNREACHABLE", QueueHindranceText(queue));
}

TEST(Reasons, OfAJobBehindAStoppedQueueAreTheQueues) {
  SpoolerJob job;
  SpoolerQueue queue;
  EXPECT_EQ("", JobReasonText(job, &queue));
  queue.state = QueueState::Stopped;
  EXPECT_EQ("QUEUE_STOPPED_REASON", JobReasonText(job, &queue));
}

}  // namespace
