#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "CommandValues.h"
#include "talcpath.h"

namespace {

using TalcPath::TalcCommand;
using TalcPathPrivate::Bytes;
using test_support::BytesOf;
using test_support::Held;
using test_support::NamesOf;
using Names = std::vector<std::string>;

TEST(TalcCommandTest, NewOneIsASendThatHasFailed) {
  const TalcCommand command;
  EXPECT_EQ(command.GetName(), "");
  EXPECT_TRUE(command.IsSendCommand());
  EXPECT_FALSE(command.IsRequestCommand());
  EXPECT_EQ(command.GetTransportId(), 0U);
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPFail);
  EXPECT_TRUE(command.IsFail());
  EXPECT_FALSE(command.IsSuccess());
  EXPECT_TRUE(command.IsNotSuccess());
  EXPECT_EQ(NamesOf(command), Names());
}

TEST(TalcCommandTest, ConstructorsTakeANameAndATransport) {
  const TalcCommand named("Foo");
  EXPECT_EQ(named.GetName(), "Foo");
  EXPECT_EQ(named.GetTransportId(), 0U);
  EXPECT_TRUE(named.IsSendCommand());
  EXPECT_EQ(named.GetStatus(), TalcPath::kTPFail);

  const TalcCommand carried("Foo", 0xFFFFFFFF);
  EXPECT_EQ(carried.GetName(), "Foo");
  EXPECT_EQ(carried.GetTransportId(), 0xFFFFFFFFU);
  EXPECT_TRUE(carried.IsSendCommand());
  EXPECT_EQ(carried.GetStatus(), TalcPath::kTPFail);
}

TEST(TalcCommandTest, KeepsWhatIsSet) {
  TalcCommand command("Foo");
  command.SetName("Bar");
  EXPECT_EQ(command.GetName(), "Bar");
  command.SetRequestCommand();
  EXPECT_TRUE(command.IsRequestCommand());
  EXPECT_FALSE(command.IsSendCommand());
  command.SetSendCommand();
  EXPECT_TRUE(command.IsSendCommand());
  EXPECT_FALSE(command.IsRequestCommand());
  command.SetTransportId(3);
  EXPECT_EQ(command.GetTransportId(), 3U);
  command.SetStatus(TalcPath::kTPSuccess);
  EXPECT_TRUE(command.IsSuccess());
}

class CopiedCommand : public ::testing::Test {
 protected:
  CopiedCommand() {
    original.SetRequestCommand();
    original.SetStatus(TalcPath::kTPTimeOut);
    original.SetBytes("D", BytesOf("abc").data(), 3);
    original.SetSymbol("S", "On");
    original.SetUInt8("X", 7);
  }

  static void ExpectAllValues(const TalcCommand& command) {
    EXPECT_EQ(command.GetName(), "Foo");
    EXPECT_TRUE(command.IsRequestCommand());
    EXPECT_EQ(command.GetStatus(), TalcPath::kTPTimeOut);
    EXPECT_EQ(NamesOf(command), (Names{"D", "S", "X"}));
    EXPECT_EQ(Held<Bytes>(command, "D"), BytesOf("abc"));
    EXPECT_EQ(Held<std::string>(command, "S"), "On");
    EXPECT_EQ(Held<std::uint8_t>(command, "X"), 7);
  }

  static void ChangeAll(TalcCommand& command) {
    command.SetName("Bar");
    command.SetSendCommand();
    command.SetStatus(TalcPath::kTPSuccess);
    command.SetTransportId(99);
    command.SetBytes("D", BytesOf("zzzz").data(), 4);
    command.SetSymbol("S", "Off");
    command.SetInt16("X", -1);
    command.SetUInt8("New", 1);
  }

  TalcCommand original{"Foo", 5};
};

TEST_F(CopiedCommand, HoldsEverythingOfTheOriginal) {
  const TalcCommand copy(original);
  ExpectAllValues(copy);
  EXPECT_EQ(copy.GetTransportId(), 5U);
}

TEST_F(CopiedCommand, CanGoToAnotherTransport) {
  const TalcCommand copy(original, 6);
  ExpectAllValues(copy);
  EXPECT_EQ(copy.GetTransportId(), 6U);
  EXPECT_EQ(original.GetTransportId(), 5U);
}

TEST_F(CopiedCommand, ChangesWithoutTouchingTheOriginal) {
  TalcCommand copy(original);
  ChangeAll(copy);
  EXPECT_EQ(Held<Bytes>(copy, "D"), BytesOf("zzzz"));
  ExpectAllValues(original);
  EXPECT_EQ(original.GetTransportId(), 5U);
  copy.ClearParameters();
  ExpectAllValues(original);
}

TEST_F(CopiedCommand, StaysWhenTheOriginalChanges) {
  const TalcCommand copy(original);
  ChangeAll(original);
  original.ClearParameters();
  ExpectAllValues(copy);
}

TEST_F(CopiedCommand, ReplacesAllOfTheOneThatIsAssigned) {
  TalcCommand target("Bar", 8);
  target.SetUInt64("Old", 1);
  target = original;
  ExpectAllValues(target);
  EXPECT_EQ(target.GetTransportId(), 5U);
  EXPECT_FALSE(target.HasParameter("Old"));
  ChangeAll(target);
  ExpectAllValues(original);
}

TEST_F(CopiedCommand, IsTheSameWhenAssignedToItself) {
  const TalcCommand& same = original;
  original = same;
  ExpectAllValues(original);
  EXPECT_EQ(original.GetTransportId(), 5U);
}

TEST(TalcCommandTest, ComparesNamesOfValuesExactly) {
  TalcCommand command;
  command.SetUInt8("Level", 1);
  EXPECT_TRUE(command.HasParameter("Level"));
  for (const std::string_view other : {"level", "Leve", "Level1", "Level ", " Level", ""})
    EXPECT_FALSE(command.HasParameter(other)) << other;
  EXPECT_FALSE(command.HasParameter(std::string_view("Level\0", 6)));
}

TEST(TalcCommandTest, TakesAnyNameOfAValue) {
  TalcCommand command;
  const std::string odd("a b\0;\xFF", 6);
  command.SetUInt8("", 1);
  command.SetUInt8(odd, 2);
  EXPECT_EQ(NamesOf(command), (Names{"", odd}));
  EXPECT_EQ(Held<std::uint8_t>(command, ""), 1);
  EXPECT_EQ(Held<std::uint8_t>(command, odd), 2);
}

TEST(TalcCommandTest, ClearTakesTheValuesAndNothingElse) {
  TalcCommand command("Foo", 4);
  command.SetRequestCommand();
  command.SetStatus(TalcPath::kTPSuccess);
  command.SetUInt8("X", 1);
  command.SetSymbol("S", "On");
  command.ClearParameters();
  EXPECT_EQ(NamesOf(command), Names());
  EXPECT_FALSE(command.HasParameter("X"));
  EXPECT_FALSE(command.IsSymbol("S"));
  EXPECT_EQ(command.GetName(), "Foo");
  EXPECT_EQ(command.GetTransportId(), 4U);
  EXPECT_TRUE(command.IsRequestCommand());
  EXPECT_TRUE(command.IsSuccess());
}

}  // namespace
