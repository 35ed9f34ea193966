#include "ippclient.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

constexpr int L_LongQuarters = 12;     // three seconds
constexpr int L_GiveUpQuarters = 240;  // a minute
constexpr double L_Quarter = 0.25;     // seconds
constexpr int L_ConnectMilliseconds = 3000;
constexpr size_t L_Block = 1U << 16U;  // bytes that are taken off a connection at a time

// Nobody is asked for a password: what this user may not do is refused.
const char *NoPassword(const char *, http_t *, const char *, const char *, void *) {
  return nullptr;
}

// `object` as it stands in an address.
std::string AddressPart(const std::string &object) {
  constexpr std::string_view kPlain = "/-_.+~";
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string part;
  for (const char c : object) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte < 0x80 && std::isalnum(byte) != 0) || kPlain.find(c) != std::string_view::npos) {
      part += c;
    } else {
      part += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return part;
}

std::string ValueText(const CupsLibrary &cups, ipp_attribute_t *attribute) {
  switch (cups.ippGetValueTag(attribute)) {
    case IPP_TAG_INTEGER:
    case IPP_TAG_ENUM:
      return std::to_string(cups.ippGetInteger(attribute, 0));
    case IPP_TAG_BOOLEAN:
      return cups.ippGetBoolean(attribute, 0) != 0 ? "1" : "0";
    default:
      break;
  }
  std::string text;
  for (int i = 0; i < cups.ippGetCount(attribute); ++i) {
    const char *value = cups.ippGetString(attribute, i, nullptr);
    if (value == nullptr) continue;
    if (!text.empty()) text += ' ';
    text += value;
  }
  return text;
}

// Objects of the answer are groups of that tag, one behind the other.
std::vector<IppObject> ObjectsIn(const CupsLibrary &cups, ipp_t *answer, ipp_tag_t group) {
  std::vector<IppObject> objects;
  bool open = false;
  for (ipp_attribute_t *attribute = cups.ippFirstAttribute(answer); attribute != nullptr;
       attribute = cups.ippNextAttribute(answer)) {
    const char *name = cups.ippGetName(attribute);
    if (cups.ippGetGroupTag(attribute) != group || name == nullptr) {
      open = false;
      continue;
    }
    if (!open) objects.emplace_back();
    open = true;
    objects.back().push_back({name, ValueText(cups, attribute)});
  }
  return objects;
}

std::string ErrorText(int error) {
  return std::strerror(error);  // NOLINT: a text of its own
}

IppAnswer Unreachable(const CupsLibrary &cups, const std::string &words,
                      ipp_status_t status = IPP_STATUS_ERROR_SERVICE_UNAVAILABLE) {
  return {.kind = IppAnswer::Kind::Unreachable,
          .words = words,
          .status = cups.ippErrorString(status),
          .objects = {}};
}

std::string StatusMessage(const CupsLibrary &cups, ipp_t *answer) {
  const std::vector<IppObject> said = ObjectsIn(cups, answer, IPP_TAG_OPERATION);
  const std::string words = said.empty() ? "" : TextIn(said[0], "status-message");
  return words.empty() ? cups.ippErrorString(cups.ippGetStatusCode(answer)) : words;
}

IppAnswer Judge(const CupsLibrary &cups, ipp_t *answer, ipp_tag_t group) {
  IppAnswer result;
  const ipp_status_t status = cups.ippGetStatusCode(answer);
  result.status = cups.ippErrorString(status);
  const bool good = status < IPP_STATUS_REDIRECTION_OTHER_SITE;
  // An empty list is told as something that is not there.
  const bool empty = status == IPP_STATUS_ERROR_NOT_FOUND && group != IPP_TAG_ZERO;
  if (good || empty) {
    result.kind = IppAnswer::Kind::Done;
    result.objects = ObjectsIn(cups, answer, group);
  } else {
    result.kind = status == IPP_STATUS_ERROR_SERVICE_UNAVAILABLE ? IppAnswer::Kind::Unreachable
                                                                 : IppAnswer::Kind::Refused;
    result.words = StatusMessage(cups, answer);
  }
  return result;
}

// An answer that is in memory, as libcups takes it from there.
struct Received {
  std::string data;
  size_t read = 0;
};
ssize_t ReadReceived(void *context, ipp_uchar_t *buffer, size_t size) {
  Received &received = *static_cast<Received *>(context);
  const size_t length = received.data.copy(reinterpret_cast<char *>(buffer), size, received.read);
  received.read += length;
  return static_cast<ssize_t>(length);
}

}  // namespace

