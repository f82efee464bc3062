// Any values for any of the embedded commands, compiled, and the packet decompiled as a reply. The input is the
// command's number, a byte of flags, and for each parameter a byte that says what is set, with the bytes of the value.

#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "dictionary/CommandContents.h"
#include "dictionary/DefinedCommands.h"
#include "FuzzInput.h"
#include "talcpath.h"

namespace {

using TalcPath::TalcByteCode;
using TalcPath::TalcCommand;
using TalcPathPrivate::CommandFormat;
using TalcPathPrivate::ParameterFormat;

constexpr std::uint8_t kRequest = 1;

enum What : std::uint8_t { kOwnKind, kSymbol, kForeignSymbol, kOtherKind, kNothing, kWhats };

std::uint64_t Number(Input& input) {
  const std::uint64_t high = input.Word();
  return high << 32 | input.Word();
}

void SetOwnKind(TalcCommand& command, const ParameterFormat& parameter, Input& input) {
  if (parameter.dataType.IsBytes()) {
    const auto bytes = input.Bytes(input.Byte() * 9U);
    command.SetBytes(parameter.name, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    return;
  }
  const std::uint64_t number = Number(input);
  Require(parameter.dataType.WithInteger(
      [&]<typename T>(std::type_identity<T>) {
        TalcPathPrivate::SetValue(command, parameter.name, static_cast<T>(number));
        return true;
      },
      false));
}

void SetSymbol(TalcCommand& command, const CommandFormat& format, const ParameterFormat& parameter, Input& input) {
  std::string symbol;
  std::int32_t value = 0;
  if (format.GetNumSymbols() == 0) return;
  Require(format.GetSymbolByIndex(static_cast<std::ptrdiff_t>(input.Byte() % format.GetNumSymbols()), symbol, value));
  command.SetSymbol(parameter.name, symbol);
}

/// True when a value of another kind than the parameter's was set, which makes the compile throw or fail.
bool SetAny(TalcCommand& command, const CommandFormat& format, const ParameterFormat& parameter, Input& input) {
  switch (input.Byte() % kWhats) {
    case kOwnKind:
      SetOwnKind(command, parameter, input);
      return false;
    case kSymbol:
      SetSymbol(command, format, parameter, input);
      return false;
    case kForeignSymbol: {
      const auto text = input.Bytes(input.Byte());
      command.SetSymbol(parameter.name, std::string(text.begin(), text.end()));
      return false;
    }
    case kOtherKind:
      if (parameter.dataType.Word() == "UINT16")
        command.SetInt16(parameter.name, -1);
      else
        command.SetUInt16(parameter.name, 1);
      return true;
    default:
      return false;
  }
}

/// A send's packet holds all values, so read as the reply to a request it gives what was set. Symbols have become
/// numbers by then.
void RequireSameValues(const TalcCommand& sent, const TalcByteCode& packet) {
  TalcCommand command(sent.GetName());
  command.SetRequestCommand();
  TalcPath::TalcPathStatus error = TalcPath::kTPSuccess;
  Require(TalcPath::TalcPathDecompile(command, packet, &error, false) && command.IsSuccess());
  const CommandFormat* const format = TalcPathPrivate::FindDefinedCommand(sent.GetName());
  for (const ParameterFormat& parameter : format->Parameters()) {
    const auto* const set = TalcPathPrivate::FindValue(sent, parameter.name);
    const auto* const got = TalcPathPrivate::FindValue(command, parameter.name);
    Require(set != nullptr && got != nullptr && set->Type() == got->Type());
    const auto isSame = [&]<typename T>(std::type_identity<T>) { return *set->As<T>() == *got->As<T>(); };
    if (parameter.dataType.IsBytes())
      Require(isSame(std::type_identity<TalcPathPrivate::Bytes>()));
    else
      Require(parameter.dataType.WithInteger(isSame, false));
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Require(TalcPath::TalcPathInit());
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input({data, size});
  const auto& commands = *TalcPathPrivate::DefinedCommands();
  const CommandFormat& format = *std::next(commands.begin(), input.Byte() % std::ssize(commands))->second;
  TalcCommand command(format.GetName());
  const bool isRequest = (input.Byte() & kRequest) != 0;
  if (isRequest) command.SetRequestCommand();
  bool isForeign = false;
  for (const ParameterFormat& parameter : format.Parameters())
    if (SetAny(command, format, parameter, input)) isForeign = true;

  TalcByteCode packet;
  TalcPath::TalcPathStatus status = TalcPath::kTPSuccess;
  std::uint32_t timeout = 1;
  try {
    const bool isGood = TalcPath::TalcPathCompile(command, packet, &timeout, &status);
    Require(timeout == 0);
    Require(isGood == (status == TalcPath::kTPSuccess) && isGood == (packet.GetSize() != 0));
    Require(packet.GetSize() <= 2048);
    if (isGood && !isRequest) RequireSameValues(command, packet);
  } catch (const TalcPath::bad_variant_cast&) {
    Require(isForeign && packet.GetSize() == 0);
  }
  return 0;
}
