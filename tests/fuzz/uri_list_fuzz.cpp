// text/uri-list: any bytes are read; what comes out are absolute paths without NUL.
#include "filelist.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  for (const std::string &path : PathsFromUriList(InputText(data, size))) {
    Require(path.starts_with("/") && path.find('\0') == std::string::npos);
  }
  return 0;
}
