#include "caps/CapsState.h"

#include <istream>
#include <optional>
#include <sstream>
#include <utility>

#include "caps/HwcReader.h"
#include "dictionary/Log.h"
#include "dictionary/TextSources.h"
#include "platform/Platform.h"

namespace TalcPathPrivate {
namespace {

bool ReadCapabilities(std::istream& stream, std::string_view name) {
  auto caps = std::make_shared<TalcHWCaps>();
  if (!ReadHwc(*caps, stream, name)) return false;
  const std::string type = caps->hardwareType;
  if (capsState.types.try_emplace(type, std::move(caps)).second) return true;
  LogAlways("\n\nERROR - Duplicate HardwareTypeID in file : ", name, " HardwareTypeID : ", type);
  return false;
}

/// "True" is not among the words, and meant not to be.
bool IsToReadDirectories() {
  const std::optional<std::string> variable = platform::Current().files().GetEnvironmentVariableA("TALCPATHREADDIRS");
  std::istringstream words(variable.value_or(""));
  std::string word;
  words >> word;
  return word == "TRUE" || word == "true";
}

}  // namespace

bool StartCapabilities(const char* directory, ExecuteCommand execute) {
  StopCapabilities();
  capsState.execute = execute;
  if (!IsToReadDirectories()) {
    bool isFound = false;
    const bool isGood = ReadTextBlocks("RT_HWC_FILE", ReadCapabilities, isFound);
    if (isFound) return isGood;
  }
  return ReadFiles(DirectoryPath(directory == nullptr ? "./" : directory), ".hwc", ReadCapabilities);
}

bool StopCapabilities() {
  // Nothing is left that refers to what goes.
  if (capsState.manager != nullptr) capsState.manager->myCaps_.reset();
  capsState.conduits.clear();
  capsState.types.clear();
  capsState.execute = nullptr;
  return true;
}

void AddTalcHWCapsToMap(std::uint32_t conduitBaseId, const TalcPath::TalcHWCapsHandle* caps) {
  if (conduitBaseId == 0 || caps == nullptr)
    LogAlways("TalcHWCapsManager::AddTalcHWCapsToMap - Failed to AddTalcHWCapsToMap");
  else
    capsState.conduits.try_emplace(conduitBaseId, *caps);
}

}  // namespace TalcPathPrivate
