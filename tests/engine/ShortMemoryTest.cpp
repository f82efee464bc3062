// Memory that runs out, at each single allocation.

#include <gtest/gtest.h>

#include <memory>
#include <new>

#include "dictionary/CommandContents.h"
#include "EngineFixture.h"
#include "ThrowingAllocation.h"

namespace {

using namespace engine_test;
using ::testing::EndsWith;

constexpr const char* kDictionary =
    "# a comment ;\n"
    "AVeryLongNameThatNeedsMemory Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 1\n"
    "DataName AnotherLongNameThatNeedsMemory RD DataType UINT16\n"
    "DataName Data DataType BYTES\n"
    "Symbol kASymbolWithALongNameThatNeedsMemory 7\n;\n"
    "Diag Diag DiagOpcode 5 ;\n"
    "Meta Meta Start A Repeat B Stop C ;\n";
constexpr int kFarBeyond = 10'000;

class ShortMemoryTest : public EngineTest {};

TEST_F(ShortMemoryTest, AStartFailsAtEachAllocationAndStandsWithAll) {
  blocks_.Add("Test.tcd", kDictionary);
  int exceptions = 0;
  int nth = 1;
  for (; nth < kFarBeyond; ++nth) {
    bool isStarted = false;
    bool happened = false;
    {
      const ThrowingAllocation allocation(nth);
      isStarted = TalcPath::TalcPathInit();
      happened = ThrowingAllocation::Happened();
    }
    EXPECT_EQ(isStarted, TalcPathPrivate::IsInitialized()) << nth;
    const std::string log = TakeLog();
    if (!happened) {
      EXPECT_TRUE(isStarted) << log;
      break;
    }
    EXPECT_FALSE(isStarted) << nth;
    // A table that cannot be had is no exception: it fails what needed it.
    EXPECT_THAT(log, EndsWith("\n>>> FAILED to initialize TalcPath <<<")) << nth;
    exceptions += log ==
                  "\n\nException while Initializing TalcPath : std::bad_alloc"
                  "\n>>> FAILED to initialize TalcPath <<<";
    Reset();
    TalcPath::TalcPathSetLogStream(&log_);
  }
  EXPECT_GT(exceptions, 10);
  EXPECT_LT(nth, kFarBeyond);
  EXPECT_EQ(TalcPathPrivate::DefinedCommands()->size(), 3u);
}

TEST_F(ShortMemoryTest, ACompileThrowsAndLeavesNoPacket) {
  StartWith(kDictionary);
  int nth = 1;
  for (; nth < kFarBeyond; ++nth) {
    TalcCommand command("AVeryLongNameThatNeedsMemory");
    command.SetSymbol("AnotherLongNameThatNeedsMemory", "kASymbolWithALongNameThatNeedsMemory");
    SetBytes(command, "Data", {1, 2});
    TalcByteCode packet;
    packet.SetResponseSuccess();
    bool isCompiled = false;
    try {
      const ThrowingAllocation allocation(nth);
      isCompiled = TalcPath::TalcPathCompile(command, packet, nullptr, nullptr);
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(packet.GetSize(), 0u) << nth;
      continue;
    }
    EXPECT_TRUE(isCompiled) << nth;
    // The packet's own block is asked for without an exception. That allocation is seen where the C++ library is part
    // of the program.
    if (ThrowingAllocation::Happened() && packet.GetSize() == 0) continue;
    EXPECT_EQ(Hex(packet), "0B 0B 00 08 40 02 00 00 00 07 01 02") << nth;
    if (!ThrowingAllocation::Happened()) break;
  }
  EXPECT_GT(nth, 1);
  EXPECT_LT(nth, kFarBeyond);
}

TEST_F(ShortMemoryTest, ADecompileThrows) {
  StartWith(kDictionary);
  const Bytes reply = FromHex("0B 0B 00 08 40 03 00 00 00 07 01 02");
  TalcByteCode packet;
  packet.Set(reply.data(), static_cast<std::uint32_t>(reply.size()));
  int nth = 1;
  for (; nth < kFarBeyond; ++nth) {
    TalcCommand command = Request("AVeryLongNameThatNeedsMemory");
    bool isRead = false;
    try {
      const ThrowingAllocation allocation(nth);
      isRead = TalcPath::TalcPathDecompile(command, packet, nullptr, false);
    } catch (const std::bad_alloc&) {
      continue;
    }
    EXPECT_TRUE(isRead) << nth;
    EXPECT_EQ(BytesHex(command, "Data"), "01 02") << nth;
    if (!ThrowingAllocation::Happened()) break;
  }
  EXPECT_GT(nth, 1);
  EXPECT_LT(nth, kFarBeyond);
}

/// A command that found no memory when it was constructed.
class CommandWithoutMemoryTest : public EngineTest {
 protected:
  void SetUp() override { StartWith(kDictionary); }

  static std::unique_ptr<TalcCommand> Make() {
    void* const place = ::operator new(sizeof(TalcCommand));
    const ThrowingAllocation first(1);
    auto command = std::unique_ptr<TalcCommand>(new (place) TalcCommand("AVeryLongNameThatNeedsMemory"));
    EXPECT_EQ(TalcPath::ContentsOf(*command), nullptr);
    return command;
  }
};

TEST_F(CommandWithoutMemoryTest, DoesNotCompile) {
  const auto command = Make();
  EXPECT_EQ(CompileFailure(*command), TalcPath::kTPCommandFormatNotFound);
}

TEST_F(CommandWithoutMemoryTest, HasNoNameInTheTrace) {
  const auto command = Make();
  SetFlags(false, true);
  // It is a send, so that only the tolerant way looks for its definition.
  EXPECT_EQ(Decompile(*command, "0B 0B 00 04 40 03 00 00", true),
            (Decompiled{false, TalcPath::kTPCommandFormatNotFound}));
  EXPECT_EQ(TakeLog(), "\nERROR - Could not find TalcCommandFormat - Command: COMMAND_NAME_IS_NULL!");
  EXPECT_EQ(command->GetStatus(), TalcPath::kTPFail);
  EXPECT_EQ(Decompile(*command, "0B 0B 00 04 40 03 00 00"), kRead);
}

}  // namespace
