// The settings of one job, merged from their layers.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "optionfiles.h"
#include "pageselection.h"
#include "ppdmodel.h"

namespace kpx::filter {

struct CustomPaper {
  double width = 0, length = 0;  // points
};

struct NamedPaper {
  std::string name;
  CustomPaper size;
};

// The custom paper size of a line kCustomPaperKey; nothing when it is none.
[[nodiscard]] std::optional<NamedPaper> NamedPaperOf(std::string_view value);

// What the words of an application say, as settings.
struct ApplicationSettings {
  std::vector<KeyValue> settings;   // for JobSettings::Apply
  std::vector<NamedPaper> papers;   // sizes of this job's own that the settings name
  std::vector<std::string> medias;  // types of this job's own that the settings name
  std::vector<std::string> warnings;
};

class JobSettings {
 public:
  // Begins with the defaults of `model`, which must outlive this.
  explicit JobSettings(const PpdModel &model);

  // Lays the settings of a queue over the present ones. Only a queue defines custom paper sizes
  // ("*CustomPaperSize=name''width''length") and media types ("*CustomMediaType=name::display
  // name").
  void ApplyQueue(const std::vector<KeyValue> &settings);

  // Lays the settings of a user's file over the present ones. A "*UserName" that is the queue's
  // says nothing: the windows show the queue's and store what they show.
  void ApplyUser(const std::vector<KeyValue> &settings);

  // Lays a job's settings over the present ones. A value that the printer does not offer, a custom
  // paper beyond its limits among them, changes nothing and is added to the warnings.
  void Apply(const std::vector<KeyValue> &settings);

  // Lays what an application asks for over the present settings. Unlike others, a job may name
  // paper sizes and media types of its own here.
  void ApplyWords(const ApplicationSettings &words);

  const PpdModel &Model() const { return model_; }

  // The choice for a feature (keyword without asterisk); nothing for a feature without choices and
  // for one that is not there or has a custom value.
  const PpdChoice *Chosen(std::string_view keyword) const;

  // Whether a layer above the printer's defaults set the feature.
  [[nodiscard]] bool IsSet(std::string_view keyword) const;

  // The custom paper size or media type in force, if one is.
  [[nodiscard]] std::optional<CustomPaper> Paper() const;
  [[nodiscard]] std::optional<std::string> PaperName() const;
  [[nodiscard]] std::optional<std::string> MediaName() const;

  // The value of a key that is not a feature of the printer ("*JobName"), or an empty text.
  std::string Other(std::string_view key) const;

  // Whose name the printer gets for a job of the spooler's user `login`: the "*UserName" of the job
  // or of its user, else the login name. That of the queue is for jobs that come without a user
  // (none, "anonymous" or "nobody").
  std::string UserName(const std::string &login) const;

  int Copies() const { return copies_; }

  // Whether somebody chose the feature (keyword without asterisk), or the number of copies, for
  // this job: its user's file or its words, not the queue's.
  [[nodiscard]] bool IsChosen(std::string_view keyword) const;
  [[nodiscard]] bool HasChosenCopies() const { return has_chosen_copies_; }

  // The pages that are printed, and their order.
  const PageSelection &Pages() const { return pages_; }
  void Select(PageSelection pages) { pages_ = std::move(pages); }

  // The settings for a job whose pages are laid out already.
  JobSettings ForLaidOutPages() const;

  const std::vector<std::string> &Warnings() const { return warnings_; }

 private:
  void ApplyOne(const KeyValue &setting);
  [[nodiscard]] bool IsBeyondLimits(const KeyValue &setting);
  void Define(const KeyValue &setting);

  const PpdModel &model_;
  std::map<std::string, std::string, std::less<>> features_;  // keyword -> choice or custom name
  std::map<std::string, std::string, std::less<>> others_;
  std::map<std::string, CustomPaper, std::less<>> papers_;
  std::map<std::string, std::string, std::less<>> medias_;
  std::string queue_user_;  // the queue's "*UserName"
  int copies_ = 1;
  std::set<std::string, std::less<>> chosen_;  // keywords
  bool has_chosen_copies_ = false;
  bool is_choice_ = true;  // the layer that is being laid over the others is one of the job's
  PageSelection pages_;
  std::vector<std::string> warnings_;
};

}  // namespace kpx::filter
