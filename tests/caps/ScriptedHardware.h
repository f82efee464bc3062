#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "caps/CapsState.h"
#include "CapsPlatform.h"
#include "dictionary/DefinedCommands.h"
#include "platform/Platform.h"
#include "support/PacketText.h"
#include "support/PlatformDouble.h"
#include "talcpath.h"

namespace caps_test {

/// One packet that hardware is to be sent, and what it answers, both as byte pairs in hexadecimal.
struct Exchange {
  std::string request;
  std::string reply = {};                 ///< none when the transport brings nothing
  std::function<void()> onExchange = {};  ///< done first; may throw
};

/// A transport with hardware behind it that expects an exact sequence of packets. One that is missing, extra, out of
/// order or different fails the test. Only one is attached at a time: the one that was made last.
///
///     ScriptedHardware hardware;
///     hardware.Expect({{"0B 0B 00 04 80 39 00 00", "0B 0B 00 05 80 39 00 00 03"}});
///     TalcPathPrivate::StartCapabilities(nullptr, &ScriptedHardware::Execute);
class ScriptedHardware {
 public:
  ScriptedHardware() { attached_ = this; }
  ~ScriptedHardware() {
    if (std::uncaught_exceptions() == 0) ExpectDone();
    attached_ = nullptr;
  }
  ScriptedHardware(const ScriptedHardware&) = delete;
  ScriptedHardware& operator=(const ScriptedHardware&) = delete;

  /// Appends to what is expected.
  void Expect(const std::vector<Exchange>& script) { script_.insert(script_.end(), script.begin(), script.end()); }
  /// Fails the test unless every expected packet was sent.
  void ExpectDone() {
    EXPECT_EQ(next_, script_.size()) << "packets were not sent";
    next_ = script_.size();
  }

  /// Carries a command there and back: true when it was answered with a success that could be read.
  static bool Execute(TalcPath::TalcCommand& command) {
    TalcPath::TalcByteCode packet;
    TalcPath::TalcPathStatus reason = TalcPath::kTPFail;
    if (!TalcPath::TalcPathCompile(command, packet, nullptr, &reason)) {
      ADD_FAILURE() << command.GetName() << " does not compile: " << TalcPath::GetStatusName(reason);
      return false;
    }
    const test_support::Bytes reply = test_support::FromHex(attached_->Answer(test_support::Hex(packet)));
    if (!packet.Set(reply.data(), static_cast<std::uint32_t>(reply.size()))) return false;
    return TalcPath::TalcPathDecompile(command, packet, nullptr, false) && command.IsSuccess();
  }

 private:
  std::string Answer(const std::string& request) {
    if (next_ == script_.size()) {
      ADD_FAILURE() << "no packet is expected, but " << request;
      return "";
    }
    const Exchange& exchange = script_[next_++];
    EXPECT_EQ(request, exchange.request) << "packet " << next_;
    if (exchange.onExchange) exchange.onExchange();
    return exchange.reply;
  }

  inline static ScriptedHardware* attached_ = nullptr;
  std::vector<Exchange> script_;
  std::size_t next_ = 0;
};

/// The program's capabilities, as the build put them in.
inline std::string EmbeddedCapabilities() {
  const auto text = platform::Native().textBlocks().Bytes("RT_HWC_FILE", "IDR_RT_HWCFILE_1");
  if (!text) throw std::logic_error("no capabilities in the program");
  return std::string(*text);
}

/// The started library with the dictionaries of the program, and hardware that answers as a test writes down.
class HardwareTest : public CapsPlatformTest {
 protected:
  HardwareTest() {
    // The program's commands need the place of the small dictionary's.
    TalcPathPrivate::ErrorList errors;
    TalcPathPrivate::DeleteDefinedCommands(errors);
    TalcPathPrivate::DeleteCommandTypeTable(errors);
    TalcPathPrivate::DeleteDiagOpcodeTable(errors);
    test_support::PlatformDouble program;
    program.Use(files_);
    platform::ScopedPlatform scope(program);
    if (!TalcPath::TalcPathInit()) throw std::logic_error("the library does not start: " + log());
  }
  ~HardwareTest() override { EXPECT_TRUE(TalcPath::TalcPathTerminate()); }

  /// Attaches the hardware, with one block of capabilities for each text.
  void Attach(const Lines& texts) {
    blocks_.RemoveAll();
    for (const std::string& text : texts)
      blocks_.Add(std::to_string(++blockCount_) + ".hwc", text);
    ASSERT_TRUE(TalcPathPrivate::StartCapabilities(nullptr, &ScriptedHardware::Execute)) << log();
  }

  ScriptedHardware hardware_;

 private:
  int blockCount_ = 0;
};

}  // namespace caps_test
