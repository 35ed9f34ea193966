// Printers on the loopback interface that behave as a test needs them to, and job data whose every
// byte can be checked without keeping it. Nothing here waits longer than EventPatience for others.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "deadline.h"
#include "descriptor.h"

using kpx::transport::Descriptor;

// A TCP address of the loopback interface: held from the start, so that nobody else gets the port,
// but refusing connections until Listen is called.
class Listener {
 public:
  // `address` is numeric; `port` 0 takes a free one. Throws std::system_error.
  explicit Listener(const std::string &address = "127.0.0.1", std::uint16_t port = 0);

  // Connections are accepted from now on. Returns itself.
  Listener &Listen();
  // Waits for the next connection; throws when none comes. `receive_buffer` bytes are asked of the
  // system when not 0.
  Descriptor Accept(int receive_buffer = 0) const;
  // True when a connection is waiting to be accepted.
  bool HasCaller() const;
  // From now on every packet sent to `socket` is lost, as if the cable had been cut.
  static void CutCable(int socket);
  // Whether this process may do that.
  static bool CanCutCable();

  std::string port() const;
  int socket() const { return socket_.get(); }

 private:
  Descriptor socket_;
  std::uint16_t port_ = 0;
};

// The byte at place `offset` of the test data: differs from place to place, without a short period.
unsigned char TestByte(std::uint64_t offset);
// `count` bytes of the test data from `offset` on.
std::string TestData(std::size_t count, std::uint64_t offset = 0);
// Writes `count` bytes of the test data to `descriptor`; false when that failed (errno is set).
// A broken pipe is such a failure, and a reader that takes nothing (ETIMEDOUT): SIGPIPE is ignored
// from the first call on.
bool WriteTestData(int descriptor, std::uint64_t count);

// What came in over a connection.
struct Received {
  std::uint64_t count = 0;
  std::uint64_t wrong = 0;  // bytes that differ from the test data from its start
  int error = 0;  // 0: the sender ended in order; otherwise the error of recv, or ETIMEDOUT
};
// Takes at most `limit` bytes in pieces of `piece`, up to the end or an error.
Received Receive(int socket, std::uint64_t limit = UINT64_MAX, std::size_t piece = 1 << 18);
// The same, kept as text.
std::string ReceiveText(int socket);

// Closes with a reset instead of an orderly end.
void Reset(Descriptor socket);

// A pipe, both ends closed on exec.
struct Pipe {
  Descriptor reading;
  Descriptor writing;
};
Pipe MakePipe();

// A file without a name that holds `count` bytes of the test data; the position is at its start.
Descriptor TestFile(std::uint64_t count);

// Collects what is written to a pipe, line by line or until a text has come. Throws
// std::runtime_error when nothing comes for EventPatience.
class Words {
 public:
  explicit Words(Descriptor reading) : reading_(std::move(reading)) {}
  // Reads until `text` has come; false when the writers closed before.
  bool Await(const std::string &text);
  // Reads what comes next; false when the writers closed before.
  bool AwaitMore();
  // True when `text` has come already or comes in so short a time.
  bool ComesWithin(const std::string &text, std::chrono::milliseconds time);
  // Reads up to the end; all that ever came.
  const std::string &Rest();
  const std::string &seen() const { return seen_; }

 private:
  bool ReadOn(const Deadline &deadline);

  Descriptor reading_;
  std::string seen_;
};

// How often `part` occurs in `text`.
int Occurrences(const std::string &text, const std::string &part);
