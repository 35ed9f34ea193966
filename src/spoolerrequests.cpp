#include "spoolerrequests.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <utility>

#include "openfile.h"

namespace {

using Texts = std::vector<const char *>;

constexpr int L_LeaseSeconds = 600;
constexpr int L_Page = 500;        // jobs; CUPS tells of no more at a time
constexpr int L_NewestPage = 100;  // numbers

const Texts L_JobAttributes = {"job-id",
                               "job-name",
                               "job-originating-user-name",
                               "job-printer-uri",
                               "job-state",
                               "job-printer-state-message",
                               "job-k-octets",
                               "job-media-sheets-completed",
                               "job-impressions-completed",
                               "time-at-creation"};

std::string LastPart(const std::string &uri) { return uri.substr(uri.rfind('/') + 1); }

std::string WithoutNone(const std::string &reasons) { return reasons == "none" ? "" : reasons; }

SpoolerQueue QueueFrom(const IppObject &object) {
  SpoolerQueue queue;
  queue.name = TextIn(object, "printer-name");
  queue.state = static_cast<QueueState>(NumberIn(object, "printer-state", 3));
  queue.accepts = NumberIn(object, "printer-is-accepting-jobs", 1) != 0;
  queue.is_default = (NumberIn(object, "printer-type") & CUPS_PRINTER_DEFAULT) != 0;
  queue.waiting = NumberIn(object, "queued-job-count");
  queue.words = TextIn(object, "printer-state-message");
  queue.reasons = WithoutNone(TextIn(object, "printer-state-reasons"));
  queue.location = TextIn(object, "printer-location");
  queue.description = TextIn(object, "printer-info");
  return queue;
}

SpoolerJob JobFrom(const IppObject &object) {
  SpoolerJob job;
  job.number = NumberIn(object, "job-id");
  job.queue = LastPart(TextIn(object, "job-printer-uri"));
  job.title = TextIn(object, "job-name");
  job.user = TextIn(object, "job-originating-user-name");
  job.state = static_cast<JobState>(NumberIn(object, "job-state", 3));
  job.words = TextIn(object, "job-printer-state-message");
  job.kilobytes = NumberIn(object, "job-k-octets");
  job.pages = std::max(NumberIn(object, "job-media-sheets-completed"),
                       NumberIn(object, "job-impressions-completed"));
  job.since = NumberIn(object, "time-at-creation");
  return job;
}

std::string JobObject(int number) { return "jobs/" + std::to_string(number); }

// The operation of an action that needs no more than its object.
ipp_op_t OperationOf(SpoolerAction action) {
  switch (action) {
    case SpoolerAction::CancelJob:
      return IPP_OP_CANCEL_JOB;
    case SpoolerAction::HoldJob:
      return IPP_OP_HOLD_JOB;
    case SpoolerAction::ReleaseJob:
      return IPP_OP_RELEASE_JOB;
    case SpoolerAction::MoveJob:
      return IPP_OP_CUPS_MOVE_JOB;
    case SpoolerAction::PrintJobAgain:
      return IPP_OP_RESTART_JOB;
    case SpoolerAction::StopQueue:
      return IPP_OP_PAUSE_PRINTER;
    case SpoolerAction::StartQueue:
      return IPP_OP_RESUME_PRINTER;
    case SpoolerAction::RefuseJobs:
      return IPP_OP_CUPS_REJECT_JOBS;
    case SpoolerAction::AcceptJobs:
      return IPP_OP_CUPS_ACCEPT_JOBS;
    case SpoolerAction::PrintDocument:
      break;
  }
  return IPP_OP_PRINT_JOB;
}

// The data as a file for as long as the request needs it.
IppAnswer SendDocument(IppClient &client, IppRequest &request, const std::string &data) {
  std::string path = "/tmp/KPXjobs.XXXXXX";
  OpenFile file(mkostemp(path.data(), O_CLOEXEC));
  const bool written = file.IsOpen() && file.Write(data) && file.Close();
  IppAnswer answer;
  if (written) {
    answer = client.Do(request, IPP_TAG_JOB, path);
  } else {
    answer.kind = IppAnswer::Kind::Refused;
    answer.words = path + ": " + std::strerror(errno);  // NOLINT: a text of its own
  }
  if (!path.ends_with("XXXXXX")) unlink(path.c_str());
  return answer;
}

// All jobs, or the user's own, by their numbers.
class JobPages {
 public:
  JobPages(IppClient &client, bool own) : client_(client), own_(own) {}

