// kpxnbtrans against printers that take the job: what arrives, from where, and what it says.
// KPX_LONG=1 sends a job of 4 GB.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <future>
#include <thread>

#include "loopback.h"
#include "transportrun.h"

namespace {

constexpr std::uint64_t kMillion = 1'000'000;
constexpr std::uint64_t kBeyond32Bits = (std::uint64_t{1} << 32) + 1;

// AddressSanitizer adds memory of its own.
#ifdef __SANITIZE_ADDRESS__
constexpr long kMostKilobytes = 16 * 16384;
#else
constexpr long kMostKilobytes = 16384;
#endif

// A printer that takes one whole job and closes.
std::future<Received> TakeOneJob(const Listener &printer) {
  return std::async(std::launch::async, [&printer] {
    const Descriptor connection = printer.Accept();
    return Receive(connection.get());
  });
}

// A pipe that gives `count` bytes of the test data; `writer` ends when they are gone.
Descriptor FilledPipe(std::uint64_t count, std::jthread &writer) {
  Pipe pipe = MakePipe();
  writer = std::jthread(
      [count, end = std::move(pipe.writing)] { EXPECT_TRUE(WriteTestData(end.get(), count)); });
  return std::move(pipe.reading);
}

void ExpectWhole(const Received &received, std::uint64_t count) {
  EXPECT_EQ(received.count, count);
  EXPECT_EQ(received.wrong, 0U);
  EXPECT_EQ(received.error, 0);
}

void ExpectTaken(const Ended &ended, std::uint64_t count) {
  EXPECT_EQ(ended.status, 0) << ended.words;
  EXPECT_NE(ended.words.find("took all " + std::to_string(count) + " byte"), std::string::npos)
      << ended.words;
}

class JobSize : public testing::TestWithParam<std::uint64_t> {};

TEST_P(JobSize, EveryByteFromAPipeArrives) {
  Listener printer;
  auto received = TakeOneJob(printer.Listen());
  std::jthread writer;
  const Ended ended =
      RunTransport({"127.0.0.1", printer.port(), "120"}, FilledPipe(GetParam(), writer));
  ExpectTaken(ended, GetParam());
  ExpectWhole(received.get(), GetParam());
}

TEST_P(JobSize, EveryByteFromAFileArrives) {
  Listener printer;
  auto received = TakeOneJob(printer.Listen());
  const Ended ended = RunTransport({"127.0.0.1", printer.port(), "120"}, TestFile(GetParam()));
  ExpectTaken(ended, GetParam());
  ExpectWhole(received.get(), GetParam());
}

// 1,048,576 is the part kept in memory.
INSTANTIATE_TEST_SUITE_P(Sizes, JobSize,
                         testing::Values(1, 1'048'575, 1'048'576, 1'048'577, 200 * kMillion));

TEST(Delivery, AnEmptyJobSucceedsWithoutCallingThePrinter) {
  Listener printer;
  printer.Listen();
  const Ended ended = RunTransport({"127.0.0.1", printer.port(), "45"}, TestFile(0));
  EXPECT_EQ(ended.status, 0);
  EXPECT_NE(ended.words.find("the job is empty"), std::string::npos) << ended.words;
  EXPECT_FALSE(printer.HasCaller());
}

TEST(Delivery, ThePrinterIsNotCalledBeforeThereIsData) {
  Listener printer;
  printer.Listen();
  Pipe pipe = MakePipe();
  TransportRun run({"127.0.0.1", printer.port()}, std::move(pipe.reading));
  EXPECT_FALSE(printer.HasCaller());
  ASSERT_EQ(write(pipe.writing.get(), "late", 4), 4);
  const Descriptor connection = printer.Accept();
  pipe.writing = Descriptor();
  EXPECT_EQ(ReceiveText(connection.get()), "late");
  shutdown(connection.get(), SHUT_RDWR);
  EXPECT_EQ(run.Wait().status, 0);
}

TEST(Delivery, AFileIsSentFromItsCurrentPosition) {
  Listener printer;
  auto text =
      std::async(std::launch::async, [&] { return ReceiveText(printer.Listen().Accept().get()); });
  Descriptor file = TestFile(5000);
  ASSERT_EQ(lseek(file.get(), 4000, SEEK_SET), 4000);
  const Ended ended = RunTransport({"127.0.0.1", printer.port()}, std::move(file));
  EXPECT_EQ(ended.status, 0) << ended.words;
  EXPECT_EQ(text.get(), TestData(1000, 4000));
}

TEST(Delivery, InputThatIsNeitherPipeNorFileArrives) {
  Listener printer;
  auto received = TakeOneJob(printer.Listen());
  int ends[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
  Descriptor reading(ends[0]);
  std::jthread writer([end = Descriptor(ends[1])] { WriteTestData(end.get(), 5 * kMillion); });
  ExpectTaken(RunTransport({"127.0.0.1", printer.port()}, std::move(reading)), 5 * kMillion);
  ExpectWhole(received.get(), 5 * kMillion);
}

TEST(Delivery, APipeThatDoesNotBlockIsWaitedFor) {
  Listener printer;
  auto received = TakeOneJob(printer.Listen());
  std::jthread writer;
  Descriptor pipe = FilledPipe(5 * kMillion, writer);
  ASSERT_EQ(fcntl(pipe.get(), F_SETFL, O_NONBLOCK), 0);
  ExpectTaken(RunTransport({"127.0.0.1", printer.port()}, std::move(pipe)), 5 * kMillion);
  ExpectWhole(received.get(), 5 * kMillion);
}

TEST(Delivery, APrinterAtAnIpv6AddressIsReachedWithAndWithoutBrackets) {
  for (const char *address : {"::1", "[::1]"}) {
    Listener printer("::1");
    auto received = TakeOneJob(printer.Listen());
    ExpectTaken(RunTransport({address, printer.port(), "120"}, TestFile(1000)), 1000);
    ExpectWhole(received.get(), 1000);
  }
}

// Host names of the test's own, in a mount namespace of its own.
class Names : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_EQ(unshare(CLONE_NEWNS), 0) << "needs the sandbox";
    ASSERT_EQ(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr), 0);
    std::string path = testing::TempDir() + "hosts.XXXXXX";
    const Descriptor file(mkstemp(path.data()));
    ASSERT_TRUE(file);
    std::ofstream(path) << "127.0.0.2 two-homes.test\n127.0.0.3 two-homes.test\n"
                        << "::1 both-families.test\n127.0.0.1 both-families.test\n";
    ASSERT_EQ(mount(path.c_str(), "/etc/hosts", nullptr, MS_BIND, nullptr), 0);
    unlink(path.c_str());
  }

  static void ExpectReached(const std::string &name, const std::string &address) {
    Listener printer(address);
    auto received = TakeOneJob(printer.Listen());
    const Ended ended = RunTransport({name, printer.port(), "100"}, TestFile(1000));
    ExpectTaken(ended, 1000);
    EXPECT_NE(ended.words.find("connected to " + name + " port " + printer.port() + " at " +
                               address + "\n"),
              std::string::npos)
        << ended.words;
    ExpectWhole(received.get(), 1000);
  }
};

