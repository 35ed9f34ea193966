#include "queueppd.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <sstream>

#include "decimal.h"
#include "jobrules.h"
#include "jobsettings.h"
#include "ppdadaptor.h"
#include "ppdtext.h"
#include "queuetypes.h"
#include "settingkeys.h"
#include "textencoding.h"
#include "textscan.h"

namespace kpx::filter {

namespace {

constexpr size_t kLongestChoice = 40;  // of libcups
constexpr size_t kLongestText = 80;

// One line of a PPD file, or several when its value goes on.
struct Statement {
  std::string raw;      // with line feeds
  std::string keyword;  // without asterisk; empty for lines that say nothing by themselves
  std::string option;   // as it stands, with its asterisk if it has one
  std::string text;     // with "/" in front, as it stands; empty without one
  std::string value;    // as it stands
};

Statement StatementOf(const std::string &line) {
  Statement statement{.raw = line + "\n", .keyword = {}, .option = {}, .text = {}, .value = {}};
  const size_t colon = line.find(':');
  if (!line.starts_with('*') || line.starts_with("*%") || colon == std::string::npos) {
    return statement;
  }
  const std::string_view head = std::string_view(line).substr(1, colon - 1);
  const size_t blank = std::min(head.find_first_of(" \t"), head.size());
  statement.keyword = head.substr(0, blank);
  const std::string_view rest = Trimmed(head.substr(blank));
  const size_t slash = std::min(rest.find('/'), rest.size());
  statement.option = Trimmed(rest.substr(0, slash));
  statement.text = rest.substr(slash);
  statement.value = Trimmed(std::string_view(line).substr(colon + 1));
  return statement;
}

bool IsOpen(const Statement &statement) {
  return statement.value.starts_with('"') && statement.value.find('"', 1) == std::string::npos;
}

std::vector<Statement> StatementsOf(std::string_view ppd) {
  std::vector<Statement> statements;
  std::istringstream lines{PreparePpd(ppd).text};
  bool open = false;
  for (std::string bytes; std::getline(lines, bytes);) {
    const std::string line = DecodeLine(bytes);
    if (!open) {
      if (line == "*End") continue;  // of a value that went on
      statements.push_back(StatementOf(line));
    } else {
      statements.back().raw += line + "\n";
      statements.back().value += "\n" + line;
    }
    open = IsOpen(statements.back());
    if (!open && statements.back().value.find('\n') != std::string::npos) {
      statements.back().raw += "*End\n";
    }
  }
  return statements;
}

// What a PPD file without code has no use for, and what is said anew.
bool IsLeftOut(std::string_view keyword) {
  constexpr std::string_view kWords[] = {"JCLBegin",
                                         "JCLToPSInterpreter",
                                         "JCLEnd",
                                         "Protocols",
                                         "cupsFilter",
                                         "cupsFilter2",
                                         "cupsPreFilter",
                                         "cupsCommands",
                                         "PatchFile",
                                         "JobPatchFile",
                                         "Password",
                                         "ExitServer",
                                         "Reset",
                                         "cupsLanguages",
                                         "cupsSingleFile",
                                         kDriverKeyword,
                                         "APDialogExtension",
                                         "NonUIOrderDependency",
                                         "RequiresPageRegion"};
  return keyword.starts_with('?') || keyword.starts_with("KPXPJL") ||
         std::find(std::begin(kWords), std::end(kWords), keyword) != std::end(kWords);
}

bool CanBeChoice(const std::string &name) {
  return !name.empty() && name.size() <= kLongestChoice && !name.starts_with("Custom") &&
         std::all_of(name.begin(), name.end(), [](char c) {
           return c > ' ' && c < 0x7F && std::string_view("/:*\"<>").find(c) == std::string::npos;
         });
}

// A text as it may stand behind "/".
std::string DisplayText(std::string_view text) {
  std::string result(Utf8Prefix(text, kLongestText));
  for (char &c : result) {
    if (c == ':' || c == '<' || IsControlCharacter(c)) c = ' ';
  }
  return result;
}

// A custom paper size or media type of the queue as a choice.
struct CustomChoice {
  std::string choice, name, text;
  double width = 0, length = 0;  // of a paper, points
};

class Maker {
 public:
  explicit Maker(const QueuePpdSource &source)
      : source_(source), statements_(StatementsOf(source.model)) {
    PpdError error;
    model_ = ReadPpd(source.model, &error);
    for (const Statement &statement : statements_) {
      if (IsOpening(statement) && statement.option.starts_with('*')) {
        options_.insert(statement.option.substr(1));
      }
    }
    // libcups takes the choices of some options without their frame too.
    if (model_) {
      for (const PpdFeature &feature : model_->features) options_.insert(feature.keyword);
    }
    FindCustoms();
  }

