// How long the transport waits for what. The program uses the values given here; only the time a
// printer may usually pause depends on its speed.
#pragma once

#include <algorithm>
#include <chrono>

namespace kpx::transport {

struct Limits {
  // Pause before the second attempt to reach the printer; each further one is twice as long ...
  std::chrono::milliseconds first_pause{std::chrono::seconds{1}};
  // ... up to this.
  std::chrono::milliseconds longest_pause{std::chrono::seconds{60}};
  // From the first failure on, or the first since the printer took data: once it has passed there
  // is no further attempt.
  std::chrono::milliseconds give_up{std::chrono::minutes{10}};
  // One attempt to connect to one address.
  std::chrono::milliseconds connect{std::chrono::seconds{30}};
  // A connection that breaks within this time of being made was refused by a busy printer. The part
  // of the job that the printer's system had already taken by then was most likely never looked at.
  std::chrono::milliseconds at_once{std::chrono::seconds{1}};
  // How often a job is begun anew after the printer had already taken a part of it: each time may
  // print the same first pages once more.
  int restarts = 3;

  // Without a sign of life for this long the printer counts as gone. The system asks at least every
  // two minutes (retransmission, window probe or keep-alive), so several questions go unanswered.
  std::chrono::milliseconds unanswered{std::chrono::minutes{10}};
  // A printer that answers but takes nothing (no paper, paused) is waited for this long.
  std::chrono::milliseconds stalled{std::chrono::hours{24}};
  // A pause of the printer up to this long is not worth a word.
  std::chrono::milliseconds usual_pause{std::chrono::seconds{200}};

  // Words about a long transfer come this often.
  std::chrono::milliseconds progress{std::chrono::seconds{30}};
  // The state of the connection is looked at this often while nothing happens.
  std::chrono::milliseconds tick{std::chrono::seconds{1}};
};

// Speed assumed when the printer's is not known, in pages a minute.
inline constexpr int kDefaultSpeed = 30;
// The greatest speed taken for meant, in pages a minute.
inline constexpr int kGreatestSpeed = 10000;

// The longest pause that mere printing explains: the time a printer of `speed` (pages a minute, at
// least 1) needs for the pages that it may hold in its memory, between 10 seconds and 10 minutes.
inline std::chrono::milliseconds UsualPause(int speed) {
  constexpr int kPagesInMemory = 100;
  const std::chrono::seconds needed{kPagesInMemory * 60 / speed};
  return std::clamp<std::chrono::milliseconds>(needed, std::chrono::seconds{10},
                                               std::chrono::minutes{10});
}

// Pause after failure number `failures` (1 and up): first_pause doubled each time, capped.
inline std::chrono::milliseconds PauseAfter(const Limits &limits, int failures) {
  std::chrono::milliseconds pause = limits.first_pause;
  for (int i = 1; i < failures && pause < limits.longest_pause; ++i) pause *= 2;
  return std::min(pause, limits.longest_pause);
}

}  // namespace kpx::transport