TEST_F(Names, WhicheverAddressOfANameAcceptsIsUsed) {
  ExpectReached("two-homes.test", "127.0.0.2");
  ExpectReached("two-homes.test", "127.0.0.3");
}

TEST_F(Names, BothAddressFamiliesOfANameAreTried) {
  ExpectReached("both-families.test", "::1");
  ExpectReached("both-families.test", "127.0.0.1");
}

TEST(Delivery, APrinterThatTalksBeforeItListensDoesNotBlockTheJob) {
  Listener printer;
  constexpr std::uint64_t kTalk = 32 * kMillion;
  auto received = std::async(std::launch::async, [&] {
    const Descriptor connection = printer.Listen().Accept();
    EXPECT_TRUE(WriteTestData(connection.get(), kTalk));
    return Receive(connection.get());
  });
  std::jthread writer;
  const Ended ended = RunTransport({"127.0.0.1", printer.port()}, FilledPipe(8 * kMillion, writer));
  ExpectTaken(ended, 8 * kMillion);
  EXPECT_NE(ended.words.find("sent back " + std::to_string(kTalk) + " bytes"), std::string::npos)
      << ended.words;
  ExpectWhole(received.get(), 8 * kMillion);
}

TEST(Delivery, APrinterThatTakesTheJobInSmallPiecesGetsItWhole) {
  Listener printer;
  printer.Listen();
  auto received = std::async(std::launch::async, [&] {
    const Descriptor connection = printer.Accept(4096);
    return Receive(connection.get(), UINT64_MAX, 512);
  });
  std::jthread writer;
  const Ended ended = RunTransport({"127.0.0.1", printer.port()}, FilledPipe(3 * kMillion, writer));
  ExpectTaken(ended, 3 * kMillion);
  ExpectWhole(received.get(), 3 * kMillion);
}

TEST(Delivery, APrinterThatHasNothingToSayMayCloseItsDirectionAtOnce) {
  Listener printer;
  auto received = std::async(std::launch::async, [&] {
    const Descriptor connection = printer.Listen().Accept();
    shutdown(connection.get(), SHUT_WR);
    return Receive(connection.get());
  });
  std::jthread writer;
  const Ended ended = RunTransport({"127.0.0.1", printer.port()}, FilledPipe(8 * kMillion, writer));
  ExpectTaken(ended, 8 * kMillion);
  ExpectWhole(received.get(), 8 * kMillion);
}

TEST(Delivery, TheTransportWaitsUntilThePrinterCloses) {
  Listener printer;
  printer.Listen();
  TransportRun run({"127.0.0.1", printer.port()}, TestFile(1000));
  Descriptor connection = printer.Accept();
  ExpectWhole(Receive(connection.get()), 1000);
  // The whole job and its end are here; had the transport gone, it would have said so.
  EXPECT_EQ(run.words().seen().find("took all"), std::string::npos);
  ASSERT_EQ(send(connection.get(), "ready", 5, 0), 5);
  connection = Descriptor();
  const Ended ended = run.Wait();
  ExpectTaken(ended, 1000);
  EXPECT_NE(ended.words.find("sent back 5 bytes"), std::string::npos) << ended.words;
}

TEST(Delivery, MemoryDoesNotGrowWithTheJob) {
  const auto peak = [](std::uint64_t count) {
    Listener printer;
    auto received = TakeOneJob(printer.Listen());
    std::jthread writer;
    const Ended ended = RunTransport({"127.0.0.1", printer.port()}, FilledPipe(count, writer));
    ExpectTaken(ended, count);
    ExpectWhole(received.get(), count);
    return ended.peak_kilobytes;
  };
  const long small = peak(1);
  const long large = peak(std::getenv("KPX_LONG") != nullptr ? kBeyond32Bits : 100 * kMillion);
  EXPECT_LT(large - small, 4096);
  EXPECT_LT(large, kMostKilobytes);
}

}  // namespace
