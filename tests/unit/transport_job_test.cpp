// Attempts, silence and pauses, with limits short enough to see their ends.
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <chrono>
#include <future>

#include "job.h"
#include "loopback.h"

using namespace kpx::transport;

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

Limits ShortLimits() {
  Limits limits;
  limits.first_pause = milliseconds{10};
  limits.longest_pause = milliseconds{40};
  limits.give_up = milliseconds{300};
  limits.connect = milliseconds{100};
  limits.at_once = milliseconds{0};
  limits.tick = milliseconds{10};
  return limits;
}

// CarryJob in a thread of its own, which is stopped when it goes.
class Transfer {
 public:
  Transfer(const Destination &destination, Descriptor input, const Limits &limits)
      : words_pipe_(MakePipe()), stop_(MakePipe()), words_(std::move(words_pipe_.reading)) {
    outcome_ = std::async(std::launch::async, [this, destination, limits, in = std::move(input)] {
      const Descriptor writing = std::move(words_pipe_.writing);
      return CarryJob(destination, in.get(), limits, Report(writing.get()), stop_.reading.get());
    });
  }
  ~Transfer() { Stop(); }
  Transfer(const Transfer &) = delete;
  Transfer &operator=(const Transfer &) = delete;

  void Stop() { EXPECT_TRUE(WriteTestData(stop_.writing.get(), 1)); }
  Words &words() { return words_; }
  Outcome Wait() {
    words_.Rest();
    return outcome_.get();
  }

 private:
  Pipe words_pipe_;
  Pipe stop_;
  Words words_;
  std::future<Outcome> outcome_;
};

void ExpectWords(Transfer &transfer, const std::string &words) {
  EXPECT_NE(transfer.words().seen().find(words), std::string::npos) << "no \"" << words << "\" in\n"
                                                                    << transfer.words().seen();
}

TEST(TransportJob, GivesUpOnAPrinterThatRefusesWhenTheTimeIsOver) {
  const Listener printer;
  const auto start = Clock::now();
  Transfer transfer({"127.0.0.1", printer.port()}, TestFile(10), ShortLimits());
  EXPECT_EQ(transfer.Wait(), Outcome::kTryLater);
  EXPECT_GE(Clock::now() - start, milliseconds{300}) << "it gave up too early";
  ExpectWords(transfer, "no success for 300 ms); giving up for now; the job should stay in");
}

TEST(TransportJob, PausesGrowUpToTheLongest) {
  const Listener printer;
  Limits limits = ShortLimits();
  limits.give_up = std::chrono::hours{1};
  Transfer transfer({"127.0.0.1", printer.port()}, TestFile(10), limits);
  ASSERT_TRUE(transfer.words().Await("trying again in 40 ms\n"));
  while (Occurrences(transfer.words().seen(), "trying again in 40 ms\n") < 3) {
    ASSERT_TRUE(transfer.words().AwaitMore());
  }
  transfer.Stop();
  transfer.Wait();
  const std::string words = transfer.words().seen();
  EXPECT_EQ(Occurrences(words, "trying again in 10 ms\n"), 1) << words;
  EXPECT_EQ(Occurrences(words, "trying again in 20 ms\n"), 1) << words;
  EXPECT_EQ(Occurrences(words, "trying again in 80 ms\n"), 0) << words;
}

TEST(TransportJob, AnAddressThatDoesNotAnswerCountsAsUnreachable) {
  if (!Listener::CanCutCable()) GTEST_SKIP() << "this host lets root alone filter packets";
  Listener printer;
  printer.Listen();
  Listener::CutCable(printer.socket());
  Transfer transfer({"127.0.0.1", printer.port()}, TestFile(10), ShortLimits());
  EXPECT_EQ(transfer.Wait(), Outcome::kTryLater);
  ExpectWords(transfer, "127.0.0.1: Connection timed out");
}

TEST(TransportJob, APrinterWithoutASignOfLifeIsGivenUp) {
  if (!Listener::CanCutCable()) GTEST_SKIP() << "this host lets root alone filter packets";
  Listener printer;
  printer.Listen();
  Limits limits = ShortLimits();
  limits.unanswered = milliseconds{300};
  limits.give_up = milliseconds{0};
  Transfer transfer({"127.0.0.1", printer.port()}, TestFile(20'000'000), limits);
  const Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get(), 1000).count, 1000U);
  Listener::CutCable(connection.get());
  EXPECT_EQ(transfer.Wait(), Outcome::kInDoubt);
  ExpectWords(transfer, "(no answer for ");
}

// A printer that has accepted a job larger than what is under way and takes nothing of it yet.
class WaitingPrinter : public testing::Test {
 protected:
  static constexpr size_t kSize = 20'000'000;

  WaitingPrinter()
      : transfer_({"127.0.0.1", printer_.Listen().port()}, TestFile(kSize), WithShortPauses()),
        connection_(printer_.Accept(4096)) {}

