#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "dictionary/PacketSizes.h"
#include "dictionary/TalcDataCommandFormat.h"
#include "talcpath.h"

namespace TalcPathPrivate {

/// Makes the packet of one command, once.
///
///     ByteCodeCompiler compiler(command, byteCode, &timeoutMillisec, &status);
///     if (compiler.Compile()) ...
///
/// The command is found in the dictionary at construction, which clears `byteCode` and stores the command's time-out.
/// Both out pointers may be null; they are only written when there is something to tell.
class ByteCodeCompiler {
 public:
  ByteCodeCompiler(TalcPath::TalcCommand& command, TalcPath::TalcByteCode& byteCode,
                   std::uint32_t* overrideTimeoutMillisec, TalcPath::TalcPathStatus* status);

  /// True when `byteCode` has the packet, or found no memory for it. On false it is empty, and the status tells why:
  /// 5 to 8 or 11, or nothing for a meta command. Throws `bad_variant_cast` for a value of another kind than its
  /// parameter.
  bool Compile();

 private:
  bool Fail(TalcPath::TalcPathStatus reason);
  bool DetermineSizes();
  bool WritePacket();
  bool WriteHeader();
  bool WriteTalcHeader();
  bool WriteDiagHeader();
  bool WriteParameters();
  bool ConvertSymbol(const ParameterFormat& parameter);
  std::uint32_t TotalBytes() const;
  std::uint32_t PayloadBytes() const;

  TalcPath::TalcCommand& command_;
  TalcPath::TalcByteCode& byteCode_;
  TalcPath::TalcPathStatus* const status_;
  const bool isRequest_;
  TalcDataCommandFormat* format_ = nullptr;
  PacketSizes sizes_;
  /// The packet: the block of the byte code or, without memory for that, the spare one, so that what is wrong with the
  /// command is found out all the same.
  std::span<std::uint8_t> packet_;
  std::array<std::uint8_t, GetMaxPacketTotalSizeInBytes()> sparePacket_;
};

}  // namespace TalcPathPrivate
