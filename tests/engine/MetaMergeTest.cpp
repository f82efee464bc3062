// How the statuses of the three sub-commands become one.

#include <gtest/gtest.h>

#include <array>

#include "MetaFixture.h"

namespace {

using namespace engine_test;
using TalcPath::kTPFail;
using TalcPath::kTPNotSupported;
using TalcPath::kTPSuccess;
using TalcPath::kTPTimeOut;
using TalcPath::kTPTransmitFailure;

class MetaMergeTest : public EngineTest {
 protected:
  void SetUp() override { StartWith(kCarriers + Meta("Load", "DataName Image DataType BYTES ")); }
};

/// A status and the byte of a reply that tells it.
struct Told {
  TalcPathStatus status;
  std::uint8_t byte;
};
constexpr Told kTold[] = {
    {kTPSuccess, 0}, {kTPFail, 1}, {kTPNotSupported, 2}, {kTPTransmitFailure, 240}, {kTPTimeOut, 255}};

/// The three of Start, Repeat and Stop.
using Statuses = std::array<TalcPathStatus, 3>;

/// The first of these that any of the three has is what the command gets; none, and it has succeeded.
constexpr TalcPathStatus kPrecedence[] = {kTPNotSupported, kTPTransmitFailure, kTPTimeOut, kTPFail};

TalcPathStatus ExpectedOf(const Statuses& statuses) {
  for (const TalcPathStatus wanted : kPrecedence)
    for (const TalcPathStatus status : statuses)
      if (status == wanted) return wanted;
  return kTPSuccess;
}

/// A processor whose sub-commands get their statuses one at a time, the last one first: each by an execution of its own
/// that goes as far as the sub-command and no farther. In a single one nothing is executed behind a failure.
class Staged {
 public:
  explicit Staged(TalcCommand& command)
      : processor_(command, [this](const TalcByteCode& packet, TalcByteCode& reply) { return Answer(packet, reply); }) {
    EXPECT_TRUE(processor_.Compile());
  }

  MetaCommandByteCodeProcessor& processor() { return processor_; }

  /// `told` is the sub-command that gets the status byte, `refused` the one that the exchange fails for; 0 is none.
  void Execute(std::uint8_t told, std::uint8_t statusByte, std::uint8_t refused) {
    told_ = told;
    statusByte_ = statusByte;
    refused_ = refused;
    processor_.Execute();
  }

 private:
  bool Answer(const TalcByteCode& packet, TalcByteCode& reply) {
    const auto code = static_cast<std::uint8_t>(PacketOf(packet).at(5) >> 1);
    if (code == refused_) return false;
    // Replies to a request: a total of 1, and a byte of data.
    Bytes bytes = FromHex("0B 0B 00 04 80 00 00 00");
    bytes[5] = PacketOf(packet).at(5);
    if ((bytes[5] & 1) != 0 && code == 1) bytes = bytes + FromHex("00 00 00 01");
    if ((bytes[5] & 1) != 0 && code == 2) bytes = bytes + FromHex("41");
    bytes[3] = static_cast<std::uint8_t>(bytes.size() - 4);
    if (code == told_) bytes[7] = statusByte_;
    reply.Set(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    return true;
  }

  MetaCommandByteCodeProcessor processor_;
  std::uint8_t told_ = 0;
  std::uint8_t statusByte_ = 0;
  std::uint8_t refused_ = 0;
};

constexpr std::uint8_t kStart = 1;
constexpr std::uint8_t kRepeat = 2;
constexpr std::uint8_t kStop = 3;
constexpr std::uint8_t kNone = 0;

TEST_F(MetaMergeTest, TellsTheWorstOfTheThreeStatusesOfASend) {
  for (const Told& start : kTold)
    for (const Told& repeat : kTold)
      for (const Told& stop : kTold) {
        TalcCommand command = WithImage("Load", 3);
        Staged staged(command);
        staged.Execute(kStop, stop.byte, kNone);
        staged.Execute(kRepeat, repeat.byte, kStop);
        staged.Execute(kStart, start.byte, kRepeat);
        TalcCommand merged("Other");
        staged.processor().MergeStatuses(merged);
        EXPECT_EQ(merged.GetStatus(), ExpectedOf({start.status, repeat.status, stop.status}))
            << start.status << repeat.status << stop.status;
        EXPECT_EQ(merged.GetName(), "Other");
      }
}

TEST_F(MetaMergeTest, TellsTheWorstOfTheThreeStatusesOfARequest) {
  for (const Told& start : kTold)
    for (const Told& repeat : kTold)
      for (const Told& stop : kTold) {
        const Statuses statuses = {start.status, repeat.status, stop.status};
        if (statuses == Statuses{}) continue;
        TalcCommand command = Request("Load");
        Staged staged(command);
        // The Repeats of a request are read behind the Stop, from the first one on.
        staged.Execute(kRepeat, repeat.byte, kNone);
        staged.Execute(kStop, stop.byte, kNone);
        staged.Execute(kStart, start.byte, kRepeat);
        TalcCommand merged("Other");
        staged.processor().MergeStatuses(merged);
        EXPECT_EQ(merged.GetStatus(), ExpectedOf(statuses)) << start.status << repeat.status << stop.status;
        EXPECT_EQ(merged.GetName(), "Other");
        EXPECT_FALSE(merged.HasParameter("Image"));
      }
}

TEST_F(MetaMergeTest, GivesOnlyTheStatusForASend) {
  TalcCommand command = WithImage("Load", 3);
  Staged staged(command);
  staged.Execute(kNone, 0, kNone);
  TalcCommand merged("Other", 7);
  merged.SetUInt8("Own", 1);
  merged.SetStatus(kTPTimeOut);
  staged.processor().MergeStatuses(merged);
  EXPECT_EQ(merged.GetStatus(), kTPSuccess);
  EXPECT_EQ(merged.GetName(), "Other");
  EXPECT_EQ(merged.GetTransportId(), 7u);
  EXPECT_TRUE(merged.HasParameter("Own"));
  EXPECT_FALSE(merged.HasParameter("Image"));
}

TEST_F(MetaMergeTest, GivesTheWholeResultForARequest) {
  TalcCommand command("Load", 5);
  command.SetRequestCommand();
  command.SetUInt8("Asked", 9);
  Staged staged(command);
  staged.Execute(kNone, 0, kNone);
  // Before the merge the command is as it was.
  EXPECT_FALSE(command.HasParameter("Image"));
  TalcCommand merged("Other", 7);
  merged.SetUInt8("Own", 1);
  staged.processor().MergeStatuses(merged);
  EXPECT_EQ(merged.GetStatus(), kTPSuccess);
  EXPECT_EQ(merged.GetName(), "Load");
  EXPECT_TRUE(merged.IsRequestCommand());
  EXPECT_EQ(merged.GetTransportId(), 5u);
  EXPECT_FALSE(merged.HasParameter("Own"));
  EXPECT_TRUE(merged.HasParameter("Asked"));
  EXPECT_EQ(BytesHex(merged, "Image"), "41");
}

TEST_F(MetaMergeTest, GivesAFailureWhereNothingWasExecuted) {
  for (TalcCommand command : {WithImage("Load", 3), Request("Load"), TalcCommand("Nobody")}) {
    command.SetStatus(kTPSuccess);
    MetaCommandByteCodeProcessor(command).MergeStatuses(command);
    EXPECT_EQ(command.GetStatus(), kTPFail);
  }
}

}  // namespace
