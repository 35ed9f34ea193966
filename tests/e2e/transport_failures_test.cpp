// kpxnbtrans against printers that do not take the job, and wrong calls: status and words.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sysexits.h>

#include <future>
#include <thread>

#include "changedfile.h"
#include "loopback.h"
#include "transportrun.h"

namespace {

constexpr std::uint64_t kMillion = 1'000'000;

// The job of a pipe whose writer may find that nobody reads any more.
Descriptor LongPipe(std::jthread &writer) {
  Pipe pipe = MakePipe();
  writer =
      std::jthread([end = std::move(pipe.writing)] { WriteTestData(end.get(), 50 * kMillion); });
  return std::move(pipe.reading);
}

void ExpectWords(const Ended &ended, int status, const std::string &words) {
  EXPECT_EQ(ended.status, status) << ended.words;
  EXPECT_NE(ended.words.find(words), std::string::npos) << "no \"" << words << "\" in\n"
                                                        << ended.words;
}

TEST(Failures, APrinterThatRefusesAtFirstGetsTheJobLater) {
  Listener printer;
  TransportRun run({"127.0.0.1", printer.port(), "120"}, TestFile(1000));
  ASSERT_TRUE(run.words().Await("trying again in 2 s")) << run.words().seen();
  auto received = std::async(std::launch::async, [&] {
    const Descriptor connection = printer.Listen().Accept();
    return Receive(connection.get());
  });
  const Ended ended = run.Wait();
  EXPECT_EQ(ended.status, 0) << ended.words;
  EXPECT_NE(ended.words.find("Connection refused); the printer may be busy or switched off; "
                             "trying again in 1 s"),
            std::string::npos)
      << ended.words;
  EXPECT_EQ(received.get().count, 1000U);
}

TEST(Failures, APrinterThatClosesEarlyIsNoSuccess) {
  Listener printer;
  printer.Listen();
  auto reader = std::async(std::launch::async, [&] {
    const Descriptor connection = printer.Accept();
    return Receive(connection.get(), 3 * kMillion);
  });
  std::jthread writer;
  const Ended ended = RunTransport({"127.0.0.1", printer.port(), "120"}, LongPipe(writer));
  ExpectWords(ended, EX_PROTOCOL, "cannot be sent again");
  EXPECT_EQ(ended.words.find("took all"), std::string::npos) << ended.words;
  EXPECT_EQ(reader.get().wrong, 0U);
}

TEST(Failures, APrinterThatResetsInTheMiddleLeavesTheJobInDoubt) {
  Listener printer;
  printer.Listen();
  auto reader = std::async(std::launch::async, [&] {
    Descriptor connection = printer.Accept();
    Receive(connection.get(), 3 * kMillion);
    Reset(std::move(connection));
  });
  std::jthread writer;
  const Ended ended = RunTransport({"127.0.0.1", printer.port(), "120"}, LongPipe(writer));
  ExpectWords(ended, EX_PROTOCOL, "the printer may have printed the job or a part of it\n");
  EXPECT_NE(ended.words.find("broke after "), std::string::npos) << ended.words;
}

TEST(Failures, ABusyPrinterThatResetsConnectionsAtOnceGetsTheJobLater) {
  Listener printer;
  printer.Listen();
  auto received = std::async(std::launch::async, [&] {
    Reset(printer.Accept());
    Reset(printer.Accept());
    return Receive(printer.Accept().get());
  });
  // A job that the printer's system cannot take whole before the reset.
  const Ended ended = RunTransport({"127.0.0.1", printer.port(), "120"}, TestFile(50 * kMillion));
  ExpectWords(ended, 0, "took all 50000000 bytes and closed the connection");
  // The reset may come before the connection counts as made or after it.
  EXPECT_EQ(Occurrences(ended.words, "the printer may be busy"), 2) << ended.words;
  EXPECT_EQ(Occurrences(ended.words, "; trying again in "), 2) << ended.words;
  EXPECT_EQ(received.get().count, 50 * kMillion);
}

TEST(Failures, APrinterThatTakesTheWholeJobAndResetsAtOnceGetsOneCopy) {
  Listener printer;
  printer.Listen();
  auto received = std::async(std::launch::async, [&] {
    Descriptor connection = printer.Accept();
    const Received first = Receive(connection.get());
    Reset(std::move(connection));
    return first;
  });
  const Ended ended = RunTransport({"127.0.0.1", printer.port(), "120"}, TestFile(1000));
  ExpectWords(ended, EX_PROTOCOL, "took all 1000 bytes but the connection was not closed cleanly");
  const Received first = received.get();
  EXPECT_EQ(first.count, 1000U);
  EXPECT_EQ(first.wrong, 0U);
  EXPECT_FALSE(printer.HasCaller()) << "it was called again";
}

// Breaks the first connection after `first` bytes and takes the second job whole.
Received BreakThenTake(Listener &printer, std::uint64_t first) {
  printer.Listen();
  Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get(), first).count, first);
  Reset(std::move(connection));
  const Descriptor second = printer.Accept();
  return Receive(second.get());
}

