// The font map: which AFM font each font name and style that users see means.
#pragma once

#include <string>

#include "chash.h"
#include "textencoding.h"

// Reads the installed font map into a table from font name to a CHash from style to AFM font name
// (CString); null, after a line on standard error, when the file cannot be read.
[[nodiscard]] Owned<CHash> ParseFontmap();

// The same from lines. A line that lacks one of the three values is dropped; of two lines with the
// same font and style the first counts.
[[nodiscard]] Owned<CHash> ReadFontmap(LineReader &lines);

// The font names (CString) of the program's table in key order; null while there is none.
[[nodiscard]] Owned<CList> GetAllFontGuiName();

// The first font and style that mean `afm_name`: 1; 0 and empty texts when there is none; 0 and
// untouched texts when an argument or the table is missing.
[[nodiscard]] int GetGuiFont(const char *afm_name, std::string *font, std::string *style);

// The AFM font name of a font and style, lent by the table, or null.
const char *GetAfmFontName(const char *font, const char *style);
