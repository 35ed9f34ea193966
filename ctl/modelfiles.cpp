#include "modelfiles.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>
#include <system_error>

#include "addedppd.h"
#include "cprintqueues.h"
#include "language.h"
#include "pafreader.h"
#include "paths.h"
#include "queuelistkeep.h"
#include "scriptreader.h"
#include "textencoding.h"
#include "textfile.h"
#include "utils.h"

namespace kpx::ctl {

namespace {

namespace fs = std::filesystem;

constexpr FileAccess kForAll{.mode = 0644};
constexpr FileAccess kProgram{.mode = 0755};

// Makes the directory that `path` lies in, with those above it.
bool MakeDirectoryOf(const std::string &path) {
  const fs::path directory = fs::path(path).parent_path();
  std::error_code error;
  if (fs::is_directory(directory, error)) return true;
  if (!directory.has_parent_path() || !MakeDirectoryOf(directory.string())) return false;
  if (!fs::create_directory(directory, error) && error) return false;
  fs::permissions(directory, fs::perms(0755), error);
  return !error && SyncDirectoryOf(directory.string());
}

bool WriteModelFile(const std::string &path, const std::string &text, const FileAccess &access) {
  return MakeDirectoryOf(path) && ReplaceFileDurably(path, text, access);
}

// The code of a language directory's language in a PPD file.
std::string LanguageCodeOf(const std::string &directory) {
  for (const TranslatedLanguage &language : TranslatedLanguages()) {
    if (directory.substr(0, directory.find('/')) == language.directory) return language.manuals;
  }
  return "en";
}

// The path that could not be written, or an empty text.
std::string WriteForLanguage(const AddedModel &model, const std::string &ppd,
                             const std::string &directory) {
  const bool latin1 = directory != "enu" && directory.find('/') == std::string::npos;
  const auto encoding = latin1 ? filter::TextEncoding::Latin1 : filter::TextEncoding::Utf8;
  const std::string installed = filter::InstalledPpd(ppd, LanguageCodeOf(directory), encoding);
  const std::string paf =
      filter::InstalledPaf(installed, model.id + ".ppd", model.printer_name, encoding);
  const std::string ppd_path = AddedModelPpdPath(model.id, directory);
  const std::string paf_path = AddedModelPafPath(model.id, directory);
  if (!WriteModelFile(ppd_path, installed, kForAll)) return ppd_path;
  return !paf.empty() && WriteModelFile(paf_path, paf, kForAll) ? std::string() : paf_path;
}

// The spooler's model: that of any printer, under the model's name.
std::string InterfaceText(const std::string &id) {
  constexpr std::string_view kUnknown = "Unknown_printer", kEnd = "# End of the model\n";
  std::optional<std::string> text =
      ReadWholeFile(std::string(kSpoolModelsDir) + "/" + std::string(kUnknown));
  const size_t place = text ? text->find(kUnknown) : std::string::npos;
  const size_t end = text ? text->find(kEnd) : std::string::npos;
  if (place == std::string::npos || end == std::string::npos) return {};
  // A backend of CUPS tells the printer whose job it is, and its title.
  text->insert(end, "export title username\n");
  return text->replace(place, kUnknown.size(), id);
}

// The files that belong to a model, its row apart.
std::vector<std::string> FilesOfModel(const std::string &id) {
  std::vector<std::string> paths = {AddedModelSourcePath(id), AddedModelInterfacePath(id)};
  for (const std::string &directory : LanguageDirectories()) {
    paths.push_back(AddedModelPpdPath(id, directory));
    paths.push_back(AddedModelPafPath(id, directory));
  }
  return paths;
}

std::vector<std::string> EntriesOf(const std::string &directory) {
  std::vector<std::string> names;
  const Owned<CList> entries = GetFilesFromDir(directory.c_str());
  for (const CString *name : Elements<CString>(entries.get())) {
    names.emplace_back(fGet_CString_Value_Function(name));
  }
  return names;
}

// "##Name:" of a description.
std::string NameInPaf(const std::string &path) {
  constexpr size_t kHeader = 2048;
  const std::optional<std::string> text = ReadFileStart(path, kHeader);
  LineReader lines(text ? *text : std::string_view());
  while (const std::optional<std::string> line = lines.Next()) {
    if (line->starts_with("##Name:")) return PafHeaderText(*line);
  }
  return {};
}

}  // namespace

std::string WriteModelFiles(const AddedModel &model, const std::string &ppd) {
  const std::string source = AddedModelSourcePath(model.id);
  if (!WriteModelFile(source, ppd, kForAll)) return source;
  for (const std::string &directory : LanguageDirectories()) {
    if (std::string path = WriteForLanguage(model, ppd, directory); !path.empty()) return path;
  }
  const std::string interface = AddedModelInterfacePath(model.id);
  const std::string script = InterfaceText(model.id);
  if (script.empty() || !WriteModelFile(interface, script, kProgram)) return interface;
  const std::string row = AddedModelPath(model.id);
  return WriteModelFile(row, AddedModelText(model), kForAll) ? std::string() : row;
}

std::string RemoveModelFiles(const std::string &id) {
  const std::string row = AddedModelPath(id);
  if (unlink(row.c_str()) != 0 && errno != ENOENT) return row;
  if (!SyncDirectoryOf(row)) return row;
  for (const std::string &path : FilesOfModel(id)) {
    if (unlink(path.c_str()) != 0 && errno != ENOENT) return path;
  }
  return {};
}

void RemoveLeftModelFiles() {
  std::vector<std::string> bad;
  std::set<std::string> known;
  for (const AddedModel &model : ReadAddedModels(&bad)) known.insert(model.id);
  known.insert(bad.begin(), bad.end());
  std::vector<std::string> directories = {std::string(kModelsDir) + "/source", kSpoolModelsDir};
  for (const std::string &language : LanguageDirectories()) {
    directories.push_back(std::string(kModelsNlsDir) + "/" + language + "/ppds");
    directories.push_back(std::string(kModelsNlsDir) + "/" + language + "/pafs");
  }
  for (const std::string &directory : directories) {
    for (const std::string &name : EntriesOf(directory)) {
      const std::string id = name.substr(0, name.find('.'));
      if (id.starts_with(kAddedModelPrefix) && !known.contains(id)) {
        RemoveFile(directory + "/" + name);
      }
    }
  }
}

std::optional<std::vector<std::string>> QueuesOfModel(const AddedModel &model) {
  std::set<std::string> queues;
  const std::optional<std::string> text = ReadLastQueueList(kQueuesFile);
  if (!text && (access(kQueuesFile, F_OK) == 0 || errno != ENOENT)) return std::nullopt;
  const Owned<CPrintQueues> list = CreatePrintQueues(kQueuesFile);
  if (text && FillQueuesFromText(list.get(), *text, kQueuesFile) == 1) {
    for (const auto [name, queue] : Pairs<CPrintQueue>(list->queues.get())) {
      const char *printer = fGet_CString_Value_Function(fGet_PrinterName_Function(queue));
      if (printer != nullptr && model.printer_name == printer) queues.insert(name);
    }
  }
  for (const std::string &name : EntriesOf(kSpoolInterfacesDir)) {
    const auto script = ReadWholeFile(std::string(kSpoolInterfacesDir) + "/" + name);
    if (script && ModelOfScript(*script) == model.id) queues.insert(name);
  }
  return std::vector<std::string>(queues.begin(), queues.end());
}

std::vector<std::string> ShippedPrinterNames() {
  std::vector<std::string> names;
  const std::string directory = std::string(kNlsDir) + "/enu/pafs";
  for (const std::string &file : EntriesOf(directory)) {
    if (!file.starts_with("vek")) continue;
    if (std::string name = NameInPaf(directory + "/" + file); !name.empty()) names.push_back(name);
  }
  return names;
}

}  // namespace kpx::ctl
