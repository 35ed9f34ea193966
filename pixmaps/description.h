// The description of the pictures: text files of pictures, each a list of steps.
//
//   # comment                 to the end of the line, where a line begins with it
//   colour NAME #RGB          a name for a colour
//   size W H                  size in pixels of the pictures that follow
//   define NAME ... end       steps to be used again; $1, $2 ... stand for the words of a use
//   picture NAME ... end      the steps that draw NAME.xpm
//   picture NAME use ...      the same for a picture that is one use
//   use NAME WORD...          in a picture or definition: the steps of an earlier definition
//
// Any other line inside "picture" or "define" is a step of the drawing (elements.h).

#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace kpx::pixmaps {

struct Step {
  int line = 0;                    // in the file, from 1
  std::vector<std::string> words;  // at least one
};

struct Picture {
  std::string name;  // without ".xpm"
  int width = 0;     // pixels
  int height = 0;
  std::vector<Step> steps;  // "use" is already replaced
};

struct Description {
  std::map<std::string, unsigned> colours;  // 0xRRGGBB
  std::vector<Picture> pictures;            // as they were read
  std::map<std::string, std::vector<Step>> definitions;
  int width = 0;  // of the next picture
  int height = 0;
};

// What is wrong with a description, and in which line.
class DescriptionError : public std::runtime_error {
 public:
  DescriptionError(int line, const std::string &reason)
      : std::runtime_error("line " + std::to_string(line) + ": " + reason) {}
};

// Adds what one more file says; what earlier ones named holds in it too. Throws DescriptionError
// for a text that breaks the rules above, and for a picture or definition of a name that is already
// there.
void ReadDescription(const std::string &text, Description *description);

// The whole text as a number; throws DescriptionError otherwise.
double NumberOf(const Step &step, const std::string &word);

}  // namespace kpx::pixmaps
