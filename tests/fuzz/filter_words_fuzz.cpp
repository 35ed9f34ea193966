// The words of applications: any bytes give settings in UTF-8 that the printer knows, and code that
// keeps the frame of the job control.
#include "applicationwords.h"
#include "featurecode.h"
#include "filterjob.h"
#include "fuzz_support.h"
#include "queueppd.h"
#include "textencoding.h"
#include "textfile.h"

// What libcups forgets of a PPD file.
extern "C" const char *__lsan_default_suppressions() { return "leak:libcups\n"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static const std::string text =
      ReadWholeFile(KPX_TEST_DATA "/fuzz/corpus/filter_ppd/office.ppd").value_or("");
  static PpdError error;
  static const std::optional<PpdModel> model = ReadPpd(text, &error);
  static const QueuePpd ppd =
      MakeQueuePpd({text, "postscript", {{"*CustomPaperSize", "Flyer''400''600"}}, {}});
  Require(model.has_value());
  const std::string words(InputText(data, size));
  for (const bool color : {false, true}) {
    const std::vector<ApplicationOption> options = WordsOfApplications(words, color);
    for (const ApplicationOption &option : options) Require(!option.first.starts_with('*'));
    const ApplicationSettings made =
        SettingsOfWords(options, ppd, color ? PageWords::kNobody : PageWords::kConverter);
    for (const KeyValue &setting : made.settings) {
      Require(IsValidUtf8(setting.key) && IsValidUtf8(setting.value));
    }
    for (const std::string &warning : made.warnings) Require(IsValidUtf8(warning));
    JobSettings job(*model);
    job.ApplyWords(made);
    Require(job.Copies() >= 1 && job.Copies() <= 32767);
    Require(PageInForce(job).width > 0);
    CodeOfSection(job, PpdSection::Document);
    const std::string header = JobControlHeader(job, {"", "", ""}, "", "PCL");
    Require(CountOf(header, std::string(kUel)) <= 1);
  }
  return 0;
}
