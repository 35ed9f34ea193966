// Lines of the files that the program writes itself.
#pragma once

#include <string>
#include <string_view>

// True for the lines that the readers skip: empty ones and those that begin with "##".
bool IsCommentOrEmpty(std::string_view line);

// Appends `line` (UTF-8) and a line feed to `text`. A line feed inside becomes one blank, since a
// line cannot carry it, and what goes beyond the longest line that the readers take as one is cut.
void AppendTextLine(std::string &text, std::string_view line);

// A measure rounded to a whole number, as the files hold it ("%.0f").
std::string WholeNumber(double value);

// The number at the start of `text`, as atof reads it but with a decimal point in every locale; 0
// when there is none.
double NumberFromText(const std::string &text);
