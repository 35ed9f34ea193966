// kpxctl: what an administrator does without windows. See kpxctl(8).
#include <clocale>
#include <cstdio>

#include "cmessages.h"
#include "cobject.h"
#include "commands.h"
#include "globals.h"
#include "language.h"

int main(int argc, char **argv) {
  std::setlocale(LC_ALL, "");
  InstallAllocationHandler();
  lng_dir = G_GetNlsDirFromLang();
  BuildMessagesPath();
  G_Messages = CreateMessages(msg_path.c_str());
  fFillFromPaf_Function(G_Messages.get());
  const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
  const kpx::ctl::Status status = kpx::ctl::RunCommandLine(words);
  // A full disk is a failure, not a short answer.
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) return kpx::ctl::kFailed;
  return status;
}
