#include "printersearch.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <utility>

#include "entryfilters.h"
#include "textencoding.h"

namespace {

constexpr size_t L_MostText = 120;  // bytes of what a printer says of itself
constexpr size_t L_MostPrinters = 500;
constexpr std::string_view L_Schemes[] = {"socket://", "lpd://", "ipp://", "ipps://"};
constexpr std::string_view L_Unknown = "Unknown";  // what backends say without a model

// Whether it can be nothing but a host name or an IP address.
bool IsAddress(std::string_view text) {
  const auto fits = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '.' || c == '-' || c == ':' ||
           c == '_';
  };
  return !text.empty() && text.size() <= size_t{kAddressLength} && text.front() != '-' &&
         std::all_of(text.begin(), text.end(), fits);
}

std::string Shown(std::string_view text) {
  const std::string plain = PlainText(text);
  const std::string cut(Utf8Prefix(plain, L_MostText));
  return cut == L_Unknown ? "" : cut;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// What stands behind a backslash, which `at` is on and moves behind: three digits are a byte in
// decimal, as avahi-browse writes it, and anything else is itself.
char Escaped(std::string_view line, size_t *at) {
  const std::string_view digits = line.substr(*at + 1, 3);
  if (digits.size() == 3 && std::all_of(digits.begin(), digits.end(), IsDigit)) {
    *at += 4;
    return static_cast<char>((digits[0] - '0') * 100 + (digits[1] - '0') * 10 + digits[2] - '0');
  }
  *at += 2;
  return digits.empty() ? '\\' : digits[0];
}

// The words of a line; those in quotation marks are one.
std::vector<std::string> QuotedWords(std::string_view line) {
  std::vector<std::string> words;
  for (size_t i = 0; i < line.size();) {
    if (line[i] == ' ') {
      ++i;
      continue;
    }
    std::string word;
    if (line[i] == '"') {
      for (++i; i < line.size() && line[i] != '"';) {
        word += line[i] == '\\' ? Escaped(line, &i) : line[i++];
      }
      ++i;
    } else {
      for (; i < line.size() && line[i] != ' '; ++i) word += line[i];
    }
    words.push_back(word);
  }
  return words;
}

// Of a URI such as "socket://10.0.0.5:9100"; empty for one of another kind.
std::string HostOfUri(std::string_view uri) {
  for (const std::string_view scheme : L_Schemes) {
    if (!uri.starts_with(scheme)) continue;
    std::string_view host = uri.substr(scheme.size());
    host = host.substr(0, host.find_first_of("/?"));
    if (host.starts_with('[')) return std::string(host.substr(1, host.find(']') - 1));
    return std::string(host.substr(0, host.find(':')));
  }
  return "";
}

// class uri "make and model" "info" "device id" "location"
std::optional<FoundPrinter> OfBackend(std::string_view line) {
  const std::vector<std::string> words = QuotedWords(line);
  if (words.size() < 3 || words[0] != "network") return std::nullopt;
  const std::string host = HostOfUri(words[1]);
  if (!IsAddress(host)) return std::nullopt;
  return FoundPrinter{host, Shown(words[2]), words.size() > 5 ? Shown(words[5]) : ""};
}

// The value of the text "name=VALUE" of a service; nothing where there is none.
std::optional<std::string> ServiceText(const std::vector<std::string> &texts,
                                       std::string_view name) {
  for (const std::string &text : texts) {
    const std::string_view all = text;
    if (all.size() > name.size() && all.starts_with(name) && all[name.size()] == '=') {
      return text.substr(name.size() + 1);
    }
  }
  return std::nullopt;
}

// =;interface;protocol;name;type;domain;host;address;port;texts
std::optional<FoundPrinter> OfAvahi(std::string_view line) {
  constexpr size_t kAddress = 7;
  constexpr size_t kPort = 8;
  constexpr size_t kTexts = 9;
  if (!line.starts_with("=;")) return std::nullopt;
  std::vector<std::string_view> fields;
  for (std::string_view rest = line; fields.size() < kTexts;) {
    const size_t end = rest.find(';');
    if (end == std::string_view::npos) return std::nullopt;
    fields.push_back(rest.substr(0, end));
    rest.remove_prefix(end + 1);
    if (fields.size() == kTexts) fields.push_back(rest);
  }
  // An address of the link alone needs an interface beside it.
  if (!IsAddress(fields[kAddress]) || fields[kAddress].starts_with("fe80:")) return std::nullopt;
  const std::vector<std::string> texts = QuotedWords(fields[kTexts]);
  // A queue of another CUPS, whose printer is elsewhere. Port 0 holds its name for a protocol that
  // it does not speak.
  if (fields[kPort] == "0" || ServiceText(texts, "printer-type")) return std::nullopt;
  return FoundPrinter{std::string(fields[kAddress]), Shown(ServiceText(texts, "ty").value_or("")),
                      Shown(ServiceText(texts, "note").value_or(""))};
}

std::set<std::string> WordsOf(std::string_view text) {
  std::set<std::string> words;
  std::string word;
  for (const char c : text) {
    const auto letter = static_cast<unsigned char>(c);
    if (std::isalnum(letter) != 0 || letter >= 0x80) {
      word += static_cast<char>(std::tolower(letter));
    } else if (!word.empty()) {
      words.insert(std::exchange(word, {}));
    }
  }
  if (!word.empty()) words.insert(word);
  return words;
}

bool HasAll(const std::set<std::string> &words, const std::set<std::string> &wanted) {
  return std::includes(words.begin(), words.end(), wanted.begin(), wanted.end());
}

}  // namespace

