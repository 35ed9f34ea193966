#include "AddressCompletion.h"

#include <glib-unix.h>
#include <grp.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "debug.h"

namespace {

constexpr char L_OfferKey[] = "kpx-found-printers";
constexpr char L_User[] = "lp";               // who reads what the network says
constexpr guint L_MostSeconds = 60;           // that a search may take
constexpr size_t L_MostBytes = 256UL * 1024;  // that one may say
constexpr size_t L_LongestLine = 4096;

enum { kTextColumn, kAddressColumn, kColumns };

// What all searches of this run have found.
std::vector<FoundPrinter> L_Found;

struct Offer;

struct Search {
  Offer *offer = nullptr;
  SearchFormat format = SearchFormat::CupsBackend;
  GPid process = 0;
  int output = -1;
  guint source = 0;
  size_t bytes = 0;
  std::string line;  // as far as it has come
};

struct Offer {
  GtkWidget *entry = nullptr;
  GtkListStore *rows = nullptr;
  void (*chosen)(const FoundPrinter &) = nullptr;
  std::list<Search> searches;
  guint timeout = 0;
};

// Whose rights the searches have; nothing when they would be those of root.
std::optional<passwd> UserOfSearches() {
  if (geteuid() != 0) return passwd{};
  const passwd *user = getpwnam(L_User);
  if (user == nullptr || user->pw_uid == 0) return std::nullopt;
  return *user;
}

// In the new process: without root's rights, ended together with this one.
void PrepareProcess(gpointer data) {
  const passwd &user = *static_cast<const passwd *>(data);
  if (geteuid() == 0 &&
      (setgroups(0, nullptr) != 0 || setgid(user.pw_gid) != 0 || setuid(user.pw_uid) != 0)) {
    _exit(1);
  }
  if (setpgid(0, 0) != 0 || prctl(PR_SET_PDEATHSIG, SIGKILL) != 0) _exit(1);
}

void Reap(GPid process, gint, gpointer) { g_spawn_close_pid(process); }

void Stop(Search &search) {
  if (search.source != 0) g_source_remove(search.source);
  if (search.output >= 0) close(search.output);
  if (search.process != 0) kill(-search.process, SIGKILL);
  search.source = 0;
  search.output = -1;
  search.process = 0;
}

std::string TextFor(const FoundPrinter &printer) {
  std::string text = printer.address;
  if (!printer.model.empty()) text += "  " + printer.model;
  if (!printer.place.empty()) text += " (" + printer.place + ")";
  return text;
}

// In the row that it has, or in a new one.
void ShowPrinter(const Offer &offer, const FoundPrinter &printer) {
  GtkTreeModel *model = GTK_TREE_MODEL(offer.rows);
  GtkTreeIter row;
  gboolean more = gtk_tree_model_get_iter_first(model, &row);
  for (; more != FALSE; more = gtk_tree_model_iter_next(model, &row)) {
    gchar *address = nullptr;
    gtk_tree_model_get(model, &row, kAddressColumn, &address, -1);
    const bool is_it = printer.address == address;
    g_free(address);
    if (is_it) break;
  }
  if (more == FALSE) gtk_list_store_append(offer.rows, &row);
  gtk_list_store_set(offer.rows, &row, kTextColumn, TextFor(printer).c_str(), kAddressColumn,
                     printer.address.c_str(), -1);
}

// What has come may fit what stands in the entry already. An offer that is open grows; the choice
// in it stays.
void OfferAgain(const Offer &offer) {
  if (gtk_widget_has_focus(offer.entry) == FALSE ||
      gtk_entry_get_text_length(GTK_ENTRY(offer.entry)) == 0) {
    return;
  }
  GtkWidget *grab = gtk_grab_get_current();
  const bool is_open = grab != nullptr && gtk_widget_is_ancestor(offer.entry, grab) == FALSE;
  if (is_open) {
    gtk_entry_completion_complete(gtk_entry_get_completion(GTK_ENTRY(offer.entry)));
  } else {
    g_signal_emit_by_name(offer.entry, "changed");
  }
}

void TakeLine(const Search &search) {
  const std::optional<FoundPrinter> found = FoundPrinterIn(search.line, search.format);
  if (!found || !AddFoundPrinter(*found, &L_Found)) return;
  for (const FoundPrinter &printer : L_Found) {
    if (printer.address == found->address) ShowPrinter(*search.offer, printer);
  }
  OfferAgain(*search.offer);
}

void TakeBytes(Search &search, const char *bytes, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    if (bytes[i] == '\n') {
      TakeLine(search);
      search.line.clear();
    } else if (search.line.size() < L_LongestLine) {
      search.line += bytes[i];
    }
  }
}

