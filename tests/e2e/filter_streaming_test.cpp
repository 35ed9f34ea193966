// Memory does not grow with the job: large jobs go through pipes. KPX_LONG=1 sends those that pass
// the filter unread in 4 GB.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string_view>

#include "filterrun.h"

namespace {

constexpr size_t kMegabyte = 1 << 20;

// AddressSanitizer keeps freed memory for a while and runs slower.
#ifdef __SANITIZE_ADDRESS__
constexpr size_t kShare = 4;
constexpr long kGrowthKib = 16384;
constexpr long kMostKib = 16 * 16384;
#else
constexpr size_t kShare = 1;
constexpr long kGrowthKib = 1024;
constexpr long kMostKib = 16384;
#endif

constexpr size_t kLongMegabytes = 4097;  // more than 32 bits count

struct JobShape {
  const char *name, *type;
  std::string head, block, tail;
  size_t megabytes;
  std::string options = {};

  // Nothing of it is laid out: its size may be that of any file, and no fonts are needed for it.
  [[nodiscard]] bool PassesAsItIs() const { return std::string_view(type) != "text"; }
};

size_t SizeOf(const JobShape &job) {
  const bool in_full = job.PassesAsItIs() && std::getenv("KPX_LONG") != nullptr;
  return (in_full ? kLongMegabytes : job.megabytes) * kMegabyte / kShare;
}

void PrintTo(const JobShape &shape, std::ostream *out) { *out << shape.name; }

struct Flow {
  int status = -1;
  size_t bytes = 0;  // that came out
  long memory_kib = 0;
};

// The most memory that a running process has had so far, in KiB; 0 when it has ended. What wait4
// tells begins with the memory of this program.
long PeakOf(pid_t process) {
  constexpr std::string_view kLabel = "VmHWM:";
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(kLabel)) return std::stol(line.substr(kLabel.size()));
  }
  return 0;
}

// Sends `head`, then `block` again and again up to `size` bytes, then `tail`.
void Feed(int fd, const std::string &head, const std::string &block, const std::string &tail,
          size_t size) {
  const auto send = [fd](const std::string &text) {
    return write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  };
  bool good = send(head);
  for (size_t sent = 0; good && sent < size; sent += block.size()) good = send(block);
  _exit(good && send(tail) ? 0 : 1);
}

Flow Send(const JobShape &job, size_t size) {
  FilterCall call;
  call.type = job.type;
  call.options = job.options;
  call.ppd_file = std::string(KPX_TEST_DATA) + "/data/ppd/office.ppd";
  int in[2];
  int out[2];
  if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) return {};
  const int filter = StartFilter(FilterArgumentsOf(call), in[0], out[1]);
  close(in[0]);
  close(out[1]);
  const pid_t feeder = fork();
  if (feeder == 0) Feed(in[1], job.head, job.block, job.tail, size);
  close(in[1]);
  Flow flow;
  std::string buffer(kMegabyte, '\0');
  ssize_t count = 0;
  while ((count = read(out[0], buffer.data(), buffer.size())) > 0) {
    flow.bytes += static_cast<size_t>(count);
    flow.memory_kib = std::max(flow.memory_kib, PeakOf(filter));
  }
  close(out[0]);
  flow.status = WaitFor(filter);
  int status = 0;
  waitpid(feeder, &status, 0);
  EXPECT_EQ(status, 0);
  return flow;
}

class Streaming : public testing::TestWithParam<JobShape> {};

TEST_P(Streaming, MemoryDoesNotGrowWithTheJob) {
  setenv("ASAN_OPTIONS", "quarantine_size_mb=1", 1);
  const JobShape &job = GetParam();
  const size_t size = SizeOf(job);
  const Flow small = Send(job, kMegabyte);
  const Flow large = Send(job, size);
  ASSERT_EQ(small.status, 0);
  ASSERT_EQ(large.status, 0);
  EXPECT_GE(large.bytes, size / 2);  // a letter of two bytes goes out as one
  EXPECT_LE(large.memory_kib, small.memory_kib + kGrowthKib);
  if (job.PassesAsItIs()) {
    EXPECT_LT(large.memory_kib, kMostKib);
  }
}

std::string Repeated(const std::string &text, size_t times) {
  std::string result;
  for (size_t i = 0; i < times; ++i) result += text;
  return result;
}

const std::string kHead = "%!PS-Adobe-3.0\n%%EndComments\n%%BeginSetup\n%%EndSetup\n%%Page: 1 1\n";

const std::string kPages = Repeated(
    "%%Page: 1 1\n" + Repeated("100 100 moveto 200 200 lineto stroke\n", 50) + "showpage\n", 500);

INSTANTIATE_TEST_SUITE_P(
    Jobs, Streaming,
    testing::Values(
        JobShape{"conforming", "postscript", kHead,
                 Repeated("100 100 moveto 200 200 lineto stroke % and so on\n", 20000), "%%EOF\n",
                 200},
        JobShape{"options", "postscript", kHead,
                 Repeated(Repeated("(some text of the page here) show\n", 100) +
                              "showpage\n%%Page: 2 2\n",
                          300),
                 "%%EOF\n", 200, "*Duplex=DuplexNoTumble *PageSize=A4"},
        JobShape{"one_line", "postscript", kHead, std::string(kMegabyte, 'x'), "\n", 200},
        JobShape{"unstructured", "postscript", "%!\n", Repeated("1 pop\r", 100000), "", 200},
        JobShape{"binary", "postscript", kHead + "%%BeginBinary: 209715200\n",
                 std::string(kMegabyte, '\033'), "\n%%EndBinary\n", 200},
        JobShape{"header_only", "postscript", "%!PS-Adobe-3.0\n", Repeated("%%Comment: x\n", 50000),
                 "", 200},
        JobShape{"pages_nup", "postscript", kHead, kPages, "%%EOF\n", 40, "*Nup=4"},
        JobShape{"pages_booklet", "postscript", kHead, kPages, "%%EOF\n", 40, "*Booklet=1"},
        JobShape{"pcl", "pcl6", ") HP-PCL XL;2;0\n", std::string(kMegabyte, '\033'), "", 200},
        JobShape{"pcl_options", "pcl6", ") HP-PCL XL;2;0\n", std::string(kMegabyte, '\033'), "",
                 200, "*Duplex=DuplexNoTumble"},
        JobShape{"text", "text", "", Repeated("A line of text with 40 characters in it.\n", 20000),
                 "", 50},
        JobShape{"text_nup", "text", "", Repeated("A line\n\f", 20000), "", 10, "*Nup=16"},
        JobShape{"text_booklet", "text", "", Repeated("A line\n\f", 20000), "", 10, "*Booklet=1"},
        JobShape{"text_one_line", "text", "", Repeated("é", 100000), "", 20}),
    [](const auto &instance) { return instance.param.name; });

}  // namespace
