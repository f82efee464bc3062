// Packets in both directions: setting values by name and compiling, decompiling and getting by name. The command, its
// packet and the peer's message are used again and again, as in a download. Bytes are got where they are held; the
// floor copies them out of the packet once, as the decompile has to.

#include <google/protobuf/dynamic_message.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ProtobufPeer.h"
#include "TalcBenchmark.h"
#include "talcpath.h"
#include "TalcSchema.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

/// A value of a command. Kinds are those that the three commands have.
struct Value {
  enum class Kind { kUInt8, kUInt16, kBytes };
  std::string_view name;
  Kind kind;
  std::uint32_t number;
  Bytes bytes;
};

struct Example {
  std::string_view name;
  std::vector<Value> values;
  /// The code in the header of a send.
  std::array<std::uint8_t, 2> code;
};

Bytes Text(std::string_view text) {
  return {text.begin(), text.end()};
}

const std::vector<Example>& Examples() {
  using enum Value::Kind;
  static const std::vector<Example> examples{
      {"HWConfigFB",
       {{"SparkwellMajorRev", kUInt8, 2, {}},
        {"SparkwellMinorRev", kUInt8, 1, {}},
        {"DolmbrinMajorRev", kUInt8, 2, {}},
        {"DolmbrinMinorRev", kUInt8, 2, {}},
        {"TarnvaldMajorRev", kUInt8, 2, {}},
        {"TarnvaldMinorRev", kUInt8, 3, {}},
        {"RavenshaleMajorRev", kUInt8, 2, {}},
        {"RavenshaleMinorRev", kUInt8, 4, {}},
        {"TanbrookMajorRev", kUInt8, 2, {}},
        {"TanbrookMinorRev", kUInt8, 5, {}},
        {"SalvikMajorRev", kUInt8, 2, {}},
        {"SalvikMinorRev", kUInt8, 6, {}},
        {"FirmwareRev", kBytes, 0, Text("2.25 a")}},
       {0x80, 0x02}},
      {"VPDInfo",
       {{"Board", kUInt16, 200, {}}, {"VPDSize", kUInt16, 16, {}}, {"VPDInfo", kBytes, 0, Text("0123456789abcdef")}},
       {0x80, 0x34}},
      {"FPGADownload", {{"Length", kUInt16, 1970, {}}, {"TheDLData", kBytes, 0, Bytes(1970, 0x5A)}}, {0x80, 0x08}},
  };
  return examples;
}

void SetAll(TalcPath::TalcCommand& command, const Example& example) {
  for (const Value& value : example.values) {
    switch (value.kind) {
      case Value::Kind::kUInt8:
        command.SetUInt8(value.name, static_cast<std::uint8_t>(value.number));
        break;
      case Value::Kind::kUInt16:
        command.SetUInt16(value.name, static_cast<std::uint16_t>(value.number));
        break;
      case Value::Kind::kBytes:
        command.SetBytes(value.name, value.bytes.data(), static_cast<std::uint32_t>(value.bytes.size()));
        break;
    }
  }
}

void SetAndCompile(benchmark::State& state, const Example& example) {
  TalcPath::TalcCommand command(example.name);
  TalcPath::TalcByteCode packet;
  for (auto _ : state) {
    SetAll(command, example);
    if (!TalcPath::TalcPathCompile(command, packet, nullptr, nullptr)) state.SkipWithError("did not compile");
    benchmark::DoNotOptimize(packet);
  }
}

