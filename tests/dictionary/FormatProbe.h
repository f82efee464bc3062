#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>

#include "dictionary/DiagCommandFormat.h"
#include "dictionary/MetaCommandFormat.h"
#include "dictionary/TalcCommandFormat.h"
#include "dictionary/TokenStream.h"

/// Formats whose inside a test sets and sees, and the short forms in which it compares definitions.
namespace probe {

class Talc : public TalcPathPrivate::TalcCommandFormat {
 public:
  using TalcCommandFormat::commandType;
  using TalcCommandFormat::definitionFile;
  using TalcCommandFormat::documentation;
  using TalcCommandFormat::hasVariableLengthData;
  using TalcCommandFormat::name;
  using TalcCommandFormat::overrideTimeoutMillisec;
  using TalcCommandFormat::packetSizes;
  using TalcCommandFormat::parameters;
  using TalcCommandFormat::symbols;
};

class Diag : public TalcPathPrivate::DiagCommandFormat {
 public:
  using DiagCommandFormat::definitionFile;
  using DiagCommandFormat::diagOpcode;
  using DiagCommandFormat::documentation;
  using DiagCommandFormat::hasVariableLengthData;
  using DiagCommandFormat::name;
  using DiagCommandFormat::packetSizes;
  using DiagCommandFormat::parameters;
  using DiagCommandFormat::symbols;
};

inline TalcPathPrivate::ParameterFormat Parameter(std::string_view name, std::string_view type,
                                                  bool isRequired = false) {
  return {name, TalcPathPrivate::DataType(type), isRequired};
}

/// Reads what stands behind name and kind of a definition. Into the caller's object, since copies have less.
inline void Read(TalcPathPrivate::CommandFormat& format, std::string_view name, std::string_view block) {
  TalcPathPrivate::TokenStream stream(block);
  EXPECT_TRUE(format.ReadDefinition(stream, name)) << name;
}

/// "A UINT8 RD, B BYTES"
inline std::string ParametersOf(const TalcPathPrivate::CommandFormat& format) {
  std::string text;
  for (std::size_t i = 0; i < format.GetNumParameters(); ++i) {
    std::string name;
    std::string type;
    bool isRequired = false;
    EXPECT_TRUE(format.GetParameterByIndex(static_cast<std::ptrdiff_t>(i), name, type, isRequired));
    text += (i == 0 ? "" : ", ") + name + " " + type + (isRequired ? " RD" : "");
  }
  return text;
}

/// "On 1, Off 0"
inline std::string SymbolsOf(const TalcPathPrivate::CommandFormat& format) {
  std::string text;
  for (std::size_t i = 0; i < format.GetNumSymbols(); ++i) {
    std::string name;
    std::int32_t value = 0;
    EXPECT_TRUE(format.GetSymbolByIndex(static_cast<std::ptrdiff_t>(i), name, value));
    text += (i == 0 ? "" : ", ") + name + " " + std::to_string(value);
  }
  return text;
}

/// "VIDEO 1 2", "Diag 50" or "Meta A B C"
inline std::string CodeOf(const TalcPathPrivate::CommandFormat& format) {
  if (const auto* const talc = dynamic_cast<const TalcPathPrivate::TalcCommandFormat*>(&format)) {
    const TalcPathPrivate::CommandType& type = talc->GetCommandType();
    constexpr const char* kWords[] = {"VIDEO", "AUDIO", "SYSTEM", "DIAGNOSTIC"};
    return std::string(kWords[static_cast<int>(type.major)]) + " " + std::to_string(type.minor) + " " +
           std::to_string(type.function);
  }
  if (const auto* const diag = dynamic_cast<const TalcPathPrivate::DiagCommandFormat*>(&format))
    return "Diag " + std::to_string(diag->GetDiagOpcode());
  const auto& meta = dynamic_cast<const TalcPathPrivate::MetaCommandFormat&>(format);
  return "Meta " + meta.GetStartCommand() + " " + meta.GetRepeatCommand() + " " + meta.GetStopCommand();
}

/// "Foo: VIDEO 1 2 {A UINT8 RD} {On 1}"
inline std::string Summary(const TalcPathPrivate::CommandFormat& format) {
  return format.GetName() + ": " + CodeOf(format) + " {" + ParametersOf(format) + "} {" + SymbolsOf(format) + "}";
}

/// For test cases that carry their label.
template <typename Case>
std::string LabelOf(const testing::TestParamInfo<Case>& info) {
  return info.param.label;
}

inline std::string Dumped(const TalcPathPrivate::CommandFormat& format, bool brief) {
  std::ostringstream stream;
  format.Dump(stream, brief);
  return stream.str();
}

inline std::string Written(const TalcPathPrivate::CommandFormat& format) {
  std::ostringstream stream;
  format.WriteDefinition(stream);
  return stream.str();
}

}  // namespace probe
