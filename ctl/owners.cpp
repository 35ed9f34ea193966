#include "owners.h"

#include <sys/stat.h>

#include <cerrno>

#include "cmessages.h"
#include "jsonoutput.h"
#include "output.h"
#include "paths.h"
#include "textfile.h"

namespace kpx::ctl {

namespace {

constexpr mode_t kMode = 0644, kDirectoryMode = 0755;

std::string TextOfOwners(const Owners &owners) {
  Json json = Json::object();
  for (const auto &[state, queues] : owners) {
    if (!queues.empty()) json[state] = queues;
  }
  return JsonText(json);
}

}  // namespace

std::optional<Owners> ReadOwners(const std::string &path) {
  Owners owners;
  const std::optional<std::string> text = ReadWholeFile(path);
  if (!text && errno == ENOENT) return owners;
  const Json json = text ? Json::parse(*text, nullptr, false) : Json();
  if (!json.is_object()) {
    Complain(G_Message("ERR_UNABLE_TO_READ_FILE", {path}));
    return std::nullopt;
  }
  for (const auto &[state, queues] : json.items()) {
    for (const Json &queue : queues) {
      if (queue.is_string()) owners[state].insert(queue.get<std::string>());
    }
  }
  return owners;
}

bool WriteOwners(const Owners &owners) {
  const std::string text = TextOfOwners(owners);
  const std::optional<std::string> before = ReadWholeFile(kOwnersFile);
  if (before == text || (!before && errno == ENOENT && text == TextOfOwners({}))) return true;
  mkdir(kStatesDir, kDirectoryMode);
  if (ReplaceFileDurably(kOwnersFile, text, FileAccess{.mode = kMode})) return true;
  Complain(G_Message("ERR_UNABLE_TO_WRITE_FILE", {kOwnersFile}));
  return false;
}

std::string OtherOwner(const Owners &owners, const std::string &state, const std::string &queue) {
  for (const auto &[other, queues] : owners) {
    if (other != state && queues.contains(queue)) return other;
  }
  return "";
}

}  // namespace kpx::ctl
