// What a PPD file says, as plain values. Texts are UTF-8; keywords are without their asterisk.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kpx::filter {

enum class PpdUi { Boolean, PickOne, PickMany };

// Where a feature's code belongs in a job (*OrderDependency).
enum class PpdSection { Any, Document, Exit, Jcl, Page, Prolog };

struct PpdChoice {
  std::string keyword;
  std::string text;  // never empty
  std::string code;  // bytes as they go to the printer
};

// A parameter of a custom value.
struct PpdParameter {
  std::string name;
  bool is_text = false;     // else a number
  double min = 0, max = 0;  // limits of a number
};

// The code of "*Custom<keyword> True" and how its parameters are handed over.
struct PpdCustom {
  std::string code;
  std::vector<PpdParameter> parameters;  // in the order in which the code expects them
  std::optional<double> order;           // from *NonUIOrderDependency
};

struct PpdFeature {
  std::string keyword;
  std::string text;  // never empty
  PpdUi ui = PpdUi::PickOne;
  bool installable = false;
  std::string group;  // the text of the group it is in, may be empty
  PpdSection section = PpdSection::Any;
  double order = 0;
  std::string default_choice;  // as written; may name no choice, or be empty
  std::vector<PpdChoice> choices;
  std::optional<PpdCustom> custom;

  // The choice of this keyword (case does not count), or nothing.
  const PpdChoice *FindChoice(std::string_view choice) const;

  // The default, or the first choice where the default names none. There must be a choice.
  const PpdChoice &DefaultChoice() const;
};

// A line of *UIConstraints or *NonUIConstraints; an empty choice is one that was left out.
struct PpdConstraint {
  std::string feature1, choice1, feature2, choice2;
};

// Limits of a custom page size, in points.
struct PpdCustomLimits {
  double min_width = 0, max_width = 0, min_length = 0, max_length = 0;
};

// A page size, in points: the paper (sides above 0, at most 1e5), and the corners of its printable
// area, which is part of it and not empty.
struct PpdPageSize {
  double width = 0, length = 0, left = 0, bottom = 0, right = 0, top = 0;
};

struct PpdModel {
  std::string nick_name;   // *NickName, may be empty
  std::string model_name;  // *ModelName, may be empty
  int language_level = 2;
  bool color = false;  // the printer prints colours
  std::vector<PpdFeature> features;
  std::vector<PpdConstraint> constraints;
  std::optional<PpdCustomLimits> custom_limits;
  std::map<std::string, PpdPageSize, std::less<>> page_sizes;
  std::map<std::string, bool, std::less<>> requires_page_region;  // by input slot or "All"

  // What CUPS would hand jobs to: "application/vnd.cups-postscript 0 -" and the like.
  std::vector<std::string> filters;
  std::string driver;        // what makes the data of a printer that takes no PostScript, or empty
  std::string throughput;    // *Throughput, pages a minute, may be empty
  bool other_maker = false;  // takes no job commands but those of its PPD file (kOtherMakerKeyword)

  bool pjl = false;  // the printer understands PJL
  bool pjl_utf8 = false;
  // What a job that is not PostScript sets by PJL ("DUPLEX=ON"), by feature and choice.
  std::map<std::pair<std::string, std::string>, std::vector<std::string>> pjl_settings;
  std::string jcl_begin, jcl_to_postscript, jcl_end;  // empty without *JCLBegin

  // The feature of this keyword (case does not count, no asterisk), or nothing.
  const PpdFeature *FindFeature(std::string_view keyword) const;
};

// Our own keywords in the PPD files of models that were added.
inline constexpr char kOtherMakerKeyword[] = "KPXOtherMaker";
inline constexpr char kDriverKeyword[] = "KPXDriver";

// Whether two keywords are the same: case does not count (ASCII only).
[[nodiscard]] bool SameKeyword(std::string_view a, std::string_view b);

}  // namespace kpx::filter
