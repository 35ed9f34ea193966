#include "conversion.h"

#include "atomicfile.h"
#include "pafwriter.h"
#include "ppdadaptor.h"

std::string ConvertPpd(const std::string &ppd_path, const std::string &paf_path) {
  PpdError error;
  const std::optional<PpdModel> model = ReadPpdFile(ppd_path, &error);
  if (!model) return error.Text(ppd_path);
  const std::string file_name = ppd_path.substr(ppd_path.rfind('/') + 1);
  return ReplaceFile(paf_path, PafText(*model, file_name));
}
