// The settings that a job of the print tool is printed with (D-tool-5, D-tool-6).
#pragma once

#include <string>

#include "cprintqueue.h"
#include "waitingdirectory.h"

// Stores the settings of one job, before it is sent, in two places: in the user's option file of
// the queue, and in a copy that the job keeps while it waits, whatever its user prints next. From
// Store on until the object goes, no other print tool of the user's stores or sends anything.
class PrintSettings {
 public:
  PrintSettings() = default;
  // Removes the copy of a job that was not sent.
  ~PrintSettings();
  PrintSettings(const PrintSettings &) = delete;
  PrintSettings &operator=(const PrintSettings &) = delete;

  // Stores the options of the queue `name`, whose record is `queue`, for the calling user: true.
  // What cannot be stored is reported on standard error. True also then when the filter would take
  // the same settings anyway (those of G_OrgQueues_hash, under an option file of the user's that is
  // there; the copies go on the command). Else the job may not be sent: false, and `errors` says
  // what could not be stored, why, and what to do.
  [[nodiscard]] bool Store(const std::string &name, const CPrintQueue *queue, CList *errors);

  // lp has taken the job for the queue `name` and printed `output`: its copy gets the name of its
  // request. A job whose request id is not known has only the option file; that is reported on
  // standard error.
  void Sent(const std::string &name, const std::string &output);

 private:
  [[nodiscard]] bool StoreCopy(const std::string &name, const CPrintQueue *queue, CList *errors);
  [[nodiscard]] bool StoreFile(const std::string &name, const CPrintQueue *queue, CList *errors);

  WaitingDirectory own_;
  std::string unsent_;  // name of the copy in own_
};

// Removes what the calling user has in the users' directory and nobody needs any more: the copies
// of jobs that have ended, and what killed print tools left. Nothing while another print tool of
// the user's stores or sends something; no copies when the spooler does not say at once which jobs
// it has.
void TidyUsersFiles();
