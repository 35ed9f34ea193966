#include "cmessages.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <set>

#include "debug.h"
#include "endprogram.h"
#include "globals.h"
#include "ignoreresult.h"
#include "textfile.h"

namespace {

constexpr CMessagesOps L_Ops{
    .header = {.Class_ID = fCMessages_Class_ID_Function,
               .Class_Name = fCMessages_Class_Name_Function,
               .Delete = DeleteAs<CMessages, fDelete_CMessages_Function>,
               .Clone = CloneAs<CMessages, fClone_CMessages_Function>},
    .FillFromPaf = fFillFromPaf_Function,
    .TranslateMessage = fTranslateMessage_Function,
};

constexpr char L_NotFoundKey[] = "ERR_TRANS_NOT_FOUND";

std::set<std::string> L_Notes;  // the messages that only informed

// Lines that only give the file its structure.
bool IsMarker(const std::string &line) {
  return line.starts_with("##") || line.starts_with("#translation") ||
         line.starts_with("#end_translation") || line.starts_with("#end_languag");
}

std::string WithoutFirstCharacter(const std::string &line) {
  size_t length = 1;
  while (length < line.size() && (static_cast<unsigned char>(line[length]) & 0xC0) == 0x80)
    ++length;
  return line.substr(length);
}

const char *AllocationFailedText(const CMessages *catalogue) {
  return HashText(catalogue->messages.get(), "AllocMemoryError");
}

}  // namespace

const CObjectOps *CMessages::Ops() { return &L_Ops.header; }

Owned<CMessages> CreateMessages(const char *path) {
  const LogScope log("CreateMessages");
  if (path == nullptr) return nullptr;
  Owned<CMessages> catalogue = NewObject<CMessages>();
  catalogue->messages = CreateHash();
  catalogue->file_name = CreateStringWithValue(path);
  return catalogue;
}

int fCMessages_Class_ID_Function() { return CMessages::kClassId; }

const char *fCMessages_Class_Name_Function() { return CMessagesClassName; }

int fDelete_CMessages_Function(CMessages *catalogue) {
  if (catalogue == nullptr) return 0;
  TakeBackAllocationFailedText(AllocationFailedText(catalogue));
  FreeObject(catalogue);
  return 1;
}

Owned<CMessages> fClone_CMessages_Function(const CMessages *catalogue) {
  const LogScope log("fClone_CMessages_Function");
  if (catalogue == nullptr || catalogue->language == nullptr || catalogue->messages == nullptr) {
    return nullptr;
  }
  Owned<CMessages> clone = CreateMessages(fGet_CString_Value_Function(catalogue->file_name.get()));
  clone->messages = CloneOf(catalogue->messages.get());
  clone->language = CloneOf(catalogue->language.get());
  return clone;
}

void ReadMessages(CMessages *catalogue, LineReader &lines) {
  CHash *table = catalogue->messages.get();
  while (const std::optional<std::string> line = lines.NextDroppingLast()) {
    if (line->empty()) continue;
    const bool is_language = line->starts_with("#language");
    if (!is_language && IsMarker(*line)) continue;
    const std::optional<std::string> value = lines.NextDroppingLast();
    if (!value) return;
    if (is_language) {
      catalogue->language = CreateStringWithValue(value->c_str());
    } else {
      IgnoreResult(HashPutText(table, WithoutFirstCharacter(*line).c_str(), value->c_str()),
                   "the dictionary is there");
    }
  }
}

void fFillFromPaf_Function(CMessages *catalogue) {
  const LogScope log("fFillFromPaf_Function");
  if (catalogue == nullptr) return;
  const char *path = fGet_CString_Value_Function(catalogue->file_name.get());
  const std::optional<std::string> content = ReadWholeFile(path);
  if (!content) {
    PrintError(FormatMessage("Unable to read file %s\n", {path}));
    EndProgram(3);
  }
  TakeBackAllocationFailedText(AllocationFailedText(catalogue));
  catalogue->messages = CreateHash();
  LineReader lines(*content);
  ReadMessages(catalogue, lines);
  LendAllocationFailedText(AllocationFailedText(catalogue));
}

const char *fTranslateMessage_Function(const CMessages *catalogue, const char *key) {
  if (catalogue == nullptr) return nullptr;
  const char *text = HashText(catalogue->messages.get(), key);
  if (text != nullptr || key == nullptr) return text;
  if (std::strcmp(key, L_NotFoundKey) == 0) return "Translation not found for %s";
  PrintErrorLine(FormatMessage(fTranslateMessage_Function(catalogue, L_NotFoundKey), {key}));
  return key;
}

const char *G_Translate(const char *key) {
  return G_Messages == nullptr ? key : fTranslateMessage_Function(G_Messages.get(), key);
}

std::string G_Message(const char *key, std::initializer_list<FormatArg> arguments) {
  return FormatMessage(G_Translate(key), arguments);
}

void G_Report(CList *errors, const char *key, std::initializer_list<FormatArg> arguments) {
  const std::string message = G_Message(key, arguments);
  PrintErrorLine(message);
  if (errors != nullptr) {
    IgnoreResult(fAddTail_CList_Function(errors, CreateStringWithValue(message.c_str())),
                 "the list is there");
  }
}

void G_Note(CList *notes, const char *key, std::initializer_list<FormatArg> arguments) {
  L_Notes.insert(G_Message(key, arguments));
  G_Report(notes, key, arguments);
}

bool AreNotes(const CList *messages) {
  bool any = false;
  for (const CString *message : Elements<CString>(messages)) {
    if (!L_Notes.contains(fGet_CString_Value_Function(message))) return false;
    any = true;
  }
  return any;
}

void ReportNames(CList *errors, const char *one_key, const char *many_key,
                 const std::vector<std::string> &names,
                 void (*report)(CList *errors, const char *key,
                                std::initializer_list<FormatArg> arguments)) {
  constexpr size_t kMostShown = 20;
  if (names.empty()) return;
  if (names.size() == 1) return report(errors, one_key, {names[0]});
  std::string shown = names[0];
  for (size_t i = 1; i < std::min(names.size(), kMostShown); ++i) shown += ", " + names[i];
  if (names.size() > kMostShown) shown += ", ...";
  report(errors, many_key, {static_cast<int>(names.size()), shown});
}

void G_Fatal(int status, const char *key, std::initializer_list<FormatArg> arguments) {
  PrintErrorLine(G_Message(key, arguments));
  EndProgram(status);
}
