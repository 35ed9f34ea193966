#include "sender.h"

#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <vector>

#include "printerstatus.h"

namespace kpx::transport {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// There is no event for "acknowledged": while only that is missing, it is looked for this often.
constexpr milliseconds kAcknowledgementTick{10};
constexpr char kClosedEarly[] = "closed by the printer before the job's end";
// A stop signal, the printer's words and the clock are looked at after this many bytes at the
// latest.
constexpr std::size_t kPumpPiece = std::size_t{1} << 22;
constexpr std::size_t kDrainPiece = std::size_t{1} << 16;

milliseconds Since(Clock::time_point then) {
  return std::chrono::duration_cast<milliseconds>(Clock::now() - then);
}

class Sender {
 public:
  Sender(int socket, JobInput &input, const Limits &limits, const Report &report, int stop)
      : socket_(socket),
        input_(input),
        limits_(limits),
        report_(report),
        stop_(stop),
        drained_(kDrainPiece),
        next_words_(limits.usual_pause) {}

  SendResult Run();

 private:
  enum class Waiting { kNothing, kInput, kSocket };

  void Pump();
  void StopPumping(const MoveResult &move);
  void StartClosing();
  void Await();
  milliseconds Timeout() const;
  void Drain();
  void Hear(std::string_view bytes);
  int Account(tcp_info &info);
  void Watch();
  void WatchPause(milliseconds last_answer);
  void End(SendEnd end, const std::string &reason = {});

  const int socket_;
  JobInput &input_;
  const Limits &limits_;
  const Report &report_;
  const int stop_;

  std::vector<char> drained_;
  PrinterStatus status_;
  Waiting waiting_ = Waiting::kNothing;
  bool closing_ = false;      // the input is at its end
  bool end_sent_ = false;     // our side is shut down: the printer is told of the job's end
  bool peer_closed_ = false;  // the printer's end of data has come
  std::uint64_t sent_ = 0;
  SendResult result_;
  bool ended_ = false;