const std::vector<PrinterSearch> &PrinterSearches() {
  static const std::vector<PrinterSearch> searches = {
      {{"/usr/lib/cups/backend/snmp"}, SearchFormat::CupsBackend},
      {{"/usr/bin/avahi-browse", "-rtpk", "_pdl-datastream._tcp"}, SearchFormat::Avahi},
      {{"/usr/bin/avahi-browse", "-rtpk", "_printer._tcp"}, SearchFormat::Avahi},
      {{"/usr/bin/avahi-browse", "-rtpk", "_ipp._tcp"}, SearchFormat::Avahi},
  };
  return searches;
}

std::optional<FoundPrinter> FoundPrinterIn(std::string_view line, SearchFormat format) {
  return format == SearchFormat::CupsBackend ? OfBackend(line) : OfAvahi(line);
}

bool AddFoundPrinter(const FoundPrinter &printer, std::vector<FoundPrinter> *printers) {
  const auto known =
      std::find_if(printers->begin(), printers->end(),
                   [&](const FoundPrinter &other) { return other.address == printer.address; });
  if (known == printers->end()) {
    if (printers->size() >= L_MostPrinters) return false;
    printers->push_back(printer);
    return true;
  }
  const FoundPrinter before = *known;
  if (known->model.empty()) known->model = printer.model;
  if (known->place.empty()) known->place = printer.place;
  return !(before == *known);
}

std::string FittingModel(std::string_view model, const std::vector<std::string> &names) {
  const std::set<std::string> wanted = WordsOf(model);
  std::string best;
  size_t most = 0;     // words that the best one shares
  size_t surplus = 0;  // words that only one of the two has
  bool is_clear = false;
  for (const std::string &name : names) {
    const std::set<std::string> words = WordsOf(name);
    if (words.empty() || wanted.empty() || (!HasAll(words, wanted) && !HasAll(wanted, words))) {
      continue;
    }
    const size_t shared = std::min(words.size(), wanted.size());
    const size_t more = std::max(words.size(), wanted.size()) - shared;
    if (shared < most || (shared == most && more > surplus)) continue;
    is_clear = shared > most || more < surplus;
    best = name;
    most = shared;
    surplus = more;
  }
  // A maker's name alone says too little.
  return most < 2 || !is_clear ? "" : best;
}
