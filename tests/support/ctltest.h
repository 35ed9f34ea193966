// kpxctl on the queues of the real spooler. Only inside the full sandbox.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "installation.h"
#include "models.h"
#include "paths.h"
#include "privateworld.h"

inline constexpr char kFinisherPrinter[] = "Vek Norvel 4120ES";

// Starts and ends without queues.
class CtlTest : public testing::Test {
 protected:
  using Strings = std::vector<std::string>;

  CtlTest() {
    RequirePrivateWorld();
    setenv("LANG", "C", 1);
    EXPECT_EQ(Strings{}, SpoolerQueues());
  }
  ~CtlTest() override {
    if (!SpoolerQueues().empty()) Kpxctl({"delete", "*"});
    EXPECT_EQ(Strings{}, SpoolerQueues());
  }

  // The names that the spooler's own command shows, sorted.
  static Strings SpoolerQueues() {
    Strings names = SplitLines(RunProgram({"lpstat", "-e"}).output);
    std::sort(names.begin(), names.end());
    return names;
  }

  // Runs kpxctl, which must end with 0 and say this.
  static void Expect(const Strings &words, const std::string &output) {
    const CommandResult result = Kpxctl(words);
    EXPECT_EQ(0, result.status) << testing::PrintToString(words);
    EXPECT_EQ(output, result.output) << testing::PrintToString(words);
  }
  static void Must(const Strings &words) {
    const CommandResult result = Kpxctl(words);
    if (result.status != 0) {
      throw std::runtime_error(testing::PrintToString(words) + ": " + result.output);
    }
  }

  // Runs kpxctl, which must end so and complain of this.
  static void ExpectRefused(const Strings &words, int status, const std::string &complaint) {
    const CommandResult result = Kpxctl(words);
    EXPECT_EQ(status, result.status) << testing::PrintToString(words);
    EXPECT_EQ("kpxctl: " + complaint + "\n", result.output) << testing::PrintToString(words);
  }

  static nlohmann::json JsonOf(Strings words) {
    words.push_back("--json");
    return nlohmann::json::parse(Kpxctl(words).output);
  }

  // A queue of a printer with a finisher.
  static void AddQueue(const std::string &name, const Strings &more = {}) {
    Strings words = {"add", name, "--printer", kFinisherPrinter, "--address", "127.0.0.1"};
    words.insert(words.end(), more.begin(), more.end());
    Must(words);
  }

  static std::string Def(const std::string &name) {
    return ContentOf(std::string(kDataDir) + "/" + name + ".def");
  }
};
