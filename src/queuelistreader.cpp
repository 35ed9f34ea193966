#include "queuelistreader.h"

#include <utility>

#include "ccmtparams.h"
#include "ccpsparams.h"
#include "debug.h"
#include "ignoreresult.h"
#include "textline.h"

namespace {

struct Keyword;

// What has been read so far. The keyword seen last says what a plain line means.
struct Reader {
  Reader(std::string_view text, CHash *into) : queues(into), lines(text) {}

  CHash *queues;
  LineReader lines;
  const Keyword *keyword = nullptr;  // null: plain lines are ignored
  const char *fault = nullptr;

  Owned<CPrintQueue> queue;
  std::optional<std::string> queue_name;
  Owned<CHash> options;
  Owned<CHash> installable_features;
  Owned<CHash> papers;
  Owned<CHash> medias;
  // Kept on purpose: these five are not forgotten between entries.
  std::optional<std::string> paper_name;
  double width = 0;
  double length = 0;
  std::optional<std::string> media_name;
  std::optional<std::string> media_gui_name;
};

using KeywordStep = void (*)(Reader &reader);
using PlainStep = void (*)(Reader &reader, const std::string &line);

struct Keyword {
  std::string_view prefix;
  KeywordStep at_keyword;
  PlainStep at_plain_line;
  bool repeats = false;  // plain lines keep their meaning until the next keyword
};

// Why a step may leave something out.
constexpr char L_SeenAtItsEnd[] = "a queue that lacks something is refused at its end";

void StartQueue(Reader &reader) { reader.queue = CreatePrintQueue(); }

template <Owned<CHash> Reader::*table>
void StartTable(Reader &reader) {
  reader.*table = CreateHash();
}

template <int (*set)(CPrintQueue *, const CHash *), Owned<CHash> Reader::*table>
void StoreTable(Reader &reader) {
  IgnoreResult(set(reader.queue.get(), (reader.*table).get()), L_SeenAtItsEnd);
  (reader.*table).reset();
}

template <int (*set)(CPrintQueue *, const CString *)>
void StoreText(Reader &reader, const std::string &line) {
  IgnoreResult(set(reader.queue.get(), CreateStringWithValue(line.c_str()).get()), L_SeenAtItsEnd);
}

template <std::optional<std::string> Reader::*member>
void KeepText(Reader &reader, const std::string &line) {
  reader.*member = line;
}

template <double Reader::*member>
void KeepNumber(Reader &reader, const std::string &line) {
  reader.*member = NumberFromText(line);
}

void KeepMediaName(Reader &reader, const std::string &line) {
  reader.media_name = line;
  Log(4, "CUSTOMMEDIAPARAMS : " + line);
}

template <Owned<CHash> Reader::*table>
void AddPair(Reader &reader, const std::string &line) {
  const std::optional<std::string> value = ReadOptionValue(reader.lines);
  if (value)
    IgnoreResult(HashPutText((reader.*table).get(), line.c_str(), value->c_str()),
                 "the keyword has made the table");
}

void EndPaper(Reader &reader) {
  if (reader.papers == nullptr || !reader.paper_name || reader.width == 0 || reader.length == 0) {
    reader.fault = "incomplete custom paper size";
    return;
  }
  IgnoreResult(HashPut(reader.papers.get(), reader.paper_name->c_str(),
                       CreateCpsParams(reader.width, reader.length)),
               "the dictionary is there");
}

void EndMedia(Reader &reader) {
  if (reader.medias == nullptr || !reader.media_name || !reader.media_gui_name) {
    reader.fault = "incomplete custom media type";
    return;
  }
  IgnoreResult(HashPut(reader.medias.get(), reader.media_name->c_str(),
                       CreateCmtParams(CreateStringWithValue(reader.media_gui_name->c_str()))),
               "the dictionary is there");
}

void EndQueue(Reader &reader) {
  if (!reader.queue_name || !IsComplete(reader.queue.get())) {
    reader.fault = "incomplete queue";
    return;
  }
  IgnoreResult(HashPut(reader.queues, reader.queue_name->c_str(), std::move(reader.queue)),
               "the dictionary is there");
  reader.queue_name.reset();
}

// The order matters: a line is taken for the first keyword with which it begins.
constexpr Keyword L_Keywords[] = {
    {"#queue", StartQueue, nullptr},
    {"#name_queue", nullptr, KeepText<&Reader::queue_name>},
    {"#language", nullptr, StoreText<fSet_Language_Function>},
    {"#printer", nullptr, StoreText<fSet_PrinterName_Function>},
    {"#ppd_file", nullptr, StoreText<fSet_PpdFile_Function>},
    {"#def_file", nullptr, StoreText<fSet_DefFile_Function>},
    {"#type_address", nullptr, StoreText<fSet_AddressType_Function>},
    {"#address", nullptr, StoreText<fSet_Address_Function>},
    {"#printing_system", nullptr, StoreText<fSet_PrintingSystem_Function>},
    {"#options", StartTable<&Reader::options>, AddPair<&Reader::options>, true},
    // Kept on purpose: only the first 19 characters of "#installable_features" are looked at.
    {"#installable_featur", StartTable<&Reader::installable_features>,
     AddPair<&Reader::installable_features>, true},
    {"#custom_paper_sizes", StartTable<&Reader::papers>, nullptr},
    {"#custom_paper_params", nullptr, KeepText<&Reader::paper_name>},
    {"#custom_paper_width", nullptr, KeepNumber<&Reader::width>},
    {"#custom_paper_length", nullptr, KeepNumber<&Reader::length>},
    {"#end_custom_paper_params", EndPaper, nullptr},
    {"#end_custom_paper_sizes", StoreTable<fSet_CustomPapers_Function, &Reader::papers>, nullptr},
    {"#custom_paper_types", StartTable<&Reader::medias>, nullptr},
    {"#custom_paper_type_params", nullptr, KeepMediaName},
    {"#custom_paper_type_gui_name", nullptr, KeepText<&Reader::media_gui_name>},
    {"#end_custom_paper_type_params", EndMedia, nullptr},
    {"#end_custom_paper_types", StoreTable<fSet_CustomMedias_Function, &Reader::medias>, nullptr},
    {"#end_options", StoreTable<fSet_Options_Function, &Reader::options>, nullptr},
    {"#end_installable_features",
     StoreTable<fSet_InstallableFeatures_Function, &Reader::installable_features>, nullptr},
    {"#end_queue", EndQueue, nullptr},
};

const Keyword *FindKeyword(std::string_view line) {
  if (!line.starts_with('#')) return nullptr;
  for (const Keyword &keyword : L_Keywords) {
    if (line.starts_with(keyword.prefix)) return &keyword;
  }
  return nullptr;
}

void ReadLine(Reader &reader, const std::string &line) {
  if (IsCommentOrEmpty(line)) return;
  if (const Keyword *keyword = FindKeyword(line)) {
    reader.keyword = keyword->at_plain_line == nullptr ? nullptr : keyword;
    if (keyword->at_keyword != nullptr) keyword->at_keyword(reader);
  } else if (const Keyword *current = reader.keyword) {
    if (!current->repeats) reader.keyword = nullptr;
    current->at_plain_line(reader, line);
  }
}

}  // namespace

std::optional<QueueListError> ReadQueueList(std::string_view text, CHash *queues) {
  Reader reader(text, queues);
  while (const std::optional<std::string> line = reader.lines.Next()) {
    ReadLine(reader, *line);
    if (reader.fault != nullptr) {
      return QueueListError{reader.lines.LineNumber(), *line, reader.fault};
    }
  }
  return std::nullopt;
}

std::optional<std::string> ReadOptionValue(LineReader &lines) {
  std::optional<std::string> value = lines.Next();
  // Kept on purpose: the last character counts as the line feed, whether it is one or not.
  if (value && !lines.HadLineFeed() && !value->empty()) {
    value->resize(Utf8Prefix(*value, value->size() - 1).size());
  }
  return value;
}

bool CanStandAsListValue(std::string_view text) {
  return !IsCommentOrEmpty(text) && FindKeyword(text) == nullptr;
}
