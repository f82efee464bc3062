// The public questions about definitions, each asked by name.

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

#include "DictionaryFixture.h"
#include "FormatProbe.h"
#include "talcpath.h"

namespace {

using TalcPath::LookupParameterType;
using TalcPath::TalcCommand;

class DefinitionQuestionsTest : public DictionaryTest {
 protected:
  void SetUp() override {
    DictionaryTest::SetUp();
    ASSERT_TRUE(
        Parse("Foo Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 DataName a DataType INT8 "
              "DataName b DataType UINT16 DataName c DataType BYTES ;"
              "Bar Diag DiagOpcode 7 ; Baz Meta Start A Repeat B Stop C DataName D DataType INT64 ;"));
  }

  /// As large as `size`, and nothing of it may be touched on a failure.
  static void ExpectRefused(const char* command, const char* parameter, std::uint32_t size) {
    std::string buffer(size, 'x');
    EXPECT_FALSE(LookupParameterType(command, parameter, size, buffer.data()));
    EXPECT_EQ(buffer, std::string(size, 'x'));
  }
};

TEST_F(DefinitionQuestionsTest, TellMetaCommands) {
  SetVerbose(true);
  EXPECT_FALSE(IsMetaCommandFormat(TalcCommand("Foo")));
  EXPECT_FALSE(IsMetaCommandFormat(TalcCommand("Bar")));
  EXPECT_TRUE(IsMetaCommandFormat(TalcCommand("Baz")));
  EXPECT_EQ(log(), "");
}

TEST_F(DefinitionQuestionsTest, TellDiagnosticCommands) {
  SetVerbose(true);
  EXPECT_FALSE(IsDiagCommandFormat(TalcCommand("Foo")));
  EXPECT_TRUE(IsDiagCommandFormat(TalcCommand("Bar")));
  EXPECT_FALSE(IsDiagCommandFormat(TalcCommand("Baz")));
  EXPECT_EQ(log(), "");
}

TEST_F(DefinitionQuestionsTest, SetTheTimeOutOfAnOrdinaryCommand) {
  EXPECT_EQ(GetOverrideTimeoutMillisec(TalcCommand("Foo")), 0u);
  EXPECT_TRUE(TalcPath::SetOverrideTimeoutMillisec("Foo", 4294967295));
  EXPECT_EQ(GetOverrideTimeoutMillisec(TalcCommand("Foo")), 4294967295u);
  EXPECT_TRUE(TalcPath::SetOverrideTimeoutMillisec("Foo", 0));
  EXPECT_EQ(GetOverrideTimeoutMillisec(TalcCommand("Foo")), 0u);
}

TEST_F(DefinitionQuestionsTest, TakeATimeOutOfTheOthersAndChangeNothing) {
  SetVerbose(true);
  for (const char* const name : {"Bar", "Baz"}) {
    EXPECT_TRUE(TalcPath::SetOverrideTimeoutMillisec(name, 5)) << name;
    EXPECT_EQ(GetOverrideTimeoutMillisec(TalcCommand(name)), 0u) << name;
  }
  EXPECT_EQ(log(), "");
}

TEST_F(DefinitionQuestionsTest, AnswerNoForACommandThatIsNotDefined) {
  const TalcCommand command("Nope");
  EXPECT_FALSE(IsMetaCommandFormat(command));
  EXPECT_FALSE(IsDiagCommandFormat(command));
  EXPECT_EQ(GetOverrideTimeoutMillisec(command), 0u);
  EXPECT_FALSE(TalcPath::SetOverrideTimeoutMillisec("Nope", 5));
  EXPECT_EQ(log(), "");
}

TEST_F(DefinitionQuestionsTest, TellOfACommandThatIsNotDefinedUnderTheVerboseFlag) {
  SetVerbose(true);
  const TalcCommand command("Nope");
  EXPECT_FALSE(IsMetaCommandFormat(command));
  EXPECT_EQ(log(), "\nIsMetaCommandFormat- Command format not found - Command : Nope");
  ClearLog();
  EXPECT_FALSE(IsDiagCommandFormat(command));
  EXPECT_EQ(log(), "\nIsDiagCommandFormat- Command format not found - Command : Nope");
  ClearLog();
  EXPECT_EQ(GetOverrideTimeoutMillisec(command), 0u);
  EXPECT_EQ(log(), "\nGetOverrideTimeoutMillisec - Command format not found - Command : Nope");
  ClearLog();
  // The getter's text is meant.
  EXPECT_FALSE(TalcPath::SetOverrideTimeoutMillisec("Nope", 5));
  EXPECT_EQ(log(), "\nGetOverrideTimeoutMillisec - Command format not found - Command : Nope");
}

TEST_F(DefinitionQuestionsTest, FindNothingWithoutDictionaries) {
  TalcPathPrivate::ErrorList errors;
  TalcPathPrivate::DeleteDefinedCommands(errors);
  EXPECT_FALSE(IsMetaCommandFormat(TalcCommand("Baz")));
  EXPECT_FALSE(TalcPath::SetOverrideTimeoutMillisec("Foo", 5));
  ExpectRefused("Foo", "a", 20);
}

TEST_F(DefinitionQuestionsTest, LookUpATypeIntoABufferOfZeros) {
  const auto typeOf = [](const char* command, const char* parameter, std::uint32_t size) {
    std::string buffer(size, 'x');
    EXPECT_TRUE(LookupParameterType(command, parameter, size, buffer.data()));
    return buffer;
  };
  EXPECT_EQ(typeOf("Foo", "a", 8), std::string("INT8\0\0\0\0", 8));
  EXPECT_EQ(typeOf("Foo", "b", 8), std::string("UINT16\0\0", 8));  // the longest word, the smallest buffer
  EXPECT_EQ(typeOf("Foo", "c", 12), std::string("BYTES\0\0\0\0\0\0\0", 12));
  EXPECT_EQ(typeOf("Baz", "D", 1000), "INT64" + std::string(995, '\0'));
}

TEST_F(DefinitionQuestionsTest, RefuseABufferBelowEightCharacters) {
  for (std::uint32_t size = 0; size < 8; ++size)
    ExpectRefused("Foo", "a", size);
}

TEST_F(DefinitionQuestionsTest, RefuseToLookUpWithoutABuffer) {
  EXPECT_FALSE(LookupParameterType("Foo", "a", 8, nullptr));
  EXPECT_FALSE(LookupParameterType("Foo", "a", 0, nullptr));
}

TEST_F(DefinitionQuestionsTest, LookUpNothingThatIsNotDefined) {
  SetVerbose(true);
  ExpectRefused("Nope", "a", 20);
  ExpectRefused("foo", "a", 20);
  ExpectRefused("Foo", "A", 20);
  ExpectRefused("Foo", "", 20);
  ExpectRefused("Bar", "a", 20);
  EXPECT_EQ(log(), "");
}

TEST_F(DefinitionQuestionsTest, RefuseATypeThatDoesNotFit) {
  // No dictionary defines such a type; a definition made by hand can.
  auto format = std::make_unique<probe::Diag>();
  format->name = "Long";
  format->diagOpcode = 8;
  format->parameters = {probe::Parameter("seven", "INT1024"), probe::Parameter("eight", "INT12345")};
  ASSERT_TRUE(format->AddToDefinedCommands());
  static_cast<void>(format.release());
  ExpectRefused("Long", "seven", 8);
  ExpectRefused("Long", "eight", 9);
  std::array<char, 9> buffer{};
  EXPECT_TRUE(LookupParameterType("Long", "seven", 9, buffer.data()));
  EXPECT_STREQ(buffer.data(), "INT1024");
}

}  // namespace
