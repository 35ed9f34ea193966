// Memory does not grow with the job, and stays small: large jobs go through pipes. Pages of
// programs, libraries and fonts that lie in files are the same for all processes, and the kernel
// drops them when it needs to; so a job that is laid out has its bound for what is the process's
// own (RssAnon of proc(5)), one that passes as it is has it for all. What wait4 tells begins with
// the memory of this program. KPX_LONG=1 sends 4 GB.
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
constexpr size_t kReadsASample = 16;  // of 64 KiB, what a pipe holds

// AddressSanitizer keeps freed memory for a while and runs slower.
#ifdef __SANITIZE_ADDRESS__
constexpr size_t kShare = 4;
constexpr long kGrowthKib = 16384;
constexpr long kMostKib = 1 << 20;
#else
constexpr size_t kShare = 1;
constexpr long kGrowthKib = 1024;
constexpr long kMostKib = 16384;
#endif

struct JobShape {
  const char *name, *type;
  std::string head, block, tail;
  size_t megabytes, long_megabytes;
  std::string options = {};

  [[nodiscard]] bool PassesAsItIs() const { return std::string_view(type) != "text"; }
};

void PrintTo(const JobShape &shape, std::ostream *out) { *out << shape.name; }

struct Flow {
  int status = -1;
  size_t bytes = 0;                  // that came out
  long memory_kib = 0, own_kib = 0;  // the most of all memory, and of its own
};

// A value of a running process's status, in KiB; 0 when it has ended.
long StatusKib(pid_t process, std::string_view label) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(label)) return std::atol(line.c_str() + label.size());
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
  size_t reads = 0;
  while ((count = read(out[0], buffer.data(), buffer.size())) > 0) {
    flow.bytes += static_cast<size_t>(count);
    if (reads++ % kReadsASample == 0) {
      flow.memory_kib = std::max(flow.memory_kib, StatusKib(filter, "VmHWM:"));
      flow.own_kib = std::max(flow.own_kib, StatusKib(filter, "RssAnon:"));
    }
  }
  close(out[0]);
  int status = 0;
  flow.status = WaitFor(filter);
  waitpid(feeder, &status, 0);
  EXPECT_EQ(status, 0);
  return flow;
}

class Streaming : public testing::TestWithParam<JobShape> {};

TEST_P(Streaming, MemoryDoesNotGrowWithTheJob) {
  setenv("ASAN_OPTIONS", "quarantine_size_mb=1", 1);
  const JobShape &job = GetParam();
  const bool is_long = std::getenv("KPX_LONG") != nullptr;
  const size_t size = (is_long ? job.long_megabytes : job.megabytes) * kMegabyte / kShare;
  const Flow small = Send(job, job.megabytes * kMegabyte / kShare / 8);
  const Flow large = Send(job, size);
  ASSERT_EQ(small.status, 0);
  ASSERT_EQ(large.status, 0);
  EXPECT_GE(large.bytes, size / 2);  // a letter of two bytes goes out as one
  EXPECT_GT(small.own_kib, 0);
  EXPECT_LE(large.own_kib, small.own_kib + kGrowthKib);
  EXPECT_LE(job.PassesAsItIs() ? large.memory_kib : large.own_kib, kMostKib);
}

std::string Repeated(const std::string &text, size_t times) {
  std::string result;
  for (size_t i = 0; i < times; ++i) result += text;
  return result;
}

const std::string kHead = "%!PS-Adobe-3.0\n%%EndComments\n%%BeginSetup\n%%EndSetup\n%%Page: 1 1\n";

constexpr size_t kLong = 4097;  // more than 32 bits count

constexpr char kMixed[] =
    "Latin: na\u00EFve \u0141\u00F3d\u017A \u20AC5, Ti\u1EBFng Vi\u1EC7t\n"
    "Greek: \u03BA\u03CC\u03C3\u03BC\u03B5, Cyrillic: \u041F\u0440\u0438\u0432\u0435\u0442\n"
    "Hebrew: \u05E9\u05DC\u05D5\u05DD 123, Arabic: \u0645\u0631\u062D\u0628\u0627\n"
    "Boxes: \u250C\u2500\u2510 \u2192 e\u0302x\u0302\n";

