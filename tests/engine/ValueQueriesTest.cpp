// The questions about a command's values.

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <utility>

#include "dictionary/CommandContents.h"
#include "EngineFixture.h"

namespace {

using namespace engine_test;
using TalcPath::AreParametersEqual;
using TalcPath::CompareParameters;
using TalcPath::ExtractDataParameterAsInt64;
using TalcPath::IsParameterEqualToSymbol;

constexpr const char* kDictionary =
    "Mix Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 5"
    " DataName I8 DataType INT8 DataName U8 DataType UINT8 DataName I16 DataType INT16 DataName U16 DataType UINT16"
    " DataName I32 DataType INT32 DataName U32 DataType UINT32 DataName I64 DataType INT64 DataName U64 DataType UINT64"
    " DataName Blob DataType BYTES"
    " Symbol Zero 0 Symbol One 1 Symbol Minus -1 Symbol Wide 300 Symbol Wider 65537 Symbol Low -2147483648"
    " Symbol High 2147483647 ;"
    "Other Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 6 DataName Level DataType UINT16 Symbol One 10 ;"
    "Lamp Diag DiagOpcode 5 DataName Row DataType UINT8 Symbol Red 3 ;";

class ValueQueriesTest : public EngineTest {
 protected:
  ValueQueriesTest() {
    StartWith(kDictionary);
    SetFlags(true, false);
  }

