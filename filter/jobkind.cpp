#include "jobkind.h"

#include <algorithm>
#include <iterator>

#include "byteordermark.h"
#include "pjl.h"
#include "queuetypes.h"
#include "wrappedjob.h"

namespace kpx::filter {

using std::string_view_literals::operator""sv;

namespace {

// A kind of file that no queue prints. Where a text could begin like that, a NUL byte soon
// afterwards tells it from one.
struct FileKind {
  std::string_view magic;
  std::string_view name;
  bool like_text = false;
};

constexpr std::string_view kPdf = "%PDF-";
constexpr FileKind kFileKinds[] = {{kPdf, "a PDF document"},
                                   {"\x89PNG\r\n\x1A\n", "a PNG picture"},
                                   {"\xFF\xD8\xFF", "a JPEG picture"},
                                   {"GIF87a", "a GIF picture", true},
                                   {"GIF89a", "a GIF picture", true},
                                   {"II*\0"sv, "a TIFF picture"},
                                   {"MM\0*"sv, "a TIFF picture"},
                                   {"BM", "a BMP picture", true},
                                   {"RIFF", "a picture or a sound", true},
                                   {"\x1F\x8B\x08", "a compressed file (gzip)"},
                                   {"\x1F\x9D", "a compressed file (compress)"},
                                   {"BZh", "a compressed file (bzip2)", true},
                                   {"\xFD"
                                    "7zXZ\0"sv,
                                    "a compressed file (xz)"},
                                   {"\x28\xB5\x2F\xFD", "a compressed file (zstd)"},
                                   {"7z\xBC\xAF\x27\x1C", "a compressed file (7-Zip)"},
                                   {"RaS", "raster data", true},
                                   {"tSaR", "raster data", true},
                                   {"2SaR", "raster data", true},
                                   {"3SaR", "raster data", true},
                                   {"UNIRAST\0"sv, "raster data"},
                                   {"\x7F"
                                    "ELF",
                                    "a program"},
                                   {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", "an office document"}};

constexpr std::string_view kZip = "PK\003\004";
// What the first entries of a zip archive are called that is an office document.
constexpr std::string_view kOfficeEntries[] = {"mimetypeapplication/vnd.", "[Content_Types].xml",
                                               "_rels/.rels"};

bool HasNul(std::string_view bytes) { return bytes.find('\0') != std::string_view::npos; }

std::string_view ZipName(std::string_view data) {
  const std::string_view start = data.substr(0, 4096);
  const bool office = std::any_of(
      std::begin(kOfficeEntries), std::end(kOfficeEntries),
      [start](std::string_view entry) { return start.find(entry) != std::string_view::npos; });
  return office ? "an office document" : "a zip archive";
}

// What `data` is when no queue prints it, else an empty text.
std::string_view ForeignKind(std::string_view data) {
  constexpr size_t kSoon = 512;
  if (data.starts_with(kZip)) return ZipName(data);
  for (const FileKind &kind : kFileKinds) {
    if (!data.starts_with(kind.magic)) continue;
    if (!kind.like_text || HasNul(data.substr(0, kSoon))) return kind.name;
  }
  return {};
}

bool IsUtf16Marked(std::string_view data) {
  return data.starts_with("\xFF\xFE") || data.starts_with("\xFE\xFF");
}

// Whether so many bytes are NUL that this is no text; UTF-16 has them in every second place.
bool IsFullOfNul(std::string_view data) {
  constexpr size_t kFew = 16, kOneOf = 16;
  if (IsUtf16Marked(data)) return false;
  size_t counts[2] = {0, 0};  // at even and at odd places
  for (size_t i = 0; i < data.size(); ++i) {
    if (data[i] == '\0') ++counts[i % 2];
  }
  const size_t most = std::max(counts[0], counts[1]);
  const size_t all = counts[0] + counts[1];
  const bool utf16 = most > data.size() / 4 && all - most <= most / kOneOf;
  return all >= kFew && all > data.size() / kOneOf && !utf16;
}

bool IsPostScript(std::string_view data) {
  return data.starts_with("%!") || IsDosEps(data) || IsTaggedBinary(data);
}

bool IsPcl(std::string_view data) {
  constexpr std::string_view kBindings = ")('";  // of PCL XL
  const bool binding = !data.empty() && kBindings.find(data.front()) != std::string_view::npos;
  return data.starts_with('\033') || (binding && data.substr(1).starts_with(" HP-PCL XL"));
}

// What `data`, behind the job's control, is when a queue of `type` does not print it; else empty.
// `whole` says that the job ends where `data` ends.
std::string_view WrongKind(std::string_view type, std::string_view data, bool whole) {
  const std::string_view foreign = ForeignKind(data);
  if (!foreign.empty()) return foreign;
  if (type == kTextType) return IsFullOfNul(data) ? "binary data" : std::string_view();
  if (type == kPclType) return IsPostScript(data) ? "PostScript" : std::string_view();
  if (IsPostScript(data)) return {};
  if (IsPcl(data)) return "PCL data";
  return IsUtf16Marked(data) || IsClearlyText(data, whole) ? "plain text" : std::string_view();
}

std::string_view PrintedBy(std::string_view type) {
  return type == kPostScriptType ? "PostScript" : type == kPclType ? "PCL" : "plain text";
}

// `data` without what may stand before a document: a byte order mark, empty lines, ends of
// transmission.
std::string_view WithoutLead(std::string_view data) {
  constexpr std::string_view kLead = "\004 \t\r\n";
  data = WithoutByteOrderMark(data);
  return data.substr(std::min(data.find_first_not_of(kLead), data.size()));
}

}  // namespace

bool IsPdf(JobSource *source) {
  return WithoutLead(source->Peek(JobSource::kCapacity)).starts_with(kPdf);
}

std::string RefusalOf(std::string_view type, JobSource *source) {
  std::string_view data = source->Peek(JobSource::kCapacity);
  const bool whole = data.size() < JobSource::kCapacity;
  if (type != kTextType) {
    const JobControl control = ReadJobControl(WithoutLead(data), whole);
    const bool asks_otherwise =
        !control.language.empty() && EntersPostScript(control) != (type == kPostScriptType);
    if (asks_otherwise) return {};
    data = WithoutLead(WithoutLead(data).substr(control.length));
  }
  const std::string_view kind = WrongKind(type, data, whole);
  if (kind.empty()) return {};
  return "the file is " + std::string(kind) + ", but this queue prints only " +
         std::string(PrintedBy(type));
}

}  // namespace kpx::filter
