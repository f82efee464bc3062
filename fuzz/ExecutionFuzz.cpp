// A transport that answers with any bytes: ordinary commands, the questions to hardware that is selected, and meta
// commands whose exchanges pass. The input says what is done, then how each exchange ends.

#include <array>
#include <cstdint>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "caps/CapsState.h"
#include "caps/HwcReader.h"
#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "dictionary/TcdReader.h"
#include "engine/MetaCommandByteCodeProcessor.h"
#include "FuzzInput.h"
#include "talcpath.h"

namespace {

using TalcPath::TalcByteCode;
using TalcPath::TalcCommand;

constexpr const char* kMetaDictionary =
    "Begin Talc CommandTypeMajor VIDEO CommandTypeMinor 60 Function 1 DataName TotalSize DataType UINT32 ;"
    "Piece Talc CommandTypeMajor VIDEO CommandTypeMinor 60 Function 2 DataName Data DataType BYTES ;"
    "Finish Talc CommandTypeMajor VIDEO CommandTypeMinor 60 Function 3 ;"
    "Transfer Meta Start Begin Repeat Piece Stop Finish "
    "DataName Small DataType UINT8 DataName Wide DataType UINT64 DataName Rest DataType BYTES ;";

/// Hardware that is asked for its sub components, and one of these.
void AddCapabilities(const char* type, const char* rest) {
  auto caps = std::make_shared<TalcPathPrivate::TalcHWCaps>();
  std::istringstream text(std::string("HardwareType ") + type + " ; " + rest);
  Require(TalcPathPrivate::ReadHwc(*caps, text, type));
  TalcPathPrivate::capsState.types.emplace(type, std::move(caps));
}

/// A reply of the input's making; some begin as packets do.
void MakeReply(Input& input, TalcByteCode& reply) {
  constexpr std::uint8_t kMarked = 1;
  constexpr std::uint8_t kFitting = 2;
  const std::uint8_t flags = input.Byte();
  const auto taken = input.Bytes(input.Byte());
  std::vector<std::uint8_t> bytes(taken.begin(), taken.end());
  if ((flags & kMarked) != 0) {
    if (bytes.size() < 8) bytes.resize(8);
    bytes[0] = bytes[1] = 0x0B;
    if ((flags & kFitting) != 0) {
      bytes[2] = 0;
      bytes[3] = static_cast<std::uint8_t>(bytes.size() - 4);
    }
  }
  reply.Set(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

class AnyTransport final : public TalcPath::TalcTransport {
 public:
  bool Exchange(const char* name, const TalcByteCode& packet, TalcByteCode& reply, std::uint32_t) override {
    Require(name != nullptr && packet.GetSize() >= 8 && depth == 1);
    if (input->AtEnd()) return false;
    const bool works = input->Flag();
    MakeReply(*input, reply);
    return works;
  }
  void CommandCompleted(const TalcCommand& command) override { Require(command.IsSuccess()); }
  void Lock() override { ++depth; }
  void Unlock() override { --depth; }

  Input* input = nullptr;
  int depth = 0;
};

class AnyObserver final : public TalcPath::TalcExchangeObserver {
 public:
  void BeforeExchange(TalcCommand&, const TalcByteCode&, TalcByteCode& reply, bool& proceed, bool& handled,
                      TalcPath::TalcTransport&) override {
    if (!input->Flag()) return;
    MakeReply(*input, reply);
    proceed = false;
    handled = input->Flag();
  }
  int GetKey() const override { return 0; }

  Input* input = nullptr;
};

AnyTransport transport;
AnyObserver observer;

/// Gives the command a value for each parameter that there is, some of another kind.
void FillIn(Input& input, TalcCommand& command, const TalcPathPrivate::CommandFormat& format) {
  for (const auto& parameter : format.Parameters()) {
    if (input.AtEnd()) return;
    const std::uint8_t kind = input.Byte();
    const bool isNumber = parameter.dataType.WithInteger(
        [&]<typename T>(std::type_identity<T>) {
          if constexpr (sizeof(T) == 1 && std::is_unsigned_v<T>)
            command.SetUInt8(parameter.name, kind);
          else if constexpr (sizeof(T) == 2 && std::is_unsigned_v<T>)
            command.SetUInt16(parameter.name, kind);
          else if constexpr (sizeof(T) == 8 && std::is_unsigned_v<T>)
            command.SetUInt64(parameter.name, kind);
          else
            command.SetUInt32(parameter.name, kind);
          return true;
        },
        false);
    if (isNumber && kind != 0xFF) continue;
    const std::vector<std::uint8_t> bytes(kind * 17u, kind);
    command.SetBytes(parameter.name, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  }
}

void Execute(Input& input, bool isRequest) {
  const auto& commands = *TalcPathPrivate::DefinedCommands();
  const auto chosen = std::next(commands.begin(), input.Byte() % static_cast<std::ptrdiff_t>(commands.size()));
  TalcCommand command(chosen->first);
  if (isRequest) command.SetRequestCommand();
  FillIn(input, command, *chosen->second);
  try {
    const bool isDone = TalcPath::TalcPathExecute(command);
    Require(isDone == command.IsSuccess() || chosen->second->IsMetaCommandFormat());
  } catch (const TalcPath::bad_variant_cast&) {
  }
}

void Transfer(Input& input, bool isRequest) {
  TalcCommand command("Transfer");
  if (isRequest) command.SetRequestCommand();
  FillIn(input, command, *TalcPathPrivate::FindDefinedCommand("Transfer"));
  TalcPathPrivate::MetaCommandByteCodeProcessor processor(command,
                                                          [&input](const TalcByteCode& packet, TalcByteCode& reply) {
                                                            Require(packet.GetSize() >= 8);
                                                            if (input.AtEnd()) return false;
                                                            MakeReply(input, reply);
                                                            return reply.GetStatus() == TalcPath::kTPSuccess;
                                                          });
  try {
    if (!processor.Compile()) return;
    if (processor.Execute()) {
      processor.MergeStatuses(command);
      Require(command.IsSuccess());
    }
  } catch (const TalcPath::bad_variant_cast&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  static std::ostringstream log;
  TalcPath::TalcPathSetLogStream(&log);
  Require(TalcPath::TalcPathInit());
  std::istringstream dictionary(kMetaDictionary);
  Require(TalcPathPrivate::ParseTcdStream(dictionary, "meta"));
  AddCapabilities("Box", "CmdOverrideTimeout VPDInfo 70 ;");
  AddCapabilities("HDBoard", "CmdOverrideTimeout VPDInfo 90 ; Property IsHDSupported STRING TRUE ;");
  TalcPath::TalcPathRegisterTransport(&transport, 1);
  log.setstate(std::ios::failbit);  // what is said while it runs is of no interest
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input({data, size});
  transport.input = &input;
  observer.input = &input;
  const std::uint8_t what = input.Byte();
  const bool isRequest = (what & 4) != 0;
  if ((what & 8) != 0) TalcPath::TalcPathAddExchangeObserver(&observer);
  switch (what & 3) {
    case 0:
      Transfer(input, isRequest);
      break;
    case 1:
      Require(TalcPath::TalcPathSelectTransport(&transport));
      break;
    default:
      Execute(input, isRequest);
  }
  TalcPath::TalcPathRemoveExchangeObserver(&observer);
  Require(transport.depth == 0);
  return 0;
}
