#include <algorithm>
#include <array>
#include <string_view>

#include "caps/CapsState.h"
#include "caps/CreateMyHWCaps.h"
#include "caps/TextBuffer.h"
#include "talccapsmanager.h"

using TalcPathPrivate::capsState;

namespace TalcPath {

TalcHWCapsManager& TalcHWCapsManager::Get() {
  if (capsState.manager == nullptr) {
    capsState.manager.reset(new TalcHWCapsManager);
    capsState.manager->FindMyCapabilities();
  }
  return *capsState.manager;
}

TalcHWCapsHandle TalcHWCapsManager::GetByName(std::string_view hardwareType) {
  const auto caps = capsState.types.find(hardwareType);
  return caps == capsState.types.end() ? TalcHWCapsHandle() : TalcHWCapsHandle(hardwareType, caps->second);
}

bool TalcHWCapsManager::GetByConduitId(std::uint32_t conduitId, TalcHWCapsHandle* caps) {
  const auto known = capsState.conduits.find(conduitId);
  if (known == capsState.conduits.end() || caps == nullptr) return false;
  *caps = known->second;
  return true;
}

void TalcHWCapsManager::FindMyCapabilities() {
  myCaps_ = TalcPathPrivate::CreateMyHWCaps();
}

const TalcHWCapsHandle& TalcHWCapsManager::GetMyCapabilities() {
  if (!myCaps_) FindMyCapabilities();
  return *myCaps_;
}

void TalcHWCapsManager::SetOverrideProvider(TalcHWCapsOverrideProvider* provider, std::uint32_t conduitId) {
  provider_ = provider;
  providerId_ = conduitId;
}

bool TalcHWCapsManager::HasProviderFor(std::uint32_t conduitId) const {
  return provider_ != nullptr && (conduitId == 0 || conduitId == providerId_);
}

bool TalcHWCapsManager::GetBoolean(const char* property, const TalcHWCapsCondition* condition,
                                   std::uint32_t conduitId) {
  if (property == nullptr) return false;
  bool isTrue = false;
  if (HasProviderFor(conduitId) && provider_->QueryBoolean(property, isTrue, condition, conduitId)) return isTrue;
  std::array<char, 128> buffer{};
  if (!ReadString(property, buffer.data(), buffer.size(), condition, conduitId)) return false;
  const std::string_view word = buffer.data();
  return word == "TRUE" || word == "true" || word == "True";
}

bool TalcHWCapsManager::GetInteger(const char* property, std::int32_t* value, const TalcHWCapsCondition* condition,
                                   std::uint32_t conduitId) {
  if (property == nullptr) return false;
  std::int32_t number = 0;
  if (!HasProviderFor(conduitId) || !provider_->QueryInteger(property, number, condition, conduitId)) {
    // Hardware that was met answers for itself, also when it has no such number; other kinds of properties differ.
    TalcHWCapsHandle known;
    const bool isKnown = GetByConduitId(conduitId, &known);
    if (!(isKnown ? known : GetMyCapabilities()).GetPropertyAsInteger(property, &number, condition)) return false;
  }
  if (value != nullptr) *value = number;
  return true;
}

bool TalcHWCapsManager::GetString(const char* property, char* buffer, std::uint32_t size,
                                  const TalcHWCapsCondition* condition, std::uint32_t conduitId) {
  if (!TalcPathPrivate::ClearBuffer(buffer, size) || property == nullptr) return false;
  if (HasProviderFor(conduitId) && provider_->QueryString(property, buffer, size, condition, conduitId)) return true;
  return ReadString(property, buffer, size, condition, conduitId);
}

/// The attached hardware stands in for one that was met and has no such word.
bool TalcHWCapsManager::ReadString(const char* property, char* buffer, std::uint32_t size,
                                   const TalcHWCapsCondition* condition, std::uint32_t conduitId) {
  TalcHWCapsHandle known;
  if (GetByConduitId(conduitId, &known) && known.GetPropertyAsString(property, size, buffer, condition)) return true;
  return GetMyCapabilities().GetPropertyAsString(property, size, buffer, condition);
}

bool TalcHWCapsManager::PeripheralName(char* buffer, std::uint32_t size, const TalcHWCapsCondition* condition,
                                       std::uint32_t conduitId) {
  if (!GetString("PeripheralName", buffer, size, condition, conduitId)) return false;
  std::replace(buffer, buffer + size, '_', ' ');
  return true;
}

}  // namespace TalcPath

namespace TalcPathPrivate {

void FreeCapsManager() {
  capsState.manager.reset();
}

}  // namespace TalcPathPrivate
