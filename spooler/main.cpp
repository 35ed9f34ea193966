// The System V spooler's commands for hosts whose spooler is CUPS: one program, which does what the
// command does that it is called as.
#include <string_view>

#include "complaint.h"
#include "lpadmin.h"
#include "queuestate.h"

using namespace kpx::spooler;

namespace {

// Without directories, and without what somebody has put behind the name of a copy: "lpadmin.old".
std::string_view NameOf(std::string_view path) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  return name.substr(0, name.find('.'));
}

}  // namespace

int main(int argc, char **argv) {
  const std::string_view name = argc > 0 ? NameOf(argv[0]) : "";
  if (name == "lpadmin") return RunLpadmin(argc, argv);
  if (name == "accept") return RunAccept(argc, argv);
  if (name == "enable") return RunEnable(argc, argv);
  Say("kpxbridge", "this program goes by the names lpadmin, accept and enable");
  return kEndWrongUsage;
}
