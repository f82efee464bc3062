#pragma once

#include <cstdint>
#include <iosfwd>

#include "dictionary/CommandFormat.h"
#include "dictionary/PacketSizes.h"

namespace TalcPathPrivate {

/// A command that has a packet.
///
/// Copy construction takes the sizes and the length flag but neither name nor parameters; assignment takes those, too.
/// It has always been so, and what copies formats knows it.
class TalcDataCommandFormat : public CommandFormat {
 public:
  TalcDataCommandFormat() = default;
  TalcDataCommandFormat(const TalcDataCommandFormat& other);
  TalcDataCommandFormat& operator=(const TalcDataCommandFormat& other) = default;

  void SetHasVariableLengthData(bool flag) override { hasVariableLengthData = flag; }
  /// Leaves the request sizes as they are.
  void Clear() override;
  bool HasVariableLengthData() const override { return hasVariableLengthData; }
  void Dump(std::ostream& stream, bool brief) const override;
  bool PrecomputePacketSizes() override;
  bool HasCommandCodes() const override { return true; }
  bool WriteCommandCodes(std::ostream&) const override { return true; }
  bool HasDataDefinition() const override { return true; }
  bool WriteDataDefinition(std::ostream& stream) const override;

  /// What a load or the last layout gave; zeros for a length that depends on a value.
  const PacketSizes& GetPacketSizes() const { return packetSizes; }
  /// The offset of a parameter of fixed size, or -1 and false.
  bool GetParameterOffset(const char* parameterName, std::int32_t* offset) const;

 protected:
  void DumpSizes(std::ostream& stream) const;

  bool hasVariableLengthData = false;
  PacketSizes packetSizes;

 private:
  bool WriteSymbols(std::ostream& stream) const;
};

}  // namespace TalcPathPrivate
