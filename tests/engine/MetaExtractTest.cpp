// The values that a meta command's request gets from the pulled data.

#include <gtest/gtest.h>

#include "MetaFixture.h"

namespace {

using namespace engine_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MetaExtractTest : public EngineTest {
 protected:
  void SetUp() override {
    StartWith(kCarriers +
              Meta("All",
                   "DataName A DataType UINT8 DataName B DataType INT8 DataName C DataType UINT16 "
                   "DataName D DataType INT16 DataName E DataType UINT32 DataName F DataType INT32 "
                   "DataName G DataType UINT64 DataName H DataType INT64 DataName I DataType BYTES ") +
              Meta("Two", "DataName A RD DataType UINT8 DataName B DataType UINT32 ") + Meta("Nothing", "") +
              "Numbers Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 4 DataName X DataType UINT32 ;"
              "NumberPart Meta Start Begin Repeat Numbers Stop End DataName A DataType BYTES ;");
  }
};

/// Replies that tell a total below 256 and bring these bytes, a text for each Repeat.
std::vector<Event> Bringing(const std::string& total, const std::vector<std::string>& parts) {
  std::vector<Event> script = {{kAskBegin, "0B 0B 00 08 80 03 00 00 00 00 00 " + total}};
  for (const std::string& part : parts)
    script.push_back({kAskPart, part});
  script.push_back({kAskEnd, kAskEnd});
  return script;
}

std::uint8_t ByteOf(const TalcCommand& command, std::string_view name) {
  std::uint8_t value = 0;
  EXPECT_TRUE(command.GetUInt8(name, &value)) << name;
  return value;
}
std::uint32_t NumberOf(const TalcCommand& command, std::string_view name) {
  std::uint32_t value = 0;
  EXPECT_TRUE(command.GetUInt32(name, &value)) << name;
  return value;
}

TEST_F(MetaExtractTest, ReadsEachKindMostSignificantByteFirst) {
  TalcCommand command = Request("All");
  EXPECT_TRUE(
      Carry(command, Bringing("21", {"0B 0B 00 25 80 05 00 00 81 FE 82 83 FF FD 84 85 86 87 FF FF FF FC 88 89 8A 8B "
                                     "8C 8D 8E 8F FF FF FF FF FF FF FF FB 00 3B FF"})));
  std::int8_t b = 0;
  std::uint16_t c = 0;
  std::int16_t d = 0;
  std::int32_t f = 0;
  std::uint64_t g = 0;
  std::int64_t h = 0;
  EXPECT_TRUE(command.GetInt8("B", &b) && command.GetUInt16("C", &c) && command.GetInt16("D", &d) &&
              command.GetInt32("F", &f) && command.GetUInt64("G", &g) && command.GetInt64("H", &h));
  EXPECT_EQ(ByteOf(command, "A"), 0x81);
  EXPECT_EQ(b, -2);
  EXPECT_EQ(c, 0x8283);
  EXPECT_EQ(d, -3);
  EXPECT_EQ(NumberOf(command, "E"), 0x84858687u);
  EXPECT_EQ(f, -4);
  EXPECT_EQ(g, 0x88898A8B8C8D8E8Fu);
  EXPECT_EQ(h, -5);
  EXPECT_EQ(BytesHex(command, "I"), "00 3B FF");
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPSuccess);
  EXPECT_TRUE(command.IsRequestCommand());
}

TEST_F(MetaExtractTest, PutsANumberTogetherFromSeveralReplies) {
  TalcCommand command = Request("Two");
  EXPECT_TRUE(Carry(command, Bringing("05", {"0B 0B 00 06 80 05 00 00 A1 01", "0B 0B 00 05 80 05 00 00 02",
                                             "0B 0B 00 06 80 05 00 00 03 04"})));
  EXPECT_EQ(ByteOf(command, "A"), 0xA1);
  EXPECT_EQ(NumberOf(command, "B"), 0x01020304u);
}

TEST_F(MetaExtractTest, IgnoresWhatStandsBehindTheLastValue) {
  TalcCommand command = Request("Two");
  EXPECT_TRUE(Carry(command, Bringing("07", {"0B 0B 00 0B 80 05 00 00 A1 01 02 03 04 EE EE"})));
  EXPECT_EQ(NumberOf(command, "B"), 0x01020304u);
  EXPECT_TRUE(command.IsSuccess());
}

