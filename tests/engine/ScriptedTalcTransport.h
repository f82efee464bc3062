#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <exception>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "engine/Transports.h"
#include "EngineFixture.h"

namespace engine_test {

/// What happened, in order, one line for each event.
using Journal = std::vector<std::string>;

/// What a transport makes of one packet.
struct Answer {
  std::string reply;                  ///< byte pairs in hexadecimal; none leaves the reply as it is
  bool isGood = true;                 ///< what the exchange gives
  std::function<void()> action = {};  ///< done last, with the reply in place; may throw
};

/// A transport that answers from a script and keeps a journal. A packet without an answer, and an answer without a
/// packet, fail the test. So does a packet or a reply that changes while its exchange does something else.
///
///     Journal journal;
///     ScriptedTalcTransport transport(journal);
///     transport.Expect({{"0B 0B 00 04 80 02 00 00"}});
///     ...
///     EXPECT_EQ(journal, (Journal{"lock", "exchange Ping 0B 0B 00 04 80 02 00 00 timeout 0", "completed Ping",
///                                 "unlock"}));
class ScriptedTalcTransport final : public TalcPath::TalcTransport {
 public:
  std::function<void()> onCompleted;  ///< may throw
  std::function<void()> onLock;
  std::function<void()> onUnlock;

  /// The label stands before each of its lines.
  explicit ScriptedTalcTransport(Journal& journal, std::string label = "")
      : journal_(journal), label_(std::move(label)) {}
  ScriptedTalcTransport(const ScriptedTalcTransport&) = delete;
  ScriptedTalcTransport& operator=(const ScriptedTalcTransport&) = delete;
  ~ScriptedTalcTransport() override {
    if (std::uncaught_exceptions() == 0) {
      EXPECT_EQ(next_, script_.size()) << label_ << "packets were not sent";
    }
  }

  /// Appends to what is answered.
  void Expect(std::initializer_list<Answer> answers) { script_.insert(script_.end(), answers); }

  void Attached() override { ADD_FAILURE() << label_ << "the library does not attach"; }
  void Detached() override { ADD_FAILURE() << label_ << "the library does not detach"; }
  bool Exchange(const char* commandName, const TalcByteCode& packet, TalcByteCode& reply,
                std::uint32_t timeoutMillisec) override {
    const std::string sent = Hex(packet);
    Note("exchange " + std::string(commandName) + " " + sent + " timeout " + std::to_string(timeoutMillisec));
    if (next_ == script_.size()) {
      ADD_FAILURE() << label_ << "no packet is expected";
      return false;
    }
    const Answer answer = script_[next_++];
    const Bytes bytes = FromHex(answer.reply);
    if (!bytes.empty()) reply.Set(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    const std::string received = Hex(reply);
    if (answer.action) answer.action();
    EXPECT_EQ(Hex(packet), sent);
    EXPECT_EQ(Hex(reply), received);
    return answer.isGood;
  }
  void CommandCompleted(const TalcCommand& command) override {
    Note("completed " + command.GetName());
    if (onCompleted) onCompleted();
  }
  void Lock() override {
    Note("lock");
    if (onLock) onLock();
  }
  void Unlock() override {
    Note("unlock");
    if (onUnlock) onUnlock();
  }

 private:
  void Note(const std::string& event) { journal_.push_back(label_ + event); }

  Journal& journal_;
  const std::string label_;
  std::vector<Answer> script_;
  std::size_t next_ = 0;
};

/// What an execution gave, and the status that it left.
struct Executed {
  bool isGood = false;
  TalcPathStatus status = kUntouchedStatus;

  friend bool operator==(const Executed&, const Executed&) = default;
};
inline constexpr Executed kSucceeded{true, TalcPath::kTPSuccess};

inline void PrintTo(const Executed& result, std::ostream* stream) {
  *stream << (result.isGood ? "true, " : "false, ") << TalcPath::GetStatusName(result.status);
}

inline Executed Failed(TalcPathStatus status) {
  return {false, status};
}

/// Executes a command whose status is none that the library knows.
inline Executed Execute(TalcCommand& command) {
  command.SetStatus(kUntouchedStatus);
  const bool isGood = TalcPath::TalcPathExecute(command);
  return {isGood, command.GetStatus()};
}

/// The library with a small dictionary and one transport, which nobody has registered yet.
class TransportTest : public EngineTest {
 protected:
  // A library that is not started forgets none at its stop.
  ~TransportTest() override { TalcPathPrivate::ForgetTransports(); }

  static constexpr const char* kDictionary =
      "Ping Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1 ;"
      "Level Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 2"
      " DataName Channel RD DataType UINT8 DataName Level DataType UINT16 Symbol Left 1 ;"
      "Text Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 3 DataName Text DataType BYTES ;"
      "Lamp Diag DiagOpcode 5 ;"
      "Begin Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 4 DataName TotalSize DataType UINT32 ;"
      "Table Meta Start Begin Repeat Text Stop Ping ;"
      "Broken Meta Start Nowhere Repeat Text Stop Ping ;";
  static constexpr const char* kPing = "exchange Ping 0B 0B 00 04 80 02 00 00 timeout 0";
  static constexpr const char* kGood = "0B 0B 00 04 80 02 00 00";

  Journal TakeJournal() { return std::exchange(journal_, {}); }

  Journal journal_;
  ScriptedTalcTransport transport_{journal_};
};

}  // namespace engine_test
