#include "addedmodels.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <deque>
#include <map>
#include <utility>
#include <variant>

#include "cmessages.h"
#include "cprinter.h"
#include "debug.h"
#include "ignoreresult.h"
#include "language.h"
#include "pafreader.h"
#include "paths.h"
#include "ppdconversion.h"
#include "printermodels.h"
#include "textfile.h"
#include "textline.h"
#include "utils.h"

namespace {

constexpr std::string_view L_RowSuffix = ".model";
constexpr char L_English[] = "enu";
constexpr std::pair<std::string_view, int> L_Transports[] = {
    {kRawTransport, 9100}, {"lpd", 515}, {"ipp", 631}, {"ipps", 631}};

bool IsIdCharacter(char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-'; }

bool IsId(std::string_view id) {
  return id.starts_with(kAddedModelPrefix) && std::all_of(id.begin(), id.end(), IsIdCharacter);
}

// A whole number from 1 to `most`; 0 for anything else.
int NumberUpTo(std::string_view text, int most) {
  int number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = result.ec == std::errc() && result.ptr == text.data() + text.size();
  return whole && number >= 1 && number <= most ? number : 0;
}

std::vector<std::string> Words(std::string_view text) {
  std::vector<std::string> words;
  while (!text.empty()) {
    const size_t blank = std::min(text.find(' '), text.size());
    if (blank > 0) words.emplace_back(text.substr(0, blank));
    text.remove_prefix(std::min(blank + 1, text.size()));
  }
  return words;
}

std::string PathOfLanguage(const std::string &id, const std::string &language, const char *kind) {
  return std::string(kModelsNlsDir) + "/" + language + "/" + kind + "s/" + id + "." + kind;
}

// Its texts are what the rows of the models' table point to.
std::deque<AddedModel> L_Loaded;
std::deque<std::string> L_Texts;

const char *Kept(std::string text) { return L_Texts.emplace_back(std::move(text)).c_str(); }

void Announce(const AddedModel &row) {
  const AddedModel &model = L_Loaded.emplace_back(row);
  const bool own = model.transport == kRawTransport;
  AddPrinterModel({.display_name = model.printer_name.c_str(),
                   .spooler_model = model.id.c_str(),
                   .ppd_file = Kept(model.id + ".ppd"),
                   .transport_parameter = Kept(std::to_string(model.pages_a_minute)),
                   .number = kAddedModelNumber,
                   .lists_resolutions = true,
                   .defaults_set_resolution = true,
                   .has_punch_unit_pictures = false,
                   .nls_dir = kModelsNlsDir,
                   .backend = own ? "" : model.transport.c_str(),
                   .port = model.port});
}

// The model's description, in English where the language has none; null when neither can be read.
Owned<CPrinter> ReadDescription(const AddedModel &model, const std::string &language) {
  for (const std::string &directory : {language, std::string(L_English)}) {
    const std::string path = AddedModelPafPath(model.id, directory);
    Owned<CPrinter> printer = CreatePrinter(path.c_str());
    if (FillFromPaf(printer.get())) return printer;
  }
  return nullptr;
}

}  // namespace

int DefaultPort(std::string_view transport) {
  for (const auto &[name, port] : L_Transports) {
    if (transport == name) return port;
  }
  return 0;
}

std::string AddedModelText(const AddedModel &model) {
  std::string text;
  std::string languages;
  for (const std::string &language : model.languages) {
    languages += (languages.empty() ? "" : " ") + language;
  }
  AppendTextLine(text, "## A printer model, written by kpxctl(8).");
  AppendTextLine(text, "name=" + model.printer_name);
  AppendTextLine(text, "transport=" + model.transport);
  AppendTextLine(text, "port=" + std::to_string(model.port));
  AppendTextLine(text, "pages-a-minute=" + std::to_string(model.pages_a_minute));
  AppendTextLine(text, "languages=" + languages);
  AppendTextLine(text, "source=" + model.source);
  return text;
}

std::optional<AddedModel> AddedModelOf(const std::string &id, std::string_view text) {
  constexpr int kMostPort = 65535, kMostSpeed = 100000;
  std::map<std::string, std::string, std::less<>> values;
  LineReader lines(text);
  while (const std::optional<std::string> line = lines.Next()) {
    const size_t sign = line->find('=');
    if (!IsCommentOrEmpty(*line) && sign != std::string::npos) {
      values[line->substr(0, sign)] = line->substr(sign + 1);
    }
  }
  AddedModel model{.id = id,
                   .printer_name = values["name"],
                   .transport = values["transport"],
                   .port = NumberUpTo(values["port"], kMostPort),
                   .pages_a_minute = NumberUpTo(values["pages-a-minute"], kMostSpeed),
                   .languages = Words(values["languages"]),
                   .source = values["source"]};
  const bool good = IsId(id) && !model.printer_name.empty() && DefaultPort(model.transport) != 0 &&
                    model.port != 0 && model.pages_a_minute != 0;
  return good ? std::optional(std::move(model)) : std::nullopt;
}

std::string NewModelId(std::string_view printer_name, const std::vector<std::string> &taken) {
  constexpr size_t kLongest = 60;
  std::string base;
  for (const char c : printer_name.substr(0, kLongest)) {
    const char small = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (IsIdCharacter(small) && small != '-') {
      base += small;
    } else if (!base.empty() && base.back() != '-') {
      base += '-';
    }
  }
  while (base.ends_with('-')) base.pop_back();
  base = kAddedModelPrefix + (base.empty() ? "model" : base);
  std::string id = base;
  for (int number = 2; std::find(taken.begin(), taken.end(), id) != taken.end(); ++number) {
    id = base + "-" + std::to_string(number);
  }
  return id;
}

std::string AddedModelPath(const std::string &id) {
  return std::string(kModelsDir) + "/" + id + std::string(L_RowSuffix);
}

std::string AddedModelSourcePath(const std::string &id) {
  return std::string(kModelsDir) + "/source/" + id + ".ppd";
}

std::string AddedModelPpdPath(const std::string &id, const std::string &language_directory) {
  return PathOfLanguage(id, language_directory, "ppd");
}

std::string AddedModelPafPath(const std::string &id, const std::string &language_directory) {
  return PathOfLanguage(id, language_directory, "paf");
}

std::string AddedModelInterfacePath(const std::string &id) {
  return std::string(kSpoolModelsDir) + "/" + id;
}

std::vector<std::string> LanguageDirectories() {
  std::vector<std::string> directories = {L_English};
  for (const TranslatedLanguage &language : TranslatedLanguages()) {
    directories.emplace_back(language.directory);
    directories.push_back(std::string(language.directory) + "/utf8");
  }
  return directories;
}

std::vector<AddedModel> ReadAddedModels(std::vector<std::string> *bad) {
  std::vector<AddedModel> models;
  if (access(kModelsDir, F_OK) != 0) return models;
  const Owned<CList> names = GetFilesFromDir(kModelsDir);
  for (const CString *entry : Elements<CString>(names.get())) {
    const std::string name = fGet_CString_Value_Function(entry);
    if (!name.ends_with(L_RowSuffix)) continue;
    const std::string id = name.substr(0, name.size() - L_RowSuffix.size());
    const std::optional<std::string> text = ReadWholeFile(PathIn(kModelsDir, name));
    std::optional<AddedModel> model = text ? AddedModelOf(id, *text) : std::nullopt;
    if (model) {
      models.push_back(std::move(*model));
    } else if (bad != nullptr) {
      bad->push_back(id);
    }
  }
  std::sort(models.begin(), models.end(),
            [](const AddedModel &one, const AddedModel &two) { return one.id < two.id; });
  return models;
}

void LoadAddedModels(CHash *printers, const std::string &language_directory, CList *messages) {
  const LogScope log("LoadAddedModels");
  std::vector<std::string> bad;
  for (const AddedModel &model : ReadAddedModels(&bad)) {
    const char *name = model.printer_name.c_str();
    if (HashFind(printers, name) != nullptr) continue;
    Owned<CPrinter> printer = ReadDescription(model, language_directory);
    if (printer == nullptr) {
      bad.push_back(model.id);
      continue;
    }
    IgnoreResult(HashPut(printers, name, std::move(printer)), "the catalogue is there");
    Announce(model);
  }
  for (const std::string &id : bad) G_Report(messages, "WARN_MODEL_UNREADABLE", {id, id});
}
