// Printers that break connections after they took a job or a part of it: it is left to its user.
#include <gtest/gtest.h>
#include <poll.h>

#include <atomic>
#include <thread>

#include "changedfile.h"
#include "interfacescript.h"
#include "loopback.h"
#include "spooler.h"

namespace {

// Not that of the sandbox's printer.
constexpr char kAddress[] = "127.0.0.2";
constexpr std::uint16_t kPort = 2501;
constexpr char kOptions[] = "/opt/orlan/data/lp1.def";

// Takes up to `limit` bytes of every job and then resets the connection.
class ResettingPrinter {
 public:
  explicit ResettingPrinter(std::uint64_t limit)
      : listener_(kAddress, kPort), over_(MakePipe()), thread_([this, limit] { Serve(limit); }) {}
  ~ResettingPrinter() { over_.writing = Descriptor(); }
  ResettingPrinter(const ResettingPrinter &) = delete;
  ResettingPrinter &operator=(const ResettingPrinter &) = delete;

  int jobs() const { return jobs_; }

 private:
  void Serve(std::uint64_t limit) {
    listener_.Listen();
    for (;;) {
      pollfd waited[] = {{listener_.socket(), POLLIN, 0}, {over_.reading.get(), POLLIN, 0}};
      poll(waited, 2, -1);
      if (waited[1].revents != 0) return;
      Descriptor connection = listener_.Accept();
      ++jobs_;
      Receive(connection.get(), limit);
      Reset(std::move(connection));
    }
  }

  std::atomic<int> jobs_ = 0;
  Listener listener_;
  Pipe over_;
  std::jthread thread_;
};

std::string Block(const std::string &type, const std::string &ppd_path = {}) {
  return InterfaceBlockText({.queue_type = type,
                             .ppd_path = ppd_path,
                             .def_path = kOptions,
                             .address = kAddress,
                             .transport_parameter = "120"});
}

// Prints with `block` and waits until the job is held in the transport's words. Returns the log.
std::string ExpectHeld(const TestQueue &queue, const std::string &block, const std::string &data) {
  queue.Append(block);
  SchedulerLog log;
  const std::string job = queue.Print({}, data);
  log.WaitFor("Backend returned status");
  EXPECT_NE(std::string::npos, log.Text().find("Backend returned status 3 (hold job)"))
      << log.Text();
  EXPECT_TRUE(queue.Keeps(job));
  const std::string state = RunProgram({"lpstat", "-l", "-p", queue.name()}).output;
  EXPECT_NE(std::string::npos, state.find("may have printed the job or a part of it; the job is "
                                          "held (status 76)\n"))
      << state;
  return log.Text();
}

}  // namespace

TEST(BridgeDoubt, AJobThatThePrinterTookBeforeItResetIsHeldAfterOneCopy) {
  const ResettingPrinter printer(UINT64_MAX);
  const TestQueue queue("lp1");
  ExpectHeld(queue, Block("raw"), "a small job\n");
  EXPECT_EQ(printer.jobs(), 1);
}

TEST(BridgeDoubt, AJobOfWhichThePrinterTookAPartIsHeldWhenItCannotBeReadAgain) {
  // More than the transport keeps.
  const ResettingPrinter printer(4'000'000);
  const TestQueue queue("lp1");
  ExpectHeld(queue, Block("raw"), TestData(12'000'000));
  EXPECT_EQ(printer.jobs(), 1);
}

TEST(BridgeDoubt, AJobThatThePrinterBrokeOffIsHeldInTheWordsOfTheTransportNotOfTheFilter) {
  const TemporaryDirectory directory;
  std::filesystem::permissions(directory.Path(), std::filesystem::perms(0755));
  const ChangedFile options(kOptions, "");
  const ResettingPrinter printer(4'000'000);
  const TestQueue queue("lp1");
  // More than the transport and the system between them take in.
  std::string job = "%!PS\n%%EndProlog\n";
  while (job.size() < 32'000'000) job += "% a long page\n";
  const std::string log =
      ExpectHeld(queue,
                 Block("postscript", directory.Write("a.ppd",
                                                     "*PPD-Adobe: \"4.3\"\n"
                                                     "*FormatVersion: \"4.3\"\n")),
                 job + "showpage\n");
  EXPECT_NE(std::string::npos, log.find("kpxfilter: standard output: Broken pipe"));
  EXPECT_EQ(printer.jobs(), 1);
}
