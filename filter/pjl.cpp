#include "pjl.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <utility>

#include "featurecode.h"
#include "jobrules.h"
#include "pclsettings.h"
#include "settingkeys.h"
#include "textencoding.h"
#include "textscan.h"

namespace kpx::filter {

namespace {

constexpr std::string_view kPjl = "@PJL";
constexpr size_t kLongestText = 255;

std::string Upper(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return upper;
}

// Whether `line` is the command "@PJL <word>"; `rest` is then what stands behind the word.
bool IsCommand(std::string_view line, std::string_view word, std::string_view *rest) {
  const std::string upper = Upper(line);
  if (!upper.starts_with(kPjl)) return false;
  line = Trimmed(line.substr(kPjl.size()));
  if (!Upper(line).starts_with(word)) return false;
  *rest = Trimmed(line.substr(word.size()));
  return true;
}

// Takes one PJL line in; true when it enters a language.
bool TakeCommand(std::string_view line, JobControl *control) {
  std::string_view rest;
  if (IsCommand(line, "ENTER", &rest)) {
    const size_t sign = rest.find('=');
    control->language =
        sign == std::string_view::npos ? std::string() : Upper(Trimmed(rest.substr(sign + 1)));
    return true;
  }
  const bool frame = IsCommand(line, "JOB", &rest) || IsCommand(line, "EOJ", &rest);
  if (!frame && !Trimmed(line.substr(kPjl.size())).empty()) {
    control->settings += std::string(Trimmed(line)) + "\n";
  }
  return false;
}

// `text` (UTF-8) between the quotes of a PJL command.
std::string PjlText(std::string_view text, bool utf8) {
  std::string result;
  for (const char c : text) {
    const auto code = static_cast<uint8_t>(c);
    if (code < 0x20 || code == 0x7F) continue;
    const bool continuation = (code & 0xC0) == 0x80;
    if (c == '"') {
      result += '\'';
    } else if (code < 0x80 || utf8) {
      result += c;
    } else if (!continuation) {
      result += '?';
    }
  }
  return std::string(Utf8Prefix(result, kLongestText));
}

class CommandList {
 public:
  explicit CommandList(bool utf8) : utf8_(utf8) {}

  void SetText(std::string_view variable, std::string_view value) {
    if (!value.empty()) Add(variable, "\"" + PjlText(value, utf8_) + "\"");
  }
  void Add(std::string_view variable, std::string_view value) {
    text_ += "@PJL SET " + std::string(variable) + "=" + std::string(value) + "\n";
  }
  const std::string &Text() const { return text_; }

