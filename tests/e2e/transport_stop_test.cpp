// kpxnbtrans told to stop: it ends soon, says so, and leaves nothing half open.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include "loopback.h"
#include "transportrun.h"

namespace {

void ExpectStopped(TransportRun &run, int signal) {
  run.Send(signal);
  const Ended ended = run.Wait();
  EXPECT_EQ(ended.status, 128 + signal) << ended.words;
  EXPECT_NE(ended.words.find("stopped by a signal"), std::string::npos) << ended.words;
}

class Stop : public testing::TestWithParam<int> {};

TEST_P(Stop, WhileMoreOfTheJobIsAwaited) {
  Listener printer;
  printer.Listen();
  Pipe pipe = MakePipe();
  TransportRun run({"127.0.0.1", printer.port()}, std::move(pipe.reading));
  ASSERT_TRUE(WriteTestData(pipe.writing.get(), 10));
  const Descriptor connection = printer.Accept();
  ASSERT_EQ(Receive(connection.get(), 10).count, 10U);
  ExpectStopped(run, GetParam());
  // Not an orderly end: the printer must not take ten bytes for the whole job.
  EXPECT_EQ(Receive(connection.get()).error, ECONNRESET);
}

TEST_P(Stop, InAPauseBetweenTwoAttempts) {
  const Listener printer;
  TransportRun run({"127.0.0.1", printer.port()}, TestFile(10));
  ASSERT_TRUE(run.words().Await("trying again in 4 s")) << run.words().seen();
  ExpectStopped(run, GetParam());
}

TEST_P(Stop, InTheMiddleOfAJobBreaksTheConnection) {
  Listener printer;
  printer.Listen();
  TransportRun run({"127.0.0.1", printer.port()}, TestFile(100'000'000));
  const Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get(), 1000).count, 1000U);
  ExpectStopped(run, GetParam());
  // What was still under way is dropped: the printer must not take the rest for a job.
  EXPECT_EQ(Receive(connection.get()).error, ECONNRESET);
}

TEST_P(Stop, WhileThePrinterPrints) {
  Listener printer;
  printer.Listen();
  TransportRun run({"127.0.0.1", printer.port()}, TestFile(1000));
  const Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get()).count, 1000U);
  ExpectStopped(run, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Signals, Stop, testing::Values(SIGTERM, SIGINT, SIGHUP));

}  // namespace
