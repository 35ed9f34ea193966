// A printer stand-in on a port of one's own, beside that of the sandbox.
#pragma once

#include <sys/stat.h>

#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "printerjobs.h"
#include "processgroup.h"
#include "temporarydirectory.h"

class NetworkPrinter {
 public:
  // Takes jobs on the port of the loopback interfaces from now on: with `program`, which is called
  // as printerd is, and `more` words.
  explicit NetworkPrinter(int port, const std::string &program = KPX_PRINTERD,
                          std::vector<std::string> more = {})
      : jobs_(directory_.Path().c_str()) {
    const std::string ready = directory_.Path("ready");
    if (mkfifo(ready.c_str(), 0600) != 0) throw std::runtime_error("mkfifo");
    std::vector<std::string> words = {
        program, "--port", std::to_string(port), "--dir", directory_.Path(), "--ready", ready};
    words.insert(words.end(), more.begin(), more.end());
    group_.emplace(words);
    int listening = 0;
    std::ifstream(ready) >> listening;
    if (listening != port) throw std::runtime_error("the printer stand-in did not start");
  }
  NetworkPrinter(const NetworkPrinter &) = delete;
  NetworkPrinter &operator=(const NetworkPrinter &) = delete;

  // Waits for the next job and returns its bytes.
  std::string Next() { return jobs_.Next(); }
  bool HasMore() const { return jobs_.HasMore(); }
  // The path of one of the files that it stores.
  std::string Path(const std::string &name) const { return directory_.Path(name); }

 private:
  TemporaryDirectory directory_;
  PrinterJobs jobs_;
  std::optional<ProcessGroup> group_;
};
