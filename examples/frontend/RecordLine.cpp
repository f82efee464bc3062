#include "RecordLine.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>

namespace frontend {
namespace {

constexpr std::size_t kMostHexBytes = 1024;

/// Values as they are written, in the order of their keys.
using Fields = std::map<std::string_view, std::string>;

void AppendHex(std::string& text, std::uint8_t byte) {
  constexpr char kDigits[] = "0123456789abcdef";
  text += kDigits[byte >> 4];
  text += kDigits[byte & 0xF];
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (c >= ' ' && c <= '~') {
      quoted += c;
    } else {
      quoted += "\\u00";
      AppendHex(quoted, static_cast<std::uint8_t>(c));
    }
  }
  return quoted + "\"";
}

std::string Hex(std::span<const std::uint8_t> bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes.first(std::min(bytes.size(), kMostHexBytes)))
    AppendHex(text, byte);
  return text;
}

struct AddFields {
  Fields& fields;

  void operator()(const Progress& progress) const {
    fields["part"] = Quoted(progress.part);
    fields["percent"] = std::to_string(progress.percent);
    fields["phase"] = Quoted(progress.phase);
    fields["record"] = Quoted("progress");
  }
  void operator()(const Version& version) const {
    fields["current"] = std::to_string(version.current);
    fields["expected"] = std::to_string(version.expected);
    fields["part"] = Quoted(version.part);
    fields["record"] = Quoted("version");
  }
  void operator()(const Restart& restart) const {
    fields["boxPowerCycle"] = std::to_string(restart.boxPowerCycle);
    fields["cpuRestart"] = std::to_string(restart.cpuRestart);
    fields["record"] = Quoted("restart");
  }
  void operator()(const Refused& refused) const {
    fields["reason"] = Quoted(refused.reason);
    fields["record"] = Quoted("refused");
  }
};

}  // namespace

std::string RecordLine(std::uint64_t kind, std::span<const std::uint8_t> bytes, const Record& record) {
  Fields fields;
  fields["bytes"] = std::to_string(bytes.size());
  fields["hex"] = Quoted(Hex(bytes));
  fields["kind"] = std::to_string(kind);
  std::visit(AddFields{fields}, record);

  std::string line;
  for (const auto& [key, value] : fields) {
    line += line.empty() ? "{" : ",";
    line += Quoted(key) + ":" + value;
  }
  return line + "}";
}

}  // namespace frontend
