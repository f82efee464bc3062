#pragma once

#include <cstdint>
#include <span>

#include "dictionary/CommandFormat.h"
#include "dictionary/CommandType.h"
#include "talcpath.h"

namespace TalcPathPrivate {

/// Reads one reply into a command, once.
///
/// Lenient by design: what the reply says of itself, its type, function, direction or opcode, is read and never
/// compared with the command. Only the mark, the length and the sizes count.
class ByteCodeDecompiler {
 public:
  ByteCodeDecompiler(TalcPath::TalcCommand& command, const TalcPath::TalcByteCode& byteCode,
                     TalcPath::TalcPathStatus* status);

  /// True when the reply was read; the command's status tells what became of the command. On false it is `kTPFail`,
  /// and the status out, if given, is 5, 6, 9, 10 or 12. With `tolerant` a send's reply is read like a request's, and
  /// values that are missing are no failure.
  bool Decompile(bool tolerant);

 private:
  void SetStatus(TalcPath::TalcPathStatus status);
  bool Fail(TalcPath::TalcPathStatus reason);
  bool SetUp();
  bool ReadDiagOpcode();
  bool ReadTransportHeader();
  bool ReadOpcode();
  bool ReadHeader(bool isDiag);
  bool ReadParameters();

  TalcPath::TalcCommand& command_;
  const TalcPath::TalcByteCode& byteCode_;
  TalcPath::TalcPathStatus* const status_;
  CodedCommandType code_;
  std::int16_t diagOpcode_ = -1;
  CommandFormat* format_ = nullptr;
  std::span<const std::uint8_t> packet_;
  /// The length field, read from an ordinary reply only.
  std::uint32_t payloadSize_ = 0;
  TalcPath::TalcPathStatus headerStatus_ = TalcPath::kTPFail;
};

}  // namespace TalcPathPrivate