  // Takes the whole job, and the transfer ends well.
  void TakeTheJob() {
    const Received received = Receive(connection_.get());
    EXPECT_EQ(received.count, kSize);
    EXPECT_EQ(received.wrong, 0U);
    shutdown(connection_.get(), SHUT_RDWR);
    EXPECT_EQ(transfer_.Wait(), Outcome::kAccepted);
  }

  Listener printer_;
  Transfer transfer_;
  const Descriptor connection_;

 private:
  static Limits WithShortPauses() {
    Limits limits = ShortLimits();
    limits.usual_pause = milliseconds{50};
    return limits;
  }
};

TEST_F(WaitingPrinter, ThatAnswersButTakesNothingIsWaitedForInWords) {
  ASSERT_TRUE(transfer_.words().Await("the printer has taken no data for "));
  TakeTheJob();
  ExpectWords(transfer_, "may be out of paper or paused; waiting");
}

TEST_F(WaitingPrinter, SaysAboutItselfWhatIsPassedOn) {
  const auto say = [&](const std::string &text) {
    ASSERT_EQ(write(connection_.get(), text.data(), text.size()),
              static_cast<ssize_t>(text.size()));
  };
  // Numbers outside of a status are nothing, and no line ends the parts that come.
  say("CODE=40021\r\n@PJL USTATUS DEVICE\r\nCO");
  say("DE=41213\r\nDISPLAY=\"LOAD A4\"\r\nONLINE=FALSE\r\n\f");
  ASSERT_TRUE(transfer_.words().Await("kpxnbtrans: the printer says: out of paper (code 41213)\n"));
  ASSERT_TRUE(transfer_.words().Await("ago); the printer says: out of paper; waiting\n"));
  say("@PJL USTATUS DEVICE\r\nCODE=10001\r\nONLINE=TRUE\r\n\f");
  ASSERT_TRUE(transfer_.words().Await("kpxnbtrans: the printer says: ready again\n"));
  say(std::string(5000, 'x') + "\n@PJL USTATUS DEVICE\nCODE=99999999999\nCODE=\nCODE=35078\n");
  TakeTheJob();
  const std::string words = transfer_.words().seen();
  EXPECT_EQ(Occurrences(words, "the printer says: "),
            Occurrences(words, "the printer says: out of paper") + 1)
      << words;
  EXPECT_EQ(Occurrences(words, "(code "), 1) << words;
}

TEST(TransportJob, WordsAboutOnePauseComeLessAndLessOften) {
  Listener printer;
  printer.Listen();
  Limits limits = ShortLimits();
  limits.usual_pause = milliseconds{20};
  limits.stalled = milliseconds{1000};
  limits.give_up = milliseconds{0};
  Transfer transfer({"127.0.0.1", printer.port()}, TestFile(20'000'000), limits);
  const Descriptor connection = printer.Accept(4096);
  EXPECT_EQ(transfer.Wait(), Outcome::kInDoubt);
  const int words = Occurrences(transfer.words().seen(), "the printer has taken no data for ");
  // After 20, 40, 80, 160, 320 and 640 ms, and perhaps some while the first data still moves; one
  // every 20 ms would be fifty.
  EXPECT_GE(words, 2) << transfer.words().seen();
  EXPECT_LE(words, 12) << transfer.words().seen();
  ExpectWords(transfer, "(no data taken for 1");
}

TEST(TransportJob, APrinterThatKeepsTheConnectionOpenAfterTheJobIsWaitedForInWords) {
  Listener printer;
  printer.Listen();
  Limits limits = ShortLimits();
  limits.usual_pause = milliseconds{50};
  Transfer transfer({"127.0.0.1", printer.port()}, TestFile(1000), limits);
  Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get()).count, 1000U);
  ASSERT_TRUE(transfer.words().Await("has the whole job but has not closed the connection"));
  connection = Descriptor();
  EXPECT_EQ(transfer.Wait(), Outcome::kAccepted);
}

TEST(TransportJob, APrinterThatNeverClosesLeavesTheJobInDoubt) {
  Listener printer;
  printer.Listen();
  Limits limits = ShortLimits();
  limits.stalled = milliseconds{100};
  Transfer transfer({"127.0.0.1", printer.port()}, TestFile(1000), limits);
  const Descriptor connection = printer.Accept();
  EXPECT_EQ(transfer.Wait(), Outcome::kInDoubt);
  ExpectWords(transfer,
              "took all 1000 bytes but the connection was not closed cleanly (not closed");
}

