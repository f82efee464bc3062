#include <string>

#include "caps/ConditionBlock.h"
#include "caps/TextBuffer.h"
#include "talccaps.h"

using TalcPathPrivate::ClearBuffer;
using TalcPathPrivate::CopyWhole;
using TalcPathPrivate::HWCapsConditionBlock;
using TalcPathPrivate::HWCapsConditionRecord;

namespace TalcPath {

TalcHWCapsCondition::TalcHWCapsCondition() : block_(std::make_unique<HWCapsConditionBlock>()) {}

TalcHWCapsCondition::TalcHWCapsCondition(const TalcHWCapsCondition& other)
    : block_(std::make_unique<HWCapsConditionBlock>(*other.block_)) {}

TalcHWCapsCondition& TalcHWCapsCondition::operator=(const TalcHWCapsCondition& other) {
  block_ = std::make_unique<HWCapsConditionBlock>(*other.block_);
  return *this;
}

TalcHWCapsCondition::~TalcHWCapsCondition() = default;

bool TalcHWCapsCondition::AddIntegerCondition(std::string_view command, std::string_view parameter,
                                              std::int32_t value) {
  return block_->AddIntegerCondition(command, parameter, value);
}

bool TalcHWCapsCondition::AddSymbolCondition(std::string_view command, std::string_view parameter,
                                             std::string_view symbol) {
  return block_->AddSymbolCondition(command, parameter, symbol);
}

void TalcHWCapsCondition::RemoveCondition(std::string_view command, std::string_view parameter) {
  block_->RemoveCondition(command, parameter);
}

std::uint32_t TalcHWCapsCondition::GetConditionCount() const {
  return static_cast<std::uint32_t>(block_->ConditionCount());
}

bool TalcHWCapsCondition::GetNthCondition(std::int32_t n, char* command, std::uint32_t commandSize, char* parameter,
                                          std::uint32_t parameterSize, char* symbol, std::uint32_t symbolSize,
                                          std::int32_t* value) const {
  // Each is cleared, whatever the others are.
  const bool hasCommand = ClearBuffer(command, commandSize);
  const bool hasParameter = ClearBuffer(parameter, parameterSize);
  const bool hasSymbol = ClearBuffer(symbol, symbolSize);
  if (!hasCommand || !hasParameter || !hasSymbol || value == nullptr || n < 0) return false;
  for (const auto& [name, records] : block_->Conditions()) {
    for (const auto& [key, record] : records) {
      if (n-- > 0) continue;
      if (!CopyWhole(name, command, commandSize) || !CopyWhole(record.parameter, parameter, parameterSize) ||
          !CopyWhole(record.symbol, symbol, symbolSize))
        return false;
      *value = record.value;
      return true;
    }
  }
  return false;
}

bool TalcHWCapsCondition::HasCondition(std::string_view command, std::string_view parameter) const {
  return block_->Find(command, parameter) != nullptr;
}

bool TalcHWCapsCondition::GetConditionValue(std::string_view command, std::string_view parameter,
                                            std::int32_t* value) const {
  const HWCapsConditionRecord* const record = block_->Find(command, parameter);
  if (record == nullptr || value == nullptr) return false;
  *value = record->value;
  return true;
}

bool TalcHWCapsCondition::IsEqual(const TalcHWCapsCondition& other) const {
  return block_->HasSameConditions(*other.block_);
}

}  // namespace TalcPath
