// Stand-ins for the System V spooler's commands and directories, for tests of what the program asks
// of the spooler. Only inside the sandbox, where the real places are private.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "childprocess.h"
#include "privateworld.h"
#include "temporarydirectory.h"

class SpoolerStandIn {
 public:
  // Empties the spooler and puts commands in place that record how they are called. lpadmin makes
  // (-p) and removes (-x) the queue's entry and its interface script, kModelScript.
  SpoolerStandIn() {
    RequirePrivateWorld();
    namespace fs = std::filesystem;
    fs::remove_all(kSpool);
    fs::create_directories(kPrinters);
    fs::create_directories(kInterfaces);
    fs::remove_all(kState);
    fs::create_directories(kState);
    Put("/usr/lib/lpadmin", R"sh(
case $1 in
  -p) : >)sh" + std::string(kPrinters) +
                                R"sh(/$2
      [ -e )sh" + std::string(kState) +
                                R"sh(/no-script ] ||
        printf '#!/bin/sh\n# model\n' >)sh" +
                                std::string(kInterfaces) + R"sh(/$2 ;;
  -x) rm -f )sh" + std::string(kPrinters) +
                                "/$2 " + std::string(kInterfaces) + R"sh(/$2 ;;
esac
)sh");
    Put("/usr/bin/accept", "");
    Put("/usr/bin/enable", "");
    // Without root a file cannot change its owner, so the two commands only look for their file.
    if (!HasOrdinaryUsers()) {
      for (const char *command : {"/usr/bin/chown", "/usr/bin/chgrp"}) {
        PutScript(command, "#!/bin/sh\n[ -e \"$2\" ]\n");
      }
    }
  }
  SpoolerStandIn(const SpoolerStandIn &) = delete;
  SpoolerStandIn &operator=(const SpoolerStandIn &) = delete;

  static constexpr char kSpool[] = "/usr/spool/lp/admins/lp";
  static constexpr char kPrinters[] = "/usr/spool/lp/admins/lp/printers";
  static constexpr char kInterfaces[] = "/usr/spool/lp/admins/lp/interfaces";
  static constexpr char kModelScript[] = "#!/bin/sh\n# model\n";

  // "<program> <arguments>" of every call, in order.
  static std::vector<std::string> Calls() { return SplitLines(ContentOf(State("calls"))); }

  // From now on `program` ("lpadmin", "accept", "enable") prints something and fails.
  static void Fail(const std::string &program) { std::ofstream(State("fail-" + program)); }

  // From now on lpadmin makes queues without interface scripts.
  static void MakeNoScripts() { std::ofstream(State("no-script")); }

  static std::string ScriptPath(const std::string &queue) {
    return std::string(kInterfaces) + "/" + queue;
  }
  static std::string Script(const std::string &queue) { return ContentOf(ScriptPath(queue)); }
  static bool HasQueue(const std::string &queue) {
    return std::filesystem::exists(std::string(kPrinters) + "/" + queue);
  }

  // Adds a spooler queue with that interface script.
  static void AddQueue(const std::string &queue, const std::string &script) {
    std::ofstream(std::string(kPrinters) + "/" + queue);
    std::ofstream(ScriptPath(queue), std::ios::binary) << script;
  }

 private:
  static constexpr char kState[] = "/run/kpx/spooler";

  static std::string State(const std::string &name) { return std::string(kState) + "/" + name; }

  static void Put(const std::string &path, const std::string &action) {
    const std::string name = std::filesystem::path(path).filename();
    PutScript(path, "#!/bin/sh\necho \"" + name + " $*\" >>" + State("calls") + "\n[ ! -e " +
                        State("fail-" + name) + " ] || { echo out; echo error >&2; exit 1; }\n" +
                        action);
  }

  static void PutScript(const std::string &path, const std::string &text) {
    std::filesystem::remove(path);
    std::ofstream(path) << text;
    std::filesystem::permissions(path, std::filesystem::perms(0755));
  }
};
