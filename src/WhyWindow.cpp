#include "WhyWindow.h"

#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "DialogFrame.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "utils.h"
#include "whycheck.h"

namespace {

constexpr int L_Width = 620;  // pixels
constexpr int L_Height = 380;
constexpr int L_LabelWidth = 70;  // characters

// What the thread has found and the window has not shown yet. It lives until both are done with it.
struct Findings {
  std::mutex mutex;
  std::vector<WhyStep> steps;
  bool whole = false;
};

struct Shown {
  GtkWidget *window = nullptr;  // null when it was closed
  std::shared_ptr<Findings> findings = std::make_shared<Findings>();
  std::vector<WhyStep> steps;
};
using SharedShown = std::shared_ptr<Shown>;

void AppendText(GtkWidget *area, const std::string &text) {
  GtkTextBuffer *buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(area));
  GtkTextIter end;
  gtk_text_buffer_get_end_iter(buffer, &end);
  gtk_text_buffer_insert(buffer, &end, text.c_str(), static_cast<gint>(text.size()));
}

gboolean ShowFindings(gpointer data) {
  Shown &shown = **static_cast<SharedShown *>(data);
  std::vector<WhyStep> steps;
  bool whole = false;
  {
    const std::lock_guard lock(shown.findings->mutex);
    steps = std::exchange(shown.findings->steps, {});
    whole = shown.findings->whole;
  }
  if (shown.window == nullptr) return G_SOURCE_REMOVE;
  for (const WhyStep &step : steps) {
    AppendText(lookup_widget(shown.window, "WhyText"), WhyLines(step));
    shown.steps.push_back(step);
  }
  if (!whole) return G_SOURCE_CONTINUE;
  const std::string conclusion = WhyConclusion(shown.steps);
  gtk_label_set_text(GTK_LABEL(lookup_widget(shown.window, "WhyLabel")), conclusion.c_str());
  SetAlert(shown.window, conclusion);
  return G_SOURCE_REMOVE;
}

void Release(gpointer data) {
  std::default_delete<SharedShown>()(static_cast<SharedShown *>(data));
}

void ForgetWindow(GtkWidget *, gpointer data) {
  (*static_cast<SharedShown *>(data))->window = nullptr;
}

void Look(const std::shared_ptr<Findings> &findings, const std::string &name,
          const std::string &user) {
  CheckWhy(AskForSubject(name, user), [&findings](const WhyStep &step) {
    const std::lock_guard lock(findings->mutex);
    findings->steps.push_back(step);
  });
  const std::lock_guard lock(findings->mutex);
  findings->whole = true;
}

}  // namespace

GtkWidget *create_WhyWindow(const std::string &name) {
  const LogScope log("create_WhyWindow");
  constexpr guint kPause = 100;  // milliseconds between two looks at what was found
  const Dialog dialog = NewDialog("WhyWindow", "DEF_WND_WHY_TITLE");
  gtk_window_set_default_size(GTK_WINDOW(dialog.window), L_Width, L_Height);
  GtkWidget *label = NewLabel(dialog.window, "WhyLabel", G_Message("WHY_LOOKING", {name}), nullptr);
  gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
  gtk_label_set_width_chars(GTK_LABEL(label), L_LabelWidth);
  gtk_label_set_max_width_chars(GTK_LABEL(label), L_LabelWidth);
  gtk_box_pack_start(GTK_BOX(dialog.box), label, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(dialog.box),
                     NewScrolledText(dialog.window, "WhyScrolledwindow", "WhyText", ""), TRUE, TRUE,
                     0);
  AddOkButton(dialog, "OKButton", nullptr);

  auto shown = std::make_shared<Shown>();
  shown->window = dialog.window;
  g_signal_connect_data(
      dialog.window, "destroy", G_CALLBACK(ForgetWindow),
      std::make_unique<SharedShown>(shown).release(),
      [](gpointer data, GClosure *) { Release(data); }, GConnectFlags(0));
  g_timeout_add_full(G_PRIORITY_DEFAULT, kPause, ShowFindings,
                     std::make_unique<SharedShown>(shown).release(), Release);
  const char *user = GetUserName(nullptr);
  // A name service that hangs must not keep the program from ending.
  std::thread(Look, shown->findings, name, std::string(user == nullptr ? "" : user)).detach();
  return dialog.window;
}
