#include "job.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "input.h"
#include "sender.h"

namespace kpx::transport {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

class Carrier {
 public:
  Carrier(const Destination &destination, int input, const Limits &limits, const Report &report,
          int stop)
      : destination_(destination),
        input_(input),
        limits_(limits),
        report_(report),
        stop_(stop),
        name_(destination.address + " port " + destination.port) {}

  Outcome Run();

 private:
  // Each gives the outcome once it is known, nothing as long as there is more to try.
  std::optional<Outcome> AwaitJob();
  std::optional<Outcome> Attempt();
  std::optional<Outcome> Send(const ConnectResult &link);
  std::optional<Outcome> AfterBreak(const SendResult &sent, bool at_once);
  std::optional<Outcome> PauseAndRetry(const std::string &failure);
  [[nodiscard]] bool EndsNow();
  Outcome GiveUp(const std::string &failure) const;
  Outcome Stopped() const;
  Outcome Undone() const { return taken_ ? Outcome::kInDoubt : Outcome::kTryLater; }

  const Destination &destination_;
  JobInput input_;
  const Limits &limits_;
  const Report &report_;
  const int stop_;
  const std::string name_;

  int failures_ = 0;
  int restarts_ = 0;
  bool taken_ = false;  // the printer took the job or a part of it, in this attempt or before
  Clock::time_point first_failure_;
};

// Waits until a descriptor is readable or the time is over (negative: no limit). False when
// `stop` became readable.
[[nodiscard]] bool AwaitUnlessStopped(int stop, int descriptor, milliseconds limit) {
  const auto deadline = Clock::now() + limit;
  for (;;) {
    std::array<pollfd, 2> waited = {pollfd{stop, POLLIN, 0}, pollfd{descriptor, POLLIN, 0}};
    int timeout = -1;
    if (limit.count() >= 0) {
      const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
      timeout = static_cast<int>(std::max<milliseconds::rep>(left.count(), 0));
    }
    const int count = poll(waited.data(), waited.size(), timeout);
    if (waited[0].revents != 0) return false;
    if (count >= 0 || errno != EINTR) return true;
  }
}

std::string Bytes(std::uint64_t count) {
  return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

Outcome Carrier::GiveUp(const std::string &failure) const {
  report_.Say(failure + (taken_
                             ? "; giving up: the printer may have printed the job or a part of it"
                             : "; giving up for now; the job should stay in the queue"));
  return Undone();
}

Outcome Carrier::Stopped() const {
  report_.Say("stopped by a signal");
  return Undone();
}

std::optional<Outcome> Carrier::AwaitJob() {
  for (;;) {
    const MoveResult first = input_.Begin();
    switch (first.end) {
      case MoveEnd::kMoved:
        return std::nullopt;
      case MoveEnd::kEnd:
        report_.Say("the job is empty; nothing to send");
        return Outcome::kAccepted;
      case MoveEnd::kAwaitInput:
        if (!AwaitUnlessStopped(stop_, input_.descriptor(), milliseconds{-1})) return Stopped();
        break;
      default:
        report_.Say("the job cannot be read: " + ErrorText(first.error));
        return Outcome::kInputUnreadable;
    }
  }
}

std::optional<Outcome> Carrier::PauseAndRetry(const std::string &failure) {
  const auto now = Clock::now();
  if (failures_++ == 0) first_failure_ = now;
  const auto left = std::chrono::ceil<milliseconds>(first_failure_ + limits_.give_up - now);
  if (left.count() <= 0) {
    return GiveUp(failure + " (no success for " + DurationText(limits_.give_up) + ")");
  }
  const milliseconds pause = std::min(PauseAfter(limits_, failures_), left);
  report_.Say(failure + "; trying again in " + DurationText(pause));
  if (!AwaitUnlessStopped(stop_, -1, pause)) return Stopped();
  return std::nullopt;
}

// Whether what was sent is the whole job: its writer may be just about to close.
bool Carrier::EndsNow() {
  return AwaitUnlessStopped(stop_, input_.descriptor(), limits_.first_pause) && input_.AtEnd();
}

std::optional<Outcome> Carrier::AfterBreak(const SendResult &sent, bool at_once) {
  // Even a reset at once may come after the printing: nothing tells a printer that was too busy to
  // look at a short job from one that is done with it.
  if (sent.whole_job || (sent.acknowledged > 0 && sent.caught_up && EndsNow())) {
    return GiveUp("the printer took all " + Bytes(sent.acknowledged) +
                  " but the connection was not closed cleanly (" + sent.reason + ")");
  }
  const bool may_have_printed = sent.acknowledged > 0 && !at_once;
  // It was reached after all; how often it may take the job anew is bounded by itself.
  if (may_have_printed) failures_ = 0;
  const std::string failure = "the connection to " + name_ + " broke after " +
                              Bytes(sent.acknowledged) + " (" + sent.reason + ")";
  if (!input_.Rewind()) {
    return GiveUp(failure + "; the data has been read from a pipe and cannot be sent again");
  }
  if (may_have_printed && ++restarts_ > limits_.restarts) {
    return GiveUp(failure + ", attempt " + std::to_string(restarts_));
  }
  return PauseAndRetry(failure + "; the printer may be busy");
}

std::optional<Outcome> Carrier::Send(const ConnectResult &link) {
  report_.Say("connected to " + name_ +
              (link.peer == destination_.address ? "" : " at " + link.peer));
  const auto connected = Clock::now();
  const SendResult sent = SendJob(link.socket.get(), input_, limits_, report_, stop_);
  if (sent.acknowledged > 0) taken_ = true;
  if (sent.sent_back > 0) {
    report_.Say("the printer sent back " + Bytes(sent.sent_back) + ", which were discarded");
  }
  switch (sent.end) {
    case SendEnd::kAccepted:
      report_.Say("the printer took all " + Bytes(sent.acknowledged) +
                  " and closed the connection");
      return Outcome::kAccepted;
    case SendEnd::kInputFailed:
      report_.Say("reading the job failed after " + Bytes(sent.acknowledged) + ": " + sent.reason +
                  (taken_ ? "; the printer may have printed the job or a part of it" : ""));
      return taken_ ? Outcome::kInDoubt : Outcome::kInputUnreadable;
    case SendEnd::kStopped:
      return Stopped();
    case SendEnd::kBroken:
      break;
  }
  return AfterBreak(sent, Clock::now() - connected < limits_.at_once);
}

std::optional<Outcome> Carrier::Attempt() {
  const ConnectResult link = ConnectTo(destination_, limits_, {stop_, static_cast<int>(Undone())});
  switch (link.end) {
    case ConnectEnd::kConnected:
      return Send(link);
    case ConnectEnd::kUnreachable:
      return PauseAndRetry("cannot reach " + name_ + " (" + link.reason +
                           "); the printer may be busy or switched off");
    case ConnectEnd::kNoLookUp:
      return PauseAndRetry("cannot reach " + name_ + " (" + link.reason +
                           "); the address may be wrong, or the name service may be down");
    case ConnectEnd::kUnknownName:
      return GiveUp("cannot reach " + name_ + " (" + link.reason + ")");
    case ConnectEnd::kStopped:
      break;
  }
  return Stopped();
}

Outcome Carrier::Run() {
  std::optional<Outcome> outcome = AwaitJob();
  while (!outcome) outcome = Attempt();
  return *outcome;
}

}  // namespace

Outcome CarryJob(const Destination &destination, int input, const Limits &limits,
                 const Report &report, int stop) {
  return Carrier(destination, input, limits, report, stop).Run();
}

}  // namespace kpx::transport
