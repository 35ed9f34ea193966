// A PostScript document on its way through: the settings' code is put in where the document
// conventions ask for it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "featurecode.h"
#include "jobsource.h"
#include "ppdmodel.h"

namespace kpx::filter {

// The code for the parts of a document, ready to be written.
struct DocumentCode {
  std::string exit_server, prolog, setup, page_setup;
  std::vector<KeptChoice> kept = {};  // to be put behind the document's own set-up
};

// What came of putting the code in.
struct CodeReport {
  bool is_in_place = true;  // in front of what it is for, as far as can be seen
  std::string unkept;       // what the documents set where nothing can be put behind it; or empty

  void Add(const CodeReport &other);
};

// Copies one document, or several that follow each other; ends at the end of the job or before a
// language switch.
class DocumentFilter {
 public:
  // All must outlive this.
  DocumentFilter(const PpdModel &model, const DocumentCode &code, JobSource *source, JobSink *sink)
      : model_(model), code_(code), source_(source), sink_(sink) {}

  CodeReport Run();

 private:
  // Where in a conforming document the copying is.
  enum class Place {
    Header,    // in the header comments
    Preamble,  // behind them, before the document's setup
    Prolog,    // between BeginProlog and EndProlog
    Body       // the setup code is out
  };

  void Copy();
  void EndDocument();
  void ShowLastPage();
  [[nodiscard]] bool HasCode() const;
  [[nodiscard]] bool IsInPlace() const;
  [[nodiscard]] bool PassesPlainLines() const;
  void Unstructured(bool has_first_line);
  void Line(std::string_view line);
  [[nodiscard]] bool BeginsDocument(std::string_view line);
  void NextDocument();
  [[nodiscard]] bool Verbatim(std::string_view line);
  void HeaderLine(std::string_view line);
  void PreambleLine(std::string_view line);
  void BeginProlog(const std::string &line);
  [[nodiscard]] bool BlockEnds(const std::string &line);
  void BlockLine(std::string_view line);
  void CodeLine(const std::string &line);
  void PrologLine(std::string_view line);
  void BodyLine(std::string_view line);
  void CountedData(const std::string &line);
  void StartBody();
  void Watch(std::string_view piece);
  void WriteKept(std::string_view line);
  void WriteFirstPageSetup();
  void WriteProlog(bool with_frame);
  void WriteSetup(bool with_frame);

  const PpdModel &model_;
  const DocumentCode &code_;
  JobSource *source_;
  JobSink *sink_;
  Place place_ = Place::Header;
  int documents_ = 0;  // depth of BeginDocument
  int blocks_ = 0;     // depth of other Begin/End pairs in the preamble
  bool prolog_written_ = false;
  bool loose_prolog_ = false;            // prolog code without a frame goes on
  bool prolog_ended_ = false;            // explicitly
  bool ended_ = false;                   // nothing but empty lines since the document's end
  CodeReport report_;                    // of the documents that are done
  bool is_eps_ = false;                  // the present document shows its page itself or not
  bool late_ = false;                    // the code came behind what may be pages
  bool page_pending_ = false;            // the page setup code of the present page is still to come
  bool page_code_ahead_ = false;         // the page setup code of the first page is out
  std::vector<const KeptChoice *> set_;  // those that the document has set
  bool watches_ = !code_.kept.empty();   // for what the document sets before its pages
  size_t watched_ = 0;                   // bytes
  size_t passed_ = 0, looked_ = 0;       // bytes handed out, and looked at from the lines of blocks
};

}  // namespace kpx::filter
