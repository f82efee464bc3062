#include "engine/Transports.h"

#include <cstdint>
#include <iterator>
#include <map>
#include <optional>

#include "dictionary/DefinedCommands.h"
#include "talcpath.h"

namespace TalcPathPrivate {
namespace {

struct TransportState {
  TalcPath::TalcTransport* current = nullptr;
  /// Nothing before the first registration, which is not the same as empty.
  std::optional<std::map<std::uint32_t, TalcPath::TalcTransport*>> registered;
};
TransportState transports;

bool IsRegistered(const TalcPath::TalcTransport* transport) {
  for (const auto& [id, registered] : *transports.registered)
    if (registered == transport) return true;
  return false;
}

void ClearOverrideTimeouts() {
  if (const CommandTable* const commands = DefinedCommands())
    for (const auto& [name, format] : *commands)
      format->SetOverrideTimeoutMillisec(0);
}

}  // namespace

void ForgetTransports() {
  transports = {};
}

}  // namespace TalcPathPrivate

namespace TalcPath {

using TalcPathPrivate::transports;

StackBasedMutexCaller::StackBasedMutexCaller(TalcTransport* transport) : transport_(transport) {
  if (transport_ != nullptr) transport_->Lock();
}

StackBasedMutexCaller::~StackBasedMutexCaller() {
  if (transport_ != nullptr) transport_->Unlock();
}

bool TalcPathRegisterTransport(TalcTransport* transport, std::uint32_t id) {
  // Whatever becomes of the registration, commands go to this one from now on. It is meant.
  transports.current = transport;
  if (!transports.registered) transports.registered.emplace();
  return transport != nullptr && transports.registered->try_emplace(id, transport).second;
}

bool TalcPathUnregisterTransport(TalcTransport* transport, std::uint32_t id) {
  if (!transports.registered || transport == nullptr) return false;
  if (transports.registered->erase(id) != 0 && transports.current == transport) transports.current = nullptr;
  return true;
}

bool TalcPathSelectTransport(TalcTransport* transport) {
  if (transport != nullptr && transports.registered && !TalcPathPrivate::IsRegistered(transport)) return false;
  {
    const StackBasedMutexCaller lock(transports.current);
    transports.current = transport;
  }
  // A manager that comes into being here asks the hardware twice. It is meant: each of the two is to ask.
  TalcHWCapsManager& manager = TalcHWCapsManager::Get();
  manager.FindMyCapabilities();
  const StackBasedMutexCaller lock(transport);
  TalcPathPrivate::ClearOverrideTimeouts();
  manager.GetMyCapabilities().ApplyOverrideTimeouts();
  return true;
}

TalcTransport* TalcPathGetTransport() {
  return transports.current;
}

TalcTransport* TalcPathGetTransportById(std::uint32_t id) {
  if (id == 0 || !transports.registered) return nullptr;
  const auto found = transports.registered->find(id);
  return found == transports.registered->end() ? nullptr : found->second;
}

std::uint32_t TalcPathGetTransportCount() {
  return transports.registered ? static_cast<std::uint32_t>(transports.registered->size()) : 0;
}

TalcTransport* TalcPathGetNthTransport(std::uint32_t n, std::uint32_t* id) {
  if (n == 0 || n > TalcPathGetTransportCount()) return nullptr;
  const auto nth = std::next(transports.registered->begin(), n - 1);
  if (id != nullptr) *id = nth->first;
  return nth->second;
}

}  // namespace TalcPath
