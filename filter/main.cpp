// kpxfilter: converts a PPD file into a PAF printer description, turns job files into printer data,
// and writes the PPD file that the spooler gets for a queue. Called as
//   kpxfilter --ppdfile PPD --paffile PAF
//   kpxfilter OPTIONS -JTITLE -eTITLE -LUSER --filter --type TYPE --ppdfile PPD --deffile DEF <FILE
//   kpxfilter --ppdfile PPD --deffile DEF --type TYPE --queueppd PPD-OF-QUEUE
// Exit status: 0 done; 1 it could not be done, standard error says why; 2 wrong call.
#include <clocale>
#include <cstdlib>
#include <string>
#include <vector>

#include "arguments.h"
#include "conversion.h"
#include "filtering.h"
#include "queueppdfile.h"
#include "requestfile.h"
#include "textencoding.h"

using namespace kpx::filter;

int main(int argc, char **argv) {
  std::setlocale(LC_CTYPE, "");
  FilterArguments arguments =
      ParseArguments(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
  const char *request = std::getenv(kRequestVariable);
  if (request != nullptr) arguments.request = request;
  const char *files = std::getenv(kFilesVariable);
  if (files != nullptr) arguments.files = files;
  std::string problem;
  switch (arguments.mode) {
    case FilterMode::None:
      PrintErrorLine("kpxfilter: either --filter or both of --ppdfile and --paffile are needed");
      return 2;
    case FilterMode::Convert:
      problem = ConvertPpd(arguments.ppd_file, arguments.paf_file);
      break;
    case FilterMode::QueuePpd:
      problem = WriteQueuePpd(arguments);
      break;
    case FilterMode::Filter:
      problem = FilterJob(arguments);
      break;
  }
  if (problem.empty()) return 0;
  PrintErrorLine("kpxfilter: " + problem);
  return 1;
}