TEST(TransportJob, AResetInsteadOfTheCloseAfterTheWholeJobLeavesItInDoubt) {
  Listener printer;
  printer.Listen();
  Transfer transfer({"127.0.0.1", printer.port()}, TestFile(1000), ShortLimits());
  Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get()).count, 1000U);
  Reset(std::move(connection));
  EXPECT_EQ(transfer.Wait(), Outcome::kInDoubt);
  ExpectWords(transfer, "took all 1000 bytes but the connection was not closed cleanly");
  ExpectWords(transfer, "may have printed the job or a part of it\n");
  EXPECT_FALSE(printer.HasCaller());
}

TEST(TransportJob, APrinterThatResetsEveryConnectionAtOnceIsAskedUntilTheTimeIsOver) {
  Listener printer;
  printer.Listen();
  Limits limits = ShortLimits();
  limits.at_once = std::chrono::seconds{10};
  Transfer transfer({"127.0.0.1", printer.port()}, TestFile(20'000'000), limits);
  auto busy = std::async(std::launch::async, [&] {
    int callers = 0;
    for (pollfd waited{printer.socket(), POLLIN, 0}; poll(&waited, 1, 1000) > 0; ++callers) {
      Descriptor connection = printer.Accept();
      Receive(connection.get(), 1000);
      Reset(std::move(connection));
    }
    return callers;
  });
  EXPECT_EQ(transfer.Wait(), Outcome::kInDoubt) << "each caller may have printed the first pages";
  ExpectWords(transfer, "no success for 300 ms");
  EXPECT_GT(busy.get(), 1 + limits.restarts);
}

TEST(TransportJob, AWholeJobIsNeverSentAgainHoweverSoonTheConnectionIsReset) {
  Listener printer;
  printer.Listen();
  Limits limits = ShortLimits();
  limits.at_once = std::chrono::hours{1};
  Transfer transfer({"127.0.0.1", printer.port()}, TestFile(10), limits);
  Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get()).count, 10U);
  Reset(std::move(connection));
  EXPECT_EQ(transfer.Wait(), Outcome::kInDoubt);
  ExpectWords(transfer, "took all 10 bytes but the connection was not closed cleanly");
  EXPECT_FALSE(printer.HasCaller());
  EXPECT_EQ(Occurrences(transfer.words().seen(), "connected to"), 1);
}

TEST(TransportJob, AWholeJobIsNotSentAgainWhenTheResetComesBeforeTheInputsEnd) {
  Listener printer;
  printer.Listen();
  Limits limits = ShortLimits();
  limits.at_once = std::chrono::hours{1};
  limits.first_pause = limits.longest_pause = std::chrono::hours{1};
  Pipe pipe = MakePipe();
  Transfer transfer({"127.0.0.1", printer.port()}, std::move(pipe.reading), limits);
  ASSERT_TRUE(WriteTestData(pipe.writing.get(), 1000));
  Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get(), 1000).count, 1000U);
  Reset(std::move(connection));
  // The break is seen first; had it been taken for all there is to know, it would be told now.
  EXPECT_FALSE(transfer.words().ComesWithin("broke after", milliseconds{100}));
  pipe.writing = Descriptor();
  EXPECT_EQ(transfer.Wait(), Outcome::kInDoubt);
  ExpectWords(transfer, "took all 1000 bytes but the connection was not closed cleanly");
  EXPECT_FALSE(printer.HasCaller());
}

// So much that the sender has long seen it taken when the reset comes, which tells no numbers.
constexpr size_t kSurelySeen = 8'000'000;

TEST(TransportJob, AJobIsBegunAnewOnlySoOften) {
  Listener printer;
  printer.Listen();
  Limits limits = ShortLimits();
  limits.restarts = 2;
  limits.give_up = std::chrono::minutes{1};
  Transfer transfer({"127.0.0.1", printer.port()}, TestFile(20'000'000), limits);
  for (int i = 0; i < 3; ++i) {
    Descriptor connection = printer.Accept();
    EXPECT_EQ(Receive(connection.get(), kSurelySeen).count, kSurelySeen);
    Reset(std::move(connection));
  }
  EXPECT_EQ(transfer.Wait(), Outcome::kInDoubt);
  EXPECT_FALSE(printer.HasCaller());
  EXPECT_EQ(Occurrences(transfer.words().seen(), "connected to"), 3);
}

TEST(TransportJob, AJobOfWhichAPartWasTakenStaysInDoubtWhenThePrinterIsGoneAfterwards) {
  Listener printer;
  printer.Listen();
  Transfer transfer({"127.0.0.1", printer.port()}, TestFile(20'000'000), ShortLimits());
  Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get(), kSurelySeen).count, kSurelySeen);
  printer = Listener();
  Reset(std::move(connection));
  EXPECT_EQ(transfer.Wait(), Outcome::kInDoubt);
  ExpectWords(transfer, "Connection refused); the printer may be busy or switched off (no success");
}

