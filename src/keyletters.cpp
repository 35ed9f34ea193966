#include "keyletters.h"

#include <algorithm>
#include <array>
#include <limits>

#include "ignoreresult.h"

namespace {

constexpr size_t L_Codes = 256;  // of ISO-8859-1
constexpr int L_Impossible = 1000;
constexpr int L_Rounds = 30;  // more than any window has been seen to need

using Costs = std::array<int, L_Codes>;

struct Letter {
  size_t position;     // of its first byte
  unsigned char code;  // in small form
  bool is_word_start;
};

bool IsAsciiLetter(unsigned char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9');
}

// The small form of a letter or digit of ISO-8859-1, 0 for anything else.
unsigned char SmallCode(unsigned char lead, unsigned char byte) {
  if (lead == 0) return IsAsciiLetter(byte) ? static_cast<unsigned char>(byte | 0x20) : 0;
  if (lead != 0xC3) return 0;
  const auto code = static_cast<unsigned char>(byte + 0x40);
  if (code == 0xD7 || code == 0xF7) return 0;  // signs
  return code >= 0xC0 && code <= 0xDE ? static_cast<unsigned char>(code + 0x20) : code;
}

std::vector<Letter> LettersOf(const std::string &text) {
  std::vector<Letter> letters;
  bool is_in_word = false;
  for (size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    const size_t length = byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    unsigned char code = 0;
    if (length == 1) code = SmallCode(0, byte);
    if (length == 2 && at + 1 < text.size()) {
      code = SmallCode(byte, static_cast<unsigned char>(text[at + 1]));
    }
    if (code != 0) letters.push_back({at, code, !is_in_word});
    is_in_word = code != 0;
    at += length - 1;
  }
  return letters;
}

// How little each letter suits as the text's.
Costs CostsOf(const std::string &text) {
  constexpr int kWordStart = 1;
  constexpr int kInside = 2;
  constexpr int kThin = 1;         // hides the line below it
  constexpr int kBeyondAscii = 3;  // not on every keyboard
  Costs costs;
  costs.fill(L_Impossible);
  bool is_first = true;
  for (const Letter &letter : LettersOf(text)) {
    int cost = is_first ? 0 : letter.is_word_start ? kWordStart : kInside;
    if (cost == kInside &&
        std::string_view("ijl").find(static_cast<char>(letter.code)) != std::string_view::npos) {
      cost += kThin;
    }
    if (letter.code >= 0x80) cost += kBeyondAscii;
    costs[letter.code] = std::min(costs[letter.code], cost);
    is_first = false;
  }
  return costs;
}

// The cheapest choice of a different column for each row (the Hungarian method). Every row has a
// column of its own besides, for which it pays L_Impossible.
class Assignment {
 public:
  explicit Assignment(const std::vector<Costs> &rows)
      : rows_(rows),
        columns_(L_Codes + rows.size()),
        row_price_(rows.size() + 1),
        column_price_(columns_ + 1),
        row_of_(columns_ + 1) {
    for (size_t row = 1; row <= rows.size(); ++row) Add(row);
  }

  // The columns by rows; L_Codes and above: none.
  std::vector<size_t> Columns() const {
    std::vector<size_t> columns(rows_.size());
    for (size_t column = 1; column <= columns_; ++column) {
      if (row_of_[column] != 0) columns[row_of_[column] - 1] = column - 1;
    }
    return columns;
  }

 private:
  // Rows and columns count from 1; row 0 is none, column 0 is where a new row begins.
  int Cost(size_t row, size_t column) const {
    return column > L_Codes ? L_Impossible : rows_[row - 1][column - 1];
  }

  void Add(size_t row) {
    std::vector<int> least(columns_ + 1, std::numeric_limits<int>::max());
    std::vector<size_t> from(columns_ + 1);
    std::vector<bool> is_done(columns_ + 1);
    row_of_[0] = row;
    size_t column = 0;
    while (row_of_[column] != 0) {
      is_done[column] = true;
      column = Nearest(column, least, from, is_done);
    }
    for (; column != 0; column = from[column]) row_of_[column] = row_of_[from[column]];
  }

