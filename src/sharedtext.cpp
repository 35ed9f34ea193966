#include "sharedtext.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "cobject.h"

SharedText::SharedText(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  void *memory = std::malloc(sizeof(Block) + text.size() + 1);
  if (memory == nullptr) AllocationFailed(OnNoMemory::ObjectLibrary);
  block_ = new (memory) Block{.holders = 1};
  char *bytes = reinterpret_cast<char *>(block_ + 1);
  std::copy(text.begin(), text.end(), bytes);
  bytes[text.size()] = '\0';
}

SharedText::~SharedText() {
  if (block_ != nullptr && --block_->holders == 0) std::free(block_);
}

bool operator==(const SharedText &a, const SharedText &b) {
  if (a.block_ == b.block_) return true;
  return a && b && std::strcmp(a.Get(), b.Get()) == 0;
}

SharedText TextPool::Get(std::string_view text) {
  const auto at = texts_.find(text);
  return at != texts_.end() ? *at : *texts_.emplace(text).first;
}
