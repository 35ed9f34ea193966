// The program's block in an interface script, and the change of an address in it.
#include "interfacescript.h"

#include <gtest/gtest.h>

#include "command.h"
#include "queuesupport.h"
#include "spoolerstandin.h"

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

const InterfaceBlock kBlock = {.queue_type = "postscript",
                               .ppd_path = "/opt/orlan/data/nls/enu/ppds/vek41101.ppd",
                               .def_path = "/opt/orlan/data/lp1.def",
                               .address = "10.0.0.1",
                               .transport_parameter = "110"};

constexpr char kPostScriptBlock[] = R"sh(
# the following lines are inserted by KPXadmin
# please do not edit
#
NETWORK_ADDRESS=10.0.0.1
{
while [ $# -gt 0 ]
do
  /opt/orlan/bin/kpxfilter \
    "$options" \
    -J"$title" \
    -e"$title" \
    -L"$username" \
    --filter \
    --type postscript \
    --ppdfile /opt/orlan/data/nls/enu/ppds/vek41101.ppd \
    --deffile /opt/orlan/data/lp1.def <"$1"
  shift
done
} | /opt/orlan/bin/kpxnbtrans $NETWORK_ADDRESS 2501 110
)sh";

constexpr char kRawBlock[] = R"sh(
# the following lines are inserted by KPXadmin
# please do not edit
#
NETWORK_ADDRESS=10.0.0.1
{
while [ $# -gt 0 ]
do
  ${CAT} "$1"
  shift
done
} | /opt/orlan/bin/kpxnbtrans $NETWORK_ADDRESS 2501 110
)sh";

TEST(InterfaceBlockText, FiltersEveryFileAndSendsTheResult) {
  EXPECT_EQ(InterfaceBlockText(kBlock), kPostScriptBlock);
}

TEST(InterfaceBlockText, PassesARawQueuesFilesUnchangedToTheSameTransport) {
  InterfaceBlock block = kBlock;
  block.queue_type = "raw";
  EXPECT_EQ(InterfaceBlockText(block), kRawBlock);
}

TEST(InterfaceBlockText, NamesEveryOtherTypeToTheFilter) {
  for (const char *type : {"text", "pcl6", "rawer"}) {
    InterfaceBlock block = kBlock;
    block.queue_type = type;
    EXPECT_NE(InterfaceBlockText(block).find(std::string("    --type ") + type + " \\\n"),
              std::string::npos);
  }
}

// What a shell would take for a command of its own.
TEST(InterfaceBlockText, EndsAnAddressAtItsFirstControlCharacter) {
  for (const char c : {'\t', '\n', '\r', '\v', '\x01', '\x1F', '\x7F'}) {
    InterfaceBlock block = kBlock;
    block.address = std::string("10.0.0.1") + c + "reboot";
    EXPECT_EQ(InterfaceBlockText(block), kPostScriptBlock) << static_cast<int>(c);
    EXPECT_EQ(WithNetworkAddress("NETWORK_ADDRESS=1\n{\n", block.address),
              "NETWORK_ADDRESS=10.0.0.1\n{\n")
        << static_cast<int>(c);
  }
}

TEST(InterfaceBlockText, KeepsEveryOtherCharacterOfAnAddress) {
  InterfaceBlock block = kBlock;
  block.address =
      "dr\xC3\xBC"
      "cker-2.example:9100";
  EXPECT_NE(InterfaceBlockText(block).find("#\nNETWORK_ADDRESS=" + block.address + "\n{\n"),
            std::string::npos);
}

TEST(WithNetworkAddress, RewritesEveryAddressLineAndNothingElse) {
  EXPECT_EQ(WithNetworkAddress("a\nNETWORK_ADDRESS=1\n NETWORK_ADDRESS=2\nb NETWORK_ADDRESS\n"
                               "NETWORK_ADDRESS_OLD\n",
                               "host"),
            "a\nNETWORK_ADDRESS=host\n NETWORK_ADDRESS=2\nb NETWORK_ADDRESS\n"
            "NETWORK_ADDRESS=host\n");
}

TEST(WithNetworkAddress, KeepsEveryOtherByteAsItIs) {
  const std::string head = std::string("\0\xFF\r\n\n", 5) + std::string(5000, 'x') +
                           "NETWORK_ADDRESS in an overlong line\n";
  const std::string tail("no final line feed \0", 20);
  EXPECT_EQ(WithNetworkAddress(head + "NETWORK_ADDRESS=1\n" + tail, "host"),
            head + "NETWORK_ADDRESS=host\n" + tail);
}

TEST(WithNetworkAddress, ReplacesAnOverlongLineWhole) {
  EXPECT_EQ(WithNetworkAddress("NETWORK_ADDRESS=" + std::string(5000, 'x') + "\nrest\n", "h"),
            "NETWORK_ADDRESS=h\nrest\n");
}

