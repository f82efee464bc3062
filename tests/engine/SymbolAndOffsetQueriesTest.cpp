// The numbers of symbols, and where values lie in a packet.

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "dictionary/DataType.h"
#include "EngineFixture.h"
#include "HandmadeFormats.h"

namespace {

using namespace engine_test;
using TalcPath::GetParameterOffset;
using TalcPath::GetSymbolValue;
using TalcPathPrivate::CommandType;
using TalcPathPrivate::DataType;

constexpr const char* kDictionary =
    "Fixed Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1 DataName A RD DataType UINT8 DataName B DataType"
    " UINT64 DataName C RD DataType INT16 Symbol On 7 Symbol Low -2147483648 ;"
    "Text Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 2 DataName A RD DataType UINT8 DataName B DataType"
    " UINT16 DataName Text DataType BYTES ;"
    "Empty Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 3 ;"
    "Lamp Diag DiagOpcode 5 DataName Row DataType UINT32 DataName Column DataType UINT8 Symbol Red 3 ;"
    "Table Meta Start Fixed Repeat Text Stop Empty DataName Whole DataType UINT32 Symbol Full 9 ;";

/// The out value of a question that answered as expected.
std::int32_t Offset(bool isGood, const TalcCommand& command, const char* name) {
  std::int32_t offset = 77;
  EXPECT_EQ(GetParameterOffset(command, name, &offset), isGood) << command.GetName() << " " << name;
  return offset;
}

class ParameterOffsetTest : public EngineTest {
 protected:
  ParameterOffsetTest() {
    StartWith(kDictionary);
    SetFlags(true, false);
  }
};

TEST_F(ParameterOffsetTest, CountsFromThePacketsFirstByte) {
  for (const TalcCommand& command : {TalcCommand("Fixed"), Request("Fixed")}) {
    EXPECT_EQ(Offset(true, command, "A"), 8);
    EXPECT_EQ(Offset(true, command, "B"), 9);
    EXPECT_EQ(Offset(true, command, "C"), 17);
  }
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ParameterOffsetTest, OfADiagnosticCommandLiesBehindItsLongerHeader) {
  EXPECT_EQ(Offset(true, TalcCommand("Lamp"), "Row"), 36);
  EXPECT_EQ(Offset(true, TalcCommand("Lamp"), "Column"), 40);
}

TEST_F(ParameterOffsetTest, BeforeAValueOfAnyLengthNeedsThatValue) {
  TalcCommand text("Text");
  EXPECT_EQ(Offset(false, text, "A"), -1);
  EXPECT_EQ(TakeLog(), "\nParameter Not Found error - param name : Text");
  SetBytes(text, "Text", {1, 2, 3});
  EXPECT_EQ(Offset(true, text, "A"), 8);
  EXPECT_EQ(Offset(true, text, "B"), 9);
  // A request carries none.
  EXPECT_EQ(Offset(true, Request("Text"), "B"), 9);
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ParameterOffsetTest, OfAValueOfAnyLengthIsNotTold) {
  TalcCommand text("Text");
  SetBytes(text, "Text", {1, 2, 3});
  EXPECT_EQ(Offset(false, text, "Text"), -1);
  EXPECT_EQ(Offset(false, Request("Text"), "Text"), -1);
}

TEST_F(ParameterOffsetTest, BehindAValueOfAnyLengthDependsOnIt) {
  auto format = std::make_unique<HandmadeTalc>(CommandType{CommandType::Major::SYSTEM, 0, 9});
  format->Parameters().emplace_back("Text", DataType("BYTES"), false);
  format->Parameters().emplace_back("Behind", DataType("UINT16"), false);
  format->SetHasVariableLengthData(true);
  ASSERT_TRUE(Define(std::move(format), "Odd"));
  TalcCommand odd("Odd");
  for (const std::int32_t length : {1, 100, 2038}) {
    SetBytes(odd, "Text", Bytes(static_cast<std::size_t>(length)));
    EXPECT_EQ(Offset(true, odd, "Behind"), 8 + length);
  }
  SetBytes(odd, "Text", Bytes(2039));  // more than a packet holds
  EXPECT_EQ(Offset(false, odd, "Behind"), -1);
  odd.SetRequestCommand();
  EXPECT_EQ(Offset(true, odd, "Behind"), 8);
}

TEST_F(ParameterOffsetTest, ThrowsForAValueOfAnotherKind) {
  TalcCommand text("Text");
  text.SetUInt8("Text", 1);
  std::int32_t offset = 77;
  EXPECT_THROW(GetParameterOffset(text, "A", &offset), TalcPath::bad_variant_cast);
}

TEST_F(ParameterOffsetTest, OfWhatIsNotThereIsNotTold) {
  EXPECT_EQ(Offset(false, TalcCommand("Fixed"), "D"), -1);
  EXPECT_EQ(Offset(false, TalcCommand("Fixed"), ""), -1);
  EXPECT_EQ(Offset(false, TalcCommand("Empty"), "A"), -1);
  EXPECT_EQ(TakeLog(), "");
  EXPECT_EQ(Offset(false, TalcCommand("Nope"), "A"), -1);
  EXPECT_EQ(TakeLog(), "\nCommand format not found - command name : Nope");
}

TEST_F(ParameterOffsetTest, OfAMetaCommandIsNotTold) {
  EXPECT_EQ(Offset(false, TalcCommand("Table"), "Whole"), -1);
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ParameterOffsetTest, NeedsBothArguments) {
  std::int32_t offset = 77;
  EXPECT_FALSE(GetParameterOffset(TalcCommand("Fixed"), nullptr, &offset));
  EXPECT_FALSE(GetParameterOffset(TalcCommand("Fixed"), "A", nullptr));
  EXPECT_FALSE(GetParameterOffset(TalcCommand("Nope"), nullptr, nullptr));
  EXPECT_EQ(TakeLog(), "");
}

class SymbolValueTest : public ParameterOffsetTest {
 protected:
  /// The value of a symbol by both questions, which answer alike, or none.
  static std::optional<std::int32_t> ValueOf(const char* command, const char* symbol) {
    std::int32_t byName = 77;
    std::int32_t byCommand = 77;
    const bool isFound = GetSymbolValue(command, symbol, &byName);
    EXPECT_EQ(GetSymbolValue(TalcCommand(command), symbol, &byCommand), isFound);
    EXPECT_EQ(byCommand, byName);
    if (isFound) return byName;
    EXPECT_EQ(byName, 77);
    return std::nullopt;
  }
};

TEST_F(SymbolValueTest, IsThatOfTheCommandsDefinition) {
  EXPECT_EQ(ValueOf("Fixed", "On"), 7);
  EXPECT_EQ(ValueOf("Fixed", "Low"), -2147483647 - 1);
  EXPECT_EQ(ValueOf("Lamp", "Red"), 3);
  EXPECT_EQ(ValueOf("Table", "Full"), 9);
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(SymbolValueTest, OfASymbolThatIsNotThereIsNotTold) {
  std::int32_t value = 77;
  for (const char* const symbol : {"on", "On1", "Red"}) {
    const std::string line =
        std::string("\nIsParameterEqualToSymbol -  Symbol not found - Command : Fixed Symbol: ") + symbol;
    EXPECT_FALSE(GetSymbolValue("Fixed", symbol, &value));
    EXPECT_EQ(TakeLog(), line);
    EXPECT_FALSE(GetSymbolValue(TalcCommand("Fixed"), symbol, &value));
    EXPECT_EQ(TakeLog(), line);
  }
  EXPECT_EQ(value, 77);
}

TEST_F(SymbolValueTest, OfACommandThatIsNotDefinedIsNotTold) {
  std::int32_t value = 77;
  EXPECT_FALSE(GetSymbolValue("Nope", "On", &value));
  EXPECT_EQ(TakeLog(), "\nIsParameterEqualToSymbol - Command not found - Command : Nope");
  EXPECT_FALSE(GetSymbolValue(TalcCommand("Nope"), "On", &value));
  EXPECT_EQ(TakeLog(), "\nIsParameterEqualToSymbol - Command not found - Command : Nope");
  EXPECT_FALSE(GetSymbolValue(TalcCommand(), "On", &value));
  EXPECT_EQ(TakeLog(), "\nIsParameterEqualToSymbol - Command not found - Command : ");
  EXPECT_EQ(value, 77);
}

TEST_F(SymbolValueTest, NeedsAllArguments) {
  std::int32_t value = 77;
  EXPECT_FALSE(GetSymbolValue(static_cast<const char*>(nullptr), "On", &value));
  EXPECT_FALSE(GetSymbolValue("", "On", &value));
  EXPECT_FALSE(GetSymbolValue("Fixed", nullptr, &value));
  EXPECT_FALSE(GetSymbolValue("Fixed", "On", nullptr));
  EXPECT_FALSE(GetSymbolValue(TalcCommand("Fixed"), nullptr, &value));
  EXPECT_FALSE(GetSymbolValue(TalcCommand("Fixed"), "On", nullptr));
  EXPECT_EQ(TakeLog(), "");
  EXPECT_FALSE(GetSymbolValue("Fixed", "", &value));
  EXPECT_FALSE(GetSymbolValue(TalcCommand("Fixed"), "", &value));
  EXPECT_EQ(value, 77);
}

}  // namespace