/// What a program would write by hand for this one packet.
std::size_t PackByHand(const Example& example, std::uint8_t* packet) {
  std::uint8_t* at = packet + 8;
  for (const Value& value : example.values) {
    switch (value.kind) {
      case Value::Kind::kUInt16:
        *at++ = static_cast<std::uint8_t>(value.number >> 8);
        [[fallthrough]];
      case Value::Kind::kUInt8:
        *at++ = static_cast<std::uint8_t>(value.number);
        break;
      case Value::Kind::kBytes:
        for (const std::uint8_t byte : value.bytes)
          *at++ = byte;
        break;
    }
  }
  const std::size_t length = static_cast<std::size_t>(at - packet) - 4;
  const std::array<std::uint8_t, 8> header{0x0B,
                                           0x0B,
                                           static_cast<std::uint8_t>(length >> 8),
                                           static_cast<std::uint8_t>(length),
                                           example.code[0],
                                           example.code[1],
                                           0,
                                           0};
  std::memcpy(packet, header.data(), header.size());
  return length + 4;
}

void SetAndCompileFloor(benchmark::State& state, const Example& example) {
  Bytes packet(2048);
  for (auto _ : state) {
    benchmark::DoNotOptimize(PackByHand(example, packet.data()));
    benchmark::ClobberMemory();
  }
}

/// A floor that makes other packets than the library would measure something else.
void RequireTheSamePacket(const Example& example) {
  TalcPath::TalcCommand command(example.name);
  SetAll(command, example);
  TalcPath::TalcByteCode packet;
  const std::uint8_t* compiled = nullptr;
  if (!TalcPath::TalcPathCompile(command, packet, nullptr, nullptr) || !packet.GetPacketByteCodeBuffer(&compiled))
    std::abort();
  Bytes byHand(2048);
  const std::size_t size = PackByHand(example, byHand.data());
  if (size != packet.GetSize() || std::memcmp(byHand.data(), compiled, size) != 0) std::abort();
}

void DecompileAndGet(benchmark::State& state, const Example& example) {
  Bytes reply(2048);
  const std::size_t size = PackByHand(example, reply.data());
  TalcPath::TalcByteCode packet;
  packet.Set(reply.data(), static_cast<std::uint32_t>(size));
  TalcPath::TalcCommand command(example.name);
  command.SetRequestCommand();
  for (auto _ : state) {
    bool isGood = TalcPath::TalcPathDecompile(command, packet, nullptr, false);
    std::uint8_t narrow = 0;
    std::uint16_t wide = 0;
    const std::uint8_t* bytes = nullptr;
    std::uint32_t length = 0;
    for (const Value& value : example.values) {
      if (value.kind == Value::Kind::kUInt8) isGood = command.GetUInt8(value.name, &narrow) && isGood;
      if (value.kind == Value::Kind::kUInt16) isGood = command.GetUInt16(value.name, &wide) && isGood;
      if (value.kind == Value::Kind::kBytes) isGood = command.GetBytesPointer(value.name, &bytes, &length) && isGood;
    }
    if (!isGood) state.SkipWithError("did not decompile");
    benchmark::DoNotOptimize(narrow);
    benchmark::DoNotOptimize(wide);
    benchmark::DoNotOptimize(bytes);
    benchmark::ClobberMemory();
  }
}

void DecompileAndGetFloor(benchmark::State& state, const Example& example) {
  Bytes reply(2048);
  const std::size_t size = PackByHand(example, reply.data());
  Bytes bytes(2048);
  for (auto _ : state) {
    const std::uint8_t* at = reply.data() + 8;
    const std::uint8_t* const end = reply.data() + size;
    for (const Value& value : example.values) {
      std::uint32_t number = 0;
      if (value.kind == Value::Kind::kUInt16) number = *at++;
      if (value.kind != Value::Kind::kBytes) number = number << 8 | *at++;
      if (value.kind == Value::Kind::kBytes)
        for (std::uint8_t* to = bytes.data(); at < end;)
          *to++ = *at++;
      benchmark::DoNotOptimize(number);
    }
    benchmark::ClobberMemory();
  }
}

/// A message of the peer for one command, and its schema.
class PeerMessage {
 public:
  explicit PeerMessage(std::string_view name) : factory_(&pool_) {
    descriptor_ = LoadSchema(MakeSchemaText(), pool_)->FindMessageTypeByName(std::string(name));
    message_.reset(factory_.GetPrototype(descriptor_)->New());
  }