TEST(WithNetworkAddress, EndsALastLineThatHadNoLineFeed) {
  EXPECT_EQ(WithNetworkAddress("NETWORK_ADDRESS=1", "host"), "NETWORK_ADDRESS=host\n");
}

TEST(WithNetworkAddress, IsNothingWithoutSuchALine) {
  EXPECT_EQ(WithNetworkAddress("a\nb\n", "host"), std::nullopt);
  EXPECT_EQ(WithNetworkAddress("", "host"), std::nullopt);
}

class InterfaceScript : public testing::Test {
 protected:
  InterfaceScript() : messages_(kQueueMessages) {}

  int Append(const std::string &path) {
    return Silently([&] {
      return WriteToInterfaceFile(path.c_str(), kBlock.queue_type.c_str(), kBlock.ppd_path.c_str(),
                                  kBlock.def_path.c_str(), kBlock.address.c_str(),
                                  kBlock.transport_parameter.c_str(), errors_.get());
    });
  }

  int Change(const char *queue, const char *address) {
    return Silently([&] { return ChangeAddressInInterface(queue, address, errors_.get()); });
  }

  Strings Errors() const { return Texts(errors_.get()); }

  SpoolerStandIn spooler_;

 private:
  // The result of `body`; what it prints must be what the error list got.
  template <class Body>
  int Silently(const Body &body) {
    testing::internal::CaptureStderr();
    const int result = body();
    Strings printed = SplitLines(testing::internal::GetCapturedStderr());
    const Strings all = Errors();
    EXPECT_EQ(Strings(all.end() - static_cast<std::ptrdiff_t>(printed.size()), all.end()), printed);
    return result;
  }

  ProgramMessages messages_;
  Owned<CList> errors_ = CreateList();
};

TEST_F(InterfaceScript, TheBlockGoesBehindTheModelsScript) {
  spooler_.AddQueue("lp1", SpoolerStandIn::kModelScript);
  EXPECT_EQ(Append(spooler_.ScriptPath("lp1")), 1);
  EXPECT_EQ(spooler_.Script("lp1"), std::string(SpoolerStandIn::kModelScript) + kPostScriptBlock);
  EXPECT_EQ(Errors(), Strings{});
}

TEST_F(InterfaceScript, AnyNullTextIsRefusedSilently) {
  spooler_.AddQueue("lp1", SpoolerStandIn::kModelScript);
  for (int missing = 0; missing < 6; ++missing) {
    const std::string path = spooler_.ScriptPath("lp1");
    const auto text = [&](int i) { return i == missing ? nullptr : i == 0 ? path.c_str() : "x"; };
    const Owned<CList> errors = CreateList();
    EXPECT_EQ(
        WriteToInterfaceFile(text(0), text(1), text(2), text(3), text(4), text(5), errors.get()),
        0);
    EXPECT_EQ(Texts(errors.get()), Strings{});
  }
  EXPECT_EQ(spooler_.Script("lp1"), SpoolerStandIn::kModelScript);
}

TEST_F(InterfaceScript, AScriptThatCannotBeAppendedToIsReported) {
  EXPECT_EQ(Append("/nowhere/lp1"), 0);
  EXPECT_EQ(Errors(), Strings{"write </nowhere/lp1>"});
}

TEST_F(InterfaceScript, AScriptThatIsALinkIsNotWrittenThrough) {
  const TemporaryDirectory directory;
  directory.Write("victim", "safe");
  fs::create_symlink(directory.Path("victim"), spooler_.ScriptPath("lp1"));
  EXPECT_EQ(Append(spooler_.ScriptPath("lp1")), 0);
  EXPECT_EQ(Errors(), Strings{"write <" + spooler_.ScriptPath("lp1") + ">"});
  EXPECT_EQ(ContentOf(directory.Path("victim")), "safe");
}

TEST_F(InterfaceScript, AFullDiskLeavesNoHalfBlock) {
  const SmallDisk disk(SpoolerStandIn::kInterfaces, 4096);
  const std::string model(4000, '#');
  spooler_.AddQueue("lp1", model);
  EXPECT_EQ(Append(spooler_.ScriptPath("lp1")), 0);
  EXPECT_EQ(Errors(), Strings{"write <" + spooler_.ScriptPath("lp1") + ">"});
  EXPECT_EQ(spooler_.Script("lp1"), model);
}

TEST_F(InterfaceScript, TheOwnerCommandHasItsFourteenWords) {
  EXPECT_EQ(ScriptOwnerCommand("P"),
            "/bin/chmod 755 P >/dev/null 2>&1 ; /bin/chgrp bin P >/dev/null 2>&1 ; "
            "/bin/chown lp P >/dev/null 2>&1");
}

