// kpxctl --host: the words that reach other hosts, and what becomes of what they say. A stand-in
// for ssh runs what it is given here, as the remote shell would.
#include <cstdlib>

#include "ctltest.h"
#include "temporarydirectory.h"

namespace fs = std::filesystem;

namespace {

class CtlHosts : public CtlTest {
 protected:
  CtlHosts() {
    const std::string ssh =
        directory_.Write("ssh",
                         "#!/bin/sh\n"
                         "while [ \"$1\" != -- ]; do shift; done\n"
                         "host=$2\n"
                         "shift 2\n"
                         "echo \"$host\" >>" +
                             Calls() +
                             "\n"
                             "case $host in\n"
                             "  lost*) echo 'ssh: connect: No route to host' >&2; exit 255 ;;\n"
                             "  refusing) echo 'kpxctl: somebody is at work' >&2; exit 3 ;;\n"
                             "esac\n"
                             "exec sh -c \"$*\"\n");
    fs::permissions(ssh, fs::perms(0755));
    path_ = std::getenv("PATH");
    setenv("PATH", (directory_.Path() + ":" + path_).c_str(), 1);
  }
  ~CtlHosts() override { setenv("PATH", path_.c_str(), 1); }

  std::string Calls() const { return directory_.Path("calls"); }
  Strings Called() const {
    Strings hosts = SplitLines(ContentOf(Calls()));
    std::sort(hosts.begin(), hosts.end());
    return hosts;
  }

  TemporaryDirectory directory_;
  std::string path_;
};

TEST_F(CtlHosts, OneHostsAnswerIsItsOwn) {
  AddQueue("lp1");
  const std::string here = Kpxctl({"list"}).output;
  Expect({"--host", "alpha", "list"}, here);
  EXPECT_EQ(Strings{"alpha"}, Called());
}

TEST_F(CtlHosts, SeveralHostsAreToldApartAndEachHasItsLines) {
  const CommandResult result = Kpxctl({"--host", "alpha,beta", "--host=gamma,alpha", "list"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ((Strings{"alpha", "beta", "gamma"}), Called());
  for (const std::string host : {"alpha", "beta", "gamma"}) {
    for (const std::string line :
         {": at work\n", ": There are no queues.\n", ": ended with status 0\n"}) {
      EXPECT_NE(std::string::npos, result.output.find(host + line))
          << host << line << result.output;
    }
  }
}

TEST_F(CtlHosts, NoCharacterOfAWordReachesTheRemoteShell) {
  const std::string trap = directory_.Path("trap");
  for (const std::string &name :
       Strings{"a;touch " + trap, "$(touch " + trap + ")", "`touch " + trap + "`", "a'b\"c",
               "a\\ b", "a\nb", "*", "&& touch " + trap, "~"}) {
    const CommandResult there = Kpxctl({"--host", "alpha", "show", "--", name});
    const CommandResult here = Kpxctl({"show", "--", name});
    EXPECT_EQ(here.status, there.status) << name;
    EXPECT_EQ(here.output, there.output) << name;
  }
  EXPECT_FALSE(fs::exists(trap));
}

TEST_F(CtlHosts, TheWorstStatusCounts) {
  EXPECT_EQ(3, Kpxctl({"--host", "alpha,refusing", "list"}).status);
  EXPECT_EQ(2, Kpxctl({"--host", "alpha,refusing", "nosuch"}).status);
  const CommandResult lost = Kpxctl({"--host", "refusing,lost,alpha", "list"});
  EXPECT_EQ(1, lost.status);
  EXPECT_NE(std::string::npos, lost.output.find("lost: ssh: connect: No route to host\n"));
  EXPECT_NE(std::string::npos, lost.output.find("lost: ssh did not get there"));
  EXPECT_NE(std::string::npos, lost.output.find("alpha: There are no queues.\n"))
      << "the others go on: " << lost.output;
  EXPECT_EQ(1, Kpxctl({"--host", "lost", "list"}).status);
}

TEST_F(CtlHosts, ProgramsGetOneArrayForAllHosts) {
  AddQueue("lp1");
  const CommandResult result = Kpxctl({"--host", "alpha,beta", "list", "--json"});
  const std::string text = result.output.substr(result.output.find("[\n"));
  const auto answers = nlohmann::json::parse(text);
  ASSERT_EQ(2U, answers.size());
  for (const auto &answer : answers) {
    EXPECT_EQ(0, answer["status"]);
    EXPECT_EQ("lp1", answer["answer"][0]["name"]);
  }
}

TEST_F(CtlHosts, WhatIsNoHostIsAWrongCall) {
  for (const std::string host : {"", "-oProxyCommand=x", "a,,b", "a b"}) {
    EXPECT_EQ(2, Kpxctl({"--host", host, "list"}).status) << host;
  }
  EXPECT_EQ(2, Kpxctl({"--host"}).status);
  EXPECT_EQ(2, Kpxctl({"--host", "alpha"}).status) << "without a command";
  EXPECT_FALSE(fs::exists(Calls()));
}

}  // namespace
