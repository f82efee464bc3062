#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "caps/CapsState.h"
#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "engine/Library.h"
#include "EnginePlatform.h"
#include "support/PacketText.h"
#include "support/PlatformDouble.h"
#include "talcpath.h"

namespace engine_test {

using test_support::Bytes;
using test_support::FromHex;
using test_support::Hex;
using test_support::PacketOf;
using test_support::operator+;

using TalcPath::TalcByteCode;
using TalcPath::TalcCommand;
using TalcPath::TalcPathStatus;

/// What an out value holds before the library is called.
inline constexpr auto kUntouchedStatus = static_cast<TalcPathStatus>(99);
inline constexpr std::uint32_t kUntouchedTimeout = 7777;

/// The library on a platform of blocks and directories that a test fills, its log in a text. Before and after each test
/// the library is stopped, its tables are empty and its log is as at the start of a program.
///
///     StartWith("Foo Talc CommandTypeMajor AUDIO CommandTypeMinor 0 Function 23 ;");
///     TalcCommand foo("Foo");
///     EXPECT_EQ(CompiledHex(foo), "0B 0B 00 04 40 2E 00 00");
class EngineTest : public ::testing::Test {
 protected:
  EngineTest() {
    Reset();
    system_.Use(blocks_);
    system_.Use(files_);
    system_.Use(clock_);
    TalcPath::TalcPathSetLogStream(&log_);
  }
  ~EngineTest() override { Reset(); }

  /// Starts the library with one block of text, and forgets what it logged.
  void StartWith(const std::string& dictionary) {
    blocks_.Add("Test.tcd", dictionary);
    ASSERT_TRUE(TalcPath::TalcPathInit()) << TakeLog();
    TakeLog();
  }
  /// Starts the library with the dictionaries of the program.
  void StartWithEmbedded() {
    system_.Use(platform::Native().textBlocks());
    ASSERT_TRUE(TalcPath::TalcPathInit()) << TakeLog();
    TakeLog();
  }

  /// What was logged since the last call.
  std::string TakeLog() {
    std::string text = log_.str();
    log_.str("");
    return text;
  }
  static void SetFlags(bool verbose, bool trace) {
    TalcPathPrivate::logState.verbose = verbose;
    TalcPathPrivate::logState.trace = trace;
  }

  static void Reset() {
    TalcPathPrivate::logState = {};
    while (TalcPathPrivate::IsInitialized())
      TalcPath::TalcPathTerminate();
    // A start that failed leaves what it read, and nothing public forgets it.
    TalcPathPrivate::FreeCapsManager();
    TalcPathPrivate::StopCapabilities();
    TalcPathPrivate::ErrorList errors;
    TalcPathPrivate::DeleteDefinedCommands(errors);
    TalcPathPrivate::DeleteCommandTypeTable(errors);
    TalcPathPrivate::DeleteDiagOpcodeTable(errors);
    TalcPath::TalcPathSetDirectory("");
    TalcPath::TalcPathCloseCommandLog();
  }

  FakeTextBlocks blocks_;
  FakeFiles files_;
  TickClock clock_;
  test_support::PlatformDouble system_;
  platform::ScopedPlatform scope_{system_};
  std::ostringstream log_;
};

struct Compiled {
  bool isGood = false;
  std::string packet;
  TalcPathStatus status = kUntouchedStatus;
  std::uint32_t timeoutMilliseconds = kUntouchedTimeout;
};

/// Compiles into a packet that holds something else, so that what is left of that shows.
inline Compiled Compile(TalcCommand& command) {
  const std::uint8_t old[] = {1, 2, 3};
  TalcByteCode byteCode;
  byteCode.Set(old, sizeof old);
  Compiled compiled;
  compiled.isGood = TalcPath::TalcPathCompile(command, byteCode, &compiled.timeoutMilliseconds, &compiled.status);
  compiled.packet = Hex(byteCode);
  return compiled;
}

/// The packet of a command that compiles.
inline std::string CompiledHex(TalcCommand& command) {
  const Compiled compiled = Compile(command);
  EXPECT_TRUE(compiled.isGood) << "status " << compiled.status;
  EXPECT_EQ(compiled.status, TalcPath::kTPSuccess);
  return compiled.packet;
}

/// The status of a command that does not compile.
inline TalcPathStatus CompileFailure(TalcCommand& command) {
  const Compiled compiled = Compile(command);
  EXPECT_FALSE(compiled.isGood);
  EXPECT_EQ(compiled.packet, "");
  return compiled.status;
}

struct Decompiled {
  bool isRead = false;
  TalcPathStatus reason = kUntouchedStatus;

  friend bool operator==(const Decompiled&, const Decompiled&) = default;
};
inline constexpr Decompiled kRead{true, TalcPath::kTPSuccess};

inline void PrintTo(const Decompiled& result, std::ostream* stream) {
  *stream << (result.isRead ? "read" : "not read") << ", " << TalcPath::GetStatusName(result.reason);
}

/// Reads a reply that lies in a block of exactly its size, so that a sanitizer sees a read outside.
inline Decompiled Decompile(TalcCommand& command, const Bytes& reply, bool tolerant = false) {
  TalcByteCode byteCode;
  byteCode.Set(reply.data(), static_cast<std::uint32_t>(reply.size()));
  Decompiled result;
  result.isRead = TalcPath::TalcPathDecompile(command, byteCode, &result.reason, tolerant);
  return result;
}
inline Decompiled Decompile(TalcCommand& command, const std::string& replyHex, bool tolerant = false) {
  return Decompile(command, FromHex(replyHex), tolerant);
}

/// A request of the name, without values.
inline TalcCommand Request(std::string_view name) {
  TalcCommand command(name);
  command.SetRequestCommand();
  return command;
}

inline void SetBytes(TalcCommand& command, std::string_view name, const Bytes& bytes) {
  command.SetBytes(name, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

/// The value of a BYTES parameter as hex text, or "none".
inline std::string BytesHex(const TalcCommand& command, std::string_view name) {
  std::uint32_t length = 0;
  if (!command.GetBytesLength(name, &length)) return "none";
  Bytes bytes(length);
  EXPECT_TRUE(command.GetBytes(name, bytes.data(), length, nullptr));
  return Hex(bytes);
}

}  // namespace engine_test
