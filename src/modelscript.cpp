#include "modelscript.h"

#include <sys/stat.h>

#include <optional>

#include "cmessages.h"
#include "debug.h"
#include "paths.h"
#include "porting.h"
#include "scriptreader.h"
#include "textfile.h"

namespace {

// The script in `directory` of the model that this one was made from.
std::optional<std::string> ModelIn(const std::string &directory, std::string_view script) {
  const std::string model = ModelOfScript(script);
  if (model.empty() || model.find('/') != std::string::npos) return std::nullopt;
  return ReadWholeFile(directory + "/" + model);
}

}  // namespace

bool HasOldModel(std::string_view script) {
  const std::optional<std::string> model = ModelIn(kSpoolModelsDir, script);
  return model && *model != ModelPartOf(script);
}

bool BeginsAsModelIn(const std::string &directory, std::string_view script) {
  const std::optional<std::string> model = ModelIn(directory, script);
  return model && *model == ModelPartOf(script);
}

int UpdateModelPart(const std::string &name, CList *errors) {
  const LogScope log("UpdateModelPart");
  const std::string path = InterfacePath(name);
  const QueueScript script = LookAtScript(name.c_str());
  const std::optional<std::string> model = ModelIn(kSpoolModelsDir, script.text);
  struct stat like = {};
  if (!model || stat(path.c_str(), &like) != 0) {
    G_Report(errors, "ERR_UNABLE_TO_READ_FILE", {path});
    return 0;
  }
  const std::string rest = script.text.substr(ModelPartOf(script.text).size());
  if (ReplaceFileDurably(path, *model + rest, like)) return 1;
  G_Report(errors, "ERR_UNABLE_TO_WRITE_FILE", {path});
  return 0;
}
