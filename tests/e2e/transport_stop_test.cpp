// kpxnbtrans told to stop: it ends soon, says so, leaves nothing half open, and its status tells
// whether the job can be sent again.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sysexits.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

#include "loopback.h"
#include "silentnameserver.h"
#include "transportrun.h"

namespace {

void ExpectStopped(TransportRun &run, int signal, int status,
                   const std::string &words = "stopped by a signal\n") {
  run.Send(signal);
  const Ended ended = run.Wait();
  EXPECT_EQ(ended.status, status) << ended.words;
  EXPECT_NE(ended.words.find(words), std::string::npos) << ended.words;
}

constexpr char kWhileLookingUp[] = "stopped by a signal while looking up the printer's name\n";

class Stop : public testing::TestWithParam<int> {};

TEST_P(Stop, WhileMoreOfTheJobIsAwaited) {
  Listener printer;
  printer.Listen();
  Pipe pipe = MakePipe();
  TransportRun run({"127.0.0.1", printer.port()}, std::move(pipe.reading));
  ASSERT_TRUE(WriteTestData(pipe.writing.get(), 10));
  const Descriptor connection = printer.Accept();
  ASSERT_EQ(Receive(connection.get(), 10).count, 10U);
  ExpectStopped(run, GetParam(), EX_PROTOCOL);
  // Not an orderly end: the printer must not take ten bytes for the whole job.
  EXPECT_EQ(Receive(connection.get()).error, ECONNRESET);
}

TEST_P(Stop, InAPauseBetweenTwoAttempts) {
  const Listener printer;
  TransportRun run({"127.0.0.1", printer.port()}, TestFile(10));
  ASSERT_TRUE(run.words().Await("trying again in 4 s")) << run.words().seen();
  ExpectStopped(run, GetParam(), EX_TEMPFAIL);
}

TEST_P(Stop, InTheMiddleOfAJobBreaksTheConnection) {
  Listener printer;
  printer.Listen();
  TransportRun run({"127.0.0.1", printer.port()}, TestFile(100'000'000));
  const Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get(), 1000).count, 1000U);
  ExpectStopped(run, GetParam(), EX_PROTOCOL);
  // What was still under way is dropped: the printer must not take the rest for a job.
  EXPECT_EQ(Receive(connection.get()).error, ECONNRESET);
}

TEST_P(Stop, WhileThePrinterPrints) {
  Listener printer;
  printer.Listen();
  TransportRun run({"127.0.0.1", printer.port()}, TestFile(1000));
  const Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get()).count, 1000U);
  ExpectStopped(run, GetParam(), EX_PROTOCOL);
}

TEST_P(Stop, WhileTheNameIsLookedUp) {
  const SilentNameServer server;
  TransportRun run({"printer.test", "2501"}, TestFile(10));
  ASSERT_TRUE(server.IsAsked());
  ExpectStopped(run, GetParam(), EX_TEMPFAIL, kWhileLookingUp);
}

TEST_P(Stop, WhileTheNameIsLookedUpAfterAPartOfTheJobWasTaken) {
  const SilentNameServer server;
  Listener printer;
  printer.Listen();
  auto hosts = std::make_unique<ChangedFile>("/etc/hosts", "127.0.0.1 printer.test\n");
  TransportRun run({"printer.test", printer.port()}, TestFile(100'000'000));
  Descriptor connection = printer.Accept();
  EXPECT_EQ(Receive(connection.get(), 1000).count, 1000U);
  hosts.reset();
  Reset(std::move(connection));
  ASSERT_TRUE(server.IsAsked());
  ExpectStopped(run, GetParam(), EX_PROTOCOL, kWhileLookingUp);
}

INSTANTIATE_TEST_SUITE_P(Signals, Stop, testing::Values(SIGTERM, SIGINT, SIGHUP));

}  // namespace
