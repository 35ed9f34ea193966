#include "optionfiles.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>

#include "textencoding.h"
#include "textline.h"

namespace {

constexpr size_t kLargestFile = 1 << 20;

// The login name without a host in front of it.
std::string LoginName(std::string_view user) {
  const size_t host = user.rfind('!');
  return std::string(host == std::string_view::npos ? user : user.substr(host + 1));
}

// The next word of `options`, taken off it; nothing at the end.
std::optional<std::string> TakeWord(std::string_view *options) {
  constexpr std::string_view kBlank = " \t\n";
  const size_t start = options->find_first_not_of(kBlank);
  if (start == std::string_view::npos) return std::nullopt;
  std::string word;
  char quote = 0;
  size_t i = start;
  for (; i < options->size(); ++i) {
    const char c = (*options)[i];
    if (c == '\\' && i + 1 < options->size()) {
      word += (*options)[++i];
    } else if (quote != 0) {
      if (c == quote) {
        quote = 0;
      } else {
        word += c;
      }
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (kBlank.find(c) != std::string_view::npos) {
      break;
    } else {
      word += c;
    }
  }
  options->remove_prefix(i);
  return word;
}

// Everything behind an open descriptor, which is closed; nothing with errno. Files larger than any
// option file are refused with EFBIG.
std::optional<std::string> ReadAndClose(int fd) {
  std::string content;
  char buffer[4096];
  ssize_t count = 0;
  while ((count = read(fd, buffer, sizeof buffer)) > 0 && content.size() <= kLargestFile) {
    content.append(buffer, static_cast<size_t>(count));
  }
  const int error = count < 0 ? errno : content.size() > kLargestFile ? EFBIG : 0;
  close(fd);
  errno = error;
  if (error != 0) return std::nullopt;
  return content;
}

OptionFile Failure(const std::string &path, const char *reason) {
  return {{}, {}, path + ": " + reason};
}

OptionFile Ignored(const std::string &path, const char *reason) {
  return {{}, path + ": ignored: " + reason, {}};
}

bool BelongsTo(const struct stat &status, const std::string &login) {
  if (status.st_uid == 0) return true;
  const passwd *entry = getpwnam(login.c_str());
  return entry != nullptr && entry->pw_uid == status.st_uid;
}

// Why a file of this status is not the option file of `login`; null when it is.
const char *WhyNot(const struct stat &status, const std::string &login) {
  if (S_ISLNK(status.st_mode)) return "it is a symbolic link";
  if (!S_ISREG(status.st_mode)) return "it is no regular file";
  return BelongsTo(status, login) ? nullptr : "it belongs to another user";
}

// What a user's option file that does not open with `error` means. Anybody may put a file where it
// would lie: only one that is the user's, or root's, may stop the job.
OptionFile NotOpened(const std::string &path, const std::string &login, int error) {
  if (error == ENOENT || error == ENOTDIR) return {};
  struct stat status {};
  const bool known = lstat(path.c_str(), &status) == 0;
  if (!known && errno == ENOENT) return {};
  const char *reason = known ? WhyNot(status, login) : nullptr;
  return reason == nullptr ? Failure(path, std::strerror(error)) : Ignored(path, reason);
}

}  // namespace

std::vector<KeyValue> ParseOptionWords(std::string_view options) {
  std::vector<KeyValue> settings;
  while (std::optional<std::string> word = TakeWord(&options)) {
    if (!word->starts_with('*')) continue;
    if (word->ends_with(',')) word->pop_back();
    if (auto setting = KeyValueOf(DecodeLine(*word))) settings.push_back(std::move(*setting));
  }
  return settings;
}

std::string UserOptionFile(const std::string &queue_file, std::string_view user) {
  const std::string login = LoginName(user);
  const size_t slash = queue_file.rfind('/');
  const std::string directory =
      slash == std::string::npos ? std::string() : queue_file.substr(0, slash + 1);
  const std::string name = slash == std::string::npos ? queue_file : queue_file.substr(slash + 1);
  if (login.empty() || name.empty() || login.find('/') != std::string::npos) return {};
  return directory + "users/" + login + ":" + name;
}

OptionFile ReadQueueOptions(const std::string &path) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0 && errno == ENOENT) return {};
  const auto text = fd < 0 ? std::nullopt : ReadAndClose(fd);
  if (!text) return Failure(path, std::strerror(errno));
  return {KeyValuesOf(*text), {}, {}};
}

OptionFile ReadUserOptions(const std::string &path, std::string_view user) {
  const int fd = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return NotOpened(path, LoginName(user), errno);
  struct stat status {};
  const char *reason =
      fstat(fd, &status) == 0 ? WhyNot(status, LoginName(user)) : std::strerror(errno);
  if (reason != nullptr) {
    close(fd);
    return Ignored(path, reason);
  }
  const auto text = ReadAndClose(fd);
  if (!text) return Failure(path, std::strerror(errno));
  return {KeyValuesOf(*text), {}, {}};
}
