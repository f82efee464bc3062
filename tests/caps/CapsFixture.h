#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "caps/HwcReader.h"
#include "caps/HwcWriter.h"
#include "caps/TalcHWCaps.h"
#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "dictionary/TcdReader.h"

namespace caps_test {

using TalcPathPrivate::Range;
using TalcPathPrivate::TalcHWCaps;
using TalcPathPrivate::TextList;
using TalcPathPrivate::Variant;
using Block = TalcPathPrivate::HWCapsConditionBlock;
using Lines = std::vector<std::string>;

inline constexpr const char* kDictionary =
    "Video Talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 "
    "DataName Side DataType UINT8 DataName Control DataType UINT8 DataName Value DataType INT32 "
    "Symbol Input 1 Symbol Output 2 Symbol Hue 3 Symbol Tint 3 Symbol Gain -4 ;"
    "Audio Talc CommandTypeMajor AUDIO CommandTypeMinor 1 Function 2 "
    "DataName Side DataType UINT8 DataName Level DataType INT32 Symbol Mute 0 Symbol Loud 9 ;"
    "Probe Diag DiagOpcode 7 DataName Address DataType UINT32 ;";

/// A dictionary of three commands, capabilities to fill, and a quiet log that is kept as text.
class CapsTest : public ::testing::Test {
 protected:
  CapsTest() {
    StartOver();
    std::istringstream dictionary(kDictionary);
    if (!TalcPathPrivate::ParseTcdStream(dictionary, "test.tcd")) throw std::logic_error("not a dictionary");
    TalcPathPrivate::logState.stream = &log_;
  }
  ~CapsTest() override { StartOver(); }

  /// All that was logged, or since the last `ClearLog`.
  std::string log() const { return log_.str(); }
  void ClearLog() { log_.str(""); }

  /// Reads a file that is called "test.hwc".
  static bool Read(TalcHWCaps& caps, const std::string& text) {
    std::istringstream stream(text);
    return TalcPathPrivate::ReadHwc(caps, stream, "test.hwc");
  }
  bool Read(const std::string& text) { return Read(caps_, text); }

  TalcHWCaps caps_;

 private:
  static void StartOver() {
    TalcPathPrivate::logState = {};
    TalcPathPrivate::ErrorList errors;
    TalcPathPrivate::DeleteDefinedCommands(errors);
    TalcPathPrivate::DeleteCommandTypeTable(errors);
    TalcPathPrivate::DeleteDiagOpcodeTable(errors);
  }

  std::ostringstream log_;
};

/// For test cases that carry their label.
template <typename Case>
std::string LabelOf(const testing::TestParamInfo<Case>& info) {
  return info.param.label;
}

inline Block NumberBlock(std::string keyname, std::string_view command, std::string_view parameter,
                         std::int32_t value) {
  Block block;
  block.keyname = std::move(keyname);
  EXPECT_TRUE(block.AddIntegerCondition(command, parameter, value));
  return block;
}

inline Block SymbolBlock(std::string keyname, std::string_view command, std::string_view parameter,
                         std::string_view symbol) {
  Block block;
  block.keyname = std::move(keyname);
  EXPECT_TRUE(block.AddSymbolCondition(command, parameter, symbol));
  return block;
}

/// "Video Side 1 Input, Video Value 5"
inline std::string ConditionsOf(const Block& block) {
  std::string text;
  for (const auto& [command, parameters] : block.Conditions()) {
    for (const auto& [parameter, record] : parameters) {
      EXPECT_EQ(record.parameter, parameter);
      text += (text.empty() ? "" : ", ") + command + " " + parameter + " " + std::to_string(record.value);
      if (!record.symbol.empty()) text += " " + record.symbol;
    }
  }
  return text;
}

/// "default", a name, or the conditions of a block without one.
inline std::string NameOf(const Block& block) {
  if (!block.keyname.empty()) return block.keyname;
  return block.ConditionCount() == 0 ? "default" : "{" + ConditionsOf(block) + "}";
}

/// "'text'", "5", "0..255", "[Hue Gain]", "none" or "other"
inline std::string TextOf(const Variant* value) {
  if (value == nullptr) return "none";
  if (const auto* const text = value->As<std::string>()) return "'" + *text + "'";
  if (const auto* const number = value->As<std::int32_t>()) return std::to_string(*number);
  if (const auto* const range = value->As<Range>())
    return std::to_string(range->first) + ".." + std::to_string(range->second);
  const auto* const symbols = value->As<TextList>();
  if (symbols == nullptr) return "other";
  std::string text = "[";
  for (const std::string& symbol : *symbols)
    text += (text.size() == 1 ? "" : " ") + symbol;
  return text + "]";
}

/// "Name {Video Side 1 Input}", in the order of the list.
inline Lines BlocksOf(const TalcHWCaps& caps) {
  Lines lines;
  for (const auto& block : caps.Blocks())
    lines.push_back(block->keyname + " {" + ConditionsOf(*block) + "}");
  return lines;
}

/// "block: Name value", in the order of the tables.
inline Lines PropertiesOf(const TalcHWCaps& caps) {
  Lines lines;
  std::string name;
  const Block* block = nullptr;
  for (std::size_t n = 0; caps.GetNthOverallProperty(n, name, block); ++n)
    lines.push_back(NameOf(*block) + ": " + name + " " + TextOf(caps.FindProperty(name, *block)));
  EXPECT_EQ(lines.size(), caps.OverallPropertyCount());
  return lines;
}

/// "block: Command Parameter value", in the order of the tables.
inline Lines ValuesOf(const TalcHWCaps& caps) {
  Lines lines;
  for (const auto& [command, parameters] : caps.AllCommandValues())
    for (const auto& [parameter, values] : parameters)
      for (const auto& [value, block] : values)
        lines.push_back(NameOf(*block) + ": " + command + " " + parameter + " " + TextOf(&value));
  EXPECT_EQ(lines.size(), caps.OverallCmdParamCount());
  return lines;
}

/// "Command 1000", in the order of names.
inline Lines OverridesOf(const TalcHWCaps& caps) {
  Lines lines;
  for (const auto& [command, milliseconds] : caps.overrideTimeouts)
    lines.push_back(command + " " + std::to_string(milliseconds));
  return lines;
}

/// All of it but the file's name: type, time-outs, blocks, properties, values.
inline Lines TablesOf(const TalcHWCaps& caps) {
  Lines lines = {caps.hardwareType};
  for (const Lines& table : {OverridesOf(caps), BlocksOf(caps), PropertiesOf(caps), ValuesOf(caps)})
    lines.insert(lines.end(), table.begin(), table.end());
  return lines;
}

}  // namespace caps_test
