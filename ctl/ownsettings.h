// The settings that a queue has beside the features of its printer.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "queuetypes.h"

namespace kpx::ctl {

enum class OwnKind { Choice, Font, FontSize, JobText, Pin, Email };

struct OwnSetting {
  const char *key;  // as queues hold it: "*Nup"
  OwnKind kind;
  std::vector<const char *> choices;  // of a Choice
  const char *usual;                  // what a queue without it has; empty: nothing
};

const std::vector<OwnSetting> &OwnSettings();

// The row of the key; null when it is not one of them.
const OwnSetting *FindOwnSetting(std::string_view key);

// The same for a queue of the type on the current printer: an option of that name of the printer's
// own counts where the windows do not offer ours.
const OwnSetting *FindOwnSetting(const QueueType &type, std::string_view key);

// Whether the windows offer the setting for queues of the type.
[[nodiscard]] bool HasOwnSetting(const QueueType &type, const OwnSetting &setting);

}  // namespace kpx::ctl
