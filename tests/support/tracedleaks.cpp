// Part of kpxfilter and of the bridge's programs in the sanitizer build: in a process that a test
// traces, leaks cannot be looked for, and the attempt would end it with a failure.
#include <fstream>
#include <string>

extern "C" int __lsan_is_turned_off();

int __lsan_is_turned_off() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("TracerPid:", 0) == 0) return std::stoi(line.substr(10)) != 0 ? 1 : 0;
  }
  return 0;
}
