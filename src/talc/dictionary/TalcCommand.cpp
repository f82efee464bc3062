#include <algorithm>
#include <new>

#include "dictionary/CommandContents.h"
#include "talcpath.h"

using TalcPathPrivate::Bytes;
using TalcPathPrivate::CommandContents;
using TalcPathPrivate::FindExactly;
using TalcPathPrivate::FindValue;
using TalcPathPrivate::SetValue;
using TalcPathPrivate::variant_cast;

namespace TalcPath {
namespace {

/// Symbols of this many characters and more are refused.
constexpr std::size_t kSymbolLimit = 255;

/// What a command shows that found no memory.
const CommandContents& Nothing() {
  static const CommandContents nothing;
  return nothing;
}

std::unique_ptr<CommandContents> MakeContents(const CommandContents* original) {
  try {
    return original != nullptr ? std::make_unique<CommandContents>(*original) : std::make_unique<CommandContents>();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

std::unique_ptr<CommandContents> MakeNamed(std::string_view name) {
  try {
    auto contents = std::make_unique<CommandContents>();
    contents->name = name;
    return contents;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

template <typename T>
bool Get(const TalcCommand& command, std::string_view name, T* value) {
  if (value == nullptr) return false;
  const T* const held = FindExactly<T>(command, name);
  if (held == nullptr) return false;
  *value = *held;
  return true;
}

}  // namespace

TalcCommand::TalcCommand() : contents_(MakeContents(nullptr)) {}
TalcCommand::TalcCommand(std::string_view name) : contents_(MakeNamed(name)) {}
TalcCommand::TalcCommand(std::string_view name, std::uint32_t transportId) : TalcCommand(name) {
  SetTransportId(transportId);
}
TalcCommand::TalcCommand(const TalcCommand& other)
    : contents_(other.contents_ ? MakeContents(other.contents_.get()) : nullptr) {}
TalcCommand::TalcCommand(const TalcCommand& other, std::uint32_t transportId) : TalcCommand(other) {
  SetTransportId(transportId);
}
TalcCommand& TalcCommand::operator=(const TalcCommand& other) {
  TalcCommand copy(other);
  contents_.swap(copy.contents_);
  return *this;
}
TalcCommand::~TalcCommand() = default;

void TalcCommand::SetName(std::string_view name) {
  if (contents_) contents_->name = name;
}
const std::string& TalcCommand::GetName() const {
  return (contents_ ? *contents_ : Nothing()).name;
}
void TalcCommand::SetSendCommand() {
  if (contents_) contents_->isSendCommand = true;
}
void TalcCommand::SetRequestCommand() {
  if (contents_) contents_->isSendCommand = false;
}
bool TalcCommand::IsSendCommand() const {
  return (contents_ ? *contents_ : Nothing()).isSendCommand;
}
bool TalcCommand::IsRequestCommand() const {
  return !IsSendCommand();
}
void TalcCommand::SetTransportId(std::uint32_t transportId) {
  if (contents_) contents_->transportId = transportId;
}
std::uint32_t TalcCommand::GetTransportId() const {
  return (contents_ ? *contents_ : Nothing()).transportId;
}

void TalcCommand::SetStatus(TalcPathStatus status) {
  if (contents_) contents_->status = status;
}
TalcPathStatus TalcCommand::GetStatus() const {
  return (contents_ ? *contents_ : Nothing()).status;
}
const char* TalcCommand::GetStatusName() const {
  return TalcPath::GetStatusName(GetStatus());
}
bool TalcCommand::IsSuccess() const {
  return GetStatus() == kTPSuccess;
}
bool TalcCommand::IsNotSuccess() const {
  return !IsSuccess();
}
bool TalcCommand::IsFail() const {
  return GetStatus() == kTPFail;
}
bool TalcCommand::IsNotSupported() const {
  return GetStatus() == kTPNotSupported;
}
bool TalcCommand::IsTransmitFailure() const {
  return GetStatus() == kTPTransmitFailure;
}
bool TalcCommand::IsTimeOut() const {
  return GetStatus() == kTPTimeOut;
}

void TalcCommand::SetInt8(std::string_view name, std::int8_t value) {
  SetValue(*this, name, value);
}
void TalcCommand::SetUInt8(std::string_view name, std::uint8_t value) {
  SetValue(*this, name, value);
}
void TalcCommand::SetInt16(std::string_view name, std::int16_t value) {
  SetValue(*this, name, value);
}
void TalcCommand::SetUInt16(std::string_view name, std::uint16_t value) {
  SetValue(*this, name, value);
}
void TalcCommand::SetInt32(std::string_view name, std::int32_t value) {
  SetValue(*this, name, value);
}
void TalcCommand::SetUInt32(std::string_view name, std::uint32_t value) {
  SetValue(*this, name, value);
}
void TalcCommand::SetInt64(std::string_view name, std::int64_t value) {
  SetValue(*this, name, value);
}
void TalcCommand::SetUInt64(std::string_view name, std::uint64_t value) {
  SetValue(*this, name, value);
}
void TalcCommand::SetBytes(std::string_view name, const std::uint8_t* bytes, std::uint32_t length) {
  if (contents_) contents_->parameters.SetBytes(name, {bytes, bytes == nullptr ? 0 : length});
}
void TalcCommand::SetSymbol(std::string_view name, std::string_view symbol) {
  // Without a report, and whatever was there stays.
  if (symbol.empty() || symbol.size() >= kSymbolLimit) return;
  SetValue(*this, name, std::string(symbol));
}

bool TalcCommand::GetInt8(std::string_view name, std::int8_t* value) const {
  return Get(*this, name, value);
}
bool TalcCommand::GetUInt8(std::string_view name, std::uint8_t* value) const {
  return Get(*this, name, value);
}
bool TalcCommand::GetInt16(std::string_view name, std::int16_t* value) const {
  return Get(*this, name, value);
}
bool TalcCommand::GetUInt16(std::string_view name, std::uint16_t* value) const {
  return Get(*this, name, value);
}
bool TalcCommand::GetInt32(std::string_view name, std::int32_t* value) const {
  return Get(*this, name, value);
}
bool TalcCommand::GetUInt32(std::string_view name, std::uint32_t* value) const {
  return Get(*this, name, value);
}
bool TalcCommand::GetInt64(std::string_view name, std::int64_t* value) const {
  return Get(*this, name, value);
}
bool TalcCommand::GetUInt64(std::string_view name, std::uint64_t* value) const {
  return Get(*this, name, value);
}

bool TalcCommand::GetBytesLength(std::string_view name, std::uint32_t* length) const {
  if (length == nullptr) return false;
  const Bytes* const bytes = FindExactly<Bytes>(*this, name);
  if (bytes == nullptr) return false;
  *length = static_cast<std::uint32_t>(bytes->size());
  return true;
}

bool TalcCommand::GetBytes(std::string_view name, std::uint8_t* destination, std::uint32_t capacity,
                           std::uint32_t* length) const {
  const Bytes* const bytes = FindExactly<Bytes>(*this, name);
  if (bytes == nullptr) return false;
  // The length is told even when the value does not fit.
  if (length != nullptr) *length = static_cast<std::uint32_t>(bytes->size());
  if (bytes->size() > capacity || (destination == nullptr && !bytes->empty())) return false;
  std::copy(bytes->begin(), bytes->end(), destination);
  return true;
}

bool TalcCommand::GetBytesPointer(std::string_view name, const std::uint8_t** bytes, std::uint32_t* length) const {
  if (bytes == nullptr || length == nullptr) return false;
  const Bytes* const found = variant_cast<Bytes>(FindValue(*this, name));
  if (found == nullptr || found->empty()) return false;
  *bytes = found->data();
  *length = static_cast<std::uint32_t>(found->size());
  return true;
}

bool TalcCommand::IsSymbol(std::string_view name) const {
  return variant_cast<std::string>(FindValue(*this, name)) != nullptr;
}

bool TalcCommand::IsParameterEqualToSymbolName(std::string_view name, std::string_view symbol) const {
  const std::string* const found = variant_cast<std::string>(FindValue(*this, name));
  return found != nullptr && *found == symbol;
}

bool TalcCommand::GetSymbol(std::string_view name, char* buffer, std::uint32_t capacity) const {
  const std::string* const found = variant_cast<std::string>(FindValue(*this, name));
  if (buffer == nullptr || found == nullptr || found->size() > capacity) return false;
  std::fill_n(buffer, capacity, '\0');
  std::copy(found->begin(), found->end(), buffer);
  return true;
}

bool TalcCommand::HasParameter(std::string_view name) const {
  return FindValue(*this, name) != nullptr;
}

void TalcCommand::ClearParameters() {
  if (contents_) contents_->parameters.Clear();
}

}  // namespace TalcPath
