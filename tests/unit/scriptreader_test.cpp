// What an interface script says about its queue.
#include "scriptreader.h"

#include <gtest/gtest.h>

#include "porting.h"

namespace {

const InterfaceBlock kBlock = {.queue_type = "postscript",
                               .ppd_path = "/opt/orlan/data/nls/enu/ppds/vek41101.ppd",
                               .def_path = "/opt/orlan/data/lp1.def",
                               .address = "10.0.0.1",
                               .transport_parameter = "110"};

constexpr char kBridgeModel[] =
    "#!/bin/sh\n# Interface script of the printer model vek4110, copied for each queue.\n"
    "request=$1\n# End of the model\n";
constexpr char kOtherModel[] = "#!/bin/sh\n# model\n";

std::string Block(const std::string &type = "postscript") {
  InterfaceBlock block = kBlock;
  block.queue_type = type;
  return InterfaceBlockText(block);
}

BlockState StateOf(const std::string &script) { return ReadInterfaceBlock(script).state; }

TEST(ScriptReader, ReadsBackWhatWasWritten) {
  for (const char *model : {kBridgeModel, kOtherModel, ""}) {
    for (const char *type : {"postscript", "text", "pcl6"}) {
      const BlockReading reading = ReadInterfaceBlock(model + Block(type));
      ASSERT_EQ(reading.state, BlockState::Whole) << model << type;
      EXPECT_EQ(reading.block.queue_type, type);
      EXPECT_EQ(reading.block.ppd_path, kBlock.ppd_path);
      EXPECT_EQ(reading.block.def_path, kBlock.def_path);
      EXPECT_EQ(reading.block.address, kBlock.address);
      EXPECT_EQ(reading.block.transport_parameter, kBlock.transport_parameter);
    }
  }
}

TEST(ScriptReader, ARawQueueNamesNoPrinterDescription) {
  const BlockReading reading = ReadInterfaceBlock(kBridgeModel + Block("raw"));
  ASSERT_EQ(reading.state, BlockState::Whole);
  EXPECT_EQ(reading.block.queue_type, "raw");
  EXPECT_EQ(reading.block.ppd_path, "");
  EXPECT_EQ(reading.block.address, "10.0.0.1");
  EXPECT_EQ(reading.block.transport_parameter, "110");
}

TEST(ScriptReader, ABridgesScriptIsCutWhereverItsBlockBreaksOff) {
  for (const char *type : {"postscript", "raw"}) {
    const std::string block = Block(type);
    // Without the whole marker line it is not known as ours.
    for (size_t size = 1 + std::string_view(kMarkerLine).size(); size < block.size(); ++size) {
      EXPECT_EQ(StateOf(kBridgeModel + block.substr(0, size)), BlockState::Cut) << type << size;
    }
  }
}

TEST(ScriptReader, AnyOtherScriptIsCutOnlyAmongTheCommands) {
  const std::string block = Block();
  const size_t commands = block.find("{\n");
  for (size_t size = 0; size < block.size(); ++size) {
    const BlockState expected = size < commands + 2 ? BlockState::Other : BlockState::Cut;
    EXPECT_EQ(StateOf(kOtherModel + block.substr(0, size)), expected) << size;
  }
}

TEST(ScriptReader, WhatWasChangedByHandIsNeitherWholeNorCut) {
  std::string block = Block();
  block.replace(block.find("  shift"), 7, "  shift 2");
  EXPECT_EQ(StateOf(kBridgeModel + block), BlockState::Other);
  EXPECT_EQ(StateOf(std::string(kMarkerLine) + "\n"), BlockState::Other);
  EXPECT_EQ(StateOf(kOtherModel + std::string(kMarkerLine) + "\nNETWORK_ADDRESS=a\ntail"),
            BlockState::Other);
  EXPECT_EQ(StateOf(kBridgeModel), BlockState::Other);
  EXPECT_EQ(StateOf(""), BlockState::Other);
}

TEST(ScriptReader, WhatFollowsTheBlockDoesNotCount) {
  EXPECT_EQ(StateOf(kBridgeModel + Block() + "# more\n"), BlockState::Whole);
}

TEST(ScriptReader, TellsTheModelOfABridgesScript) {
  EXPECT_TRUE(IsFromBridge(kBridgeModel));
  EXPECT_FALSE(IsFromBridge(kOtherModel));
  EXPECT_EQ(ModelOfScript(kBridgeModel), "vek4110");
  EXPECT_EQ(ModelOfScript(kOtherModel), "");
}

}  // namespace
