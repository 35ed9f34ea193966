#include "dialogoptions.h"

#include <unistd.h>

#include <algorithm>
#include <optional>
#include <sstream>
#include <string>

#include "cmessages.h"
#include "command.h"
#include "debug.h"
#include "globals.h"
#include "paths.h"

void OfferOptions(CList *errors) {
  const LogScope log("OfferOptions");
  if (access(kDialogOptions, X_OK) != 0) return;
  const size_t queues = G_Queues_hash == nullptr ? 0 : G_Queues_hash->index.size();
  const std::optional<std::string> without = OutputOf({kDialogOptions}, PatienceForOptions(queues));
  // What it could not do for any queue it has said itself.
  if (!without) return;
  std::istringstream names(*without);
  for (std::string name; std::getline(names, name);) {
    G_Report(errors, "ERR_NO_DIALOG_OPTIONS", {name.c_str()});
  }
}

int PatienceForOptions(size_t queues) {
  constexpr int kLeast = 10 * 60 * 1000;
  constexpr int kForQueue = 5 * 1000;
  constexpr size_t kMostQueues = 100000;  // beyond, it does not grow
  return kLeast + kForQueue * static_cast<int>(std::min(queues, kMostQueues));
}