  void SetAll(const Example& example) {
    const google::protobuf::Reflection* const reflection = message_->GetReflection();
    for (const Value& value : example.values) {
      const auto* const field = descriptor_->FindFieldByName({value.name.data(), value.name.size()});
      if (value.kind == Value::Kind::kBytes)
        reflection->SetString(message_.get(), field, {value.bytes.begin(), value.bytes.end()});
      else
        reflection->SetUInt32(message_.get(), field, value.number);
    }
  }
  bool Serialize(Bytes& bytes) const {
    return message_->SerializeToArray(bytes.data(), static_cast<int>(bytes.size()));
  }
  std::string Serialized() const { return message_->SerializeAsString(); }

  bool Parse(const std::string& bytes) { return message_->ParseFromString(bytes); }
  void GetAll(const Example& example) const {
    const google::protobuf::Reflection* const reflection = message_->GetReflection();
    std::string scratch;
    for (const Value& value : example.values) {
      const auto* const field = descriptor_->FindFieldByName({value.name.data(), value.name.size()});
      if (value.kind == Value::Kind::kBytes) {
        benchmark::DoNotOptimize(reflection->GetStringReference(*message_, field, &scratch).data());
      } else {
        benchmark::DoNotOptimize(reflection->GetUInt32(*message_, field));
      }
    }
  }

 private:
  google::protobuf::DescriptorPool pool_;
  google::protobuf::DynamicMessageFactory factory_;
  const google::protobuf::Descriptor* descriptor_ = nullptr;
  std::unique_ptr<google::protobuf::Message> message_;
};

void SetAndSerialize(benchmark::State& state, const Example& example) {
  PeerMessage message(example.name);
  Bytes bytes(4096);
  for (auto _ : state) {
    message.SetAll(example);
    if (!message.Serialize(bytes)) state.SkipWithError("did not serialize");
    benchmark::ClobberMemory();
  }
}

void ParseAndGet(benchmark::State& state, const Example& example) {
  PeerMessage message(example.name);
  message.SetAll(example);
  const std::string serialized = message.Serialized();
  for (auto _ : state) {
    if (!message.Parse(serialized)) state.SkipWithError("did not parse");
    message.GetAll(example);
    benchmark::ClobberMemory();
  }
}

struct Way {
  const char* name;
  void (*ours)(benchmark::State&, const Example&);
  void (*floor)(benchmark::State&, const Example&);
  void (*peer)(benchmark::State&, const Example&);
};
constexpr std::array<Way, 2> kWays{{{"set_and_compile", SetAndCompile, SetAndCompileFloor, SetAndSerialize},
                                    {"decompile_and_get", DecompileAndGet, DecompileAndGetFloor, ParseAndGet}}};

std::string NameOf(const Way& way, const Example& example) {
  return std::string(way.name) + "_" + std::string(example.name);
}

}  // namespace

void AddPacketBenchmarks() {
  for (const Example& example : Examples()) {
    RequireTheSamePacket(example);
    for (const Way& way : kWays) {
      const auto add = [&](const char* suffix, auto run) {
        AddRepeated(NameOf(way, example) + suffix, [run, &example](benchmark::State& state) {
          run(state, example);
        })->Unit(benchmark::kNanosecond);
      };
      add("", way.ours);
      add("_floor", way.floor);
      add("_peer", way.peer);
    }
  }
}

void PrintPacketRatios(const FastestReporter& reporter) {
  for (const Example& example : Examples()) {
    for (const Way& way : kWays) {
      const std::string name = NameOf(way, example);
      reporter.PrintRatio(name, name, name + "_floor", "the floor");
      reporter.PrintRatio(name + ", peer", name + "_peer", name, "ours");
    }
  }
}
