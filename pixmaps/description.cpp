#include "description.h"

#include <charconv>
#include <sstream>

namespace kpx::pixmaps {

namespace {

constexpr int L_MaxSize = 1024;  // pixels; larger ones are a slip of the pen

std::vector<std::string> Words(const std::string &line) {
  std::istringstream stream(line);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

// "#RGB" as 0xRRGGBB.
unsigned ColourOf(const Step &step, const std::string &word) {
  unsigned value = 0;
  const char *end = word.data() + word.size();
  if (word.size() != 4 || word[0] != '#' ||
      std::from_chars(word.data() + 1, end, value, 16).ptr != end) {
    throw DescriptionError(step.line, "no colour of the form #RGB: " + word);
  }
  return (value >> 8) * 0x110000 + ((value >> 4) & 0xF) * 0x1100 + (value & 0xF) * 0x11;
}

class Reader {
 public:
  explicit Reader(Description *description) : description_(*description) {}

  void Read(const std::string &text) {
    std::istringstream lines(text);
    Step step;
    for (std::string line; std::getline(lines, line);) {
      ++step.line;
      step.words = Words(line);
      if (step.words.empty() || step.words[0][0] == '#') continue;
      if (block_ == nullptr) {
        ReadOutside(step);
      } else if (step.words[0] == "end") {
        block_ = nullptr;
      } else {
        AddStep(step);
      }
    }
    if (block_ != nullptr) throw DescriptionError(step.line, "the last block has no end");
  }

 private:
  static void Expect(const Step &step, size_t words) {
    if (step.words.size() != words) {
      throw DescriptionError(step.line,
                             step.words[0] + " takes " + std::to_string(words - 1) + " words");
    }
  }

  void ReadOutside(const Step &step) {
    const std::string &word = step.words[0];
    if (word == "colour") {
      Expect(step, 3);
      description_.colours[step.words[1]] = ColourOf(step, step.words[2]);
    } else if (word == "size") {
      Expect(step, 3);
      description_.width = SizeOf(step, step.words[1]);
      description_.height = SizeOf(step, step.words[2]);
    } else if (word == "define") {
      Expect(step, 2);
      const auto [definition, is_new] = description_.definitions.try_emplace(step.words[1]);
      if (!is_new) throw DescriptionError(step.line, "defined twice: " + step.words[1]);
      block_ = &definition->second;
    } else if (word == "picture") {
      BeginPicture(step);
    } else {
      throw DescriptionError(step.line, "outside a picture: " + word);
    }
  }

  void BeginPicture(const Step &step) {
    const bool is_use = step.words.size() > 2 && step.words[2] == "use";
    if (!is_use) Expect(step, 2);
    const std::string &name = step.words[1];
    for (const Picture &picture : description_.pictures) {
      if (picture.name == name) throw DescriptionError(step.line, "drawn twice: " + name);
    }
    if (description_.width == 0) throw DescriptionError(step.line, "a picture before its size");
    description_.pictures.push_back({name, description_.width, description_.height, {}});
    block_ = &description_.pictures.back().steps;
    if (!is_use) return;
    AddStep({step.line, {step.words.begin() + 2, step.words.end()}});
    block_ = nullptr;
  }

  static int SizeOf(const Step &step, const std::string &word) {
    const double size = NumberOf(step, word);
    if (size < 1 || size > L_MaxSize) throw DescriptionError(step.line, "no size: " + word);
    return static_cast<int>(size);
  }

  // A definition can only use earlier ones, so that every use comes to an end. Its own uses are
  // replaced when it is read, while their words may still hold its parameters.
  void AddStep(const Step &step) {
    if (step.words[0] != "use") {
      block_->push_back(step);
      return;
    }
    if (step.words.size() < 2) throw DescriptionError(step.line, "use of nothing");
    const auto definition = description_.definitions.find(step.words[1]);
    if (definition == description_.definitions.end() || &definition->second == block_) {
      throw DescriptionError(step.line, "not defined: " + step.words[1]);
    }
    for (const Step &used : definition->second) block_->push_back(Filled(used, step));
  }

  static Step Filled(const Step &used, const Step &use) {
    Step filled{use.line, {}};
    for (const std::string &word : used.words) {
      if (word[0] != '$') {
        filled.words.push_back(word);
        continue;
      }
      const size_t parameter = static_cast<size_t>(word.size() == 2 ? word[1] - '0' : 0);
      if (parameter < 1 || parameter > 9)
        throw DescriptionError(used.line, "no parameter: " + word);
      if (parameter + 2 > use.words.size()) {
        throw DescriptionError(use.line, use.words[1] + " needs " + word);
      }
      filled.words.push_back(use.words[parameter + 1]);
    }
    return filled;
  }

  Description &description_;
  std::vector<Step> *block_ = nullptr;  // the picture or definition that is being read
};

}  // namespace

void ReadDescription(const std::string &text, Description *description) {
  Reader(description).Read(text);
}

double NumberOf(const Step &step, const std::string &word) {
  double value = 0;
  const char *end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, value);
  if (error != std::errc() || stop != end) {
    throw DescriptionError(step.line, "no number: " + word);
  }
  return value;
}

}  // namespace kpx::pixmaps
