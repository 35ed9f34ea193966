// A stand-in for a network printer: takes jobs on a TCP port and stores each one's bytes.
//
// Usage: printerd --port N --dir DIR [--ready FILE] [--fail MODE]
//
//   --port N      listens on 127.0.0.1 and [::1], port N; 0 takes a free one
//   --dir DIR     job number n appears as DIR/job-000n.prn when its connection has ended in order
//   --ready FILE  the port number is written to FILE when jobs can be sent: through a rename, or
//                 straight into it when it is a FIFO that somebody waits at
//   --fail MODE   busy:N     the first N connections are reset at once
//                 reset:N    every connection is reset after N bytes
//
// Runs until it is ended by a signal. One job at a time, as a printer takes them.

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

struct Options {
  int port = -1;
  std::string dir;
  std::string ready;
  int busy = 0;
  long reset_after = -1;
};

[[noreturn]] void Fail(const char *what) {
  std::perror(what);
  std::exit(1);
}

bool ReadFailMode(const std::string &mode, Options &options) {
  if (mode.starts_with("busy:")) options.busy = std::atoi(mode.c_str() + 5);
  if (mode.starts_with("reset:")) options.reset_after = std::atol(mode.c_str() + 6);
  return options.busy > 0 || options.reset_after >= 0;
}

bool ReadOptions(int argc, char **argv, Options &options) {
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string name = argv[i];
    if (name == "--port") options.port = std::atoi(argv[i + 1]);
    if (name == "--dir") options.dir = argv[i + 1];
    if (name == "--ready") options.ready = argv[i + 1];
    if (name == "--fail" && !ReadFailMode(argv[i + 1], options)) return false;
  }
  return argc % 2 == 1 && options.port >= 0 && !options.dir.empty();
}

int Listen(const sockaddr *address, socklen_t length) {
  const int one = 1;
  const int listener = socket(address->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (listener < 0) return -1;
  setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
  if (address->sa_family == AF_INET6) {
    setsockopt(listener, IPPROTO_IPV6, IPV6_V6ONLY, &one, sizeof one);
  }
  if (bind(listener, address, length) == 0 && listen(listener, 16) == 0) return listener;
  close(listener);
  return -1;
}

int ListenOnIpv4(int &port) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const int listener = Listen(reinterpret_cast<sockaddr *>(&address), sizeof address);
  if (listener < 0) Fail("printerd: listen");
  socklen_t length = sizeof address;
  getsockname(listener, reinterpret_cast<sockaddr *>(&address), &length);
  port = ntohs(address.sin_port);
  return listener;
}

// -1 on a host without IPv6.
int ListenOnIpv6(int port) {
  sockaddr_in6 address = {};
  address.sin6_family = AF_INET6;
  address.sin6_port = htons(static_cast<uint16_t>(port));
  address.sin6_addr = in6addr_loopback;
  return Listen(reinterpret_cast<sockaddr *>(&address), sizeof address);
}

// Closes the connection so that the peer sees a reset.
void Reset(int connection) {
  const linger now = {1, 0};
  setsockopt(connection, SOL_SOCKET, SO_LINGER, &now, sizeof now);
  close(connection);
}

void TakeJob(int connection, const Options &options, int number) {
  char name[32];
  std::snprintf(name, sizeof name, "/job-%04d.prn", number);
  const std::string path = options.dir + name;
  const std::string partial = options.dir + "/.partial";
  std::ofstream file(partial, std::ios::binary | std::ios::trunc);
  long total = 0;
  char buffer[65536];
  ssize_t count = 0;
  while ((count = read(connection, buffer, sizeof buffer)) > 0) {
    file.write(buffer, count);
    total += count;
    if (options.reset_after >= 0 && total >= options.reset_after) {
      Reset(connection);
      return;
    }
  }
  file.close();
  if (count == 0) std::rename(partial.c_str(), path.c_str());
  close(connection);
}

void WriteReady(const Options &options, int port) {
  if (options.ready.empty()) return;
  if (std::filesystem::is_fifo(options.ready)) {
    std::ofstream(options.ready) << port << '\n';
    return;
  }
  const std::string partial = options.ready + ".partial";
  std::ofstream(partial) << port << '\n';
  std::rename(partial.c_str(), options.ready.c_str());
}

}  // namespace

int main(int argc, char **argv) {
  Options options;
  if (!ReadOptions(argc, argv, options)) {
    std::fprintf(stderr, "usage: %s --port N --dir DIR [--ready FILE] [--fail busy:N|reset:N]\n",
                 argv[0]);
    return 2;
  }
  pollfd listeners[2] = {{ListenOnIpv4(options.port), POLLIN, 0}, {-1, POLLIN, 0}};
  listeners[1].fd = ListenOnIpv6(options.port);
  WriteReady(options, options.port);
  for (int number = 1; poll(listeners, 2, -1) > 0;) {
    for (const pollfd &listener : listeners) {
      if ((listener.revents & POLLIN) == 0) continue;
      const int connection = accept4(listener.fd, nullptr, nullptr, SOCK_CLOEXEC);
      if (connection < 0) continue;
      if (options.busy > 0) {
        --options.busy;
        Reset(connection);
      } else {
        TakeJob(connection, options, number++);
      }
    }
  }
  return 0;
}
