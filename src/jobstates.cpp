#include "jobstates.h"

#include <cerrno>
#include <cstring>

#include "cmessages.h"
#include "textencoding.h"

namespace {

constexpr std::string_view L_CapturedInput = "KPXtool.stdindata.";
constexpr std::string_view L_Paused = "Paused";  // what CUPS says when nobody gave a reason
constexpr std::string_view L_Held = "; the job is held";
constexpr std::string_view L_Stops = "; the queue ";
constexpr std::string_view L_Transports[] = {"kpxnbtrans: ", "kpxbackend: "};
constexpr std::string_view L_CannotReach = "cannot reach ";
constexpr int L_LastError = EHWPOISON;
constexpr std::string_view L_UnknownStatus = "exit status of its interface script is unknown";

bool Has(std::string_view words, std::string_view part) {
  return words.find(part) != std::string_view::npos;
}

// What the transport says in the printer's name.
constexpr std::string_view L_Says = "the printer says: ";
struct Saying {
  std::string_view words;
  const char *key;
};
constexpr Saying L_Sayings[] = {
    {"out of paper", "PRINTER_PAPER_OUT"}, {"paper jam", "PRINTER_JAM"},
    {"door open", "PRINTER_DOOR_OPEN"},    {"out of toner", "PRINTER_TONER_OUT"},
    {"toner low", "PRINTER_TONER_LOW"},    {"output bin full", "PRINTER_BIN_FULL"},
    {"offline", "PRINTER_OFFLINE"},
};

// The key of what the printer has said; null when all is well again.
const char *SayingIn(std::string_view words) {
  const size_t at = words.find(L_Says);
  if (at == std::string_view::npos) return nullptr;
  words.remove_prefix(at + L_Says.size());
  for (const Saying &saying : L_Sayings) {
    if (words.starts_with(saying.words)) return saying.key;
  }
  return nullptr;
}

struct Sign {
  std::string_view part;
  Trouble kind;
};
// The first that the words have counts.
constexpr Sign L_Signs[] = {
    {"(status 76)", Trouble::InDoubt},
    {L_UnknownStatus, Trouble::InDoubt},
    {"may have printed", Trouble::InDoubt},
    {"may have been printed", Trouble::InDoubt},
    {L_Says, Trouble::SaysItself},
    {"cannot look up the name", Trouble::UnknownName},
    {"cannot reach ", Trouble::Unreachable},
    {"the printer may be busy", Trouble::Unreachable},
    {"it may be out of paper or paused", Trouble::TakesNoData},
    {"not enough space", Trouble::NoSpace},
    {"Not enough space", Trouble::NoSpace},
    {"No space left on device", Trouble::NoSpace},
    {"was not set up completely", Trouble::NotSetUp},
    {"is empty or incomplete", Trouble::NotSetUp},
    {"has no interface script", Trouble::NotSetUp},
    {"cannot run the interface script", Trouble::NotSetUp},
    {"needs a PIN of four digits", Trouble::BadPin},
    {"; the job is held", Trouble::Failed},
    {"; the queue ", Trouble::Failed},
};

// "ADDRESS port NUMBER (REASON); ..." behind the words that begin it.
void ReadUnreachable(TroubleReading *trouble) {
  const std::string &words = trouble->cause;
  const size_t start = words.find(L_CannotReach);
  if (start == std::string::npos) return;
  const size_t name = start + L_CannotReach.size();
  const size_t open = words.find(" (", name);
  if (open == std::string::npos) return;
  std::string printer = words.substr(name, open - name);
  const size_t close = words.find(");", open);
  const size_t end = close == std::string::npos ? words.rfind(')') : close;
  std::string reason = words.substr(open + 2, end == std::string::npos ? end : end - open - 2);
  trouble->printer = printer.substr(0, printer.find(" port "));
  if (reason.starts_with(trouble->printer + ": ")) reason.erase(0, trouble->printer.size() + 2);
  trouble->cause = std::move(reason);
}

const char *StateKey(JobState state) {
  switch (state) {
    case JobState::Waiting:
      return "JOB_WAITING";
    case JobState::Held:
      return "JOB_HELD";
    case JobState::Printing:
      return "JOB_PRINTING";
    case JobState::Stopped:
      return "JOB_STOPPED";
    case JobState::Cancelled:
      return "JOB_CANCELLED";
    case JobState::Failed:
      return "JOB_FAILED";
    case JobState::Printed:
      break;
  }
  return "JOB_PRINTED";
}

struct PrinterReason {
  std::string_view keyword;
  const char *key;
};
constexpr PrinterReason L_PrinterReasons[] = {
    {"media-empty", "PRINTER_PAPER_OUT"},
    {"media-needed", "PRINTER_PAPER_OUT"},
    {"media-jam", "PRINTER_JAM"},
    {"door-open", "PRINTER_DOOR_OPEN"},
    {"cover-open", "PRINTER_DOOR_OPEN"},
    {"toner-empty", "PRINTER_TONER_OUT"},
    {"toner-low", "PRINTER_TONER_LOW"},
    {"marker-supply-empty", "PRINTER_TONER_OUT"},
    {"marker-supply-low", "PRINTER_TONER_LOW"},
    {"media-low", "PRINTER_PAPER_LOW"},
    {"output-area-full", "PRINTER_BIN_FULL"},
    {"offline", "PRINTER_OFFLINE"},
    {"service-requested", "PRINTER_FAULT"},
};

void AddSentence(std::string *text, const std::string &sentence) {
  if (sentence.empty()) return;
  if (!text->empty()) *text += ' ';
  *text += sentence;
}

// The words that nothing here knows, as they are.
std::string Plain(const std::string &words) { return PlainText(words); }

}  // namespace