IppRequest::IppRequest(const CupsLibrary &cups, ipp_op_t operation, const std::string &object)
    : cups_(cups), request_(cups.ippNewRequest(operation)) {
  const std::string uri = "ipp://localhost/" + AddressPart(object);
  const bool job = object.starts_with("jobs/");
  Text(IPP_TAG_OPERATION, IPP_TAG_URI, job ? "job-uri" : "printer-uri", uri);
  const char *user = cups.cupsUser();
  Text(IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", user == nullptr ? "" : user);
}

IppRequest::~IppRequest() {
  if (request_ != nullptr) cups_.ippDelete(request_);
}

IppRequest &IppRequest::Text(ipp_tag_t group, ipp_tag_t kind, const char *name,
                             const std::string &value) {
  cups_.ippAddString(request_, group, kind, name, nullptr, value.c_str());
  return *this;
}

IppRequest &IppRequest::Texts(ipp_tag_t group, const char *name,
                              const std::vector<const char *> &values) {
  cups_.ippAddStrings(request_, group, IPP_TAG_KEYWORD, name, static_cast<int>(values.size()),
                      nullptr, values.data());
  return *this;
}

IppRequest &IppRequest::Number(ipp_tag_t group, const char *name, int value) {
  cups_.ippAddInteger(request_, group, IPP_TAG_INTEGER, name, value);
  return *this;
}

IppRequest &IppRequest::Truth(ipp_tag_t group, const char *name, bool value) {
  cups_.ippAddBoolean(request_, group, name, value ? 1 : 0);
  return *this;
}

IppRequest &IppRequest::State(ipp_tag_t group, const char *name, int value) {
  cups_.ippAddInteger(request_, group, IPP_TAG_ENUM, name, value);
  return *this;
}

IppRequest &IppRequest::AsAdministrator() {
  resource_ = "/admin/";
  return *this;
}

std::string TextIn(const IppObject &object, const char *name) {
  for (const IppValue &value : object) {
    if (value.name == name) return value.text;
  }
  return "";
}

int NumberIn(const IppObject &object, const char *name, int otherwise) {
  const std::string text = TextIn(object, name);
  return text.empty() ? otherwise : static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
}

// Runs for each quarter of a second that nothing came.
int KeepWaiting(http_t *, void *client) { return static_cast<IppClient *>(client)->StillWaiting(); }

IppClient::IppClient(const std::atomic<bool> &stop, std::function<void()> waits_long,
                     Passwords passwords)
    : cups_(LoadCups()), stop_(stop), waits_long_(std::move(waits_long)) {
  if (cups_ == nullptr || passwords == Passwords::Asked) return;
  cups_->cupsSetPasswordCB2(NoPassword, nullptr);
}

IppClient::~IppClient() { Disconnect(); }

int IppClient::StillWaiting() {
  if (stop_) return 0;
  if (++quarters_ == L_LongQuarters) waits_long_();
  return quarters_ < L_GiveUpQuarters ? 1 : 0;
}

bool IppClient::Connect() {
  if (http_ != nullptr) return true;
  http_ = cups_->httpConnect2(cups_->cupsServer(), cups_->ippPort(), nullptr, AF_UNSPEC,
                              cups_->cupsEncryption(), 1, L_ConnectMilliseconds, nullptr);
  if (http_ == nullptr) return false;
  cups_->httpSetTimeout(http_, L_Quarter, KeepWaiting, this);
  return true;
}

void IppClient::Disconnect() {
  if (http_ != nullptr) cups_->httpClose(http_);
  http_ = nullptr;
}

// libcups itself takes an answer off the connection field by field, with two system calls each:
// those of ten thousand jobs are a million.
ipp_t *IppClient::Receive() {
  Received received;
  std::string block(L_Block, '\0');
  ssize_t length = 0;
  while ((length = cups_->httpRead2(http_, block.data(), block.size())) > 0) {
    received.data.append(block, 0, static_cast<size_t>(length));
  }
  if (length < 0) return nullptr;
  ipp_t *answer = cups_->ippNew();
  if (cups_->ippReadIO(&received, ReadReceived, 1, nullptr, answer) == IPP_STATE_DATA) {
    return answer;
  }
  cups_->ippDelete(answer);
  return nullptr;
}

ipp_t *IppClient::Send(ipp_t *request, const char *resource, IppAnswer *failure) {
  http_status_t status =
      cups_->cupsSendRequest(http_, request, resource, cups_->ippLength(request));
  while (status == HTTP_STATUS_CONTINUE) status = cups_->httpUpdate(http_);
  if (status == HTTP_STATUS_OK || status == HTTP_STATUS_ERROR) {
    cups_->ippDelete(request);
    ipp_t *answer = status == HTTP_STATUS_OK ? Receive() : nullptr;
    if (answer == nullptr) *failure = Unreachable(*cups_, ErrorText(cups_->httpError(http_)));
    return answer;
  }
  // Who asks has to say who he is, for example: libcups does that, and asks once more.
  cups_->httpFlush(http_);
  ipp_t *answer = cups_->cupsDoRequest(http_, request, resource);
  if (answer == nullptr) *failure = LastFailure();
  return answer;
}

IppAnswer IppClient::LastFailure() const {
  const char *words = cups_->cupsLastErrorString();
  return Unreachable(*cups_, words == nullptr ? "" : words, cups_->cupsLastError());
}

IppAnswer IppClient::Do(IppRequest &request, ipp_tag_t group, const std::string &file) {
  quarters_ = 0;
  if (!Connect()) return Unreachable(*cups_, ErrorText(errno));
  const char *resource = request.resource();
  if (resource == nullptr) resource = file.empty() ? "/" : "/printers/";
  IppAnswer result;
  ipp_t *answer = nullptr;
  if (file.empty()) {
    answer = Send(request.Release(), resource, &result);
  } else {
    answer = cups_->cupsDoFileRequest(http_, request.Release(), resource, file.c_str());
    result = LastFailure();
  }
  if (answer != nullptr) {
    result = Judge(*cups_, answer, group);
    cups_->ippDelete(answer);
  }
  // What the connection still brings would be taken for the answer to the next request.
  if (result.kind == IppAnswer::Kind::Unreachable) Disconnect();
  return result;
}

std::string IppClient::User() const {
  const char *user = cups_ == nullptr ? nullptr : cups_->cupsUser();
  return user == nullptr ? "" : user;
}
