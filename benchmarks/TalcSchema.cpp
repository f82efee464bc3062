#include "TalcSchema.h"

#include <set>
#include <sstream>

#include "dictionary/DefinedCommands.h"

namespace {

const char* FieldType(TalcPathPrivate::DataType::Kind kind) {
  using Kind = TalcPathPrivate::DataType::Kind;
  switch (kind) {
    case Kind::kInt8:
    case Kind::kInt16:
    case Kind::kInt32:
      return "int32";
    case Kind::kInt64:
      return "int64";
    case Kind::kUInt64:
      return "uint64";
    case Kind::kBytes:
      return "bytes";
    default:
      return "uint32";
  }
}

void WriteSymbols(std::ostream& text, const TalcPathPrivate::CommandFormat& format) {
  std::ostringstream rows;
  std::set<std::int32_t> values;
  std::string symbol;
  std::int32_t value = 0;
  bool hasAliases = false;
  for (std::ptrdiff_t i = 0; format.GetSymbolByIndex(i, symbol, value); ++i) {
    rows << "    " << symbol << " = " << value << ";\n";
    if (!values.insert(value).second) hasAliases = true;
  }
  // The option is refused where it is not needed.
  text << "  enum Symbols {\n" << (hasAliases ? "    option allow_alias = true;\n" : "") << rows.str() << "  }\n";
}

}  // namespace

std::string MakeSchemaText() {
  std::ostringstream text;
  text << "syntax = \"proto2\";\n";
  for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands()) {
    text << "message " << name << " {\n";
    int number = 0;
    for (const auto& parameter : format->Parameters())
      text << "  optional " << FieldType(parameter.dataType.GetKind()) << ' ' << parameter.name << " = " << ++number
           << ";\n";
    if (format->GetNumSymbols() > 0) WriteSymbols(text, *format);
    text << "}\n";
  }
  return text.str();
}
