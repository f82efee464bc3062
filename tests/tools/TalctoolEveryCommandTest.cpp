// Every command of the embedded dictionaries through talctool, in both directions. The packets are put together here,
// from what the check call tells of the definitions.

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <sstream>

#include "TalctoolFixture.h"

namespace {

using nlohmann::json;
using testing::SizeIs;

struct IntegerType {
  const char* word;
  unsigned bytes;
  bool isSigned;
};
constexpr IntegerType kIntegerTypes[] = {
    {"INT8", 1, true},  {"UINT8", 1, false},  {"INT16", 2, true}, {"UINT16", 2, false},
    {"INT32", 4, true}, {"UINT32", 4, false}, {"INT64", 8, true}, {"UINT64", 8, false},
};

std::string Hex(std::uint64_t number, unsigned bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (unsigned shift = bytes * 8; shift > 0; shift -= 4)
    text += kDigits[number >> (shift - 4) & 0xF];
  return text;
}

/// A value in its two forms.
struct Value {
  json asJson;
  std::string onTheWire;
};

/// A value of the type in which no two bytes are the same; `seed` tells them apart.
Value MakeValue(const std::string& type, std::uint64_t seed) {
  if (type == "BYTES") {
    const std::string hex = "00ff" + Hex(seed * 0x9E3779B97F4A7C15, 8) + Hex(seed, 1);
    return {hex, hex};
  }
  for (const IntegerType& integer : kIntegerTypes) {
    if (type != integer.word) continue;
    const std::uint64_t pattern = 0xF1E2D3C4B5A69788 + seed * 0x0101010101010101;
    const unsigned unused = 64 - integer.bytes * 8;
    const std::uint64_t bits = pattern << unused >> unused;
    // The shift of a signed number brings its sign down.
    const auto withSign = static_cast<std::int64_t>(pattern << unused) >> unused;
    return {integer.isSigned ? json(withSign) : json(bits), Hex(bits, integer.bytes)};
  }
  throw std::invalid_argument("no such type: " + type);
}

/// A command of the dictionary with values for all its parameters.
class FilledCommand {
 public:
  explicit FilledCommand(json definition) : definition_(std::move(definition)) {
    std::uint64_t seed = 0;
    for (const json& parameter : definition_["parameters"]) {
      const Value value = MakeValue(parameter[1], ++seed);
      values_.push_back(json::array({parameter[0], parameter[1], value.asJson}));
      sent_ += value.onTheWire;
      if (parameter[2].get<bool>()) requested_ += value.onTheWire;
    }
  }

  const json& Values() const { return values_; }
  json Question(const std::string& direction) const {
    return {{"name", definition_["name"]}, {"direction", direction}, {"values", values_}};
  }
  std::string CommandPacket(const std::string& direction) const {
    return Packet(direction == "request", direction == "request" ? requested_ : sent_);
  }
  std::string ReplyToSend() const { return Packet(false, ""); }
  std::string ReplyToRequest() const { return Packet(true, sent_); }

 private:
  std::string Packet(bool isRequest, const std::string& payload) const {
    const std::size_t payloadBytes = payload.size() / 2;
    if (definition_["kind"] == "Diag")
      return "6f72626f5f646961676e6f7374696373" + std::string(30, '0') + Hex(definition_["opcode"].get<unsigned>(), 1) +
             Hex(payloadBytes, 2) + "0000" + payload;
    const std::vector<std::string> majors = {"VIDEO", "AUDIO", "SYSTEM", "DIAGNOSTIC"};
    const auto major = std::find(majors.begin(), majors.end(), definition_["major"].get<std::string>());
    const auto first = static_cast<unsigned>(major - majors.begin()) * 64 + definition_["minor"].get<unsigned>();
    const unsigned second = definition_["function"].get<unsigned>() * 2 + (isRequest ? 1 : 0);
    return "0b0b" + Hex(payloadBytes + 4, 2) + Hex(first, 1) + Hex(second, 1) + "0000" + payload;
  }

  json definition_;
  json values_ = json::array();
  std::string sent_;
  std::string requested_;
};

class TalctoolEveryCommand : public Talctool {
 protected:
  TalctoolEveryCommand() {
    std::istringstream lines(Output({"check"}));
    for (std::string line; std::getline(lines, line);) {
      json definition = json::parse(line);
      if (definition.contains("name")) commands_.emplace_back(std::move(definition));
    }
  }
  void SetUp() override { ASSERT_THAT(commands_, SizeIs(163)); }

  /// Asks all at once, and compares the answers one by one.
  void Answers(const std::string& call, const std::vector<json>& questions, const std::vector<json>& expected) const {
    std::string input;
    for (const json& question : questions)
      input += question.dump() + "\n";
    std::istringstream answers(Output({call}, input));
    std::string answer;
    for (std::size_t at = 0; at < expected.size(); ++at) {
      ASSERT_TRUE(std::getline(answers, answer));
      EXPECT_EQ(answer, expected[at].dump()) << questions[at];
    }
    EXPECT_FALSE(std::getline(answers, answer));
  }

  std::vector<FilledCommand> commands_;
};

TEST_F(TalctoolEveryCommand, CompilesInBothDirections) {
  for (const std::string direction : {"send", "request"}) {
    std::vector<json> questions;
    std::vector<json> expected;
    for (const FilledCommand& command : commands_) {
      questions.push_back(command.Question(direction));
      expected.push_back({{"ok", true}, {"packet", command.CommandPacket(direction)}});
    }
    Answers("compile", questions, expected);
  }
}

TEST_F(TalctoolEveryCommand, DecompilesInBothDirections) {
  std::vector<json> questions;
  std::vector<json> expected;
  for (const FilledCommand& command : commands_) {
    // Both end with the same values: a send has them from the start, a request gets them.
    json send = command.Question("send");
    send["reply"] = command.ReplyToSend();
    json request = command.Question("request");
    request["reply"] = command.ReplyToRequest();
    request.erase("values");
    for (json& question : std::vector{send, request}) {
      questions.push_back(question);
      expected.push_back(
          {{"error", "kTPSuccess"}, {"ok", true}, {"status", "kTPSuccess"}, {"values", command.Values()}});
    }
  }
  Answers("decompile", questions, expected);
}

}  // namespace