  TalcCommand mix_{"Mix"};
};

/// What an extraction gave, or none.
std::optional<std::int64_t> Extract(const TalcCommand& command, const char* name) {
  constexpr std::int64_t kUntouched = 77;
  std::int64_t value = kUntouched;
  if (ExtractDataParameterAsInt64(command, name, &value)) return value;
  EXPECT_EQ(value, kUntouched);
  return std::nullopt;
}

TEST_F(ValueQueriesTest, ExtractEachTypeWithItsSign) {
  const auto extract = [this](const char* name) { return Extract(mix_, name); };
  mix_.SetUInt8("U8", 200);
  EXPECT_EQ(extract("U8"), 200);
  mix_.SetInt8("I8", static_cast<std::int8_t>(200));
  EXPECT_EQ(extract("I8"), -56);
  mix_.SetInt8("I8", 127);
  EXPECT_EQ(extract("I8"), 127);
  mix_.SetInt8("I8", -128);
  EXPECT_EQ(extract("I8"), -128);
  mix_.SetUInt8("U8", 255);
  EXPECT_EQ(extract("U8"), 255);
  mix_.SetInt16("I16", -32768);
  EXPECT_EQ(extract("I16"), -32768);
  mix_.SetInt16("I16", 32767);
  EXPECT_EQ(extract("I16"), 32767);
  mix_.SetUInt16("U16", 65535);
  EXPECT_EQ(extract("U16"), 65535);
  mix_.SetInt32("I32", -2147483647 - 1);
  EXPECT_EQ(extract("I32"), -2147483648LL);
  mix_.SetInt32("I32", 2147483647);
  EXPECT_EQ(extract("I32"), 2147483647);
  mix_.SetUInt32("U32", 4294967295);
  EXPECT_EQ(extract("U32"), 4294967295LL);
  mix_.SetInt64("I64", std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(extract("I64"), std::numeric_limits<std::int64_t>::min());
  mix_.SetInt64("I64", std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(extract("I64"), std::numeric_limits<std::int64_t>::max());
  mix_.SetUInt64("U64", std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(extract("U64"), -1);
  mix_.SetUInt64("U64", 0x8000000000000000);
  EXPECT_EQ(extract("U64"), std::numeric_limits<std::int64_t>::min());
  mix_.SetUInt64("U64", 0x7FFFFFFFFFFFFFFF);
  EXPECT_EQ(extract("U64"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ValueQueriesTest, ExtractAlsoFromADiagnosticCommand) {
  TalcCommand lamp("Lamp");
  lamp.SetUInt8("Row", 9);
  EXPECT_EQ(Extract(lamp, "Row"), 9);
}

TEST_F(ValueQueriesTest, ExtractTheNumberOfASymbolWhateverTheTypeOfItsParameter) {
  const std::pair<const char*, std::int64_t> cases[] = {
      {"Zero", 0}, {"Minus", -1}, {"Wide", 300}, {"Low", -2147483648LL}, {"High", 2147483647}};
  for (const auto& [symbol, value] : cases) {
    for (const char* const name : {"I8", "U8", "U64", "Blob", "NoSuchParameter"}) {
      mix_.ClearParameters();
      mix_.SetSymbol(name, symbol);
      EXPECT_EQ(Extract(mix_, name), value) << symbol << " " << name;
      EXPECT_TRUE(mix_.IsSymbol(name));
    }
  }
  EXPECT_EQ(TakeLog(), "");
}

// The line names another question. The two blanks behind the dash are meant.
TEST_F(ValueQueriesTest, ExtractNoSymbolThatTheCommandDoesNotHave) {
  mix_.SetSymbol("U8", "Purple");
  EXPECT_EQ(Extract(mix_, "U8"), std::nullopt);
  EXPECT_EQ(TakeLog(), "\nIsParameterEqualToSymbol -  Symbol not found - Command : Mix Symbol: Purple");
  TalcCommand unknown("Nope");
  unknown.SetSymbol("U8", "One");
  EXPECT_EQ(Extract(unknown, "U8"), std::nullopt);
  EXPECT_EQ(TakeLog(), "\nIsParameterEqualToSymbol - Command not found - Command : Nope");
}

TEST_F(ValueQueriesTest, ExtractASymbolOfUpTo256Characters) {
  const auto hold = [this](std::size_t length) {
    // Longer than what a setter takes.
    TalcPathPrivate::SetValue(mix_, "U8", std::string(length, 'x'));
    TalcPathPrivate::FindDefinedCommand("Mix")->AddSymbol(std::string(length, 'x'), static_cast<std::int32_t>(length));
    return Extract(mix_, "U8");
  };
  EXPECT_EQ(hold(254), 254);
  EXPECT_EQ(hold(255), 255);
  EXPECT_EQ(hold(256), 256);
  EXPECT_EQ(hold(257), std::nullopt);
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ValueQueriesTest, ExtractNothingOfWhatIsNotDefined) {
  TalcCommand unknown("Nope");
  unknown.SetUInt8("U8", 1);
  EXPECT_EQ(Extract(unknown, "U8"), std::nullopt);
  EXPECT_EQ(TakeLog(), "\nExtractDataParameterAsInt64 - Command not found - Command : Nope");
  mix_.SetUInt8("Else", 1);
  EXPECT_EQ(Extract(mix_, "Else"), std::nullopt);
  EXPECT_EQ(TakeLog(), "\nExtractDataParameterAsInt64 -  Param not found - Command : Mix ParamName: Else");
  EXPECT_EQ(Extract(mix_, ""), std::nullopt);
  EXPECT_EQ(TakeLog(), "\nExtractDataParameterAsInt64 -  Param not found - Command : Mix ParamName: ");
}

TEST_F(ValueQueriesTest, ExtractNoBytes) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(Extract(mix_, "Blob"), std::nullopt);
    EXPECT_EQ(TakeLog(),
              "\nExtractDataParameterAsInt64 -  Wrong Data Type - Command : Mix ParamName: Blob DataType: BYTES");
    SetBytes(mix_, "Blob", {1});  // a value makes no difference
  }
}

TEST_F(ValueQueriesTest, ExtractNoValueThatTheCommandDoesNotHold) {
  for (const char* const name : {"I8", "U8", "I16", "U16", "I32", "U32", "I64", "U64"})
    EXPECT_EQ(Extract(mix_, name), std::nullopt) << name;
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ValueQueriesTest, ThrowForAValueOfAnotherKind) {
  mix_.SetUInt8("I8", 1);
  mix_.SetInt64("U64", 1);
  SetBytes(mix_, "U16", {1, 2});
  for (const char* const name : {"I8", "U64", "U16"}) {
    std::int64_t value = 0;
    std::int32_t order = 0;
    EXPECT_THROW(ExtractDataParameterAsInt64(mix_, name, &value), TalcPath::bad_variant_cast) << name;
    EXPECT_THROW(IsParameterEqualToSymbol(mix_, name, "One"), TalcPath::bad_variant_cast) << name;
    EXPECT_THROW(CompareParameters(mix_, name, mix_, name, &order), TalcPath::bad_variant_cast) << name;
    EXPECT_THROW(AreParametersEqual(mix_, name, mix_, name), TalcPath::bad_variant_cast) << name;
  }
}

TEST_F(ValueQueriesTest, AnswerNoForNoArgument) {
  mix_.SetUInt8("U8", 1);
  std::int64_t value = 77;
  EXPECT_FALSE(ExtractDataParameterAsInt64(mix_, nullptr, &value));
  EXPECT_FALSE(ExtractDataParameterAsInt64(mix_, "U8", nullptr));
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, nullptr, "One"));
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "U8", nullptr));
  std::int32_t order = 77;
  EXPECT_FALSE(CompareParameters(mix_, nullptr, mix_, "U8", &order));
  EXPECT_FALSE(CompareParameters(mix_, "U8", mix_, nullptr, &order));
  EXPECT_FALSE(CompareParameters(mix_, "U8", mix_, "U8", nullptr));
  EXPECT_FALSE(AreParametersEqual(mix_, nullptr, mix_, "U8"));
  EXPECT_FALSE(AreParametersEqual(mix_, "U8", mix_, nullptr));
  EXPECT_FALSE(AreParametersEqual(mix_, nullptr, mix_, nullptr));
  EXPECT_EQ(value, 77);
  EXPECT_EQ(order, 77);
  mix_.SetSymbol("U8", "One");
  EXPECT_FALSE(ExtractDataParameterAsInt64(mix_, "U8", nullptr));
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "U8", nullptr));
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ValueQueriesTest, CompareANumberWithASymbolInTheParametersOwnWidth) {
  mix_.SetUInt8("U8", 44);  // 300, cut
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "U8", "Wide"));
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "U8", "One"));
  mix_.SetUInt8("U8", 255);
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "U8", "Minus"));
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "U8", "High"));
  mix_.SetInt8("I8", 44);
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "I8", "Wide"));
  mix_.SetInt8("I8", -1);
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "I8", "Minus"));
  mix_.SetUInt16("U16", 44);
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "U16", "Wide"));
  mix_.SetUInt16("U16", 1);
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "U16", "Wider"));
  mix_.SetInt16("I16", 1);
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "I16", "Wider"));
  mix_.SetInt16("I16", -1);
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "I16", "Minus"));
  mix_.SetUInt32("U32", 4294967295);
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "U32", "Minus"));
  mix_.SetUInt32("U32", 1);
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "U32", "Wider"));
  mix_.SetInt32("I32", -2147483647 - 1);
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "I32", "Low"));
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ValueQueriesTest, CompareAWideNumberWithASymbolsSignExtended) {
  mix_.SetInt64("I64", -1);
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "I64", "Minus"));
  mix_.SetInt64("I64", 4294967295);
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "I64", "Minus"));
  mix_.SetInt64("I64", 4294967297);
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "I64", "One"));
  mix_.SetUInt64("U64", 0xFFFFFFFFFFFFFFFF);
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "U64", "Minus"));
  mix_.SetUInt64("U64", 0xFFFFFFFF80000000);
  EXPECT_TRUE(IsParameterEqualToSymbol(mix_, "U64", "Low"));
  mix_.SetUInt64("U64", 0x80000000);
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "U64", "Low"));
}

