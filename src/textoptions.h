// The rules of the fonts tab: which fonts, styles and sizes there are for printing plain text, and
// what of them is stored in the work copy.
#pragma once

#include <array>
#include <string>
#include <vector>

inline constexpr char kDefaultFontName[] = "Courier";  // AFM font name
inline constexpr char kDefaultFontSize[] = "12";       // points

// The sizes offered, in points; other whole sizes between the first and the last may be typed.
inline constexpr std::array<const char *, 18> kFontSizes = {"4",  "6",  "8",  "9",  "10", "11",
                                                            "12", "14", "16", "18", "20", "22",
                                                            "24", "26", "28", "36", "48", "72"};

// The font names that users see, in key order; empty without a font map.
std::vector<std::string> FontNames();

// The styles of one of them, in key order; empty for an unknown font.
std::vector<std::string> FontStyles(const std::string &font);

// The AFM font name and the size in points that the work copy asks for, else the defaults.
std::string WantedFontName();
std::string WantedFontSize();

// `text` read as a whole number of points (0 when it is not a number), moved into the range of
// sizes.
std::string ClampedFontSize(const std::string &text);

// Stores the AFM name of a font and style, and the size, in the work copy: unchanged when it is in
// the range of sizes, else moved into it. False, and nothing stored, when there is no such font and
// style.
[[nodiscard]] bool StoreTextOptions(const std::string &font, const std::string &style,
                                    const std::string &size);
