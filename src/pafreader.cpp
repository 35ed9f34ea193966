#include "pafreader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "cconstrain.h"
#include "cfeature.h"
#include "debug.h"
#include "ignoreresult.h"

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

// Kept on purpose: one state for all reads of a run, so a description without header lines at its
// start goes on where the one before it ended.
State L_State = State::None;

constexpr std::array L_LimitNames{"MinWidth", "MaxWidth", "MinLength", "MaxLength"};

using FourValues = std::array<SharedText, 4>;

bool AllPresent(const FourValues &values) {
  return std::all_of(values.begin(), values.end(), [](const auto &value) { return !!value; });
}

// The state machine. What is pending stays until it is used up or replaced, also between blocks of
// one description; only the state outlives it.
class PafParser {
 public:
  PafParser();

  static bool IsKeyword(std::string_view line) { return FindKeyword(line) != nullptr; }

  // Does what the line says; a value line goes where the state says.
  void TakeLine(std::string_view line);

  // To be called after the last line.
  void TakeEnd();

  // Why the description is corrupt; null as long as it is not.
  const char *Error() const { return error_; }

  PafContent &Content() { return content_; }

 private:
  // The routine of a keyword returns the state that follows.
  using Routine = State (PafParser::*)(std::string_view line);

  struct Keyword {
    constexpr Keyword(std::string_view keyword, State follows) : text(keyword), next(follows) {}
    constexpr Keyword(std::string_view keyword, Routine does) : text(keyword), routine(does) {}
    std::string_view text;
    State next = State::None;  // without a routine
    Routine routine = nullptr;
  };
  static const Keyword L_Keywords[];
  static const std::array<uint8_t, 128> L_FirstKeywords;
  static const Keyword *FindKeyword(std::string_view line);

  State Fail(const char *reason);
  // A record of the line's text.
  Owned<CString> NewText(std::string_view line) { return CreateStringWithText(texts_.Get(line)); }

  void TakeValue(std::string_view line);
  void SetFeatureText(Owned<CString> CFeature::*member, std::string_view line);
  void SetEnd(size_t end, std::string_view line);

  State TakeName(std::string_view line);
  State TakePpd(std::string_view line);
  State StartFeature(std::string_view line);
  State StartInstallable(std::string_view line);
  State Identify(std::string_view line);
  State Translate(std::string_view line);
  State StartOptions(std::string_view line);
  State EndOptions(std::string_view line);
  State EndOption(std::string_view line);
  State EndFeature(std::string_view line);
  State StartCustomPaper(std::string_view line);
  State EndCustomPaper(std::string_view line);
  State StartConstraint(std::string_view line);
  State EndConstraint(std::string_view line);

