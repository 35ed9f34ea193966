#include "printcommand.h"

#include "cmessages.h"
#include "command.h"
#include "cprintqueue.h"
#include "cselection.h"
#include "debug.h"
#include "filelist.h"
#include "globals.h"
#include "ignoreresult.h"
#include "paths.h"
#include "porting.h"
#include "printsettings.h"

namespace {

constexpr char L_DefaultCopies[] = "1";
constexpr size_t L_CommandStep = 10240;

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

// Kept on purpose: the names are not quoted.
void AppendFileNames(std::string &command, const CList *files) {
  size_t capacity = L_CommandStep;
  for (const CSelection *file : Elements<CSelection>(files)) {
    const char *text = fGet_CSelection_Value_Function(file);
    const std::string_view name = text == nullptr ? "" : text;
    if (command.size() + name.size() >= capacity) {
      capacity += L_CommandStep;
      Log(3, FormatMessage("realloc'ed lpr_cmd, now >>%i<<", {static_cast<long>(capacity)}));
    }
    command += ' ';
    command += name;
  }
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
  AppendFileNames(command, files);
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
  AppendFileNames(command, files);
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
  Log(2, "Write the features_hash in the .def file");
  if (!StoreSettings(queue, record, errors)) return;
  const std::string command =
      PrintCommandText(queue, copies, IsStdinDataToPrint() == 1, G_FilesList.get());
  Log(2, "The entire lpr_cmd is:");
  Log(2, command);
  if (RunCommand(command) != 0) G_Report(errors, "ERR_CMD_FOR_QUEUE", {"lp", queue});
}

std::string DisplayedPrintCommand(const std::string &queue) {
  const LogScope log("DisplayedPrintCommand");
  const auto *record = HashValue<CPrintQueue>(G_Queues_hash, queue.c_str());
  return DisplayedCommandText(queue, fGet_Options_Function(record), IsStdinDataToPrint() == 1,
                              G_FilesList.get());
}
