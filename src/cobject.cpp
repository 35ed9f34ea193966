#include "cobject.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {

const char *L_CatalogueText = nullptr;
OnNoMemory L_Words = OnNoMemory::Catalogue;

void WriteAll(const char *text) {
  size_t left = std::strlen(text);
  while (left > 0) {
    const ssize_t written = write(STDERR_FILENO, text, left);
    if (written <= 0) return;
    text += written;
    left -= static_cast<size_t>(written);
  }
}

}  // namespace

void ObjectDeleter::operator()(CObject *object) const {
  if (object != nullptr) object->ops->Delete(object);
}

void AllocationFailed(OnNoMemory words) {
  const bool catalogue = words == OnNoMemory::Catalogue && L_CatalogueText != nullptr;
  WriteAll(catalogue ? L_CatalogueText : "Memory allocation error");
  WriteAll("\n");
  // Nothing is run down: destructors and exit handlers might allocate again.
  std::_Exit(3);
}

void LendAllocationFailedText(const char *text) { L_CatalogueText = text; }

void TakeBackAllocationFailedText(const char *text) {
  if (L_CatalogueText == text) L_CatalogueText = nullptr;
}

void InstallAllocationHandler() {
  std::set_new_handler([] { AllocationFailed(L_Words); });
}

AllocationWords::AllocationWords(OnNoMemory words) : before_(L_Words) { L_Words = words; }

AllocationWords::~AllocationWords() { L_Words = before_; }

int ClassIdOf(const CObject *object) { return object == nullptr ? 0 : object->ops->Class_ID(); }
