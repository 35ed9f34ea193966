// Queues and messages for the tests of the queue database and the spooler integration.
#pragma once

#include <string>

#include "ccmtparams.h"
#include "ccpsparams.h"
#include "coresupport.h"
#include "cprintqueue.h"
#include "must.h"

// Message texts that show their key and arguments.
inline constexpr char kQueueMessages[] =
    "#AllocMemoryError\nno memory\n"
    "#ERR_UNEXPECTED2\nunexpected2 <%s>\n"
    "#ERR_UNABLE_TO_WRITE_FILE\nwrite <%s>\n"
    "#ERR_UNABLE_TO_READ_FILE\nread <%s>\n"
    "#ERR_UNABLE_TO_READ_DIR\ndir <%s>\n"
    "#ERR_FILE_CORRUPTED\ncorrupted <%s> <%s>\n"
    "#ERR_CMD_FOR_QUEUE\ncommand <%s> <%s>\n"
    "#ERR_ADDRESS_NOT_CHANGED\naddress <%s>\n"
    "#ERR_QUEUE_NAME\nname <%s>\n"
    "#ERR_REMOVE\nremove <%s>\n"
    "#ERR_SETTINGS_LOST\nlost <%s> <%s>\n"
    "#ERR_SETTINGS_FOREIGN\nforeign <%s> <%s>\n"
    "#ERR_SETTINGS_IN_THE_WAY\nin the way <%s>\n"
    "#ERR_SETTINGS_REASON\nreason <%s>\n"
    "#WARN_SAVE_UNFINISHED\nunfinished\n"
    "#WARN_SAVE_UNKNOWN\nunknown <%s>\n"
    "#WARN_QUEUE_FOUND\nfound <%s>\n"
    "#WARN_QUEUES_FOUND\nfound <%d> <%s>\n"
    "#WARN_QUEUE_INCOMPLETE\nincomplete <%s>\n"
    "#WARN_QUEUES_INCOMPLETE\nincomplete <%d> <%s>\n"
    "#WARN_QUEUE_UNKNOWN\nunknown <%s> <%s>\n"
    "#WARN_QUEUES_UNKNOWN\nunknown <%d> <%s>\n"
    "#WARN_QUEUE_SCRIPT_CHANGED\nchanged <%s>\n"
    "#WARN_QUEUES_SCRIPT_CHANGED\nchanged <%d> <%s>\n"
    "#WARN_SETTINGS_SHARED\nshared <%s>\n";

inline Owned<CString> Text(const std::string &text) { return CreateStringWithValue(text.c_str()); }

inline std::string TextOrNull(const CString *text) {
  const char *value = fGet_CString_Value_Function(text);
  return value == nullptr ? "(null)" : value;
}

struct QueueValues {
  std::string name = "lp1";
  std::string printer = "Vek Norvel 4110ES";
  std::string language = "postscript";
  std::string address = "10.0.0.1";
};

// A complete queue without any option, custom paper or custom media.
inline Owned<CPrintQueue> MakeQueue(const QueueValues &values = {}) {
  Owned<CPrintQueue> queue = CreatePrintQueue();
  queue->Options = CreateHash();
  queue->CustomPapers = CreateHash();
  queue->CustomMedias = CreateHash();
  queue->InstallableFeatures = CreateHash();
  queue->PpdFile = Text("vek41101.ppd");
  queue->DefFile = Text(values.name + ".def");
  queue->PrinterName = Text(values.printer);
  queue->Language = Text(values.language);
  queue->Address = Text(values.address);
  queue->AddressType = Text("tcpip");
  queue->PrintingSystem = Text("SystemV");
  return queue;
}

inline void PutPaper(CPrintQueue *queue, const char *name, double width, double length) {
  Must(HashPut(queue->CustomPapers.get(), name, CreateCpsParams(width, length)));
}

inline void PutMedia(CPrintQueue *queue, const char *name, const char *gui_name) {
  Must(HashPut(queue->CustomMedias.get(), name, CreateCmtParams(Text(gui_name))));
}

// A queue with something in each of its tables.
inline Owned<CPrintQueue> MakeFullQueue(const QueueValues &values = {}) {
  Owned<CPrintQueue> queue = MakeQueue(values);
  Must(HashPutText(queue->Options.get(), "*Duplex", "DuplexNoTumble"));
  Must(HashPutText(queue->Options.get(), "*PageSize", "A4"));
  Must(HashPutText(queue->InstallableFeatures.get(), "*OptionHCF", "True"));
  PutPaper(queue.get(), "Ticket", 209.6, 400.4);
  PutMedia(queue.get(), "Gloss", "Glossy paper");
  return queue;
}
