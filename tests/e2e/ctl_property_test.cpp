// Random work on queues, some of it by the rules of the windows and some by kpxctl: after each step
// both see what the steps so far come to.
#include <iostream>
#include <random>

#include "addqueue.h"
#include "adminsession.h"
#include "cmessages.h"
#include "ctltest.h"
#include "fontmap.h"
#include "globals.h"
#include "optionchange.h"
#include "optionlists.h"
#include "optionstate.h"
#include "properties.h"

namespace {

// What a queue is expected to have; a setting that is missing has its default.
struct Expected {
  std::string address;
  std::map<std::string, std::string> settings;
};

// Settings that can all be combined, the default first.
const std::map<std::string, std::vector<std::string>> kSettings = {
    {"Collate", {"False", "True"}},
    {"Jog", {"None", "EndOfSet", "EndOfJob"}},
    {"HalfTone", {"Printer", "Fine", "Line", "Coarse"}},
    {"EdgeToEdge", {"False", "True"}}};

class CtlProperty : public CtlTest {
 protected:
  CtlProperty() {
    LoadCatalogues();
    G_Fonts_hash = ParseFontmap();
  }

  int Below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
  std::string NewName() { return "q" + std::to_string(++made_); }
  std::string AnyName() {
    auto queue = model_.begin();
    std::advance(queue, Below(static_cast<int>(model_.size())));
    return queue->first;
  }

  // One step, by kpxctl or by the windows' rules; what it was.
  std::string Step(int most) {
    const bool by_ctl = Below(2) == 0;
    const int kind = model_.empty() ? 0 : Below(static_cast<int>(model_.size()) < most ? 5 : 4) % 5;
    const std::string who = by_ctl ? "kpxctl " : "windows ";
    if (model_.empty() || kind == 4) return who + Add(by_ctl);
    if (kind == 3) return who + Delete(by_ctl);
    return who + (kind == 2 ? Clone(by_ctl) : Set(by_ctl));
  }

  std::string Add(bool by_ctl) {
    const std::string name = NewName(), address = "127.0.0." + std::to_string(1 + Below(9));
    if (by_ctl) {
      Must({"add", name, "--printer", kFinisherPrinter, "--address", address});
    } else {
      LoadQueues(nullptr);
      EXPECT_TRUE(AddQueueToSession(name, "postscript", kFinisherPrinter, address));
      EXPECT_EQ(0U, SaveSession());
    }
    model_[name] = {address, {}};
    return "add " + name;
  }

  std::string Delete(bool by_ctl) {
    const std::string name = AnyName();
    if (by_ctl) {
      Must({"delete", name});
    } else {
      LoadQueues(nullptr);
      DeleteQueueInSession(name);
      EXPECT_EQ(0U, SaveSession());
    }
    model_.erase(name);
    return "delete " + name;
  }

  std::string Clone(bool by_ctl) {
    const std::string name = AnyName();
    std::string clone = NewName();
    if (by_ctl) {
      Must({"clone", name, clone});
    } else {
      LoadQueues(nullptr);
      clone = CloneQueue(name.c_str());
      EXPECT_EQ(0U, SaveSession());
    }
    model_[clone] = model_[name];
    return "clone " + name + " " + clone;
  }

  std::string Set(bool by_ctl) {
    const std::string name = AnyName();
    auto setting = kSettings.begin();
    std::advance(setting, Below(static_cast<int>(kSettings.size())));
    const auto &[key, values] = *setting;
    const std::string value = values[static_cast<size_t>(Below(static_cast<int>(values.size())))];
    const std::string address = "127.0.0." + std::to_string(1 + Below(9));
    if (by_ctl) {
      Must({"set", name, key + "=" + value, "address=" + address});
    } else {
      SetInWindows(name, "*" + key, value, address);
    }
    model_[name].address = address;
    model_[name].settings[key] = value;
    return "set " + name + " " + key + "=" + value;
  }

  // The properties window: opened, a row of a list chosen, OK, and then Save.
  static void SetInWindows(const std::string &name, const std::string &feature,
                           const std::string &option, const std::string &address) {
    LoadQueues(nullptr);
    std::string error;
    ASSERT_TRUE(OpenProperties(name, &error)) << error;
    std::string row;
    G_SetStringWithConstrain(OptionDisplayText(feature.c_str(), option.c_str()), row, 0);
    static_cast<void>(ChangeOption(feature.c_str(), row));
    RemoveDefaultSettings();
    HashRemove(G_Queues_hash, name.c_str());
    PutBackIdentity({name, kTcpIpTransport, address});
    CloseProperties();
    EXPECT_EQ(0U, SaveSession());
  }

  // Both views, as one text a queue.
  std::map<std::string, std::string> ModelView() const {
    std::map<std::string, std::string> view;
    for (const auto &[name, queue] : model_) {
      view[name] = queue.address;
      for (const auto &[key, values] : kSettings) {
        const auto found = queue.settings.find(key);
        view[name] += " " + key + "=" + (found == queue.settings.end() ? values[0] : found->second);
      }
    }
    return view;
  }
  static std::map<std::string, std::string> WindowsView() {
    std::map<std::string, std::string> view;
    LoadQueues(nullptr);
    for (const auto [name, record] : Pairs<CPrintQueue>(G_Queues_hash)) {
      view[name] = TextOf(fGet_Address_Function(record));
      std::string error;
      EXPECT_TRUE(OpenProperties(name, &error)) << error;
      for (const auto &[key, values] : kSettings) {
        view[name] += " " + key + "=" + QueueFeatureValue(("*" + key).c_str());
      }
      CloseProperties();
    }
    return view;
  }
  static std::map<std::string, std::string> CtlView() {
    std::map<std::string, std::string> view;
    for (const auto &queue : JsonOf({"show", "*"})) {
      const nlohmann::json options = queue.value("options", nlohmann::json::object());
      std::string &text = view[queue["name"]];
      text = queue["address"];
      for (const auto &[key, values] : kSettings) {
        text += " " + key + "=" + options.value(key, values[0]);
      }
    }
    return view;
  }

  std::mt19937 random_{20261122};
  std::map<std::string, Expected> model_;
  int made_ = 0;
};

TEST_F(CtlProperty, WindowsAndCommandsSeeTheSameAfterEachStep) {
  const bool is_long = std::getenv("KPX_LONG") != nullptr;
  const int steps = is_long ? 600 : 24, most = is_long ? 50 : 6;
  for (int step = 0; step < steps; ++step) {
    const std::string what = Step(most);
    const auto expected = ModelView();
    ASSERT_EQ(expected, WindowsView()) << "step " << step << ": " << what;
    ASSERT_EQ(expected, CtlView()) << "step " << step << ": " << what;
    ASSERT_EQ(model_.size(), SpoolerQueues().size()) << "step " << step << ": " << what;
  }
  std::cout << steps << " steps, " << model_.size() << " queues at the end\n";
}

TEST_F(CtlProperty, ASaveOfTheWindowsCanBeTakenBack) {
  AddQueue("acc1", {"Duplex=DuplexTumble"});
  LoadQueues(nullptr);
  DeleteQueueInSession("acc1");
  ASSERT_TRUE(AddQueueToSession("acc2", "raw", kFinisherPrinter, "127.0.0.1"));
  ASSERT_EQ(0U, SaveSession());
  EXPECT_EQ(std::vector<std::string>{"acc2"}, SpoolerQueues());
  Must({"undo"});
  EXPECT_EQ(std::vector<std::string>{"acc1"}, SpoolerQueues());
  EXPECT_EQ("*Duplex=DuplexTumble\n", Def("acc1"));
}

}  // namespace
