// Printer descriptions as tests write and compare them.
#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cconstrain.h"
#include "cfeature.h"
#include "pafreader.h"

inline constexpr char kPafHeader[] = "##Name:Vek Norvel 4120\n##PPD:vek41201.ppd\n";

// A complete description with one of everything.
inline constexpr char kFullPaf[] =
    "##Name:Vek Norvel 4120\n##PPD:vek41201.ppd\n##\n"
    "#uio\n#id\n*PageSize\n#translation\nPaper size\n#default\nA4\n#type\nPickOne\n"
    "#_options\n"
    "#_option\n#id\nA4\n#translation\nA4 sheet\n#end_option\n"
    "#_option\n#id\nLetter\n#translation\nUS Letter\n#end_option\n"
    "#end_options\n#end_ui\n"
    "#uiio\n#id\n*OptionHCF\n#translation\nFeeder\n#default\nFalse\n#type\nBoolean\n"
    "#_options\n"
    "#_option\n#id\nTrue\n#translation\nFitted\n#end_option\n"
    "#end_options\n#end_ui\n"
    "#cps\n#MinWidth\n200\n#MaxWidth\n900\n#MinLength\n300\n#MaxLength\n1300\n#end_cps\n"
    "#ccc\n#f1\n*PageSize\n#o1\nA4\n#f2\n*OptionHCF\n#o2\nTrue\n#end_ccc\n";

// What kFullPaf reads as (see DescriptionText).
inline constexpr char kFullText[] =
    "name <Vek Norvel 4120>\nppd <vek41201.ppd>\n"
    "feature <*PageSize> <Paper size> <A4> <PickOne> A4=<A4 sheet> Letter=<US Letter>\n"
    "installable <*OptionHCF> <Feeder> <False> <Boolean> True=<Fitted>\n"
    "custom MaxLength=<1300> MaxWidth=<900> MinLength=<300> MinWidth=<200>\n"
    "constraint <*PageSize> <A4> <*OptionHCF> <True>\n";

inline std::string Shown(const CString *text) {
  const char *value = fGet_CString_Value_Function(text);
  return value == nullptr ? " (none)" : " <" + std::string(value) + ">";
}

inline std::string ShownTexts(const CHash *texts) {
  std::string line;
  for (const auto [key, text] : Pairs<CString>(texts)) {
    line += std::string(" ") + key + "=" + Shown(text).substr(1);
  }
  return line;
}

inline std::string ShownFeatures(const std::string &kind, const CHash *features) {
  std::string lines;
  for (const auto [id, feature] : Pairs<CFeature>(features)) {
    lines += kind + " <" + id + ">" + Shown(fGet_Translation_Function(feature)) +
             Shown(fGet_Default_Function(feature)) + Shown(fGet_Type_Function(feature));
    const CHash *options = fGet_Options_Function(feature);
    lines += (options == nullptr ? " (no options)" : ShownTexts(options)) + "\n";
  }
  return lines;
}

inline std::string ShownConstraints(const CList *constraints) {
  std::string lines;
  for (const CConstrain *constraint : Elements<CConstrain>(constraints)) {
    lines += "constraint" + Shown(fGetFeature1_Function(constraint)) +
             Shown(fGetOption1_Function(constraint)) + Shown(fGetFeature2_Function(constraint)) +
             Shown(fGetOption2_Function(constraint)) + "\n";
  }
  return lines;
}

// A description's whole content, one line a record; "custom" only when there is a table.
inline std::string DescriptionText(const PafContent &paf) {
  const CHash *custom = paf.custom_paper.get();
  return "name" + Shown(paf.name.get()) + "\nppd" + Shown(paf.ppd_file.get()) + "\n" +
         ShownFeatures("feature", paf.features.get()) +
         ShownFeatures("installable", paf.installable_options.get()) +
         (custom == nullptr ? "" : "custom" + ShownTexts(custom) + "\n") +
         ShownConstraints(paf.constraints.get());
}

// The content of the description `text`, or "corrupt <line number> <line>".
inline std::string ReadAsText(std::string_view text) {
  LineReader lines(text);
  const std::variant<PafContent, PafError> result = ReadPaf(lines);
  if (const auto *error = std::get_if<PafError>(&result)) {
    return "corrupt " + std::to_string(error->line_number) + " " + error->line;
  }
  return DescriptionText(std::get<PafContent>(result));
}
