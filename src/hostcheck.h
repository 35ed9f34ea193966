// Where the parts of this host's queues disagree: the list, option files, interface scripts, the
// spooler's entries and CUPS, as after files were copied by hand, restored from a backup or edited.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class Disagreement {
  SaveUnfinished,    // an interrupted save is to be finished
  ListLost,          // the list breaks off; the kept copy counts
  NotInList,         // the spooler has a queue of ours that the list lacks
  NotInSpooler,      // the list has a queue that the spooler lacks
  Incomplete,        // the spooler has a part of it
  Unknown,           // the same of a queue that the list lacks, and that cannot be understood
  ScriptUnreadable,  // what is in the place of the script cannot be read
  ScriptForeign,     // the script has no lines of KPXadmin
  ScriptDiffers,     // those lines say something else than the list
  ScriptOld,         // its beginning is not the installed model's
  ScriptAccess,      // the spooler may not run it
  AddressDiffers,    // it has another address than the list
  OptionsMissing,    // of the queue's own option file
  OptionsDiffer,
  OptionsLeft,        // an option file without a queue
  DeviceDiffers,      // CUPS sends the jobs elsewhere
  DescriptionMissing  // CUPS's description is missing or older than the queue
};

struct HostFault {
  Disagreement kind;
  std::string subject;  // the queue, or the file of OptionsLeft; empty when it is about all

  // Whether it is put right only when the queue is named: what somebody may have made on purpose
  // gets lost.
  [[nodiscard]] bool AsksForName() const;
};

// The word for it, for programs: "script-old".
const char *WordFor(Disagreement kind);
// The one that the word is for; nothing for another word.
[[nodiscard]] std::optional<Disagreement> DisagreementOf(std::string_view word);
// All of these words.
std::vector<const char *> DisagreementWords();

// What is wrong, in the user's language, and the command that mends it.
std::string TextOf(const HostFault &fault);
std::string MendOf(const HostFault &fault);

// All of them, those about the whole list first, then by queue; the working set stays as it is.
// Needs G_Printers_hash. When CUPS does not say which queues it has, `*words` say why, and what it
// would have to say is left out.
std::vector<HostFault> CheckHost(std::string *words);