// One piece a turn.
gboolean ReadOutput(gint descriptor, GIOCondition, gpointer data) {
  auto &search = *static_cast<Search *>(data);
  std::array<char, 4096> bytes;
  const ssize_t count = read(descriptor, bytes.data(), bytes.size());
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return G_SOURCE_CONTINUE;
  if (count > 0) {
    TakeBytes(search, bytes.data(), static_cast<size_t>(count));
    search.bytes += static_cast<size_t>(count);
    if (search.bytes < L_MostBytes) return G_SOURCE_CONTINUE;
  }
  search.source = 0;
  Stop(search);
  return G_SOURCE_REMOVE;
}

void Start(Offer &offer, const PrinterSearch &wanted, passwd *user) {
  std::vector<gchar *> words;
  for (const std::string &word : wanted.command) words.push_back(const_cast<gchar *>(word.c_str()));
  words.push_back(nullptr);
  gchar path[] = "PATH=/usr/bin:/bin";
  gchar locale[] = "LC_ALL=C.UTF-8";
  gchar *environment[] = {path, locale, nullptr};
  Search search;
  search.offer = &offer;
  search.format = wanted.format;
  const auto flags = GSpawnFlags(G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_STDERR_TO_DEV_NULL);
  // A program that is not there finds nothing.
  if (g_spawn_async_with_pipes("/", words.data(), environment, flags, PrepareProcess, user,
                               &search.process, nullptr, &search.output, nullptr,
                               nullptr) == FALSE) {
    return;
  }
  g_child_watch_add(search.process, Reap, nullptr);
  g_unix_set_fd_nonblocking(search.output, TRUE, nullptr);
  offer.searches.push_back(search);
  Search &kept = offer.searches.back();
  kept.source = g_unix_fd_add(kept.output, GIOCondition(G_IO_IN | G_IO_HUP), ReadOutput, &kept);
}

void StopAll(Offer &offer) {
  for (Search &search : offer.searches) Stop(search);
  if (offer.timeout != 0) g_source_remove(offer.timeout);
  offer.timeout = 0;
}

gboolean GiveUp(gpointer data) {
  auto &offer = *static_cast<Offer *>(data);
  offer.timeout = 0;
  StopAll(offer);
  return G_SOURCE_REMOVE;
}

// What is typed may stand anywhere in what is shown.
gboolean Matches(GtkEntryCompletion *completion, const gchar *typed, GtkTreeIter *row, gpointer) {
  gchar *text = nullptr;
  gtk_tree_model_get(gtk_entry_completion_get_model(completion), row, kTextColumn, &text, -1);
  gchar *folded = g_utf8_casefold(text == nullptr ? "" : text, -1);
  const bool found = std::string(folded).find(typed) != std::string::npos;
  g_free(folded);
  g_free(text);
  return found ? TRUE : FALSE;
}

gboolean TakeChosen(GtkEntryCompletion *completion, GtkTreeModel *model, GtkTreeIter *row,
                    gpointer data) {
  const LogScope log("TakeChosen");
  gchar *text = nullptr;
  gtk_tree_model_get(model, row, kAddressColumn, &text, -1);
  const std::string address = text == nullptr ? "" : text;
  g_free(text);
  GtkWidget *entry = gtk_entry_completion_get_entry(completion);
  gtk_entry_set_text(GTK_ENTRY(entry), address.c_str());
  gtk_editable_set_position(GTK_EDITABLE(entry), -1);
  const FoundPrinter *chosen = nullptr;
  for (const FoundPrinter &printer : L_Found) {
    if (printer.address == address) chosen = &printer;
  }
  if (chosen != nullptr) static_cast<Offer *>(data)->chosen(*chosen);
  return TRUE;
}

void DeleteOffer(gpointer data) {
  const std::unique_ptr<Offer> offer(static_cast<Offer *>(data));
  StopAll(*offer);
  g_object_unref(offer->rows);
}

}  // namespace

void OfferFoundPrinters(GtkWidget *entry, void (*chosen)(const FoundPrinter &)) {
  auto owned = std::make_unique<Offer>();
  Offer &offer = *owned;
  offer.rows = gtk_list_store_new(kColumns, G_TYPE_STRING, G_TYPE_STRING);
  offer.chosen = chosen;
  offer.entry = entry;
  for (const FoundPrinter &printer : L_Found) ShowPrinter(offer, printer);
  GtkEntryCompletion *completion = gtk_entry_completion_new();
  gtk_entry_completion_set_model(completion, GTK_TREE_MODEL(offer.rows));
  gtk_entry_completion_set_text_column(completion, kTextColumn);
  gtk_entry_completion_set_match_func(completion, Matches, nullptr, nullptr);
  g_signal_connect(completion, "match-selected", G_CALLBACK(TakeChosen), &offer);
  gtk_entry_set_completion(GTK_ENTRY(entry), completion);
  g_object_unref(completion);
  g_object_set_data_full(G_OBJECT(entry), L_OfferKey, owned.release(), DeleteOffer);

  std::optional<passwd> user = UserOfSearches();
  if (!user) return;
  for (const PrinterSearch &search : PrinterSearches()) Start(offer, search, &*user);
  offer.timeout = g_timeout_add_seconds(L_MostSeconds, GiveUp, &offer);
}
