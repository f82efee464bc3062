#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

#include "EngineFixture.h"
#include "ScriptedTalcTransport.h"

/// Observers of the execution. Each writes its name and the command's to the journal, then does what its test says.
/// They leave their list when they go.
namespace engine_test {

class PreCompileProbe final : public TalcPath::TalcPreCompileObserver {
 public:
  std::function<void()> onCall;
  std::function<void(TalcCommand&, bool& proceed, bool& result)> decide;

  PreCompileProbe(Journal& journal, std::string name) : journal_(journal), name_(std::move(name)) {}
  PreCompileProbe(const PreCompileProbe&) = delete;
  PreCompileProbe& operator=(const PreCompileProbe&) = delete;
  ~PreCompileProbe() override { Remove(this); }
  static bool Add(PreCompileProbe* probe) { return TalcPath::TalcPathAddPreCompileObserver(probe); }
  static bool Remove(PreCompileProbe* probe) { return TalcPath::TalcPathRemovePreCompileObserver(probe); }

  void BeforeSending(TalcCommand& command, bool& proceed, bool& result) override {
    journal_.push_back(name_ + " " + command.GetName());
    EXPECT_TRUE(proceed);
    if (onCall) onCall();
    if (decide) decide(command, proceed, result);
  }

 private:
  Journal& journal_;
  const std::string name_;
};

class ExchangeProbe final : public TalcPath::TalcExchangeObserver {
 public:
  std::function<void()> onCall;
  std::function<void(TalcByteCode& reply, bool& proceed, bool& handled)> decide;
  int key = 0;

  ExchangeProbe(Journal& journal, std::string name, int itsKey = 0)
      : key(itsKey), journal_(journal), name_(std::move(name)) {}
  ExchangeProbe(const ExchangeProbe&) = delete;
  ExchangeProbe& operator=(const ExchangeProbe&) = delete;
  ~ExchangeProbe() override { Remove(this); }
  static bool Add(ExchangeProbe* probe) { return TalcPath::TalcPathAddExchangeObserver(probe); }
  static bool Remove(ExchangeProbe* probe) { return TalcPath::TalcPathRemoveExchangeObserver(probe); }

  std::string packetHex;
  const TalcPath::TalcTransport* transport = nullptr;

  void BeforeExchange(TalcCommand& command, const TalcByteCode& packet, TalcByteCode& reply, bool& proceed,
                      bool& handled, TalcPath::TalcTransport& itsTransport) override {
    journal_.push_back(name_ + " " + command.GetName());
    const std::string sent = Hex(packet);
    packetHex = sent;
    transport = &itsTransport;
    EXPECT_TRUE(proceed);
    if (onCall) onCall();
    if (decide) decide(reply, proceed, handled);
    EXPECT_EQ(Hex(packet), sent);
  }
  void Detached() override { ADD_FAILURE() << "the library does not detach"; }
  int GetKey() const override { return key; }

 private:
  Journal& journal_;
  const std::string name_;
};

class CompletionProbe final : public TalcPath::TalcCompletionObserver {
 public:
  std::function<void()> onCall;

  CompletionProbe(Journal& journal, std::string name) : journal_(journal), name_(std::move(name)) {}
  CompletionProbe(const CompletionProbe&) = delete;
  CompletionProbe& operator=(const CompletionProbe&) = delete;
  ~CompletionProbe() override { Remove(this); }
  static bool Add(CompletionProbe* probe) { return TalcPath::TalcPathAddCompletionObserver(probe); }
  static bool Remove(CompletionProbe* probe) { return TalcPath::TalcPathRemoveCompletionObserver(probe); }

  void AfterCompletion(TalcCommand& command) override {
    EXPECT_EQ(command.GetStatus(), TalcPath::kTPSuccess);
    journal_.push_back(name_ + " " + command.GetName());
    if (onCall) onCall();
  }

 private:
  Journal& journal_;
  const std::string name_;
};

}  // namespace engine_test
