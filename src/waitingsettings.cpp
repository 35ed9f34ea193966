#include "waitingsettings.h"

#include <algorithm>
#include <vector>

#include "cstring.h"
#include "debug.h"
#include "ignoreresult.h"
#include "paths.h"
#include "requestfile.h"
#include "utils.h"

namespace {

// No name of a request: that ends in "-" and digits.
constexpr char L_Unsent[] = "unsent.";

}  // namespace

bool IsRequestOf(std::string_view text, std::string_view queue) {
  return IsRequestName(text) && text.substr(0, text.rfind('-')) == queue;
}

std::string WriteUnsentCopy(const WaitingDirectory &own, std::string_view settings) {
  return own.WriteNew(L_Unsent, settings);
}

bool HasJobCopies(const WaitingDirectory &directory) {
  const std::vector<std::string> names = directory.Names();
  return std::any_of(names.begin(), names.end(), IsRequestName);
}

void RemoveJobCopies(const WaitingDirectory &directory,
                     const std::function<bool(const std::string &request)> &has_ended) {
  const LogScope log("RemoveJobCopies");
  for (const std::string &name : directory.Names()) {
    if (IsRequestName(name) && has_ended(name)) {
      IgnoreResult(directory.Remove(name), "it is tried again at the next start");
    }
  }
}

void RemoveUnsentCopies(const WaitingDirectory &own) {
  const LogScope log("RemoveUnsentCopies");
  for (const std::string &name : own.Names()) {
    if (name.starts_with(L_Unsent)) {
      IgnoreResult(own.Remove(name), "it is tried again at the next start");
    }
  }
}

void RemoveJobCopiesOfQueue(const char *queue) {
  const LogScope log("RemoveJobCopiesOfQueue");
  const Owned<CList> names = GetFilesFromDir(kUsersDir);
  for (const CString *name : Elements<CString>(names.get())) {
    const WaitingDirectory directory = WaitingDirectory::Of(fGet_CString_Value_Function(name));
    if (!directory.IsOpen()) continue;
    RemoveJobCopies(directory,
                    [queue](const std::string &request) { return IsRequestOf(request, queue); });
  }
}
