#include "dictionary/PacketLayout.h"

#include "dictionary/CommandContents.h"
#include "dictionary/Log.h"
#include "dictionary/TalcDataCommandFormat.h"

using TalcPath::TalcCommand;

namespace TalcPathPrivate {
namespace {

void LogSizeError(const ParameterFormat& parameter) {
  LogVerbose("\nParameter Size error - param name : ", parameter.name);
}

void LogNotFound(const ParameterFormat& parameter) {
  LogVerbose("\nParameter Not Found error - param name : ", parameter.name);
}

/// True for the values that a command of this direction does not carry.
bool IsLeftOut(const ParameterFormat& parameter, const TalcCommand& command) {
  return !parameter.isRequiredForRequestData && IsRequest(command);
}

/// The length of a `BYTES` value. One that is set to a symbol has none yet: the write finds out what is wrong with it.
bool GetValueLength(const ParameterFormat& parameter, const TalcCommand& command, std::uint32_t& length) {
  const Variant* const value = FindValue(command, parameter.name);
  if (value == nullptr) return false;
  if (value->As<std::string>() != nullptr) {
    length = 0;
    return true;
  }
  const Bytes* const bytes = value->As<Bytes>();
  if (bytes == nullptr) throw TalcPath::bad_variant_cast();
  length = static_cast<std::uint32_t>(bytes->size());
  return true;
}

/// First pass: the size of one parameter. False for a fault.
bool Measure(ParameterFormat& parameter, const TalcCommand* command, std::uint64_t& totalBytes) {
  parameter.Reset();
  const std::int32_t fixedSize = parameter.GetSizeFromType();
  if (fixedSize == 0) {
    LogSizeError(parameter);
    return false;
  }
  std::uint32_t size = 0;
  if (fixedSize > 0) {
    size = static_cast<std::uint32_t>(fixedSize);
  } else {
    if (command == nullptr) {
      LogVerbose("\nMust have Talc Command to compile in order to compute lengths for BYTES parameter : ",
                 parameter.name);
      return false;
    }
    if (!IsLeftOut(parameter, *command) && !GetValueLength(parameter, *command, size)) {
      LogNotFound(parameter);
      return false;
    }
    parameter.isVariableLength = true;
  }
  parameter.size = static_cast<std::int32_t>(size);
  totalBytes += size;
  return true;
}

}  // namespace

std::int32_t ComputePacketLayout(const TalcCommand* command, TalcDataCommandFormat* format, PacketSizes& sizes) {
  if (format == nullptr) return kLayoutFault;
  sizes.sendSize = 0;
  sizes.sendPayloadSize = 0;

  std::uint64_t totalBytes = 0;
  for (ParameterFormat& parameter : format->Parameters())
    if (!Measure(parameter, command, totalBytes)) return kLayoutFault;

  const bool isDiag = format->IsDiagCommandFormat();
  const std::uint32_t headerBytes = isDiag ? kDiagHeaderBytes : kTalcHeaderBytes;
  if (totalBytes > (isDiag ? kMaxDiagPayloadBytes : kMaxTalcPayloadBytes)) return kTooMuchData;

  // Over all parameters in order, also for a request: one that a request carries lies beyond its packet when it stands
  // behind one that it does not carry.
  std::uint32_t cursor = headerBytes;
  std::uint32_t requestBytes = 0;
  for (ParameterFormat& parameter : format->Parameters()) {
    parameter.packetPosition = {.packetOffset = static_cast<std::int32_t>(cursor), .numBytes = parameter.size};
    cursor += static_cast<std::uint32_t>(parameter.size);
    if (parameter.isRequiredForRequestData) requestBytes += static_cast<std::uint32_t>(parameter.size);
  }

  // The limits on the values keep every packet below this one; it guards them against each other.
  if (cursor > GetMaxPacketTotalSizeInBytes()) {
    LogTrace(
        "\nConsistency failure - packet size for single-variable size packet is larger than "
        "GetMaxPacketTotalSizeInBytes()",
        " packetSize : ", cursor, " GetMaxPacketTotalSizeInBytes() : ", GetMaxPacketTotalSizeInBytes());
    return kLayoutFault;
  }
  sizes = {.sendSize = cursor,
           .sendPayloadSize = cursor - headerBytes,
           .requestSize = headerBytes + requestBytes,
           .requestPayloadSize = requestBytes};
  const bool isRequest = command != nullptr && IsRequest(*command);
  return static_cast<std::int32_t>(isRequest ? sizes.requestSize : sizes.sendSize);
}

std::uint32_t ComputePayloadSize(const TalcCommand& command, CommandFormat* format) {
  if (format == nullptr) return 0;
  std::uint32_t totalBytes = 0;
  for (ParameterFormat& parameter : format->Parameters()) {
    parameter.Reset();
    const std::int32_t fixedSize = parameter.GetSizeFromType();
    if (fixedSize == 0) {
      LogSizeError(parameter);
      return 0;
    }
    std::uint32_t size = static_cast<std::uint32_t>(fixedSize);
    if (fixedSize < 0) {
      // Here a value is needed also where a request would leave it out.
      if (!command.GetBytesLength(parameter.name, &size)) {
        LogNotFound(parameter);
        return 0;
      }
      parameter.isVariableLength = true;
    }
    parameter.size = static_cast<std::int32_t>(size);
    if (fixedSize > 0 || !IsLeftOut(parameter, command)) totalBytes += size;
  }
  return totalBytes;
}

}  // namespace TalcPathPrivate