TEST_F(MetaExtractTest, FailsWhereTheDataEndsInsideANumber) {
  SetFlags(false, true);
  TalcCommand command = Request("Two");
  command.SetUInt32("B", 7);
  EXPECT_FALSE(Carry(command, Bringing("04", {"0B 0B 00 08 80 05 00 00 A1 01 02 03"})));
  EXPECT_THAT(ErrorsIn(TakeLog()), IsEmpty());
  EXPECT_FALSE(command.HasParameter("A"));
  EXPECT_EQ(NumberOf(command, "B"), 7u);
}

TEST_F(MetaExtractTest, StopsWhereTheDataEndsBetweenValues) {
  TalcCommand command = Request("Two");
  EXPECT_TRUE(Carry(command, Bringing("01", {"0B 0B 00 05 80 05 00 00 A1"})));
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPSuccess);
  EXPECT_EQ(ByteOf(command, "A"), 0xA1);
  EXPECT_FALSE(command.HasParameter("B"));

  TalcCommand all = Request("All");
  EXPECT_TRUE(Carry(all, Bringing("1E", {"0B 0B 00 22 80 05 00 00 81 FE 82 83 FF FD 84 85 86 87 FF FF FF FC 88 89 8A "
                                         "8B 8C 8D 8E 8F FF FF FF FF FF FF FF FB"})));
  EXPECT_FALSE(all.HasParameter("I"));
}

TEST_F(MetaExtractTest, KeepsValuesThatTheDataDoesNotReplace) {
  TalcCommand command("Two", 5);
  command.SetRequestCommand();
  command.SetUInt8("Own", 9);
  command.SetUInt8("B", 8);
  command.SetUInt16("A", 7);
  EXPECT_TRUE(Carry(command, Bringing("01", {"0B 0B 00 05 80 05 00 00 A1"})));
  EXPECT_EQ(command.GetName(), "Two");
  EXPECT_TRUE(command.IsRequestCommand());
  EXPECT_EQ(command.GetTransportId(), 5u);
  EXPECT_EQ(ByteOf(command, "Own"), 9);
  EXPECT_EQ(ByteOf(command, "B"), 8);
  // In place of one of another kind.
  EXPECT_EQ(ByteOf(command, "A"), 0xA1);
}

// All three have succeeded, and there is nothing that was made of it. It is meant.
TEST_F(MetaExtractTest, LeavesNothingOfACommandWithoutParameters) {
  TalcCommand command("Nothing", 5);
  command.SetRequestCommand();
  command.SetUInt8("Own", 9);
  command.SetStatus(TalcPath::kTPTimeOut);
  EXPECT_TRUE(Carry(command, Bringing("01", {"0B 0B 00 05 80 05 00 00 A1"})));
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPFail);
  EXPECT_EQ(command.GetName(), "");
  EXPECT_TRUE(command.IsSendCommand());
  EXPECT_EQ(command.GetTransportId(), 0u);
  EXPECT_FALSE(command.HasParameter("Own"));
  // The data is looked at all the same.
  TalcCommand without = Request("Nothing");
  EXPECT_FALSE(Carry(without, Bringing("01", {"0B 0B 00 04 80 05 00 00"})));
  EXPECT_FALSE(Carry(without, Bringing("00", {"0B 0B 00 05 80 05 00 00 A1"})));
}

TEST_F(MetaExtractTest, FailsForAParameterOfAnUnknownType) {
  TalcPathPrivate::FindDefinedCommand("Two")->Parameters()[1].dataType = TalcPathPrivate::DataType("UINT24");
  SetFlags(false, true);
  TalcCommand command = Request("Two");
  EXPECT_FALSE(Carry(command, Bringing("05", {"0B 0B 00 09 80 05 00 00 A1 01 02 03 04"})));
  EXPECT_THAT(ErrorsIn(TakeLog()), ElementsAre("DataRequest parameter extraction - param size error"));
  // Where the data does not come so far, the type does not matter.
  EXPECT_TRUE(Carry(command, Bringing("01", {"0B 0B 00 05 80 05 00 00 A1"})));
  EXPECT_EQ(ByteOf(command, "A"), 0xA1);
}

TEST_F(MetaExtractTest, TakesTheDataAsItStandsWhateverTheRepeatIs) {
  const auto bringing = [](const char* total, const char* part) {
    std::vector<Event> script = Bringing(total, {part});
    script[1].packet = "0B 0B 00 04 80 09 00 00";
    return script;
  };
  TalcCommand command = Request("NumberPart");
  EXPECT_TRUE(Carry(command, bringing("05", "0B 0B 00 09 80 09 00 00 01 02 03 04 05")));
  EXPECT_EQ(BytesHex(command, "A"), "01 02 03 04 05");
  // But it must be readable.
  EXPECT_FALSE(Carry(command, bringing("03", "0B 0B 00 07 80 09 00 00 01 02 03")));
}

}  // namespace
