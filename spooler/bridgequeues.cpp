#include "bridgequeues.h"

#include <csignal>

namespace kpx::spooler {

namespace {

// Seconds that a job may take. The scheduler's MaxJobTime would cancel it.
constexpr int kJobPatience = 2147483647;

std::string ObjectOf(const std::string &queue) { return "printers/" + queue; }

// Nobody is told that a request takes long.
void NoWords() {}

bool IsDone(const IppAnswer &answer) { return answer.kind == IppAnswer::Kind::Done; }

IppAnswer NoLibrary() {
  return {.kind = IppAnswer::Kind::Unreachable,
          .words = "libcups is missing",
          .status = "libcups is missing",
          .objects = {}};
}

}  // namespace

BridgeQueues::BridgeQueues(Passwords passwords) : client_(stop_, NoWords, passwords) {
  std::signal(SIGPIPE, SIG_IGN);  // a scheduler that hangs up is one that does not answer
}

std::optional<QueueOwner> BridgeQueues::OwnerOf(const std::string &queue, std::string *words) {
  IppRequest request(*client_.cups(), IPP_OP_GET_PRINTER_ATTRIBUTES, ObjectOf(queue));
  request.Texts(IPP_TAG_OPERATION, "requested-attributes", {"printer-name", "device-uri"});
  const IppAnswer answer = client_.Do(request, IPP_TAG_PRINTER);
  if (!IsDone(answer)) {
    *words = answer.words;
    return std::nullopt;
  }
  if (answer.objects.empty()) return QueueOwner::None;
  const IppObject &found = answer.objects.front();
  const bool is_ours =
      TextIn(found, "printer-name") == queue && TextIn(found, "device-uri") == kBridgeDevice;
  return is_ours ? QueueOwner::Ours : QueueOwner::Other;
}

std::optional<std::vector<std::string>> BridgeQueues::OwnQueues(std::string *words) {
  const auto devices = AskForDevices(client_, words);
  if (!devices) return std::nullopt;
  std::vector<std::string> names;
  for (const auto &[name, device] : *devices) {
    if (device == kBridgeDevice) names.push_back(name);
  }
  return names;
}

IppAnswer BridgeQueues::Make(const std::string &queue, NewQueueState state) {
  IppRequest request(*client_.cups(), IPP_OP_CUPS_ADD_MODIFY_PRINTER, ObjectOf(queue));
  request.AsAdministrator()
      .Text(IPP_TAG_PRINTER, IPP_TAG_URI, "device-uri", kBridgeDevice)
      .Text(IPP_TAG_PRINTER, IPP_TAG_NAME, "printer-error-policy", "stop-printer")
      .Number(IPP_TAG_PRINTER, "job-cancel-after-default", kJobPatience);
  if (state == NewQueueState::Ready) {
    request.State(IPP_TAG_PRINTER, "printer-state", IPP_PSTATE_IDLE)
        .Truth(IPP_TAG_PRINTER, "printer-is-accepting-jobs", true);
  }
  return client_.Do(request, IPP_TAG_ZERO);
}

IppAnswer BridgeQueues::Remove(const std::string &queue) {
  return Ask(IPP_OP_CUPS_DELETE_PRINTER, queue);
}

IppAnswer BridgeQueues::Accept(const std::string &queue) {
  return Ask(IPP_OP_CUPS_ACCEPT_JOBS, queue);
}

IppAnswer BridgeQueues::Enable(const std::string &queue) {
  return Ask(IPP_OP_RESUME_PRINTER, queue);
}

IppAnswer BridgeQueues::Describe(const std::string &queue, const std::string &ppd) {
  IppRequest request(*client_.cups(), IPP_OP_CUPS_ADD_MODIFY_PRINTER, ObjectOf(queue));
  request.AsAdministrator();
  return client_.Do(request, IPP_TAG_ZERO, ppd);
}

IppAnswer BridgeQueues::Ask(ipp_op_t operation, const std::string &queue) {
  if (client_.cups() == nullptr) return NoLibrary();
  IppRequest request(*client_.cups(), operation, ObjectOf(queue));
  request.AsAdministrator();
  return client_.Do(request, IPP_TAG_ZERO);
}

}  // namespace kpx::spooler
