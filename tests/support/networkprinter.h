// A printer stand-in on a port of one's own, beside that of the sandbox.
#pragma once

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <stdexcept>

#include "printerjobs.h"
#include "temporarydirectory.h"

class NetworkPrinter {
 public:
  // Takes jobs on the port of the loopback interfaces from now on.
  explicit NetworkPrinter(int port) : jobs_(directory_.Path().c_str()) {
    const std::string ready = directory_.Path("ready");
    if (mkfifo(ready.c_str(), 0600) != 0) throw std::runtime_error("mkfifo");
    process_ = fork();
    if (process_ == 0) {
      execl(KPX_PRINTERD, "printerd", "--port", std::to_string(port).c_str(), "--dir",
            directory_.Path().c_str(), "--ready", ready.c_str(), nullptr);
      _exit(127);
    }
    int listening = 0;
    std::ifstream(ready) >> listening;
    if (listening != port) throw std::runtime_error("the printer stand-in did not start");
  }
  ~NetworkPrinter() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  NetworkPrinter(const NetworkPrinter &) = delete;
  NetworkPrinter &operator=(const NetworkPrinter &) = delete;

  // Waits for the next job and returns its bytes.
  std::string Next() { return jobs_.Next(); }
  bool HasMore() const { return jobs_.HasMore(); }

 private:
  TemporaryDirectory directory_;
  PrinterJobs jobs_;
  pid_t process_ = -1;
};
