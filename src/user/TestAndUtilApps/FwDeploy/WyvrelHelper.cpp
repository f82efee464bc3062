#include "WyvrelHelper.h"

#include <algorithm>
#include <exception>

#include "errorException.h"
#include "talcpath.h"

using TalcPath::TalcByteCode;
using TalcPath::TalcCommand;

namespace {

constexpr std::uint32_t kCommandTimeoutMicroseconds = 1'000'000;
/// The room that transports are told; what there is, is `kReplyRoomBytes`.
constexpr std::uint32_t kReplyCapacityBytes = 2000;

/// The helpers alive.
int talcUsers = 0;

constexpr char kUnexpectedObjectType[] = "kHWCerr_UnexpectedObjectTypeError";

/// Sets the command's values from the inputs, up to the first output.
void SetInputs(TalcCommand& command, Arguments arguments) {
  // Tags up to here end the inputs. Those behind the last output have no type; the outputs' turn refuses them.
  constexpr auto kLastTagThatPasses = static_cast<ArgumentTag>(28);
  for (const Argument& argument : arguments) {
    if (argument.name == nullptr) return;
    switch (argument.tag) {
      case ArgumentTag::kText:
        if (argument.input != nullptr) command.SetSymbol(argument.name, static_cast<const char*>(argument.input));
        break;
      case ArgumentTag::kInt8:
        command.SetInt8(argument.name, static_cast<std::int8_t>(argument.word));
        break;
      case ArgumentTag::kUInt8:
        command.SetUInt8(argument.name, static_cast<std::uint8_t>(argument.word));
        break;
      case ArgumentTag::kInt16:
        command.SetInt16(argument.name, static_cast<std::int16_t>(argument.word));
        break;
      case ArgumentTag::kUInt16:
        command.SetUInt16(argument.name, static_cast<std::uint16_t>(argument.word));
        break;
      case ArgumentTag::kInt32:
        command.SetInt32(argument.name, static_cast<std::int32_t>(argument.word));
        break;
      case ArgumentTag::kUInt32:
        command.SetUInt32(argument.name, argument.word);
        break;
      case ArgumentTag::kInt64:
        command.SetInt64(argument.name, static_cast<std::int32_t>(argument.word));
        break;
      case ArgumentTag::kUInt64:
        // The sign is extended here too, on purpose.
        command.SetUInt64(argument.name, static_cast<std::uint64_t>(static_cast<std::int32_t>(argument.word)));
        break;
      case ArgumentTag::kBytes:
        command.SetBytes(argument.name, static_cast<const std::uint8_t*>(argument.input), argument.sizeBytes);
        break;
      default:
        if (argument.tag > kLastTagThatPasses) throw errorException(kUnexpectedObjectType);
        return;
    }
  }
}

/// Fetches one output. False for a value that the command lacks; throws `bad_variant_cast` for one of another kind.
bool FetchOutput(const TalcCommand& command, const Argument& argument) {
  switch (argument.tag) {
    case ArgumentTag::kOutInt8:
      return command.GetInt8(argument.name, static_cast<std::int8_t*>(argument.place));
    case ArgumentTag::kOutUInt8:
      return command.GetUInt8(argument.name, static_cast<std::uint8_t*>(argument.place));
    case ArgumentTag::kOutInt16:
      return command.GetInt16(argument.name, static_cast<std::int16_t*>(argument.place));
    case ArgumentTag::kOutUInt16:
      return command.GetUInt16(argument.name, static_cast<std::uint16_t*>(argument.place));
    case ArgumentTag::kOutInt32:
      return command.GetInt32(argument.name, static_cast<std::int32_t*>(argument.place));
    case ArgumentTag::kOutUInt32:
      return command.GetUInt32(argument.name, static_cast<std::uint32_t*>(argument.place));
    case ArgumentTag::kOutInt64:
      return command.GetInt64(argument.name, static_cast<std::int64_t*>(argument.place));
    case ArgumentTag::kOutUInt64:
      return command.GetUInt64(argument.name, static_cast<std::uint64_t*>(argument.place));
    case ArgumentTag::kOutBytes:
      return command.GetBytes(argument.name, static_cast<std::uint8_t*>(argument.place), argument.sizeBytes, nullptr);
    default:
      return false;  // a tag without a type
  }
}

/// Puts the command's values where the outputs point.
void FetchOutputs(const TalcCommand& command, Arguments arguments) {
  for (const Argument& argument : arguments) {
    if (argument.name == nullptr) return;
    if (argument.tag <= ArgumentTag::kBytes) continue;
    bool isFetched = false;
    try {
      isFetched = FetchOutput(command, argument);
    } catch (const TalcPath::bad_variant_cast&) {
      // Another kind is no better than no value.
    }
    if (!isFetched) throw errorException(kUnexpectedObjectType);
  }
}

/// What cannot be taken leaves an empty packet, and not the command that was in it.
void TakeReply(TalcByteCode& packet, const std::uint8_t* reply, std::uint32_t lengthBytes) {
  packet.Clear();
  packet.Set(reply, lengthBytes);
}

void ThrowUnlessSuccess(const TalcCommand& command) {
  if (command.GetStatus() == TalcPath::kTPNotSupported) throw errorException("Unsupported BOB command or parameters");
  if (command.GetStatus() != TalcPath::kTPSuccess) throw errorException("Bad BOB status");
}

}  // namespace

WyvrelHelperRep::WyvrelHelperRep(OpenMode mode) : openMode(mode), exceptionsAtStart_(std::uncaught_exceptions()) {
  if (talcUsers++ != 0) return;
  if (!TalcPath::TalcPathInit()) {
    --talcUsers;
    throw errorException("TalcPath Failed to initialize.");
  }
}