TEST(TransportJob, AJobThatCannotBeReadOnIsInDoubtOnceThePrinterTookAPart) {
  Listener printer;
  printer.Listen();
  Listener source;
  source.Listen();
  ConnectResult input = ConnectTo({"127.0.0.1", source.port()}, Limits{}, {});
  ASSERT_EQ(input.end, ConnectEnd::kConnected) << input.reason;
  Descriptor writing = source.Accept();
  Transfer transfer({"127.0.0.1", printer.port()}, std::move(input.socket), ShortLimits());
  ASSERT_TRUE(WriteTestData(writing.get(), 1000));
  const Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get(), 1000).count, 1000U);
  Reset(std::move(writing));
  EXPECT_EQ(transfer.Wait(), Outcome::kInDoubt);
  ExpectWords(transfer,
              "reading the job failed after 1000 bytes: Connection reset by peer; the "
              "printer may have printed the job or a part of it\n");
}

TEST(TransportJob, AJobThatCannotBeReadAtAllIsNoMatterOfThePrinter) {
  Listener printer;
  printer.Listen();
  Listener source;
  source.Listen();
  ConnectResult input = ConnectTo({"127.0.0.1", source.port()}, Limits{}, {});
  ASSERT_EQ(input.end, ConnectEnd::kConnected) << input.reason;
  Reset(source.Accept());
  Transfer transfer({"127.0.0.1", printer.port()}, std::move(input.socket), ShortLimits());
  EXPECT_EQ(transfer.Wait(), Outcome::kInputUnreadable);
  ExpectWords(transfer, "the job cannot be read: Connection reset by peer");
  EXPECT_FALSE(printer.HasCaller());
}

TEST(TransportJob, TheTimeForFurtherAttemptsBeginsAnewOnceThePrinterTookData) {
  Listener printer;
  Limits limits = ShortLimits();
  limits.give_up = std::chrono::seconds{1};
  limits.progress = limits.give_up + milliseconds{200};
  Pipe pipe = MakePipe();
  Transfer transfer({"127.0.0.1", printer.port()}, std::move(pipe.reading), limits);
  ASSERT_TRUE(WriteTestData(pipe.writing.get(), 1000));
  ASSERT_TRUE(transfer.words().Await("switched off; trying again in"));
  printer.Listen();
  Descriptor connection = printer.Accept();
  ASSERT_TRUE(transfer.words().Await("the printer has taken 1000 bytes so far"));
  Reset(std::move(connection));
  ASSERT_TRUE(transfer.words().Await("broke after 1000 bytes"));
  pipe.writing = Descriptor();
  connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get()).count, 1000U);
  shutdown(connection.get(), SHUT_RDWR);
  EXPECT_EQ(transfer.Wait(), Outcome::kAccepted);
}

TEST(TransportJob, AProgressWordTellsHowMuchThePrinterHasTaken) {
  Listener printer;
  printer.Listen();
  Limits limits = ShortLimits();
  limits.progress = milliseconds{20};
  Pipe pipe = MakePipe();
  Transfer transfer({"127.0.0.1", printer.port()}, std::move(pipe.reading), limits);
  ASSERT_TRUE(WriteTestData(pipe.writing.get(), 1000));
  const Descriptor connection = printer.Accept();
  ASSERT_TRUE(transfer.words().Await("the printer has taken 1000 bytes so far"));
  pipe.writing = Descriptor();
  EXPECT_EQ(Receive(connection.get()).count, 1000U);
  shutdown(connection.get(), SHUT_RDWR);
  EXPECT_EQ(transfer.Wait(), Outcome::kAccepted);
}

TEST(TransportJob, TheStopDescriptorEndsTheWaitForTheJob) {
  const Pipe input = MakePipe();
  Transfer transfer({"127.0.0.1", "9"}, Descriptor(dup(input.reading.get())), ShortLimits());
  transfer.Stop();
  EXPECT_EQ(transfer.Wait(), Outcome::kTryLater);
  ExpectWords(transfer, "stopped by a signal");
}

TEST(TransportJob, IdleConnectionsAreAskedOftenEnoughToNoticeSilence) {
  Listener printer;
  printer.Listen();
  const ConnectResult link = ConnectTo({"127.0.0.1", printer.port()}, Limits{}, {});
  ASSERT_EQ(link.end, ConnectEnd::kConnected) << link.reason;
  const auto option = [&](int level, int name) {
    int value = 0;
    socklen_t size = sizeof value;
    EXPECT_EQ(getsockopt(link.socket.get(), level, name, &value, &size), 0);
    return value;
  };
  EXPECT_NE(option(SOL_SOCKET, SO_KEEPALIVE), 0);
  const std::chrono::seconds idle{option(IPPROTO_TCP, TCP_KEEPIDLE)};
  const std::chrono::seconds interval{option(IPPROTO_TCP, TCP_KEEPINTVL)};
  EXPECT_LT(idle + 4 * interval, Limits{}.unanswered);
}

}  // namespace
