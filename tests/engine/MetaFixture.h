#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "dictionary/DefinedCommands.h"
#include "engine/MetaCommandByteCodeProcessor.h"
#include "EngineFixture.h"

/// Meta commands, the three ordinary ones that carry them, and a box that answers as a test writes down.
namespace engine_test {

using TalcPathPrivate::MetaCommandByteCodeProcessor;
using Texts = std::vector<std::string>;

/// Codes in a packet, as a send and as a request: 80 02 and 80 03, 80 04 and 80 05, 80 06 and 80 07.
inline constexpr const char* kCarriers =
    "Begin Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1 DataName TotalSize DataType UINT32 ;"
    "Part Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 2 DataName Data DataType BYTES ;"
    "End Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 3 ;";

/// Replies to sends, without values.
inline constexpr const char* kBegun = "0B 0B 00 04 80 02 00 00";
inline constexpr const char* kTaken = "0B 0B 00 04 80 04 00 00";
inline constexpr const char* kEnded = "0B 0B 00 04 80 06 00 00";

/// Request packets; the last is also a good reply to itself.
inline constexpr const char* kAskBegin = "0B 0B 00 04 80 03 00 00";
inline constexpr const char* kAskPart = "0B 0B 00 04 80 05 00 00";
inline constexpr const char* kAskEnd = "0B 0B 00 04 80 07 00 00";

/// A meta command that is carried by those. `parameters` is empty or ends with a blank: a type word right before the
/// ";" would be lost.
inline std::string Meta(const std::string& name, const std::string& parameters) {
  return name + " Meta Start Begin Repeat Part Stop End " + parameters + ";";
}

/// The bytes from that place on of endless data in which each pair of bytes is the number of the pair.
inline Bytes Numbered(std::size_t at, std::size_t count) {
  Bytes bytes;
  for (std::size_t i = at; i < at + count; ++i)
    bytes.push_back(static_cast<std::uint8_t>(i % 2 == 0 ? i / 2 >> 8 : i / 2));
  return bytes;
}

/// A packet of that header, with data of that kind behind it.
inline std::string WithNumbered(const std::string& header, std::size_t at, std::size_t count) {
  return Hex(FromHex(header) + Numbered(at, count));
}

/// A command whose one value "Image" is such data, from its start.
inline TalcCommand WithImage(std::string_view name, std::size_t count) {
  TalcCommand command(name);
  SetBytes(command, "Image", Numbered(0, count));
  return command;
}

inline Texts PacketsOf(const MetaCommandByteCodeProcessor& processor) {
  Texts packets;
  for (const auto& pair : processor.Pairs())
    packets.push_back(Hex(pair->packet));
  return packets;
}

/// What the trace says of failures, in their order.
inline Texts ErrorsIn(const std::string& log) {
  constexpr std::string_view kMark = "MetaCommand ERROR - ";
  Texts errors;
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);)
    if (line.starts_with(kMark)) errors.push_back(line.substr(kMark.size()));
  return errors;
}

/// A packet that the box is to be sent, and its reply, both as byte pairs; no text for no reply at all.
struct Event {
  std::string packet;
  std::string reply = {};
  bool isGood = true;  ///< what the exchange answers
};

/// Expects an exact sequence of packets. One that is missing, extra, out of order or different fails the test.
class ScriptedBox {
 public:
  explicit ScriptedBox(std::vector<Event> script) : script_(std::move(script)) {}
  ~ScriptedBox() { EXPECT_EQ(next_, script_.size()) << "packets were not sent"; }
  ScriptedBox(const ScriptedBox&) = delete;
  ScriptedBox& operator=(const ScriptedBox&) = delete;

  MetaCommandByteCodeProcessor::Exchange Road() {
    return [this](const TalcByteCode& packet, TalcByteCode& reply) { return Answer(packet, reply); };
  }

 private:
  bool Answer(const TalcByteCode& packet, TalcByteCode& reply) {
    if (next_ == script_.size()) {
      ADD_FAILURE() << "no packet is expected, but " << Hex(packet);
      return false;
    }
    const Event& event = script_[next_++];
    EXPECT_EQ(Hex(packet), event.packet) << "packet " << next_;
    EXPECT_EQ(reply.GetSize(), 0u) << "packet " << next_;
    const Bytes bytes = FromHex(event.reply);
    reply.Set(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    return event.isGood;
  }

  const std::vector<Event> script_;
  std::size_t next_ = 0;
};

/// Carries a command that compiles to the box and back. Gives what the execution gives; only behind a good one the
/// statuses are merged into the command.
inline bool Carry(TalcCommand& command, const std::vector<Event>& script) {
  ScriptedBox box(script);
  MetaCommandByteCodeProcessor processor(command, box.Road());
  EXPECT_TRUE(processor.Compile());
  if (!processor.Execute()) return false;
  processor.MergeStatuses(command);
  return true;
}

}  // namespace engine_test
