// The two text forms of a command: the dump for people, and the one-line statement of the command log with its reader.

#include <algorithm>
#include <array>
#include <istream>
#include <limits>
#include <ostream>
#include <string>

#include "dictionary/CommandContents.h"
#include "dictionary/Status.h"
#include "talcpath.h"

using TalcPathPrivate::Bytes;
using TalcPathPrivate::CommandContents;
using TalcPathPrivate::ParameterValue;
using TalcPathPrivate::Variant;
using TalcPathPrivate::variant_cast;

namespace TalcPath {
namespace {

constexpr const char* kUnknownType = "Unknown stored variant type - error.";

/// Calls `use` with the type word and the value if it is an integer of up to 32 bits; false for all others.
template <typename T, typename Use>
bool UseIf(const Variant& value, const char* word, Use& use) {
  const T* const held = variant_cast<T>(&value);
  if (held != nullptr) use(word, *held);
  return held != nullptr;
}
template <typename Use>
bool WithShortInteger(const Variant& value, Use use) {
  return UseIf<std::int8_t>(value, "INT8", use) || UseIf<std::uint8_t>(value, "UINT8", use) ||
         UseIf<std::int16_t>(value, "INT16", use) || UseIf<std::uint16_t>(value, "UINT16", use) ||
         UseIf<std::int32_t>(value, "INT32", use) || UseIf<std::uint32_t>(value, "UINT32", use);
}
/// The same for the integers of 64 bits.
template <typename Use>
bool WithLongInteger(const Variant& value, Use use) {
  return UseIf<std::int64_t>(value, "INT64", use) || UseIf<std::uint64_t>(value, "UINT64", use);
}

/// A 64-bit value shows as where its halves lie in memory, low half first. It is meant: what reads the output treats
/// the two as opaque, and the number itself is never shown.
template <typename T>
void WriteHalves(std::ostream& stream, const T& value, const char* before, const char* between) {
  const char* const low = reinterpret_cast<const char*>(&value);
  stream << before << static_cast<const void*>(low) << between << static_cast<const void*>(low + 4);
}

void WriteRaw(std::ostream& stream, const Bytes& bytes) {
  stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void DumpValue(std::ostream& stream, const Variant& value) {
  if (WithShortInteger(value, [&](const char*, auto number) { stream << std::to_string(number); })) return;
  if (WithLongInteger(value,
                      [&](const char*, const auto& number) { WriteHalves(stream, number, " Hi32: ", " Lo32: "); }))
    return;
  if (const Bytes* const bytes = variant_cast<Bytes>(&value)) {
    stream << " Length: " << std::to_string(bytes->size()) << " Bytes: ";
    if (bytes->empty())
      stream << " !@EMPTY@! ";
    else
      WriteRaw(stream, *bytes);
    return;
  }
  // A symbol too: only the statement knows symbols.
  stream << kUnknownType;
}

void WriteValue(std::ostream& stream, const Variant& value) {
  if (WithShortInteger(value, [&](const char* word, auto number) { stream << word << ' ' << std::to_string(number); }))
    return;
  if (WithLongInteger(value, [&](const char* word, const auto& number) {
        stream << word;
        WriteHalves(stream, number, " ", " ");
      }))
    return;
  if (const std::string* const symbol = variant_cast<std::string>(&value)) {
    stream << "SYMBOL " << *symbol;
    return;
  }
  if (const Bytes* const bytes = variant_cast<Bytes>(&value)) {
    stream << "BYTES " << std::to_string(bytes->size()) << ' ';
    WriteRaw(stream, *bytes);
    return;
  }
  stream << kUnknownType;
}

/// Reads a number of type T. What a failed read leaves is used all the same; the stream's state tells of it.
template <typename T>
T ReadNumber(std::istream& stream) {
  T number = 0;
  stream >> number;
  return number;
}

/// Reads `length` bytes behind one separator. The length is the sender's word, so memory grows only with what comes.
bool ReadRaw(std::istream& stream, std::uint32_t length, Bytes& bytes) {
  std::array<char, 4096> piece;
  stream.get();
  while (length > 0 && stream) {
    const std::uint32_t wanted = std::min<std::uint32_t>(length, piece.size());
    stream.read(piece.data(), wanted);
    bytes.insert(bytes.end(), piece.data(), piece.data() + stream.gcount());
    length -= wanted;
  }
  return static_cast<bool>(stream);
}

/// Reads the value behind a type word. An unknown word has none.
void ReadValue(std::istream& stream, const std::string& word, const std::string& name, TalcCommand& command) {
  if (word == "INT8") {
    // As wide numbers, since a character would be read otherwise, and cut: 300 is 44.
    command.SetInt8(name, static_cast<std::int8_t>(ReadNumber<std::int32_t>(stream)));
  } else if (word == "UINT8") {
    command.SetUInt8(name, static_cast<std::uint8_t>(ReadNumber<std::int32_t>(stream)));
  } else if (word == "INT16") {
    command.SetInt16(name, ReadNumber<std::int16_t>(stream));
  } else if (word == "UINT16") {
    command.SetUInt16(name, ReadNumber<std::uint16_t>(stream));
  } else if (word == "INT32") {
    command.SetInt32(name, ReadNumber<std::int32_t>(stream));
  } else if (word == "UINT32") {
    command.SetUInt32(name, ReadNumber<std::uint32_t>(stream));
  } else if (word == "INT64") {
    const auto high = static_cast<std::uint32_t>(ReadNumber<std::int32_t>(stream));
    const std::uint32_t low = ReadNumber<std::uint32_t>(stream);
    command.SetInt64(name, static_cast<std::int64_t>(std::uint64_t{high} << 32 | low));
  } else if (word == "UINT64") {
    const std::uint32_t high = ReadNumber<std::uint32_t>(stream);
    const std::uint32_t low = ReadNumber<std::uint32_t>(stream);
    command.SetUInt64(name, std::uint64_t{high} << 32 | low);
  } else if (word == "BYTES") {
    // A length of 0 stores nothing, although a command can hold an empty value.
    const std::uint32_t length = ReadNumber<std::uint32_t>(stream);
    Bytes bytes;
    if (length != 0 && ReadRaw(stream, length, bytes)) command.SetBytes(name, bytes.data(), length);
  } else if (word == "SYMBOL") {
    std::string symbol;
    stream >> symbol;
    command.SetSymbol(name, symbol);
  }
}

}  // namespace

std::ostream& TalcCommand::Dump(std::ostream& stream) const {
  stream << "\nDump of TalcCommand : "
         << "\nName: " << GetName() << "\nParamters:";  // Spelled so: other programs look for it.
  if (contents_) {
    for (const ParameterValue& parameter : contents_->parameters) {
      stream << "\n\t Param: " << parameter.name << " Type: " << parameter.value.Type().name() << " Value: ";
      DumpValue(stream, parameter.value);
    }
  }
  stream << "\nSend Command: " << std::boolalpha << IsSendCommand()
         << "\nStatus: " << TalcPathPrivate::StatusNameOr(GetStatus(), "UNKNOWN ENUM") << "\n"
         << std::noboolalpha;
  return stream;
}

std::ostream& operator<<(std::ostream& stream, const TalcCommand& command) {
  stream << "\ntalc " << (command.IsSendCommand() ? "send " : "request ") << command.GetName();
  const CommandContents* const contents = ContentsOf(command);
  // A request shows no values, those that it carries included.
  if (command.IsSendCommand() && contents != nullptr) {
    for (const ParameterValue& parameter : contents->parameters) {
      stream << ' ' << parameter.name << ' ';
      WriteValue(stream, parameter.value);
    }
  }
  return stream << " . ;";
}

std::istream& operator>>(std::istream& stream, TalcCommand& command) {
  command.ClearParameters();
  std::string name;
  stream >> name;
  command.SetName(name);
  for (;;) {
    std::string parameter;
    stream >> parameter;
    if (parameter == "." || stream.eof() || parameter.empty()) return stream;
    std::string word;
    stream >> word;
    if (stream.eof() || word.empty()) return stream;
    ReadValue(stream, word, parameter, command);
  }
}

}  // namespace TalcPath
