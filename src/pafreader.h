// The reader of the PAF format, the text form of a printer description.
#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "chash.h"
#include "textencoding.h"

// What a description says.
struct PafContent {
  Owned<CString> name;  // the printer's
  Owned<CString> ppd_file;
  Owned<CHash> features;             // identifier to CFeature
  Owned<CHash> installable_options;  // identifier to CFeature
  Owned<CHash> custom_paper;         // the four limits; null without a custom paper block
  Owned<CList> constraints;          // of CConstrain, in file order
};

// Why a description is corrupt.
struct PafError {
  std::string line;    // the line being read, empty at the end of the file
  int line_number;     // from 1; at the end of the file the last line's
  std::string reason;  // English, for the log
};

// The whole description or the first error. Every content is accepted or refused. What the next
// value line means is one state for all reads of a run: every header line, comment and empty line
// sets it to nothing, so it only matters to a description that begins with something else. After an
// error it is nothing.
[[nodiscard]] std::variant<PafContent, PafError> ReadPaf(LineReader &lines);

// Whether the reader takes `line` for a keyword, a comment or a separator instead of a value.
[[nodiscard]] bool IsPafKeywordLine(std::string_view line);

// The text between the first and the second ":" of a header line ("##Name:", "##PPD:"), untrimmed;
// up to the end when there is no second one.
std::string PafHeaderText(std::string_view line);
