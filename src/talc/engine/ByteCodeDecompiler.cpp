#include "engine/ByteCodeDecompiler.h"

#include <algorithm>

#include "dictionary/CommandContents.h"
#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "dictionary/PacketSizes.h"
#include "engine/PacketHeader.h"

using TalcPath::TalcByteCode;
using TalcPath::TalcCommand;
using TalcPath::TalcPathStatus;

namespace TalcPathPrivate {

ByteCodeDecompiler::ByteCodeDecompiler(TalcCommand& command, const TalcByteCode& byteCode, TalcPathStatus* status)
    : command_(command), byteCode_(byteCode), status_(status) {}

void ByteCodeDecompiler::SetStatus(TalcPathStatus status) {
  if (CommandContents* const contents = ContentsOf(command_)) contents->status = status;
}

bool ByteCodeDecompiler::Fail(TalcPathStatus reason) {
  SetStatus(TalcPath::kTPFail);
  if (status_ != nullptr) *status_ = reason;
  return false;
}

bool ByteCodeDecompiler::Decompile(bool tolerant) {
  SetStatus(TalcPath::kTPFail);
  format_ = FindDefinedCommand(command_.GetName());
  if (!SetUp()) {
    LogTrace("\nERROR - Bytecode Decompile could not set up packetNum: 0");
    return Fail(TalcPath::kTPPacketSizeError);
  }
  if (!ReadHeader(format_ != nullptr && format_->IsDiagCommandFormat())) return false;

  SetStatus(headerStatus_);
  if (headerStatus_ != TalcPath::kTPSuccess) return true;
  if (!IsRequest(command_) && !tolerant) {
    if (packet_.size() != kTalcHeaderBytes)
      LogTrace("\nWARNING - Response packet for a Send Command was longer than 2 byte standard - extra data ignored");
    return true;
  }

  if (CommandContents* const contents = ContentsOf(command_)) contents->parameters.Clear();
  if (format_ == nullptr) {
    LogTrace("\nERROR - Could not find TalcCommandFormat - Command: ",
             ContentsOf(command_) != nullptr ? command_.GetName().c_str() : "COMMAND_NAME_IS_NULL!");
    return Fail(TalcPath::kTPCommandFormatNotFound);
  }
  if (!ReadParameters() && !tolerant) {
    LogTrace("\nERROR - Decompiling parameters failed - Command: ", command_.GetName());
    return Fail(TalcPath::kTPDecompileMissingParameterData);
  }
  return true;
}

bool ByteCodeDecompiler::SetUp() {
  const std::uint8_t* buffer = nullptr;
  if (!byteCode_.GetPacketByteCodeBuffer(&buffer) || byteCode_.GetSize() < kTalcHeaderBytes) return false;
  packet_ = {buffer, byteCode_.GetSize()};
  return true;
}

bool ByteCodeDecompiler::ReadHeader(bool isDiag) {
  if (isDiag) {
    if (ReadDiagOpcode()) return true;
    LogTrace("\nERROR - Bytecode Decompile could not decompile Diag opcode - packetNum: 0");
    return Fail(TalcPath::kTPInvalidOpcode);
  }
  if (!ReadTransportHeader()) {
    LogTrace("\nERROR - Bytecode Decompile could not decode transport header - packetNum: 0");
    return Fail(TalcPath::kTPInvalidTransportHeader);
  }
  if (!ReadOpcode()) {
    LogTrace("\nERROR - Bytecode Decompile could not decompile Talc opcode - packetNum: 0");
    return Fail(TalcPath::kTPInvalidOpcode);
  }
  return true;
}

bool ByteCodeDecompiler::ReadDiagOpcode() {
  if (packet_.size() < kDiagHeaderBytes) return false;
  diagOpcode_ = packet_[kDiagOpcodeOffset];
  headerStatus_ = TalcPath::kTPSuccess;  // A diagnostic reply has no status byte.
  return true;
}

bool ByteCodeDecompiler::ReadTransportHeader() {
  if (!HasPacketMark(packet_)) {
    LogTrace("\nERROR - Transport header for packet not marked with BOB Command ID");
    return false;
  }
  const std::uint32_t length = Load16(&packet_[kLengthOffset]);
  if (length < kCountedHeaderBytes) return false;
  payloadSize_ = length;
  headerStatus_ = StatusFromByte(packet_[kStatusOffset]);
  return true;
}

bool ByteCodeDecompiler::ReadOpcode() {
  if (packet_.size() < kTalcHeaderBytes) return false;
  code_ = DecodeCommandType(packet_[kCodeOffset], packet_[kCodeOffset + 1]);
  return true;
}

bool ByteCodeDecompiler::ReadParameters() {
  if (format_->IsMetaCommandFormat()) return false;
  const bool isDiag = format_->IsDiagCommandFormat();
  // The length field counts from behind itself, so of the 8 header bytes 4 are in it. A diagnostic reply has no such
  // field: its count begins at 0 and wraps round, so that only the end of the packet bounds its values.
  std::uint32_t remaining = payloadSize_ - (isDiag ? kDiagHeaderBytes : kCountedHeaderBytes);
  std::span<const std::uint8_t> rest = packet_.subspan(isDiag ? kDiagHeaderBytes : kTalcHeaderBytes);
  for (const ParameterFormat& parameter : format_->Parameters()) {
    const bool isVariable = parameter.dataType.IsBytes();
    if (remaining == 0 && !isVariable) return false;
    // The field is the sender's word; the bytes that are there are another bound.
    const auto source = rest.first(std::min<std::size_t>(remaining, rest.size()));
    const std::uint32_t taken = parameter.ReadParameterData(source, command_);
    if (taken == 0 && !isVariable) return false;
    rest = rest.subspan(taken);
    remaining -= taken;
  }
  return true;
}

}  // namespace TalcPathPrivate
