#include "pafreader.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "cconstrain.h"
#include "cfeature.h"
#include "debug.h"

namespace {

// What the next value line is, or which block has just begun. The states of the four limits and
// those of a constraint's four ends are consecutive, in the order of their values.
enum class State {
  None,
  FeatureStarted,
  FeatureId,
  FeatureTranslation,
  FeatureDefault,
  FeatureType,
  OptionStarted,
  OptionId,
  OptionTranslation,
  Cps,
  CpsMinWidth,
  CpsMaxWidth,
  CpsMinLength,
  CpsMaxLength,
  Constraint,
  ConstraintFeature1,
  ConstraintOption1,
  ConstraintFeature2,
  ConstraintOption2,
};

constexpr std::array L_LimitNames{"MinWidth", "MaxWidth", "MinLength", "MaxLength"};

using FourValues = std::array<std::optional<std::string>, 4>;

bool AllPresent(const FourValues &values) {
  return std::all_of(values.begin(), values.end(), [](const auto &value) { return !!value; });
}

Owned<CString> TextOf(const std::string &text) { return CreateStringWithValue(text.c_str()); }

// The state machine. What is pending stays until it is used up or replaced, also between blocks.
class PafParser {
 public:
  PafParser();

  // Does what the line says; a value line goes where the state says.
  void TakeLine(const std::string &line);

  // To be called after the last line.
  void TakeEnd();

  // Why the description is corrupt; null as long as it is not.
  const char *Error() const { return error_; }

  PafContent &Content() { return content_; }

 private:
  // The routine of a keyword returns the state that follows.
  using Routine = State (PafParser::*)(const std::string &line);

  struct Keyword {
    constexpr Keyword(std::string_view keyword, State follows) : text(keyword), next(follows) {}
    constexpr Keyword(std::string_view keyword, Routine does) : text(keyword), routine(does) {}
    std::string_view text;
    State next = State::None;  // without a routine
    Routine routine = nullptr;
  };
  static const Keyword L_Keywords[];

  State Fail(const char *reason);
  void TakeValue(const std::string &line);
  void SetFeatureText(Owned<CString> CFeature::*member, const std::string &line);

  State TakeName(const std::string &line);
  State TakePpd(const std::string &line);
  State StartFeature(const std::string &line);
  State StartInstallable(const std::string &line);
  State Identify(const std::string &line);
  State Translate(const std::string &line);
  State StartOptions(const std::string &line);
  State EndOptions(const std::string &line);
  State EndOption(const std::string &line);
  State EndFeature(const std::string &line);
  State StartCustomPaper(const std::string &line);
  State EndCustomPaper(const std::string &line);
  State StartConstraint(const std::string &line);
  State EndConstraint(const std::string &line);

  PafContent content_;
  const char *error_ = nullptr;
  State state_ = State::None;