TroubleReading ReadTrouble(std::string_view words) {
  TroubleReading trouble;
  for (const Sign &sign : L_Signs) {
    if (!Has(words, sign.part)) continue;
    trouble.kind = sign.kind;
    break;
  }
  if (trouble.kind == Trouble::SaysItself) {
    trouble.printer_key = SayingIn(words);
    if (trouble.printer_key == nullptr) trouble.kind = Trouble::None;
  }
  for (const std::string_view end : {L_Held, L_Stops}) words = words.substr(0, words.find(end));
  for (const std::string_view transport : L_Transports) {
    if (words.starts_with(transport)) words.remove_prefix(transport.size());
  }
  trouble.cause = Plain(std::string(words));
  if (trouble.kind == Trouble::Unreachable || trouble.kind == Trouble::UnknownName) {
    ReadUnreachable(&trouble);
  }
  return trouble;
}

std::string SystemErrorInLocale(const std::string &english) {
  for (int error = 1; error <= L_LastError; ++error) {
    const char *text = strerrordesc_np(error);
    if (text != nullptr && english == text) {
      return DisplayText(std::strerror(error));  // NOLINT: a text of its own
    }
  }
  return english;
}

std::string TroubleText(const TroubleReading &trouble) {
  switch (trouble.kind) {
    case Trouble::None:
      break;
    case Trouble::Unreachable:
      return G_Message("TROUBLE_UNREACHABLE",
                       {trouble.printer, SystemErrorInLocale(trouble.cause)});
    case Trouble::UnknownName:
      return G_Message("TROUBLE_NAME", {trouble.printer});
    case Trouble::TakesNoData:
      return G_Translate("TROUBLE_NO_DATA");
    case Trouble::SaysItself:
      return G_Translate(trouble.printer_key);
    case Trouble::InDoubt:
      return G_Translate("TROUBLE_DOUBT");
    case Trouble::NoSpace:
      return G_Translate("TROUBLE_SPACE");
    case Trouble::NotSetUp:
      return G_Translate("TROUBLE_NOT_SET_UP");
    case Trouble::BadPin:
      return G_Translate("TROUBLE_PIN");
    case Trouble::Failed:
      return G_Message("TROUBLE_FAILED", {trouble.cause});
  }
  return "";
}

