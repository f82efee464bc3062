#pragma once

#include <cstdint>
#include <initializer_list>

/// The arguments of a command: named values that go to the hardware, and named places for values that come back.
///
///     std::uint16_t size = 0;
///     helper.ExecuteCommand("VPDInfo", {Argument::Symbol("Board", "VPD_Brox"), Argument::OutUInt16("VPDSize",
///     &size)});
///
/// Inputs stand first: the first output ends them, and an input behind it is left out without a word.

/// What an argument carries. The numbers are fixed.
enum class ArgumentTag : std::uint32_t {
  kText = 0,  ///< a symbol of the command, or a text
  kInt8 = 1,
  kUInt8 = 2,
  kInt16 = 3,
  kUInt16 = 4,
  kInt32 = 5,
  kUInt32 = 6,
  kInt64 = 7,
  kUInt64 = 8,
  kBytes = 9,
  kOutInt8 = 10,
  kOutUInt8 = 11,
  kOutInt16 = 12,
  kOutUInt16 = 13,
  kOutInt32 = 14,
  kOutUInt32 = 15,
  kOutInt64 = 16,
  kOutUInt64 = 17,
  kOutBytes = 18,
};

/// One argument. Names, texts, bytes and places belong to the caller and outlive the call.
struct Argument {
  const char* name;  ///< null ends the list before its end
  ArgumentTag tag;
  std::uint32_t word = 0;       ///< the number, its low bits where the type is narrower
  const void* input = nullptr;  ///< text with a terminator, or bytes
  void* place = nullptr;        ///< where an output goes
  std::uint32_t sizeBytes = 0;  ///< number of bytes, or room for them

  static Argument Symbol(const char* name, const char* symbol) { return {name, ArgumentTag::kText, 0, symbol}; }
  static Argument Int8(const char* name, std::int8_t value) { return Number(name, ArgumentTag::kInt8, value); }
  static Argument UInt8(const char* name, std::uint8_t value) { return {name, ArgumentTag::kUInt8, value}; }
  static Argument Int16(const char* name, std::int16_t value) { return Number(name, ArgumentTag::kInt16, value); }
  static Argument UInt16(const char* name, std::uint16_t value) { return {name, ArgumentTag::kUInt16, value}; }
  static Argument Int32(const char* name, std::int32_t value) { return Number(name, ArgumentTag::kInt32, value); }
  static Argument UInt32(const char* name, std::uint32_t value) { return {name, ArgumentTag::kUInt32, value}; }
  /// Both 64-bit types carry one word and extend its sign, so that a UINT64 of 0x80000000 or more cannot pass. Meant
  /// so: it is the interface's limit.
  static Argument Int64(const char* name, std::int32_t value) { return Number(name, ArgumentTag::kInt64, value); }
  static Argument UInt64(const char* name, std::int32_t value) { return Number(name, ArgumentTag::kUInt64, value); }
  static Argument Bytes(const char* name, const std::uint8_t* bytes, std::uint32_t sizeBytes) {
    return {name, ArgumentTag::kBytes, 0, bytes, nullptr, sizeBytes};
  }

  static Argument OutInt8(const char* name, std::int8_t* place) { return Out(name, ArgumentTag::kOutInt8, place); }
  static Argument OutUInt8(const char* name, std::uint8_t* place) { return Out(name, ArgumentTag::kOutUInt8, place); }
  static Argument OutInt16(const char* name, std::int16_t* place) { return Out(name, ArgumentTag::kOutInt16, place); }
  static Argument OutUInt16(const char* name, std::uint16_t* place) {
    return Out(name, ArgumentTag::kOutUInt16, place);
  }
  static Argument OutInt32(const char* name, std::int32_t* place) { return Out(name, ArgumentTag::kOutInt32, place); }
  static Argument OutUInt32(const char* name, std::uint32_t* place) {
    return Out(name, ArgumentTag::kOutUInt32, place);
  }
  static Argument OutInt64(const char* name, std::int64_t* place) { return Out(name, ArgumentTag::kOutInt64, place); }
  static Argument OutUInt64(const char* name, std::uint64_t* place) {
    return Out(name, ArgumentTag::kOutUInt64, place);
  }
  /// A value that is longer than `capacityBytes` is a failure, not a cut.
  static Argument OutBytes(const char* name, void* place, std::uint32_t capacityBytes) {
    return {name, ArgumentTag::kOutBytes, 0, nullptr, place, capacityBytes};
  }

 private:
  static Argument Number(const char* name, ArgumentTag tag, std::int32_t value) {
    return {name, tag, static_cast<std::uint32_t>(value)};
  }
  static Argument Out(const char* name, ArgumentTag tag, void* place) { return {name, tag, 0, nullptr, place}; }
};

using Arguments = std::initializer_list<Argument>;