  // The next column on the way from `column`; prices rise by its distance.
  size_t Nearest(size_t column, std::vector<int> &least, std::vector<size_t> &from,
                 const std::vector<bool> &is_done) {
    const size_t row = row_of_[column];
    size_t nearest = 0;
    for (size_t i = 1; i <= columns_; ++i) {
      if (is_done[i]) continue;
      const int cost = Cost(row, i) - row_price_[row] - column_price_[i];
      if (cost < least[i]) {
        least[i] = cost;
        from[i] = column;
      }
      if (nearest == 0 || least[i] < least[nearest]) nearest = i;
    }
    const int distance = least[nearest];
    for (size_t i = 0; i <= columns_; ++i) {
      if (is_done[i]) {
        row_price_[row_of_[i]] += distance;
        column_price_[i] -= distance;
      } else {
        least[i] -= distance;
      }
    }
    return nearest;
  }

  const std::vector<Costs> &rows_;
  size_t columns_;
  std::vector<int> row_price_;
  std::vector<int> column_price_;
  std::vector<size_t> row_of_;
};

using Codes = std::array<bool, L_Codes>;

// Chooses among the letters that are not `taken`; `extra` is what each costs more. Returns whether
// every text got one.
[[nodiscard]] bool Choose(KeyedTexts &part, const Codes &taken, const Costs &extra) {
  std::vector<Costs> rows;
  for (const std::string &text : part.texts) {
    Costs costs = CostsOf(text);
    for (size_t code = 0; code < L_Codes; ++code) {
      costs[code] = taken[code] ? L_Impossible : std::min(L_Impossible, costs[code] + extra[code]);
    }
    rows.push_back(costs);
  }
  const std::vector<size_t> columns = Assignment(rows).Columns();
  part.letters.assign(part.texts.size(), std::string::npos);
  bool is_complete = true;
  for (size_t i = 0; i < rows.size(); ++i) {
    const bool is_found = columns[i] < L_Codes && rows[i][columns[i]] < L_Impossible;
    is_complete = is_complete && is_found;
    if (!is_found) continue;
    // The first of the letter's best places.
    const std::vector<Letter> letters = LettersOf(part.texts[i]);
    const auto is_it = [&](const Letter &letter) { return letter.code == columns[i]; };
    auto place = std::find_if(letters.begin(), letters.end(), [&](const Letter &letter) {
      return is_it(letter) && letter.is_word_start;
    });
    if (place == letters.end()) place = std::find_if(letters.begin(), letters.end(), is_it);
    part.letters[i] = place->position;
  }
  return is_complete;
}

void Take(const KeyedTexts &part, Codes &taken) {
  for (size_t i = 0; i < part.texts.size(); ++i) {
    for (const Letter &letter : LettersOf(part.texts[i])) {
      if (letter.position == part.letters[i]) taken[letter.code] = true;
    }
  }
}

// Makes the letters of the texts that got none dearer for what is shown with every page.
void Spare(const KeyedTexts &page, Costs &extra) {
  for (size_t i = 0; i < page.texts.size(); ++i) {
    if (page.letters[i] != std::string::npos) continue;
    for (const Letter &letter : LettersOf(page.texts[i])) ++extra[letter.code];
  }
}

}  // namespace

void ChooseKeyLetters(KeyedWindow &window) {
  Costs extra = {};
  Codes taken;
  bool is_complete = false;
  for (int round = 0; round < L_Rounds && !is_complete; ++round) {
    is_complete = Choose(window.always, {}, extra);
    taken = {};
    Take(window.always, taken);
    for (KeyedTexts &page : window.pages) {
      if (Choose(page, taken, {})) continue;
      is_complete = false;
      Spare(page, extra);
    }
  }
  for (const KeyedTexts &page : window.pages) Take(page, taken);
  IgnoreResult(Choose(window.spare, taken, {}), "these have keys of their own");
}