 private:
  bool utf8_;
  std::string text_;
};

// The delivery in force when it is one that takes a PIN, else null.
const PpdChoice *DeliveryWithPin(const JobSettings &settings) {
  const PpdChoice *delivery = settings.Chosen("Delivery");
  return delivery != nullptr && TakesPin(delivery->keyword) ? delivery : nullptr;
}

void AddDelivery(const JobSettings &settings, const JobIdentity &identity, CommandList *commands) {
  const std::string pin = settings.Other(kPinKey);
  // Other deliveries keep an old PIN in the settings; it must not go out with them.
  if (DeliveryWithPin(settings) != nullptr && IsPin(pin)) commands->SetText("DELIVERYPIN", pin);
  const PpdChoice *notification = settings.Chosen("EmailNotification");
  if (notification == nullptr || notification->keyword == "None") return;
  commands->SetText("EMAILADDRESS", settings.Other(kEmailAddressKey));
  commands->SetText("EMAILSUBJECT", identity.event);
  commands->SetText("EMAILMESSAGE", settings.Other(kEmailMessageKey));
}

std::string OwnCommands(const JobSettings &settings, const JobIdentity &identity,
                        bool with_copies) {
  CommandList commands(settings.Model().pjl_utf8);
  if (!settings.Model().other_maker) {
    const std::string name = settings.Other(kJobNameKey);
    const bool own = !name.empty() && name != kApplicationsJobName;
    commands.SetText("JOBNAME", own ? name : identity.title);
    commands.SetText("USERNAME", settings.UserName(identity.user));
    AddDelivery(settings, identity, &commands);
  }
  if (with_copies && settings.Copies() > 1) {
    commands.Add(CopiesVariable(settings), std::to_string(settings.Copies()));
  }
  return commands.Text();
}

std::string WithLineFeed(std::string text) {
  if (!text.empty() && !text.ends_with('\n')) text += '\n';
  return text;
}

}  // namespace

JobControl ReadJobControl(std::string_view start, bool whole) {
  JobControl control;
  size_t at = 0;
  bool seen = false;
  while (at < start.size()) {
    const std::string_view rest = start.substr(at);
    if (rest.starts_with(kUel)) {
      seen = true;
      at += kUel.size();
    } else if (rest.front() == '\004' || (seen && (rest.front() == '\r' || rest.front() == '\n'))) {
      ++at;
    } else if (seen && Upper(rest.substr(0, kPjl.size())) == kPjl) {
      const size_t end = std::min(rest.find('\n'), rest.size());
      if (end == rest.size() && !whole) break;
      at += std::min(end + 1, rest.size());
      if (!TakeCommand(rest.substr(0, end), &control)) continue;
      // A document is only one of the conventions when its first line is the first.
      while (EntersPostScript(control) && at < start.size() &&
             (start[at] == '\r' || start[at] == '\n')) {
        ++at;
      }
      break;
    } else {
      break;
    }
  }
  control.length = at;
  return control;
}

std::string JobControlHeader(const JobSettings &settings, const JobIdentity &identity,
                             const std::string &job_commands, std::string_view language) {
  const PpdModel &model = settings.Model();
  if (!model.pjl && model.jcl_begin.empty()) return {};
  std::string header = model.jcl_begin;
  if (header.empty()) header = std::string(kUel) + "@PJL JOB\n";
  header = WithLineFeed(std::move(header));
  const std::string jcl_copies = JclCopies(settings);
  if (model.pjl) {
    const bool with_copies = language != "POSTSCRIPT" && jcl_copies.empty();
    header += job_commands + OwnCommands(settings, identity, with_copies);
    if (language != "POSTSCRIPT") header += PjlCommands(settings, job_commands);
  }
  header += WithLineFeed(jcl_copies);
  for (const FeatureCode &code : CodeOfSection(settings, PpdSection::Jcl)) {
    header += WithLineFeed(code.code);
  }
  if (language == "POSTSCRIPT" && !model.jcl_to_postscript.empty()) {
    return header + WithLineFeed(model.jcl_to_postscript);
  }
  if (!model.pjl) return header;
  return header + "@PJL ENTER LANGUAGE=" + std::string(language) + "\n";
}

std::string DeliveryProblem(const JobSettings &settings) {
  constexpr char kNoWay[] = "cannot be asked for: the printer description has no ";
  const std::string unknown = settings.Other(kDeliveryKey);
  if (TakesPin(unknown)) {
    return "the delivery \"" + unknown + "\" " + kNoWay + "delivery of that name";
  }
  const PpdChoice *delivery = DeliveryWithPin(settings);
  if (delivery == nullptr) return {};
  const std::string pin = settings.Other(kPinKey);
  // As in the window, where a job may be archived without a PIN.
  if (pin.empty() && !NeedsPin(delivery->keyword)) return {};
  const std::string name = "the delivery \"" + delivery->text + "\" ";
  if (!IsPin(pin)) {
    return name +
           "needs a PIN of four digits, which is missing: set one on the page Destination of "
           "the properties, or choose another delivery";
  }
  if (settings.Model().pjl) return {};
  return name + kNoWay + "job commands (PJL) to send the PIN with";
}

bool EntersPostScript(const JobControl &control) {
  return control.language.starts_with("POSTSCRIPT");
}

JobControl PeekJobControl(JobSource *source) {
  const std::string_view start = source->Peek(JobSource::kCapacity);
  return ReadJobControl(start, start.size() < JobSource::kCapacity);
}

JobControl TakeJobControl(JobSource *source) {
  JobControl control = PeekJobControl(source);
  source->Skip(control.length);
  return control;
}

std::string JobControlTrailer(const PpdModel &model) {
  if (!model.jcl_end.empty()) return model.jcl_end;
  if (!model.pjl && model.jcl_begin.empty()) return {};
  return std::string(kUel) + "@PJL EOJ\n" + std::string(kUel);
}

}  // namespace kpx::filter
