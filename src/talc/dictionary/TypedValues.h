#pragma once

#include <cstdint>
#include <string_view>

#include "talcpath.h"

/// The setters and getters of `TalcCommand` under one name, for code that is the same for every integer type.
namespace TalcPathPrivate {

inline bool GetValue(const TalcPath::TalcCommand& command, std::string_view name, std::int8_t& value) {
  return command.GetInt8(name, &value);
}
inline bool GetValue(const TalcPath::TalcCommand& command, std::string_view name, std::uint8_t& value) {
  return command.GetUInt8(name, &value);
}
inline bool GetValue(const TalcPath::TalcCommand& command, std::string_view name, std::int16_t& value) {
  return command.GetInt16(name, &value);
}
inline bool GetValue(const TalcPath::TalcCommand& command, std::string_view name, std::uint16_t& value) {
  return command.GetUInt16(name, &value);
}
inline bool GetValue(const TalcPath::TalcCommand& command, std::string_view name, std::int32_t& value) {
  return command.GetInt32(name, &value);
}
inline bool GetValue(const TalcPath::TalcCommand& command, std::string_view name, std::uint32_t& value) {
  return command.GetUInt32(name, &value);
}
inline bool GetValue(const TalcPath::TalcCommand& command, std::string_view name, std::int64_t& value) {
  return command.GetInt64(name, &value);
}
inline bool GetValue(const TalcPath::TalcCommand& command, std::string_view name, std::uint64_t& value) {
  return command.GetUInt64(name, &value);
}

inline void SetValue(TalcPath::TalcCommand& command, std::string_view name, std::int8_t value) {
  command.SetInt8(name, value);
}
inline void SetValue(TalcPath::TalcCommand& command, std::string_view name, std::uint8_t value) {
  command.SetUInt8(name, value);
}
inline void SetValue(TalcPath::TalcCommand& command, std::string_view name, std::int16_t value) {
  command.SetInt16(name, value);
}
inline void SetValue(TalcPath::TalcCommand& command, std::string_view name, std::uint16_t value) {
  command.SetUInt16(name, value);
}
inline void SetValue(TalcPath::TalcCommand& command, std::string_view name, std::int32_t value) {
  command.SetInt32(name, value);
}
inline void SetValue(TalcPath::TalcCommand& command, std::string_view name, std::uint32_t value) {
  command.SetUInt32(name, value);
}
inline void SetValue(TalcPath::TalcCommand& command, std::string_view name, std::int64_t value) {
  command.SetInt64(name, value);
}
inline void SetValue(TalcPath::TalcCommand& command, std::string_view name, std::uint64_t value) {
  command.SetUInt64(name, value);
}

}  // namespace TalcPathPrivate
