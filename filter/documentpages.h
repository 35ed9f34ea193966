// A PostScript document taken apart at the marks of its pages.
#pragma once

#include <cerrno>
#include <cstddef>
#include <string>
#include <string_view>

#include "booklet.h"
#include "jobsource.h"

namespace kpx::filter {

class DocumentPages {
 public:
  // The order that the document says its pages are in.
  enum class Order {
    kAscending,   // or not told
    kDescending,  // the last page comes first
    kSpecial      // nobody may change it: a page may need what another one brings
  };

  // Takes a document off the front of `source`: up to the end of the job, a language switch or the
  // beginning of another document. Takes any bytes. To be called once.
  void Read(JobSource *source);

  // The pages that are marked; 0 when what Problem says keeps them from being told apart.
  size_t Count() const { return problem_.empty() ? pages_ : 0; }

  // Why the document's pages cannot be told apart, as a clause ("it does not mark its pages");
  // empty when they can.
  const std::string &Problem() const { return problem_; }

  Order PageOrder() const { return order_; }

  // Whether the document says that its pages are to be read from the side.
  [[nodiscard]] bool IsLying() const { return is_lying_; }

  // 0, or the errno of what failed in keeping the document.
  int Error() const { return store_.Error(); }

  // The parts of the document one after the other: what comes before its pages, each page as it
  // stands in the document (from 1), what comes behind them. Together they are the document.
  size_t Parts() const { return store_.Pages(); }
  // The part of a page, from 0 in the order of reading.
  size_t PartOfPage(size_t page) const;
  // A part as a source, which this must outlive.
  JobSource Part(size_t part);
  // The document as it came.
  JobSource Whole();

 private:
  void BeginPart();
  [[nodiscard]] bool IsStranger(std::string_view line) const;
  void Line(std::string_view line);
  void Comment(std::string_view line);
  [[nodiscard]] bool EndsHere(JobSource *source);
  void FindProblem();

  PageStore store_;
  JobSink out_{[this](std::string_view bytes) {
    store_.Write(bytes);
    errno = store_.Error();
    return store_.Error() == 0;
  }};
  Order order_ = Order::kAscending;
  std::string problem_;
  size_t pages_ = 0;
  size_t told_ = 0;       // the number of pages that the document says it has
  size_t documents_ = 0;  // depth of BeginDocument
  size_t resources_ = 0;  // depth of marked procedures and fonts
  bool is_conforming_ = false;
  bool is_lying_ = false;
  bool in_header_ = true;
  bool in_trailer_ = false;
  bool has_ended_ = false;
  bool has_stranger_ = false;  // another document in it, without marks
};

}  // namespace kpx::filter
