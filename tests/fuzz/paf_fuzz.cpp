// Printer descriptions: any bytes are read or refused; what is read is complete, and written down
// and read again it is the same.
#include <variant>

#include "cconstrain.h"
#include "cfeature.h"
#include "fuzz_support.h"
#include "pafreader.h"

namespace {

// A value as a line; clears `fits` when it is longer than a line can be.
std::string Line(const CString *text, bool *fits) {
  const char *value = fGet_CString_Value_Function(text);
  Require(value != nullptr && IsValidUtf8(value));
  const std::string line = value;
  if (line.size() > kMaxLine) *fits = false;
  return line + "\n";
}

std::string Key(const char *key, bool *fits) {
  return Line(CreateStringWithValue(key).get(), fits);
}

std::string Features(const char *start, const CHash *features, bool *fits) {
  std::string text;
  for (const auto [id, feature] : Pairs<CFeature>(features)) {
    Require(feature != nullptr);
    text += start + ("#id\n" + Key(id, fits)) + "#translation\n" +
            Line(feature->translation.get(), fits) + "#default\n" +
            Line(feature->default_option.get(), fits) + "#type\n" + Line(feature->type.get(), fits);
    if (feature->options != nullptr) {
      text += "#_options\n";
      for (const auto [option, shown] : Pairs<CString>(feature->options.get())) {
        text += "#_option\n#id\n" + Key(option, fits) + "#translation\n" + Line(shown, fits) +
                "#end_option\n";
      }
      text += "#end_options\n";
    }
    text += "#end_ui\n";
  }
  return text;
}

std::string Limits(const CHash *custom, bool *fits) {
  if (custom == nullptr) return "";
  std::string text = "#cps\n";
  for (const char *name : {"MinWidth", "MaxWidth", "MinLength", "MaxLength"}) {
    text += "#" + std::string(name) + "\n" + Line(HashValue<CString>(custom, name), fits);
  }
  return text + "#end_cps\n";
}

std::string Constraints(const CList *constraints, bool *fits) {
  std::string text;
  for (const CConstrain *constraint : Elements<CConstrain>(constraints)) {
    Require(constraint != nullptr);
    text += "#ccc\n#f1\n" + Line(constraint->feature1.get(), fits) + "#o1\n" +
            Line(constraint->option1.get(), fits) + "#f2\n" +
            Line(constraint->feature2.get(), fits) + "#o2\n" +
            Line(constraint->option2.get(), fits) + "#end_ccc\n";
  }
  return text;
}

// The description as a file; empty when one of its lines would be too long.
std::string Written(const PafContent &paf) {
  bool fits = true;
  std::string text = "##Name:" + Line(paf.name.get(), &fits);
  text += "##PPD:" + Line(paf.ppd_file.get(), &fits);
  if (text.size() > kMaxLine) fits = false;  // each of the two is then short enough
  text += Features("#uio\n", paf.features.get(), &fits);
  text += Features("#uiio\n", paf.installable_options.get(), &fits);
  text += Limits(paf.custom_paper.get(), &fits);
  text += Constraints(paf.constraints.get(), &fits);
  return fits ? text : "";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  // The comment ends the state that the input before left, so an input finds the same alone.
  const std::string text = "##\n" + std::string(InputText(data, size));
  LineReader lines(text);
  const auto result = ReadPaf(lines);
  if (const auto *error = std::get_if<PafError>(&result)) {
    Require(!error->reason.empty() && IsValidUtf8(error->line));
    return 0;
  }
  const std::string written = Written(std::get<PafContent>(result));
  if (written.empty()) return 0;
  LineReader again(written);
  const auto repeated = ReadPaf(again);
  const auto *content = std::get_if<PafContent>(&repeated);
  Require(content != nullptr && Written(*content) == written);
  return 0;
}
