#include "board/MorvakHelper.h"

#include <cstdlib>

#include "board/DeviceDiscovery.h"
#include "board/DriverRecords.h"
#include "board/DynMem.h"
#include "errorException.h"

namespace {

/// Made at the first exchange, with that helper's device, and kept for the life of the process.
MemAllocator* talcAllocator = nullptr;

}  // namespace

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

void MorvakHelper::GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) {
  DynMem<char> copy(device_, reinterpret_cast<char*>(buffer), sizeof buffer, kDynMemCopyBack);
  const auto number = board != nullptr ? static_cast<std::uint32_t>(std::strtol(board, nullptr, 10)) : 0u;
  const VpdIn vpdIn{copy.GetUserAddress(), number, sizeof buffer};
  std::uint32_t vpdOut = 0;
  std::uint32_t returned = 0;
  if (MorvakIoControl(device_, IOCTL_ReadVPD, &vpdIn, sizeof vpdIn, &vpdOut, sizeof vpdOut, returned) != kHWCerr_None)
    throw errorException("MorvakHelper::GetBoardVPD can't get Morvak VPD - ioctl failed.");
}

HwcStatus MorvakHelper::IOCTL_TransactBoBCommand(const std::uint8_t* command, std::uint32_t commandLengthBytes,
                                                 std::uint8_t* reply, std::uint32_t* replyLengthBytes,
                                                 std::uint32_t timeoutLow, std::uint32_t) {
  constexpr char kBadHeader[] = "TransactBoBCommand: bad header on Talc response packet.";
  constexpr std::uint32_t kToldCapacityBytes = 2048;
  if (command == nullptr && reply == nullptr) return kHWCerr_None;
  if (!HasTalcPath()) throw errorException("No Talc, nothing to flush");
  if (reply == nullptr || replyLengthBytes == nullptr) throw errorException(kBadHeader);
  if (talcAllocator == nullptr) talcAllocator = new kernelMappedMemory(device_);

  // A reply that still shows these was not written by the hardware.
  reply[0] = 0x12;
  reply[1] = 0x34;
  TalcReply answer{};
  {
    // Nothing is copied back to the command.
    DynMem<unsigned char> commandBlock(device_, talcAllocator, const_cast<std::uint8_t*>(command), commandLengthBytes,
                                       kDynMemPlain);
    DynMem<unsigned char> replyBlock(device_, talcAllocator, reply, *replyLengthBytes, kDynMemCopyBack);
    const TalcCommandRecord record{commandBlock.GetKernelAddress(), replyBlock.GetKernelAddress(), commandLengthBytes,
                                   kToldCapacityBytes, timeoutLow};
    std::uint32_t returned = 0;
    if (MorvakIoControl(device_, IOCTL_TransactTalc, &record, sizeof record, &answer, sizeof answer, returned) !=
        kHWCerr_None)
      throw errorException("TransactBoBCommand: can't send talc command - ioctl failed.");
    if (returned != sizeof answer)
      throw errorException("TransactBoBCommand: can't send talc command - bad ioctl return.");
  }
  // Any other status says nothing that the reply does not.
  if (answer.status == kHWCerr_CommandTimeout) return kHWCerr_CommandTimeout;
  if (reply[0] != 0x0B || reply[1] != 0x0B) throw errorException(kBadHeader);
  const std::uint32_t length = reply[2] * 256u + reply[3] + 4u;
  // No more than this was copied back.
  if (length > *replyLengthBytes) throw errorException(kBadHeader);
  *replyLengthBytes = length;
  return kHWCerr_None;
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