  TextPool texts_;  // a description says the same few words thousands of times
  PafContent content_;
  const char *error_ = nullptr;

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

// By the second character, which tells most keywords apart: the first keyword with it.
constexpr std::array<uint8_t, 128> PafParser::L_FirstKeywords = [] {
  std::array<uint8_t, 128> first{};
  first.fill(std::size(L_Keywords));
  for (uint8_t i = std::size(L_Keywords); i-- > 0;) {
    first[static_cast<uint8_t>(L_Keywords[i].text[1])] = i;
  }
  return first;
}();

PafParser::PafParser() {
  content_.features = CreateHash();
  content_.installable_options = CreateHash();
  content_.constraints = CreateList();
}

const PafParser::Keyword *PafParser::FindKeyword(std::string_view line) {
  if (line.size() < 2 || line[0] != '#') return nullptr;
  const auto second = static_cast<uint8_t>(line[1]);
  if (second >= L_FirstKeywords.size()) return nullptr;
  const auto begins = [&line](const Keyword &keyword) {
    return line[1] == keyword.text[1] && line.starts_with(keyword.text);
  };
  const Keyword *end = std::end(L_Keywords);
  const Keyword *found = std::find_if(L_Keywords + L_FirstKeywords[second], end, begins);
  return found == end ? nullptr : found;
}

void PafParser::TakeLine(std::string_view line) {
  if (line.empty()) {
    L_State = State::None;
    return;
  }
  const Keyword *keyword = FindKeyword(line);
  if (keyword == nullptr) {
    TakeValue(line);
  } else {
    L_State = keyword->routine == nullptr ? keyword->next : (this->*keyword->routine)(line);
  }
}

void PafParser::TakeEnd() {
  if (content_.name == nullptr) Fail("there is no ##Name: line");
  if (content_.ppd_file == nullptr) Fail("there is no ##PPD: line");
}

State PafParser::Fail(const char *reason) {
  error_ = reason;
  L_State = State::None;
  return State::None;
}

void PafParser::TakeValue(std::string_view line) {
  switch (L_State) {
    case State::FeatureId:
      feature_id_ = NewText(line);
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
      option_id_ = NewText(line);
      break;
    case State::OptionTranslation:
      option_translation_ = NewText(line);
      break;
    case State::CpsMinWidth:
    case State::CpsMaxWidth:
    case State::CpsMinLength:
    case State::CpsMaxLength:
      limits_[static_cast<size_t>(L_State) - static_cast<size_t>(State::CpsMinWidth)] =
          texts_.Get(line);
      break;
    case State::ConstraintFeature1:
    case State::ConstraintOption1:
    case State::ConstraintFeature2:
    case State::ConstraintOption2:
      SetEnd(static_cast<size_t>(L_State) - static_cast<size_t>(State::ConstraintFeature1), line);
      break;
    case State::None:
    case State::FeatureStarted:
    case State::OptionStarted:
    case State::Cps:
    case State::Constraint:
      break;  // no value is expected: the line is ignored
  }
}

void PafParser::SetFeatureText(Owned<CString> CFeature::*member, std::string_view line) {
  if (feature_ == nullptr) {
    Fail("a value of a feature outside a feature");
  } else {
    (*feature_).*member = NewText(line);
  }
}

void PafParser::SetEnd(size_t end, std::string_view line) {
  // Most constraints share an end with the one before: that saves looking the text up.
  if (!ends_[end] || ends_[end].View() != line) ends_[end] = texts_.Get(line);
}

State PafParser::TakeName(std::string_view line) {
  content_.name = NewText(PafHeaderText(line));
  return State::None;
}

State PafParser::TakePpd(std::string_view line) {
  content_.ppd_file = NewText(PafHeaderText(line));
  return State::None;
}

State PafParser::StartFeature(std::string_view) {
  feature_ = CreateFeature();
  installable_ = false;
  return State::FeatureStarted;
}

State PafParser::StartInstallable(std::string_view line) {
  const State next = StartFeature(line);
  installable_ = true;
  return next;
}

State PafParser::Identify(std::string_view) {
  if (L_State == State::FeatureStarted) return State::FeatureId;
  if (L_State == State::OptionStarted) return State::OptionId;
  return Fail("#id that does not follow the start of a feature or option");
}

State PafParser::Translate(std::string_view) {
  if (L_State == State::FeatureId) return State::FeatureTranslation;
  if (L_State == State::OptionId) return State::OptionTranslation;
  return Fail("#translation that does not follow an identifier");
}

State PafParser::StartOptions(std::string_view) {
  options_ = CreateHash();
  return State::None;
}

State PafParser::EndOptions(std::string_view) {
  if (feature_ == nullptr || options_ == nullptr) return Fail("#end_options without options");
  feature_->options = std::move(options_);
  return State::None;
}

State PafParser::EndOption(std::string_view) {
  if (options_ == nullptr) return Fail("#end_option outside an option list");
  if (option_id_ == nullptr || option_translation_ == nullptr) return Fail("incomplete option");
  IgnoreResult(
      fAdd_CHash_Function(options_.get(), std::move(option_id_), std::move(option_translation_)),
      "table and identifier are there");
  return State::None;
}

State PafParser::EndFeature(std::string_view) {
  if (feature_ == nullptr) return Fail("#end_ui without a feature");
  if (feature_id_ == nullptr || feature_->translation == nullptr ||
      feature_->default_option == nullptr || feature_->type == nullptr) {
    return Fail("incomplete feature");
  }
  CHash *table = installable_ ? content_.installable_options.get() : content_.features.get();
  IgnoreResult(fAdd_CHash_Function(table, std::move(feature_id_), std::move(feature_)),
               "table and identifier are there");
  installable_ = false;
  return State::None;
}

State PafParser::StartCustomPaper(std::string_view) {
  custom_paper_started_ = true;
  return State::Cps;
}

State PafParser::EndCustomPaper(std::string_view line) {
  if (line != "#end_cps") {
    // Kept on purpose: with anything behind it the keyword is a value line.
    TakeValue(line);
    return L_State;
  }
  if (!custom_paper_started_ || !AllPresent(limits_)) return Fail("incomplete custom paper block");
  content_.custom_paper = CreateHash();
  for (size_t i = 0; i < limits_.size(); ++i) {
    IgnoreResult(
        HashPut(content_.custom_paper.get(), L_LimitNames[i], CreateStringWithText(limits_[i])),
        "the dictionary is there");
  }
  return State::None;
}

State PafParser::StartConstraint(std::string_view) {
  constraint_ = CreateConstrain();
  return State::Constraint;
}

State PafParser::EndConstraint(std::string_view) {
  if (constraint_ == nullptr || !AllPresent(ends_)) return Fail("incomplete constraint");
  // Kept on purpose: the four values stay, so a later block that lacks one takes it from here.
  constraint_->feature1.Share(ends_[0]);
  constraint_->option1.Share(ends_[1]);
  constraint_->feature2.Share(ends_[2]);
  constraint_->option2.Share(ends_[3]);
  IgnoreResult(fAddTail_CList_Function(content_.constraints.get(), std::move(constraint_)),
               "the list is there");
  return State::None;
}

}  // namespace

std::variant<PafContent, PafError> ReadPaf(LineReader &lines) {
  const LogScope log("ReadPaf");
  PafParser parser;
  while (const std::optional<std::string_view> line = lines.NextView()) {
    parser.TakeLine(*line);
    if (parser.Error() != nullptr) {
      return PafError{std::string(*line), lines.LineNumber(), parser.Error()};
    }
  }
  parser.TakeEnd();
  if (parser.Error() != nullptr) return PafError{"", lines.LineNumber(), parser.Error()};
  return std::move(parser.Content());
}

bool IsPafKeywordLine(std::string_view line) { return line.empty() || PafParser::IsKeyword(line); }

std::string PafHeaderText(std::string_view line) {
  const size_t first = line.find(':');
  if (first == std::string::npos) return "";
  return std::string(line.substr(first + 1, line.find(':', first + 1) - first - 1));
}
