// A name service that is asked and does not answer. Only inside the sandbox.
#pragma once

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <cstdint>

#include "changedfile.h"
#include "descriptor.h"

// A name server that gets questions and answers none.
class SilentNameServer {
 public:
  SilentNameServer()
      : name_service_("/etc/nsswitch.conf", "hosts: files dns\n"),
        resolver_("/etc/resolv.conf", "nameserver 127.0.0.1\n"),
        socket_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    constexpr std::uint16_t kPort = 53;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(kPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(bind(socket_.get(), reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
  }
  // Waits for the next question.
  bool IsAsked() const {
    pollfd waited{socket_.get(), POLLIN, 0};
    return poll(&waited, 1, 30000) == 1;
  }

 private:
  ChangedFile name_service_;
  ChangedFile resolver_;
  kpx::transport::Descriptor socket_;
};