TEST_F(ValueQueriesTest, CompareASymbolByItsNameWithoutADictionary) {
  for (TalcCommand command : {TalcCommand("Mix"), TalcCommand("Nope")}) {
    for (const char* const name : {"U8", "Blob", "NoSuchParameter"}) {
      command.SetSymbol(name, "Purple");
      EXPECT_TRUE(IsParameterEqualToSymbol(command, name, "Purple"));
      EXPECT_FALSE(IsParameterEqualToSymbol(command, name, "purple"));
      EXPECT_FALSE(IsParameterEqualToSymbol(command, name, "Purple "));
      EXPECT_FALSE(IsParameterEqualToSymbol(command, name, "One"));
      EXPECT_FALSE(IsParameterEqualToSymbol(command, name, ""));
    }
  }
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ValueQueriesTest, EqualNothingThatIsNotDefined) {
  TalcCommand unknown("Nope");
  unknown.SetUInt8("U8", 1);
  EXPECT_FALSE(IsParameterEqualToSymbol(unknown, "U8", "One"));
  EXPECT_EQ(TakeLog(), "\nIsParameterEqualToSymbol - Command not found - Command : Nope");
  mix_.SetUInt8("Else", 1);
  // The symbol is looked for before the parameter.
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "Else", "Purple"));
  EXPECT_EQ(TakeLog(), "\nIsParameterEqualToSymbol -  Symbol not found - Command : Mix Symbol: Purple");
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "Else", "One"));
  EXPECT_EQ(TakeLog(), "\nIsParameterEqualToSymbol -  Param not found - Command : Mix ParamName: Else");
  SetBytes(mix_, "Blob", {1});
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "Blob", "One"));
  EXPECT_EQ(TakeLog(), "\nIsParameterEqualToSymbol -  Wrong Data Type - Command : Mix ParamName: Blob DataType: BYTES");
}

