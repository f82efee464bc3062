#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

#include "dictionary/DiagCommandFormat.h"
#include "dictionary/TalcCommandFormat.h"

/// Definitions with codes that no dictionary can give, in the table of defined commands.
namespace engine_test {

class HandmadeTalc final : public TalcPathPrivate::TalcCommandFormat {
 public:
  explicit HandmadeTalc(const TalcPathPrivate::CommandType& type) { commandType = type; }
};

class HandmadeDiag final : public TalcPathPrivate::DiagCommandFormat {
 public:
  explicit HandmadeDiag(std::int16_t opcode) { diagOpcode = opcode; }
};

/// Lays the definition out and hands it to the table. True when the table took it.
inline bool Define(std::unique_ptr<TalcPathPrivate::CommandFormat> format, std::string_view name) {
  format->SetName(name);
  if (!format->PrecomputePacketSizes() || !format->AddToDefinedCommands()) return false;
  static_cast<void>(format.release());
  return true;
}

}  // namespace engine_test
