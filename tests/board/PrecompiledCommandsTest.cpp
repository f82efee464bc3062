#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "support/FailingAllocation.h"
#include "support/FailureOf.h"
#include "support/PlatformDouble.h"
#include "support/ScriptedTransport.h"

// Packets that are made once and sent by hand, and replies that come back so. Neither goes through the transport.

namespace {

using test_support::Bytes;
using test_support::FromHex;

class PrecompiledCommandsTest : public testing::Test {
 protected:
  /// The packet of ProgramFPGA, into a buffer of which this much room is told.
  HwcStatus Precompile(std::uint32_t roomBytes, std::uint8_t queryFlag = 0) {
    std::fill_n(buffer, sizeof buffer, std::uint8_t{0x5A});
    length = roomBytes;
    return helper.PrecompileCommand(buffer, &length, queryFlag, "ProgramFPGA", {});
  }
  Bytes Buffer() const { return {buffer, buffer + sizeof buffer}; }

  std::uint8_t buffer[12] = {};
  std::uint32_t length = 0;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
  ScriptedTransport helper;
};

TEST_F(PrecompiledCommandsTest, AreSendsWithoutTheQueryFlagAndRequestsWithIt) {
  EXPECT_EQ(Precompile(12, 0), kHWCerr_None);
  EXPECT_EQ(length, 8u);
  EXPECT_EQ(Buffer(), FromHex("0B 0B 00 04 80 0A 00 00 5A 5A 5A 5A"));
  for (const std::uint8_t queryFlag : {std::uint8_t{1}, std::uint8_t{0xFF}}) {
    EXPECT_EQ(Precompile(12, queryFlag), kHWCerr_None);
    EXPECT_EQ(length, 8u);
    EXPECT_EQ(Buffer(), FromHex("0B 0B 00 04 80 0B 00 00 5A 5A 5A 5A"));
  }
}

TEST_F(PrecompiledCommandsTest, FillABufferOfTheirLength) {
  EXPECT_EQ(Precompile(8), kHWCerr_None);
  EXPECT_EQ(length, 8u);
  EXPECT_EQ(Buffer(), FromHex("0B 0B 00 04 80 0A 00 00 5A 5A 5A 5A"));
}

// Nobody ever put the command's name into the message.
TEST_F(PrecompiledCommandsTest, AreRefusedOneByteLess) {
  for (const std::uint32_t room : {7u, 0u}) {
    EXPECT_EQ(FailureOf([&] { Precompile(room); }), "WyvrelHelper.cpp: Precompiled command buffer for %s is too small");
    EXPECT_EQ(length, room);
    EXPECT_EQ(Buffer(), Bytes(12, 0x5A));
  }
}

TEST_F(PrecompiledCommandsTest, CarryValues) {
  length = sizeof buffer;
  std::uint8_t ignored = 0;
  EXPECT_EQ(helper.PrecompileCommand(buffer, &length, 1, "StartFPGADownload",
                                     {Argument::UInt8("TheFPGA", 1), Argument::Symbol("FileType", "kBoBF_Rbi"),
                                      Argument::OutUInt8("TheFPGA", &ignored)}),
            kHWCerr_None);
  EXPECT_EQ(length, 10u);
  EXPECT_EQ(Bytes(buffer, buffer + 10), FromHex("0B 0B 00 06 80 07 00 00 01 03"));
}

TEST_F(PrecompiledCommandsTest, AreRefusedWhenThereIsNoPacket) {
  length = sizeof buffer;
  const char kFailure[] = "WyvrelHelper.cpp: Could not compile Talc command";
  EXPECT_EQ(FailureOf([&] { helper.PrecompileCommand(buffer, &length, 0, "NoSuchCommand", {}); }), kFailure);
  EXPECT_EQ(FailureOf([&] { helper.PrecompileCommand(buffer, &length, 1, "VPDInfo", {}); }), kFailure);
  EXPECT_EQ(FailureOf([&] {
              helper.PrecompileCommand(buffer, &length, 1, "VPDInfo", {Argument::Symbol("Board", "VPD_Nowhere")});
            }),
            kFailure);
  EXPECT_EQ(length, sizeof buffer);
}

TEST_F(PrecompiledCommandsTest, AreRefusedWithoutMemory) {
  std::string failure;
  bool happened = false;
  {
    const test_support::FailingAllocation packet(1);
    failure = FailureOf([&] { Precompile(12); });
    happened = packet.Happened();
  }
  EXPECT_TRUE(happened);
  EXPECT_EQ(failure, "WyvrelHelper.cpp: kHWCerr_InvalidUsageError");
  EXPECT_EQ(Buffer(), Bytes(12, 0x5A));
}

// ---- Replies

class RawRepliesTest : public PrecompiledCommandsTest {
 protected:
  HwcStatus Decode(const std::string& reply, const char* name, Arguments arguments) {
    const Bytes bytes = FromHex(reply);
    return helper.DecodeReply(bytes.data(), static_cast<std::uint32_t>(bytes.size()), name, arguments);
  }
};

TEST_F(RawRepliesTest, GiveTheirValues) {
  std::uint16_t board = 0;
  std::uint8_t vpd[3] = {};
  EXPECT_EQ(Decode("0B 0B 00 0B 80 35 00 00 00 C8 00 03 90 04 00", "VPDInfo",
                   {Argument::OutBytes("VPDInfo", vpd, sizeof vpd), Argument::OutUInt16("Board", &board)}),
            kHWCerr_None);
  EXPECT_EQ(board, 200);
  EXPECT_EQ(Bytes(vpd, vpd + 3), FromHex("90 04 00"));
}

// Nothing tells the two apart in a reply, so one to a send is read for values as well.
TEST_F(RawRepliesTest, AreAlwaysTakenForThoseOfARequest) {
  std::uint8_t fpga = 0;
  EXPECT_EQ(
      Decode("0B 0B 00 0A 80 06 00 00 01 03 00 00 12 34", "StartFPGADownload", {Argument::OutUInt8("TheFPGA", &fpga)}),
      kHWCerr_None);
  EXPECT_EQ(fpga, 1);
  EXPECT_EQ(FailureOf([&] { Decode("0B 0B 00 04 80 06 00 00", "StartFPGADownload", {}); }),
            "WyvrelHelper.cpp: Talc error decompiling the returned %s Talc byte code packet");
}

TEST_F(RawRepliesTest, NeedNoValuesWhenTheCommandHasNone) {
  EXPECT_EQ(Decode("0B 0B 00 04 80 0A 00 00", "ProgramFPGA", {}), kHWCerr_None);
}

TEST_F(RawRepliesTest, PassOverInputs) {
  std::uint16_t size = 0;
  EXPECT_EQ(Decode("0B 0B 00 08 80 35 00 00 00 C8 00 00", "VPDInfo",
                   {Argument::UInt16("Board", 1), Argument::OutUInt16("VPDSize", &size)}),
            kHWCerr_None);
}

// Nobody ever put the command's name into the message.
TEST_F(RawRepliesTest, ThatCannotBeReadAreRefused) {
  for (const char* const reply : {"", "0B 0B 00 04 80 0A 00", "0B 0C 00 04 80 0A 00 00", "0B 0B 00 03 80 0A 00 00"}) {
    SCOPED_TRACE(reply);
    EXPECT_EQ(FailureOf([&] { Decode(reply, "ProgramFPGA", {}); }),
              "WyvrelHelper.cpp: Talc error decompiling the returned %s Talc byte code packet");
  }
  EXPECT_EQ(FailureOf([&] { Decode("0B 0B 00 04 80 0A 00 00", "NoSuchCommand", {}); }),
            "WyvrelHelper.cpp: Talc error decompiling the returned %s Talc byte code packet");
}

TEST_F(RawRepliesTest, AreForgottenOnceTheyAreRead) {
  EXPECT_EQ(Decode("0B 0B 00 04 80 0A 00 00", "ProgramFPGA", {}), kHWCerr_None);
  EXPECT_EQ(FailureOf([&] { Decode("", "ProgramFPGA", {}); }),
            "WyvrelHelper.cpp: Talc error decompiling the returned %s Talc byte code packet");
  // Nor does a precompiled command stand in for a reply.
  EXPECT_EQ(Precompile(12), kHWCerr_None);
  EXPECT_EQ(FailureOf([&] { Decode("", "ProgramFPGA", {}); }),
            "WyvrelHelper.cpp: Talc error decompiling the returned %s Talc byte code packet");
}

TEST_F(RawRepliesTest, ThrowForEachStatusThatIsNotSuccess) {
  const std::pair<std::string, std::string> cases[] = {
      {"02", "Unsupported BOB command or parameters"},
      {"01", "Bad BOB status"},
      {"03", "Bad BOB status"},
      {"F0", "Bad BOB status"},
      {"FF", "Bad BOB status"},
  };
  for (const auto& [status, message] : cases) {
    SCOPED_TRACE(status);
    std::uint16_t size = 0x5A5A;
    const std::string reply = "0B 0B 00 08 80 35 00 " + status + " 00 C8 00 00";
    EXPECT_EQ(FailureOf([&] { Decode(reply, "VPDInfo", {Argument::OutUInt16("VPDSize", &size)}); }),
              "WyvrelHelper.cpp: " + message);
    EXPECT_EQ(size, 0x5A5A);
  }
}

TEST_F(RawRepliesTest, ThatLackAnOutputAreRefused) {
  std::uint32_t size = 0x5A5A;
  for (const Argument& output : {Argument::OutUInt32("VPDSize", &size), Argument::OutUInt32("Size", &size)})
    EXPECT_EQ(FailureOf([&] { Decode("0B 0B 00 08 80 35 00 00 00 C8 00 00", "VPDInfo", {output}); }),
              "WyvrelHelper.cpp: kHWCerr_UnexpectedObjectTypeError");
  EXPECT_EQ(size, 0x5A5Au);
}

}  // namespace
