#include "optionfiles.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <optional>

#include "listedqueue.h"
#include "requestfile.h"
#include "textencoding.h"
#include "textline.h"
#include "utils.h"

namespace kpx::filter {

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

OptionFile Failed(const std::string &reason) {
  return {.settings = {}, .warning = {}, .error = reason};
}

OptionFile Ignored(const std::string &path, const char *reason) {
  return {.settings = {}, .warning = path + ": ignored: " + reason, .error = {}};
}

std::vector<std::string> FileNamesIn(std::string_view text) {
  std::vector<std::string> names;
  LineReader lines(text);
  while (const std::optional<std::string> line = lines.Next()) {
    if (line->starts_with(kFileNameLine)) names.push_back(line->substr(kFileNameLine.size()));
  }
  return names;
}

OptionFile Read(std::string_view text) {
  return {.settings = KeyValuesOf(text),
          .warning = {},
          .error = {},
          .counts = true,
          .file_names = FileNamesIn(text)};
}

enum class Kind { File, Directory };

bool IsKind(mode_t mode, Kind kind) { return kind == Kind::File ? S_ISREG(mode) : S_ISDIR(mode); }

const char *WrongKind(Kind kind) {
  return kind == Kind::File ? "it is not a regular file" : "it is not a directory";
}

bool BelongsTo(const struct stat &status, const std::string &login) {
  if (status.st_uid == 0) return true;
  const passwd *entry = getpwnam(login.c_str());
  return entry != nullptr && entry->pw_uid == status.st_uid;
}

// Why what has this status is not the file or directory of `login`; null when it is.
const char *WhyNot(const struct stat &status, const std::string &login, Kind kind) {
  if (S_ISLNK(status.st_mode)) return "it is a symbolic link";
  if (!IsKind(status.st_mode, kind)) return WrongKind(kind);
  return BelongsTo(status, login) ? nullptr : "it belongs to another user";
}

// Where a user's file or directory lies.
struct Place {
  std::string path;  // the whole, for messages
  int directory;     // what `name` is relative to
  std::string name;
};

// What a user's file or directory that does not open with `error` means. Anybody may put a file
// where it would lie: only one that is the user's, or root's, may stop the job.
OptionFile NotOpened(const Place &place, const std::string &login, Kind kind, int error) {
  if (error == ENOENT) return {};
  struct stat status {};
  const bool known =
      fstatat(place.directory, place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
  if (!known && (errno == ENOENT || errno == ENOTDIR)) return {};
  const char *reason = known ? WhyNot(status, login, kind) : nullptr;
  return reason == nullptr ? Failed(place.path + ": " + std::strerror(error))
                           : Ignored(place.path, reason);
}

// A descriptor on what is the file or directory of `login`, opened without following a link; -1
// when there is none, and `result` says what that means.
[[nodiscard]] int OpenOwn(const Place &place, const std::string &login, Kind kind,
                          OptionFile *result) {
  // Of a directory no more than that its files can be opened.
  const int how = kind == Kind::Directory ? O_PATH | O_DIRECTORY : O_RDONLY | O_NONBLOCK;
  const int opened = openat(place.directory, place.name.c_str(), how | O_NOFOLLOW | O_CLOEXEC);
  if (opened < 0) {
    *result = NotOpened(place, login, kind, errno);
    return opened;
  }
  struct stat status {};
  const char *reason =
      fstat(opened, &status) == 0 ? WhyNot(status, login, kind) : std::strerror(errno);
  if (reason == nullptr) return opened;
  close(opened);
  *result = Ignored(place.path, reason);
  return -1;
}

OptionFile ReadOwn(const Place &place, const std::string &login) {
  OptionFile result;
  const int file = OpenOwn(place, login, Kind::File, &result);
  if (file < 0) return result;
  const auto text = ReadAndClose(file);
  return text ? Read(*text) : Failed(place.path + ": " + std::strerror(errno));
}

// Waits, for two seconds at most, as long as a print tool of the user's sends a job: a moment after
// the spooler has it, the settings of the request get their name.
void AwaitSender(int directory) {
  constexpr int kLooks = 100;
  constexpr timespec kPause = {.tv_sec = 0, .tv_nsec = 20'000'000};
  const int own = openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (own < 0) return;
  for (int i = 0; i < kLooks && flock(own, LOCK_SH | LOCK_NB) != 0; ++i) {
    if (errno != EWOULDBLOCK && errno != EINTR) break;  // a file system without locks
    nanosleep(&kPause, nullptr);
  }
  close(own);
}

// The spooler shortens "*key=True" to "*key" and "*key=False" to "no*key".
void SpellOut(std::string *word) {
  if (word->find('=') != std::string::npos) return;
  if (word->starts_with("no*") && word->size() > 3) {
    *word = word->substr(2) + "=False";
  } else if (word->starts_with('*') && word->size() > 1) {
    *word += "=True";
  }
}

}  // namespace

std::vector<KeyValue> ParseOptionWords(std::string_view options) {
  std::vector<KeyValue> settings;
  while (std::optional<std::string> word = TakeWord(&options)) {
    if (word->ends_with(',')) word->pop_back();
    SpellOut(&*word);
    if (!word->starts_with('*')) continue;
    if (auto setting = KeyValueOf(DecodeLine(*word))) settings.push_back(std::move(*setting));
  }
  return settings;
}

std::string UserOptionFile(const std::string &queue_file, std::string_view user) {
  const std::string login = LoginName(user);
  const std::string name = queue_file.substr(queue_file.rfind('/') + 1);
  if (login.empty() || name.empty() || login.find('/') != std::string::npos) return {};
  return UsersDirectoryBeside(queue_file) + "/" + UserDefFileName(login, name);
}

OptionFile ReadQueueOptions(const std::string &path, bool has_options) {
  constexpr char kAdvice[] = ": save the queues in KPXadmin, which writes it again";
  const std::string file = "the queue's option file " + path;
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const auto text = fd < 0 ? std::nullopt : ReadAndClose(fd);
  if (!text && errno == ENOENT) return Failed(file + " is missing" + kAdvice);
  if (!text) return Failed(file + ": " + std::strerror(errno));
  OptionFile result = Read(*text);
  if (result.settings.empty() && has_options && !IsListedWithoutSettings(path)) {
    return Failed(file + " is empty" + kAdvice);
  }
  return result;
}

OptionFile ReadUserOptions(const std::string &path, std::string_view user) {
  return ReadOwn({path, AT_FDCWD, path}, LoginName(user));
}

OptionFile ReadRequestOptions(const std::string &queue_file, std::string_view user,
                              std::string_view request) {
  if (request.empty()) return {};
  if (!IsRequestName(request)) {
    return Ignored(kRequestVariable, "it does not name a request");
  }
  const std::string login = LoginName(user);
  const std::string path = RequestDirectory(UsersDirectoryBeside(queue_file), login);
  if (path.empty()) return {};
  OptionFile result;
  const int directory = OpenOwn({path, AT_FDCWD, path}, login, Kind::Directory, &result);
  if (directory < 0) return result;
  const std::string name(request);
  const Place place = {path + "/" + name, directory, name};
  result = ReadOwn(place, login);
  if (!result.counts && result.error.empty() && result.warning.empty()) {
    AwaitSender(directory);
    result = ReadOwn(place, login);
  }
  close(directory);
  return result;
}

std::string NameOfInput(std::string_view files, const std::vector<std::string> &names) {
  struct stat input {};
  if (names.empty() || fstat(STDIN_FILENO, &input) != 0) return {};
  size_t place = names.size();  // of standard input
  size_t count = 0;
  LineReader lines(files, LineReader::Form::Bytes);
  for (; const std::optional<std::string> path = lines.Next(); ++count) {
    struct stat file {};
    const bool is_input = stat(path->c_str(), &file) == 0 && file.st_dev == input.st_dev &&
                          file.st_ino == input.st_ino;
    if (is_input && place == names.size()) place = count;
  }
  return count == names.size() && place < count ? names[place] : std::string();
}

}  // namespace kpx::filter
