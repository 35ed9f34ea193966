#include "listedqueue.h"

#include <optional>

#include "cprintqueue.h"
#include "queuelistkeep.h"
#include "queuelistreader.h"
#include "textencoding.h"
#include "textfile.h"
#include "unfinishedsave.h"

namespace kpx::filter {

namespace {

constexpr char kList[] = "queues.paf";
constexpr std::string_view kExtension = ".def";

bool HasSettings(const CPrintQueue &queue) {
  for (const CHash *table : {queue.Options.get(), queue.InstallableFeatures.get(),
                             queue.CustomPapers.get(), queue.CustomMedias.get()}) {
    if (!HashIsEmpty(table)) return true;
  }
  return false;
}

// Whether the list at `path` has settings for the queue; nothing when it does not say.
std::optional<bool> SettingsIn(const std::string &path, const std::string &queue) {
  const std::optional<std::string> text = ReadWholeFile(path);
  if (!text || !IsWholeQueueList(*text)) return std::nullopt;
  const Owned<CHash> queues = CreateHash();
  if (ReadQueueList(*text, queues.get())) return std::nullopt;
  const auto *record = HashValue<CPrintQueue>(queues.get(), queue.c_str());
  if (record == nullptr) return std::nullopt;
  return HasSettings(*record);
}

}  // namespace

bool IsListedWithoutSettings(const std::string &queue_file) {
  if (!queue_file.ends_with(kExtension)) return false;
  const size_t name = queue_file.rfind('/') + 1;
  const std::string queue = queue_file.substr(name, queue_file.size() - name - kExtension.size());
  const std::string list = queue_file.substr(0, name) + kList;
  // A save that has not ended has the queue in what it intends.
  for (const std::string &path : {IntentionPath(list), list, KeptQueueListPath(list)}) {
    if (const std::optional<bool> has_settings = SettingsIn(path, queue)) return !*has_settings;
  }
  return false;
}

}  // namespace kpx::filter
