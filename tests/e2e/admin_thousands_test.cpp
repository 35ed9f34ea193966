// The administration window with 10,000 queues of a real scheduler.
#include <chrono>

#include "savedqueues.h"

namespace {

class ThousandsOfQueues : public AdministrationTest {
 protected:
  static constexpr int kQueues = 10000;

  ThousandsOfQueues() {
    const NoScheduler none;
    std::string printers;
    std::vector<QueueValues> queues;
    for (int i = 0; i < kQueues; ++i) {
      const std::string name = NameOf(i);
      queues.push_back({.name = name, .address = "127.0.0.1"});
      printers += "<Printer " + name +
                  ">\nDeviceURI kpxlp:/interface\nState Idle\nAccepting Yes\n" +
                  "ErrorPolicy stop-printer\n</Printer>\n";
    }
    PutQueues(queues);
    for (int i = 0; i < kQueues; ++i) {
      std::ofstream(InterfacePath(NameOf(i)), std::ios::app) << "NETWORK_ADDRESS=127.0.0.1\n";
    }
    std::ofstream("/etc/cups/printers.conf") << printers;
  }
  ~ThousandsOfQueues() override {
    const NoScheduler none;
    std::filesystem::remove("/etc/cups/printers.conf");
  }

  static std::string NameOf(int number) { return "queue" + std::to_string(10000 + number); }
  static size_t QueuesOfScheduler() {
    return SplitLines(RunProgram({"lpstat", "-e"}).output).size();
  }

  // Tells how long a step took.
  void Took(const std::string &step) {
    const auto now = std::chrono::steady_clock::now();
    std::cout << step << ": " << std::chrono::duration<double>(now - start_).count() << " s\n";
    start_ = now;
  }

  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

TEST_F(ThousandsOfQueues, AreShownOneIsChangedAndSaved) {
  ASSERT_EQ(size_t{kQueues}, QueuesOfScheduler());
  const std::string name = NameOf(5555);
  Took("preparing");
  AdminApp app;
  EXPECT_EQ(size_t{kQueues}, app.QueueNames().size());
  Took("start until the list is shown");
  app.ClickRow("QueuesClist", 0);
  app.Type(name);
  app.Key("Escape");
  app.Key("Return");
  app.WaitWindow("PropertiesWindow");
  EXPECT_EQ(name, app.Text("PropertiesWindow/QueueEntry"));
  app.TypeInto("PropertiesWindow/AddressEntry", "127.0.0.2");
  app.Click("PropertiesWindow/OKButton");
  app.WaitGone("PropertiesWindow");
  Took("search and change");
  app.Click("SaveButton");
  EXPECT_EQ(0, app.WaitExit());
  Took("Save");
  EXPECT_EQ("", app.Stderr());
  int changed = 0;
  for (int i = 0; i < kQueues; ++i) {
    if (ContentOf(InterfacePath(NameOf(i))).ends_with("\nNETWORK_ADDRESS=127.0.0.2\n")) ++changed;
  }
  EXPECT_EQ(1, changed);
  EXPECT_TRUE(ContentOf(InterfacePath(name)).ends_with("\nNETWORK_ADDRESS=127.0.0.2\n"));
  EXPECT_EQ(size_t{kQueues}, QueuesOfScheduler());
}

}  // namespace
