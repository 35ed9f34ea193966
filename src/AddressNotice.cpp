#include "AddressNotice.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "Support.h"
#include "cmessages.h"
#include "cprintqueue.h"
#include "globals.h"
#include "whycheck.h"

namespace {

constexpr guint L_Pause = 100;     // milliseconds between two looks at what was found
constexpr int L_NoticeWidth = 40;  // characters, in a narrow window
constexpr int L_NoticeUsualWidth = 70;
constexpr size_t L_MostLines = 2;  // of queues that are told of at once

// What a thread has found. It lives until both are done with it.
struct LookUp {
  std::mutex mutex;
  std::optional<WhyStep> step;  // nothing as long as it goes on
};

struct Notice {
  GtkWidget *label = nullptr;
  std::vector<std::string> queues;                         // that are to be told of, newest first
  std::map<std::string, std::shared_ptr<LookUp>> lookups;  // going on, by KeyOf
  std::map<std::string, WhyStep> known;                    // what they found
  guint source = 0;
};
std::unique_ptr<Notice> L_Notice;

// Its address is empty for a queue that has gone.
InterfaceBlock PlaceOf(const std::string &queue) {
  const CPrintQueue *record = HashValue<CPrintQueue>(G_Queues_hash, queue.c_str());
  return PrinterPlace(TextOf(fGet_PrinterName_Function(record)),
                      TextOf(fGet_Address_Function(record)));
}

// A backend of CUPS takes an address in another way than our own transport.
std::string KeyOf(const InterfaceBlock &place) { return place.backend + " " + place.address; }

// Empty for a queue that has gone, or whose address is all right or not known to be wrong.
std::string TextFor(const std::string &queue) {
  const auto found = L_Notice->known.find(KeyOf(PlaceOf(queue)));
  if (found == L_Notice->known.end() || found->second.result != WhyResult::Bad) return "";
  return G_Message("ADDRESS_UNKNOWN", {queue, found->second.words, found->second.more_words});
}

gboolean TakeLookUps(gpointer) {
  for (const auto &[key, lookup] : L_Notice->lookups) {
    const std::lock_guard lock(lookup->mutex);
    if (lookup->step) L_Notice->known.emplace(key, *lookup->step);
  }
  const auto is_done = [](const auto &row) { return L_Notice->known.contains(row.first); };
  const bool any = std::erase_if(L_Notice->lookups, is_done) > 0;
  if (any) ShowUnknownAddresses();
  if (!L_Notice->lookups.empty()) return G_SOURCE_CONTINUE;
  L_Notice->source = 0;
  return G_SOURCE_REMOVE;
}

void Look(const std::shared_ptr<LookUp> &lookup, const InterfaceBlock &place) {
  WhyStep step = CheckPrinterName(place);
  const std::lock_guard lock(lookup->mutex);
  lookup->step = std::move(step);
}

}  // namespace

GtkWidget *NewAddressNotice(GtkWidget *window) {
  L_Notice = std::make_unique<Notice>();
  GtkWidget *label = NewLabel(window, "AddressNoticeLabel", "", nullptr);
  gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
  gtk_label_set_width_chars(GTK_LABEL(label), L_NoticeWidth);
  gtk_label_set_max_width_chars(GTK_LABEL(label), L_NoticeUsualWidth);
  gtk_widget_set_no_show_all(label, TRUE);
  g_signal_connect(label, "destroy", G_CALLBACK(ForgetAddresses), nullptr);
  L_Notice->label = label;
  return label;
}

void CheckAddressOfQueue(const std::string &name) {
  if (L_Notice == nullptr) return;
  std::erase(L_Notice->queues, name);
  L_Notice->queues.insert(L_Notice->queues.begin(), name);
  const InterfaceBlock place = PlaceOf(name);
  const std::string key = KeyOf(place);
  if (!place.address.empty() && !L_Notice->lookups.contains(key)) {
    // It may be known by now.
    L_Notice->known.erase(key);
    auto lookup = std::make_shared<LookUp>();
    L_Notice->lookups.emplace(key, lookup);
    // A name service that hangs must keep neither the window nor the program's end waiting.
    std::thread(Look, lookup, place).detach();
    if (L_Notice->source == 0) L_Notice->source = g_timeout_add(L_Pause, TakeLookUps, nullptr);
  }
  ShowUnknownAddresses();
}

void ShowUnknownAddresses() {
  if (L_Notice == nullptr) return;
  std::vector<std::string> lines;
  for (const std::string &queue : L_Notice->queues) {
    const std::string text = TextFor(queue);
    if (!text.empty()) lines.push_back(text);
  }
  std::string notice;
  for (size_t i = 0; i < std::min(lines.size(), L_MostLines); ++i) {
    notice += (i == 0 ? "" : "\n") + lines[i];
  }
  if (lines.size() > L_MostLines) notice += "\n...";
  gtk_label_set_text(GTK_LABEL(L_Notice->label), notice.c_str());
  gtk_widget_set_visible(L_Notice->label, notice.empty() ? FALSE : TRUE);
}

void ForgetAddresses() {
  if (L_Notice == nullptr) return;
  if (L_Notice->source != 0) g_source_remove(L_Notice->source);
  L_Notice.reset();
}
