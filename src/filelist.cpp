#include "filelist.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <optional>

#include "cmessages.h"
#include "cselection.h"
#include "debug.h"
#include "globals.h"
#include "ignoreresult.h"
#include "textencoding.h"
#include "textscan.h"
#include "utils.h"

namespace {

// A path whose "%xx" are decoded. Nothing for a broken escape, and for an encoded NUL or "/", which
// no file name can contain.
std::optional<std::string> PercentDecoded(std::string_view text) {
  std::string path;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      path += text[i];
      continue;
    }
    if (i + 2 >= text.size()) return std::nullopt;
    const int high = HexValue(text[i + 1]);
    const int low = HexValue(text[i + 2]);
    const char decoded = static_cast<char>(high * 16 + low);
    if (high < 0 || low < 0 || decoded == '\0' || decoded == '/') return std::nullopt;
    path += decoded;
    i += 2;
  }
  return path;
}

bool EqualsIgnoringCase(std::string_view text, std::string_view lower_case) {
  if (text.size() != lower_case.size()) return false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != lower_case[i])
      return false;
  }
  return true;
}

// "file:///path", "file://localhost/path" or "file:/path".
std::optional<std::string> PathFromFileUri(std::string_view uri) {
  constexpr std::string_view kScheme = "file:";
  if (!EqualsIgnoringCase(uri.substr(0, kScheme.size()), kScheme)) return std::nullopt;
  std::string_view path = uri.substr(kScheme.size());
  if (path.starts_with("//")) {
    path.remove_prefix(2);
    const std::string_view host = path.substr(0, path.find('/'));
    if (!host.empty() && !EqualsIgnoringCase(host, "localhost")) return std::nullopt;
    path.remove_prefix(host.size());
  }
  // A file URI has neither query nor fragment; in a path both characters are escaped.
  if (!path.starts_with("/") || path.find_first_of("?#") != std::string_view::npos) {
    return std::nullopt;
  }
  return PercentDecoded(path);
}

bool IsPresentAndNoDirectory(const std::string &path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

bool IsCapturedFile(const CSelection *record) {
  const char *path = fGet_CSelection_Value_Function(record);
  return !G_StdinFileName.empty() && path != nullptr && G_StdinFileName == path;
}

}  // namespace

CNodeList *AppendFile(const std::string &path) {
  const LogScope log("AppendFile");
  IgnoreResult(fAddTail_CList_Function(G_FilesList.get(), CreateSelection(path.c_str(), 0)),
               "the list is there");
  return fGetTailPosition_CList_Function(G_FilesList.get());
}

std::vector<std::string> FilesOfSelection(const std::string &path) {
  const LogScope log("FilesOfSelection");
  if (!path.ends_with('/')) return {path};
  std::vector<std::string> files;
  const Owned<CList> names = GetFilesFromDir(path.c_str());
  for (const CString *name : Elements<CString>(names.get())) {
    const std::string file = path + fGet_CString_Value_Function(name);
    if (IsPresentAndNoDirectory(file)) files.push_back(file);
  }
  return files;
}

std::vector<std::string> PathsFromUriList(std::string_view text, std::vector<std::string> *others) {
  const LogScope log("PathsFromUriList");
  // Some senders count the terminating NUL in.
  text = text.substr(0, text.find('\0'));
  std::vector<std::string> paths;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    const std::string_view uri = Trimmed(line);
    if (uri.empty() || uri.starts_with("#")) continue;
    if (std::optional<std::string> path = PathFromFileUri(uri)) {
      paths.push_back(*std::move(path));
    } else if (others != nullptr) {
      others->emplace_back(uri);
    }
  }
  return paths;
}

std::vector<std::string> DroppedPaths(std::string_view text, CList *errors) {
  const LogScope log("DroppedPaths");
  std::vector<std::string> paths;
  std::vector<std::string> others;
  for (const std::string &path : PathsFromUriList(text, &others)) {
    if (std::any_of(path.begin(), path.end(), IsControlCharacter)) {
      G_Report(errors, "ERR_DROP_CONTROL", {PlainText(path)});
    } else if (access(path.c_str(), F_OK) != 0) {
      G_Report(errors, "ERR_DROP_MISSING", {PlainText(path)});
    } else {
      paths.push_back(path);
    }
  }
  for (const std::string &uri : others) G_Report(errors, "ERR_DROP_REMOTE", {PlainText(uri)});
  return paths;
}

int IsStdinDataToPrint() {
  const LogScope log("IsStdinDataToPrint");
  for (const CSelection *record : Elements<CSelection>(G_FilesList.get())) {
    if (IsCapturedFile(record)) return 1;
  }
  return 0;
}

void RemoveCapturedFile() {
  if (!G_StdinFileName.empty()) unlink(G_StdinFileName.c_str());
}

void RemoveSelectedFiles(const std::function<void(const CNodeList *position)> &before) {
  const LogScope log("RemoveSelectedFiles");
  RemoveSelectedRecords(G_FilesList.get(),
                        [&before](const CNodeList *position, const CSelection &record) {
                          before(position);
                          if (IsCapturedFile(&record)) RemoveCapturedFile();
                        });
}