TEST(Failures, AFileIsSentAgainFromItsStartWhenTheConnectionBreaks) {
  Listener printer;
  auto received =
      std::async(std::launch::async, [&] { return BreakThenTake(printer, 4 * kMillion); });
  const Ended ended = RunTransport({"127.0.0.1", printer.port()}, TestFile(50 * kMillion));
  ExpectWords(ended, 0, "took all 50000000 bytes");
  const Received second = received.get();
  EXPECT_EQ(second.count, 50 * kMillion);
  EXPECT_EQ(second.wrong, 0U);
}

TEST(Failures, TheFirstPartOfAPipeIsSentAgainWhenTheConnectionBreaks) {
  Listener printer;
  auto received = std::async(std::launch::async, [&] { return BreakThenTake(printer, 1000); });
  Pipe pipe = MakePipe();
  TransportRun run({"127.0.0.1", printer.port()}, std::move(pipe.reading));
  ASSERT_TRUE(WriteTestData(pipe.writing.get(), 1000));
  ASSERT_TRUE(run.words().Await("broke after 1000 bytes")) << run.words().seen();
  pipe.writing = Descriptor();
  ExpectWords(run.Wait(), 0, "took all 1000 bytes");
  EXPECT_EQ(received.get().count, 1000U);
}

TEST(Failures, AnUnknownNameLeavesTheJobInTheQueue) {
  // Two dots in a row cannot be a name, whatever name service is asked.
  const Ended ended = RunTransport({"no..name", "2501", "120"}, TestFile(10));
  ExpectWords(ended, EX_TEMPFAIL, "cannot reach no..name port 2501");
}

TEST(Failures, ANameServiceThatIsDownIsNotTakenForAPrinterThatIs) {
  const ChangedFile switches("/etc/nsswitch.conf", "hosts: files dns\n");
  const ChangedFile servers("/etc/resolv.conf", "nameserver 127.0.0.9\noptions attempts:1\n");
  TransportRun run({"printer.example", "2501", "120"}, TestFile(10));
  ASSERT_TRUE(run.words().Await("trying again in 1 s")) << run.words().seen();
  const std::string words = run.words().seen();
  EXPECT_NE(words.find("cannot look up the name printer.example"), std::string::npos) << words;
  EXPECT_NE(words.find("; the address may be wrong, or the name service may be down; trying"),
            std::string::npos)
      << words;
}

TEST(Failures, ADirectoryIsNoJob) {
  ExpectWords(RunTransport({"127.0.0.1", "2501"}, Descriptor(open("/", O_RDONLY | O_CLOEXEC))),
              EX_IOERR, "the job cannot be read: Is a directory");
}

TEST(Failures, AClosedStandardInputIsNoJob) {
  ExpectWords(RunTransport({"127.0.0.1", "2501"}, Descriptor()), EX_IOERR,
              "standard input is not open");
}

struct WrongCall {
  std::vector<std::string> arguments;
  std::string words;
};

class WrongCalls : public testing::TestWithParam<WrongCall> {};

TEST_P(WrongCalls, AreAnsweredWithTheUsage) {
  const Ended ended = RunTransport(GetParam().arguments, TestFile(10));
  ExpectWords(ended, EX_USAGE, GetParam().words);
  EXPECT_NE(ended.words.find("usage: kpxnbtrans ADDRESS PORT"), std::string::npos) << ended.words;
}

INSTANTIATE_TEST_SUITE_P(
    Calls, WrongCalls,
    testing::Values(WrongCall{{}, "two or three arguments"},
                    WrongCall{{"127.0.0.1"}, "two or three arguments"},
                    WrongCall{{"127.0.0.1", "2501", "45", "x"}, "two or three arguments"},
                    WrongCall{{"", "2501"}, "the address is empty"},
                    WrongCall{{"[]", "2501"}, "the address is empty"},
                    WrongCall{{"2501", "120"}, "\"2501\" is not an address"},
                    WrongCall{{"[2501]", "120"}, "\"2501\" is not an address"},
                    WrongCall{{"127.0.0.1", "lpd"}, "\"lpd\" is not a port number"},
                    WrongCall{{"127.0.0.1", "0"}, "\"0\" is not a port number"},
                    WrongCall{{"127.0.0.1", "65536"}, "\"65536\" is not a port number"},
                    WrongCall{{"127.0.0.1", "25 01"}, "\"25 01\" is not a port number"},
                    WrongCall{{"127.0.0.1", "2501", "fast"}, "\"fast\" is not a speed"},
                    WrongCall{{"127.0.0.1", "2501", "-1"}, "\"-1\" is not a speed"}));

class SpeedsThatAreNotKnown : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(SpeedsThatAreNotKnown, AreNoMistake) {
  Listener printer;
  auto received =
      std::async(std::launch::async, [&] { return Receive(printer.Listen().Accept().get()); });
  std::vector<std::string> arguments = {"127.0.0.1", printer.port()};
  arguments.insert(arguments.end(), GetParam().begin(), GetParam().end());
  ExpectWords(RunTransport(arguments, TestFile(10)), 0, "took all 10 bytes");
  EXPECT_EQ(received.get().count, 10U);
}

INSTANTIATE_TEST_SUITE_P(Arguments, SpeedsThatAreNotKnown,
                         testing::Values(std::vector<std::string>{}, std::vector<std::string>{""}));

}  // namespace
