#include "completion.h"

#include <algorithm>
#include <set>
#include <sstream>

#include "addedmodels.h"
#include "addqueue.h"
#include "cmessages.h"
#include "cprinter.h"
#include "globals.h"
#include "hostcheck.h"
#include "jobrows.h"
#include "optionform.h"
#include "output.h"
#include "presetfile.h"
#include "properties.h"
#include "queueform.h"
#include "queuetypes.h"
#include "savedstates.h"
#include "selection.h"
#include "session.h"
#include "synopsis.h"
#include "usersfiles.h"

namespace kpx::ctl {

namespace {

constexpr char kFiles[] = "/";

struct Offer {
  std::string word, text = {};
};
using Offers = std::vector<Offer>;

// The call so far: what stands before the word that is being typed, and that word.
struct Typed {
  const Command *command;
  std::string current;
  std::vector<std::string> words = {};  // that are not options
  std::map<std::string, std::string, std::less<>> options = {};
  std::string open_option = {};  // the option whose value is being typed
  bool only_words = false;       // behind "--"
};

bool HasWord(const char *list, const std::string &word) {
  return (" " + std::string(list) + " ").find(" " + word + " ") != std::string::npos;
}

Typed TypedOf(const Command &command, std::vector<std::string> words) {
  Typed typed{&command, words.back()};
  words.pop_back();
  for (const std::string &word : words) {
    const size_t sign = word.find('=');
    if (!typed.open_option.empty()) {
      typed.options[typed.open_option] = word;
      typed.open_option.clear();
    } else if (typed.only_words || !word.starts_with("--")) {
      typed.words.push_back(word);
    } else if (word == "--") {
      typed.only_words = true;
    } else if (sign != std::string::npos) {
      typed.options[word.substr(0, sign)] = word.substr(sign + 1);
    } else if (HasWord(command.options, word)) {
      typed.open_option = word;
    } else {
      typed.options[word];
    }
  }
  return typed;
}

Offers Queues(const Typed & /*typed*/) {
  Offers offers;
  for (const auto [name, queue] : Pairs<CPrintQueue>(G_Queues_hash)) {
    offers.push_back({name, TextOf(queue->PrinterName.get())});
  }
  return offers;
}

Offers Printers(const Typed & /*typed*/) {
  ReadPrinters();
  Offers offers;
  for (const auto [name, printer] : Pairs<CPrinter>(G_Printers_hash)) offers.push_back({name});
  return offers;
}

Offers Models(const Typed & /*typed*/) {
  Offers offers;
  for (const AddedModel &model : ReadAddedModels()) {
    offers.push_back({model.printer_name, model.id});
  }
  return offers;
}

Offers Types(const Typed & /*typed*/) {
  Offers offers;
  for (const char *type : G_QueueTypes) offers.push_back({type, G_Translate(type)});
  return offers;
}

Offers Users(const Typed & /*typed*/) {
  std::set<std::string> users;
  for (const UsersFile &file : UsersFiles().value_or(std::vector<UsersFile>())) {
    users.insert(file.user);
  }
  return {users.begin(), users.end()};
}

Offers Causes(const Typed & /*typed*/) {
  Offers offers;
  for (const char *word : DisagreementWords()) offers.push_back({word});
  return offers;
}

Offers Saves(const Typed & /*typed*/) {
  Offers offers;
  for (const SavedState &state : SavedStates()) {
    const std::string number = std::to_string(offers.size() + 1);
    offers.push_back({number, DayAndTimeText(state.time)});
  }
  return offers;
}

Offers Presets(const Typed & /*typed*/) {
  Offers offers;
  for (const Preset &preset : ReadKeptPresets().presets) offers.push_back({preset.name});
  return offers;
}

Offers Files(const Typed & /*typed*/) { return {{kFiles}}; }

// The queue whose settings are typed: the first of the call, or the new one that it adds; empty
// when there is none yet.
std::string QueueWithSettings(const Typed &typed) {
  if (typed.words.empty()) return "";
  const std::string &name = typed.words[0];
  const auto printer = typed.options.find("--printer");
  if (printer == typed.options.end()) {
    Status status = kDone;
    const auto names = ChosenQueues(Call(), {name}, &status);
    return names && !names->empty() ? names->front() : "";
  }
  const auto given = typed.options.find("--type");
  const std::string type = given == typed.options.end() ? kPostScriptType : given->second;
  const NewQueue queue{.name = name,
                       .printer = printer->second,
                       .type = {},
                       .transport = {},
                       .address = "127.0.0.1"};
  const bool is_there =
      IsQueueType(type) && HashFind(G_Queues_hash, name.c_str()) == nullptr &&
      HashPut(G_Queues_hash, name.c_str(), NewQueueRecord(queue, type.c_str())) == 1;
  return is_there ? name : "";
}

// KEY= or, once a key stands there, KEY=VALUE with its values.
Offers Settings(const Typed &typed) {
  ReadPrinters();
  std::string error;
  const std::string queue = QueueWithSettings(typed);
  if (queue.empty() || !OpenProperties(queue, &error)) return {};
  Offers offers;
  const std::string key = typed.current.substr(0, typed.current.find('='));
  const bool has_key = key != typed.current;
  if (!has_key && typed.options.find("--address") == typed.options.end()) {
    offers.push_back({"address="});
  }
  for (const QueueOption &option : OptionsOfCurrentQueue()) {
    if (!has_key) offers.push_back({option.key + "=", option.text});
    if (!has_key || option.key != key) continue;
    for (const OptionChoice &choice : option.choices) {
      offers.push_back({key + "=" + choice.value, choice.text == choice.value ? "" : choice.text});
    }
  }
  CloseProperties();
  return offers;
}

// The same of what queues have, for conditions.
Offers Conditions(const Typed &typed) {
  std::set<std::string> words;
  const std::string key = typed.current.substr(0, typed.current.find('='));
  const bool has_key = key != typed.current;
  for (const auto [name, queue] : Pairs<CPrintQueue>(G_Queues_hash)) {
    if (has_key) {
      if (const auto value = QueueValue(*queue, key)) words.insert(key + "=" + *value);
      continue;
    }
    for (const QueueField &field : QueueFields()) words.insert(std::string(field.name) + "=");
    for (const CHash *settings : {queue->Options.get(), queue->InstallableFeatures.get()}) {
      for (const auto [setting, value] : Pairs<CString>(settings)) {
        words.insert(OuterKey(setting) + "=");
      }
    }
  }
  return {words.begin(), words.end()};
}

constexpr struct {
  const char *kind;
  Offers (*offers)(const Typed &typed);
} kKinds[] = {{"QUEUE", Queues},
              {"PRINTER", Printers},
              {"MODEL", Models},
              {"TYPE", Types},
              {"USER", Users},
              {"CAUSE", Causes},
              {"NUMBER", Saves},
              {"PRESET", Presets},
              {"FILE", Files},
              {"FILE.ppd[.gz]", Files},
              {"DIRECTORY", Files},
              {"KEY=VALUE", Settings},
              {"KEY=PATTERN", Conditions}};

void Append(Offers &offers, const Offers &more) {
  offers.insert(offers.end(), more.begin(), more.end());
}

// What the kind of word can be: "QUEUE|JOB" is one of two, "raw|lpd" spells them out.
Offers OffersOfKind(const std::string &kinds, const Typed &typed) {
  Offers offers;
  std::istringstream list(kinds);
  for (std::string kind; std::getline(list, kind, '|');) {
    const auto *row = std::find_if(std::begin(kKinds), std::end(kKinds),
                                   [&](const auto &known) { return kind == known.kind; });
    if (row != std::end(kKinds)) {
      Append(offers, row->offers(typed));
    } else if (kind[0] >= 'a' && kind[0] <= 'z') {
      offers.push_back({kind});
    }
  }
  return offers;
}

// The options that are not there yet; one with a value can be given more than once.
Offers Options(const Typed &typed) {
  Offers offers;
  std::istringstream words(std::string(typed.command->switches) + " " + typed.command->options);
  for (std::string word; words >> word;) {
    const bool is_there = typed.options.find(word) != typed.options.end();
    if (!is_there || HasWord(typed.command->options, word)) offers.push_back({word});
  }
  return offers;
}

Offers OffersFor(Typed typed) {
  const Synopsis synopsis = SynopsisOf(*typed.command);
  const auto values_of = [&](const std::string &option) {
    const auto kind = synopsis.options.find(option);
    return kind == synopsis.options.end() ? Offers() : OffersOfKind(kind->second, typed);
  };
  if (!typed.open_option.empty()) return values_of(typed.open_option);
  if (!typed.only_words && typed.current.starts_with("-")) {
    const size_t sign = typed.current.find('=');
    if (sign == std::string::npos) return Options(typed);
    const std::string option = typed.current.substr(0, sign);
    typed.current.erase(0, sign + 1);
    Offers offers = values_of(option);
    for (Offer &offer : offers) {
      if (offer.word != kFiles) offer.word.insert(0, option + "=");
    }
    return offers;
  }
  Offers offers;
  for (const std::string &kind : KindsBehind(synopsis, typed.words.size())) {
    Append(offers, OffersOfKind(kind, typed));
  }
  return offers;
}

// The commands, or the verbs of a subject.
Offers CommandWords(const std::vector<std::string> &words) {
  Offers offers;
  std::set<std::string> subjects;
  for (const Command &command : Commands()) {
    const bool has_verb = *command.verb != '\0';
    const char *help = G_Translate(command.help_key);
    if (words.size() == 2 && words[0] == command.subject) {
      offers.push_back({command.verb, help});
    } else if (words.size() == 1 && subjects.insert(command.subject).second) {
      offers.push_back({command.subject, has_verb ? "" : help});
    }
  }
  if (words.size() == 1) {
    for (const char *option : {"--help", "--host", "--version"}) offers.push_back({option});
  }
  return offers;
}

// The command that the words before the last name; null without one.
const Command *CommandOf(const std::vector<std::string> &words) {
  for (const Command &command : Commands()) {
    const bool has_verb = *command.verb != '\0';
    if (words.size() < (has_verb ? 3U : 2U) || words[0] != command.subject) continue;
    if (!has_verb || words[1] == command.verb) return &command;
  }
  return nullptr;
}

}  // namespace

Status Complete(std::vector<std::string> words) {
  bool is_here = true;  // not --host: what other hosts have is not asked for
  while (words.size() > 1 && IsHostWord(words[0])) {
    is_here = false;
    const size_t count = words[0].find('=') == std::string::npos ? 2 : 1;
    if (words.size() <= count) return kDone;
    words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(count));
  }
  if (words.empty()) return kWrongCall;
  Offers offers;
  if (const Command *command = CommandOf(words); command == nullptr) {
    offers = CommandWords(words);
  } else {
    const auto first = words.begin() + (*command->verb == '\0' ? 1 : 2);
    const Typed typed = TypedOf(*command, {first, words.end()});
    if (is_here) {
      ReadQueues();
      offers = OffersFor(typed);
    } else if (typed.current.starts_with("-")) {
      offers = Options(typed);
    }
  }
  for (const Offer &offer : offers) {
    PrintLine(offer.text.empty() ? offer.word : offer.word + "\t" + offer.text);
  }
  return kDone;
}

}  // namespace kpx::ctl
