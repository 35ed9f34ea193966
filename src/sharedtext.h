// SharedText: a text that never changes, so that all who say the same can hold the same copy.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_set>
#include <utility>

// As large as a pointer. Copies share the text; the last one gives it up. For one thread.
class SharedText {
 public:
  SharedText() = default;  // no text, which is not the empty one

  // A copy of `text` up to its first NUL byte. Out of memory: the object library's words.
  explicit SharedText(std::string_view text);

  SharedText(const SharedText &other) : block_(other.block_) {
    if (block_ != nullptr) ++block_->holders;
  }
  SharedText(SharedText &&other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
  SharedText &operator=(SharedText other) noexcept {
    std::swap(block_, other.block_);
    return *this;
  }
  ~SharedText();

  explicit operator bool() const { return block_ != nullptr; }

  // Lent as long as anybody holds the text; null when there is none.
  const char *Get() const {
    return block_ == nullptr ? nullptr : reinterpret_cast<const char *>(block_ + 1);
  }

  // Empty when there is no text.
  std::string_view View() const { return block_ == nullptr ? "" : Get(); }

  // Equal byte for byte, or both without a text.
  friend bool operator==(const SharedText &a, const SharedText &b);

 private:
  // What comes before the text and its NUL.
  struct Block {
    uint32_t holders;
  };

  Block *block_ = nullptr;
};

// Hands out one copy of each text.
class TextPool {
 public:
  SharedText Get(std::string_view text);

 private:
  struct Hash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    size_t operator()(const SharedText &text) const { return (*this)(text.View()); }
  };
  struct Same {
    using is_transparent = void;
    bool operator()(const SharedText &a, const SharedText &b) const { return a == b; }
    bool operator()(std::string_view a, const SharedText &b) const { return a == b.View(); }
    bool operator()(const SharedText &a, std::string_view b) const { return a.View() == b; }
  };

  std::unordered_set<SharedText, Hash, Same> texts_;
};
