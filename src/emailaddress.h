// E-mail addresses as the destination tab takes them: several, separated by blanks. Lengths are in
// characters, texts are UTF-8.
#pragma once

#include <string>
#include <string_view>

// The length of `text`; with `fix` after its leading and trailing blanks were removed in place.
// Rejects no character, whatever its name says.
[[nodiscard]] int IsValidChars(std::string &text, bool fix);

// Reads one address from the start of `text` (leading blanks belong to it) up to a blank or the
// end: the characters consumed, at most 64; 0 when it is not valid.
[[nodiscard]] int IsValidEmailAddress(std::string_view text);

// The length of `text` when it is one address or several, else 0. With `fix` the text is tidied in
// place: no blanks around it, one between two addresses; an invalid one as far as it was read.
[[nodiscard]] int IsValidEmailAddresses(std::string &text, bool fix);
