#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/FailingAllocation.h"
#include "support/FailureOf.h"
#include "support/PlatformDouble.h"
#include "support/ScriptedTransport.h"
#include "talcpath.h"

// Commands of the program's own dictionary on their way through a helper, from the packet to the reply.

namespace {

using TalcPath::TalcCommand;
using test_support::Bytes;
using test_support::FromHex;

constexpr char kCannotCompile[] = "WyvrelHelper.cpp: Could not compile Talc command";
constexpr char kUnreadable[] = "WyvrelHelper.cpp: Talc error decompiling the returned Talc byte code packet.";
constexpr char kUnsupported[] = "WyvrelHelper.cpp: Unsupported BOB command or parameters";
constexpr char kBadStatus[] = "WyvrelHelper.cpp: Bad BOB status";

// VPDInfo of VPD_Hollen, and a reply of 7 bytes of VPD.
const std::string kVpdRequest = "0B 0B 00 06 80 35 00 00 00 C8";
const std::string kVpdReply = "0B 0B 00 0F 80 35 00 00 00 C8 00 07 90 04 00 5A 42 01 39";

class HelperCommandsTest : public testing::Test {
 protected:
  /// Asks for the VPD of VPD_Hollen.
  HwcStatus AskForVpd() {
    return helper.ExecuteCommand("VPDInfo",
                                 {Argument::Symbol("Board", "VPD_Hollen"), Argument::OutUInt16("VPDSize", &vpdSize),
                                  Argument::OutBytes("VPDInfo", vpd, sizeof vpd)});
  }
  void ExpectUntouchedPlaces() {
    EXPECT_EQ(vpdSize, 0x5A5A);
    EXPECT_EQ(Bytes(vpd, vpd + sizeof vpd), Bytes(sizeof vpd, 0x5A));
  }

