#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "CommandValues.h"
#include "support/FailingAllocation.h"
#include "talcpath.h"

// It stands in for the global new and delete, since a command asks for memory by the form that throws.

namespace {

/// Requests to go until the one that is refused, that one included; 0 when none is.
int countdown = 0;
bool isRefused = false;
std::size_t largestBytes = 0;

void* Allocate(std::size_t sizeBytes) {
  if (sizeBytes > largestBytes) largestBytes = sizeBytes;
  if (countdown > 0 && --countdown == 0) {
    isRefused = true;
    throw std::bad_alloc();
  }
  void* const memory = std::malloc(sizeBytes == 0 ? 1 : sizeBytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void* operator new(std::size_t sizeBytes) {
  return Allocate(sizeBytes);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace {

using TalcPath::TalcCommand;
using TalcPathPrivate::Bytes;
using test_support::BytesOf;
using test_support::Held;
using test_support::NamesOf;
using Names = std::vector<std::string>;

/// While one lives, the `nth` request for memory from its start is refused, in whichever form it is made.
class Shortage {
 public:
  explicit Shortage(int nth) : otherForm_(nth) {
    isRefused = false;
    countdown = nth;
  }
  ~Shortage() { countdown = 0; }
  Shortage(const Shortage&) = delete;
  Shortage& operator=(const Shortage&) = delete;

  bool Happened() const { return isRefused || otherForm_.Happened(); }

 private:
  test_support::FailingAllocation otherForm_;
};

const std::string kLongName(100, 'n');

TalcCommand Original() {
  TalcCommand command(kLongName, 5);
  command.SetRequestCommand();
  command.SetStatus(TalcPath::kTPSuccess);
  command.SetUInt8("A", 1);
  command.SetSymbol("S", std::string(100, 's'));
  command.SetBytes("D", BytesOf("abc").data(), 3);
  return command;
}

/// Shows the same whatever is set.
void ExpectHoldsNothing(TalcCommand& command) {
  ASSERT_EQ(TalcPath::ContentsOf(command), nullptr);
  command.SetName("Foo");
  command.SetRequestCommand();
  command.SetTransportId(9);
  command.SetStatus(TalcPath::kTPSuccess);
  command.SetUInt8("X", 1);
  command.SetInt64("Y", 1);
  command.SetSymbol("S", "On");
  command.SetBytes("D", BytesOf("abc").data(), 3);
  command.ClearParameters();
  EXPECT_EQ(command.GetName(), "");
  EXPECT_TRUE(command.IsSendCommand());
  EXPECT_FALSE(command.IsRequestCommand());
  EXPECT_EQ(command.GetTransportId(), 0U);
  EXPECT_EQ(command.GetStatus(), TalcPath::kTPFail);

  std::uint8_t byte = 90;
  std::int64_t number = 90;
  std::uint32_t length = 90;
  const std::uint8_t* bytes = nullptr;
  char text[4] = "zzz";
  EXPECT_FALSE(command.GetUInt8("X", &byte));
  EXPECT_FALSE(command.GetInt64("Y", &number));
  EXPECT_FALSE(command.GetBytesLength("D", &length));
  EXPECT_FALSE(command.GetBytes("D", &byte, 1, &length));
  EXPECT_FALSE(command.GetBytesPointer("D", &bytes, &length));
  EXPECT_FALSE(command.IsSymbol("S"));
  EXPECT_FALSE(command.IsParameterEqualToSymbolName("S", "On"));
  EXPECT_FALSE(command.GetSymbol("S", text, sizeof text));
  EXPECT_FALSE(command.HasParameter("X"));

  std::ostringstream dump;
  command.Dump(dump);
  EXPECT_EQ(dump.str(), "\nDump of TalcCommand : \nName: \nParamters:\nSend Command: true\nStatus: kTPFail\n");
  std::ostringstream statement;
  statement << command;
  EXPECT_EQ(statement.str(), "\ntalc send  . ;");
  std::istringstream input("Foo X UINT8 1 D BYTES 3 abc . ;");
  input >> command;
  EXPECT_EQ(command.GetName(), "");
  EXPECT_FALSE(command.HasParameter("X"));
  std::string rest;
  EXPECT_TRUE(input >> rest);
  EXPECT_EQ(rest, ";");
}

/// Refuses each request for memory of a construction in turn, and returns how many there were.
template <typename Construct>
int ExpectNothingAtEachRefusal(Construct construct) {
  for (int nth = 1; nth < 100; ++nth) {
    std::optional<TalcCommand> command;
    bool happened = false;
    {
      Shortage shortage(nth);
      construct(command);
      happened = shortage.Happened();
    }
    if (!happened) {
      EXPECT_NE(TalcPath::ContentsOf(*command), nullptr);
      return nth - 1;
    }
    SCOPED_TRACE("refusal " + std::to_string(nth));
    ExpectHoldsNothing(*command);
  }
  ADD_FAILURE() << "always refused";
  return -1;
}

TEST(TalcCommandMemoryTest, ConstructionWithoutMemoryLeavesACommandThatHoldsNothing) {
  const TalcCommand original = Original();
  EXPECT_GE(ExpectNothingAtEachRefusal([](auto& command) { command.emplace(); }), 1);
  EXPECT_GE(ExpectNothingAtEachRefusal([](auto& command) { command.emplace(kLongName); }), 2);
  EXPECT_GE(ExpectNothingAtEachRefusal([](auto& command) { command.emplace(kLongName, 7U); }), 2);
  EXPECT_GE(ExpectNothingAtEachRefusal([&](auto& command) { command.emplace(original); }), 4);
  EXPECT_GE(ExpectNothingAtEachRefusal([&](auto& command) { command.emplace(original, 7U); }), 4);
}

std::optional<TalcCommand> WithoutMemory() {
  std::optional<TalcCommand> command;
  Shortage shortage(1);
  command.emplace();
  return command;
}

TEST(TalcCommandMemoryTest, CopyOfACommandThatHoldsNothingHoldsNothing) {
  const auto nothing = WithoutMemory();
  TalcCommand copy(*nothing);
  ExpectHoldsNothing(copy);
  TalcCommand carried(*nothing, 7);
  ExpectHoldsNothing(carried);
  TalcCommand assigned = Original();
  assigned = *nothing;
  ExpectHoldsNothing(assigned);
}

TEST(TalcCommandMemoryTest, CommandThatHoldsNothingIsMendedByAnAssignment) {
  auto command = WithoutMemory();
  ASSERT_EQ(TalcPath::ContentsOf(*command), nullptr);
  *command = Original();
  EXPECT_EQ(command->GetName(), kLongName);
  EXPECT_EQ(command->GetTransportId(), 5U);
  EXPECT_EQ(NamesOf(*command), (Names{"A", "S", "D"}));
}

/// Sets a value with each request for memory refused in turn.
template <typename Set>
void ExpectAllOrNothing(const std::string& name, const TalcCommand& start, Set set) {
  int refusals = 0;
  for (int nth = 1; nth < 100; ++nth) {
    TalcCommand command(start);
    const Names before = NamesOf(command);
    bool happened = false;
    {
      Shortage shortage(nth);
      try {
        set(command);
      } catch (const std::bad_alloc&) {
        happened = true;
      }
      EXPECT_EQ(happened, shortage.Happened());
    }
    if (!happened) {
      EXPECT_EQ(Held<Bytes>(command, name), Bytes(100, 7));
      EXPECT_GE(refusals, 1);
      return;
    }
    ++refusals;
    EXPECT_EQ(NamesOf(command), before) << "refusal " << nth;
    command.SetUInt8(name, 3);
    EXPECT_EQ(Held<std::uint8_t>(command, name), 3) << "refusal " << nth;
  }
  ADD_FAILURE() << "always refused";
}

TEST(TalcCommandMemoryTest, SetterThatFindsNoMemoryThrowsAndAddsNothing) {
  const Bytes bytes(100, 7);
  ExpectAllOrNothing(kLongName, TalcCommand(), [&](TalcCommand& c) { c.SetBytes(kLongName, bytes.data(), 100); });
  ExpectAllOrNothing(kLongName, Original(), [&](TalcCommand& c) { c.SetBytes(kLongName, bytes.data(), 100); });
  ExpectAllOrNothing("A", Original(), [&](TalcCommand& c) { c.SetBytes("A", bytes.data(), 100); });
}

TEST(TalcCommandMemoryTest, SetterThatFindsNoMemoryBringsNoClearedValueBack) {
  const Bytes bytes(100, 7);
  for (const std::string& name : {std::string("S"), std::string("D"), kLongName}) {
    bool happened = true;
    for (int nth = 1; happened; ++nth) {
      TalcCommand command = Original();
      command.ClearParameters();
      happened = false;
      Shortage shortage(nth);
      try {
        command.SetBytes(name, bytes.data(), 100);
      } catch (const std::bad_alloc&) {
        happened = true;
      }
      countdown = 0;
      EXPECT_EQ(NamesOf(command), happened ? Names() : Names{name}) << "refusal " << nth;
    }
  }
}

TEST(TalcCommandMemoryTest, ReadingALengthThatLiesTakesMemoryOnlyForWhatComes) {
  std::istringstream stream("Foo X BYTES 4294967295 abc");
  TalcCommand command;
  largestBytes = 0;
  stream >> command;
  EXPECT_LE(largestBytes, 65'536U);
  EXPECT_FALSE(command.HasParameter("X"));
}

}  // namespace
