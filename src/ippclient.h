// Speaks IPP with the print service of this host. One client belongs to one thread.
#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cupslibrary.h"
#include "spoolerstate.h"

// A request as it is put together; ended by IppClient::Do.
class IppRequest {
 public:
  // `object` is "printers/NAME" with any bytes in the name, "jobs/NUMBER", or empty for the service
  // itself.
  IppRequest(const CupsLibrary &cups, ipp_op_t operation, const std::string &object);
  ~IppRequest();
  IppRequest(const IppRequest &) = delete;
  IppRequest &operator=(const IppRequest &) = delete;

  IppRequest &Text(ipp_tag_t group, ipp_tag_t kind, const char *name, const std::string &value);
  IppRequest &Texts(ipp_tag_t group, const char *name, const std::vector<const char *> &values);
  IppRequest &Number(ipp_tag_t group, const char *name, int value);
  IppRequest &Truth(ipp_tag_t group, const char *name, bool value);
  IppRequest &State(ipp_tag_t group, const char *name, int value);
  // Asks for what only the administrators of queues may do.
  IppRequest &AsAdministrator();

  const char *resource() const { return resource_; }  // null: what its object has
  ipp_t *Release() { return std::exchange(request_, nullptr); }

 private:
  const CupsLibrary &cups_;
  ipp_t *request_;
  const char *resource_ = nullptr;
};

// One value of an answer, as text: numbers in decimal, truths as "1" and "0", several texts joined
// by blanks.
struct IppValue {
  std::string name;
  std::string text;
};
using IppObject = std::vector<IppValue>;

// The object's text and number of that name; empty and `otherwise` when it has none.
std::string TextIn(const IppObject &object, const char *name);
[[nodiscard]] int NumberIn(const IppObject &object, const char *name, int otherwise = 0);

struct IppAnswer {
  enum class Kind {
    Done,
    Refused,      // the service has said no, in `words`
    Unreachable,  // no answer: nothing is known
  } kind = Kind::Unreachable;
  std::string words;
  std::string status;              // the service's own name for it: "client-error-not-found"
  std::vector<IppObject> objects;  // printers, jobs, subscriptions or events
};

// Whether somebody at a terminal is asked for the password that the service may want.
enum class Passwords { Never, Asked };

class IppClient {
 public:
  // `stop` ends a request that waits within a quarter of a second; `waits_long` runs, once a
  // request, when that has waited for three seconds. Both outlive the client.
  IppClient(const std::atomic<bool> &stop, std::function<void()> waits_long,
            Passwords passwords = Passwords::Never);
  ~IppClient();
  IppClient(const IppClient &) = delete;
  IppClient &operator=(const IppClient &) = delete;

  // Sends the request, with the file when there is one; answers of the group `group` are read. A
  // request that waits for a minute is given up.
  IppAnswer Do(IppRequest &request, ipp_tag_t group, const std::string &file = "");

  // Whether the service takes connections.
  [[nodiscard]] bool IsThere() { return cups_ != nullptr && Connect(); }

  const CupsLibrary *cups() const { return cups_; }
  std::string User() const;

 private:
  friend int KeepWaiting(http_t *http, void *client);
  [[nodiscard]] bool Connect();
  void Disconnect();
  int StillWaiting();
  // The answer, which is the caller's; null, with the reason in `*failure`, when none came. The
  // request is taken over.
  ipp_t *Send(ipp_t *request, const char *resource, IppAnswer *failure);
  ipp_t *Receive();
  [[nodiscard]] IppAnswer LastFailure() const;

  const CupsLibrary *cups_;
  const std::atomic<bool> &stop_;
  std::function<void()> waits_long_;
  http_t *http_ = nullptr;
  int quarters_ = 0;  // of a second that the request has waited
};