WyvrelHelperRep::~WyvrelHelperRep() noexcept(false) {
  if (talcUsers-- != 1) return;
  if (!TalcPath::TalcPathTerminate() && std::uncaught_exceptions() == exceptionsAtStart_)
    throw errorException("TalcPath Failed to terminate.");
}

/// A command of that name, without values.
TalcCommand& WyvrelHelperRep::NewCommand(const char* name) {
  command_.SetName(name);
  command_.ClearParameters();
  return command_;
}

HwcStatus WyvrelHelperRep::ExecuteCommand(const char* name, Arguments arguments) {
  TalcCommand& command = NewCommand(name);
  command.SetRequestCommand();
  SetInputs(command, arguments);
  const HwcStatus status = TransactCommand(command);
  if (status != kHWCerr_None) return status;
  FetchOutputs(command, arguments);
  return kHWCerr_None;
}

HwcStatus WyvrelHelperRep::SendCommand(const char* name, Arguments arguments) {
  TalcCommand& command = NewCommand(name);
  command.SetSendCommand();
  SetInputs(command, arguments);
  return TransactCommand(command);
}

HwcStatus WyvrelHelperRep::PrecompileCommand(std::uint8_t* buffer, std::uint32_t* lengthBytes, std::uint8_t queryFlag,
                                             const char* name, Arguments arguments) {
  TalcCommand& command = NewCommand(name);
  queryFlag != 0 ? command.SetRequestCommand() : command.SetSendCommand();
  SetInputs(command, arguments);
  if (!TalcPath::TalcPathCompile(command, packet_, nullptr, nullptr))
    throw errorException("Could not compile Talc command");
  const std::uint8_t* bytes = nullptr;
  if (!packet_.GetPacketByteCodeBuffer(&bytes)) throw errorException("kHWCerr_InvalidUsageError");
  const std::uint32_t length = packet_.GetSize();
  // The name was never put into the text; what users see is what it is.
  if (length > *lengthBytes) throw errorException("Precompiled command buffer for %s is too small");
  std::copy_n(bytes, length, buffer);
  *lengthBytes = length;
  return kHWCerr_None;
}

HwcStatus WyvrelHelperRep::DecodeReply(const std::uint8_t* reply, std::uint32_t replyLengthBytes, const char* name,
                                       Arguments arguments) {
  TalcCommand& command = NewCommand(name);
  command.SetRequestCommand();
  TakeReply(packet_, reply, replyLengthBytes);
  // Here too the name stays out of the text.
  if (!TalcPath::TalcPathDecompile(command, packet_, nullptr, false))
    throw errorException("Talc error decompiling the returned %s Talc byte code packet");
  ThrowUnlessSuccess(command);
  FetchOutputs(command, arguments);
  return kHWCerr_None;
}

HwcStatus WyvrelHelperRep::TransactBoBCommand(const std::uint8_t* command, std::uint32_t commandLengthBytes,
                                              std::uint8_t* reply, std::uint32_t* replyLengthBytes,
                                              std::uint32_t timeoutLow, std::uint32_t timeoutHigh) {
  const HwcStatus status =
      IOCTL_TransactBoBCommand(command, commandLengthBytes, reply, replyLengthBytes, timeoutLow, timeoutHigh);
  if (status != kHWCerr_None && status != kHWCerr_CommandTimeout)
    throw errorException("IOCTL_TransactBoBCommand failed");
  return status;
}

HwcStatus WyvrelHelperRep::TransactCommand(TalcCommand& command) {
  if (!TalcPath::TalcPathCompile(command, packet_, nullptr, nullptr))
    throw errorException("Could not compile Talc command");
  const std::uint8_t* bytes = nullptr;
  if (!packet_.GetPacketByteCodeBuffer(&bytes)) throw errorException("Could not GetPacketByteCodeBuffer");

  std::uint8_t talcReplyBuffer[kReplyRoomBytes];
  std::uint32_t talcReplyLength = kReplyCapacityBytes;
  const HwcStatus status =
      TransactBoBCommand(bytes, packet_.GetSize(), talcReplyBuffer, &talcReplyLength, kCommandTimeoutMicroseconds, 0);
  if (status != kHWCerr_None) return status;
  talcReplyLength = std::min(talcReplyLength, kReplyRoomBytes - 1);
  talcReplyBuffer[talcReplyLength] = 0;
  TakeReply(packet_, talcReplyBuffer, talcReplyLength);
  if (!TalcPath::TalcPathDecompile(command, packet_, nullptr, false))
    throw errorException("Talc error decompiling the returned Talc byte code packet.");
  ThrowUnlessSuccess(command);
  return kHWCerr_None;
}

void WyvrelHelperRep::GetBoardVPD(const char*, std::uint8_t (&)[kBoardVpdBytes]) {
  throw errorException("GetBoardVPD not implemented in this helper");
}

C28FxJ3A* WyvrelHelperRep::GetC28FxJ3A(const char*) {
  // The words stand as they are told to users since ever, "from" included.
  throw errorException("GetC28FxJ3A from not implemented in this helper");
}

platform::RegisterWindow WyvrelHelperRep::GetKarvelProgramAddr(const char*) {
  throw errorException("GetKarvelProgramAddr not implemented in this helper");
}

platform::RegisterWindow WyvrelHelperRep::GetKarvelVersion(const char*) {
  throw errorException("GetKarvelVersion not implemented in this helper");
}
