#include "AddressTest.h"

#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "FieldGrid.h"
#include "Support.h"
#include "cmessages.h"
#include "debug.h"
#include "whycheck.h"

namespace {

constexpr char L_TestKey[] = "kpx-address-test";
constexpr guint L_Pause = 100;     // milliseconds between two looks at what was found
constexpr int L_ResultWidth = 34;  // characters
constexpr int L_ResultUsualWidth = 48;

// What a thread has found. It lives until both are done with it.
struct Findings {
  std::mutex mutex;
  std::vector<WhyStep> steps;
  bool whole = false;
};

struct Test {
  GtkWidget *entry = nullptr;
  GtkWidget *result = nullptr;
  std::string address;  // that was tested last
  std::string (*printer)() = nullptr;
  std::shared_ptr<Findings> findings;  // of the test that goes on; null without one
  guint source = 0;

  ~Test() {
    if (source != 0) g_source_remove(source);
  }
};

Test &TestOf(gpointer entry) {
  return *static_cast<Test *>(g_object_get_data(G_OBJECT(entry), L_TestKey));
}

void ShowResult(const Test &test, const std::string &text) {
  gtk_label_set_text(GTK_LABEL(test.result), text.c_str());
  gtk_widget_set_visible(test.result, text.empty() ? FALSE : TRUE);
}

// What a thread finds from now on is no more of interest.
void StopTest(Test &test) {
  test.findings.reset();
  if (test.source != 0) g_source_remove(test.source);
  test.source = 0;
}

void EndTest(gpointer entry) { StopTest(TestOf(entry)); }

gboolean ShowFindings(gpointer entry) {
  Test &test = TestOf(entry);
  std::vector<WhyStep> steps;
  {
    const std::lock_guard lock(test.findings->mutex);
    if (!test.findings->whole) return G_SOURCE_CONTINUE;
    steps = std::move(test.findings->steps);
  }
  test.findings.reset();
  test.source = 0;
  ShowResult(test, AddressFinding(steps));
  return G_SOURCE_REMOVE;
}

void Look(const std::shared_ptr<Findings> &findings, const InterfaceBlock &place) {
  CheckPrinter(place, [&findings](const WhyStep &step) {
    const std::lock_guard lock(findings->mutex);
    findings->steps.push_back(step);
  });
  const std::lock_guard lock(findings->mutex);
  findings->whole = true;
}

void ButtonTestPressed(GtkWidget *, gpointer entry) {
  const LogScope log("ButtonTestPressed");
  Test &test = TestOf(entry);
  StopTest(test);
  const std::string address = gtk_entry_get_text(GTK_ENTRY(entry));
  test.address.clear();
  if (address.empty()) {
    gtk_widget_grab_focus(GTK_WIDGET(entry));
    ShowResult(test, G_Translate("KPXadminWarn002"));
    return;
  }
  const InterfaceBlock place = PrinterPlace(test.printer(), address);
  test.address = address;
  ShowResult(test, G_Message("ADDRESS_TESTING", {address}));
  test.findings = std::make_shared<Findings>();
  test.source = g_timeout_add(L_Pause, ShowFindings, entry);
  // A name service that hangs must keep neither the window nor the program's end waiting.
  std::thread(Look, test.findings, place).detach();
}

// What was found is about another address.
void ForgetResult(GtkWidget *entry, gpointer) {
  Test &test = TestOf(entry);
  const std::string address = gtk_entry_get_text(GTK_ENTRY(entry));
  if (!address.empty() && address == test.address) return;
  StopTest(test);
  ShowResult(test, "");
}

}  // namespace

AddressTest NewAddressTest(GtkWidget *window, GtkWidget *entry, std::string (*printer)()) {
  GtkWidget *result = NewLabel(window, "AddressResultLabel", "", nullptr);
  gtk_label_set_line_wrap(GTK_LABEL(result), TRUE);
  gtk_label_set_width_chars(GTK_LABEL(result), L_ResultWidth);
  gtk_label_set_max_width_chars(GTK_LABEL(result), L_ResultUsualWidth);
  gtk_widget_set_no_show_all(result, TRUE);
  DescribeBy(entry, result);

  auto test = std::make_unique<Test>();
  test->entry = entry;
  test->result = result;
  test->printer = printer;
  g_object_set_data_full(G_OBJECT(entry), L_TestKey, test.release(), [](gpointer data) {
    std::default_delete<Test>()(static_cast<Test *>(data));
  });

  GtkWidget *field = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, kFieldSpacing);
  gtk_box_pack_start(GTK_BOX(field), entry, TRUE, TRUE, 0);
  GtkWidget *button = NewButton(window, field, "TestButton", "DEF_BTN_TEST_TITLE", nullptr);
  gtk_box_set_child_packing(GTK_BOX(field), button, FALSE, FALSE, 0, GTK_PACK_START);
  g_signal_connect(button, "clicked", G_CALLBACK(ButtonTestPressed), entry);
  g_signal_connect(entry, "changed", G_CALLBACK(ForgetResult), nullptr);
  g_signal_connect(entry, "destroy", G_CALLBACK(EndTest), nullptr);
  return {field, result};
}
