#include "dictionary/ParameterFormat.h"

#include <algorithm>
#include <ostream>
#include <type_traits>

#include "dictionary/CommandContents.h"
#include "dictionary/Log.h"

using TalcPath::TalcCommand;

namespace TalcPathPrivate {
namespace {

bool IsNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

const char* Word(bool flag) {
  return flag ? "true" : "false";
}

template <typename T>
void StoreBigEndian(std::uint8_t* destination, T value) {
  auto bits = static_cast<std::make_unsigned_t<T>>(value);
  for (std::size_t i = sizeof(T); i-- > 0;) {
    destination[i] = static_cast<std::uint8_t>(bits);
    if constexpr (sizeof(T) > 1) bits = static_cast<std::make_unsigned_t<T>>(bits >> 8);
  }
}

template <typename T>
T LoadBigEndian(const std::uint8_t* source) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i)
    bits = bits << 8 | source[i];
  return static_cast<T>(bits);
}

/// The number of bytes written, 0 when there is no room for them.
template <typename T>
std::size_t WriteInteger(std::span<std::uint8_t> destination, const Variant& value) {
  const T* const held = value.As<T>();
  if (held == nullptr) throw TalcPath::bad_variant_cast();
  if (destination.size() < sizeof(T)) return 0;
  StoreBigEndian(destination.data(), *held);
  return sizeof(T);
}

std::size_t WriteBytes(std::span<std::uint8_t> destination, const Variant& value) {
  // Empty, it counts as missing, and so does a value of another kind.
  const Bytes* const bytes = value.As<Bytes>();
  if (bytes == nullptr || destination.size() < bytes->size()) return 0;
  std::copy(bytes->begin(), bytes->end(), destination.begin());
  return bytes->size();
}

inline bool WriteValue(const DataType& type, std::span<std::uint8_t> destination, const Variant* value) {
  if (destination.data() == nullptr || value == nullptr) return false;
  const std::size_t written =
      type.IsBytes()
          ? WriteBytes(destination, *value)
          : type.WithInteger(
                [&]<typename T>(std::type_identity<T>) -> std::size_t { return WriteInteger<T>(destination, *value); },
                0);
  if (written == 0) return false;
  LogTrace(" NumBytes: ", written);
  return true;
}

template <typename T>
std::uint32_t ReadInteger(std::span<const std::uint8_t> source, TalcCommand& command, std::string_view name) {
  if (source.size() < sizeof(T)) return 0;
  SetValue(command, name, LoadBigEndian<T>(source.data()));
  return sizeof(T);
}

}  // namespace

bool IsValidName(std::string_view text) {
  return std::all_of(text.begin(), text.end(), IsNameCharacter);
}

bool ParameterFormat::WriteData(std::span<std::uint8_t> destination, const Variant* value) const {
  return WriteValue(dataType, destination, value);
}

bool ParameterFormat::WriteData(std::span<std::uint8_t> destination, const TalcCommand& command) const {
  return WriteData(destination, FindValue(command, name));
}

bool ParameterFormat::WriteParameterData(std::span<std::uint8_t> packet, const Variant* value) const {
  if (!HasValidPacketInfo()) return false;
  LogTrace("\n\tWriting Parameter : ", name, " Type : ", dataType.Word());
  if (packetPosition.numBytes != size) {
    LogTrace("\nERROR - WritingParameterData - write for fixed size data is not equal to total size");
    return false;
  }
  const auto offset = static_cast<std::size_t>(packetPosition.packetOffset);
  return offset <= packet.size() && WriteValue(dataType, packet.subspan(offset), value);
}

bool ParameterFormat::WriteParameterData(std::span<std::uint8_t> packet, const TalcCommand& command) const {
  return WriteParameterData(packet, FindValue(command, name));
}

std::uint32_t ParameterFormat::ReadParameterData(std::span<const std::uint8_t> source, TalcCommand& command) const {
  if (!IsValidDataType()) return 0;
  LogTrace("\n\tReading Parameter : ", name, " Type : ", dataType.Word());
  if (dataType.IsBytes()) {
    const auto length = static_cast<std::uint32_t>(source.size());
    if (CommandContents* const contents = ContentsOf(command)) contents->parameters.SetBytes(name, source);
    LogTrace(" NumBytes: ", length);
    return length;
  }
  const std::uint32_t taken =
      dataType.WithInteger([&]<typename T>(std::type_identity<T>) { return ReadInteger<T>(source, command, name); }, 0);
  if (taken != 0) LogTrace(" NumBytes: ", taken);
  return taken;
}

void ParameterFormat::Dump(std::ostream& stream, bool brief) const {
  stream << "\n\tParameter: " << name << " Type: " << dataType.Word()
         << " IsRequiredForRequestData: " << Word(isRequiredForRequestData);
  if (brief) return;
  stream << "\n\t\tPacket Offset: " << std::to_string(packetPosition.packetOffset)
         << "\n\t\tNum Bytes For Packet Position: " << std::to_string(packetPosition.numBytes)
         << "\n\t\tSize: " << std::to_string(size) << "\n\t\tVariable Length: " << Word(isVariableLength);
}

void ParameterFormat::WriteDefinition(std::ostream& stream) const {
  stream << "\nDataName\t" << name << (isRequiredForRequestData ? "\tRD" : "") << "\nDataType\t" << dataType.Word();
}

bool ParameterFormat::Validate(ErrorList& errors) const {
  const std::size_t before = errors.size();
  if (name.empty()) errors.emplace_back("DataName is empty");
  if (!IsValidName(name)) errors.emplace_back("DataName is an invalid string");
  if (!IsValidDataType()) errors.emplace_back("DataType is not valid");
  return errors.size() == before;
}

bool ParameterFormat::WriteCHeaderField(std::ostream& stream) const {
  switch (dataType.GetKind()) {
    case DataType::Kind::kUnknown:
      return false;
    case DataType::Kind::kInt8:
      stream << "\n\tchar " << name << ";";
      return true;
    case DataType::Kind::kUInt8:
      stream << "\n\tunsigned char " << name << ";";
      return true;
    case DataType::Kind::kBytes:
      stream << "\n\tunsigned char " << name << "[1]; /* variable length */";
      return true;
    default:
      break;
  }
  // One field a byte, named after the bits that it holds, so that the struct needs neither swapping nor packing.
  const std::int32_t bits = GetSizeFromType() * 8;
  for (std::int32_t high = bits - 1; high > 0; high -= 8) {
    stream << "\n\tunsigned char " << name << "_" << std::to_string(high) << "_" << std::to_string(high - 7) << ";";
    if (high == bits - 1) stream << " /* " << dataType.Word() << " */";
  }
  return true;
}

}  // namespace TalcPathPrivate