// Lines that hold every character there is, most of which no font has.
std::string EveryCharacter() {
  std::string text;
  for (char32_t c = 0x20; c < 0x30000; ++c) {
    if (c >= 0xD800 && c < 0xE000) continue;
    if (c >= 0x10000) text += static_cast<char>(0xF0 | c >> 18);
    if (c >= 0x10000) text += static_cast<char>(0x80 | (c >> 12 & 0x3F));
    if (c >= 0x800 && c < 0x10000) text += static_cast<char>(0xE0 | c >> 12);
    if (c >= 0x800) text += static_cast<char>(0x80 | (c >> 6 & 0x3F));
    if (c >= 0x80 && c < 0x800) text += static_cast<char>(0xC0 | c >> 6);
    text += static_cast<char>(c < 0x80 ? c : 0x80 | (c & 0x3F));
    if (c % 64 == 63) text += '\n';
  }
  return text;
}

const std::string kPages = Repeated(
    "%%Page: 1 1\n" + Repeated("100 100 moveto 200 200 lineto stroke\n", 50) + "showpage\n", 500);

INSTANTIATE_TEST_SUITE_P(
    Jobs, Streaming,
    testing::Values(
        JobShape{"conforming", "postscript", kHead,
                 Repeated("100 100 moveto 200 200 lineto stroke % and so on\n", 20000), "%%EOF\n",
                 200, kLong},
        JobShape{"options", "postscript", kHead,
                 Repeated(Repeated("(some text of the page here) show\n", 100) +
                              "showpage\n%%Page: 2 2\n",
                          300),
                 "%%EOF\n", 200, kLong, "*Duplex=DuplexNoTumble *PageSize=A4"},
        JobShape{"one_line", "postscript", kHead, std::string(kMegabyte, 'x'), "\n", 200, kLong},
        JobShape{"unstructured", "postscript", "%!\n", Repeated("1 pop\r", 100000), "", 200, kLong},
        JobShape{"binary", "postscript", kHead + "%%BeginBinary: 209715200\n",
                 std::string(kMegabyte, '\033'), "\n%%EndBinary\n", 200, 200},
        JobShape{"header_only", "postscript", "%!PS-Adobe-3.0\n", Repeated("%%Comment: x\n", 50000),
                 "", 200, kLong},
        JobShape{"pages_nup", "postscript", kHead, kPages, "%%EOF\n", 40, kLong, "*Nup=4"},
        JobShape{"pages_booklet", "postscript", kHead, kPages, "%%EOF\n", 40, kLong, "*Booklet=1"},
        JobShape{"pcl_options", "pcl6", ") HP-PCL XL;2;0\n", std::string(kMegabyte, '\033'), "",
                 200, kLong, "*Duplex=DuplexNoTumble"},
        JobShape{"pcl", "pcl6", ") HP-PCL XL;2;0\n", std::string(kMegabyte, '\033'), "", 200,
                 kLong},
        JobShape{"text", "text", "", Repeated("A line of text with 40 characters in it.\n", 20000),
                 "", 64, kLong},
        JobShape{"text_mixed", "text", "", Repeated(kMixed, 5000), "", 24, kLong},
        JobShape{"text_every_character", "text", "", EveryCharacter(), "", 8, 64},
        JobShape{"text_nup", "text", "", Repeated("A line\n\f", 20000), "", 10, 256, "*Nup=16"},
        JobShape{"text_booklet", "text", "", Repeated("A line\n\f", 20000), "", 10, 256,
                 "*Booklet=1"},
        JobShape{"text_header", "text", "", Repeated(kMixed, 5000), "", 16, 512,
                 "*TextHeader=1 *TextLineNumbers=1 *TextColumns=2"},
        JobShape{"text_one_line", "text", "", Repeated("é", 100000), "", 20, kLong}),
    [](const auto &instance) { return instance.param.name; });

}  // namespace
