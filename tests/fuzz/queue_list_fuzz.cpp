// Queue list: any bytes are read; what was read can be written, reads back and is then written the
// same.
#include <cmath>

#include "ccpsparams.h"
#include "fuzz_support.h"
#include "ignoreresult.h"
#include "queuelistreader.h"
#include "queuelistwriter.h"

namespace {

// A size that rounds to 0 is written as the 0 that the reader refuses.
bool HasVanishingPaper(const CHash *queues) {
  for (const auto [name, queue] : Pairs<CPrintQueue>(queues)) {
    for (const auto [paper, size] : Pairs<CCpsParams>(queue->CustomPapers.get())) {
      if (std::nearbyint(size->width) == 0 || std::nearbyint(size->length) == 0) return true;
    }
  }
  return false;
}

std::string Written(const CHash *queues) {
  int left_out = 0;
  std::string text = QueueListText(queues, &left_out);
  Require(left_out == 0);
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const Owned<CHash> queues = CreateHash();
  IgnoreResult(ReadQueueList(InputText(data, size), queues.get()),
               "what was read up to a fault counts too");
  if (HasVanishingPaper(queues.get())) return 0;
  const std::string text = Written(queues.get());
  const Owned<CHash> again = CreateHash();
  Require(!ReadQueueList(text, again.get()));
  Require(Written(again.get()) == text);
  return 0;
}
