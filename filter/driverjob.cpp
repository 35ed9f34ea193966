#include "driverjob.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <vector>

#include "booklet.h"
#include "converter.h"
#include "decimal.h"
#include "textencoding.h"
#include "textfile.h"
#include "textscan.h"

namespace kpx::filter {

namespace {

constexpr char kChain[] = "/usr/sbin/cupsfilter";
constexpr char kPostScriptDocument[] = "application/postscript";
constexpr char kPageSize[] = "PageSize";

JobResult NoRoom() { return Failure(std::string("no room for the job: ") + std::strerror(errno)); }

std::string SizeCode(const PpdPageSize &size) {
  return "<</PageSize[" + DecimalText(size.width) + " " + DecimalText(size.length) +
         "]>>setpagedevice";
}

void AddChoices(const JobSettings &settings, std::vector<std::string> *words) {
  const auto add = [&](const std::string &name, const std::string &value) {
    words->insert(words->end(), {"-o", name + "=" + value});
  };
  for (const PpdFeature &feature : settings.Model().features) {
    const PpdChoice *choice = settings.Chosen(feature.keyword);
    if (choice != nullptr && feature.keyword != "PageRegion") add(feature.keyword, choice->keyword);
  }
  if (const auto paper = settings.Paper()) {
    add(kPageSize, "Custom." + DecimalText(paper->width) + "x" + DecimalText(paper->length));
  }
  // The pages are laid out already.
  add("print-scaling", "none");
}

// The first thing that went wrong, of all that the programs of the chain said.
std::string Trouble(const std::string &messages) {
  constexpr std::string_view kTrouble = "ERROR: ";
  LineReader lines(messages);
  while (const std::optional<std::string_view> line = lines.NextView()) {
    if (line->starts_with(kTrouble)) {
      return std::string(Trimmed(line->substr(kTrouble.size())));
    }
  }
  return "it gives no reason";
}

}  // namespace

PpdModel ModelForDriver(const PpdModel &model) {
  PpdModel plain = model;
  plain.pjl = plain.pjl_utf8 = false;
  plain.pjl_settings.clear();
  plain.jcl_begin.clear();
  plain.jcl_to_postscript.clear();
  plain.jcl_end.clear();
  plain.requires_page_region.clear();
  for (PpdFeature &feature : plain.features) {
    feature.section = PpdSection::Document;
    feature.custom.reset();
    for (PpdChoice &choice : feature.choices) {
      const auto size = plain.page_sizes.find(choice.keyword);
      const bool is_size = feature.keyword == kPageSize && size != plain.page_sizes.end();
      choice.code = is_size ? SizeCode(size->second) : std::string();
    }
  }
  return plain;
}

JobResult PrintByDriver(const DriverCall &call, const JobSettings &settings,
                        const JobIdentity &identity, int document, JobSink *sink) {
  if (access(kChain, X_OK) != 0) {
    return Failure("the printer's driver cannot be run: install cups");
  }
  std::vector<std::string> words = {kChain,
                                    "-p",
                                    call.ppd,
                                    "-i",
                                    call.type,
                                    "-m",
                                    "printer/driver",
                                    "-e",
                                    "-n",
                                    std::to_string(settings.Copies()),
                                    "-U",
                                    identity.user,
                                    "-t",
                                    identity.title};
  AddChoices(settings, &words);
  // The programs of the chain have nothing open but the ends of their pipes.
  words.push_back("/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(document));
  int ends[2] = {-1, -1};
  if (lseek(document, 0, SEEK_SET) != 0 || pipe2(ends, O_CLOEXEC) != 0) return NoRoom();
  Descriptor from(ends[0]), to(ends[1]);
  Converter converter({.words = words,
                       .environment = ConverterEnvironment(),
                       .input = document,
                       .output = to.Number()});
  to.Close();
  JobSource source = DescriptorSource(from.Number());
  const bool is_empty = source.Peek(1).empty();
  source.CopyRest(sink);
  sink->Flush();
  from.Close();
  const int status = converter.Wait();
  if (sink->Error() != 0 || (status == 0 && !is_empty)) return {};
  return Failure("the printer's driver failed: " + Trouble(converter.Messages()));
}

JobResult FilterByDriver(const std::string &ppd, FilterFunction filter, const JobSettings &settings,
                         const JobIdentity &identity, JobSource *source, JobSink *sink) {
  const Descriptor document(NamelessFile());
  if (!document.IsOpen()) return NoRoom();
  JobSink pages = DescriptorSink(document.Number());
  JobResult result = filter(settings, identity, source, &pages);
  if (result.Failed()) return result;
  if (pages.Error() != 0) {
    errno = pages.Error();
    return NoRoom();
  }
  if (lseek(document.Number(), 0, SEEK_END) == 0) return result;  // an empty job
  const JobSettings used = IsBooklet(settings) ? BookletSettings(settings) : settings;
  const JobResult printed =
      PrintByDriver({ppd, kPostScriptDocument}, used, identity, document.Number(), sink);
  result.failure = printed.failure;
  return result;
}

}  // namespace kpx::filter
