#include "everyoption.h"

#include <algorithm>
#include <stdexcept>

#include "featuretable.h"
#include "installation.h"
#include "moreoptions.h"
#include "propertiesdriver.h"

namespace {

constexpr size_t kMark = 4;  // characters before a text
constexpr char kMoreList[] = "MoreOptionsClist";
constexpr char kMoreCombo[] = "MoreOption";
constexpr int kMostConflicts = 100;

std::string Unmarked(const std::string &text) {
  return text.size() < kMark ? "" : text.substr(kMark);
}

// Of a row "<*|-><mark><text>[TAB<text>]": the text and what stands behind it.
std::pair<std::string, std::string> CellsOf(const std::string &row, bool is_marked = true) {
  const size_t tab = row.find('\t');
  const std::string first = row.substr(1, tab == std::string::npos ? tab : tab - 1);
  return {is_marked ? Unmarked(first) : first, tab == std::string::npos ? "" : row.substr(tab + 1)};
}

std::vector<std::string> TextsOf(const std::vector<std::string> &rows) {
  std::vector<std::string> texts;
  for (const std::string &row : rows) texts.push_back(Squeezed(CellsOf(row).first));
  std::sort(texts.begin(), texts.end());
  return texts;
}

int SelectedOf(const std::vector<std::string> &rows) {
  const auto row = std::find_if(rows.begin(), rows.end(),
                                [](const std::string &text) { return text.starts_with('*'); });
  return row == rows.end() ? -1 : static_cast<int>(row - rows.begin());
}

bool IsFree(const std::string &row) { return !row.substr(1).starts_with('!'); }

// The row to choose instead of the present one: the next below, or above; -1 when there is none.
int OtherRow(const std::vector<std::string> &rows, int present, bool free_only) {
  const int count = static_cast<int>(rows.size());
  for (int row = present + 1; row < count; ++row) {
    if (!free_only || IsFree(rows[static_cast<size_t>(row)])) return row;
  }
  for (int row = present - 1; row >= 0; --row) {
    if (!free_only || IsFree(rows[static_cast<size_t>(row)])) return row;
  }
  return -1;
}

const char *TabOf(Page page) {
  switch (page) {
    case Page::kSetup:
      return "Setup";
    case Page::kOutput:
      return "Output";
    case Page::kOptions:
      return "Options";
    case Page::kDestination:
      return "Destination";
    default:
      return "";
  }
}

std::vector<std::string> Names(const char *feature) {
  std::vector<std::string> names = {feature};
  for (const MakersName &other : MakersNames()) {
    if (std::string(other.feature) == feature) names.emplace_back(other.name);
  }
  return names;
}

}  // namespace

const MakersFeature *EveryOption::Feature(const std::string &keyword) const {
  const auto found = std::find_if(features_.begin(), features_.end(), [&](const MakersFeature &f) {
    return f.keyword == keyword && !f.is_installable;
  });
  return found == features_.end() ? nullptr : &*found;
}

bool EveryOption::IsPlaced(const std::string &keyword) const {
  return std::any_of(places_.begin(), places_.end(),
                     [&](const Place &place) { return place.feature == keyword; });
}

const MakersFeature *EveryOption::UnplacedFeature(const std::string &text,
                                                  const std::vector<std::string> &choices) const {
  for (const MakersFeature &feature : features_) {
    if (feature.is_installable || IsPlaced(feature.keyword)) continue;
    if (Squeezed(feature.text) == Squeezed(text) && feature.Texts() == choices) return &feature;
  }
  return nullptr;
}

void EveryOption::SetAll(bool likes_free) {
  likes_free_ = likes_free;
  for (const std::string &tab : tabs_) {
    ShowTab(app_, tab);
    for (const std::string &text : app_.ClippedTexts()) {
      if (text.starts_with("PropertiesWindow/")) clipped_.push_back(tab + ": " + text);
    }
    if (tab == "Features") MoveInstallables();
    WalkRows(tab);
    if (tab == "Options" && app_.HasWidget(kMoreList)) WalkMoreOptions(tab);
  }
  NoteMissing();
}

void EveryOption::WalkRows(const std::string &tab) {
  for (const ListedFeature &listed : ListedFeatures()) {
    if (TabOf(listed.page) != tab) continue;
    const std::string row = listed.name;
    const std::string combo = row + "Combo";
    if (!app_.HasWidget(combo) || !app_.IsSensitive(combo)) continue;
    const std::vector<std::string> choices = TextsOf(app_.Rows(combo));
    const MakersFeature *shown = nullptr;
    for (const std::string &name : Names(listed.feature)) {
      if (shown == nullptr) shown = Feature(name);
    }
    if (shown == nullptr) {
      Note(row + " shows what the file does not have: " + Listed(choices));
      continue;
    }
    if (shown->Texts() != choices) {
      Note(row + " has " + Listed(choices) + " instead of " + Listed(shown->Texts()));
    }
    places_.push_back({shown->keyword, tab, row, 0});
    ChooseAnother(row, shown->keyword);
  }
}

