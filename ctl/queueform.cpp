#include "queueform.h"

#include <utility>

#include "ccmtparams.h"
#include "ccpsparams.h"
#include "settingkeys.h"

namespace kpx::ctl {

namespace {

constexpr char kHiddenPin[] = "****";

void AddSettings(const CHash *settings, bool hide_pin, Json &json) {
  for (const auto [key, value] : Pairs<CString>(settings)) {
    const char *text = fGet_CString_Value_Function(value);
    if (text == nullptr) continue;
    const std::string outer = OuterKey(key);
    json[outer] = hide_pin ? ShownValue(outer, text) : std::string(text);
  }
}

Json PapersOf(const CPrintQueue &queue) {
  Json papers = Json::object();
  for (const auto [name, size] : Pairs<CCpsParams>(queue.CustomPapers.get())) {
    papers[name] = {{"width", fGetWidth_Function(size)}, {"length", fGetLength_Function(size)}};
  }
  return papers;
}

Json MediaOf(const CPrintQueue &queue) {
  Json media = Json::object();
  for (const auto [name, type] : Pairs<CCmtParams>(queue.CustomMedias.get())) {
    media[name] = TextOf(fGetGuiName_Function(type));
  }
  return media;
}

}  // namespace

std::string OuterKey(std::string_view key) {
  return std::string(key.starts_with('*') ? key.substr(1) : key);
}

const std::vector<QueueField> &QueueFields() {
  static const std::vector<QueueField> fields = {{"printer", &CPrintQueue::PrinterName},
                                                 {"type", &CPrintQueue::Language},
                                                 {"address", &CPrintQueue::Address}};
  return fields;
}

std::optional<std::string> QueueValue(const CPrintQueue &queue, const std::string &key) {
  for (const QueueField &field : QueueFields()) {
    if (key == field.name) return TextOf((queue.*field.member).get());
  }
  const std::string inner = key.starts_with('*') ? key : "*" + key;
  for (const CHash *settings : {queue.Options.get(), queue.InstallableFeatures.get()}) {
    if (const char *value = HashText(settings, inner.c_str())) return value;
  }
  return std::nullopt;
}

std::string ShownValue(const std::string &key, const std::string &value) {
  return key == OuterKey(kPinKey) && !value.empty() ? kHiddenPin : value;
}

Json FormOfQueue(const CPrintQueue &queue, bool hide_pin) {
  Json form = Json::object();
  for (const QueueField &field : QueueFields()) {
    form[field.name] = TextOf((queue.*field.member).get());
  }
  Json options = Json::object();
  AddSettings(queue.Options.get(), hide_pin, options);
  AddSettings(queue.InstallableFeatures.get(), hide_pin, options);
  if (!options.empty()) form["options"] = std::move(options);
  if (Json papers = PapersOf(queue); !papers.empty()) form["papers"] = std::move(papers);
  if (Json media = MediaOf(queue); !media.empty()) form["media"] = std::move(media);
  return form;
}

}  // namespace kpx::ctl
