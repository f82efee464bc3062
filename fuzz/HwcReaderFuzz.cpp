// Any text as capabilities, behind a small dictionary. What is read is written and read again, which must give the same
// tables, and writing those the same text. The input is the text.

#include <algorithm>
#include <cstdint>
#include <map>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "caps/HwcMerge.h"
#include "caps/HwcReader.h"
#include "caps/HwcWriter.h"
#include "caps/TalcHWCaps.h"
#include "dictionary/Log.h"
#include "dictionary/TcdReader.h"
#include "FuzzInput.h"

namespace {

using TalcPathPrivate::TalcHWCaps;
using Block = TalcPathPrivate::HWCapsConditionBlock;

constexpr const char* kDictionary =
    "Video Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 "
    "DataName Side DataType UINT8 DataName Value DataType INT32 "
    "Symbol In 1 Symbol Out 2 Symbol Also 2 Symbol Low -2147483648 ;"
    "A Diag DiagOpcode 7 DataName B DataType UINT8 Symbol C 0 ;";

/// Takes what is written and keeps nothing.
class Nowhere final : public std::streambuf {
  int overflow(int character) override { return character; }
  std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

bool ReadDictionary() {
  std::istringstream stream(kDictionary);
  Require(TalcPathPrivate::ParseTcdStream(stream, "dictionary"));
  return true;
}

bool Read(TalcHWCaps& caps, const std::string& text) {
  std::istringstream stream(text);
  return TalcPathPrivate::ReadHwc(caps, stream, "input");
}

/// Whatever was read has no empty list and no value of a foreign kind, and so can be written.
std::string Written(const TalcHWCaps& caps) {
  std::ostringstream stream;
  Require(TalcPathPrivate::WriteHwc(caps, caps.hardwareType, stream));
  return stream.str();
}

/// Words hold no white space, so that it parts them without doubt.
std::string TextOf(const TalcPathPrivate::Variant& value) {
  if (const auto* const text = value.As<std::string>()) return "text " + *text;
  if (const auto* const number = value.As<std::int32_t>()) return "number " + std::to_string(*number);
  if (const auto* const range = value.As<TalcPathPrivate::Range>())
    return "range " + std::to_string(range->first) + " " + std::to_string(range->second);
  std::string text = "symbols";
  const auto* const symbols = value.As<TalcPathPrivate::TextList>();
  Require(symbols != nullptr && !symbols->empty());
  for (const std::string& symbol : *symbols)
    text += " " + symbol;
  return text;
}

std::string ConditionsOf(const Block& block) {
  std::string text;
  for (const auto& [command, parameters] : block.Conditions()) {
    Require(!parameters.empty());
    for (const auto& [parameter, record] : parameters) {
      Require(record.parameter == parameter);
      text += "\n if " + command + " " + parameter + " " + std::to_string(record.value) + " " + record.symbol;
    }
  }
  return text;
}

struct Tables {
  std::string hardwareType;
  TalcHWCaps::OverrideTimeouts overrides;
  /// In their order: name and conditions.
  std::vector<std::string> blocks;
  /// Sorted, since a file may come back to a block while what is written goes by blocks.
  std::vector<std::string> propertiesAndValues;

  bool operator==(const Tables&) const = default;
};

Tables TablesOf(const TalcHWCaps& caps) {
  Tables tables = {caps.hardwareType, caps.overrideTimeouts, {}, {}};
  for (const auto& block : caps.Blocks())
    tables.blocks.push_back(block->keyname + ConditionsOf(*block));

  std::string name;
  const Block* block = nullptr;
  for (std::size_t n = 0; caps.GetNthOverallProperty(n, name, block); ++n) {
    const auto* const value = caps.FindProperty(name, *block);
    Require(value != nullptr && caps.FindSameBlock(*block) == block);
    tables.propertiesAndValues.push_back("property " + name + " " + TextOf(*value) + ConditionsOf(*block));
  }
  Require(tables.propertiesAndValues.size() == caps.OverallPropertyCount());

  std::string command;
  for (std::size_t n = 0; caps.GetNthOverallCmdParam(n, command, name, block); ++n) {
    const auto* const value = caps.FindCommandValue(command, name, *block);
    Require(value != nullptr && caps.FindSameBlock(*block) == block);
    tables.propertiesAndValues.push_back("value " + command + " " + name + " " + TextOf(*value) + ConditionsOf(*block));
  }
  Require(tables.propertiesAndValues.size() == caps.OverallPropertyCount() + caps.OverallCmdParamCount());
  std::sort(tables.propertiesAndValues.begin(), tables.propertiesAndValues.end());
  return tables;
}

bool HasValues(const TalcHWCaps& caps, const Block& block) {
  if (caps.PropertiesOf(block) != nullptr) return true;
  std::string command;
  std::string parameter;
  const Block* each = nullptr;
  for (std::size_t n = 0; caps.GetNthOverallCmdParam(n, command, parameter, each); ++n)
    if (each->HasSameConditions(block)) return true;
  return false;
}

/// What is stored under some conditions is written with each block that has them, and refused when read for the second
/// time.
bool IsWrittenTwice(const TalcHWCaps& caps) {
  return std::any_of(caps.Blocks().begin(), caps.Blocks().end(), [&](const auto& block) {
    return caps.FindSameBlock(*block) != block.get() && HasValues(caps, *block);
  });
}

/// The text ended in a header before its first condition. Written with its end, such a header gives no block.
bool HasUnfinishedBlock(const TalcHWCaps& caps) {
  return !caps.Blocks().empty() && caps.Blocks().back()->ConditionCount() == 0;
}

/// The written form of a statement can be longer than the read one, by its line ends and the blanks before its ";".
bool HasTooLongStatement(std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = text.find(';');
    if (end == std::string_view::npos) return false;
    if (end > TalcPathPrivate::kLongestBlock) return true;
    text.remove_prefix(end + 1);
  }
  return false;
}

/// A merge may fail halfway, but leaves tables that hold together, and takes from the option without touching it.
void MergeInto(const std::string& target, const TalcHWCaps& option) {
  TalcHWCaps caps;
  Require(Read(caps, target));
  const Tables before = TablesOf(option);
  TalcPathPrivate::MergeHwc(caps, option);
  Require(TablesOf(option) == before);
  TablesOf(caps);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Nowhere nowhere;
  static std::ostream log(&nowhere);
  TalcPathPrivate::logState = {.verbose = true, .trace = true, .stream = &log};
  static const bool isDefined = ReadDictionary();
  Require(isDefined);

  TalcHWCaps caps;
  const bool isGood = Read(caps, {data, data + size});
  const Tables first = TablesOf(caps);
  MergeInto("", caps);
  MergeInto(
      "CmdOverrideTimeout A 5 ; Property P STRING x ; CommandValues Video Value Symbol In Out ; "
      "ConditionBlockBegin ; ConditionKeyname K ; Condition Video Side SYMBOL Also ; ConditionBlockEnd ; "
      "CommandValues Video Value Range 0 1 ;",
      caps);
  if (!isGood) return 0;

  const std::string text = Written(caps);
  if (HasTooLongStatement(text)) return 0;
  TalcHWCaps again;
  const bool isGoodAgain = Read(again, text);
  // A text may name no hardware, but no statement can say an empty name.
  if (caps.hardwareType.empty() || IsWrittenTwice(caps)) {
    Require(!isGoodAgain);
    return 0;
  }
  if (HasUnfinishedBlock(caps)) return 0;
  Require(isGoodAgain && TablesOf(again) == first);
  Require(Written(again) == text);
  return 0;
}
