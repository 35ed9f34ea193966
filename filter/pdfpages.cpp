#include "pdfpages.h"

#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <sstream>
#include <string>

#include "converter.h"
#include "jobsource.h"

namespace kpx::filter {

namespace {

constexpr char kInfoProgram[] = "/usr/bin/pdfinfo";
constexpr int kBoxesOfPage = 5;

// The lines of pdfinfo, as far as they say that a page needs no layout.
class PageReport {
 public:
  explicit PageReport(const PpdPageSize &paper) : paper_(paper) {}

  // False when the line tells of something that has to be laid out.
  [[nodiscard]] bool Take(std::string_view line) {
    const size_t colon = line.find(':');
    if (colon == std::string_view::npos) return true;
    const std::string_view name = line.substr(0, colon);
    std::istringstream value(std::string(line.substr(colon + 1)));
    value.imbue(std::locale::classic());
    std::string word;
    if (name == "Pages") return static_cast<bool>(value >> pages_);
    if (name == "Form") return value >> word && word == "none" && (has_form_line_ = true);
    if (name == "Encrypted") return value >> word && word == "no";
    if (!name.starts_with("Page ")) return true;
    if (name.ends_with(" rot")) return IsUpright(&value);
    return !name.ends_with("Box") || IsWhole(&value);
  }

  // Whether the lines told of every page.
  [[nodiscard]] bool IsComplete() const {
    return has_form_line_ && pages_ > 0 && upright_ == pages_ && whole_ == pages_ * kBoxesOfPage;
  }

 private:
  bool IsUpright(std::istringstream *value) {
    int degrees = -1;
    ++upright_;
    return *value >> degrees && degrees == 0;
  }

  bool IsWhole(std::istringstream *value) {
    double left = 0, bottom = 0, right = 0, top = 0;
    ++whole_;
    return *value >> left >> bottom >> right >> top && IsNear(left, 0) && IsNear(bottom, 0) &&
           IsNear(right, paper_.width) && IsNear(top, paper_.length);
  }

  static bool IsNear(double value, double other) { return std::abs(value - other) <= 1; }

  PpdPageSize paper_;
  bool has_form_line_ = false;
  long pages_ = 0, upright_ = 0, whole_ = 0;
};

}  // namespace

bool FillPaper(int document, const PpdPageSize &paper) {
  int ends[2] = {-1, -1};
  if (access(kInfoProgram, X_OK) != 0 || pipe2(ends, O_CLOEXEC) != 0) return false;
  const Descriptor from(ends[0]);
  Descriptor to(ends[1]);
  Converter converter(
      {.words = {kInfoProgram, "-f", "1", "-l", "2147483647", "-box", "/proc/self/fd/0"},
       .environment = ConverterEnvironment(),
       .input = document,
       .output = to.Number()});
  to.Close();
  PageReport report(paper);
  JobSource source = DescriptorSource(from.Number());
  for (std::string_view line = source.NextPiece(); !line.empty(); line = source.NextPiece()) {
    if (!report.Take(line)) return false;
  }
  return converter.Wait() == 0 && report.IsComplete();
}

}  // namespace kpx::filter
