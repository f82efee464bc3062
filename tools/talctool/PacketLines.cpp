#include "PacketLines.h"

#include <exception>
#include <utility>

#include "Dictionary.h"
#include "engine/MetaCommandByteCodeProcessor.h"
#include "Hex.h"
#include "JsonLines.h"
#include "JsonValues.h"
#include "talcpath.h"

namespace {

using TalcPath::TalcByteCode;
using TalcPath::TalcCommand;
using TalcPath::TalcPathStatus;

TalcCommand CommandOf(const Json& question) {
  TalcCommand command(TextMember(question, "name"));
  SetDirection(command, question);
  return command;
}

std::string HexOf(const TalcByteCode& packet) {
  const std::uint8_t* bytes = nullptr;
  if (!packet.GetPacketByteCodeBuffer(&bytes)) return {};
  return ToHex({bytes, packet.GetSize()});
}

Json Compiled(TalcCommand& command) {
  TalcByteCode packet;
  TalcPathStatus status = TalcPath::kTPSuccess;
  if (TalcPath::TalcPathCompile(command, packet, nullptr, &status)) return {{"ok", true}, {"packet", HexOf(packet)}};
  Json answer = {{"ok", false}, {"status", nullptr}};
  // A refusal sets no status.
  if (status != TalcPath::kTPSuccess) answer["status"] = TalcPath::GetStatusName(status);
  return answer;
}

Json Decompiled(TalcCommand& command, const TalcByteCode& reply) {
  TalcPathStatus status = TalcPath::kTPSuccess;
  const bool isGood = TalcPath::TalcPathDecompile(command, reply, &status, false);
  return {{"ok", isGood},
          {"error", TalcPath::GetStatusName(status)},
          {"status", command.GetStatusName()},
          {"values", ValuesOf(command)}};
}

/// What the library lets pass through it is an answer, too.
template <typename Work>
Json AnswerOrException(Work work) {
  try {
    return work();
  } catch (const std::exception& error) {
    return {{"exception", error.what()}, {"ok", false}};
  }
}

Json AnswerCompile(const Json& question) {
  TalcCommand command = CommandOf(question);
  SetValues(command, Member(question, "values"));
  return AnswerOrException([&] { return Compiled(command); });
}

Json CompiledMeta(TalcCommand& command) {
  TalcPathPrivate::MetaCommandByteCodeProcessor processor(command);
  if (!processor.Compile()) return {{"ok", false}};
  Json packets = Json::array();
  for (const auto& pair : processor.Pairs())
    packets.push_back(HexOf(pair->packet));
  return {{"ok", true}, {"packets", std::move(packets)}};
}

Json AnswerMeta(const Json& question) {
  TalcCommand command(TextMember(question, "name"));
  SetValues(command, Member(question, "values"));
  return AnswerOrException([&] { return CompiledMeta(command); });
}

Json AnswerDecompile(const Json& question) {
  TalcCommand command = CommandOf(question);
  const auto reply = FromHex(TextMember(question, "reply"));
  if (!reply) throw BadInput();
  if (question.contains("values")) SetValues(command, question["values"]);
  TalcByteCode packet;
  packet.Set(reply->data(), static_cast<std::uint32_t>(reply->size()));
  return AnswerOrException([&] { return Decompiled(command, packet); });
}

}  // namespace

void CompileLines(const Dictionary& dictionary) {
  dictionary.RequireCommands();
  AnswerLines(AnswerCompile);
}

void MetaLines(const Dictionary& dictionary) {
  dictionary.RequireCommands();
  AnswerLines(AnswerMeta);
}

void DecompileLines(const Dictionary& dictionary) {
  dictionary.RequireCommands();
  AnswerLines(AnswerDecompile);
}
