#include "caps/CreateMyHWCaps.h"

#include <cstdint>
#include <optional>
#include <string>

#include "caps/CapsState.h"
#include "dictionary/CommandContents.h"
#include "dictionary/Log.h"
#include "talcpath.h"

namespace TalcPathPrivate {
namespace {

using TalcPath::TalcCommand;
using TalcPath::TalcHWCapsHandle;
using TalcPath::TalcHWCapsManager;

TalcCommand Request(const char* name) {
  TalcCommand command(name);
  command.SetRequestCommand();
  return command;
}

/// A dictionary that takes a value for another kind is as hardware that does not answer.
bool Execute(TalcCommand& command) {
  try {
    return capsState.execute != nullptr && capsState.execute(command);
  } catch (const TalcPath::bad_variant_cast&) {
    return false;
  }
}

/// The value's text up to its first zero byte.
std::string TextOf(const Bytes& value) {
  return std::string(value.begin(), value.end()).c_str();
}

/// Nothing when the hardware does not tell.
std::optional<TalcHWCapsHandle> AskMyself() {
  TalcCommand command = Request("HardwareTypeID");
  if (!Execute(command)) return std::nullopt;
  const auto* const type = variant_cast<Bytes>(FindValue(command, "TypeID"));
  if (type == nullptr || type->empty()) return std::nullopt;
  return TalcHWCapsManager::GetByName(TextOf(*type));
}

/// 0 when the hardware does not tell. A failed command lacks its value, too, so that both lines come.
std::uint8_t AskSubcomponentCount() {
  TalcCommand command = Request("HardwareSubcompCount");
  if (!Execute(command)) LogAlways("CreateMyHWCaps - HardwareSubcompCount command failed");
  const auto* const count = variant_cast<std::uint8_t>(FindValue(command, "NumSubcomponents"));
  if (count != nullptr) return *count;
  LogAlways("CreateMyHWCaps - HardwareSubcompCount command failed to get NumSubcomponents");
  return 0;
}

/// Empty when the hardware does not tell, with both lines as above.
std::string AskSubcomponent(std::uint8_t n) {
  /// With two bytes to spare in a buffer of 128, as it has always been.
  constexpr std::size_t kLongestType = 126;
  TalcCommand command = Request("HardwareSubcompInfo");
  command.SetUInt8("NthSubcomponent", n);
  if (!Execute(command)) LogAlways("CreateMyHWCaps - HardwareSubcompInfo command failed");
  const auto* const type = variant_cast<Bytes>(FindValue(command, "TypeID"));
  if (type == nullptr) {
    LogAlways("CreateMyHWCaps - HardwareSubcompInfo command failed to get TypeID");
  } else if (type->size() > kLongestType) {
    LogAlways("CreateMyHWCaps - TypeID too large for local buffer");
  } else {
    return TextOf(*type);
  }
  return "";
}

/// The hardware type whose capabilities a sub component brings; null for one that brings none.
const char* OptionOf(const std::string& type) {
  if (type == "HD Board" || type == "HDBoard") return "HDBoard";
  if (type == "Codec Module : ID 0x7") return "AVCIboard";
  return nullptr;
}

void MergeSubcomponents(const TalcHWCapsHandle& caps) {
  const std::uint8_t count = AskSubcomponentCount();
  for (std::uint8_t n = 0; n < count; ++n) {
    const char* const option = OptionOf(AskSubcomponent(n));
    // The text is the same for every kind of sub component.
    if (option != nullptr && !caps.Merge(TalcHWCapsManager::GetByName(option)))
      LogAlways("CreateMyHWCaps - HWCaps for HD Board not found");
  }
}

}  // namespace

TalcHWCapsHandle CreateMyHWCaps() {
  const std::optional<TalcHWCapsHandle> caps = AskMyself();
  if (!caps) {
    LogAlways("\nTalcHWCapsManager::CreateMyHWCaps No HWCaps file found setting to NULL");
    return TalcHWCapsManager::GetByName("NULL");
  }
  std::int32_t baseId = 0;
  caps->GetPropertyAsInteger("TalcConduitBaseID", &baseId);
  TalcHWCapsHandle known;
  if (TalcHWCapsManager::GetByConduitId(static_cast<std::uint32_t>(baseId), &known)) return known;
  AddTalcHWCapsToMap(static_cast<std::uint32_t>(baseId), &*caps);
  // Hardware that does not say is asked.
  std::int32_t hasSubcomponents = 1;
  caps->GetPropertyAsInteger("HasHardwareSubcompCount", &hasSubcomponents);
  if (hasSubcomponents != 0) MergeSubcomponents(*caps);
  return *caps;
}

}  // namespace TalcPathPrivate
