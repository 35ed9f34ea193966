#include "featurecode.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "decimal.h"

namespace kpx::filter {

namespace {

constexpr std::string_view kCopiesFeatures[] = {"JCLCopies", "JCLNumCopies", "Copies", "NumCopies"};

// A PostScript string of these bytes.
std::string PostScriptString(std::string_view bytes) {
  std::string text = "(";
  for (const char c : bytes) {
    const auto code = static_cast<uint8_t>(c);
    if (c == '(' || c == ')' || c == '\\') {
      text += '\\';
      text += c;
    } else if (code < 0x20 || code >= 0x7F) {
      text += '\\';
      for (const int shift : {6, 3, 0}) text += static_cast<char>('0' + ((code >> shift) & 7));
    } else {
      text += c;
    }
  }
  return text + ")";
}

bool IsFedByHand(const JobSettings &settings) {
  const PpdChoice *manual = settings.Chosen("ManualFeed");
  return manual != nullptr && SameKeyword(manual->keyword, "True");
}

// Whether *PageRegion is to be used in place of *PageSize.
bool UsesPageRegion(const JobSettings &settings) {
  const PpdModel &model = settings.Model();
  const PpdChoice *size = settings.Chosen("PageSize");
  const PpdFeature *region = model.FindFeature("PageRegion");
  const PpdChoice *same =
      size == nullptr || region == nullptr ? nullptr : region->FindChoice(size->keyword);
  // Where both say the same the one that was chosen is named.
  if (same == nullptr || same->code == size->code) return false;
  if (IsFedByHand(settings)) return true;
  const PpdChoice *slot = settings.Chosen("InputSlot");
  if (slot == nullptr || slot->code.empty() || !settings.IsSet("InputSlot")) return false;
  auto asked = model.requires_page_region.find(slot->keyword);
  if (asked == model.requires_page_region.end()) asked = model.requires_page_region.find("All");
  return asked != model.requires_page_region.end() && asked->second;
}

double NumberParameter(const PpdParameter &parameter, const CustomPaper &paper) {
  if (parameter.name == "Width") return paper.width;
  if (parameter.name == "Height") return paper.length;
  return parameter.min <= parameter.max ? std::clamp(0.0, parameter.min, parameter.max) : 0;
}

FeatureCode CustomPaperCode(const PpdFeature &feature, const CustomPaper &paper) {
  FeatureCode result{"CustomPageSize", "True", {}, feature.order};
  if (!feature.custom || feature.custom->code.empty()) {
    result.code = "<</PageSize[" + DecimalText(paper.width) + " " + DecimalText(paper.length) +
                  "]/ImagingBBox null>>setpagedevice";
    return result;
  }
  for (const PpdParameter &parameter : feature.custom->parameters) {
    result.code += DecimalText(NumberParameter(parameter, paper)) + "\n";
  }
  result.code += feature.custom->code;
  result.order = feature.custom->order.value_or(feature.order);
  return result;
}

FeatureCode CustomMediaCode(const PpdFeature &feature, const std::string &name) {
  FeatureCode result{"CustomMediaType", "True", {}, feature.order};
  if (!feature.custom || feature.custom->code.empty()) {
    result.code = "<</MediaType" + PostScriptString(name) + ">>setpagedevice";
    return result;
  }
  for (const PpdParameter &parameter : feature.custom->parameters) {
    result.code +=
        parameter.is_text ? PostScriptString(name) : DecimalText(NumberParameter(parameter, {}));
    result.code += "\n";
  }
  result.code += feature.custom->code;
  result.order = feature.custom->order.value_or(feature.order);
  return result;
}

// The code that a feature contributes; without code where it contributes none.
FeatureCode CodeOfFeature(const JobSettings &settings, const PpdFeature &feature, bool region) {
  if (feature.keyword == "PageSize") {
    if (const auto paper = settings.Paper()) return CustomPaperCode(feature, *paper);
    if (region) return {};
  }
  if (feature.keyword == "PageRegion" && settings.Model().FindFeature("PageSize") != nullptr) {
    if (!region) return {};
    const PpdChoice *choice = feature.FindChoice(settings.Chosen("PageSize")->keyword);
    return {feature.keyword, choice->keyword, choice->code, feature.order};
  }
  // A tray's code may end the feeding by hand.
  if (feature.keyword == "InputSlot" && IsFedByHand(settings)) return {};
  if (feature.keyword == "MediaType") {
    if (const auto name = settings.MediaName()) return CustomMediaCode(feature, *name);
  }
  const PpdChoice *choice = settings.Chosen(feature.keyword);
  if (choice == nullptr) return {};
  return {feature.keyword, choice->keyword, choice->code, feature.order};
}

bool BelongsTo(const PpdFeature &feature, PpdSection section) {
  return feature.section == section ||
         (section == PpdSection::Document && feature.section == PpdSection::Any);
}

// Switches of the page device that programs often turn off.
struct OftenSet {
  std::string_view keyword, usual, what, mention;
};
constexpr OftenSet kOften[] = {{"Duplex", "None", "the sides", "uplex"},
                               {"Collate", "False", "the collating", "Collate"}};

// Runs `code` where `is_usual` finds the page device's `key` as it is without a choice.
std::string UnlessSet(std::string_view key, std::string_view is_usual, const std::string &code) {
  const std::string name(key);
  return "[{\n/currentpagedevice where { pop currentpagedevice /" + name + " 2 copy known { get " +
         std::string(is_usual) + " } { pop pop false } ifelse\n{\n" + code +
         "} if } if\n} stopped cleartomark\n";
}

const PpdFeature *CopiesFeature(const PpdModel &model) {
  for (const std::string_view keyword : kCopiesFeatures) {
    const PpdFeature *feature = model.FindFeature(keyword);
    if (feature != nullptr && feature->section == PpdSection::Jcl) return feature;
  }
  return nullptr;
}

}  // namespace

std::vector<FeatureCode> CodeOfSection(const JobSettings &settings, PpdSection section) {
  const bool region = UsesPageRegion(settings);
  const bool copies = !JclCopies(settings).empty();
  std::vector<FeatureCode> codes;
  for (const PpdFeature &feature : settings.Model().features) {
    if (!BelongsTo(feature, section)) continue;
    if (copies && &feature == CopiesFeature(settings.Model())) continue;
    FeatureCode code = CodeOfFeature(settings, feature, region);
    if (!code.code.empty()) codes.push_back(std::move(code));
  }
  std::stable_sort(codes.begin(), codes.end(),
                   [](const auto &a, const auto &b) { return a.order < b.order; });
  return codes;
}

std::string GuardedFeature(const FeatureCode &code) {
  std::string text = "[{\n%%BeginFeature: *" + code.keyword + " " + code.choice + "\n" + code.code;
  if (!text.ends_with('\n')) text += '\n';
  return text + "%%EndFeature\n} stopped cleartomark\n";
}

std::string GuardedFeatures(const std::vector<FeatureCode> &codes) {
  std::string text;
  for (const FeatureCode &code : codes) text += GuardedFeature(code);
  return text;
}

std::string IncludedFeature(const PpdModel &model, std::string_view keyword,
                            std::string_view choice) {
  const PpdFeature *feature = model.FindFeature(keyword);
  if (feature == nullptr || feature->section == PpdSection::Jcl) return {};
  const PpdChoice *found = feature->FindChoice(choice);
  if (found == nullptr || found->code.empty()) return {};
  return GuardedFeature({feature->keyword, found->keyword, found->code, feature->order});
}

std::string JclCopies(const JobSettings &settings) {
  const PpdFeature *feature = CopiesFeature(settings.Model());
  if (feature == nullptr || settings.Copies() == 1) return {};
  const std::string count = std::to_string(settings.Copies());
  if (const PpdChoice *choice = feature->FindChoice(count)) return choice->code;
  if (!feature->custom || feature->custom->parameters.size() != 1) return {};
  // In job-control code "\1" stands for the first parameter.
  std::string code = feature->custom->code;
  const size_t place = code.find("\\1");
  if (place == std::string::npos) return {};
  return code.replace(place, 2, count);
}

std::string CopiesCode(const JobSettings &settings) {
  if (settings.Copies() == 1 || !JclCopies(settings).empty()) return {};
  const std::string count = std::to_string(settings.Copies());
  const std::string code = settings.Model().language_level >= 2
                               ? "<</NumCopies " + count + ">>setpagedevice"
                               : "/#copies " + count + " def";
  return "[{\n" + code + "\n} stopped cleartomark\n";
}

std::vector<KeptChoice> KeptChoices(const JobSettings &settings) {
  std::vector<KeptChoice> kept;
  if (settings.Model().language_level < 2) return kept;
  if (settings.HasChosenCopies() && settings.Copies() > 1) {
    kept.push_back(
        {"the number of copies", "NumCopies",
         UnlessSet("NumCopies",
                   "dup null eq { pop /#copies where { /#copies get } { 1 } "
                   "ifelse } if 1 eq",
                   "<</NumCopies " + std::to_string(settings.Copies()) + ">>setpagedevice\n")});
  }
  for (const auto &[keyword, usual, what, mention] : kOften) {
    const PpdChoice *choice = settings.Chosen(keyword);
    if (!settings.IsChosen(keyword) || choice == nullptr || choice->code.empty() ||
        SameKeyword(choice->keyword, usual)) {
      continue;
    }
    kept.push_back(
        {std::string(what), std::string(mention),
         UnlessSet(keyword, "false eq",
                   GuardedFeature({std::string(keyword), choice->keyword, choice->code, 0}))});
  }
  return kept;
}

PpdPageSize PageInForce(const JobSettings &settings) {
  if (const auto paper = settings.Paper()) {
    return {paper->width, paper->length, 0, 0, paper->width, paper->length};
  }
  const PpdChoice *size = settings.Chosen("PageSize");
  if (size != nullptr) {
    const auto found = settings.Model().page_sizes.find(size->keyword);
    if (found != settings.Model().page_sizes.end()) return found->second;
  }
  return {595, 842, 0, 0, 595, 842};  // A4
}

}  // namespace kpx::filter
