// Any bytes as the reply to each of the embedded commands. The input is a byte of flags and the reply.

#include <cstdint>
#include <memory>
#include <vector>

#include "dictionary/DefinedCommands.h"
#include "FuzzInput.h"
#include "talcpath.h"

namespace {

using TalcPath::TalcByteCode;
using TalcPath::TalcCommand;
using TalcPath::TalcPathStatus;

constexpr std::uint8_t kRequest = 1;
constexpr std::uint8_t kTolerant = 2;
/// The reply gets the mark and a length that fits, so that more of it is read.
constexpr std::uint8_t kMarked = 4;

/// A command whose reply was read has the values of its definition; with `count` 0 it need not have any.
void RequireValues(const TalcCommand& command, const TalcPathPrivate::CommandFormat& format) {
  for (const auto& parameter : format.Parameters())
    Require(command.HasParameter(parameter.name));
}

void Decompile(const TalcPathPrivate::CommandFormat& format, const TalcByteCode& reply, std::uint8_t flags) {
  TalcCommand command(format.GetName());
  if (flags & kRequest) command.SetRequestCommand();
  TalcPathStatus error = TalcPath::kTPSuccess;
  const bool isRead = TalcPath::TalcPathDecompile(command, reply, &error, (flags & kTolerant) != 0);
  Require(isRead == (error == TalcPath::kTPSuccess));
  if (!isRead) Require(command.IsFail());
  if (isRead && command.IsSuccess() && (flags & kRequest) && !(flags & kTolerant)) RequireValues(command, format);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Require(TalcPath::TalcPathInit());
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input({data, size});
  const std::uint8_t flags = input.Byte();
  const auto rest = input.Bytes(size);
  std::vector<std::uint8_t> bytes(rest.begin(), rest.end());
  if ((flags & kMarked) && bytes.size() >= 8) {
    bytes[0] = bytes[1] = 0x0B;
    bytes[2] = static_cast<std::uint8_t>((bytes.size() - 4) >> 8);
    bytes[3] = static_cast<std::uint8_t>(bytes.size() - 4);
    bytes[7] = 0;
  }
  // The packet's block is as long as the reply, so that a read past its end is found out.
  TalcByteCode reply;
  reply.Set(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands())
    Decompile(*format, reply, flags);
  Require(reply.GetPayloadSize() >= -2);
  return 0;
}