TEST_F(ValueQueriesTest, EqualNothingThatTheCommandDoesNotHold) {
  for (const char* const name : {"I8", "U8", "I16", "U16", "I32", "U32", "I64", "U64"})
    EXPECT_FALSE(IsParameterEqualToSymbol(mix_, name, "Zero")) << name;
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(ValueQueriesTest, OrderTwoParameters) {
  const auto order = [&](const char* left, const char* right) {
    std::int32_t result = 77;
    EXPECT_TRUE(CompareParameters(mix_, left, mix_, right, &result));
    std::int32_t turned = 77;
    EXPECT_TRUE(CompareParameters(mix_, right, mix_, left, &turned));
    EXPECT_EQ(turned, -result);
    EXPECT_EQ(AreParametersEqual(mix_, left, mix_, right), result == 0);
    return result;
  };
  mix_.SetUInt8("U8", 200);
  mix_.SetInt8("I8", -56);
  mix_.SetInt16("I16", 200);
  EXPECT_EQ(order("U8", "I8"), 1);
  EXPECT_EQ(order("I8", "U8"), -1);
  EXPECT_EQ(order("U8", "I16"), 0);
  // The low words alone would tell the opposite.
  mix_.SetInt64("I64", 0x00000001'00000000);
  mix_.SetUInt32("U32", 0xFFFFFFFF);
  EXPECT_EQ(order("I64", "U32"), 1);
  mix_.SetInt64("I64", std::numeric_limits<std::int64_t>::min());
  mix_.SetInt32("I32", 2147483647);
  EXPECT_EQ(order("I64", "I32"), -1);
  // The low words differ in what would be their sign.
  mix_.SetInt64("I64", 0x7FFFFFFF);
  mix_.SetUInt32("U32", 0x80000000);
  EXPECT_EQ(order("I64", "U32"), -1);
  // Those of UINT64 are numbers with a sign, too.
  mix_.SetUInt64("U64", 0xFFFFFFFFFFFFFFFF);
  mix_.SetInt64("I64", -1);
  EXPECT_EQ(order("U64", "I64"), 0);
  EXPECT_EQ(order("U64", "U8"), -1);
  mix_.SetInt64("I64", std::numeric_limits<std::int64_t>::max());
  mix_.SetUInt64("U64", 0x8000000000000000);
  EXPECT_EQ(order("U64", "I64"), -1);
  mix_.SetSymbol("I8", "Wide");
  mix_.SetUInt16("U16", 300);
  EXPECT_EQ(order("I8", "U16"), 0);
}

TEST_F(ValueQueriesTest, OrderParametersOfTwoCommands) {
  TalcCommand other("Other");
  other.SetUInt16("Level", 10);
  mix_.SetUInt8("U8", 9);
  std::int32_t order = 77;
  EXPECT_TRUE(CompareParameters(mix_, "U8", other, "Level", &order));
  EXPECT_EQ(order, -1);
  EXPECT_TRUE(CompareParameters(other, "Level", mix_, "U8", &order));
  EXPECT_EQ(order, 1);
  // Each symbol is a number of its own command.
  mix_.SetSymbol("U8", "One");
  other.SetSymbol("Level", "One");
  EXPECT_FALSE(AreParametersEqual(mix_, "U8", other, "Level"));
  mix_.SetUInt8("U8", 10);
  EXPECT_TRUE(AreParametersEqual(mix_, "U8", other, "Level"));
}

TEST_F(ValueQueriesTest, OrderNothingThatCannotBeExtracted) {
  mix_.SetUInt8("U8", 1);
  std::int32_t order = 77;
  EXPECT_FALSE(CompareParameters(mix_, "U8", mix_, "Else", &order));
  EXPECT_EQ(TakeLog(), "\nExtractDataParameterAsInt64 -  Param not found - Command : Mix ParamName: Else");
  EXPECT_FALSE(CompareParameters(TalcCommand("Nope"), "U8", mix_, "Else", &order));
  EXPECT_EQ(TakeLog(), "\nExtractDataParameterAsInt64 - Command not found - Command : Nope");
  EXPECT_FALSE(CompareParameters(mix_, "Blob", mix_, "U8", &order));
  EXPECT_FALSE(CompareParameters(mix_, "I8", mix_, "U8", &order));
  EXPECT_FALSE(AreParametersEqual(mix_, "I8", mix_, "I8"));  // neither is there
  EXPECT_FALSE(AreParametersEqual(mix_, "Blob", mix_, "Blob"));
  EXPECT_EQ(order, 77);
}

TEST_F(ValueQueriesTest, TellNothingWithoutTheVerboseFlag) {
  SetFlags(false, false);
  std::int32_t number = 0;
  TalcCommand unknown("Nope");
  EXPECT_EQ(Extract(unknown, "U8"), std::nullopt);
  EXPECT_EQ(Extract(mix_, "Else"), std::nullopt);
  EXPECT_EQ(Extract(mix_, "Blob"), std::nullopt);
  EXPECT_FALSE(IsParameterEqualToSymbol(unknown, "U8", "One"));
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "Else", "One"));
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "Blob", "One"));
  EXPECT_FALSE(IsParameterEqualToSymbol(mix_, "U8", "Purple"));
  EXPECT_FALSE(TalcPath::GetSymbolValue(unknown, "One", &number));
  EXPECT_FALSE(TalcPath::GetSymbolValue("Mix", "Purple", &number));
  EXPECT_FALSE(TalcPath::GetParameterOffset(unknown, "U8", &number));
  EXPECT_EQ(TakeLog(), "");
}

}  // namespace
