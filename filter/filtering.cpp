#include "filtering.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <ctime>
#include <optional>
#include <string_view>
#include <utility>

#include "applicationwords.h"
#include "conflicts.h"
#include "driverjob.h"
#include "jobkind.h"
#include "jobresult.h"
#include "jobrules.h"
#include "jobsettings.h"
#include "jobsource.h"
#include "pageselection.h"
#include "pcljob.h"
#include "pdfjob.h"
#include "pjl.h"
#include "postscript.h"
#include "ppdadaptor.h"
#include "queueppd.h"
#include "queuetypes.h"
#include "settingkeys.h"
#include "textencoding.h"
#include "textfile.h"
#include "textjob.h"

namespace kpx::filter {

namespace {

void Warn(const std::string &text) { PrintErrorLine("kpxfilter: " + text); }

// The user's settings for the job: those of the waiting request, where there are some, else those
// for the queue.
OptionFile OptionsOfUser(const FilterArguments &arguments) {
  const std::string path = UserOptionFile(arguments.def_file, arguments.user);
  // Read first: it holds this job's settings until the request has those of its own.
  OptionFile of_queue = path.empty() ? OptionFile() : ReadUserOptions(path, arguments.user);
  OptionFile of_request = ReadRequestOptions(arguments.def_file, arguments.user, arguments.request);
  if (of_request.counts || !of_request.error.empty()) return of_request;
  if (!of_request.warning.empty()) Warn(of_request.warning);
  return of_queue;
}

// The description of the queue that words and pages are read with; without one where the printer
// has none.
QueuePpd DescriptionOf(const FilterArguments &arguments, const std::vector<KeyValue> &settings) {
  if (arguments.ppd_file.empty()) return {};
  const std::optional<std::string> model = ReadWholeFile(arguments.ppd_file);
  if (!model) return {};  // it was there a moment ago
  return MakeQueuePpd({*model, arguments.type, settings, {}});
}

// What an application asks to be done to the pages.
std::vector<ApplicationOption> PageWordsOf(std::vector<ApplicationOption> words) {
  std::erase_if(words, [](const ApplicationOption &word) { return !IsPageWord(word.first); });
  return words;
}

// Dialogs send every option, changed or not. A delivery that says no more than the queue's default
// does not undo one of the user's that waits for a PIN.
void KeepDeliveryWithPin(const std::string &of_queue, const JobSettings &settings,
                         ApplicationSettings *words) {
  const PpdChoice *stored = settings.Chosen("Delivery");
  if (stored == nullptr || !NeedsPin(stored->keyword) || NeedsPin(of_queue)) return;
  const size_t dropped = std::erase_if(words->settings, [&](const KeyValue &setting) {
    return setting.key == kDeliveryKey && SameKeyword(setting.value, of_queue);
  });
  if (dropped == 0) return;
  Warn(
      "the job is held for the PIN of the user's settings, although the application asks for the "
      "queue's usual delivery");
}

PageWords WhoLaysPagesOut(const std::string &type, bool is_pdf) {
  if (is_pdf) return PageWords::kConverter;
  if (type == kTextType) return PageWords::kText;
  return type == kPclType ? PageWords::kNobody : PageWords::kDocument;
}

// The layers of settings over the printer's defaults: the queue's file, the user's, the job's
// words. Fills `request` (null: the job is no PDF document) and, where the print tool has given the
// file a name of its own, `name`. Returns an empty text, or what failed.
std::string ApplyLayers(const FilterArguments &arguments, JobSettings *settings,
                        PageRequest *request, std::string *name) {
  OptionFile queue;
  std::string usual_delivery;
  if (!arguments.def_file.empty()) {
    const bool has_options = !settings->Model().features.empty();
    queue = ReadQueueOptions(arguments.def_file, has_options);
    if (!queue.error.empty()) return queue.error;
    settings->ApplyQueue(queue.settings);
    const PpdChoice *delivery = settings->Chosen("Delivery");
    if (delivery != nullptr) usual_delivery = delivery->keyword;
    const OptionFile user = OptionsOfUser(arguments);
    if (!user.error.empty()) return user.error;
    if (!user.warning.empty()) Warn(user.warning);
    settings->ApplyUser(user.settings);
    *name = NameOfInput(arguments.files, user.file_names);
  }
  // What an application asks for lies below the job's own words, which name a setting exactly.
  const std::vector<ApplicationOption> words =
      WordsOfApplications(arguments.options, settings->Model().color);
  if (!words.empty() || request != nullptr) {
    const QueuePpd ppd = DescriptionOf(arguments, queue.settings);
    const PageWords pages = WhoLaysPagesOut(arguments.type, request != nullptr);
    ApplicationSettings asked = SettingsOfWords(words, ppd, pages);
    KeepDeliveryWithPin(usual_delivery, *settings, &asked);
    settings->ApplyWords(asked);
    if (request != nullptr) {
      request->ppd = ppd.text;
      request->words = PageWordsOf(words);
    }
  }
  PageSelection selection;
  const std::string unclear = ReadPageSelection(words, &selection);
  if (!unclear.empty()) return unclear;
  settings->Select(selection);
  settings->Apply(ParseOptionWords(arguments.options));
  for (const std::string &warning : settings->Warnings()) Warn(warning);
  for (const std::string &conflict : ConflictTexts(*settings)) Warn(conflict);
  return DeliveryProblem(*settings);
}

std::string Describe(const char *end, int error) {
  return std::string(end) + ": " + std::strerror(error);
}

struct JobType {
  std::string_view name;
  FilterFunction filter;
};

constexpr JobType kJobTypes[] = {
    {kPostScriptType, FilterPostScript}, {kTextType, FilterText}, {kPclType, FilterPcl}};

// The filter of a job type; null for an unknown one.
FilterFunction FilterOf(std::string_view type) {
  for (const JobType &known : kJobTypes) {
    if (type == known.name) return known.filter;
  }
  return nullptr;
}

// Runs the filter of the job's type, through the driver of a printer that needs one.
JobResult RunFilter(const FilterArguments &arguments, FilterFunction filter,
                    const JobSettings &settings, const JobIdentity &identity, JobSource *source,
                    JobSink *sink) {
  const std::string &driver = settings.Model().driver;
  if (driver.empty()) return filter(settings, identity, source, sink);
  if (arguments.type == kPclType) {
    return Failure("the printer's driver \"" + driver +
                   "\" does not take PCL data: print the document on a queue for PostScript");
  }
  return FilterByDriver(arguments.ppd_file, filter, settings, identity, source, sink);
}

}  // namespace

std::string FilterJob(const FilterArguments &arguments) {
  // A reader of our output that goes away is an error to report, not an end without a word.
  std::signal(SIGPIPE, SIG_IGN);
  const FilterFunction filter = FilterOf(arguments.type);
  if (filter == nullptr) {
    return "\"" + arguments.type + "\" is not a job type (postscript, text, pcl6)";
  }
  PpdModel model;
  if (!arguments.ppd_file.empty()) {
    PpdError error;
    std::optional<PpdModel> read = ReadPpdFile(arguments.ppd_file, &error);
    if (!read) return error.Text(arguments.ppd_file);
    model = read->driver.empty() ? std::move(*read) : ModelForDriver(*read);
  }
  JobSource source = DescriptorSource(STDIN_FILENO);
  JobSink sink = DescriptorSink(STDOUT_FILENO);
  const bool is_pdf = arguments.type == kPostScriptType && IsPdf(&source);
  JobSettings settings(model);
  PageRequest request;
  request.driver_ppd = model.driver.empty() ? "" : arguments.ppd_file;
  std::string name;
  const std::string problem = ApplyLayers(arguments, &settings, is_pdf ? &request : nullptr, &name);
  if (!problem.empty()) return problem;

  const JobIdentity identity{name.empty() ? DecodeLine(arguments.title) : name,
                             name.empty() ? DecodeLine(arguments.event) : name,
                             DecodeLine(arguments.user), std::time(nullptr)};
  const std::string refusal = is_pdf ? "" : RefusalOf(arguments.type, &source);
  if (!refusal.empty()) return refusal;
  const JobResult result = is_pdf
                               ? FilterPdf(settings, identity, request, &source, &sink)
                               : RunFilter(arguments, filter, settings, identity, &source, &sink);
  for (const std::string &warning : result.warnings) Warn(warning);
  if (result.Failed()) return result.failure;
  if (source.Error() != 0) return Describe("standard input", source.Error());
  if (sink.Error() != 0) return Describe("standard output", sink.Error());
  return {};
}

}  // namespace kpx::filter
