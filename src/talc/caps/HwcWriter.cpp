#include "caps/HwcWriter.h"

#include <ostream>

#include "caps/TalcHWCaps.h"

namespace TalcPathPrivate {
namespace {

using Block = HWCapsConditionBlock;

void WriteOverrides(const TalcHWCaps& caps, std::ostream& stream) {
  stream << "\n\n# BEGIN Command Override Timeout Values (Milliseconds) ; ";
  for (const auto& [command, milliseconds] : caps.overrideTimeouts)
    stream << "\nCmdOverrideTimeout\t" << command << "\t" << std::to_string(milliseconds) << " ;";
  stream << "\n\n# END   Command Override Timeout Values (Milliseconds) ; ";
}

/// The default block has an empty header, which the reader takes for the way back to it.
void WriteHeader(const Block& block, std::ostream& stream) {
  stream << "\n\n# Condition Block Active - lasts until next condition block ;\nConditionBlockBegin ;";
  if (!block.keyname.empty()) stream << "\nConditionKeyname\t" << block.keyname << " ;";
  for (const auto& [command, parameters] : block.Conditions()) {
    for (const auto& [parameter, record] : parameters) {
      stream << "\nCondition\t" << command << "\t" << parameter << "\t";
      if (record.symbol.empty())
        stream << "INTEGER\t" << std::to_string(record.value);
      else
        stream << "SYMBOL\t" << record.symbol;
      stream << " ;";
    }
  }
  stream << "\nConditionBlockEnd ;";
}

bool WriteProperties(const TalcHWCaps& caps, const Block& block, std::ostream& stream) {
  stream << "\n\n# Properties ;\n";
  const TalcHWCaps::Properties* const properties = caps.PropertiesOf(block);
  if (properties == nullptr) return true;
  for (const auto& [name, value] : *properties) {
    stream << "\nProperty\t" << name << "\t";
    if (const std::string* const text = value.As<std::string>())
      stream << "STRING\t" << *text;
    else if (const std::int32_t* const number = value.As<std::int32_t>())
      stream << "INTEGER\t" << std::to_string(*number);
    else
      return false;
    stream << " ;";
  }
  return true;
}

bool WriteValue(const Variant& value, std::ostream& stream) {
  if (const TextList* const symbols = value.As<TextList>()) {
    if (symbols->empty()) return false;
    stream << "\tSymbol\t";
    for (const std::string& symbol : *symbols)
      stream << symbol << " ";
  } else if (const Range* const range = value.As<Range>()) {
    stream << "\tRange\t" << std::to_string(range->first) << "\t" << std::to_string(range->second);
  } else {
    return false;
  }
  // With the blank behind the last symbol there are two of them. White space keeps the ";" off the last word.
  stream << " ;";
  return true;
}

bool WriteCommandValues(const TalcHWCaps& caps, const Block& block, std::ostream& stream) {
  stream << "\n\n# Command Values ;\n";
  const Block* const own = caps.FindSameBlock(block);
  for (const auto& [command, parameters] : caps.AllCommandValues()) {
    for (const auto& [parameter, values] : parameters) {
      const Variant* const value = values.Find(own);
      if (value == nullptr) continue;
      stream << "\nCommandValues\t" << command << "\t" << parameter;
      if (!WriteValue(*value, stream)) return false;
    }
  }
  return true;
}

bool WriteBlock(const TalcHWCaps& caps, const Block& block, std::ostream& stream) {
  WriteHeader(block, stream);
  return WriteProperties(caps, block, stream) && WriteCommandValues(caps, block, stream);
}

}  // namespace

bool WriteHwc(const TalcHWCaps& caps, std::string_view hardwareType, std::ostream& stream) {
  stream << "\n# Generated Talc Hardware Capabilities file ;";
  stream << "\n\nHardwareType\t\t" << hardwareType << " ;";
  WriteOverrides(caps, stream);
  stream << "\n\n# *** Properties & Command Parameter Defined Ranges *** ;\n";
  if (!WriteBlock(caps, caps.DefaultBlock(), stream)) return false;
  for (const auto& block : caps.Blocks())
    if (!WriteBlock(caps, *block, stream)) return false;
  return true;
}

}  // namespace TalcPathPrivate
