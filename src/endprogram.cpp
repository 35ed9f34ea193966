#include "endprogram.h"

#include <cstdlib>

namespace {

void (*L_BeforeEnd)() = nullptr;

}  // namespace

void SetBeforeEnd(void (*action)()) { L_BeforeEnd = action; }

void EndProgram(int status) {
  if (L_BeforeEnd != nullptr) L_BeforeEnd();
  std::exit(status);
}
