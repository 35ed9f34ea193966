// What the printer stand-in of the sandbox has received.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "descriptor.h"

using kpx::transport::Descriptor;

class PrinterJobs {
 public:
  // Counts the jobs from now on: those of the sandbox, or of another stand-in that stores them in
  // `directory`.
  explicit PrinterJobs(const char *directory = std::getenv("KPX_JOBS"));

  // Waits for the next job and returns its bytes; throws std::runtime_error, with the end of the
  // spooler's log, when none comes.
  std::string Next();
  // True when a job has come that Next has not returned yet.
  bool HasMore() const;

 private:
  std::string PathOf(int number) const;

  std::string directory_;
  Descriptor watch_;
  int next_ = 1;
};

// The PostScript programs of a job, without the job language around them, in order.
std::vector<std::string> PostScriptOf(const std::string &job);

// The number of pages that Ghostscript makes of a PostScript program; throws std::runtime_error
// with its words when it reports an error.
int PagesOf(const std::string &postscript);

// A PostScript file with structuring comments of `pages` pages, made by Ghostscript; page n shows
// "Page n" in large type.
void MakePostScriptFile(const std::string &path, int pages);

// How often `part` occurs in `text`.
int CountOf(const std::string &text, const std::string &part);
