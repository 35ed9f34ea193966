// The features of a printer as its PPD file has them, read by libcups.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

struct MakersFeature {
  std::string keyword;  // "*Duplex"
  std::string text;
  bool is_installable = false;
  bool is_boolean = false;
  std::string usual;                                         // the default choice
  std::vector<std::pair<std::string, std::string>> choices;  // keyword and text

  // Whether the windows have it: there is a choice, and it is neither the memory, which they leave
  // out, nor the page region, which says what the page size does.
  bool IsOffered() const;
  // A choice that the feature lacks is its own text.
  std::string TextOf(const std::string &choice) const;
  // Of an installable one: what the lists of parts call the choice; empty when it means nothing.
  std::string PartOf(const std::string &choice) const;
  // The texts of all choices, sorted.
  std::vector<std::string> Texts() const;

 private:
  bool IsNothing(const std::string &choice) const;
};

// Without white space, which PPD files have in their texts at will.
std::string Squeezed(const std::string &text);

// "[one] [two]".
std::string Listed(const std::vector<std::string> &texts);

// In the file's order. Custom values are no choices. Throws std::runtime_error for a file that
// libcups cannot read.
std::vector<MakersFeature> MakersFeaturesOf(const std::string &ppd_path);
