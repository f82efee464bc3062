#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "dictionary/ParameterValues.h"
#include "talcpath.h"

namespace TalcPathPrivate {

/// What a `TalcPath::TalcCommand` is a handle of.
struct CommandContents {
  std::string name;
  ParameterValues parameters;
  bool isSendCommand = true;
  std::uint32_t transportId = 0;
  TalcPath::TalcPathStatus status = TalcPath::kTPFail;
};

}  // namespace TalcPathPrivate

namespace TalcPath {

/// Null for a command that found no memory when it was constructed.
inline TalcPathPrivate::CommandContents* ContentsOf(const TalcCommand& command) {
  return command.contents_.get();
}

}  // namespace TalcPath

namespace TalcPathPrivate {

inline bool IsRequest(const TalcPath::TalcCommand& command) {
  const CommandContents* const contents = ContentsOf(command);
  return contents != nullptr && !contents->isSendCommand;
}

/// The value of that name, or null.
inline const Variant* FindValue(const TalcPath::TalcCommand& command, std::string_view name) {
  const CommandContents* const contents = ContentsOf(command);
  return contents == nullptr ? nullptr : contents->parameters.Find(name);
}

/// The value of that name where it is, or null when there is none. Throws `bad_variant_cast` for another kind than T.
template <typename T>
const T* FindExactly(const TalcPath::TalcCommand& command, std::string_view name) {
  const Variant* const value = FindValue(command, name);
  if (value == nullptr) return nullptr;
  const T* const held = value->As<T>();
  if (held == nullptr) throw TalcPath::bad_variant_cast();
  return held;
}

template <typename T>
void SetValue(TalcPath::TalcCommand& command, std::string_view name, T value) {
  if (CommandContents* const contents = ContentsOf(command)) contents->parameters.Set(name, std::move(value));
}

}  // namespace TalcPathPrivate
