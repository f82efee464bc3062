#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/PacketText.h"
#include "WyvrelHelper.h"

/// One exchange that a transport is to be asked for, and what comes of it.
struct Exchange {
  test_support::Bytes command;  ///< none for an exchange that only waits
  test_support::Bytes reply = {};
  HwcStatus status = kHWCerr_None;
  std::uint32_t toldCapacityBytes = 2000;
  std::function<void()> onExchange = {};  ///< done first; may throw
};

/// A command and its reply, both as byte pairs in hexadecimal.
inline Exchange Replies(const std::string& command, const std::string& reply) {
  return {.command = test_support::FromHex(command), .reply = test_support::FromHex(reply)};
}
/// A command that gets no reply in time.
inline Exchange TimesOut(const std::string& command) {
  return {.command = test_support::FromHex(command), .status = kHWCerr_CommandTimeout};
}

/// A helper whose transport expects an exact sequence of exchanges, each with a time-out of a second. One that is
/// missing, extra, out of order or has another packet fails the test.
///
///     ScriptedTransport helper;
///     helper.Expect({Replies("0B 0B 00 04 80 0A 00 00", "0B 0B 00 04 80 0A 00 00")});
///     helper.SendCommand("ProgramFPGA", {});
///
/// A reply may be longer than the capacity that the caller told. A status other than 0 leaves the reply's room alone.
class ScriptedTransport : public WyvrelHelperRep {
 public:
  explicit ScriptedTransport(OpenMode mode = OpenMode::kHostCards) : WyvrelHelperRep(mode) {}
  ~ScriptedTransport() noexcept override {
    if (std::uncaught_exceptions() == 0) ExpectDone();
  }

  /// Appends to what is expected.
  void Expect(const std::vector<Exchange>& script) { script_.insert(script_.end(), script.begin(), script.end()); }
  /// Fails the test unless every expected exchange was made.
  void ExpectDone() {
    EXPECT_EQ(next_, script_.size()) << "exchanges were not made";
    next_ = script_.size();
  }

  bool Open() override { return true; }
  const char* GetPrompt() const override { return ""; }
  bool IsCodecPresent(std::int32_t) override { return false; }

  HwcStatus IOCTL_TransactBoBCommand(const std::uint8_t* command, std::uint32_t commandLengthBytes, std::uint8_t* reply,
                                     std::uint32_t* replyLengthBytes, std::uint32_t timeoutLow,
                                     std::uint32_t timeoutHigh) override {
    const test_support::Bytes made(command, command + (command == nullptr ? 0 : commandLengthBytes));
    if (next_ == script_.size()) Refuse("no exchange is expected, but " + test_support::Hex(made));
    const Exchange exchange = script_[next_++];
    if (made != exchange.command)
      Refuse("the command is " + test_support::Hex(made) + ", expected " + test_support::Hex(exchange.command));
    if ((command == nullptr) != exchange.command.empty()) Refuse("a command without bytes");
    if (commandLengthBytes != exchange.command.size()) Refuse("bytes without a command");
    if (reply == nullptr || replyLengthBytes == nullptr) Refuse("no room for the reply");
    EXPECT_EQ(*replyLengthBytes, exchange.toldCapacityBytes);
    EXPECT_EQ(timeoutLow, 1'000'000u);
    EXPECT_EQ(timeoutHigh, 0u);
    if (exchange.onExchange) exchange.onExchange();
    if (exchange.status != kHWCerr_None) return exchange.status;
    std::copy(exchange.reply.begin(), exchange.reply.end(), reply);
    *replyLengthBytes = static_cast<std::uint32_t>(exchange.reply.size());
    return exchange.status;
  }

 private:
  /// Throws as well, since code that polls would go on for ever.
  [[noreturn]] static void Refuse(const std::string& what) {
    ADD_FAILURE() << what;
    throw std::runtime_error(what);
  }

  std::vector<Exchange> script_;
  std::size_t next_ = 0;
};