  QueuePpd Made() {
    bool first = true;
    for (const Statement &statement : statements_) {
      AddStatement(statement);
      if (first && statement.keyword == "PPD-Adobe") {
        AddOwnLines();
        first = false;
      }
    }
    AddSizes();
    AddTranslations();
    for (const CustomChoice &paper : papers_) ppd_.papers[paper.choice] = paper.name;
    for (const CustomChoice &media : medias_) ppd_.medias[media.choice] = media.name;
    return std::move(ppd_);
  }

 private:
  static bool IsOpening(const Statement &statement) {
    return statement.keyword == "OpenUI" || statement.keyword == "JCLOpenUI";
  }

  void Add(const std::string &line) { ppd_.text += line + "\n"; }

  // `name` as a choice of its own.
  std::string FreeChoice(const char *feature, const std::string &name, const char *stem,
                         const std::vector<CustomChoice> &others) const {
    const PpdFeature *known = model_ ? model_->FindFeature(feature) : nullptr;
    const auto is_free = [&](const std::string &choice) {
      return (known == nullptr || known->FindChoice(choice) == nullptr) &&
             std::none_of(others.begin(), others.end(), [&](const CustomChoice &other) {
               return SameKeyword(other.choice, choice);
             });
    };
    if (CanBeChoice(name) && is_free(name)) return name;
    for (int number = 1;; ++number) {
      std::string choice = stem + std::to_string(number);
      if (is_free(choice)) return choice;
    }
  }

  void FindCustoms() {
    for (const KeyValue &setting : source_.settings) {
      if (setting.key == kCustomMediaKey) {
        const auto media = CustomMediaOf(setting.value);
        if (!media) continue;
        medias_.push_back({FreeChoice("MediaType", media->name, "OwnType", medias_), media->name,
                           media->shown_name});
      }
      if (setting.key == kCustomPaperKey) {
        const auto paper = NamedPaperOf(setting.value);
        if (!paper) continue;
        papers_.push_back({FreeChoice("PageSize", paper->name, "OwnSize", papers_), paper->name,
                           paper->name, paper->size.width, paper->size.length});
      }
    }
  }

  // What the queue's option file sets for a feature, as a choice.
  std::optional<std::string> DefaultOf(const std::string &keyword) const {
    const bool size = keyword == "PageSize" || keyword == "PageRegion" ||
                      keyword == "ImageableArea" || keyword == "PaperDimension";
    const std::string feature = size ? "PageSize" : keyword;
    std::optional<std::string> result;
    for (const KeyValue &setting : source_.settings) {
      if (setting.key != "*" + feature) continue;
      const PpdFeature *known = model_ ? model_->FindFeature(feature) : nullptr;
      const PpdChoice *choice = known == nullptr ? nullptr : known->FindChoice(setting.value);
      if (choice != nullptr) result = choice->keyword;
      for (const CustomChoice &custom : feature == "PageSize" ? papers_ : medias_) {
        const bool has_customs = feature == "PageSize" || feature == "MediaType";
        if (has_customs && choice == nullptr && custom.name == setting.value) {
          result = custom.choice;
        }
      }
    }
    return result;
  }

  // A constraint on custom sizes or types holds for each of them.
  void AddConstraint(const Statement &statement) {
    ppd_.text += statement.raw;
    const auto copy = [&](std::string_view from, const std::string &to) {
      const size_t at = statement.value.find(from);
      if (at == std::string::npos) return;
      std::string value = statement.value;
      Add("*UIConstraints: " + value.replace(at, from.size(), to));
    };
    for (const auto &paper : papers_) copy("*CustomPageSize True", "*PageSize " + paper.choice);
    for (const auto &media : medias_) copy("*CustomMediaType True", "*MediaType " + media.choice);
  }

  void AddStatement(const Statement &statement) {
    const std::string &keyword = statement.keyword;
    const std::string head = "*" + keyword + " " + statement.option + statement.text + ": ";
    if (keyword.empty()) {
      if (statement.raw.starts_with("*")) ppd_.text += statement.raw;
    } else if (IsLeftOut(keyword)) {
      return;
    } else if (keyword == "UIConstraints" || keyword == "NonUIConstraints") {
      AddConstraint(statement);
    } else if (options_.contains(keyword) && !statement.option.empty()) {
      Add(head + "\"\"");
    } else if (keyword.starts_with("Custom") && options_.contains(keyword.substr(6))) {
      Add(head + "\"\"");
    } else if (keyword == "CloseUI" || keyword == "JCLCloseUI") {
      AddCustomChoices(statement.value);
      ppd_.text += statement.raw;
    } else if (keyword.starts_with("Default")) {
      const std::optional<std::string> choice = DefaultOf(keyword.substr(7));
      if (choice) {
        Add("*" + keyword + ": " + *choice);
      } else {
        ppd_.text += statement.raw;
      }
    } else {
      ppd_.text += statement.raw;
    }
  }

