// For the benchmarks with windows: the printer with the most constraints, all option lists full.
#pragma once

#include <gtk/gtk.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "cfeature.h"
#include "cprinter.h"
#include "featuretable.h"
#include "filterrun.h"
#include "installation.h"
#include "optionlists.h"
#include "pafreader.h"

// Ends the benchmark with status 2.
[[noreturn]] inline void FailAs(const char *program, const std::string &why) {
  std::fprintf(stderr, "%s: %s\n", program, why.c_str());
  std::exit(2);
}

inline size_t ConstraintLines(const std::string &ppd) {
  size_t count = 0;
  for (size_t at = ppd.find("UIConstraints:"); at != std::string::npos;
       at = ppd.find("UIConstraints:", at + 1)) {
    ++count;
  }
  return count;
}

inline std::filesystem::path HeaviestIn(const char *program, const std::string &directory) {
  std::filesystem::path heaviest;
  size_t most = 0;
  for (const auto &entry : std::filesystem::directory_iterator(directory)) {
    if (entry.path().extension() != ".ppd") continue;
    const size_t lines = ConstraintLines(ContentOf(entry.path()));
    if (lines <= most) continue;
    most = lines;
    heaviest = entry.path();
  }
  if (heaviest.empty()) FailAs(program, "no PPD files in " + directory);
  return heaviest;
}

inline std::string ConvertedDescription(const char *program, const std::filesystem::path &ppd) {
  const TemporaryDirectory directory;
  const std::string paf = directory.Path("printer.paf");
  const FilterRun run = Convert(ppd, paf);
  if (run.status != 0) FailAs(program, "cannot convert " + ppd.string() + ": " + run.errors);
  return ContentOf(paf);
}

inline PafContent ReadDescription(const char *program, const std::string &text) {
  LineReader lines(text);
  auto content = ReadPaf(lines);
  if (std::holds_alternative<PafError>(content))
    FailAs(program, std::get<PafError>(content).reason);
  return std::get<PafContent>(std::move(content));
}

// Which feature gets which name, so that every list has one.
inline std::map<std::string, std::string> PlacesInLists(const CHash *features) {
  std::vector<std::string> free_names;
  for (const ListedFeature &listed : ListedFeatures()) {
    if (HashFind(features, listed.feature) == nullptr) free_names.push_back(listed.feature);
  }
  std::vector<std::pair<int, std::string>> candidates;
  for (const auto [id, feature] : Pairs<CFeature>(features)) {
    const bool is_listed = std::any_of(
        ListedFeatures().begin(), ListedFeatures().end(),
        [name = std::string(id)](const auto &listed) { return name == listed.feature; });
    const int options = static_cast<int>(Keys(fGet_Options_Function(feature)).size());
    if (!is_listed) candidates.emplace_back(-options, id);
  }
  std::sort(candidates.begin(), candidates.end());
  std::map<std::string, std::string> places;
  for (size_t i = 0; i < std::min(free_names.size(), candidates.size()); ++i) {
    places[candidates[i].second] = free_names[i];
  }
  return places;
}

inline std::string Renamed(const std::string &description,
                           const std::map<std::string, std::string> &to) {
  std::string result;
  size_t start = 0;
  while (start < description.size()) {
    const size_t end = std::min(description.find('\n', start), description.size());
    const std::string line = description.substr(start, end - start);
    const auto found = to.find(line);
    result += (found == to.end() ? line : found->second) + "\n";
    start = end + 1;
  }
  return result;
}

struct HeavyPrinter {
  Owned<CPrinter> printer;
  std::string file;  // of its PPD
  size_t constraint_lines;
};

// Of the PPD files in `directory` the one with the most constraints. Of its features those that no
// list shows, from the largest on, take the places of the lists that it lacks.
inline HeavyPrinter HeaviestPrinterIn(const char *program, const std::string &directory) {
  const std::filesystem::path ppd = HeaviestIn(program, directory);
  const std::string description = ConvertedDescription(program, ppd);
  const auto places = PlacesInLists(ReadDescription(program, description).features.get());
  PafContent content = ReadDescription(program, Renamed(description, places));
  Owned<CPrinter> printer = CreatePrinter("heavy.paf");
  printer->features = std::move(content.features);
  printer->installable_options = std::move(content.installable_options);
  printer->constraints = std::move(content.constraints);
  printer->ppd_file = std::move(content.ppd_file);
  return {std::move(printer), ppd.filename(), ConstraintLines(ContentOf(ppd))};
}

inline void RunPending() {
  gdk_display_sync(gdk_display_get_default());
  while (gtk_events_pending() != FALSE) gtk_main_iteration();
}

inline double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}
