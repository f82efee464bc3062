#include "board/MorvakHelper.h"

#include "board/DeviceDiscovery.h"
#include "board/DriverRecords.h"
#include "errorException.h"

MorvakHelper::~MorvakHelper() {
  if (device_ != 0) CloseMorvakDevice(device_);
}

bool MorvakHelper::Open() {
  // Silence on failure is how the factory finds out that the hardware is not there.
  if (OpenMorvakDevice(DeviceKind::kMorvak, 0, device_) != kHWCerr_None) return false;

  MorvakModelInfo info{};
  std::uint32_t returned = 0;
  if (MorvakIoControl(device_, IOCTL_GetMorvakModel, nullptr, 0, &info, sizeof info, returned) != kHWCerr_None)
    throw errorException("MorvakHelper::Open can't get Morvak model - ioctl failed.");
  if (info.model == 4) boardKind = BoardKind::kMorvakModel4;
  if (info.model == 5) boardKind = BoardKind::kMorvakModel5;
  return true;
}

HwcStatus MorvakHelper::IOCTL_TransactBoBCommand(const std::uint8_t*, std::uint32_t, std::uint8_t*, std::uint32_t*,
                                                 std::uint32_t, std::uint32_t) {
  throw errorException("MorvakHelper: commands cannot be sent to an Orbo QX yet.");
}

bool MorvakHelper::IsCodecPresent(std::int32_t slot) {
  if (slot < 0 || slot > 2) throw errorException("MorvakHelper: Query of invalid codec.");

  MorvakModelInfo info{};
  std::uint32_t returned = 0;
  if (MorvakIoControl(device_, IOCTL_GetMorvakModel, nullptr, 0, &info, sizeof info, returned) != kHWCerr_None)
    return false;
  switch (info.codecSlots) {
    case 0:
      return false;
    case 1:
      if (slot == 1) return false;
      break;
    case 2:
      break;
    default:
      throw errorException("MorvakHelper: Invalid number of codec slots.");
  }

  const ModuleInfoRequest request{slot == 1 ? 1u : 0u};
  ModuleInfoResponse response{};
  if (MorvakIoControl(device_, IOCTL_QueryCodecSlot, &request, sizeof request, &response, sizeof response, returned) !=
      kHWCerr_None)
    return false;
  return response.codecState == 1 || response.codecState == 2;
}
