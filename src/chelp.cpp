#include "chelp.h"

#include "cmessages.h"
#include "debug.h"
#include "ignoreresult.h"
#include "textfile.h"

namespace {

constexpr CHelpOps L_Ops{
    .header = {.Class_ID = fCHelp_Class_ID_Function,
               .Class_Name = fCHelp_Class_Name_Function,
               .Delete = DeleteAs<CHelp, fDelete_CHelp_Function>,
               .Clone = CloneAs<CHelp, fClone_CHelp_Function>},
    .FillFromHelp = fFillFromHelp_Function,
    .GetHelp = fGetHelp_Function,
};

bool OpensBlock(const std::string &line) { return line[0] == '#' && line.ends_with("_BEGIN"); }

bool ClosesBlock(const std::string &line) { return line[0] == '#' && line.ends_with("_END"); }

}  // namespace

const CObjectOps *CHelp::Ops() { return &L_Ops.header; }

Owned<CHelp> CreateHelp(const char *path) {
  const LogScope log("CreateHelp");
  if (path == nullptr) return nullptr;
  Owned<CHelp> help = NewObject<CHelp>();
  help->helps = CreateHash();
  help->file_name = CreateStringWithValue(path);
  return help;
}

int fCHelp_Class_ID_Function() { return CHelp::kClassId; }

const char *fCHelp_Class_Name_Function() { return CHelpClassName; }

int fDelete_CHelp_Function(CHelp *help) {
  if (help == nullptr) return 0;
  FreeObject(help);
  return 1;
}

Owned<CHelp> fClone_CHelp_Function(const CHelp *help) {
  const LogScope log("fClone_CHelp_Function");
  if (help == nullptr || help->language == nullptr || help->helps == nullptr) return nullptr;
  Owned<CHelp> clone = CreateHelp(fGet_CString_Value_Function(help->file_name.get()));
  clone->helps = CloneOf(help->helps.get());
  clone->language = CloneOf(help->language.get());
  return clone;
}

std::optional<HelpError> ReadHelp(CHelp *help, LineReader &lines) {
  std::string block;  // of the open block; empty outside, since names end in "_BEGIN"
  std::string gathered;
  while (const std::optional<std::string> line = lines.NextDroppingLast()) {
    if (line->starts_with("##") || (line->empty() && block.empty())) continue;
    if (line->starts_with("#language")) {
      const std::optional<std::string> language = lines.NextDroppingLast();
      if (language) help->language = CreateStringWithValue(language->c_str());
    } else if (OpensBlock(*line)) {
      if (!block.empty()) return HelpError{lines.LineNumber(), block};
      block = line->substr(1);
    } else if (ClosesBlock(*line)) {
      // Kept on purpose: the name before "_END" is not compared with the open block's.
      if (block.empty()) return HelpError{lines.LineNumber(), block};
      IgnoreResult(HashPutText(help->helps.get(), block.c_str(), gathered.c_str()),
                   "the dictionary is there");
      block.clear();
      gathered.clear();
    } else {
      // Kept on purpose: lines outside any block become the start of the next one's text.
      gathered += *line + "\n";
    }
  }
  return std::nullopt;
}

void fFillFromHelp_Function(CHelp *help) {
  const LogScope log("fFillFromHelp_Function");
  if (help == nullptr) return;
  const char *path = fGet_CString_Value_Function(help->file_name.get());
  const std::optional<std::string> content = ReadWholeFile(path);
  if (!content) G_Fatal(3, "ERR_UNABLE_TO_READ_FROM_FILE", {path});
  help->helps = CreateHash();
  LineReader lines(*content);
  const std::optional<HelpError> error = ReadHelp(help, lines);
  if (!error) return;
  Log(1, FormatMessage("%s:%d: block opened or closed at the wrong place", {path, error->line}));
  G_Fatal(5, "ERR_FILE_CORRUPTED", {path, error->block});
}

const char *fGetHelp_Function(const CHelp *help, const char *name) {
  const LogScope log("fGetHelp_Function");
  if (help == nullptr) return nullptr;
  const char *text = HashText(help->helps.get(), name);
  if (text != nullptr || name == nullptr) return text;
  PrintErrorLine(G_Message("ERR_HELP_NOT_FOUND", {name}));
  return name;
}