  void AddCustomChoices(const std::string &option) {
    const bool size = option == "*PageSize" || option == "*PageRegion";
    if (!size && option != "*MediaType") return;
    for (const CustomChoice &custom : size ? papers_ : medias_) {
      Add(option + " " + custom.choice + "/" + DisplayText(custom.text) + ": \"\"");
    }
  }

  // Which files come as they are: every kind that is told by itself later. What else the spooler
  // can make a PDF document of, as pictures, comes as one; on queues that print no PDF it is not
  // taken. No pattern stands for the kinds: it would let in those that come of odd conversions. A
  // PDF document costs something, because the spooler can make one of PostScript for nothing.
  void AddOwnLines() {
    constexpr const char *kPassed[] = {"application/postscript",
                                       "application/octet-stream",
                                       "application/vnd.adobe-reader-postscript",
                                       "application/x-cshell",
                                       "application/x-csource",
                                       "application/x-perl",
                                       "application/x-shell",
                                       "text/plain",
                                       "text/css",
                                       "text/html"};
    const auto pass = [&](const std::string &type, int cost) {
      Add("*cupsFilter2: \"" + type + " application/vnd.kpx-job " + std::to_string(cost) +
          " kpxjob\"");
    };
    for (const char *type : kPassed) pass(type, 0);
    pass("application/pdf", 10);
    if (source_.type == kPostScriptType) pass("application/vnd.cups-pdf", 0);
    Add("*RequiresPageRegion All: True");
    if (source_.translations.empty()) return;
    std::string languages;
    for (const auto &[language, text] : source_.translations) {
      languages += (languages.empty() ? "" : " ") + language;
    }
    Add("*cupsLanguages: \"" + languages + "\"");
  }

  void AddSizes() {
    double margins[4] = {0, 0, 0, 0};  // left, bottom, right, top
    for (const Statement &statement : statements_) {
      if (statement.keyword != "HWMargins") continue;
      std::istringstream numbers{std::string(Trimmed(statement.value, "\" "))};
      for (double &margin : margins) {
        if (!(numbers >> margin)) margin = 0;
      }
    }
    for (const CustomChoice &paper : papers_) {
      const auto box = [](double a, double b) { return DecimalText(a) + " " + DecimalText(b); };
      Add("*ImageableArea " + paper.choice + ": \"" + box(margins[0], margins[1]) + " " +
          box(paper.width - margins[2], paper.length - margins[3]) + "\"");
      Add("*PaperDimension " + paper.choice + ": \"" + box(paper.width, paper.length) + "\"");
    }
  }

  // What is the queue's own is the same in every language.
  void AddOwnTexts(const std::string &language) {
    const auto add = [&](const char *feature, const std::vector<CustomChoice> &customs) {
      for (const CustomChoice &custom : customs) {
        Add("*" + language + "." + feature + " " + custom.choice + "/" + DisplayText(custom.text) +
            ": \"\"");
      }
    };
    add("PageSize", papers_);
    add("MediaType", medias_);
  }

  void AddTranslations() {
    for (const auto &[language, text] : source_.translations) {
      AddOwnTexts(language);
      PpdError error;
      const std::optional<PpdModel> model = ReadPpd(text, &error);
      if (!model) continue;
      for (const PpdFeature &feature : model->features) {
        Add("*" + language + ".Translation " + feature.keyword + "/" + DisplayText(feature.text) +
            ": \"\"");
        for (const PpdChoice &choice : feature.choices) {
          Add("*" + language + "." + feature.keyword + " " + choice.keyword + "/" +
              DisplayText(choice.text) + ": \"\"");
        }
      }
    }
  }

  const QueuePpdSource &source_;
  std::vector<Statement> statements_;
  std::optional<PpdModel> model_;
  std::set<std::string> options_;  // keywords of options
  std::vector<CustomChoice> papers_, medias_;
  QueuePpd ppd_;
};

}  // namespace

QueuePpd MakeQueuePpd(const QueuePpdSource &source) { return Maker(source).Made(); }

}  // namespace kpx::filter
