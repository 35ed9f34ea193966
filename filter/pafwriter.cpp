#include "pafwriter.h"

#include <algorithm>
#include <vector>

#include "decimal.h"
#include "pafformat.h"
#include "pafreader.h"
#include "ppdconstraints.h"

namespace kpx::filter {

namespace {

constexpr std::string_view kNameKeyword = "##Name:";
constexpr std::string_view kPpdKeyword = "##PPD:";

void AddLine(std::string *paf, std::string_view line) {
  *paf += line;
  *paf += '\n';
}

void AddValue(std::string *paf, std::string_view keyword, std::string_view value) {
  AddLine(paf, keyword);
  AddLine(paf, value);
}

std::string_view UiName(PpdUi ui) {
  return ui == PpdUi::Boolean ? "Boolean" : ui == PpdUi::PickMany ? "PickMany" : "PickOne";
}

std::string_view BlockKeyword(const PpdFeature &feature) {
  if (feature.installable) return "#uiio";
  return feature.section == PpdSection::Jcl ? "#uij" : "#uio";
}

// The choices that the format can carry.
std::vector<const PpdChoice *> WritableChoices(const PpdFeature &feature) {
  std::vector<const PpdChoice *> choices;
  for (const PpdChoice &choice : feature.choices) {
    if (!IsPafKeywordLine(choice.keyword)) choices.push_back(&choice);
  }
  return choices;
}

void AddFeature(std::string *paf, const PpdFeature &feature) {
  const std::vector<const PpdChoice *> choices = WritableChoices(feature);
  if (choices.empty()) return;
  const auto wanted = std::find(choices.begin(), choices.end(), &feature.DefaultChoice());
  const PpdChoice &preset = wanted == choices.end() ? *choices.front() : **wanted;
  AddLine(paf, "##");
  AddLine(paf, BlockKeyword(feature));
  AddValue(paf, "#id", "*" + feature.keyword);
  AddValue(paf, "#translation", PafValue(feature.text, feature.keyword));
  AddValue(paf, "#default", preset.keyword);
  AddValue(paf, "#type", UiName(feature.ui));
  AddLine(paf, "#_options");
  for (const PpdChoice *choice : choices) {
    AddLine(paf, "#_option");
    AddValue(paf, "#id", choice->keyword);
    AddValue(paf, "#translation", PafValue(choice->text, choice->keyword));
    AddLine(paf, "#end_option");
  }
  AddLine(paf, "#end_options");
  AddLine(paf, "#end_ui");
}

void AddCustomLimits(std::string *paf, const PpdCustomLimits &limits) {
  AddLine(paf, "##");
  AddLine(paf, "#cps");
  AddValue(paf, "#MinWidth", DecimalText(limits.min_width));
  AddValue(paf, "#MaxWidth", DecimalText(limits.max_width));
  AddValue(paf, "#MinLength", DecimalText(limits.min_length));
  AddValue(paf, "#MaxLength", DecimalText(limits.max_length));
  AddLine(paf, "#end_cps");
}

void AddConstraints(std::string *paf, const ConstraintPairs &constraints) {
  AddLine(paf, "##");
  if (constraints.left_out > 0) {
    AddLine(paf, "## " + std::to_string(constraints.left_out) +
                     " constraints left out: they name options that the PPD does not define");
  }
  for (const OptionPair &pair : constraints.pairs) {
    AddLine(paf, "#ccc");
    AddValue(paf, "#f1", pair.feature1);
    AddValue(paf, "#o1", pair.option1);
    AddValue(paf, "#f2", pair.feature2);
    AddValue(paf, "#o2", pair.option2);
    AddLine(paf, "#end_ccc");
  }
}

}  // namespace

std::string PrinterName(const PpdModel &model, std::string_view ppd_file_name) {
  for (const std::string &name : {model.nick_name, model.model_name}) {
    std::string value = PafHeaderValue(name, kNameKeyword);
    if (value.find_first_not_of(' ') != std::string::npos) return value;
  }
  const std::string base(ppd_file_name.substr(0, ppd_file_name.rfind('.')));
  const std::string value = PafHeaderValue(base, kNameKeyword);
  return value.empty() ? "Unknown" : value;
}

std::string PafText(const PpdModel &model, std::string_view ppd_file_name) {
  std::string paf;
  AddLine(&paf, std::string(kNameKeyword) + PrinterName(model, ppd_file_name));
  AddLine(&paf, std::string(kPpdKeyword) + PafHeaderValue(ppd_file_name, kPpdKeyword));
  for (const PpdFeature &feature : model.features) AddFeature(&paf, feature);
  if (model.custom_limits) AddCustomLimits(&paf, *model.custom_limits);
  AddConstraints(&paf, ExpandConstraints(model));
  return paf;
}

}  // namespace kpx::filter
