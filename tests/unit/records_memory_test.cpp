// What the records of printer descriptions and queues say when memory runs out. A program of its
// own, because the linker puts __wrap_malloc in the place of the allocation that records use.
#include <gtest/gtest.h>

#include <cstdlib>

#include "ccmtparams.h"
#include "cconstrain.h"
#include "ccpsparams.h"
#include "cfeature.h"
#include "childprocess.h"
#include "cprinter.h"
#include "cprinters.h"
#include "cprintqueues.h"
#include "ignoreresult.h"

namespace {
bool is_memory_gone = false;
}

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" void *__real_malloc(std::size_t size);
extern "C" void *__wrap_malloc(std::size_t size) {
  return is_memory_gone ? nullptr : __real_malloc(size);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

TEST(OutOfMemory, EveryRecordEndsTheProcessWithTheCataloguesWords) {
  const struct {
    const char *name;
    void (*create)();
  } rows[] = {
      {"CFeature", [] { IgnoreResult(CreateFeature(), "ends the process"); }},
      {"CConstrain", [] { IgnoreResult(CreateConstrain(), "ends the process"); }},
      {"CCpsParams", [] { IgnoreResult(CreateCpsParams(1, 2), "ends the process"); }},
      {"CCmtParams", [] { IgnoreResult(CreateCmtParams(nullptr), "ends the process"); }},
      {"CPrinter", [] { IgnoreResult(CreatePrinter("vek.paf"), "ends the process"); }},
      {"CPrinters", [] { IgnoreResult(CreatePrinters("ppds", "pafs"), "ends the process"); }},
      {"CPrintQueue", [] { IgnoreResult(CreatePrintQueue(), "ends the process"); }},
      {"CPrintQueues", [] { IgnoreResult(CreatePrintQueues("queues.paf"), "ends the process"); }},
  };
  for (const auto &row : rows) {
    const ChildResult result = RunInChild([&row] {
      LendAllocationFailedText("no memory");
      is_memory_gone = true;
      row.create();
    });
    EXPECT_EQ(result.status, 3) << row.name;
    EXPECT_EQ(result.errors, "no memory\n") << row.name;
  }
}

}  // namespace
