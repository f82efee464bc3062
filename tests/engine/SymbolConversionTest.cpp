// Symbols become numbers when they are compiled.

#include <gtest/gtest.h>

#include "dictionary/CommandContents.h"
#include "EngineFixture.h"

namespace {

using namespace engine_test;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class SymbolConversionTest : public EngineTest {
 protected:
  /// The value bytes of a send of one parameter V of that type, set by a symbol of that value.
  std::string ValueBytes(const std::string& type, const std::string& value) {
    Reset();
    TalcPath::TalcPathSetLogStream(&log_);
    blocks_.RemoveAll();
    StartWith("One Talc CommandTypeMajor VIDEO CommandTypeMinor 0 Function 0 DataName V DataType " + type +
              " Symbol kValue " + value + " ;");
    TalcCommand command("One");
    command.SetSymbol("V", "kValue");
    const std::string packet = CompiledHex(command);
    return packet.size() > 24 ? packet.substr(24) : packet;
  }
};

TEST_F(SymbolConversionTest, WritesTheNumberInTheWidthOfTheParameter) {
  const struct {
    const char* type;
    const char* value;
    const char* bytes;
  } cases[] = {
      {"INT8", "5", "05"},
      {"INT8", "-1", "FF"},
      {"INT8", "-128", "80"},
      {"UINT8", "255", "FF"},
      {"UINT8", "-1", "FF"},
      {"INT16", "-2", "FF FE"},
      {"INT16", "32767", "7F FF"},
      {"UINT16", "200", "00 C8"},
      {"UINT16", "65535", "FF FF"},
      {"INT32", "-2147483648", "80 00 00 00"},
      {"INT32", "2147483647", "7F FF FF FF"},
      {"UINT32", "-1", "FF FF FF FF"},
      {"UINT32", "258", "00 00 01 02"},
      {"INT64", "2147483647", "00 00 00 00 7F FF FF FF"},
      {"INT64", "-2", "FF FF FF FF FF FF FF FE"},
      {"INT64", "-2147483648", "FF FF FF FF 80 00 00 00"},
      {"UINT64", "258", "00 00 00 00 00 00 01 02"},
      // The sign goes into the unsigned type, too. It is meant.
      {"UINT64", "-1", "FF FF FF FF FF FF FF FF"},
      {"UINT64", "-2147483648", "FF FF FF FF 80 00 00 00"},
  };
  for (const auto& test : cases)
    EXPECT_EQ(ValueBytes(test.type, test.value), test.bytes) << test.type << " " << test.value;
}

TEST_F(SymbolConversionTest, CutsNumbersThatAreTooWide) {
  const struct {
    const char* type;
    const char* value;
    const char* bytes;
  } cases[] = {
      {"INT8", "128", "80"},        {"INT8", "300", "2C"},
      {"UINT8", "256", "00"},       {"UINT8", "-2147483648", "00"},
      {"UINT8", "305419896", "78"}, {"INT16", "65536", "00 00"},
      {"INT16", "40000", "9C 40"},  {"UINT16", "305419896", "56 78"},
      {"UINT16", "-1", "FF FF"},
  };
  for (const auto& test : cases)
    EXPECT_EQ(ValueBytes(test.type, test.value), test.bytes) << test.type << " " << test.value;
}

constexpr const char* kDictionary =
    "Two Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 3"
    " DataName A RD DataType UINT8 DataName B DataType BYTES Symbol kOne 1 Symbol kTwo 2 ;";

TEST_F(SymbolConversionTest, LeavesTheNumberInTheCommand) {
  StartWith(kDictionary);
  TalcCommand command = Request("Two");
  command.SetSymbol("A", "kTwo");
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 05 80 07 00 00 02");
  EXPECT_FALSE(command.IsSymbol("A"));
  std::uint8_t value = 0;
  ASSERT_TRUE(command.GetUInt8("A", &value));
  EXPECT_EQ(value, 2);
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 05 80 07 00 00 02");
}

TEST_F(SymbolConversionTest, TracesWhatItFound) {
  StartWith(kDictionary);
  TalcCommand command = Request("Two");
  command.SetSymbol("A", "kTwo");
  SetFlags(false, true);
  CompiledHex(command);
  EXPECT_THAT(TakeLog(), HasSubstr("\n\tCompiling Parameters \n\tConverting Symbolic Constant to data value"
                                   "\n\tSymbolic Constant Found - Name: kTwo Value: 2"
                                   "\n\tWriting Parameter : A Type : UINT8 NumBytes: 1\n\tFinished Packet"));
}

TEST_F(SymbolConversionTest, FailsForASymbolThatTheCommandDoesNotDefine) {
  StartWith(std::string(kDictionary) +
            "Other Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 4 Symbol kElsewhere 1 ;");
  for (const char* const symbol : {"kThree", "kone", "kElsewhere", "1"}) {
    TalcCommand command = Request("Two");
    command.SetSymbol("A", symbol);
    SetFlags(false, false);
    EXPECT_EQ(CompileFailure(command), TalcPath::kTPInvalidSymbolicConstant) << symbol;
    EXPECT_TRUE(command.IsParameterEqualToSymbolName("A", symbol));
    EXPECT_EQ(TakeLog(), "");
    SetFlags(false, true);
    CompileFailure(command);
    EXPECT_THAT(TakeLog(), EndsWith("\n\tConverting Symbolic Constant to data value\n\tSymbol Name: " +
                                    std::string(symbol) + " NOT FOUND!\nERROR - packet compilation failed"));
  }
}

TEST_F(SymbolConversionTest, FailsForBytes) {
  StartWith(kDictionary);
  TalcCommand command("Two");
  command.SetSymbol("A", "kOne");
  command.SetSymbol("B", "kTwo");
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPInvalidSymbolicConstant);
  EXPECT_EQ(TakeLog(), "");
  EXPECT_FALSE(command.IsSymbol("A"));  // converted before the other failed
  EXPECT_TRUE(command.IsSymbol("B"));
  SetFlags(false, true);
  CompileFailure(command);
  EXPECT_THAT(TakeLog(), EndsWith("\n\tSymbolic Constant Found - Name: kTwo Value: 2"
                                  " Unsupported data type for Symbolic Constant - Type: BYTES"
                                  "\nERROR - packet compilation failed"));
  command.SetSymbol("B", "kUnknown");
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPInvalidSymbolicConstant);
  EXPECT_THAT(TakeLog(), EndsWith("\n\tSymbol Name: kUnknown NOT FOUND!\nERROR - packet compilation failed"));
}