TEST_F(InterfaceScript, AChangedAddressIsRewrittenInPlace) {
  spooler_.AddQueue("lp1", "a\nNETWORK_ADDRESS=old\nb");
  EXPECT_EQ(Change("lp1", "new.host"), 1);
  EXPECT_EQ(spooler_.Script("lp1"), "a\nNETWORK_ADDRESS=new.host\nb");
  EXPECT_EQ(ModeOf(spooler_.ScriptPath("lp1")), 0755u);
  EXPECT_EQ(CommandRecords().back().command, ScriptOwnerCommand(spooler_.ScriptPath("lp1")));
  EXPECT_EQ(NamesIn(SpoolerStandIn::kInterfaces), Strings{"lp1"});
  EXPECT_EQ(Errors(), Strings{});
  if (HasOrdinaryUsers()) {
    struct stat status = {};
    ASSERT_EQ(stat(spooler_.ScriptPath("lp1").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, getpwnam("lp")->pw_uid);
    EXPECT_EQ(GroupOf(spooler_.ScriptPath("lp1")), "bin");
  }
}

TEST_F(InterfaceScript, AScriptWithoutAnAddressLineIsLeftUnchanged) {
  spooler_.AddQueue("lp1", "a\nb\n");
  const size_t commands = CommandRecords().size();
  EXPECT_EQ(Change("lp1", "new.host"), 0);
  EXPECT_EQ(spooler_.Script("lp1"), "a\nb\n");
  EXPECT_EQ(NamesIn(SpoolerStandIn::kInterfaces), Strings{"lp1"});
  EXPECT_EQ(CommandRecords().size(), commands);
  EXPECT_EQ(Errors(), Strings{});
}

TEST_F(InterfaceScript, AMissingScriptIsReported) {
  EXPECT_EQ(Change("lp1", "new.host"), 0);
  EXPECT_EQ(Errors(), Strings{"read <" + spooler_.ScriptPath("lp1") + ">"});
}

TEST_F(InterfaceScript, ATemporaryFileThatCannotBeMadeIsReportedAsUnreadable) {
  spooler_.AddQueue("lp1", "NETWORK_ADDRESS=old\n");
  const std::string temporary = spooler_.ScriptPath("lp1") + ".KPXadmin";
  fs::create_directory(temporary);
  EXPECT_EQ(Change("lp1", "new.host"), 0);
  EXPECT_EQ(Errors(), Strings{"read <" + temporary + ">"});
  EXPECT_EQ(spooler_.Script("lp1"), "NETWORK_ADDRESS=old\n");
}

TEST_F(InterfaceScript, ALinkInTheTemporaryFilesPlaceIsNotWrittenThrough) {
  const TemporaryDirectory directory;
  directory.Write("victim", "safe");
  spooler_.AddQueue("lp1", "NETWORK_ADDRESS=old\n");
  fs::create_symlink(directory.Path("victim"), spooler_.ScriptPath("lp1") + ".KPXadmin");
  EXPECT_EQ(Change("lp1", "new.host"), 1);
  EXPECT_EQ(ContentOf(directory.Path("victim")), "safe");
  EXPECT_EQ(spooler_.Script("lp1"), "NETWORK_ADDRESS=new.host\n");
}

TEST_F(InterfaceScript, AFullDiskLeavesTheScriptAsItWas) {
  const SmallDisk disk(SpoolerStandIn::kInterfaces, 8192);
  const std::string script = "NETWORK_ADDRESS=old\n" + std::string(6000, '#');
  spooler_.AddQueue("lp1", script);
  EXPECT_EQ(Change("lp1", "new.host"), 0);
  EXPECT_EQ(Errors(), Strings{"write <" + spooler_.ScriptPath("lp1") + ".KPXadmin>"});
  EXPECT_EQ(spooler_.Script("lp1"), script);
  EXPECT_EQ(NamesIn(SpoolerStandIn::kInterfaces), Strings{"lp1"});
}

TEST_F(InterfaceScript, AFailedOwnerCommandReportsTheTemporaryFileThatIsGoneAlready) {
  spooler_.AddQueue("lp1", "NETWORK_ADDRESS=old\n");
  // The command's status is that of its last word's program.
  const std::string hidden = "/usr/bin/chown.hidden";
  fs::rename("/usr/bin/chown", hidden);
  const int result = Change("lp1", "new.host");
  fs::rename(hidden, "/usr/bin/chown");
  EXPECT_EQ(result, 0);
  EXPECT_EQ(Errors(), Strings{"remove <" + spooler_.ScriptPath("lp1") + ".KPXadmin>"});
  EXPECT_EQ(spooler_.Script("lp1"), "NETWORK_ADDRESS=new.host\n");
}

TEST_F(InterfaceScript, ANameThatTheShellWouldReadIsRefusedBeforeAnythingIsTouched) {
  spooler_.AddQueue("a;b", "NETWORK_ADDRESS=old\n");
  EXPECT_EQ(Change("a;b", "new.host"), 0);
  EXPECT_EQ(Errors(), Strings{"name <a;b>"});
  EXPECT_EQ(spooler_.Script("a;b"), "NETWORK_ADDRESS=old\n");
}

}  // namespace