  Clock::time_point last_watch_ = Clock::now();
  Clock::time_point last_progress_ = last_watch_;  // the printer last took something, or
                                                   // had nothing left to take
  Clock::time_point last_words_ = last_watch_;
  std::uint64_t last_told_ = 0;  // acknowledged bytes last put in words
  milliseconds next_words_;      // length of the pause that is worth the next word
};

void Sender::End(SendEnd end, const std::string &reason) {
  ended_ = true;
  result_.end = end;
  result_.reason = reason;
}

// Moves data until there is a reason to look up, or begins the close when there is no more.
void Sender::Pump() {
  waiting_ = Waiting::kNothing;
  for (std::size_t moved = 0; moved < kPumpPiece;) {
    const MoveResult move = input_.MoveTo(socket_);
    if (move.end != MoveEnd::kMoved) return StopPumping(move);
    sent_ += move.count;
    moved += move.count;
  }
}

void Sender::StopPumping(const MoveResult &move) {
  switch (move.end) {
    case MoveEnd::kMoved:
      break;
    case MoveEnd::kAwaitInput:
      waiting_ = Waiting::kInput;
      break;
    case MoveEnd::kAwaitSocket:
      waiting_ = Waiting::kSocket;
      break;
    case MoveEnd::kEnd:
      StartClosing();
      break;
    case MoveEnd::kInputFailed:
      End(SendEnd::kInputFailed, ErrorText(move.error));
      break;
    case MoveEnd::kBroken:
      End(SendEnd::kBroken, move.error == EPIPE ? kClosedEarly : ErrorText(move.error));
      break;
  }
}

void Sender::StartClosing() {
  closing_ = true;
  last_progress_ = Clock::now();
  end_sent_ = shutdown(socket_, SHUT_WR) == 0;
  if (!end_sent_) End(SendEnd::kBroken, ErrorText(errno));
}

milliseconds Sender::Timeout() const {
  if (closing_ && peer_closed_) return std::min(kAcknowledgementTick, limits_.tick);
  if (!closing_ && waiting_ == Waiting::kNothing) return milliseconds{0};
  return limits_.tick;
}

// Waits for whatever comes next and takes in what the printer sends, so that a talkative printer
// never waits for us while we wait for it.
void Sender::Await() {
  std::array<pollfd, 3> waited = {
      pollfd{stop_, POLLIN, 0},
      // With both directions shut poll would return at once for ever.
      pollfd{closing_ && peer_closed_ ? -1 : socket_, 0, 0},
      pollfd{waiting_ == Waiting::kInput ? input_.descriptor() : -1, POLLIN, 0},
  };
  if (!peer_closed_) waited[1].events |= POLLIN;
  if (waiting_ == Waiting::kSocket) waited[1].events |= POLLOUT;
  if (poll(waited.data(), waited.size(), static_cast<int>(Timeout().count())) < 0) {
    if (errno != EINTR) End(SendEnd::kBroken, ErrorText(errno));
    return;
  }
  if (waited[0].revents != 0) return End(SendEnd::kStopped);
  if ((waited[1].revents & (POLLIN | POLLERR | POLLHUP)) != 0) Drain();
}

void Sender::Drain() {
  if (peer_closed_) {
    // Reading only repeats the end of data now; the error itself is in the socket.
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(socket_, SOL_SOCKET, SO_ERROR, &error, &size);
    if (error != 0) End(SendEnd::kBroken, ErrorText(error));
    return;
  }
  const ssize_t count = recv(socket_, drained_.data(), drained_.size(), 0);
  if (count > 0) {
    result_.sent_back += static_cast<std::uint64_t>(count);
    Hear({drained_.data(), static_cast<std::size_t>(count)});
  } else if (count == 0) {
    // Not yet the end of the job: a printer that has nothing to say may close its direction early.
    // One that closed altogether answers the next bytes with a reset.
    peer_closed_ = true;
  } else if (errno != EAGAIN && errno != EINTR) {
    End(SendEnd::kBroken, ErrorText(errno));
  }
}

// What the printer says about itself is the best reason for a pause that comes.
void Sender::Hear(std::string_view bytes) {
  const std::string words = status_.Take(bytes);
  if (!words.empty()) report_.Say("the printer says: " + words);
}

// Compares what was sent with what is acknowledged. 0 or the error number.
int Sender::Account(tcp_info &info) {
  int queued = 0;
  socklen_t size = sizeof info;
  if (ioctl(socket_, SIOCOUTQ, &queued) != 0 ||
      getsockopt(socket_, IPPROTO_TCP, TCP_INFO, &info, &size) != 0) {
    return errno;
  }
  // The end of our data counts as one byte until it is acknowledged.
  const int missing = end_sent_ && queued > 0 ? queued - 1 : queued;
  const std::uint64_t acknowledged = sent_ - std::min(sent_, static_cast<std::uint64_t>(missing));
  if (acknowledged > result_.acknowledged || (missing == 0 && !closing_)) {
    last_progress_ = Clock::now();
    next_words_ = limits_.usual_pause;
  }
  result_.acknowledged = acknowledged;
  result_.caught_up = missing == 0;
  result_.whole_job = closing_ && missing == 0;
  return 0;
}

// Notices the end, silence and pauses.
void Sender::Watch() {
  last_watch_ = Clock::now();
  tcp_info info{};
  if (const int error = Account(info); error != 0) {
    return End(SendEnd::kBroken, ErrorText(error));
  }
  if (result_.whole_job && peer_closed_) return End(SendEnd::kAccepted);
  if (info.tcpi_state == TCP_CLOSE) return End(SendEnd::kBroken, kClosedEarly);
  const milliseconds last_answer{std::min(info.tcpi_last_ack_recv, info.tcpi_last_data_recv)};
  // TCP_USER_TIMEOUT would be simpler, but it also ends the connection to a printer that answers
  // every window probe and merely has no paper.
  if (last_answer > limits_.unanswered) {
    return End(SendEnd::kBroken, "no answer for " + DurationText(last_answer));
  }
  WatchPause(last_answer);
}

void Sender::WatchPause(milliseconds last_answer) {
  const milliseconds pause = Since(last_progress_);
  if (pause > limits_.stalled) {
    return End(SendEnd::kBroken, closing_ && result_.whole_job
                                     ? "not closed for " + DurationText(pause)
                                     : "no data taken for " + DurationText(pause));
  }
  if (pause > next_words_) {
    next_words_ = pause * 2;
    last_words_ = last_watch_;
    report_.Say(std::string(result_.whole_job ? "the printer has the whole job but has not closed "
                                                "the connection for "
                                              : "the printer has taken no data for ") +
                DurationText(pause) + " (it last answered " + DurationText(last_answer) +
                " ago); " +
                (status_.Condition().empty() ? "it may be out of paper or paused"
                                             : "the printer says: " + status_.Condition()) +
                "; waiting");
  } else if (Since(last_words_) > limits_.progress && result_.acknowledged > last_told_) {
    last_words_ = last_watch_;
    last_told_ = result_.acknowledged;
    report_.Say("the printer has taken " + std::to_string(result_.acknowledged) + " bytes so far");
  }
}

SendResult Sender::Run() {
  while (!ended_) {
    if (!closing_) Pump();
    if (!ended_) Await();
    if (!ended_ && ((closing_ && peer_closed_) || Since(last_watch_) >= limits_.tick)) Watch();
  }
  tcp_info info{};
  Account(info);
  if (!result_.whole_job) {
    constexpr linger kReset{1, 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, &kReset, sizeof kReset);
  }
  return result_;
}

}  // namespace

SendResult SendJob(int socket, JobInput &input, const Limits &limits, const Report &report,
                   int stop) {
  return Sender(socket, input, limits, report, stop).Run();
}

}  // namespace kpx::transport