void EveryOption::ChooseAnother(const std::string &row, const std::string &keyword) {
  const std::vector<std::string> rows = app_.Rows(row + "Combo");
  const int present = SelectedOf(rows);
  if (present < 0) Note(keyword + " shows no choice");
  int other = likes_free_ ? OtherRow(rows, present, true) : -1;
  if (other < 0) other = OtherRow(rows, present, false);
  if (other < 0) return;
  if (!app_.Focus().ends_with("/" + row + "ComboEntry")) app_.Click(row + "ComboEntry");
  for (int i = present; i != other; i += other > present ? 1 : -1) {
    app_.Key(other > present ? "Down" : "Up");
  }
  const std::string wanted = CellsOf(rows[static_cast<size_t>(other)]).first;
  chosen_[keyword] = wanted;
  const std::string shown = Unmarked(app_.Text(row + "ComboEntry"));
  const int reached = SelectedOf(app_.Rows(row + "Combo"));
  if (shown != wanted || reached != other) {
    Note(keyword + ": the keys lead to row " + std::to_string(reached) + " " + shown +
         " instead of row " + std::to_string(other) + " " + wanted);
  }
  ++set_;
}

void EveryOption::WalkMoreOptions(const std::string &tab) {
  const size_t count = app_.Rows(kMoreList).size();
  app_.ClickRow(kMoreList, 0);
  for (size_t row = 0; row < count; ++row) {
    if (row > 0) app_.Key("Down");
    const std::vector<std::string> rows = app_.Rows(kMoreList);
    if (rows.size() != count || !rows[row].starts_with('*')) {
      Note("row " + std::to_string(row) + " of the list is not reached");
      return;
    }
    if (!app_.IsSensitive("MoreOptionCombo")) continue;  // a group
    const std::string text = CellsOf(rows[row]).first;
    const std::vector<std::string> choices = TextsOf(app_.Rows("MoreOptionCombo"));
    const MakersFeature *feature = UnplacedFeature(text, choices);
    if (feature == nullptr) {
      Note("the list has " + text + ", which the file does not have so: " + Listed(choices));
      continue;
    }
    places_.push_back({feature->keyword, tab, "", row});
    app_.TabTo("MoreOptionComboEntry");
    ChooseAnother(kMoreCombo, feature->keyword);
    app_.Key("shift+Tab");
    if (!app_.Focus().ends_with(std::string("/") + kMoreList)) {
      Note("Shift and Tab do not lead from " + text + " back to the list but to " + app_.Focus());
      return;
    }
  }
}

// Moves the row of a feature to the other list.
bool EveryOption::MoveOne(const MakersFeature &feature, const std::string &list,
                          const std::string &button) {
  const std::vector<std::string> rows = app_.Rows(list);
  const auto is_its = [&](const std::string &row) {
    const std::string text = Squeezed(CellsOf(row).first);
    return std::any_of(feature.choices.begin(), feature.choices.end(), [&](const auto &choice) {
      return text == Squeezed(feature.PartOf(choice.first));
    });
  };
  const auto row = std::find_if(rows.begin(), rows.end(), is_its);
  if (row == rows.end()) return false;
  app_.TabTo(list);
  app_.Key("Home");
  if (SelectedOf(app_.Rows(list)) != 0) app_.Key("space");  // the cursor was there already
  for (auto at = rows.begin(); at != row; ++at) app_.Key("Down");
  const int reached = SelectedOf(app_.Rows(list));
  if (reached != static_cast<int>(row - rows.begin())) {
    Note(list + ": the keys lead to row " + std::to_string(reached) + " instead of " + *row);
    return true;
  }
  app_.Click(button);
  ++set_;
  return true;
}

void EveryOption::MoveInstallables() {
  for (const char *list : {"AvailableClist", "InstalledClist"}) {
    for (const std::string &row : app_.Rows(list)) {
      installable_rows_.push_back(Squeezed(CellsOf(row).first));
    }
  }
  for (const MakersFeature &feature : features_) {
    if (!feature.is_installable || !feature.IsOffered()) continue;
    if (!MoveOne(feature, "AvailableClist", "AddFeaturesButton")) {
      MoveOne(feature, "InstalledClist", "RemoveFeaturesButton");
    }
  }
}

