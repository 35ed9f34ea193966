// Option files and option words: any bytes give settings in UTF-8 and job control that keeps its
// frame.
#include "featurecode.h"
#include "filterjob.h"
#include "fuzz_support.h"
#include "optionfiles.h"
#include "textencoding.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const PpdModel model = [] {
    PpdModel pjl;
    pjl.pjl = true;
    for (const char *keyword : {"PageSize", "MediaType", "Delivery"}) {
      PpdFeature feature;
      feature.keyword = keyword;
      feature.choices = {{"A4", "A4", "a"}, {"HoldJobUntilYouEnterPIN", "Hold", "h"}};
      pjl.features.push_back(feature);
    }
    return pjl;
  }();
  const std::string_view text = InputText(data, size);
  for (const auto &settings : {KeyValuesOf(text), ParseOptionWords(text)}) {
    for (const KeyValue &setting : settings) {
      Require(IsValidUtf8(setting.key) && IsValidUtf8(setting.value));
    }
    JobSettings job(model);
    job.ApplyQueue(settings);
    Require(job.Copies() >= 1 && job.Copies() <= 32767);
    Require(PageInForce(job).width > 0);
    CodeOfSection(job, PpdSection::Document);
    const std::string header = JobControlHeader(job, {job.Other("*A"), "", ""}, "", "PCL");
    Require(CountOf(header, std::string(kUel)) == 1);
    Require(CountOf(header, "\n@PJL ") + 1 == CountOf(header, "\n"));
  }
  return 0;
}
