// A user who sets every option that an open properties window has, and reads what it shows.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "guiapp.h"
#include "makersfeatures.h"

struct ShownSettings {
  std::map<std::string, std::string> choices;  // the text shown, by the feature's keyword
  std::vector<std::string> installed;          // rows without their marks, sorted

  bool operator==(const ShownSettings &other) const = default;
};

class EveryOption {
 public:
  // Where a feature stands.
  struct Place {
    std::string feature;  // keyword
    std::string tab;
    std::string combo;  // name of the row of widgets; empty: in the list of more options
    size_t row = 0;     // of that list
  };

  // The window is the properties window of a queue whose printer has these features.
  EveryOption(GuiApp &app, std::vector<MakersFeature> features, std::vector<std::string> tabs)
      : app_(app), features_(std::move(features)), tabs_(std::move(tabs)) {}

  // Shows every page and gives each feature another choice; with `likes_free` one without a mark,
  // where there is one.
  void SetAll(bool likes_free);
  // Presses Apply until the window has nothing against it, and answers what it says by the button
  // that resolves; where none helps, by the buttons of the defaults. False when that is no help
  // either.
  [[nodiscard]] bool Apply();

  // What the pages show now.
  ShownSettings Read();

  // Where SetAll found the features; another program's window of the same queue has them there too.
  const std::vector<Place> &Places() const { return places_; }
  void TakePlaces(const std::vector<Place> &places) { places_ = places; }

  // What went wrong, in words: after SetAll also the features with a choice that no widget, or more
  // than one, has.
  const std::vector<std::string> &Faults() const { return faults_; }

  // The texts that SetAll chose, by the feature's keyword. Answers to conflicts may have changed
  // some of them since.
  const std::map<std::string, std::string> &Chosen() const { return chosen_; }
  int Set() const { return set_; }
  int Conflicts() const { return conflicts_; }
  // What the window said of each conflict that the button did not resolve.
  const std::vector<std::string> &Unresolved() const { return unresolved_; }
  // The texts of the window that a page did not show whole, "<window>/<widget> TAB <text>".
  const std::vector<std::string> &Clipped() const { return clipped_; }

 private:
  void WalkRows(const std::string &tab);
  void WalkMoreOptions(const std::string &tab);
  void MoveInstallables();
  std::string ShownAt(const Place &place, const std::vector<std::string> &more);
  std::vector<std::string> InstalledParts();
  bool MoveOne(const MakersFeature &feature, const std::string &list, const std::string &button);
  void ChooseAnother(const std::string &row, const std::string &keyword);
  const MakersFeature *Feature(const std::string &keyword) const;
  // The feature that stands in the list of more options with that text and those choices.
  const MakersFeature *UnplacedFeature(const std::string &text,
                                       const std::vector<std::string> &choices) const;
  bool IsPlaced(const std::string &keyword) const;
  bool Resolve();
  void SetDefaults();
  void NoteMissing();
  bool IsInAList(const MakersFeature &feature) const;
  bool IsThereARow(const std::string &text) const;
  void Note(const std::string &fault) { faults_.push_back(fault); }

  GuiApp &app_;
  std::vector<MakersFeature> features_;
  std::vector<std::string> tabs_;
  std::vector<Place> places_;
  std::vector<std::string> installable_rows_;  // of both lists, as they were first
  std::map<std::string, std::string> chosen_;
  std::vector<std::string> faults_;
  std::vector<std::string> clipped_;
  bool likes_free_ = false;
  int set_ = 0;
  int conflicts_ = 0;
  std::vector<std::string> unresolved_;
};
