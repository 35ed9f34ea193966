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

#include "changedfile.h"
#include "loopback.h"
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

// A name server that gets questions and answers none.
class SilentNameServer {
 public:
  SilentNameServer()
      : name_service_("/etc/nsswitch.conf", "hosts: files dns\n"),
        resolver_("/etc/resolv.conf", "nameserver 127.0.0.1\n"),
        socket_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    constexpr std::uint16_t kPort = 53;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(kPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(bind(socket_.get(), reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
  }
  // Waits for the next question.
  bool IsAsked() const {
    pollfd waited{socket_.get(), POLLIN, 0};
    return poll(&waited, 1, 30000) == 1;
  }

 private:
  ChangedFile name_service_;
  ChangedFile resolver_;
  Descriptor socket_;
};

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
