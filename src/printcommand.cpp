#include "printcommand.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "cmessages.h"
#include "command.h"
#include "cprintqueue.h"
#include "cselection.h"
#include "debug.h"
#include "filelist.h"
#include "globals.h"
#include "ignoreresult.h"
#include "paths.h"
#include "personalfiles.h"
#include "porting.h"
#include "printsettings.h"
#include "settingkeys.h"

namespace {

constexpr char L_DefaultCopies[] = "1";
constexpr size_t L_CommandStep = 10240;
constexpr char L_LastQueueFile[] = "last-queue";

// `"<program> <queue> -o "*NrCopies=<copies>,`, its quotes still open. The captured standard input
// is removed after printing, so the spooler has to copy it.
std::string CommandStart(const std::string &queue, const std::string &copies, bool copy_files) {
  const std::string program = std::string(kLp) + (copy_files ? " -c -d" : " -d");
  return FormatMessage("%s %s %s \"%s=%s,", {program, queue, "-o", kCopiesKey, copies});
}

void CloseQuotes(std::string &command) {
  if (command.ends_with(',')) command.pop_back();
  command += '"';
}

// How a command is written: for the shell, or so that it can be shown and copied from there.
enum class Form { Run, Shown };

// The bytes that are no UTF-8, which a window cannot show, as the shell makes them.
std::string MadeByPrintf(std::string_view bytes) {
  std::string word = "\"$(printf '";
  for (const char c : bytes) {
    char octal[8];
    std::snprintf(octal, sizeof octal, "\\%03o", static_cast<unsigned char>(c));
    word += octal;
  }
  return word + "')\"";
}

// ShellWord of a name that is not UTF-8, with nothing but UTF-8 in it.
std::string ShownWord(std::string_view name) {
  std::string word;
  while (!name.empty()) {
    const size_t valid = ValidUtf8Length(name);
    if (valid != 0) word += ShellWord(name.substr(0, valid));
    name.remove_prefix(valid);
    size_t invalid = 0;
    while (invalid < name.size() && ValidUtf8Length(name.substr(invalid)) == 0) ++invalid;
    if (invalid != 0) word += MadeByPrintf(name.substr(0, invalid));
    name.remove_prefix(invalid);
  }
  return word;
}

std::string FileWord(const char *text, Form form) {
  std::string name = text == nullptr ? "" : text;
  // Not an option of lp.
  if (name.starts_with('-')) name.insert(0, "./");
  return form == Form::Run || IsValidUtf8(name) ? ShellWord(name) : ShownWord(name);
}

void AppendFileNames(std::string &command, const CList *files, Form form) {
  size_t capacity = L_CommandStep;
  for (const CSelection *file : Elements<CSelection>(files)) {
    const std::string word = FileWord(fGet_CSelection_Value_Function(file), form);
    if (command.size() + word.size() >= capacity) {
      capacity += L_CommandStep;
      Log(3, FormatMessage("realloc'ed lpr_cmd, now >>%i<<", {static_cast<long>(capacity)}));
    }
    command += ' ';
    command += word;
  }
}

// lp takes all files or none, and its words are not seen in the window.
void ReportUnreadableFiles(CList *errors) {
  for (const CSelection *file : Elements<CSelection>(G_FilesList.get())) {
    const char *path = fGet_CSelection_Value_Function(file);
    if (path == nullptr || access(path, R_OK) == 0) continue;
    G_Report(errors, "ERR_UNABLE_TO_READ_FILE", {DisplayText(path)});
  }
}

// False, reported to `errors`, when the job was not sent.
bool SendFiles(const std::string &queue, const CPrintQueue *record, const std::string &copies,
               CList *errors) {
  PrintSettings settings;
  Log(2, "Write the features_hash in the .def file");
  if (!settings.Store(queue, record, errors)) return false;
  const std::string command =
      PrintCommandText(queue, copies, IsStdinDataToPrint() == 1, G_FilesList.get());
  Log(2, "The entire lpr_cmd is:");
  Log(2, command);
  std::string output;
  if (RunCommand(command, &output) != 0) {
    G_Report(errors, "ERR_CMD_FOR_QUEUE", {"lp", queue});
    ReportUnreadableFiles(errors);
    return false;
  }
  settings.Sent(queue, output);
  if (LastQueue() != queue && !WritePersonalFile(L_LastQueueFile, queue + "\n")) {
    Log(2, std::string("The queue is not remembered: ") + std::strerror(errno));  // NOLINT: ours
  }
  return true;
}

}  // namespace

