// A module whose mere loading leaves a mark: what a caller might bring along to have code of his
// own run by a program.
#include <fcntl.h>
#include <unistd.h>

[[gnu::constructor]] static void LeaveMark() {
  const int mark = open(KPX_MODULE_MARK, O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
  if (mark >= 0) close(mark);
}
