// Jobs without documents, which the scheduler takes in by the thousand. Only inside the full
// sandbox.
#pragma once

#include <cups/cups.h>

#include <stdexcept>
#include <string>
#include <vector>

// Has the queue hold jobs called "Document 1", "Document 2" ... of the user; their numbers.
inline std::vector<int> MakeHeldJobs(const char *queue, int count, const char *user = "root") {
  http_t *http = httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC, cupsEncryption(), 1,
                              30000, nullptr);
  cupsSetUser(user);
  cups_option_t *options = nullptr;
  const int settings = cupsAddOption("job-hold-until", "indefinite", 0, &options);
  std::vector<int> numbers;
  while (static_cast<int>(numbers.size()) < count) {
    const std::string title = "Document " + std::to_string(numbers.size() + 1);
    numbers.push_back(cupsCreateJob(http, queue, title.c_str(), settings, options));
    if (numbers.back() == 0) throw std::runtime_error(title + ": " + cupsLastErrorString());
  }
  cupsFreeOptions(settings, options);
  httpClose(http);
  cupsSetUser(nullptr);
  return numbers;
}
