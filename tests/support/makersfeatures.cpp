#include "makersfeatures.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "sampledppds.h"
#include "settingkeys.h"
#include "textencoding.h"

#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

// A file in ASCII has its other characters as hexadecimal bytes, which the windows show as UTF-8 or
// else ISO-8859-1, whatever the file names: many name nothing, or the wrong encoding.
std::string WithEncodingOfWindows(std::string file) {
  const std::string keyword = "*LanguageEncoding:";
  const size_t at = file.find(keyword);
  const bool is_ascii = std::none_of(file.begin(), file.end(), [](char c) { return c < 0; });
  if (!is_ascii || at == std::string::npos) return file;
  const size_t start = at + keyword.size();
  return file.replace(start, file.find_first_of("\r\n", start) - start, " ISOLatin1");
}

// libcups takes a file that says that it is in ISO-8859-1 at its word, though some are in UTF-8.
std::string Decoded(const std::string &text) {
  std::string bytes;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool is_pair = (byte == 0xC2 || byte == 0xC3) && i + 1 < text.size();
    if (byte >= 0x80 && !is_pair) return text;
    bytes += is_pair ? static_cast<char>((byte & 3) << 6 | (text[++i] & 0x3F)) : text[i];
  }
  if (IsValidUtf8(bytes)) return bytes;
  // The apostrophe of Windows-1252 is the only such sign in these files.
  const std::string apostrophe = "\u0092";
  std::string plain = text;
  for (size_t at = 0; (at = plain.find(apostrophe, at)) != std::string::npos;) {
    plain.replace(at, apostrophe.size(), "'");
  }
  return plain;
}

// The text of a choice ("Translation" for a feature's own), or what the file has for it in English
// beside its own language; libcups leaves such lines out.
std::string English(const std::string &file, const std::string &keyword, const std::string &name,
                    const char *text) {
  const std::string begin = "\n*en." + keyword + " " + name + "/";
  const size_t at = file.find(begin);
  if (at == std::string::npos) return Decoded(text);
  const size_t start = at + begin.size();
  return file.substr(start, file.find(':', start) - start);
}

MakersFeature FeatureOf(const std::string &file, const ppd_option_t &option, bool is_installable) {
  MakersFeature feature;
  feature.keyword = std::string("*") + option.keyword;
  feature.text = English(file, "Translation", option.keyword, option.text);
  feature.is_installable = is_installable;
  feature.is_boolean = option.ui == PPD_UI_BOOLEAN;
  for (int i = 0; i < option.num_choices; ++i) {
    const ppd_choice_t &choice = option.choices[i];
    if (std::strcmp(choice.choice, "Custom") == 0) continue;
    feature.choices.emplace_back(choice.choice,
                                 English(file, option.keyword, choice.choice, choice.text));
  }
  feature.usual = option.defchoice;
  const bool is_known =
      std::any_of(feature.choices.begin(), feature.choices.end(),
                  [&](const auto &choice) { return choice.first == feature.usual; });
  if (!is_known && !feature.choices.empty()) feature.usual = feature.choices.front().first;
  return feature;
}

}  // namespace

bool MakersFeature::IsOffered() const {
  return choices.size() > 1 && keyword != kMemoryKey && keyword != kPageRegionKey;
}

std::string MakersFeature::TextOf(const std::string &choice) const {
  for (const auto &[keyword_of_choice, choice_text] : choices) {
    if (keyword_of_choice == choice) return choice_text;
  }
  return choice;
}

bool MakersFeature::IsNothing(const std::string &choice) const {
  return choice == "None" || choice == "False" || choice.starts_with("NotInstalled");
}

std::string MakersFeature::PartOf(const std::string &choice) const {
  if (is_boolean) return choice == "True" ? text : "";
  if (IsNothing(choice)) return "";
  const auto parts = std::count_if(choices.begin(), choices.end(),
                                   [&](const auto &other) { return !IsNothing(other.first); });
  const bool is_there = choice.starts_with("Installed") || choice == "True";
  return parts == 1 && is_there ? text : text + ": " + TextOf(choice);
}

std::vector<std::string> MakersFeature::Texts() const {
  std::vector<std::string> texts;
  for (const auto &choice : choices) texts.push_back(Squeezed(choice.second));
  std::sort(texts.begin(), texts.end());
  return texts;
}

std::string Squeezed(const std::string &text) {
  std::string result;
  for (const char c : text) {
    if (c != ' ' && c != '\t' && c != '\n') result += c;
  }
  return result;
}

std::string Listed(const std::vector<std::string> &texts) {
  std::string list;
  for (const std::string &text : texts) list += (list.empty() ? "[" : " [") + text + "]";
  return list;
}

std::vector<MakersFeature> MakersFeaturesOf(const std::string &ppd_path) {
  const TemporaryDirectory files;
  const std::string path = files.Write("file.ppd", WithEncodingOfWindows(ContentOf(ppd_path)));
  const PpdFile ppd(ppdOpenFile(path.c_str()));
  if (ppd == nullptr) throw std::runtime_error("libcups cannot read " + ppd_path);
  const std::string file = ContentOf(ppd_path);
  std::vector<MakersFeature> features;
  for (int i = 0; i < ppd->num_groups; ++i) {
    const ppd_group_t &group = ppd->groups[i];
    const bool is_installable = std::strcmp(group.name, "InstallableOptions") == 0;
    for (int j = 0; j < group.num_options; ++j) {
      features.push_back(FeatureOf(file, group.options[j], is_installable));
    }
    for (int k = 0; k < group.num_subgroups; ++k) {
      const ppd_group_t &subgroup = group.subgroups[k];
      for (int j = 0; j < subgroup.num_options; ++j) {
        features.push_back(FeatureOf(file, subgroup.options[j], is_installable));
      }
    }
  }
  return features;
}