  Owned<CFeature> feature_;
  bool installable_ = false;
  Owned<CString> feature_id_;
  Owned<CHash> options_;
  Owned<CString> option_id_;
  Owned<CString> option_translation_;
  bool custom_paper_started_ = false;
  FourValues limits_;
  Owned<CConstrain> constraint_;
  FourValues ends_;
};

// In the order of the tests, which compare the beginning of the line.
constexpr PafParser::Keyword PafParser::L_Keywords[] = {
    {"##Name:", &PafParser::TakeName},
    {"##PPD:", &PafParser::TakePpd},
    {"##", State::None},
    {"#uio", &PafParser::StartFeature},
    {"#uip", &PafParser::StartFeature},
    {"#uij", &PafParser::StartFeature},
    {"#uiio", &PafParser::StartInstallable},
    {"#id", &PafParser::Identify},
    {"#default", State::FeatureDefault},
    {"#type", State::FeatureType},
    {"#_options", &PafParser::StartOptions},
    {"#_option", State::OptionStarted},
    {"#translat", &PafParser::Translate},  // kept on purpose: compared no further than this
    {"#end_options", &PafParser::EndOptions},
    {"#end_option", &PafParser::EndOption},
    {"#end_ui", &PafParser::EndFeature},
    {"#cps", &PafParser::StartCustomPaper},
    {"#MinWidth", State::CpsMinWidth},
    {"#MaxWidth", State::CpsMaxWidth},
    {"#MinLength", State::CpsMinLength},
    {"#MaxLength", State::CpsMaxLength},
    {"#end_cps", &PafParser::EndCustomPaper},
    {"#ccc", &PafParser::StartConstraint},
    {"#f1", State::ConstraintFeature1},
    {"#o1", State::ConstraintOption1},
    {"#f2", State::ConstraintFeature2},
    {"#o2", State::ConstraintOption2},
    {"#end_ccc", &PafParser::EndConstraint},
};

PafParser::PafParser() {
  content_.features = CreateHash();
  content_.installable_options = CreateHash();
  content_.constraints = CreateList();
}

void PafParser::TakeLine(const std::string &line) {
  if (line.empty()) {
    state_ = State::None;
    return;
  }
  const auto begins = [&line](const Keyword &keyword) { return line.starts_with(keyword.text); };
  const auto keyword = line[0] != '#'
                           ? std::end(L_Keywords)
                           : std::find_if(std::begin(L_Keywords), std::end(L_Keywords), begins);
  if (keyword == std::end(L_Keywords)) {
    TakeValue(line);
  } else {
    state_ = keyword->routine == nullptr ? keyword->next : (this->*keyword->routine)(line);
  }
}

void PafParser::TakeEnd() {
  if (content_.name == nullptr) Fail("there is no ##Name: line");
  if (content_.ppd_file == nullptr) Fail("there is no ##PPD: line");
}

State PafParser::Fail(const char *reason) {
  error_ = reason;
  return State::None;
}

void PafParser::TakeValue(const std::string &line) {
  switch (state_) {
    case State::FeatureId:
      feature_id_ = TextOf(line);
      break;
    case State::FeatureTranslation:
      SetFeatureText(&CFeature::translation, line);
      break;
    case State::FeatureDefault:
      SetFeatureText(&CFeature::default_option, line);
      break;
    case State::FeatureType:
      SetFeatureText(&CFeature::type, line);
      break;
    case State::OptionId:
      option_id_ = TextOf(line);
      break;
    case State::OptionTranslation:
      option_translation_ = TextOf(line);
      break;
    case State::CpsMinWidth:
    case State::CpsMaxWidth:
    case State::CpsMinLength:
    case State::CpsMaxLength:
      limits_[static_cast<size_t>(state_) - static_cast<size_t>(State::CpsMinWidth)] = line;
      break;
    case State::ConstraintFeature1:
    case State::ConstraintOption1:
    case State::ConstraintFeature2:
    case State::ConstraintOption2:
      ends_[static_cast<size_t>(state_) - static_cast<size_t>(State::ConstraintFeature1)] = line;
      break;
    case State::None:
    case State::FeatureStarted:
    case State::OptionStarted:
    case State::Cps:
    case State::Constraint:
      break;  // no value is expected: the line is ignored
  }
}

void PafParser::SetFeatureText(Owned<CString> CFeature::*member, const std::string &line) {
  if (feature_ == nullptr) {
    Fail("a value of a feature outside a feature");
  } else {
    (*feature_).*member = TextOf(line);
  }
}

State PafParser::TakeName(const std::string &line) {
  content_.name = TextOf(PafHeaderText(line));
  return State::None;
}

State PafParser::TakePpd(const std::string &line) {
  content_.ppd_file = TextOf(PafHeaderText(line));
  return State::None;
}

State PafParser::StartFeature(const std::string &) {
  feature_ = CreateFeature();
  installable_ = false;
  return State::FeatureStarted;
}

State PafParser::StartInstallable(const std::string &line) {
  const State next = StartFeature(line);
  installable_ = true;
  return next;
}

State PafParser::Identify(const std::string &) {
  if (state_ == State::FeatureStarted) return State::FeatureId;
  if (state_ == State::OptionStarted) return State::OptionId;
  return Fail("#id that does not follow the start of a feature or option");
}

State PafParser::Translate(const std::string &) {
  if (state_ == State::FeatureId) return State::FeatureTranslation;
  if (state_ == State::OptionId) return State::OptionTranslation;
  return Fail("#translation that does not follow an identifier");
}

State PafParser::StartOptions(const std::string &) {
  options_ = CreateHash();
  return State::None;
}

State PafParser::EndOptions(const std::string &) {
  if (feature_ == nullptr || options_ == nullptr) return Fail("#end_options without options");
  feature_->options = std::move(options_);
  return State::None;
}

State PafParser::EndOption(const std::string &) {
  if (options_ == nullptr) return Fail("#end_option outside an option list");
  if (option_id_ == nullptr || option_translation_ == nullptr) return Fail("incomplete option");
  fAdd_CHash_Function(options_.get(), std::move(option_id_), std::move(option_translation_));
  return State::None;
}

State PafParser::EndFeature(const std::string &) {
  if (feature_ == nullptr) return Fail("#end_ui without a feature");
  if (feature_id_ == nullptr || feature_->translation == nullptr ||
      feature_->default_option == nullptr || feature_->type == nullptr) {
    return Fail("incomplete feature");
  }
  CHash *table = installable_ ? content_.installable_options.get() : content_.features.get();
  fAdd_CHash_Function(table, std::move(feature_id_), std::move(feature_));
  installable_ = false;
  return State::None;
}

State PafParser::StartCustomPaper(const std::string &) {
  custom_paper_started_ = true;
  return State::Cps;
}

State PafParser::EndCustomPaper(const std::string &line) {
  if (line != "#end_cps") {
    // Kept on purpose: with anything behind it the keyword is a value line.
    TakeValue(line);
    return state_;
  }
  if (!custom_paper_started_ || !AllPresent(limits_)) return Fail("incomplete custom paper block");
  content_.custom_paper = CreateHash();
  for (size_t i = 0; i < limits_.size(); ++i) {
    HashPutText(content_.custom_paper.get(), L_LimitNames[i], limits_[i]->c_str());
  }
  return State::None;
}

State PafParser::StartConstraint(const std::string &) {
  constraint_ = CreateConstrain();
  return State::Constraint;
}

State PafParser::EndConstraint(const std::string &) {
  if (constraint_ == nullptr || !AllPresent(ends_)) return Fail("incomplete constraint");
  // Kept on purpose: the four values stay, so a later block that lacks one takes it from here.
  fSetData_Function(constraint_.get(), TextOf(*ends_[0]), TextOf(*ends_[1]), TextOf(*ends_[2]),
                    TextOf(*ends_[3]));
  fAddTail_CList_Function(content_.constraints.get(), std::move(constraint_));
  return State::None;
}

}  // namespace

std::variant<PafContent, PafError> ReadPaf(LineReader &lines) {
  const LogScope log("ReadPaf");
  PafParser parser;
  while (const std::optional<std::string> line = lines.Next()) {
    parser.TakeLine(*line);
    if (parser.Error() != nullptr) return PafError{*line, lines.LineNumber(), parser.Error()};
  }
  parser.TakeEnd();
  if (parser.Error() != nullptr) return PafError{"", lines.LineNumber(), parser.Error()};
  return std::move(parser.Content());
}

std::string PafHeaderText(const std::string &line) {
  const size_t first = line.find(':');
  if (first == std::string::npos) return "";
  return line.substr(first + 1, line.find(':', first + 1) - first - 1);
}