  std::uint16_t vpdSize = 0x5A5A;
  std::uint8_t vpd[8] = {0x5A, 0x5A, 0x5A, 0x5A, 0x5A, 0x5A, 0x5A, 0x5A};
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
  ScriptedTransport helper;
};

TEST_F(HelperCommandsTest, AsksAndHandsOutTheReplysValues) {
  helper.Expect({Replies(kVpdRequest, kVpdReply)});
  EXPECT_EQ(AskForVpd(), kHWCerr_None);
  EXPECT_EQ(vpdSize, 7);
  EXPECT_EQ(Bytes(vpd, vpd + sizeof vpd), FromHex("90 04 00 5A 42 01 39 5A"));
}

TEST_F(HelperCommandsTest, SendsACommandWithoutValues) {
  helper.Expect({Replies("0B 0B 00 04 80 F6 00 00", "0B 0B 00 04 80 F6 00 00")});
  EXPECT_EQ(helper.SendCommand("SoftwareReset", {}), kHWCerr_None);
}

TEST_F(HelperCommandsTest, SendsValuesInTheOrderOfTheDefinition) {
  const std::vector<std::vector<Argument>> orders = {
      {Argument::UInt8("Region", 2), Argument::Symbol("FileType", "kBoB_Rbi"),
       Argument::UInt32("DownloadSize", 0x1234)},
      {Argument::UInt32("DownloadSize", 0x1234), Argument::Symbol("FileType", "kBoB_Rbi"),
       Argument::UInt8("Region", 2)},
      {Argument::Symbol("FileType", "kBoB_Rbi"), Argument::UInt8("Region", 2),
       Argument::UInt32("DownloadSize", 0x1234)},
  };
  for (const auto& order : orders) {
    helper.Expect({Replies("0B 0B 00 0A 80 0C 00 00 03 02 00 00 12 34", "0B 0B 00 04 80 0C 00 00")});
    EXPECT_EQ(helper.SendCommand("StartFirmwareDownload", {order[0], order[1], order[2]}), kHWCerr_None);
  }
}

TEST_F(HelperCommandsTest, CarriesACommandObjectAndItsReplyBackIntoIt) {
  TalcCommand command("VPDInfo");
  command.SetRequestCommand();
  command.SetUInt16("Board", 200);
  helper.Expect({Replies(kVpdRequest, kVpdReply)});
  EXPECT_EQ(helper.TransactCommand(command), kHWCerr_None);
  EXPECT_TRUE(command.IsSuccess());
  ASSERT_TRUE(command.GetUInt16("VPDSize", &vpdSize));
  EXPECT_EQ(vpdSize, 7);
}

TEST_F(HelperCommandsTest, CarriesADiagnosticPacket) {
  TalcCommand command("Diagnostic");
  command.SetSendCommand();
  command.SetUInt16("Length", 3);
  const std::uint8_t data[] = {0x62, 0x64, 0x00};
  command.SetBytes("DiagData", data, sizeof data);
  helper.Expect({Replies("0B 0B 00 09 C0 02 00 00 00 03 62 64 00", "0B 0B 00 04 C0 02 00 00")});
  EXPECT_EQ(helper.TransactCommand(command), kHWCerr_None);
}

// ---- Commands that have no packet

TEST_F(HelperCommandsTest, RefusesACommandThatTheDictionaryLacks) {
  for (const char* const name : {"NoSuchCommand", "vpdinfo", ""}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(FailureOf([&] { helper.ExecuteCommand(name, {}); }), kCannotCompile);
    EXPECT_EQ(FailureOf([&] { helper.SendCommand(name, {}); }), kCannotCompile);
    TalcCommand command(name);
    EXPECT_EQ(FailureOf([&] { helper.TransactCommand(command); }), kCannotCompile);
  }
}

TEST_F(HelperCommandsTest, RefusesACommandThatLacksAValue) {
  EXPECT_EQ(FailureOf([&] { helper.ExecuteCommand("VPDInfo", {}); }), kCannotCompile);
  EXPECT_EQ(FailureOf([&] { helper.ExecuteCommand("VPDInfo", {Argument::UInt16("Bored", 0)}); }), kCannotCompile);
  // Enough for a request, not for a send.
  EXPECT_EQ(FailureOf([&] { helper.SendCommand("VPDInfo", {Argument::UInt16("Board", 0)}); }), kCannotCompile);
}

TEST_F(HelperCommandsTest, RefusesASymbolThatTheCommandLacks) {
  // The second is one of another command.
  for (const char* const symbol : {"VPD_Nowhere", "kBoB_Rbi", "vpd_hollen"})
    EXPECT_EQ(FailureOf([&] { helper.ExecuteCommand("VPDInfo", {Argument::Symbol("Board", symbol)}); }),
              kCannotCompile);
}

TEST_F(HelperCommandsTest, RefusesMoreDataThanAPacketTakes) {
  const Bytes data(2039, 0x11);
  EXPECT_EQ(FailureOf([&] {
              helper.SendCommand("FPGADownload",
                                 {Argument::UInt16("Length", 2039), Argument::Bytes("TheDLData", data.data(), 2039)});
            }),
            kCannotCompile);
  Bytes packet = FromHex("0B 0B 07 FC 80 08 00 00 07 F6");
  packet.insert(packet.end(), 2038, 0x11);
  helper.Expect({{.command = packet, .reply = FromHex("0B 0B 00 04 80 08 00 00")}});
  EXPECT_EQ(helper.SendCommand("FPGADownload",
                               {Argument::UInt16("Length", 2038), Argument::Bytes("TheDLData", data.data(), 2038)}),
            kHWCerr_None);
}

TEST_F(HelperCommandsTest, LetsTheLibrarysOwnExceptionForAValueOfAnotherKindPass) {
  EXPECT_THROW(helper.ExecuteCommand("VPDInfo", {Argument::UInt8("Board", 200)}), TalcPath::bad_variant_cast);
}

TEST_F(HelperCommandsTest, RefusesACommandWithoutMemoryForItsPacket) {
  std::string failure;
  bool happened = false;
  {
    const test_support::FailingAllocation packet(1);
    failure = FailureOf([&] { helper.SendCommand("SoftwareReset", {}); });
    happened = packet.Happened();
  }
  EXPECT_TRUE(happened);
  EXPECT_EQ(failure, "WyvrelHelper.cpp: Could not GetPacketByteCodeBuffer");
}

TEST_F(HelperCommandsTest, CannotReadAReplyWithoutMemoryForIt) {
  helper.Expect({Replies(kVpdRequest, kVpdReply)});
  std::string failure;
  bool happened = false;
  {
    const test_support::FailingAllocation replyPacket(2);
    failure = FailureOf([&] { AskForVpd(); });
    happened = replyPacket.Happened();
  }
  EXPECT_TRUE(happened);
  EXPECT_EQ(failure, kUnreadable);
  ExpectUntouchedPlaces();
}

// ---- What comes back

TEST_F(HelperCommandsTest, ReturnsATimeOutAndLeavesThePlacesAlone) {
  helper.Expect({TimesOut(kVpdRequest), TimesOut("0B 0B 00 04 80 F6 00 00")});
  EXPECT_EQ(AskForVpd(), 0x8A030012u);
  ExpectUntouchedPlaces();
  EXPECT_EQ(helper.SendCommand("SoftwareReset", {}), 0x8A030012u);
}

TEST_F(HelperCommandsTest, LeavesACommandObjectAsItIsAfterATimeOut) {
  TalcCommand command("VPDInfo");
  command.SetRequestCommand();
  command.SetUInt16("Board", 200);
  command.SetStatus(TalcPath::kTPTimeOut);
  helper.Expect({TimesOut(kVpdRequest)});
  EXPECT_EQ(helper.TransactCommand(command), kHWCerr_CommandTimeout);
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPTimeOut);
  EXPECT_TRUE(command.HasParameter("Board"));
}

