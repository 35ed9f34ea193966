#include "deffile.h"

#include <sys/stat.h>

#include <cerrno>
#include <vector>

#include "ccmtparams.h"
#include "ccpsparams.h"
#include "cmessages.h"
#include "debug.h"
#include "ignoreresult.h"
#include "jobrules.h"
#include "paths.h"
#include "settingkeys.h"
#include "textencoding.h"
#include "textfile.h"
#include "textline.h"
#include "utils.h"

namespace {

// The spooler's group, whose filter reads the files.
constexpr char L_SpoolerGroup[] = "lp";

// A file may hold a PIN: its owner and the spooler read it, nobody else. In the users' directory
// the group comes from the directory. On a host without the spooler's group the queue's own file
// is readable by all, as the queue list is, because the filter must read it.
constexpr FileAccess L_UserFileAccess{.mode = 0640};
constexpr FileAccess L_QueueFileAccess{
    .mode = 0640, .group = L_SpoolerGroup, .mode_without_group = 0644};

// A setting whose line has no room for a value behind its key is left out: nothing could read it.
void AppendPair(std::string &text, std::string_view key, std::string_view value) {
  if (key.size() >= kMaxLine) {
    Log(1, "a setting's name of " + std::to_string(key.size()) + " bytes is too long for a file");
    return;
  }
  AppendTextLine(text, std::string(key) + "=" + std::string(value));
}

void AppendPairs(std::string &text, const CHash *settings) {
  for (const auto [key, value] : Pairs<CString>(settings)) {
    const char *setting = fGet_CString_Value_Function(value);
    if (setting != nullptr) AppendPair(text, key, setting);
  }
}

void AppendCustomSizes(std::string &text, const CPrintQueue *queue) {
  for (const auto [name, size] : Pairs<CCpsParams>(queue->CustomPapers.get())) {
    if (size == nullptr) continue;
    AppendPair(text, kCustomPaperKey,
               CustomPaperValue({std::string(name), WholeNumber(fGetWidth_Function(size)),
                                 WholeNumber(fGetLength_Function(size))}));
  }
  for (const auto [name, media] : Pairs<CCmtParams>(queue->CustomMedias.get())) {
    const char *gui_name = fGet_CString_Value_Function(fGetGuiName_Function(media));
    if (gui_name != nullptr) {
      AppendPair(text, kCustomMediaKey, CustomMediaValue({std::string(name), gui_name}));
    }
  }
}

// `written`; a failure is reported, and errno stays.
bool TellUnlessWritten(bool written, const std::string &path, CList *errors) {
  if (written) return true;
  const int error = errno;
  G_Report(errors, "ERR_UNABLE_TO_WRITE_FILE", {path});
  errno = error;
  return false;
}

FileContent QueueDefFile(const CPrintQueue *queue, const char *def_file) {
  return {QueueDefFilePath(def_file), QueueDefFileText(queue), L_QueueFileAccess};
}

void PutOption(CHash *options, const KeyValue &setting) {
  if (const char *out = KeyPutOutBy(setting.key); out != nullptr) HashRemove(options, out);
  IgnoreResult(HashPutText(options, setting.key.c_str(), setting.value.c_str()),
               "the dictionary is there");
}

}  // namespace

std::string UserDefFileText(const CPrintQueue *queue) {
  std::string text;
  AppendPairs(text, queue->Options.get());
  return text;
}

std::string QueueDefFileText(const CPrintQueue *queue) {
  std::string text = UserDefFileText(queue);
  AppendPairs(text, queue->InstallableFeatures.get());
  AppendCustomSizes(text, queue);
  return text;
}

void OverlayDefFile(std::string_view text, CHash *options) {
  for (const KeyValue &setting : KeyValuesOf(text)) PutOption(options, setting);
}

bool WriteQueueDefFiles(const CHash *queues, CList *errors, bool quiet) {
  bool complete = true;
  const auto fail = [&](const char *key, const char *argument) {
    complete = false;
    if (!quiet) G_Report(errors, key, {argument});
  };
  std::vector<FileContent> files;
  for (const auto [name, queue] : Pairs<CPrintQueue>(queues)) {
    const LogScope log("fWriteDefFile_Function");
    const char *def_file = fGet_CString_Value_Function(fGet_DefFile_Function(queue));
    if (def_file == nullptr) {
      fail("ERR_UNEXPECTED2", "CPrintQueue");
    } else {
      files.push_back(QueueDefFile(queue, def_file));
    }
  }
  for (const std::string &path : ReplaceFilesDurably(files)) {
    fail("ERR_UNABLE_TO_WRITE_FILE", path.c_str());
  }
  return complete;
}

std::string QueueDefFilePath(const std::string &def_file) {
  return std::string(kDataDir) + "/" + def_file;
}

std::string UserDefFilePath(const std::string &user_def_file) {
  return std::string(kUsersDir) + "/" + user_def_file;
}

std::optional<std::string> CallersDefFilePath(const char *def_file) {
  std::string name;
  if (BuildUserDefFileName(nullptr, def_file, &name) == 0) return std::nullopt;
  return UserDefFilePath(name);
}

int fWriteDefFile_Function(const CPrintQueue *queue, int which, CList *errors) {
  const LogScope log("fWriteDefFile_Function");
  const char *def_file = fGet_CString_Value_Function(fGet_DefFile_Function(queue));
  if (def_file == nullptr) {
    G_Report(errors, "ERR_UNEXPECTED2", {"CPrintQueue"});
    return 0;
  }
  if (which == 1) {
    const FileContent file = QueueDefFile(queue, def_file);
    const bool written = ReplaceFileDurably(file.path, file.text, file.access);
    return TellUnlessWritten(written, file.path, errors) ? 1 : 0;
  }
  const std::optional<std::string> path = CallersDefFilePath(def_file);
  if (!path) return 0;
  const bool written = ReplaceFile(*path, UserDefFileText(queue), L_UserFileAccess);
  return TellUnlessWritten(written, *path, errors) ? 1 : 0;
}

int fFillFromDefFile_Function(CPrintQueue *queue) {
  const LogScope log("fFillFromDefFile_Function");
  const char *def_file = fGet_CString_Value_Function(fGet_DefFile_Function(queue));
  if (def_file == nullptr) G_Fatal(5, "ERR_UNEXPECTED2", {"CPrintQueue"});
  const std::optional<std::string> path = CallersDefFilePath(def_file);
  if (!path) return 0;
  const std::optional<std::string> text = ReadOwnFile(*path);
  if (!text) {
    struct stat status = {};
    if (lstat(path->c_str(), &status) == 0) Log(1, *path + " is there and cannot be used");
    return 0;
  }
  if (queue->Options == nullptr) queue->Options = CreateHash();
  OverlayDefFile(*text, queue->Options.get());
  return 1;
}
