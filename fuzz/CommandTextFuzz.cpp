// Any text as a statement behind its direction. What was read is written and read again, which must give the same
// values. The input is the text.

#include <cstdint>
#include <sstream>
#include <string>

#include "dictionary/CommandContents.h"
#include "FuzzInput.h"
#include "talcpath.h"

namespace {

constexpr char kSend[] = "\ntalc send ";

std::string Written(const TalcPath::TalcCommand& command) {
  std::ostringstream text;
  text << command;
  return text.str();
}

/// 64-bit values are written as addresses, which mean nothing to a reader.
bool CanBeReadBack(const TalcPath::TalcCommand& command) {
  for (const auto& parameter : TalcPath::ContentsOf(command)->parameters)
    if (parameter.value.Type() == typeid(std::int64_t) || parameter.value.Type() == typeid(std::uint64_t)) return false;
  return !command.GetName().empty();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream stream(std::string(data, data + size));
  TalcPath::TalcCommand command;
  stream >> command;

  const std::string written = Written(command);
  Require(written.starts_with(kSend) && written.ends_with(" . ;"));
  std::ostringstream dump;
  command.Dump(dump);

  if (CanBeReadBack(command)) {
    std::istringstream again(written.substr(sizeof kSend - 1));
    TalcPath::TalcCommand other("other");
    again >> other;
    Require(Written(other) == written);
    std::string rest;
    std::getline(again, rest);
    Require(rest == " ;");
  }
  return 0;
}