  // Appends those from the number `first` on, in order, up to `most`; false without an answer.
  [[nodiscard]] bool From(int first, int most, std::vector<SpoolerJob> *jobs,
                          const Texts &attributes = L_JobAttributes) const {
    IppRequest request(*client_.cups(), IPP_OP_GET_JOBS, "");
    request.Text(IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "which-jobs", "all");
    request.Truth(IPP_TAG_OPERATION, "my-jobs", own_);
    request.Number(IPP_TAG_OPERATION, "first-job-id", first);
    request.Number(IPP_TAG_OPERATION, "limit", most);
    request.Texts(IPP_TAG_OPERATION, "requested-attributes", attributes);
    const IppAnswer answer = client_.Do(request, IPP_TAG_JOB);
    if (answer.kind != IppAnswer::Kind::Done) return false;
    for (const IppObject &object : answer.objects) jobs->push_back(JobFrom(object));
    return true;
  }

  // From which number on the newest jobs are, `first` or a later one: at most two pages of them.
  // Nobody tells the last number, but whether there is a job from a number on costs next to
  // nothing. False without an answer.
  [[nodiscard]] bool FindNewest(int first, int *start) const {
    constexpr int kLast = std::numeric_limits<int>::max();
    int low = first;
    int width = L_NewestPage;
    bool any = true;
    while (any && low < kLast) {
      width = std::min(width, kLast - low);
      if (!IsAnyFrom(low + width, &any)) return false;
      if (any) low += std::exchange(width, std::min(width, kLast / 2) * 2);
    }
    while (width > L_NewestPage) {
      const int half = width / 2;
      if (!IsAnyFrom(low + half, &any)) return false;
      if (any) low += half;
      width = any ? width - half : half;
    }
    *start = std::max(first, low - L_NewestPage);
    return true;
  }

 private:
  [[nodiscard]] bool IsAnyFrom(int number, bool *there) const {
    std::vector<SpoolerJob> jobs;
    if (!From(number, 1, &jobs, {"job-id"})) return false;
    *there = !jobs.empty();
    return true;
  }

  IppClient &client_;
  bool own_;
};

}  // namespace

std::optional<std::vector<SpoolerQueue>> AskForQueues(IppClient &client) {
  IppRequest request(*client.cups(), IPP_OP_CUPS_GET_PRINTERS, "");
  request.Texts(IPP_TAG_OPERATION, "requested-attributes",
                {"printer-name", "printer-state", "printer-is-accepting-jobs", "queued-job-count",
                 "printer-state-message", "printer-state-reasons", "printer-location",
                 "printer-info", "printer-type"});
  const IppAnswer answer = client.Do(request, IPP_TAG_PRINTER);
  if (answer.kind != IppAnswer::Kind::Done) return std::nullopt;
  std::vector<SpoolerQueue> queues;
  for (const IppObject &object : answer.objects) queues.push_back(QueueFrom(object));
  std::sort(queues.begin(), queues.end(),
            [](const SpoolerQueue &a, const SpoolerQueue &b) { return a.name < b.name; });
  return queues;
}

bool AskForJobs(IppClient &client, bool own, const JobsTaker &take) {
  const JobPages pages(client, own);
  std::vector<SpoolerJob> oldest;
  if (!pages.From(1, L_Page, &oldest)) return false;
  if (oldest.size() < L_Page) {
    take(std::move(oldest));
    return true;
  }
  int next = oldest.back().number + 1;
  int newest = 0;
  std::vector<SpoolerJob> page;
  if (!pages.FindNewest(next, &newest) || !pages.From(newest, L_Page, &page)) return false;
  if (!take(std::move(page)) || !take(std::move(oldest))) return true;
  while (next < newest) {
    page.clear();
    if (!pages.From(next, std::min(L_Page, newest - next), &page)) return false;
    std::erase_if(page, [newest](const SpoolerJob &job) { return job.number >= newest; });
    if (page.empty()) return true;
    next = page.back().number + 1;
    if (!take(std::move(page))) return true;
  }
  return true;
}

