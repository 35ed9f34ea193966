#include "whycommand.h"

#include <algorithm>
#include <vector>

#include "jsonoutput.h"
#include "output.h"
#include "utils.h"
#include "whycheck.h"
#include "words.h"

namespace kpx::ctl {

namespace {

const char *WordFor(WhyResult result) {
  switch (result) {
    case WhyResult::Good:
      return "good";
    case WhyResult::Bad:
      return "bad";
    case WhyResult::Unknown:
      break;
  }
  return "unknown";
}

// Each step as it is found; kFailed when one is bad.
Status Why(const Call &call) {
  const char *user = GetUserName(nullptr);
  const bool json = call.Has("--json");
  Json found = Json::array();
  std::vector<WhyStep> steps;
  CheckWhy(AskForSubject(call.words[0], user == nullptr ? "" : user), [&](const WhyStep &step) {
    steps.push_back(step);
    found.push_back(
        {{"result", WordFor(step.result)}, {"text", WhyText(step)}, {"mend", WhyMend(step)}});
    if (json) return;
    PrintLine(WhyText(step));
    const std::string mend = WhyMend(step);
    if (!mend.empty()) PrintLine("    " + mend);
  });
  if (json) {
    PrintJsonText(found);
  } else {
    PrintLine(WhyConclusion(steps));
  }
  const auto is_bad = [](const WhyStep &step) { return step.result == WhyResult::Bad; };
  return std::any_of(steps.begin(), steps.end(), is_bad) ? kFailed : kDone;
}

}  // namespace

Command WhyCommand() {
  return {"why", "", "QUEUE|JOB [--json]", "CTL_HELP_WHY", "--json", "", 1, 1, false, Why};
}

}  // namespace kpx::ctl
