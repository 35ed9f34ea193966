#include "ppdadaptor.h"

// libcups declares its PPD functions as deprecated since 1.6, and keeps them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/ppd.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <memory>
#include <sstream>
#include <tuple>
#include <utility>
#include <vector>

#include "byteordermark.h"
#include "ppdtext.h"
#include "textencoding.h"
#include "textfile.h"

namespace kpx::filter {

namespace {

constexpr float kLongestSide = 1e5F;  // of a paper, points

struct ClosePpd {
  void operator()(ppd_file_t *ppd) const { ppdClose(ppd); }
};
using PpdFile = std::unique_ptr<ppd_file_t, ClosePpd>;

std::string OrEmpty(const char *text) { return text == nullptr ? std::string() : text; }

// Opens the text, putting right orphaned value lines, which libcups refuses. Bounded tries.
PpdFile OpenText(PreparedPpd *prepared, PpdError *error) {
  constexpr int kMostRepairs = 8;
  for (int repairs = 0;; ++repairs) {
    const int fd = DescriptorOfText(prepared->text);
    if (fd < 0) {
      *error = {0, std::strerror(errno)};
      return nullptr;
    }
    PpdFile ppd(ppdOpenFd(fd));
    close(fd);
    if (ppd != nullptr) return ppd;
    int line = 0;
    const ppd_status_t status = ppdLastError(&line);
    if (status == PPD_MISSING_ASTERISK && repairs < kMostRepairs &&
        DropOrphanedValue(&prepared->text, line)) {
      continue;
    }
    *error = {std::max(line > 1 ? line - prepared->added_lines : line, 1), ppdErrorString(status)};
    return nullptr;
  }
}

PpdSection SectionOf(ppd_section_t section) {
  switch (section) {
    case PPD_ORDER_DOCUMENT:
      return PpdSection::Document;
    case PPD_ORDER_EXIT:
      return PpdSection::Exit;
    case PPD_ORDER_JCL:
      return PpdSection::Jcl;
    case PPD_ORDER_PAGE:
      return PpdSection::Page;
    case PPD_ORDER_PROLOG:
      return PpdSection::Prolog;
    case PPD_ORDER_ANY:
      break;
  }
  return PpdSection::Any;
}

// The order number of "*NonUIOrderDependency: <order> <section> *<keyword>" for this keyword.
std::optional<double> NonUiOrder(ppd_file_t *ppd, const std::string &keyword) {
  for (ppd_attr_t *attr = ppdFindAttr(ppd, "NonUIOrderDependency", nullptr); attr != nullptr;
       attr = ppdFindNextAttr(ppd, "NonUIOrderDependency", nullptr)) {
    const std::string value = OrEmpty(attr->value);
    const size_t star = value.find('*');
    if (star == std::string::npos) continue;
    const std::string_view name = std::string_view(value).substr(star + 1);
    if (!SameKeyword(name.substr(0, name.find_first_of(" \t")), keyword)) continue;
    double order = 0;
    const size_t digit = value.find_first_not_of(" \t");
    if (std::from_chars(value.data() + digit, value.data() + value.size(), order).ec ==
        std::errc()) {
      return order;
    }
  }
  return std::nullopt;
}

PpdParameter ParameterOf(const ppd_cparam_t &parameter) {
  switch (parameter.type) {
    case PPD_CUSTOM_INT:
      return {parameter.name, false, static_cast<double>(parameter.minimum.custom_int),
              static_cast<double>(parameter.maximum.custom_int)};
    case PPD_CUSTOM_PASSCODE:
    case PPD_CUSTOM_PASSWORD:
    case PPD_CUSTOM_STRING:
      return {parameter.name, true, 0, 0};
    case PPD_CUSTOM_POINTS:
    case PPD_CUSTOM_REAL:
    case PPD_CUSTOM_CURVE:
    case PPD_CUSTOM_INVCURVE:
    case PPD_CUSTOM_UNKNOWN:
      break;
  }
  return {parameter.name, false, static_cast<double>(parameter.minimum.custom_real),
          static_cast<double>(parameter.maximum.custom_real)};
}

std::optional<PpdCustom> CustomOf(ppd_file_t *ppd, const std::string &keyword) {
  ppd_coption_t *option = ppdFindCustomOption(ppd, keyword.c_str());
  if (option == nullptr || option->option == nullptr) return std::nullopt;
  const ppd_choice_t *choice = ppdFindChoice(option->option, "Custom");
  if (choice == nullptr || choice->code == nullptr) return std::nullopt;
  PpdCustom custom;
  custom.code = choice->code;
  custom.order = NonUiOrder(ppd, "Custom" + keyword);
  std::vector<ppd_cparam_t *> parameters;
  for (ppd_cparam_t *p = ppdFirstCustomParam(option); p != nullptr;
       p = ppdNextCustomParam(option)) {
    parameters.push_back(p);
  }
  std::stable_sort(parameters.begin(), parameters.end(),
                   [](const auto *a, const auto *b) { return a->order < b->order; });
  for (const ppd_cparam_t *p : parameters) custom.parameters.push_back(ParameterOf(*p));
  return custom;
}

PpdFeature FeatureOf(ppd_file_t *ppd, const ppd_option_t &option, std::string_view bytes) {
  PpdFeature feature;
  feature.keyword = option.keyword;
  feature.text = CleanText(option.text);
  if (feature.text.empty()) feature.text = feature.keyword;
  feature.ui = option.ui == PPD_UI_BOOLEAN    ? PpdUi::Boolean
               : option.ui == PPD_UI_PICKMANY ? PpdUi::PickMany
                                              : PpdUi::PickOne;
  feature.section = SectionOf(option.section);
  feature.order = std::isfinite(option.order) ? static_cast<double>(option.order) : 0;
  feature.default_choice = option.defchoice;
  for (int i = 0; i < option.num_choices; ++i) {
    const ppd_choice_t &choice = option.choices[i];
    // libcups adds a choice of this name for every *Custom... keyword.
    if (SameKeyword(choice.choice, "Custom") &&
        !DefinesChoice(bytes, feature.keyword, choice.choice)) {
      continue;
    }
    // A choice defined twice is the first: the one that libcups finds.
    const bool twice =
        std::any_of(feature.choices.begin(), feature.choices.end(),
                    [&](const auto &other) { return other.keyword == choice.choice; });
    if (twice) continue;
    PpdChoice result{choice.choice, CleanText(choice.text), OrEmpty(choice.code)};
    if (result.text.empty()) result.text = result.keyword;
    // libcups decodes the values of *JCL... keywords only, not those of others in that section.
    if (feature.section == PpdSection::Jcl) result.code = DecodeHex(result.code);
    feature.choices.push_back(std::move(result));
  }
  feature.custom = CustomOf(ppd, feature.keyword);
  return feature;
}

void AddGroup(ppd_file_t *ppd, const ppd_group_t &group, bool installable, std::string_view bytes,
              PpdModel *model) {
  installable = installable || SameKeyword(group.name, "InstallableOptions");
  for (int i = 0; i < group.num_options; ++i) {
    // A keyword opened in two groups is one feature: the first.
    if (model->FindFeature(group.options[i].keyword) != nullptr) continue;
    PpdFeature feature = FeatureOf(ppd, group.options[i], bytes);
    feature.installable = installable;
    feature.group = CleanText(group.text);
    model->features.push_back(std::move(feature));
  }
  for (int i = 0; i < group.num_subgroups; ++i) {
    AddGroup(ppd, group.subgroups[i], installable, bytes, model);
  }
}

// The number at the start of an attribute's value, in points.
double AttributeNumber(ppd_file_t *ppd, const char *name) {
  const ppd_attr_t *attr = ppdFindAttr(ppd, name, nullptr);
  const std::string value = attr == nullptr ? std::string() : OrEmpty(attr->value);
  double number = 0;
  std::from_chars(value.data() + std::min(value.find_first_not_of(" \t"), value.size()),
                  value.data() + value.size(), number);
  return number;
}

// The limits stand in *ParamCustomPageSize; *MaxMediaWidth and *MaxMediaHeight fill in for a
// maximum that is missing there.
std::optional<PpdCustomLimits> CustomLimitsOf(ppd_file_t *ppd) {
  if (ppd->variable_sizes == 0) return std::nullopt;
  PpdCustomLimits limits{
      static_cast<double>(ppd->custom_min[0]), static_cast<double>(ppd->custom_max[0]),
      static_cast<double>(ppd->custom_min[1]), static_cast<double>(ppd->custom_max[1])};
  if (limits.max_width <= 0) limits.max_width = AttributeNumber(ppd, "MaxMediaWidth");
  if (limits.max_length <= 0) limits.max_length = AttributeNumber(ppd, "MaxMediaHeight");
  for (double *value :
       {&limits.min_width, &limits.max_width, &limits.min_length, &limits.max_length}) {
    if (!std::isfinite(*value) || *value < 0 || *value > 1e6) *value = 0;
  }
  if (limits.max_width <= 0 || limits.max_length <= 0) return std::nullopt;
  return limits;
}

void FillJcl(ppd_file_t *ppd, PpdModel *model) {
  model->jcl_begin = OrEmpty(ppd->jcl_begin);
  model->jcl_to_postscript = OrEmpty(ppd->jcl_ps);
  model->jcl_end = OrEmpty(ppd->jcl_end);
  const bool other_jcl =
      !model->jcl_begin.empty() &&
      (model->jcl_begin + model->jcl_to_postscript).find("@PJL") == std::string::npos;
  if (other_jcl) return;
  model->pjl =
      !model->jcl_begin.empty() || OrEmpty(ppd->protocols).find("PJL") != std::string::npos;
  for (const PpdFeature &feature : model->features) {
    if (feature.section != PpdSection::Jcl) continue;
    for (const PpdChoice &choice : feature.choices) {
      model->pjl = model->pjl || choice.code.find("@PJL") != std::string::npos;
    }
  }
  const ppd_attr_t *charset = ppdFindAttr(ppd, "cupsPJLCharset", nullptr);
  model->pjl_utf8 = charset != nullptr && SameKeyword(OrEmpty(charset->value), "UTF-8");
}

// The settings of a value "NAME=VALUE NAME=VALUE"; what can be none of PJL is left out.
std::vector<std::string> PjlSettingsOf(std::string_view value) {
  std::vector<std::string> settings;
  std::istringstream words{std::string(value)};
  for (std::string word; words >> word;) {
    const bool printable =
        std::all_of(word.begin(), word.end(), [](char c) { return c > ' ' && c < 0x7F; });
    const size_t sign = word.find('=');
    if (printable && sign != std::string::npos && sign > 0) settings.push_back(word);
  }
  return settings;
}

// "*KPXPJL<feature> <choice>": our own keyword for what a job that is not PostScript sets.
void FillPjlSettings(ppd_file_t *ppd, PpdModel *model) {
  for (const PpdFeature &feature : model->features) {
    const std::string name = "KPXPJL" + feature.keyword;
    for (ppd_attr_t *attr = ppdFindAttr(ppd, name.c_str(), nullptr); attr != nullptr;
         attr = ppdFindNextAttr(ppd, name.c_str(), nullptr)) {
      const PpdChoice *choice = feature.FindChoice(attr->spec);
      if (choice == nullptr) continue;
      model->pjl_settings[{feature.keyword, choice->keyword}] = PjlSettingsOf(OrEmpty(attr->value));
    }
  }
}

// The part of `end` points that can be printed on: all of it where the PPD names none of it.
std::pair<double, double> PrintableOf(float from, float to, double end) {
  if (!std::isfinite(from) || !std::isfinite(to)) return {0, end};
  const double first = std::clamp(static_cast<double>(from), 0.0, end);
  const double last = std::clamp(static_cast<double>(to), 0.0, end);
  return first < last ? std::pair(first, last) : std::pair(0.0, end);
}

void FillSizes(ppd_file_t *ppd, PpdModel *model) {
  // Also keeps out what is no number.
  const auto is_side = [](float points) { return points > 0 && points <= kLongestSide; };
  for (int i = 0; i < ppd->num_sizes; ++i) {
    const ppd_size_t &size = ppd->sizes[i];
    if (!is_side(size.width) || !is_side(size.length)) continue;
    PpdPageSize page;
    page.width = static_cast<double>(size.width);
    page.length = static_cast<double>(size.length);
    std::tie(page.left, page.right) = PrintableOf(size.left, size.right, page.width);
    std::tie(page.bottom, page.top) = PrintableOf(size.bottom, size.top, page.length);
    model->page_sizes[size.name] = page;
  }
  for (ppd_attr_t *attr = ppdFindAttr(ppd, "RequiresPageRegion", nullptr); attr != nullptr;
       attr = ppdFindNextAttr(ppd, "RequiresPageRegion", nullptr)) {
    model->requires_page_region[attr->spec] = SameKeyword(OrEmpty(attr->value), "True");
  }
}

// What the models that were added are told apart by.
void FillMaker(ppd_file_t *ppd, PpdModel *model) {
  for (int i = 0; i < ppd->num_filters; ++i) model->filters.emplace_back(OrEmpty(ppd->filters[i]));
  const auto value = [ppd](const char *name) {
    const ppd_attr_t *attr = ppdFindAttr(ppd, name, nullptr);
    return attr == nullptr ? std::string() : OrEmpty(attr->value);
  };
  model->driver = value(kDriverKeyword);
  model->throughput = value("Throughput");
  model->other_maker = SameKeyword(value(kOtherMakerKeyword), "True");
}

PpdModel ModelOf(ppd_file_t *ppd, std::string_view bytes) {
  PpdModel model;
  model.nick_name = CleanText(OrEmpty(ppd->nickname));
  model.model_name = CleanText(OrEmpty(ppd->modelname));
  model.language_level = ppd->language_level;
  model.color = ppd->color_device != 0;
  for (int i = 0; i < ppd->num_groups; ++i) AddGroup(ppd, ppd->groups[i], false, bytes, &model);
  for (int i = 0; i < ppd->num_consts; ++i) {
    const ppd_const_t &c = ppd->consts[i];
    model.constraints.push_back({c.option1, c.choice1, c.option2, c.choice2});
  }
  model.custom_limits = CustomLimitsOf(ppd);
  FillSizes(ppd, &model);
  FillJcl(ppd, &model);
  FillPjlSettings(ppd, &model);
  FillMaker(ppd, &model);
  return model;
}

}  // namespace

[[nodiscard]] int DescriptorOfText(std::string_view text) {
  const int fd = memfd_create("ppd", MFD_CLOEXEC);
  if (fd < 0) return -1;
  if (!WriteWhole(fd, text)) {
    const int saved = errno;
    close(fd);
    errno = saved;
    return -1;
  }
  lseek(fd, 0, SEEK_SET);
  return fd;
}

std::string PpdError::Text(std::string_view file) const {
  const std::string place = line > 0 ? ": line " + std::to_string(line) : std::string();
  return std::string(file) + place + ": " + reason;
}

std::optional<PpdModel> ReadPpd(std::string_view bytes, PpdError *error) {
  bytes = WithoutByteOrderMark(bytes);
  PreparedPpd prepared = PreparePpd(bytes);
  const PpdFile ppd = OpenText(&prepared, error);
  if (ppd == nullptr) return std::nullopt;
  return ModelOf(ppd.get(), bytes);
}

std::optional<PpdModel> ReadPpdFile(const std::string &path, PpdError *error) {
  const std::optional<std::string> bytes = ReadWholeFile(path);
  if (!bytes) {
    *error = {0, std::strerror(errno)};
    return std::nullopt;
  }
  return ReadPpd(*bytes, error);
}

}  // namespace kpx::filter

#pragma GCC diagnostic pop
