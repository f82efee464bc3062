// A command's whole road: compile, exchange, decompile.

#include <memory>
#include <utility>

#include "dictionary/Log.h"
#include "engine/ByteCodeCompiler.h"
#include "engine/ByteCodeDecompiler.h"
#include "engine/CommandLog.h"
#include "engine/MetaCommandByteCodeProcessor.h"
#include "engine/Observers.h"
#include "talcpath.h"

using TalcPathPrivate::completionObservers;
using TalcPathPrivate::exchangeObservers;
using TalcPathPrivate::preCompileObservers;

namespace TalcPath {
namespace {

bool Fail(TalcCommand& command, TalcPathStatus status) {
  command.SetStatus(status);
  return false;
}

bool ExecuteMeta(TalcCommand& command) {
  TalcPathPrivate::MetaCommandByteCodeProcessor processor(command);
  if (!processor.Compile() || !processor.Execute()) return Fail(command, kTPFail);
  processor.MergeStatuses(command);
  // What went through counts, whatever the merged status is. It is meant.
  return true;
}

/// The packet and the reply of one execution. Their memory is kept for the next one; an execution within another one
/// has its own.
class Packets {
 public:
  Packets() : pair_(spare ? std::move(spare) : std::make_unique<Pair>()) {
    pair_->packet.Clear();
    pair_->reply.Clear();
  }
  ~Packets() { spare = std::move(pair_); }
  Packets(const Packets&) = delete;
  Packets& operator=(const Packets&) = delete;

  TalcByteCode& packet() { return pair_->packet; }
  TalcByteCode& reply() { return pair_->reply; }

 private:
  struct Pair {
    TalcByteCode packet;
    TalcByteCode reply;
  };
  static thread_local std::unique_ptr<Pair> spare;

  std::unique_ptr<Pair> pair_;
};
thread_local std::unique_ptr<Packets::Pair> Packets::spare;

/// What observers have made of a command so far.
struct Course {
  bool proceed = true;
  bool handled = true;
  bool result = true;
};

/// On false the command's status says why.
bool Exchange(TalcCommand& command, const TalcByteCode& packet, TalcByteCode& reply, std::uint32_t timeoutMillisec,
              TalcTransport& transport) {
  if (transport.Exchange(command.GetName().c_str(), packet, reply, timeoutMillisec)) return true;
  // A reply of success contradicts an exchange that did not work.
  const TalcPathStatus status = reply.GetStatus();
  return Fail(command, status == kTPSuccess ? kTPTransmitFailure : status);
}

bool Complete(TalcCommand& command, TalcTransport& transport) {
  transport.CommandCompleted(command);
  completionObservers.Walk([&](TalcCompletionObserver& observer) {
    observer.AfterCompletion(command);
    return true;
  });
  return true;
}

bool ExecuteOrdinary(TalcCommand& command, TalcTransport& transport) {
  TalcPathPrivate::WriteToCommandLog(command);
  Packets packets;
  TalcByteCode& packet = packets.packet();
  TalcByteCode& reply = packets.reply();
  std::uint32_t timeoutMillisec = 0;
  TalcPathStatus status = kTPSuccess;
  if (!TalcPathPrivate::ByteCodeCompiler(command, packet, &timeoutMillisec, &status).Compile())
    return Fail(command, status);

  Course course;
  preCompileObservers.Walk([&](TalcPreCompileObserver& observer) {
    observer.BeforeSending(command, course.proceed, course.result);
    return course.proceed;
  });
  if (!course.proceed) {
    command.SetStatus(course.result ? kTPSuccess : kTPFail);
  } else {
    exchangeObservers.Walk([&](TalcExchangeObserver& observer) {
      observer.BeforeExchange(command, packet, reply, course.proceed, course.handled, transport);
      return course.proceed;
    });
    if (!course.proceed && !course.handled) {
      command.SetStatus(kTPSuccess);
      return true;  // and nobody is told. It is meant.
    }
    if (course.proceed && !Exchange(command, packet, reply, timeoutMillisec, transport)) return false;
    if (!TalcPathPrivate::ByteCodeDecompiler(command, reply, &status).Decompile(false)) return Fail(command, status);
  }
  if (command.IsSuccess()) return Complete(command, transport);
  if (command.IsTimeOut())
    TalcPathPrivate::LogAlways("\nTalc Command [", command.GetName(), "] timed out. Wait time [", timeoutMillisec,
                               "] 0 means default timeout");
  return false;
}

}  // namespace

bool TalcPathExecute(TalcCommand& command) {
  TalcTransport* const current = TalcPathGetTransport();
  if (current == nullptr) return false;
  // The current transport's lock, also when another one carries the command. It is meant: that one has the turn.
  const StackBasedMutexCaller lock(current);
  const std::uint32_t id = command.GetTransportId();
  TalcTransport* const transport = id > 0 ? TalcPathGetTransportById(id) : current;
  if (transport == nullptr) return false;
  if (IsMetaCommandFormat(command)) return ExecuteMeta(command);
  if (IsDiagCommandFormat(command)) return Fail(command, kTPAttemptedToExecuteDiagCommand);
  return ExecuteOrdinary(command, *transport);
}

bool TalcPathSendPacket(const char* commandName, const TalcByteCode& packet, TalcByteCode* reply,
                        std::uint32_t timeoutMillisec) {
  TalcTransport* const transport = TalcPathGetTransport();
  if (transport == nullptr || commandName == nullptr) return false;
  const StackBasedMutexCaller lock(transport);
  TalcByteCode ownReply;
  TalcByteCode& answer = reply == nullptr ? ownReply : *reply;
  if (!transport->Exchange(commandName, packet, answer, timeoutMillisec)) return false;
  // A reply that cannot be read has a status that is none of success.
  return answer.GetStatus() == kTPSuccess;
}

}  // namespace TalcPath
