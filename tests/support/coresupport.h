// Records of the core as tests want them.
#pragma once

#include <string>
#include <vector>

#include "cmessages.h"
#include "globals.h"
#include "must.h"

inline std::vector<std::string> Texts(const CList *list) {
  std::vector<std::string> texts;
  for (const CString *text : Elements<CString>(list)) {
    const char *value = fGet_CString_Value_Function(text);
    texts.emplace_back(value == nullptr ? "(null)" : value);
  }
  return texts;
}

inline std::vector<std::string> Keys(const CHash *hash) {
  const Owned<CList> keys = fGetKeys_CHash_Function(hash);
  return Texts(keys.get());
}

inline Owned<CList> ListOf(const std::vector<std::string> &texts) {
  Owned<CList> list = CreateList();
  for (const std::string &text : texts) {
    Must(fAddTail_CList_Function(list.get(), CreateStringWithValue(text.c_str())));
  }
  return list;
}

// For its lifetime: the program's catalogue, read from `text`.
class ProgramMessages {
 public:
  explicit ProgramMessages(const std::string &text) {
    G_Messages = CreateMessages("test");
    LineReader lines(text);
    ReadMessages(G_Messages.get(), lines);
  }
  ~ProgramMessages() { G_Messages.reset(); }
  ProgramMessages(const ProgramMessages &) = delete;
  ProgramMessages &operator=(const ProgramMessages &) = delete;
};
