#include "dialogoptions.h"

#include <unistd.h>

#include <optional>
#include <sstream>
#include <string>

#include "cmessages.h"
#include "command.h"
#include "debug.h"
#include "paths.h"

void OfferOptions(CList *errors) {
  constexpr int kPatience = 10 * 60 * 1000;  // milliseconds, for thousands of queues
  const LogScope log("OfferOptions");
  if (access(kDialogOptions, X_OK) != 0) return;
  const std::optional<std::string> without = OutputOf({kDialogOptions}, kPatience);
  // What it could not do for any queue it has said itself.
  if (!without) return;
  std::istringstream names(*without);
  for (std::string name; std::getline(names, name);) {
    G_Report(errors, "ERR_NO_DIALOG_OPTIONS", {name.c_str()});
  }
}
