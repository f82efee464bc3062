#include "engine/ByteCodeCompiler.h"

#include <algorithm>
#include <optional>
#include <type_traits>

#include "dictionary/CommandContents.h"
#include "dictionary/DefinedCommands.h"
#include "dictionary/DiagCommandFormat.h"
#include "dictionary/Log.h"
#include "dictionary/PacketLayout.h"
#include "dictionary/TalcCommandFormat.h"
#include "engine/PacketHeader.h"

using TalcPath::TalcByteCode;
using TalcPath::TalcCommand;
using TalcPath::TalcPathStatus;

namespace TalcPathPrivate {

// The spare packet stays uninitialised: each byte that is sent is written.
ByteCodeCompiler::ByteCodeCompiler(TalcCommand& command, TalcByteCode& byteCode, std::uint32_t* overrideTimeoutMillisec,
                                   TalcPathStatus* status)
    : command_(command), byteCode_(byteCode), status_(status), isRequest_(IsRequest(command)) {
  byteCode_.Clear();
  CommandFormat* const format = FindDefinedCommand(command.GetName());
  if (format == nullptr) {
    LogVerbose("\nConstructing ByteCode Compiler - Command format not found - Command : ", command.GetName());
    Fail(TalcPath::kTPCommandFormatNotFound);
    return;
  }
  // A meta command is found and has no packet: no status tells of it.
  if (format->IsMetaCommandFormat()) return;
  format_ = static_cast<TalcDataCommandFormat*>(format);
  if (logState.trace) {
    LogAlways("\n\nConstructing ByteCode Compiler - Command : ", command.GetName());
    format_->Dump(LogStream(), false);
    LogAlways("\n");
  }
  if (overrideTimeoutMillisec != nullptr) *overrideTimeoutMillisec = format_->GetOverrideTimeoutMillisec();
}

bool ByteCodeCompiler::Fail(TalcPathStatus reason) {
  if (status_ != nullptr) *status_ = reason;
  return false;
}

std::uint32_t ByteCodeCompiler::TotalBytes() const {
  return isRequest_ ? sizes_.requestSize : sizes_.sendSize;
}

std::uint32_t ByteCodeCompiler::PayloadBytes() const {
  return isRequest_ ? sizes_.requestPayloadSize : sizes_.sendPayloadSize;
}

bool ByteCodeCompiler::Compile() {
  if (format_ == nullptr) return false;
  LogTrace("\nBEGIN - Bytecode Compilation \nDetermine Packet Sizes");
  if (!DetermineSizes()) return Fail(TalcPath::kTPPacketSizeError);
  LogTrace("\nCompile command into packets...");
  if (!WritePacket()) {
    LogTrace("\nERROR - packet compilation failed");
    byteCode_.Clear();
    return false;
  }
  LogTrace("\nEND   - Bytecode Compilation");
  return true;
}

bool ByteCodeCompiler::DetermineSizes() {
  std::int32_t totalBytes = 0;
  if (format_->HasVariableLengthData()) {
    LogTrace("\nComputing Packet Sizes");
    totalBytes = ComputePacketLayout(&command_, format_, sizes_);
  } else {
    LogTrace("\nUsing precomputed packet size");
    sizes_ = format_->GetPacketSizes();
    totalBytes = static_cast<std::int32_t>(TotalBytes());
  }
  if (totalBytes >= 1) return true;
  LogTrace("\nError with total packet size");
  if (totalBytes == kTooMuchData) LogTrace("\nMaximum Packet Size - ", GetMaxPacketTotalSizeInBytes());
  return false;
}

bool ByteCodeCompiler::WritePacket() {
  LogTrace("\n\tCompiling Packet ");
  const std::uint32_t totalBytes = TotalBytes();
  std::uint8_t* const block = byteCode_.Reserve(totalBytes);
  packet_ = {block != nullptr ? block : sparePacket_.data(), totalBytes};
  if (!WriteHeader()) return Fail(TalcPath::kTPInvalidCommandHeader);
  if (!WriteParameters()) return false;
  // Without memory the packet stays empty, and that is found where it is asked for.
  byteCode_.size_ = block != nullptr ? totalBytes : 0;
  LogTrace("\n\tFinished Packet");
  return true;
}

bool ByteCodeCompiler::WriteHeader() {
  return format_->IsDiagCommandFormat() ? WriteDiagHeader() : WriteTalcHeader();
}

bool ByteCodeCompiler::WriteTalcHeader() {
  std::fill_n(packet_.begin(), kTalcHeaderBytes, std::uint8_t{0});
  packet_[0] = kPacketMark;
  packet_[1] = kPacketMark;
  Store16(&packet_[kLengthOffset], kCountedHeaderBytes + PayloadBytes());
  LogTrace("\n\tWriting Talc Command Header");
  const auto code = EncodeCommandType(static_cast<const TalcCommandFormat*>(format_)->GetCommandType(), isRequest_);
  if (!code) {
    LogTrace("\n\tError writing Talc Command header");
    return false;
  }
  std::copy(code->begin(), code->end(), packet_.begin() + kCodeOffset);
  return true;
}

bool ByteCodeCompiler::WriteDiagHeader() {
  std::fill_n(packet_.begin(), kDiagHeaderBytes, std::uint8_t{0});
  LogTrace("\n\tWriting Diag Command magic string");
  std::copy_n(kDiagMagic, kDiagMagicBytes, packet_.begin());
  LogTrace("\n\tWriting Diag Command opcode");
  const std::int16_t opcode = static_cast<const DiagCommandFormat*>(format_)->GetDiagOpcode();
  if (opcode < 0 || opcode > 255) {
    LogTrace("\n\tError writing  Diag Command header");
    return false;
  }
  packet_[kDiagOpcodeOffset] = static_cast<std::uint8_t>(opcode);
  // The total size was written here before it, at the same place: hardware knows the count, and zeros behind it.
  Store16(&packet_[kDiagCountOffset], PayloadBytes());
  return true;
}

bool ByteCodeCompiler::WriteParameters() {
  LogTrace("\n\tCompiling Parameters ");
  std::size_t written = format_->IsDiagCommandFormat() ? kDiagHeaderBytes : kTalcHeaderBytes;
  for (const ParameterFormat& parameter : format_->Parameters()) {
    // The first that a request does not carry ends it, also where one behind it counts in its size.
    if (isRequest_ && !parameter.isRequiredForRequestData) break;
    const Variant* value = FindValue(command_, parameter.name);
    if (variant_cast<std::string>(value) != nullptr) {
      if (!ConvertSymbol(parameter)) return Fail(TalcPath::kTPInvalidSymbolicConstant);
      value = FindValue(command_, parameter.name);
    }
    if (!parameter.WriteParameterData(packet_, value)) return Fail(TalcPath::kTPCompileMissingParameterData);
    written += static_cast<std::size_t>(parameter.size);
  }
  // What counts in the size and was not written is zero.
  std::ranges::fill(packet_.subspan(std::min(written, packet_.size())), std::uint8_t{0});
  return true;
}

bool ByteCodeCompiler::ConvertSymbol(const ParameterFormat& parameter) {
  LogTrace("\n\tConverting Symbolic Constant to data value");
  constexpr std::uint32_t kLongestSymbol = 256;
  // One byte more than is read, since a text of the full length brings no terminator.
  std::array<char, kLongestSymbol + 1> symbol{};
  if (!command_.GetSymbol(parameter.name, symbol.data(), kLongestSymbol)) {
    LogTrace("\n\tParam does not have Symbol set!");
    return false;
  }
  std::int32_t value = 0;
  if (!format_->GetSymbolValue(symbol.data(), value)) {
    LogTrace("\n\tSymbol Name: ", symbol.data(), " NOT FOUND!");
    return false;
  }
  LogTrace("\n\tSymbolic Constant Found - Name: ", symbol.data(), " Value: ", value);
  // From here on the command holds the number. Narrow types take its low bits, wide ones its sign.
  const bool isSet = parameter.dataType.WithInteger(
      [&]<typename T>(std::type_identity<T>) {
        SetValue(command_, parameter.name, static_cast<T>(value));
        return true;
      },
      false);
  if (!isSet) LogTrace(" Unsupported data type for Symbolic Constant - Type: ", parameter.dataType.Word());
  return isSet;
}

}  // namespace TalcPathPrivate
