// Which choices of a PPD file the options of an application mean. The one module that has libcups
// map options.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct ppd_file_s;  // of libcups

namespace kpx::filter {

// An option as an application gives it: "sides" and "two-sided-long-edge".
using ApplicationOption = std::pair<std::string, std::string>;

// The options of `words`, as the spooler hands them over; those in braces are one.
std::vector<ApplicationOption> ApplicationOptionsOf(const std::string &words);

// A choice that options mean. Of a custom value, `choice` is "Custom".
struct MarkedChoice {
  std::string keyword, choice;
  double width = 0, length = 0;  // of a custom page size, points
  std::string text;              // of another custom value
};

// The printer's options as libcups knows them.
class PpdMarking {
 public:
  // Of the PPD text; one that cannot be read knows no option.
  explicit PpdMarking(const std::string &ppd_text);
  ~PpdMarking();
  PpdMarking(const PpdMarking &) = delete;
  PpdMarking &operator=(const PpdMarking &) = delete;

  // The choices that the options mean, taken together.
  std::vector<MarkedChoice> ChoicesOf(const std::vector<ApplicationOption> &options);

 private:
  ppd_file_s *ppd_;
};

}  // namespace kpx::filter
