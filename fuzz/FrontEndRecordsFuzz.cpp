// Any bytes as a record to a front end, against a plain second reading of it, and its line in the log. The input is the
// kind's lowest byte and the record.

#include <frontend/RecordLine.h>
#include <frontend/Records.h>

#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <variant>

#include "FuzzInput.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

bool HasText(Bytes bytes, std::size_t offset) {
  return std::memchr(bytes.data() + offset, 0, 260) != nullptr;
}

std::string TextAt(Bytes bytes, std::size_t offset) {
  return reinterpret_cast<const char*>(bytes.data() + offset);
}

std::uint32_t NumberAt(Bytes bytes, std::size_t offset) {
  return Input(bytes.subspan(offset)).Word();
}

bool IsWhole(std::uint64_t kind, Bytes bytes) {
  if (kind == 82) return bytes.size() == 524 && HasText(bytes, 0) && HasText(bytes, 260);
  if (kind == 42) return bytes.size() == 268 && HasText(bytes, 0);
  return kind == 102 && bytes.size() == 8;
}

void RequireFields(Bytes bytes, const frontend::Record& record) {
  if (const auto* progress = std::get_if<frontend::Progress>(&record)) {
    Require(bytes.size() == 524 && progress->part == TextAt(bytes, 0) && progress->phase == TextAt(bytes, 260));
    Require(static_cast<std::uint32_t>(progress->percent) == NumberAt(bytes, 520));
  } else if (const auto* version = std::get_if<frontend::Version>(&record)) {
    Require(bytes.size() == 268 && version->part == TextAt(bytes, 0));
    Require(version->current == NumberAt(bytes, 260) && version->expected == NumberAt(bytes, 264));
  } else if (const auto* restart = std::get_if<frontend::Restart>(&record)) {
    Require(bytes.size() == 8);
    Require(restart->cpuRestart == NumberAt(bytes, 0) && restart->boxPowerCycle == NumberAt(bytes, 4));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const std::uint64_t kind = data[0];
  const Bytes bytes(data + 1, size - 1);
  const frontend::Record record = frontend::DecodeRecord(kind, bytes);
  Require(std::holds_alternative<frontend::Refused>(record) == !IsWhole(kind, bytes));
  RequireFields(bytes, record);

  // One line, whatever the texts hold.
  const std::string line = frontend::RecordLine(kind, bytes, record);
  Require(line.front() == '{' && line.back() == '}');
  for (const char c : line)
    Require(c >= ' ' && c <= '~');
  return 0;
}
