// Which letter of each text of a window presses or focuses what the text names.

#pragma once

#include <string>
#include <vector>

// Texts (UTF-8) that are shown together, and the byte where the letter of each begins; npos where
// none is left for it.
struct KeyedTexts {
  std::vector<std::string> texts;
  std::vector<size_t> letters = {};
};

struct KeyedWindow {
  KeyedTexts always;              // shown whatever page is
  std::vector<KeyedTexts> pages;  // shown one at a time
  KeyedTexts spare;               // always shown, but have another key as well
};

// Chooses the letters: no two texts that may be shown together get the same one, in whatever case;
// beginnings of words are preferred. Digits and letters of ISO-8859-1 count. The spare texts get
// what nothing else wants. The same texts always get the same letters.
void ChooseKeyLetters(KeyedWindow &window);
