#include "pclsettings.h"

#include <algorithm>

#include "textscan.h"

namespace kpx::filter {

namespace {

constexpr std::string_view kCollate = "Collate";

bool IsForPostScript(const PpdFeature &feature) {
  return feature.section != PpdSection::Jcl && !feature.installable;
}

bool IsCollated(const JobSettings &settings) {
  const PpdChoice *collate = settings.Chosen(kCollate);
  return collate != nullptr && SameKeyword(collate->keyword, "True");
}

// Takes `word`, in any case, and the blanks behind it off the front of `text`.
bool TakeWord(std::string_view word, std::string_view *text) {
  if (text->size() < word.size() || !SameKeyword(text->substr(0, word.size()), word)) return false;
  *text = Trimmed(text->substr(word.size()));
  return true;
}

// Whether one of the commands is "@PJL SET <variable>=...".
bool Sets(std::string_view commands, std::string_view variable) {
  while (!commands.empty()) {
    const size_t end = std::min(commands.find('\n'), commands.size());
    std::string_view line = commands.substr(0, end);
    commands.remove_prefix(std::min(end + 1, commands.size()));
    if (!TakeWord("@PJL", &line) || !TakeWord("SET", &line)) continue;
    if (SameKeyword(Trimmed(line.substr(0, line.find('='))), variable)) return true;
  }
  return false;
}

const std::vector<std::string> *PjlOf(const JobSettings &settings, const PpdFeature &feature,
                                      const PpdChoice &choice) {
  const auto &all = settings.Model().pjl_settings;
  const auto found = all.find({feature.keyword, choice.keyword});
  return found == all.end() ? nullptr : &found->second;
}

bool NeedsPjl(const JobSettings &settings, const PpdFeature &feature) {
  const PpdChoice *choice = settings.Chosen(feature.keyword);
  if (choice == nullptr || choice == &feature.DefaultChoice() || choice->code.empty()) return false;
  if (!settings.Model().pjl) return true;
  return feature.keyword != kCollate && PjlOf(settings, feature, *choice) == nullptr;
}

}  // namespace

std::string PjlCommands(const JobSettings &settings, std::string_view job_commands) {
  std::string commands;
  for (const PpdFeature &feature : settings.Model().features) {
    const PpdChoice *choice = IsForPostScript(feature) ? settings.Chosen(feature.keyword) : nullptr;
    const auto *pjl = choice == nullptr ? nullptr : PjlOf(settings, feature, *choice);
    if (pjl == nullptr) continue;
    for (const std::string &setting : *pjl) {
      if (Sets(job_commands, setting.substr(0, setting.find('=')))) continue;
      commands += "@PJL SET " + setting + "\n";
    }
  }
  return commands;
}

std::string_view CopiesVariable(const JobSettings &settings) {
  return IsCollated(settings) ? "QTY" : "COPIES";
}

std::vector<std::string> SettingsWithoutPjl(const JobSettings &settings) {
  std::vector<std::string> texts;
  const auto add = [&texts](const std::string &key, const std::string &value) {
    texts.push_back("\"*" + key + "=" + value + "\"");
  };
  if (const auto paper = settings.PaperName()) add("PageSize", *paper);
  if (const auto media = settings.MediaName()) add("MediaType", *media);
  for (const PpdFeature &feature : settings.Model().features) {
    if (!IsForPostScript(feature) || feature.keyword == "PageRegion") continue;
    if (NeedsPjl(settings, feature)) {
      add(feature.keyword, settings.Chosen(feature.keyword)->keyword);
    }
  }
  return texts;
}

}  // namespace kpx::filter
