// Service discovery on the networks of the sandbox.
#pragma once

#include <stdexcept>
#include <string>

#include "spooler.h"

// For its lifetime a system bus and avahi-daemon run, and this host is `name`.local.
class ServiceDiscovery {
 public:
  explicit ServiceDiscovery(const std::string &name) {
    const CommandResult result = RunProgram({KPX_DNSSD, name});
    if (result.status != 0) throw std::runtime_error("no service discovery: " + result.output);
  }
  ~ServiceDiscovery() { RunProgram({KPX_DNSSD, "--stop"}); }
  ServiceDiscovery(const ServiceDiscovery &) = delete;
  ServiceDiscovery &operator=(const ServiceDiscovery &) = delete;
};
