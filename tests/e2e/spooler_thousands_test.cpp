// What a start asks a real scheduler that has more than a thousand queues.
#include <gtest/gtest.h>

#include <fstream>

#include "coresupport.h"
#include "foundqueues.h"
#include "globals.h"
#include "interfacescript.h"
#include "must.h"
#include "paths.h"
#include "porting.h"
#include "queuesupport.h"
#include "spooler.h"

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

class ThousandsInCups : public testing::Test {
 protected:
  static constexpr int kQueues = 1200;
  static constexpr int kLost = 777;

  ThousandsInCups() : messages_(kQueueMessages), queues_(CreateHash()) {
    G_Queues_hash = queues_.get();
    const NoScheduler none;
    std::ofstream printers("/etc/cups/printers.conf");
    const std::string script =
        "#!/bin/sh\n# Interface script of the printer model vek4110, copied for each queue.\n"
        "# End of the model\n" +
        InterfaceBlockText({.queue_type = "postscript",
                            .ppd_path = "/opt/orlan/data/nls/enu/ppds/vek41101.ppd",
                            .def_path = "/opt/orlan/data/lp1.def",
                            .address = "10.0.0.1",
                            .transport_parameter = "110"});
    for (int i = 0; i < kQueues; ++i) {
      const std::string name = NameOf(i);
      Must(HashPut(queues_.get(), name.c_str(), MakeQueue({.name = name})));
      std::ofstream(InterfacePath(name)) << script;
      std::ofstream(std::string(kSpoolPrintersDir) + "/" + name) << "Device: /dev/null\n";
      if (i == kLost) continue;
      printers << "<Printer " << name << ">\nDeviceURI kpxlp:/interface\nState Idle\n</Printer>\n";
    }
  }
  ~ThousandsInCups() override {
    ForgetIncompleteQueues();
    G_Queues_hash = nullptr;
    const NoScheduler none;
    fs::remove("/etc/cups/printers.conf");
    for (int i = 0; i < kQueues; ++i) {
      fs::remove(InterfacePath(NameOf(i)));
      fs::remove(std::string(kSpoolPrintersDir) + "/" + NameOf(i));
    }
  }

  static std::string NameOf(int number) { return "queue" + std::to_string(10000 + number); }

  static Strings Compare() {
    const Owned<CList> messages = CreateList();
    testing::internal::CaptureStderr();
    CompareWithSpooler(nullptr, messages.get());
    testing::internal::GetCapturedStderr();
    return Texts(messages.get());
  }

 private:
  ProgramMessages messages_;
  Owned<CHash> queues_;
};

TEST_F(ThousandsInCups, AreAskedForWithoutTheSlowCommand) {
  fs::remove(kLpstat);
  std::ofstream(kLpstat) << "#!/bin/sh\nexit 1\n";
  fs::permissions(kLpstat, fs::perms(0755));
  EXPECT_EQ(Strings{"incomplete <" + NameOf(kLost) + ">"}, Compare());
  EXPECT_TRUE(IsIncompleteQueue(NameOf(kLost).c_str()));
  ForgetIncompleteQueues();
  const HungScheduler hung;
  EXPECT_EQ(Strings{}, Compare()) << "nothing is lost as far as anybody says";
}

}  // namespace
