// The text side of reading a PPD file: what is put right before the bytes go to the PPD reader, and
// what is put right in the texts that come back.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kpx::filter {

// A PPD text ready for the reader. Line numbers of the reader are those of the file plus
// `added_lines` (0 or 1) after line 1.
struct PreparedPpd {
  std::string text;
  int added_lines = 0;
};

// A copy of `ppd` whose declared encoding is UTF-8 wherever the texts are to be taken as they
// stand: it declares ISOLatin1 or nothing (each text is decoded by itself later), or it declares
// another encoding but is valid UTF-8 all the same. Otherwise the declaration stays and the reader
// converts.
PreparedPpd PreparePpd(std::string_view ppd);

// Takes away what is left of a value whose beginning is missing: the lines from `line` (from 1) up
// to the "*End" after them, when the last of them closes a quotation. Some PPD files in use have
// such a leftover. False, and nothing changed, when the lines are not of that form.
[[nodiscard]] bool DropOrphanedValue(std::string *ppd, int line);

// Whether the file itself defines `choice` of `keyword` ("*keyword choice/..." or "...:").
[[nodiscard]] bool DefinesChoice(std::string_view ppd, std::string_view keyword,
                                 std::string_view choice);

// A display text: UTF-8 (other bytes are read as ISO-8859-1), every run of line feeds and carriage
// returns one blank, other control characters but tabs left out.
std::string CleanText(std::string_view bytes);

// `code` with every "<hex digits>" replaced by its bytes, as the values of JCL keywords are
// written.
std::string DecodeHex(std::string_view code);

}  // namespace kpx::filter
