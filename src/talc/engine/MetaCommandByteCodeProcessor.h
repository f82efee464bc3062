#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "dictionary/MetaCommandFormat.h"
#include "dictionary/PacketSizes.h"
#include "talcpath.h"

namespace TalcPathPrivate {

/// Carries one meta command, once, as the packets of its three sub-commands.
///
///     MetaCommandByteCodeProcessor processor(command);
///     if (processor.Compile() && processor.Execute()) processor.MergeStatuses(command);
///
/// A send lays all values end to end and cuts them, wherever a value ends, into the "Data" of as many Repeat packets as
/// it takes, between a Start packet with their "TotalSize" and a Stop packet. A request asks with Start, takes Repeat
/// replies until that total is there, and stops. Nothing is tried again, and no Stop follows a failure.
class MetaCommandByteCodeProcessor {
 public:
  /// Sends a packet and takes its reply. True when the reply says success.
  using Exchange = std::function<bool(const TalcPath::TalcByteCode& packet, TalcPath::TalcByteCode& reply)>;

  struct Pair {
    TalcPath::TalcByteCode packet;
    TalcPath::TalcByteCode reply;
  };

  /// Sends by `TalcPathSendPacket`, without a name, which that refuses: so no meta command reaches any hardware. It is
  /// meant to stay until a transport knows what to do with one.
  explicit MetaCommandByteCodeProcessor(TalcPath::TalcCommand& command);
  MetaCommandByteCodeProcessor(TalcPath::TalcCommand& command, Exchange exchange);

  /// Makes all packets of a send, and the Start packet of a request. False for a command that is no meta command, and
  /// when a packet cannot be made. Throws `bad_variant_cast` for a value of another kind than its parameter.
  bool Compile();
  /// False at the first exchange that does not work and the first reply that cannot be read or is no success.
  bool Execute();
  /// Behind a success of all three sub-commands a request's values become the command's, and the status is success.
  /// Else the status tells the worst of the three: not supported, a transmit failure, a time-out, or a failure.
  void MergeStatuses(TalcPath::TalcCommand& command) const;

  /// In the order of their use.
  const std::vector<std::unique_ptr<Pair>>& Pairs() const { return pairs_; }

 private:
  bool CompilePacket(TalcPath::TalcCommand& command, const char* failure);
  bool CompileSend();
  bool CompileRepeats();
  bool CompileCut(const ParameterFormat& parameter, std::size_t size);
  bool Flush();
  std::span<std::uint8_t> Space() { return std::span(block_).subspan(used_); }

  bool ExecuteSend();
  bool ExecuteRequest();
  bool PullData(std::uint32_t total);
  bool ReadReply(TalcPath::TalcCommand& command, const Pair& pair);
  bool ExtractData(std::uint32_t total);
  bool GatherData(std::uint32_t total, std::vector<std::uint8_t>& data);

  TalcPath::TalcCommand& command_;
  MetaCommandFormat* format_ = nullptr;
  const bool isRequest_;
  Exchange exchange_;
  /// Takes the values of a request.
  TalcPath::TalcCommand result_;
  TalcPath::TalcCommand start_;
  TalcPath::TalcCommand repeat_;
  TalcPath::TalcCommand stop_;
  /// The data of the next Repeat packet.
  std::array<std::uint8_t, kMaxTalcPayloadBytes> block_;
  std::size_t used_ = 0;
  std::vector<std::unique_ptr<Pair>> pairs_;
};

}  // namespace TalcPathPrivate
