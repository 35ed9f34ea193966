#include "listedqueues.h"

#include <utility>

#include "cmessages.h"
#include "cprintqueue.h"
#include "globals.h"
#include "jobstates.h"
#include "textencoding.h"

namespace {

// True for a queue that this program was started with.
bool WasThereAtStart(const std::string &name) {
  return HashValue<CPrintQueue>(G_OrgQueues_hash, name.c_str()) != nullptr;
}

void AddLine(std::string *text, const std::string &line) {
  if (!text->empty()) *text += '\n';
  *text += line;
}

}  // namespace

bool ListedQueues::Take(SpoolerNews news) {
  contact_ = news.contact;
  if (!news.queues) return false;
  queues_.clear();
  for (SpoolerQueue &queue : *news.queues) {
    std::string name = queue.name;
    queues_[std::move(name)] = std::move(queue);
  }
  return true;
}

std::string ListedQueues::Tip(const std::string &name) const {
  const auto found = queues_.find(name);
  if (found == queues_.end()) return "";
  const SpoolerQueue &queue = found->second;
  std::string tip = G_Message("QUEUE_TIP_STATE", {QueueStateText(queue)});
  const std::string reason = QueueReasonText(queue);
  if (!reason.empty()) AddLine(&tip, reason);
  if (queue.is_default) AddLine(&tip, G_Translate("QUEUE_TIP_DEFAULT"));
  if (!queue.location.empty()) {
    AddLine(&tip, G_Message("QUEUE_TIP_LOCATION", {PlainText(queue.location)}));
  }
  // CUPS describes a queue by its name when nobody does.
  if (!queue.description.empty() && queue.description != name) {
    AddLine(&tip, G_Message("QUEUE_TIP_DESCRIPTION", {PlainText(queue.description)}));
  }
  return tip;
}

std::string ListedQueues::QuestionBeforeDeletion(const std::vector<std::string> &names) const {
  if (names.empty()) return "";
  if (names.size() > 1) {
    return G_Message("ASK_DELETE_QUEUES", {static_cast<long>(names.size())});
  }
  const std::string &name = names[0];
  if (contact_ != SpoolerContact::Answering) {
    return WasThereAtStart(name) ? G_Message("ASK_DELETE_UNKNOWN", {name}) : "";
  }
  const auto found = queues_.find(name);
  const int waiting = found == queues_.end() ? 0 : found->second.waiting;
  return waiting == 0 ? "" : G_Message("ASK_DELETE_JOBS", {name, waiting});
}
