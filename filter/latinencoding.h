// The characters that text jobs take from the printer's own fonts: ISO-8859-1 and the quotes,
// dashes and letters of Windows-1252, a byte each. Every PostScript printer's text fonts have them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kpx::filter {

// The byte that stands for the character; nothing where the printer's fonts may lack it.
[[nodiscard]] std::optional<uint8_t> LatinByte(char32_t character);

// PostScript that defines V, the encoding vector: the name of each byte's glyph (Adobe Glyph List).
std::string LatinEncodingCode();

// Appends a byte as it stands between the parentheses of a PostScript text.
inline void AppendEscaped(uint8_t byte, std::string *text) {
  if (byte == '(' || byte == ')' || byte == '\\') *text += '\\';
  *text += static_cast<char>(byte);
}

}  // namespace kpx::filter
