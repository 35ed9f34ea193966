#include "connect.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <memory>
#include <utility>

#include "report.h"
#include "stop.h"

namespace kpx::transport {

namespace {

using Clock = std::chrono::steady_clock;
using AddressList = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

std::string NumericText(const addrinfo &address) {
  std::array<char, NI_MAXHOST> text{};
  if (getnameinfo(address.ai_addr, address.ai_addrlen, text.data(), text.size(), nullptr, 0,
                  NI_NUMERICHOST) != 0) {
    return "address of an unknown kind";
  }
  return text.data();
}

// Idle connections are asked every half minute whether the printer is still there. What counts as
// gone is decided by Limits::unanswered; the count here only has to be beyond it.
void TurnOnKeepAlive(int socket) {
  constexpr int kOn = 1;
  constexpr int kSeconds = 30;
  constexpr int kCount = 40;
  setsockopt(socket, SOL_SOCKET, SO_KEEPALIVE, &kOn, sizeof kOn);
  setsockopt(socket, IPPROTO_TCP, TCP_KEEPIDLE, &kSeconds, sizeof kSeconds);
  setsockopt(socket, IPPROTO_TCP, TCP_KEEPINTVL, &kSeconds, sizeof kSeconds);
  setsockopt(socket, IPPROTO_TCP, TCP_KEEPCNT, &kCount, sizeof kCount);
}

// Waits until the connection under way is made. 0 when it is, the error number when it failed,
// ECANCELED when `stop` became readable.
int AwaitConnection(int socket, std::chrono::milliseconds limit, int stop) {
  const auto deadline = Clock::now() + limit;
  for (;;) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return ETIMEDOUT;
    std::array<pollfd, 2> waited = {pollfd{stop, POLLIN, 0}, pollfd{socket, POLLOUT, 0}};
    if (poll(waited.data(), waited.size(), static_cast<int>(left.count())) < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (waited[0].revents != 0) return ECANCELED;
    if (waited[1].revents == 0) continue;
    int error = 0;
    socklen_t size = sizeof error;
    if (getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) != 0) return errno;
    return error;
  }
}

// Connects to one address; 0 or the error number as above.
int ConnectOne(const addrinfo &address, const Limits &limits, int stop, Descriptor &made) {
  Descriptor socket(::socket(address.ai_family, address.ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC,
                             address.ai_protocol));
  if (!socket) return errno;
  TurnOnKeepAlive(socket.get());
  if (connect(socket.get(), address.ai_addr, address.ai_addrlen) != 0) {
    if (errno != EINPROGRESS && errno != EINTR) return errno;
    const int error = AwaitConnection(socket.get(), limits.connect, stop);
    if (error != 0) return error;
  }
  made = std::move(socket);
  return 0;
}

// The addresses of `destination`, or none with `error` set to the resolver's number.
AddressList LookUp(const Destination &destination, int stop_status, int &error) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICSERV;
  addrinfo *found = nullptr;
  const StopAtOnce stop_at_once(stop_status);
  error = getaddrinfo(destination.address.c_str(), destination.port.c_str(), &hints, &found);
  return {error == 0 ? found : nullptr, &freeaddrinfo};
}

ConnectResult NotFound(const Destination &destination, int error) {
  ConnectResult result;
  const bool unknown = error == EAI_NONAME || error == EAI_FAIL || error == EAI_NODATA;
  result.end = unknown ? ConnectEnd::kUnknownName : ConnectEnd::kNoLookUp;
  result.reason = "cannot look up the name " + destination.address + ": " +
                  (error == EAI_SYSTEM ? ErrorText(errno) : std::string(gai_strerror(error)));
  return result;
}

}  // namespace

ConnectResult ConnectTo(const Destination &destination, const Limits &limits,
                        const StopRequest &stop) {
  int error = 0;
  const AddressList addresses = LookUp(destination, stop.status, error);
  if (addresses == nullptr) return NotFound(destination, error);

  ConnectResult result;
  for (const addrinfo *address = addresses.get(); address != nullptr; address = address->ai_next) {
    error = ConnectOne(*address, limits, stop.descriptor, result.socket);
    if (error == ECANCELED) {
      result.end = ConnectEnd::kStopped;
      return result;
    }
    const std::string numeric = NumericText(*address);
    if (error == 0) {
      result.end = ConnectEnd::kConnected;
      result.peer = numeric;
      result.reason.clear();
      return result;
    }
    if (!result.reason.empty()) result.reason += ", ";
    result.reason += numeric + ": " + ErrorText(error);
  }
  return result;
}

}  // namespace kpx::transport
