// Spooler stand-ins whose commands can be held back. Only inside the full sandbox.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "deadline.h"
#include "descriptor.h"
#include "spoolerstandin.h"

using kpx::transport::Descriptor;

// lpadmin and enable that announce "<command> <queue>" and wait until they are let go, when such a
// call is one of those to hold.
class GatedSpooler {
 public:
  // Nothing is held at first.
  GatedSpooler() : reached_(MakePipe(kReached)), gate_(MakePipe(kGate)) {
    std::filesystem::remove_all(kHolds);
    std::filesystem::create_directory(kHolds);
    PutGate("/usr/lib/lpadmin", "$2");
    PutGate("/usr/bin/enable", "$1");
  }

  // From now on calls of `command` for `queue` wait at the gate.
  static void Hold(const std::string &command, const std::string &queue) {
    std::ofstream(HoldMark(command, queue));
  }
  // Until a call waits: "<command> <queue>".
  std::string WaitReached() const {
    std::string line;
    while (!line.ends_with('\n')) {
      char letter = 0;
      if (!HasEvents(reached_.get(), POLLIN, Deadline(EventPatience())) ||
          read(reached_.get(), &letter, 1) != 1) {
        throw std::runtime_error("no command came to the gate");
      }
      line += letter;
    }
    return line.substr(0, line.size() - 1);
  }
  // Lets the call that waits go on.
  void Open() const {
    if (write(gate_.get(), "\n", 1) != 1) throw std::runtime_error("the gate is stuck");
  }

 private:
  static constexpr char kReached[] = "/run/kpx/gate-reached";
  static constexpr char kGate[] = "/run/kpx/gate";
  static constexpr char kHolds[] = "/run/kpx/gate-holds";

  static std::string HoldMark(const std::string &command, const std::string &queue) {
    return std::string(kHolds) + "/" + command + "-" + queue;
  }

  // Open for both directions, so that no end waits for the other one to come.
  static Descriptor MakePipe(const char *path) {
    std::filesystem::remove(path);
    if (mkfifo(path, 0600) != 0) throw std::runtime_error("mkfifo");
    return Descriptor(open(path, O_RDWR | O_CLOEXEC));
  }

  // The command waits before it does what it did so far.
  static void PutGate(const std::string &path, const std::string &queue) {
    const std::string name = std::filesystem::path(path).filename();
    const std::string action = ContentOf(path);
    std::ofstream(path) << "#!/bin/sh\nif [ -e \"" + HoldMark(name, queue) +
                               "\" ]; then\n  echo \"" + name + " " + queue + "\" >" + kReached +
                               "\n  read -r go <" + kGate + "\nfi\n" + action;
  }

  SpoolerStandIn commands_;
  Descriptor reached_;
  Descriptor gate_;
};
