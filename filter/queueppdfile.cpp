#include "queueppdfile.h"

#include <cerrno>
#include <cstring>
#include <optional>

#include "language.h"
#include "optionfiles.h"
#include "ppdadaptor.h"
#include "queueppd.h"
#include "textfile.h"

namespace kpx::filter {

namespace {

// ".../nls/<directory>[/utf8]/ppds/<file>": the same file of other languages.
std::vector<std::pair<std::string, std::string>> TranslationsBeside(const std::string &path) {
  constexpr std::string_view kRoot = "/nls/";
  std::vector<std::pair<std::string, std::string>> translations;
  const size_t root = path.rfind(kRoot);
  if (root == std::string::npos) return translations;
  const std::string own = path.substr(root + kRoot.size());
  const std::string file = path.substr(path.rfind('/') + 1);
  const auto add = [&](const std::string &directory, const char *code) {
    if (own.starts_with(directory + "/")) return;
    for (const char *encoding : {"/utf8", ""}) {
      const auto text = ReadWholeFile(path.substr(0, root) + std::string(kRoot) + directory +
                                      encoding + "/ppds/" + file);
      if (!text) continue;
      translations.emplace_back(code, *text);
      return;
    }
  };
  add("enu", "en");
  for (const TranslatedLanguage &language : TranslatedLanguages()) {
    add(language.directory, language.manuals);
  }
  return translations;
}

// Whether code for the printer is left, as it may be of a file whose quotation marks do not match.
bool HasCode(const PpdModel &model) {
  for (const PpdFeature &feature : model.features) {
    if (feature.custom && !feature.custom->code.empty()) return true;
    for (const PpdChoice &choice : feature.choices) {
      if (!choice.code.empty()) return true;
    }
  }
  return !model.jcl_begin.empty() || !model.jcl_to_postscript.empty() || !model.jcl_end.empty();
}

// All that a queue's PPD file is made from, but for the model's text.
std::string KeyOf(const FilterArguments &arguments, const std::vector<KeyValue> &settings) {
  std::string key = arguments.ppd_file + '\0' + arguments.type;
  for (const KeyValue &setting : settings) key += '\0' + setting.key + '\0' + setting.value;
  return key;
}

}  // namespace

const QueuePpdMaker::Model &QueuePpdMaker::ModelOf(const std::string &path) {
  const auto [place, is_new] = models_.try_emplace(path);
  Model &model = place->second;
  if (!is_new) return model;
  PpdError error;
  std::optional<std::string> text = ReadWholeFile(path);
  if (!text) {
    model.problem = path + ": " + std::strerror(errno);
  } else if (!ReadPpd(*text, &error)) {
    model.problem = error.Text(path);
  } else {
    model.text = std::move(*text);
    model.translations = TranslationsBeside(path);
  }
  return model;
}

std::optional<std::string> QueuePpdMaker::Make(const FilterArguments &arguments,
                                               std::string *problem) {
  constexpr size_t kMostKept = 32;  // some hundred kilobytes each
  const Model &model = ModelOf(arguments.ppd_file);
  OptionFile queue;
  if (model.problem.empty() && !arguments.def_file.empty()) {
    queue = ReadQueueOptions(arguments.def_file, false);
  }
  *problem = model.problem.empty() ? queue.error : model.problem;
  if (!problem->empty()) return std::nullopt;
  const std::string key = KeyOf(arguments, queue.settings);
  if (const auto known = made_.find(key); known != made_.end()) return known->second;
  QueuePpd ppd = MakeQueuePpd({model.text, arguments.type, queue.settings, model.translations});
  PpdError error;
  const std::optional<PpdModel> made = ReadPpd(ppd.text, &error);
  if (!made) {
    *problem = "the queue's PPD file: " + error.reason;
  } else if (HasCode(*made)) {
    *problem =
        arguments.ppd_file + ": quotation marks do not match, so its code cannot be left out";
  }
  if (!problem->empty()) return std::nullopt;
  if (made_.size() == kMostKept) made_.clear();
  return made_[key] = std::move(ppd.text);
}

std::string WriteQueuePpd(const FilterArguments &arguments) {
  std::string problem;
  const std::optional<std::string> text = QueuePpdMaker().Make(arguments, &problem);
  if (!text) return problem;
  if (ReplaceFile(arguments.queue_ppd_file, *text, {.mode = 0644})) return {};
  return arguments.queue_ppd_file + ": " + std::strerror(errno);
}

}  // namespace kpx::filter