TEST_F(HelperCommandsTest, ThrowsForEachStatusThatIsNotSuccess) {
  const std::pair<std::string, const char*> cases[] = {
      {"02", kUnsupported}, {"01", kBadStatus}, {"03", kBadStatus},
      {"04", kBadStatus},   {"F0", kBadStatus}, {"FF", kBadStatus},
  };
  for (const auto& [status, failure] : cases) {
    SCOPED_TRACE(status);
    // Also where the values are there.
    helper.Expect({Replies(kVpdRequest, "0B 0B 00 0F 80 35 00 " + status + " 00 C8 00 07 90 04 00 5A 42 01 39"),
                   Replies("0B 0B 00 04 80 F6 00 00", "0B 0B 00 04 80 F6 00 " + status)});
    EXPECT_EQ(FailureOf([&] { AskForVpd(); }), failure);
    ExpectUntouchedPlaces();
    EXPECT_EQ(FailureOf([&] { helper.SendCommand("SoftwareReset", {}); }), failure);
  }
}

TEST_F(HelperCommandsTest, ThrowsForAReplyThatCannotBeRead) {
  const char* const replies[] = {
      "",                                        // none
      "0B 0B 00 04 80 35 00",                    // too short for a header
      "0B 0C 00 0F 80 35 00 00 00 C8 00 07 90",  // another mark
      "0B 0B 00 03 80 35 00 00 00 C8 00 07 90",  // a length that cannot be
      "0B 0B 00 04 80 35 00 00",                 // no values
      "0B 0B 00 06 80 35 00 00 00 C8 00 07 90",  // a length that leaves one out
      "0B 0B 00 0F 80 35 00 00 00 C8 00",        // ends in a value
  };
  for (const char* const reply : replies) {
    SCOPED_TRACE(reply);
    helper.Expect({Replies(kVpdRequest, reply)});
    EXPECT_EQ(FailureOf([&] { AskForVpd(); }), kUnreadable);
    ExpectUntouchedPlaces();
  }
}

TEST_F(HelperCommandsTest, TakesTheLongestReplyWhateverItsCapacityIs) {
  Bytes reply = FromHex("0B 0B 08 00 80 21 00 00");
  reply.insert(reply.end(), 2044, 0x41);
  ASSERT_EQ(reply.size(), 2052u);
  helper.Expect({{.command = FromHex("0B 0B 00 04 80 21 00 00"), .reply = reply}});
  std::uint8_t type[2044] = {};
  EXPECT_EQ(helper.ExecuteCommand("HardwareTypeID", {Argument::OutBytes("TypeID", type, sizeof type)}), kHWCerr_None);
  EXPECT_EQ(Bytes(type, type + sizeof type), Bytes(2044, 0x41));
}