std::string QueueEntry(const char *name, const char *printer_name, const char *language) {
  return FormatMessage("%s    [ %s ]    %s", {name, printer_name, language});
}

std::string QueueNameFromEntry(std::string_view entry) {
  return std::string(entry.substr(0, entry.find(' ')));
}

std::string PrintCommandText(const std::string &queue, const std::string &copies, bool copy_files,
                             const CList *files) {
  const LogScope log("PrintCommandText");
  std::string command = CommandStart(queue, copies, copy_files);
  CloseQuotes(command);
  AppendFileNames(command, files, Form::Run);
  return command;
}

std::string DisplayedCommandText(const std::string &queue, const CHash *options, bool copy_files,
                                 const CList *files) {
  const LogScope log("DisplayedCommandText");
  const char *copies = HashText(options, kCopiesKey);
  std::string command =
      CommandStart(queue, copies == nullptr ? L_DefaultCopies : copies, copy_files);
  // Kept on purpose: the comma after the copies stays before further pairs, which the command that
  // is run does not carry.
  for (const auto [key, value] : Pairs<CString>(options)) {
    if (std::string_view(key) == kCopiesKey) continue;
    command += FormatMessage(" %s=%s", {key, fGet_CString_Value_Function(value)});
  }
  CloseQuotes(command);
  AppendFileNames(command, files, Form::Shown);
  return command;
}

std::string CopiesToPrint(CHash *options) {
  const LogScope log("CopiesToPrint");
  const char *copies = HashText(options, kCopiesKey);
  if (copies != nullptr) return copies;
  Log(2, "The NRCOPIES feature was not founded in the features_hash. Put it with default 1");
  IgnoreResult(HashPutText(options, kCopiesKey, L_DefaultCopies),
               "without options the default is used all the same");
  return L_DefaultCopies;
}

std::vector<std::string> QueueEntries() {
  const LogScope log("QueueEntries");
  std::vector<std::string> entries;
  for (const auto [name, queue] : Pairs<CPrintQueue>(G_Queues_hash)) {
    const char *language = fGet_CString_Value_Function(fGet_Language_Function(queue));
    entries.push_back(QueueEntry(name,
                                 fGet_CString_Value_Function(fGet_PrinterName_Function(queue)),
                                 language == nullptr ? nullptr : G_Translate(language)));
  }
  return entries;
}

void PrintFiles(const std::string &queue, CList *errors) {
  const LogScope log("PrintFiles");
  if (!CheckCommandSafeName(queue.c_str(), errors)) return;
  const auto *record = HashValue<CPrintQueue>(G_Queues_hash, queue.c_str());
  const std::string copies = CopiesToPrint(fGet_Options_Function(record));
  if (SendFiles(queue, record, copies, errors)) TidyUsersFiles();
}

std::string LastQueue() {
  const std::string text = ReadPersonalFile(L_LastQueueFile).value_or("");
  return text.substr(0, text.find('\n'));
}

std::string DisplayedPrintCommand(const std::string &queue) {
  const LogScope log("DisplayedPrintCommand");
  const auto *record = HashValue<CPrintQueue>(G_Queues_hash, queue.c_str());
  return DisplayedCommandText(queue, fGet_Options_Function(record), IsStdinDataToPrint() == 1,
                              G_FilesList.get());
}
