// CMessages: the message catalogue; every text that the program shows, by key.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "chash.h"
#include "textencoding.h"
#include "textformat.h"

inline constexpr char CMessagesClassName[] = "CMessages";

struct CMessages : CObject {
  static constexpr int kClassId = 200;
  static const CObjectOps *Ops();

  Owned<CHash> messages;  // key to CString
  Owned<CString> language;
  Owned<CString> file_name;
};

struct CMessagesOps {
  CObjectOps header;
  void (*FillFromPaf)(CMessages *catalogue);
  const char *(*TranslateMessage)(const CMessages *catalogue, const char *key);
};

// An empty catalogue for the file `path`; null when `path` is null.
[[nodiscard]] Owned<CMessages> CreateMessages(const char *path);

int fCMessages_Class_ID_Function();
const char *fCMessages_Class_Name_Function();

// Takes the catalogue over; 1, but 0 for null.
int fDelete_CMessages_Function(CMessages *catalogue);

// A catalogue of the same file with clones of table and language; null when one is missing.
[[nodiscard]] Owned<CMessages> fClone_CMessages_Function(const CMessages *catalogue);

// Reads the file into a new table; nothing for null. A file that cannot be opened ends the process
// with status 3.
void fFillFromPaf_Function(CMessages *catalogue);

// Reads keys, texts and language into `catalogue`; every content is accepted.
void ReadMessages(CMessages *catalogue, LineReader &lines);

// The text of `key`, lent by the catalogue. A key that is missing is reported on standard error and
// returned itself. Null for a null catalogue.
const char *fTranslateMessage_Function(const CMessages *catalogue, const char *key);

// The program's catalogue (G_Messages) asked for one text; the key itself while none is loaded.
const char *G_Translate(const char *key);

// That text filled as a format.
std::string G_Message(const char *key, std::initializer_list<FormatArg> arguments = {});

// Prints the message and a line feed to standard error and, when there is a list, appends it there
// as a CString.
void G_Report(CList *errors, const char *key, std::initializer_list<FormatArg> arguments = {});

// The same of a message that only informs: nothing has failed.
void G_Note(CList *notes, const char *key, std::initializer_list<FormatArg> arguments = {});
// True when there are messages and all of them were given to G_Note.
[[nodiscard]] bool AreNotes(const CList *messages);

// The same of several names in one message: `one_key` takes the only name, `many_key` how many
// there are and the first of them. Without names nothing. `report` is G_Report or G_Note.
void ReportNames(CList *errors, const char *one_key, const char *many_key,
                 const std::vector<std::string> &names,
                 void (*report)(CList *errors, const char *key,
                                std::initializer_list<FormatArg> arguments) = G_Report);

// Prints the message and a line feed to standard error and ends the process with `status`.
[[noreturn]] void G_Fatal(int status, const char *key,
                          std::initializer_list<FormatArg> arguments = {});
