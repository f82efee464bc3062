#include "dictionary/TalcDataCommandFormat.h"

#include <ostream>

#include "dictionary/Log.h"
#include "dictionary/PacketLayout.h"

namespace TalcPathPrivate {

// NOLINTNEXTLINE(bugprone-copy-constructor-init): it is meant that name and parameters stay behind
TalcDataCommandFormat::TalcDataCommandFormat(const TalcDataCommandFormat& other)
    : CommandFormat(), hasVariableLengthData(other.hasVariableLengthData), packetSizes(other.packetSizes) {}

void TalcDataCommandFormat::Clear() {
  CommandFormat::Clear();
  hasVariableLengthData = false;
  packetSizes.sendSize = 0;
  packetSizes.sendPayloadSize = 0;
}

void TalcDataCommandFormat::DumpSizes(std::ostream& stream) const {
  stream << "\nHasVariableLengthData: " << (hasVariableLengthData ? "true" : "false") << "\nPacket Info: "
         << " Send Size: " << std::to_string(packetSizes.sendSize)
         << " Send Payload Size: " << std::to_string(packetSizes.sendPayloadSize)
         << "\n\tRequest Size: " << std::to_string(packetSizes.requestSize)
         << " Request Payload Size: " << std::to_string(packetSizes.requestPayloadSize);
}

void TalcDataCommandFormat::Dump(std::ostream& stream, bool brief) const {
  stream << "\nName: " << name;
  DumpParameters(stream, brief);
  DumpSizes(stream);
}

bool TalcDataCommandFormat::PrecomputePacketSizes() {
  if (HasVariableLengthData()) return true;
  if (ComputePacketLayout(nullptr, this, packetSizes) < 1) {
    LogAlways("\n\nERROR - Talc Command : ", name,
              " Has Fixed-Size Parameter Data but could not precompute packet sizes and data offsets ");
    return false;
  }
  LogVerbose("\nTalc Command ", name, " precomputed packet size information as follows...");
  if (logState.verbose) Dump(LogStream(), false);
  return true;
}

bool TalcDataCommandFormat::GetParameterOffset(const char* parameterName, std::int32_t* offset) const {
  if (parameterName == nullptr || offset == nullptr) return false;
  *offset = -1;
  for (const ParameterFormat& parameter : parameters) {
    if (parameter.isVariableLength || parameter.name != parameterName) continue;
    *offset = parameter.packetPosition.packetOffset;
    return true;
  }
  return false;
}

bool TalcDataCommandFormat::WriteSymbols(std::ostream& stream) const {
  if (symbols.empty()) return true;
  stream << "\n\n /* Enum constants for command " << name << " */"
         << "\nenum " << name << "EnumSymbols"
         << "\n{";
  for (std::ptrdiff_t i = 0; i < std::ssize(symbols); ++i) {
    std::string symbolName;
    std::int32_t value = 0;
    if (!GetSymbolByIndex(i, symbolName, value)) return false;
    stream << (i == 0 ? "" : ",") << "\n\tk_" << symbolName << " = " << std::to_string(value);
  }
  stream << "\n};";
  return true;
}

bool TalcDataCommandFormat::WriteDataDefinition(std::ostream& stream) const {
  if (!WriteSymbols(stream)) return false;
  stream << "\n\n /* Data for command " << name << " */";
  if (parameters.empty()) {
    stream << "\n/* Command has NO DATA */";
    return true;
  }
  stream << "\ntypedef struct _" << name << "\n{";
  for (const ParameterFormat& parameter : parameters)
    if (!parameter.WriteCHeaderField(stream)) return false;
  stream << "\n} " << name << ", *P" << name << ";";
  return true;
}

}  // namespace TalcPathPrivate
