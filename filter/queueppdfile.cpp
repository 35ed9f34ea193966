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

}  // namespace

std::string WriteQueuePpd(const FilterArguments &arguments) {
  const std::optional<std::string> model = ReadWholeFile(arguments.ppd_file);
  if (!model) return arguments.ppd_file + ": " + std::strerror(errno);
  PpdError error;
  if (!ReadPpd(*model, &error)) return error.Text(arguments.ppd_file);
  OptionFile queue;
  if (!arguments.def_file.empty()) {
    queue = ReadQueueOptions(arguments.def_file, false);
    if (!queue.error.empty()) return queue.error;
  }
  const QueuePpd ppd = MakeQueuePpd(
      {*model, arguments.type, queue.settings, TranslationsBeside(arguments.ppd_file)});
  const std::optional<PpdModel> made = ReadPpd(ppd.text, &error);
  if (!made) return "the queue's PPD file: " + error.reason;
  if (HasCode(*made))
    return arguments.ppd_file + ": quotation marks do not match, so its code cannot be left out";
  if (ReplaceFile(arguments.queue_ppd_file, ppd.text, {.mode = 0644})) return {};
  return arguments.queue_ppd_file + ": " + std::strerror(errno);
}

}  // namespace kpx::filter
