// PostScript and PCL jobs: any bytes go through, or are refused, the same whatever the reads are
// cut into, and unchanged where there is nothing to put in. So do jobs whose pages are put on
// sheets, in another order, or left out.
#include <iterator>

#include "documentpages.h"
#include "filterjob.h"
#include "fuzz_support.h"
#include "jobkind.h"
#include "pcljob.h"
#include "postscript.h"

namespace {

PpdFeature Feature(const char *keyword, PpdSection section, const char *code) {
  PpdFeature feature;
  feature.keyword = keyword;
  feature.section = section;
  feature.choices = {{"On", "On", code}};
  return feature;
}

PpdModel FullModel() {
  PpdModel model;
  model.pjl = true;
  model.features = {Feature("A", PpdSection::Any, "a"), Feature("P", PpdSection::Page, "p"),
                    Feature("R", PpdSection::Prolog, "r"), Feature("X", PpdSection::Exit, "x"),
                    Feature("J", PpdSection::Jcl, "@PJL SET J=1\n")};
  return model;
}

// The job with its pages changed, the same whatever the reads are; and a document taken apart is
// whole.
void RequirePages(const std::string &job, const JobSettings &settings) {
  const FilteredJob whole = ResultOver(FilterPostScript, settings, job);
  const FilteredJob pieces = ResultOver(FilterPostScript, settings, job, 1);
  Require(whole.output == pieces.output && whole.result.failure == pieces.result.failure);
  Require(whole.result.warnings.size() <= 3);
}

void RequireWhole(const std::string &job) {
  JobSource source = TextSource(job);
  DocumentPages document;
  document.Read(&source);
  std::string text;
  JobSink sink([&text](std::string_view bytes) {
    text += bytes;
    return true;
  });
  JobSource kept = document.Whole();
  kept.CopyRest(&sink);
  sink.Flush();
  Require(job.starts_with(text) && document.Error() == 0);
}

JobSettings WithPages(const PpdModel &model, const char *key, const char *value, bool is_reversed) {
  JobSettings settings(model);
  settings.Apply({{key, value}, {"*NrCopies", "2"}});
  PageSelection pages;
  pages.is_reversed = is_reversed;
  if (is_reversed) pages.ranges = {{1, 1}, {3, 5}};
  settings.Select(pages);
  return settings;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const PpdModel full = FullModel();
  static const PpdModel plain;
  const JobSettings full_settings(full);
  const JobSettings plain_settings(plain);
  const std::string job(InputText(data, size));
  const FilteredJob whole = ResultOver(FilterPostScript, full_settings, job);
  const FilteredJob pieces = ResultOver(FilterPostScript, full_settings, job, 1);
  Require(whole.output == pieces.output && whole.result.failure == pieces.result.failure);
  for (const char *type : {"postscript", "text", "pcl6"}) {
    JobSource source = TextSource(job);
    JobSource slow = TextSource(job, 1);
    Require(RefusalOf(type, &source) == RefusalOf(type, &slow));
  }
  if (job.starts_with("%!") && job.find(kUel) == std::string::npos &&
      job.find_first_of("\r\n") != std::string::npos) {
    Require(RunOver(FilterPostScript, plain_settings, job) == job);
  }
  Require(RunOver(FilterPcl, plain_settings, job) == job);
  static const JobSettings sheets = WithPages(full, "*Nup", "4", false);
  static const JobSettings booklet = WithPages(full, "*Booklet", "1", false);
  static const JobSettings chosen = WithPages(full, "*Nup", "1", true);
  // One of them for each job, as the files that they need take their time.
  if (job.find("%%Page:") != std::string::npos) {
    const JobSettings *const all[] = {&sheets, &booklet, &chosen};
    RequirePages(job, *all[size % std::size(all)]);
    RequireWhole(job);
  }
  const std::string pcl = ResultOver(FilterPcl, full_settings, job).output;
  Require(pcl == ResultOver(FilterPcl, full_settings, job, 1).output);
  return 0;
}
