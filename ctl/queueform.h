// A queue as JSON has it, in files of declared queues and in answers.
#pragma once

#include <string>
#include <vector>

#include "cprintqueue.h"
#include "jsonoutput.h"

namespace kpx::ctl {

// What a key is called outside: "PageSize" for "*PageSize".
std::string OuterKey(std::string_view key);

// The members that every queue has: printer, type, address.
struct QueueField {
  const char *name;
  Owned<CString> CPrintQueue::*member;
};
const std::vector<QueueField> &QueueFields();

// What the queue has for `key`: a field, or a setting by its outer key. Nothing when it has none.
[[nodiscard]] std::optional<std::string> QueueValue(const CPrintQueue &queue,
                                                    const std::string &key);

// The setting's value as people are shown it: a PIN is not spelt out.
std::string ShownValue(const std::string &key, const std::string &value);

// All that the queue holds. With `hide_pin` as people are shown it.
Json FormOfQueue(const CPrintQueue &queue, bool hide_pin);

}  // namespace kpx::ctl