std::optional<std::map<std::string, std::string>> AskForDevices(IppClient &client,
                                                                std::string *words) {
  IppRequest request(*client.cups(), IPP_OP_CUPS_GET_PRINTERS, "");
  request.Texts(IPP_TAG_OPERATION, "requested-attributes", {"printer-name", "device-uri"});
  const IppAnswer answer = client.Do(request, IPP_TAG_PRINTER);
  if (answer.kind != IppAnswer::Kind::Done) {
    *words = answer.words;
    return std::nullopt;
  }
  std::map<std::string, std::string> devices;
  for (const IppObject &object : answer.objects) {
    devices[TextIn(object, "printer-name")] = TextIn(object, "device-uri");
  }
  return devices;
}

bool AskForJob(IppClient &client, int number, std::vector<SpoolerJob> *found) {
  IppRequest request(*client.cups(), IPP_OP_GET_JOB_ATTRIBUTES, JobObject(number));
  request.Texts(IPP_TAG_OPERATION, "requested-attributes", L_JobAttributes);
  const IppAnswer answer = client.Do(request, IPP_TAG_JOB);
  if (answer.kind == IppAnswer::Kind::Unreachable) return false;
  for (const IppObject &object : answer.objects) found->push_back(JobFrom(object));
  return true;
}

int Subscribe(IppClient &client) {
  IppRequest request(*client.cups(), IPP_OP_CREATE_PRINTER_SUBSCRIPTIONS, "");
  request.Texts(
      IPP_TAG_SUBSCRIPTION, "notify-events",
      {"printer-added", "printer-deleted", "printer-state-changed", "printer-modified",
       "job-created", "job-completed", "job-state-changed", "job-config-changed", "job-progress"});
  request.Text(IPP_TAG_SUBSCRIPTION, IPP_TAG_KEYWORD, "notify-pull-method", "ippget");
  request.Number(IPP_TAG_SUBSCRIPTION, "notify-lease-duration", L_LeaseSeconds);
  const IppAnswer answer = client.Do(request, IPP_TAG_SUBSCRIPTION);
  if (answer.kind != IppAnswer::Kind::Done || answer.objects.empty()) return 0;
  return NumberIn(answer.objects[0], "notify-subscription-id");
}

void Unsubscribe(IppClient &client, int subscription) {
  IppRequest request(*client.cups(), IPP_OP_CANCEL_SUBSCRIPTION, "");
  request.Number(IPP_TAG_OPERATION, "notify-subscription-id", subscription);
  client.Do(request, IPP_TAG_ZERO);
}

std::optional<SpoolerEvents> AskForEvents(IppClient &client, int subscription, int first) {
  IppRequest request(*client.cups(), IPP_OP_GET_NOTIFICATIONS, "");
  request.Number(IPP_TAG_OPERATION, "notify-subscription-ids", subscription);
  request.Number(IPP_TAG_OPERATION, "notify-sequence-numbers", first);
  const IppAnswer answer = client.Do(request, IPP_TAG_EVENT_NOTIFICATION);
  if (answer.kind == IppAnswer::Kind::Unreachable) return std::nullopt;
  SpoolerEvents events;
  events.lost = answer.kind == IppAnswer::Kind::Refused;
  for (const IppObject &object : answer.objects) {
    events.any = true;
    events.last = std::max(events.last, NumberIn(object, "notify-sequence-number"));
    const int job = NumberIn(object, "notify-job-id");
    if (job != 0) events.jobs.push_back(job);
  }
  return events;
}

IppAnswer DoSpoolerTask(IppClient &client, const SpoolerTask &task) {
  const std::string object = task.job != 0 ? JobObject(task.job) : "printers/" + task.queue;
  IppRequest request(*client.cups(), OperationOf(task.action), object);
  switch (task.action) {
    case SpoolerAction::HoldJob:
      request.Text(IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "job-hold-until", "indefinite");
      break;
    case SpoolerAction::MoveJob:
      request.Text(IPP_TAG_JOB, IPP_TAG_URI, "job-printer-uri",
                   "ipp://localhost/printers/" + task.target);
      break;
    case SpoolerAction::PrintDocument:
      request.Text(IPP_TAG_OPERATION, IPP_TAG_NAME, "job-name", task.title);
      request.Text(IPP_TAG_OPERATION, IPP_TAG_MIMETYPE, "document-format",
                   "application/octet-stream");
      return SendDocument(client, request, task.target);
    default:
      break;
  }
  return client.Do(request, IPP_TAG_ZERO);
}