TEST_F(HelperCommandsTest, KeepsNothingOfOneCommandForTheNext) {
  // Neither what was put in,
  const std::uint8_t data[] = {0xDE, 0xAD};
  helper.Expect({Replies("0B 0B 00 08 80 08 00 00 00 02 DE AD", "0B 0B 00 04 80 08 00 00")});
  EXPECT_EQ(helper.SendCommand("FPGADownload", {Argument::UInt16("Length", 2), Argument::Bytes("TheDLData", data, 2)}),
            kHWCerr_None);
  EXPECT_EQ(FailureOf([&] { helper.SendCommand("FPGADownload", {}); }), kCannotCompile);
  // nor what came out,
  helper.Expect({Replies(kVpdRequest, kVpdReply), Replies("0B 0B 00 04 80 F6 00 00", "0B 0B 00 04 80 F6 00 00"),
                 Replies("0B 0B 00 04 80 21 00 00", "0B 0B 00 05 80 21 00 00 41")});
  EXPECT_EQ(AskForVpd(), kHWCerr_None);
  EXPECT_EQ(FailureOf([&] { helper.ExecuteCommand("VPDInfo", {}); }), kCannotCompile);
  EXPECT_EQ(helper.SendCommand("SoftwareReset", {}), kHWCerr_None);
  vpdSize = 0x5A5A;
  EXPECT_EQ(FailureOf([&] { helper.ExecuteCommand("HardwareTypeID", {Argument::OutUInt16("VPDSize", &vpdSize)}); }),
            "WyvrelHelper.cpp: kHWCerr_UnexpectedObjectTypeError");
  EXPECT_EQ(vpdSize, 0x5A5A);
  // nor the reply itself, for one that is empty.
  helper.Expect(
      {Replies("0B 0B 00 04 80 21 00 00", "0B 0B 00 05 80 21 00 00 41"), Replies("0B 0B 00 04 80 21 00 00", "")});
  EXPECT_EQ(helper.ExecuteCommand("HardwareTypeID", {}), kHWCerr_None);
  EXPECT_EQ(FailureOf([&] { helper.ExecuteCommand("HardwareTypeID", {}); }), kUnreadable);
}

// ---- The transport's own failures

TEST_F(HelperCommandsTest, ThrowsForEveryOtherStatusOfTheTransport) {
  for (const std::uint32_t status : {0x8A030046u, 0x8A03028Eu, 0x8A030026u, 1u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(status);
    const Exchange failing{.command = FromHex(kVpdRequest), .status = static_cast<HwcStatus>(status)};
    helper.Expect({failing, failing});
    EXPECT_EQ(FailureOf([&] { AskForVpd(); }), "WyvrelHelper.cpp: IOCTL_TransactBoBCommand failed");
    ExpectUntouchedPlaces();
    const Bytes packet = FromHex(kVpdRequest);
    std::uint8_t reply[kReplyRoomBytes];
    std::uint32_t length = 2000;
    EXPECT_EQ(FailureOf([&] { helper.TransactBoBCommand(packet.data(), 10, reply, &length, 1'000'000, 0); }),
              "WyvrelHelper.cpp: IOCTL_TransactBoBCommand failed");
  }
}

TEST_F(HelperCommandsTest, LetsTheTransportsOwnExceptionsPass) {
  helper.Expect({{.command = FromHex(kVpdRequest),
                  .onExchange = [] { throw errorException("BOB Communications error", "Transport.cpp", 5); }}});
  EXPECT_EQ(FailureOf([&] { AskForVpd(); }), "Transport.cpp: BOB Communications error");
  ExpectUntouchedPlaces();
}

/// A transport that notes what it is asked for.
class NotingTransport : public ScriptedTransport {
 public:
  HwcStatus IOCTL_TransactBoBCommand(const std::uint8_t* command, std::uint32_t commandLengthBytes, std::uint8_t* reply,
                                     std::uint32_t* replyLengthBytes, std::uint32_t timeoutLow,
                                     std::uint32_t timeoutHigh) override {
    asked.push_back({command, commandLengthBytes, reply, replyLengthBytes, timeoutLow, timeoutHigh});
    return answer;
  }

  struct Asked {
    const std::uint8_t* command;
    std::uint32_t commandLengthBytes;
    std::uint8_t* reply;
    std::uint32_t* replyLengthBytes;
    std::uint32_t timeoutLow;
    std::uint32_t timeoutHigh;
    bool operator==(const Asked&) const = default;
  };
  std::vector<Asked> asked;
  HwcStatus answer = kHWCerr_None;
};

TEST_F(HelperCommandsTest, HandsARawExchangeToTheTransportAsItIs) {
  NotingTransport transport;
  const std::uint8_t command[4] = {};
  std::uint8_t reply[kReplyRoomBytes];
  std::uint32_t length = 17;
  EXPECT_EQ(transport.TransactBoBCommand(command, 4, reply, &length, 5, 6), kHWCerr_None);
  transport.answer = kHWCerr_CommandTimeout;
  EXPECT_EQ(transport.TransactBoBCommand(nullptr, 0, nullptr, nullptr, 0xFFFFFFFF, 0x80000000), kHWCerr_CommandTimeout);
  const std::vector<NotingTransport::Asked> expected = {{command, 4, reply, &length, 5, 6},
                                                        {nullptr, 0, nullptr, nullptr, 0xFFFFFFFF, 0x80000000}};
  EXPECT_TRUE(transport.asked == expected);
  EXPECT_EQ(length, 17u);
}

}  // namespace
