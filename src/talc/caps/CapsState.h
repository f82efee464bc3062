#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "caps/TalcHWCaps.h"
#include "talccaps.h"
#include "talccapsmanager.h"
#include "talcpath.h"

namespace TalcPathPrivate {

/// Carries a command to the hardware and brings its reply; the engine lends the caps its own.
using ExecuteCommand = bool (*)(TalcPath::TalcCommand& command);

/// What the process knows of hardware between the library's start and stop.
struct CapsState {
  /// By hardware type. Shared with no one: handles must be able to tell when it is gone.
  std::map<std::string, std::shared_ptr<TalcHWCaps>, std::less<>> types;
  /// Of hardware that was met, by its conduit base id.
  std::map<std::uint32_t, TalcPath::TalcHWCapsHandle> conduits;
  std::unique_ptr<TalcPath::TalcHWCapsManager> manager;
  /// Null when nothing can be executed.
  ExecuteCommand execute = nullptr;
};
inline CapsState capsState;

/// Reads the program's capabilities or, when there are none or the variable TALCPATHREADDIRS says "TRUE" or "true", the
/// files "*.hwc" of a directory, which is the working one for null. The dictionary must have been read before. False
/// when a text is faulty or names a hardware type that another one has; those before it stay.
bool StartCapabilities(const char* directory, ExecuteCommand execute);
/// Forgets all capabilities and all hardware that was met. Always true.
bool StopCapabilities();
/// Ends the manager; the next one to be asked for is new.
void FreeCapsManager();

/// Keeps a handle under its hardware's id, unless there is one. Tells in the log of an id of 0 and of a null handle,
/// which are not kept.
void AddTalcHWCapsToMap(std::uint32_t conduitBaseId, const TalcPath::TalcHWCapsHandle* caps);

}  // namespace TalcPathPrivate
