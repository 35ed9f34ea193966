#include "ppdmarking.h"

// libcups declares its PPD functions as deprecated since 1.6, and keeps them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/cups.h>
#include <cups/ppd.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "ppdadaptor.h"
#include "ppdmodel.h"

namespace kpx::filter {

namespace {

// A list of options as libcups takes it.
class OptionList {
 public:
  OptionList() = default;
  explicit OptionList(const std::string &words)
      : count_(cupsParseOptions(words.c_str(), 0, &options_)) {}
  ~OptionList() { cupsFreeOptions(count_, options_); }
  OptionList(const OptionList &) = delete;
  OptionList &operator=(const OptionList &) = delete;

  void Add(const ApplicationOption &option) {
    count_ = cupsAddOption(option.first.c_str(), option.second.c_str(), count_, &options_);
  }
  int Count() const { return count_; }
  cups_option_t *Options() const { return options_; }

 private:
  cups_option_t *options_ = nullptr;
  int count_ = 0;
};

// The words without the spooler's "cupsPrintQuality", where the job has a "print-quality" before
// it: it says the same of the options of a PPD, and libcups would let it replace the other.
std::string WithQualityAsAsked(const std::string &words) {
  constexpr std::string_view kAsked = "print-quality=", kAdded = " cupsPrintQuality=";
  const size_t asked = words.find(kAsked), added = words.rfind(kAdded);
  const bool both = asked < added && added != std::string::npos && words[added - 1] != '\\' &&
                    (asked == 0 || words[asked - 1] == ' ');
  if (!both) return words;
  const size_t end = std::min(words.find(' ', added + 1), words.size());
  return words.substr(0, added) + words.substr(end);
}

// The text of a custom value, with blanks where nothing is.
std::string CustomText(ppd_file_t *ppd, const char *keyword) {
  ppd_coption_t *custom = ppdFindCustomOption(ppd, keyword);
  ppd_cparam_t *parameter = custom == nullptr ? nullptr : ppdFirstCustomParam(custom);
  if (parameter == nullptr) return {};
  switch (parameter->type) {
    case PPD_CUSTOM_PASSCODE:
    case PPD_CUSTOM_PASSWORD:
    case PPD_CUSTOM_STRING:
      return parameter->current.custom_string == nullptr ? "" : parameter->current.custom_string;
    default:
      return {};
  }
}

MarkedChoice MarkedOf(ppd_file_t *ppd, const ppd_option_t &option, const ppd_choice_t &choice) {
  MarkedChoice marked{.keyword = option.keyword, .choice = choice.choice, .text = {}};
  if (!SameKeyword(marked.choice, "Custom")) return marked;
  if (SameKeyword(marked.keyword, "PageSize")) {
    const ppd_size_t *size = ppdPageSize(ppd, "Custom");
    if (size != nullptr) {
      marked.width = static_cast<double>(size->width);
      marked.length = static_cast<double>(size->length);
    }
  } else {
    marked.text = CustomText(ppd, option.keyword);
  }
  return marked;
}

void AddMarked(ppd_file_t *ppd, ppd_group_t &group, std::vector<MarkedChoice> *marked) {
  for (int i = 0; i < group.num_options; ++i) {
    ppd_option_t &option = group.options[i];
    for (int j = 0; j < option.num_choices; ++j) {
      if (option.choices[j].marked == 0) continue;
      marked->push_back(MarkedOf(ppd, option, option.choices[j]));
      option.choices[j].marked = 0;
    }
  }
  for (int i = 0; i < group.num_subgroups; ++i) AddMarked(ppd, group.subgroups[i], marked);
}

}  // namespace

std::vector<ApplicationOption> ApplicationOptionsOf(const std::string &words) {
  const OptionList list(WithQualityAsAsked(words));
  std::vector<ApplicationOption> options;
  for (int i = 0; i < list.Count(); ++i) {
    options.emplace_back(list.Options()[i].name, list.Options()[i].value);
  }
  return options;
}

PpdMarking::PpdMarking(const std::string &ppd_text) : ppd_(nullptr) {
  const int fd = DescriptorOfText(ppd_text);
  if (fd < 0) return;
  ppd_ = ppdOpenFd(fd);
  close(fd);
}

PpdMarking::~PpdMarking() {
  if (ppd_ != nullptr) ppdClose(ppd_);
}

std::vector<MarkedChoice> PpdMarking::ChoicesOf(const std::vector<ApplicationOption> &options) {
  std::vector<MarkedChoice> marked;
  if (ppd_ == nullptr) return marked;
  OptionList list;
  for (const ApplicationOption &option : options) list.Add(option);
  cupsMarkOptions(ppd_, list.Count(), list.Options());
  for (int i = 0; i < ppd_->num_groups; ++i) AddMarked(ppd_, ppd_->groups[i], &marked);
  cupsArrayClear(ppd_->marked);
  return marked;
}

}  // namespace kpx::filter

#pragma GCC diagnostic pop
