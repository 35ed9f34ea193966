// Option file: any bytes are read; what was read reads back the same.
#include "deffile.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const Owned<CPrintQueue> queue = CreatePrintQueue();
  queue->Options = CreateHash();
  OverlayDefFile(InputText(data, size), queue->Options.get());
  const std::string text = UserDefFileText(queue.get());
  const Owned<CPrintQueue> again = CreatePrintQueue();
  again->Options = CreateHash();
  OverlayDefFile(text, again->Options.get());
  Require(UserDefFileText(again.get()) == text);
  return 0;
}
