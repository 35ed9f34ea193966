#include "loopback.h"

#include <fcntl.h>
#include <linux/filter.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace {

[[noreturn]] void Fail(const char *what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// Fills `buffer` with the test data from `offset` on.
void FillTestData(std::vector<char> &buffer, std::uint64_t offset) {
  for (std::size_t i = 0; i < buffer.size(); ++i) {
    buffer[i] = static_cast<char>(TestByte(offset + i));
  }
}

// For its lifetime no write to a descriptor waits.
class NonBlocking {
 public:
  explicit NonBlocking(int descriptor)
      : descriptor_(descriptor), flags_(fcntl(descriptor, F_GETFL)) {
    fcntl(descriptor_, F_SETFL, flags_ | O_NONBLOCK);
  }
  ~NonBlocking() { fcntl(descriptor_, F_SETFL, flags_); }
  NonBlocking(const NonBlocking &) = delete;
  NonBlocking &operator=(const NonBlocking &) = delete;

 private:
  int descriptor_;
  int flags_;
};

// False, with errno ETIMEDOUT, when `descriptor` had none of `events` in time.
bool IsReady(int descriptor, short events) {
  if (HasEvents(descriptor, events, Deadline(EventPatience()))) return true;
  errno = ETIMEDOUT;
  return false;
}

bool AttachDroppingFilter(int socket) {
  // One instruction: take no byte of any packet.
  sock_filter drop = BPF_STMT(BPF_RET | BPF_K, 0);
  const sock_fprog program{1, &drop};
  return setsockopt(socket, SOL_SOCKET, SO_ATTACH_FILTER, &program, sizeof program) == 0;
}

}  // namespace

Listener::Listener(const std::string &address, std::uint16_t port) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
  addrinfo *found = nullptr;
  if (getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found) != 0) {
    errno = EADDRNOTAVAIL;
    Fail("getaddrinfo");
  }
  socket_ = Descriptor(::socket(found->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const int on = 1;
  setsockopt(socket_.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  const int bound = bind(socket_.get(), found->ai_addr, found->ai_addrlen);
  freeaddrinfo(found);
  if (bound != 0) Fail("bind");
  sockaddr_storage own{};
  socklen_t size = sizeof own;
  if (getsockname(socket_.get(), reinterpret_cast<sockaddr *>(&own), &size) != 0) Fail("name");
  // The port is at the same place in both families.
  port_ = ntohs(reinterpret_cast<sockaddr_in *>(&own)->sin_port);
}

Listener &Listener::Listen() {
  if (listen(socket_.get(), 8) != 0) Fail("listen");
  return *this;
}

Descriptor Listener::Accept(int receive_buffer) const {
  if (receive_buffer != 0) {
    setsockopt(socket_.get(), SOL_SOCKET, SO_RCVBUF, &receive_buffer, sizeof receive_buffer);
  }
  const Deadline deadline(EventPatience());
  if (!HasEvents(socket_.get(), POLLIN, deadline)) {
    throw deadline.Missed("a connection to port " + port());
  }
  Descriptor connection(accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
  if (!connection) Fail("accept");
  return connection;
}

bool Listener::HasCaller() const {
  pollfd waited{socket_.get(), POLLIN, 0};
  return poll(&waited, 1, 0) > 0;
}

bool Listener::CanCutCable() {
  const Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  return AttachDroppingFilter(socket.get()) || errno != EPERM;
}

void Listener::CutCable(int socket) {
  if (!AttachDroppingFilter(socket)) Fail("filter");
}

std::string Listener::port() const { return std::to_string(port_); }

unsigned char TestByte(std::uint64_t offset) {
  const std::uint64_t mixed = (offset + 1) * 0x9E3779B97F4A7C15U;
  return static_cast<unsigned char>(mixed >> 56U);
}

std::string TestData(std::size_t count, std::uint64_t offset) {
  std::string data(count, '\0');
  for (std::size_t i = 0; i < count; ++i) data[i] = static_cast<char>(TestByte(offset + i));
  return data;
}

bool WriteTestData(int descriptor, std::uint64_t count) {
  signal(SIGPIPE, SIG_IGN);
  const NonBlocking meanwhile(descriptor);
  std::vector<char> buffer;
  for (std::uint64_t offset = 0; offset < count;) {
    buffer.resize(std::min<std::uint64_t>(count - offset, std::uint64_t{1} << 18U));
    FillTestData(buffer, offset);
    for (std::size_t written = 0; written < buffer.size();) {
      const ssize_t taken = write(descriptor, buffer.data() + written, buffer.size() - written);
      if (taken < 0 && errno == EINTR) continue;
      if (taken < 0 && (errno != EAGAIN || !IsReady(descriptor, POLLOUT))) return false;
      if (taken < 0) continue;
      written += static_cast<std::size_t>(taken);
    }
    offset += buffer.size();
  }
  return true;
}

Received Receive(int socket, std::uint64_t limit, std::size_t piece) {
  Received received;
  std::vector<char> buffer(piece);
  while (received.count < limit) {
    const std::size_t wanted = std::min<std::uint64_t>(piece, limit - received.count);
    const ssize_t count =
        IsReady(socket, POLLIN) ? recv(socket, buffer.data(), wanted, 0) : ssize_t{-1};
    if (count == 0) break;
    if (count < 0) {
      received.error = errno;
      break;
    }
    for (ssize_t i = 0; i < count; ++i) {
      const auto got = static_cast<unsigned char>(buffer[static_cast<std::size_t>(i)]);
      if (got != TestByte(received.count++)) ++received.wrong;
    }
  }
  return received;
}

std::string ReceiveText(int socket) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (;;) {
    const Deadline deadline(EventPatience());
    if (!HasEvents(socket, POLLIN, deadline)) {
      throw deadline.Missed("the end of a connection; it brought \"" + text + "\"");
    }
    const ssize_t count = recv(socket, buffer.data(), buffer.size(), 0);
    if (count <= 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

void Reset(Descriptor socket) {
  const linger reset{1, 0};
  setsockopt(socket.get(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
}

Pipe MakePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) Fail("pipe");
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Descriptor TestFile(std::uint64_t count) {
  Descriptor file(memfd_create("job", MFD_CLOEXEC));
  if (!file || !WriteTestData(file.get(), count)) Fail("file");
  if (lseek(file.get(), 0, SEEK_SET) != 0) Fail("lseek");
  return file;
}

bool Words::ReadOn(const Deadline &deadline) {
  std::array<char, 4096> buffer{};
  while (HasEvents(reading_.get(), POLLIN, deadline)) {
    const ssize_t count = read(reading_.get(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    seen_.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
  }
  throw deadline.Missed("more words than\n" + seen_);
}

bool Words::AwaitMore() { return ReadOn(Deadline(EventPatience())); }

bool Words::Await(const std::string &text) {
  while (seen_.find(text) == std::string::npos) {
    if (!AwaitMore()) return false;
  }
  return true;
}

bool Words::ComesWithin(const std::string &text, std::chrono::milliseconds time) {
  const Deadline deadline(time);
  while (seen_.find(text) == std::string::npos) {
    if (!HasEvents(reading_.get(), POLLIN, deadline) || !AwaitMore()) return false;
  }
  return true;
}

const std::string &Words::Rest() {
  while (AwaitMore()) {
  }
  return seen_;
}

int Occurrences(const std::string &text, const std::string &part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}
