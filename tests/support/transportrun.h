// Runs the installed kpxnbtrans.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "loopback.h"

// How a run ended.
struct Ended {
  int status = -1;  // exit status, -1 when a signal ended the process
  std::string words;
  long peak_kilobytes = 0;  // largest resident size
};

// One running transport. Killed when it goes without having been waited for.
class TransportRun {
 public:
  // `input` becomes its standard input; without one its standard input is closed.
  TransportRun(const std::vector<std::string> &arguments, Descriptor input);
  ~TransportRun();
  TransportRun(const TransportRun &) = delete;
  TransportRun &operator=(const TransportRun &) = delete;

  // Its standard error.
  Words &words() { return words_; }
  void Send(int signal) const;
  // Throws when it says nothing for EventPatience.
  Ended Wait();

 private:
  Words words_;
  pid_t process_ = -1;
};

// The same in one step.
Ended RunTransport(const std::vector<std::string> &arguments, Descriptor input);