TEST_F(SymbolConversionTest, LooksAtNoSymbolThatARequestDoesNotCarry) {
  StartWith(kDictionary);
  TalcCommand command = Request("Two");
  command.SetUInt8("A", 1);
  command.SetSymbol("B", "kUnknown");
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 05 80 07 00 00 01");
  EXPECT_TRUE(command.IsSymbol("B"));
}

/// A dictionary whose only symbol has a name of that many characters.
std::string WithSymbolOf(std::size_t length) {
  return "Long Talc CommandTypeMajor VIDEO CommandTypeMinor 0 Function 0 DataName V DataType UINT8 Symbol " +
         std::string(length, 's') + " 9 ;";
}

TEST_F(SymbolConversionTest, TakesTheLongestNameThatCanBeSet) {
  StartWith(WithSymbolOf(254));
  TalcCommand command("Long");
  command.SetSymbol("V", std::string(254, 's'));
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 05 00 00 00 00 09");
}

// No setter stores these names; what is stored is bounded all the same.
TEST_F(SymbolConversionTest, TakesNamesOfUpToTheBufferOf256Characters) {
  StartWith(WithSymbolOf(256));
  TalcCommand command("Long");
  TalcPathPrivate::SetValue(command, "V", std::string(256, 's'));
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 05 00 00 00 00 09");
}

TEST_F(SymbolConversionTest, CannotReadALongerName) {
  StartWith(WithSymbolOf(257));
  TalcCommand command("Long");
  TalcPathPrivate::SetValue(command, "V", std::string(257, 's'));
  EXPECT_EQ(CompileFailure(command), TalcPath::kTPInvalidSymbolicConstant);
  EXPECT_EQ(TakeLog(), "");
  SetFlags(false, true);
  CompileFailure(command);
  EXPECT_THAT(TakeLog(), EndsWith("\n\tConverting Symbolic Constant to data value\n\tParam does not have Symbol set!"
                                  "\nERROR - packet compilation failed"));
}

}  // namespace
