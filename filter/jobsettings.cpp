#include "jobsettings.h"

#include <algorithm>
#include <charconv>

#include "copies.h"
#include "decimal.h"
#include "jobrules.h"
#include "settingkeys.h"

namespace kpx::filter {

namespace {

constexpr double kLongestSide = 1e5;  // points

// The whole of `text` as a number, nothing when it is none.
template <typename Number>
std::optional<Number> NumberOf(std::string_view text) {
  Number number{};
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
  return number;
}

std::optional<CustomPaper> PaperOf(std::string_view width, std::string_view length) {
  const auto w = NumberOf<double>(width);
  const auto l = NumberOf<double>(length);
  const auto good = [](const std::optional<double> &v) {
    return v && *v > 0 && *v <= kLongestSide;
  };
  if (!good(w) || !good(l)) return std::nullopt;
  return CustomPaper{*w, *l};
}

// Whether a job of this user ("host!user" for one of another host) is anybody's. "anonymous" is
// what the spooler calls the user of a job that names none.
bool IsSomebody(std::string_view user) {
  user.remove_prefix(std::min(user.rfind('!') + 1, user.size()));
  return !user.empty() && user != "anonymous" && user != "nobody";
}

}  // namespace

std::optional<NamedPaper> NamedPaperOf(std::string_view value) {
  const auto line = CustomPaperOf(value);
  const auto size = line ? PaperOf(line->width, line->length) : std::nullopt;
  if (!size) return std::nullopt;
  return NamedPaper{line->name, *size};
}

JobSettings::JobSettings(const PpdModel &model) : model_(model) {}

void JobSettings::ApplyQueue(const std::vector<KeyValue> &settings) {
  // The definitions stand behind the settings that name them.
  for (const KeyValue &setting : settings) Define(setting);
  is_choice_ = false;
  Apply(settings);
  is_choice_ = true;
  queue_user_ = Other(kUserNameKey);
  others_.erase(kUserNameKey);
}

void JobSettings::ApplyUser(const std::vector<KeyValue> &settings) {
  for (const KeyValue &setting : settings) {
    if (setting.key != kUserNameKey || setting.value != queue_user_) Apply({setting});
  }
}

void JobSettings::Define(const KeyValue &setting) {
  if (setting.key == kCustomMediaKey) {
    if (const auto media = CustomMediaOf(setting.value)) medias_[media->name] = media->shown_name;
  }
  if (setting.key != kCustomPaperKey) return;
  if (const auto paper = NamedPaperOf(setting.value)) {
    papers_[paper->name] = paper->size;
  } else {
    warnings_.push_back("\"" + setting.key + "=" + setting.value +
                        "\" does not define a paper size; ignored");
  }
}

void JobSettings::ApplyWords(const ApplicationSettings &words) {
  for (const NamedPaper &paper : words.papers) papers_[paper.name] = paper.size;
  for (const std::string &media : words.medias) medias_.try_emplace(media, media);
  Apply(words.settings);
  warnings_.insert(warnings_.end(), words.warnings.begin(), words.warnings.end());
}

void JobSettings::Apply(const std::vector<KeyValue> &settings) {
  for (const KeyValue &setting : settings) {
    if (setting.key != kCustomPaperKey && setting.key != kCustomMediaKey) ApplyOne(setting);
  }
}

void JobSettings::ApplyOne(const KeyValue &setting) {
  if (setting.key == kCopiesKey) {
    const auto copies = NumberOf<int>(setting.value);
    if (copies && *copies >= 1 && *copies <= kMostCopies) {
      copies_ = *copies;
      has_chosen_copies_ = has_chosen_copies_ || is_choice_;
    } else {
      warnings_.push_back("\"*NrCopies=" + setting.value + "\" is not a number of copies; ignored");
    }
    return;
  }
  // A PIN is never looked up, so that it never gets into a warning.
  const bool may_be_feature = setting.key.starts_with('*') && setting.key != kPinKey;
  const PpdFeature *feature = may_be_feature ? model_.FindFeature(setting.key.substr(1)) : nullptr;
  if (feature == nullptr) {
    // A booklet and several pages a sheet exclude each other: the one set later stays.
    const bool is_no_booklet = setting.key == kBookletKey && setting.value == "0";
    const char *out = is_no_booklet ? nullptr : KeyPutOutBy(setting.key);
    if (out != nullptr) others_.erase(out);
    others_[setting.key] = setting.value;
    return;
  }
  const PpdChoice *choice = feature->FindChoice(setting.value);
  if (choice == nullptr && feature->keyword == "PageSize" && IsBeyondLimits(setting)) return;
  const bool custom = (feature->keyword == "PageSize" && papers_.contains(setting.value)) ||
                      (feature->keyword == "MediaType" && medias_.contains(setting.value));
  if (choice != nullptr || custom) {
    features_[feature->keyword] = choice != nullptr ? choice->keyword : setting.value;
    others_.erase(setting.key);
    if (is_choice_) chosen_.insert(feature->keyword);
  } else if (feature->keyword == "Delivery" && TakesPin(setting.value)) {
    // Not to be ignored: see DeliveryProblem.
    others_[setting.key] = setting.value;
  } else {
    warnings_.push_back("\"" + setting.key + "=" + setting.value +
                        "\" is not an option of this printer; ignored");
  }
}

// Adds the warning when it is.
bool JobSettings::IsBeyondLimits(const KeyValue &setting) {
  constexpr double kRounded = 1;  // sizes are stored in whole points, limits need not be whole
  const auto paper = papers_.find(setting.value);
  if (paper == papers_.end() || !model_.custom_limits) return false;
  const PpdCustomLimits &limits = *model_.custom_limits;
  const auto [width, length] = paper->second;
  if (width > limits.min_width - kRounded && width < limits.max_width + kRounded &&
      length > limits.min_length - kRounded && length < limits.max_length + kRounded) {
    return false;
  }
  const auto size = [](double w, double l) { return DecimalText(w) + " x " + DecimalText(l); };
  warnings_.push_back("\"" + setting.key + "=" + setting.value + "\" (" + size(width, length) +
                      " points) is beyond the printer's limits for custom paper (" +
                      size(limits.min_width, limits.min_length) + " to " +
                      size(limits.max_width, limits.max_length) + "); ignored");
  return true;
}

const PpdChoice *JobSettings::Chosen(std::string_view keyword) const {
  const PpdFeature *feature = model_.FindFeature(keyword);
  if (feature == nullptr || feature->choices.empty()) return nullptr;
  const auto set = features_.find(feature->keyword);
  return set == features_.end() ? &feature->DefaultChoice() : feature->FindChoice(set->second);
}

bool JobSettings::IsSet(std::string_view keyword) const {
  const PpdFeature *feature = model_.FindFeature(keyword);
  return feature != nullptr && features_.contains(feature->keyword);
}

bool JobSettings::IsChosen(std::string_view keyword) const {
  const PpdFeature *feature = model_.FindFeature(keyword);
  return feature != nullptr && chosen_.contains(feature->keyword);
}

JobSettings JobSettings::ForLaidOutPages() const {
  JobSettings result = *this;
  for (const char *key : {kNupKey, kNupOrderKey, kBookletKey}) result.others_.erase(key);
  result.pages_ = {};
  return result;
}

std::optional<CustomPaper> JobSettings::Paper() const {
  const auto set = features_.find("PageSize");
  if (set == features_.end() || Chosen("PageSize") != nullptr) return std::nullopt;
  const auto paper = papers_.find(set->second);
  return paper == papers_.end() ? std::nullopt : std::optional(paper->second);
}

std::optional<std::string> JobSettings::PaperName() const {
  if (!Paper()) return std::nullopt;
  return features_.find("PageSize")->second;
}

std::optional<std::string> JobSettings::MediaName() const {
  const auto set = features_.find("MediaType");
  if (set == features_.end() || Chosen("MediaType") != nullptr) return std::nullopt;
  return set->second;
}

std::string JobSettings::UserName(const std::string &login) const {
  const std::string own = Other(kUserNameKey);
  if (!own.empty()) return own;
  return IsSomebody(login) || queue_user_.empty() ? login : queue_user_;
}

std::string JobSettings::Other(std::string_view key) const {
  const auto found = others_.find(key);
  return found == others_.end() ? std::string() : found->second;
}

}  // namespace kpx::filter