// Has the conflict of the open box resolved: whether it was.
bool EveryOption::Resolve() {
  app_.WaitWindow("ErrorDialog");
  std::string said;
  for (const char *label : {"ErrorLabel1", "ErrorLabel2", "ConflictReasonLabel"}) {
    const std::string name = std::string("ErrorDialog/") + label;
    if (app_.HasWidget(name)) said += app_.Text(name) + " ";
  }
  bool is_resolved = false;
  if (app_.HasWidget("ErrorDialog/ResolveButton")) {
    app_.Click("ErrorDialog/ResolveButton");
    // The button goes either way; the words of the conflict go when it is resolved.
    app_.WaitUntil("an answer", [&] { return !app_.HasWidget("ErrorDialog/ResolveButton"); });
    is_resolved = !app_.HasWidget("ErrorDialog/ErrorLabel1");
  }
  if (!is_resolved) unresolved_.push_back(said);
  app_.Key("Return");  // OK, wherever it now stands
  app_.WaitGone("ErrorDialog");
  return is_resolved;
}

// As a user does whom no button helps.
void EveryOption::SetDefaults() {
  for (const char *tab : {"Features", "Setup", "Output", "Options"}) {
    ShowTab(app_, tab);
    app_.Click(std::string("Default") + tab + "Button");
  }
}

bool EveryOption::Apply() {
  bool is_reset = false;
  for (int i = 0; i < kMostConflicts; ++i) {
    PressProperties(app_, "Apply");
    if (app_.Windows().front() != "ErrorDialog") return true;
    ++conflicts_;
    if (Resolve()) continue;
    if (is_reset) {
      Note("the defaults conflict");
      return false;
    }
    SetDefaults();
    is_reset = true;
  }
  Note("there is always another conflict");
  return false;
}

std::string EveryOption::ShownAt(const Place &place, const std::vector<std::string> &more) {
  if (!place.combo.empty()) return Unmarked(app_.Text(place.combo + "ComboEntry"));
  const auto [text, choice] = place.row < more.size() ? CellsOf(more[place.row]) : CellsOf("-");
  if (Squeezed(text) != Squeezed(Feature(place.feature)->text)) {
    Note(place.feature + " stands in the row of " + text);
  }
  return choice;
}

// The administration has a list of the installed parts, the print tool one of all with their state.
std::vector<std::string> EveryOption::InstalledParts() {
  std::vector<std::string> parts;
  const bool is_admin = app_.HasWidget("InstalledClist");
  for (const std::string &row : app_.Rows(is_admin ? "InstalledClist" : "FeaturesClist")) {
    const auto [text, state] = CellsOf(row);
    if (is_admin || state == CatalogueText("DEF_STR_INSTALLED")) parts.push_back(Squeezed(text));
  }
  std::sort(parts.begin(), parts.end());
  return parts;
}

ShownSettings EveryOption::Read() {
  ShownSettings settings;
  for (const std::string &tab : tabs_) {
    ShowTab(app_, tab);
    std::vector<std::string> more;
    if (app_.HasWidget(kMoreList)) more = app_.Rows(kMoreList);
    for (const Place &place : places_) {
      if (place.tab == tab) settings.choices[place.feature] = ShownAt(place, more);
    }
    const bool has_parts = app_.HasWidget("InstalledClist") || app_.HasWidget("FeaturesClist");
    if (has_parts) settings.installed = InstalledParts();
  }
  return settings;
}

bool EveryOption::IsThereARow(const std::string &text) const {
  return std::find(installable_rows_.begin(), installable_rows_.end(), Squeezed(text)) !=
         installable_rows_.end();
}

bool EveryOption::IsInAList(const MakersFeature &feature) const {
  return std::all_of(feature.choices.begin(), feature.choices.end(), [&](const auto &choice) {
    const std::string part = feature.PartOf(choice.first);
    return part.empty() || IsThereARow(part);
  });
}

void EveryOption::NoteMissing() {
  for (const MakersFeature &feature : features_) {
    const std::string &keyword = feature.keyword;
    if (!feature.IsOffered()) continue;
    if (feature.is_installable) {
      if (!IsInAList(feature)) Note(keyword + " is missing in the lists of parts");
      continue;
    }
    const auto places = std::count_if(places_.begin(), places_.end(),
                                      [&](const Place &place) { return place.feature == keyword; });
    if (places == 1) continue;
    Note(keyword + " (" + feature.text + ") stands in " + std::to_string(places) + " places");
  }
}
