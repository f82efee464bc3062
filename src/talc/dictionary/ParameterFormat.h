#pragma once

#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dictionary/DataType.h"
#include "dictionary/PacketSizes.h"
#include "talcpath.h"

namespace TalcPathPrivate {

class Variant;

/// Texts of what is wrong with a definition.
using ErrorList = std::vector<std::string>;

/// True when every character is a letter, a digit or "_"; so also for an empty text.
bool IsValidName(std::string_view text);

/// One data field of a command: its definition, and where the present layout puts it.
class ParameterFormat {
 public:
  ParameterFormat() = default;
  ParameterFormat(std::string_view fieldName, DataType type, bool isRequired)
      : name(fieldName), dataType(std::move(type)), isRequiredForRequestData(isRequired) {}

  /// 1, 2, 4 or 8 bytes, -1 for `BYTES`, 0 for an unknown type word.
  std::int32_t GetSizeFromType() const { return dataType.WireSize(); }
  bool IsValidDataType() const { return GetSizeFromType() != 0; }
  /// True once a layout has given the field a place and at least one byte.
  bool HasValidPacketInfo() const {
    return packetPosition.packetOffset >= 0 && packetPosition.numBytes >= 1 && size >= 1;
  }
  /// Forgets the present layout.
  void Reset() {
    packetPosition = {.packetOffset = -1, .numBytes = -1};
    size = 0;
    isVariableLength = false;
  }

  /// Encodes the command's value of this name at the start of `destination`, most significant byte first. False when
  /// the command has no such value, when a `BYTES` value is empty, and when the value does not fit; nothing is written
  /// then. Throws `bad_variant_cast` when a number's value is of another kind; `BYTES` takes that for no value.
  bool WriteData(std::span<std::uint8_t> destination, const TalcPath::TalcCommand& command) const;
  /// The same at the field's place in a packet. False without a place.
  bool WriteParameterData(std::span<std::uint8_t> packet, const TalcPath::TalcCommand& command) const;
  /// The two above with a value that was looked up already; null is no value.
  bool WriteData(std::span<std::uint8_t> destination, const Variant* value) const;
  bool WriteParameterData(std::span<std::uint8_t> packet, const Variant* value) const;
  /// Decodes a value from the start of `source` into the command and gives the number of bytes taken; 0, and no value,
  /// when there are too few. `BYTES` takes all there are; 0 of them make an empty value.
  std::uint32_t ReadParameterData(std::span<const std::uint8_t> source, TalcPath::TalcCommand& command) const;

  void Dump(std::ostream& stream, bool brief) const;
  /// In the dictionary language.
  void WriteDefinition(std::ostream& stream) const;
  /// Appends a text for each fault. True when there is none.
  bool Validate(ErrorList& errors) const;
  /// As a field of a C struct, wide integers split into bytes. False, and nothing written, for an unknown type.
  bool WriteCHeaderField(std::ostream& stream) const;

  std::string name;
  DataType dataType;
  /// Also travels in a request.
  bool isRequiredForRequestData = false;
  /// In bytes, in the present layout.
  std::int32_t size = -1;
  /// The present layout took the size from a value.
  bool isVariableLength = false;
  PacketPosition packetPosition;
};

}  // namespace TalcPathPrivate