std::string PrinterReasonsText(std::string_view reasons) {
  std::string text;
  for (const PrinterReason &reason : L_PrinterReasons) {
    if (!Has(reasons, reason.keyword)) continue;
    const std::string sentence = G_Translate(reason.key);
    if (!Has(text, sentence)) AddSentence(&text, sentence);
  }
  return text;
}

bool MayHaveBeenPrinted(const SpoolerJob &job) {
  return (job.state == JobState::Held || job.state == JobState::Stopped) &&
         ReadTrouble(job.words).kind == Trouble::InDoubt;
}

std::string QueueStateText(const SpoolerQueue &queue) {
  switch (queue.state) {
    case QueueState::Printing:
      return G_Translate("QUEUE_PRINTING");
    case QueueState::Stopped:
      return G_Translate("QUEUE_STOPPED");
    case QueueState::Idle:
      break;
  }
  return G_Translate("QUEUE_READY");
}

std::string JobStateText(const SpoolerJob &job) {
  return G_Translate(MayHaveBeenPrinted(job) ? "JOB_DOUBT" : StateKey(job.state));
}

std::string JobTitleText(const SpoolerJob &job) {
  return job.title.starts_with(L_CapturedInput) ? G_Translate("MSG3") : PlainText(job.title);
}

std::string JobSizeText(const SpoolerJob &job) {
  if (job.pages == 1) return G_Translate("JOB_ONE_PAGE");
  if (job.pages > 0) return G_Message("JOB_PAGES", {job.pages});
  return G_Message("JOB_KILOBYTES", {job.kilobytes});
}

std::string QueueReasonText(const SpoolerQueue &queue) {
  std::string text = PrinterReasonsText(queue.reasons);
  const TroubleReading trouble = ReadTrouble(queue.words);
  if (queue.state == QueueState::Stopped) {
    const bool has_words = !queue.words.empty() && queue.words != L_Paused;
    AddSentence(&text, trouble.kind == Trouble::None && has_words
                           ? G_Message("QUEUE_STOPPED_WORDS", {Plain(queue.words)})
                           : G_Translate("QUEUE_STOPPED_REASON"));
  }
  if (!queue.accepts) AddSentence(&text, G_Translate("QUEUE_REFUSES_REASON"));
  // What it said about a job that it is done with is that job's.
  if (queue.state != QueueState::Idle) AddSentence(&text, TroubleText(trouble));
  return text;
}

std::string QueueHindranceText(const SpoolerQueue &queue) {
  if (queue.state == QueueState::Stopped || !queue.accepts) return QueueReasonText(queue);
  if (queue.state == QueueState::Idle) return "";
  const TroubleReading trouble = ReadTrouble(queue.words);
  const bool hinders = trouble.kind == Trouble::Unreachable ||
                       trouble.kind == Trouble::UnknownName ||
                       trouble.kind == Trouble::TakesNoData || trouble.kind == Trouble::SaysItself;
  return hinders ? TroubleText(trouble) : "";
}

std::string JobReasonText(const SpoolerJob &job, const SpoolerQueue *queue) {
  const TroubleReading trouble = ReadTrouble(job.words);
  switch (job.state) {
    case JobState::Held:
      // Words without these are of the time before somebody held it.
      return Has(job.words, L_Held) ? TroubleText(trouble) : G_Translate("JOB_HELD_REASON");
    case JobState::Waiting:
      if (queue != nullptr && queue->state == QueueState::Stopped) {
        return QueueReasonText(*queue);
      }
      return TroubleText(trouble);
    case JobState::Printing:
    case JobState::Stopped:
      if (trouble.kind != Trouble::None) return TroubleText(trouble);
      return queue == nullptr ? Plain(job.words) : PrinterReasonsText(queue->reasons);
    case JobState::Failed:
      return trouble.kind == Trouble::None ? Plain(job.words) : TroubleText(trouble);
    case JobState::Cancelled:
    case JobState::Printed:
      break;
  }
  return "";
}
