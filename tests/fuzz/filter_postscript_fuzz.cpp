// PostScript and PCL jobs: any bytes go through, or are refused, the same whatever the reads are
// cut into, and unchanged where there is nothing to put in.
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
  const std::string pcl = ResultOver(FilterPcl, full_settings, job).output;
  Require(pcl == ResultOver(FilterPcl, full_settings, job, 1).output);
  return 0;
}
