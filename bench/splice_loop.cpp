// The barest way to carry a pipe to a printer: what transport-throughput measures against.
//
// Usage: splice_loop PORT <JOB
// Splices standard input, a pipe, into a connection to PORT of the loopback interface and waits for
// the other side's close. It has a pipe as large as kpxnbtrans has, and nothing else: no second
// attempt, no look at what the other side says, no word about what was taken.

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace {

constexpr int kPipeSize = 1 << 19;
constexpr std::size_t kPiece = std::size_t{1} << 20;

int Failed(const char *what) {
  std::perror(what);
  return 1;
}

}  // namespace

int main(int argc, char **argv) {
  const std::string_view text = argc == 2 ? argv[1] : "";
  std::uint16_t port = 0;
  if (std::from_chars(text.data(), text.data() + text.size(), port).ec != std::errc()) {
    std::fprintf(stderr, "usage: %s PORT\n", argv[0]);
    return 2;
  }
  const int peer = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(peer, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
    return Failed("connect");
  }
  if (fcntl(STDIN_FILENO, F_SETPIPE_SZ, kPipeSize) < 0) return Failed("pipe size");
  ssize_t count = 0;
  while ((count = splice(STDIN_FILENO, nullptr, peer, nullptr, kPiece, SPLICE_F_MOVE)) > 0) {
  }
  if (count < 0) return Failed("splice");
  shutdown(peer, SHUT_WR);
  std::array<char, 4096> words;
  while ((count = read(peer, words.data(), words.size())) > 0) {
  }
  return count == 0 ? 0 : Failed("read");
}
