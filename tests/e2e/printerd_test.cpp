// The printer stand-in: what it stores, and how it fails when asked to.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "childprocess.h"
#include "temporarydirectory.h"

namespace {

// A running stand-in.
class Printer {
 public:
  explicit Printer(const std::string &fail_mode = {}) {
    const std::string ready = directory_.Path("ready");
    if (mkfifo(ready.c_str(), 0600) != 0) throw std::runtime_error("mkfifo");
    process_ = fork();
    if (process_ == 0) {
      const std::string jobs = directory_.Path();
      if (fail_mode.empty()) {
        execl(KPX_PRINTERD, "printerd", "--port", "0", "--dir", jobs.c_str(), "--ready",
              ready.c_str(), nullptr);
      } else {
        execl(KPX_PRINTERD, "printerd", "--port", "0", "--dir", jobs.c_str(), "--ready",
              ready.c_str(), "--fail", fail_mode.c_str(), nullptr);
      }
      _exit(127);
    }
    std::ifstream(ready) >> port_;
    if (port_ == 0) throw std::runtime_error("no port");
  }
  ~Printer() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  Printer(const Printer &) = delete;
  Printer &operator=(const Printer &) = delete;

  // Sends a job and waits until the stand-in has closed the connection: true when it did that in
  // order.
  bool Send(const std::string &job, int family = AF_INET) const {
    const int connection = Connect(family);
    const char *rest = job.data();
    size_t left = job.size();
    while (left > 0) {
      const ssize_t sent = send(connection, rest, left, MSG_NOSIGNAL);
      if (sent < 0) break;
      rest += sent;
      left -= static_cast<size_t>(sent);
    }
    shutdown(connection, SHUT_WR);
    char answer = 0;
    const bool in_order = read(connection, &answer, 1) == 0 && left == 0;
    close(connection);
    return in_order;
  }

  // The content of job number `number`, empty when there is none.
  std::string Job(int number) const {
    return ContentOf(directory_.Path("job-000" + std::to_string(number) + ".prn"));
  }

 private:
  int Connect(int family) const {
    sockaddr_in6 six = {};
    six.sin6_family = AF_INET6;
    six.sin6_addr = in6addr_loopback;
    six.sin6_port = htons(port_);
    sockaddr_in four = {};
    four.sin_family = AF_INET;
    four.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    four.sin_port = htons(port_);
    const int connection = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int status =
        family == AF_INET
            ? connect(connection, reinterpret_cast<const sockaddr *>(&four), sizeof four)
            : connect(connection, reinterpret_cast<const sockaddr *>(&six), sizeof six);
    if (status != 0) throw std::runtime_error("cannot connect");
    return connection;
  }

  TemporaryDirectory directory_;
  pid_t process_ = -1;
  uint16_t port_ = 0;
};

}  // namespace

TEST(PrinterStandIn, StoresEachJobsBytesUnderItsNumber) {
  const Printer printer;
  std::string bytes;
  for (int i = 0; i < 1000000; ++i) bytes += static_cast<char>(i * 31);
  EXPECT_TRUE(printer.Send(bytes));
  EXPECT_TRUE(printer.Send("second"));
  EXPECT_EQ(bytes, printer.Job(1));
  EXPECT_EQ("second", printer.Job(2));
}

TEST(PrinterStandIn, TakesJobsOverIpv6) {
  const Printer printer;
  EXPECT_TRUE(printer.Send("six", AF_INET6));
  EXPECT_EQ("six", printer.Job(1));
}

TEST(PrinterStandIn, ABusyOneResetsTheFirstConnections) {
  const Printer printer("busy:2");
  EXPECT_FALSE(printer.Send("one"));
  EXPECT_FALSE(printer.Send("two"));
  EXPECT_TRUE(printer.Send("three"));
  EXPECT_EQ("three", printer.Job(1));
}

TEST(PrinterStandIn, AJobWhoseConnectionBreaksIsNotStored) {
  const Printer printer("reset:10");
  EXPECT_FALSE(printer.Send(std::string(100, 'x')));
  EXPECT_EQ("", printer.Job(1));
  EXPECT_TRUE(printer.Send("short"));
  EXPECT_EQ("short", printer.Job(2));
}
