#pragma once

#include "platform/Devices.h"
#include "WyvrelHelper.h"

/// The second hardware line, behind its own driver, which moves the packets in and out of the hardware by itself: every
/// exchange is one control call.
class MorvakHelper : public WyvrelHelperRep {
 public:
  explicit MorvakHelper(OpenMode mode) : WyvrelHelperRep(mode) {}
  ~MorvakHelper() override;

  /// Returns false when the device is not there. Throws when it does not tell its model.
  bool Open() override;
  const char* GetPrompt() const override { return "MorvakTalc> "; }
  /// The area of the board whose number the text is, in decimal; of board 0 for null. Throws when the driver fails.
  void GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) override;
  /// One exchange; the high half of the time-out has no effect, and there is nothing to flush. Returns 0 or
  /// `kHWCerr_CommandTimeout`. Throws when the device is not open, the driver fails, or the hardware wrote no reply.
  /// `*replyLengthBytes` bytes of `reply` are overwritten, whatever its length, also on a failure; one that is missing
  /// counts as a reply that was not written.
  HwcStatus IOCTL_TransactBoBCommand(const std::uint8_t* command, std::uint32_t commandLengthBytes, std::uint8_t* reply,
                                     std::uint32_t* replyLengthBytes, std::uint32_t timeoutLow,
                                     std::uint32_t timeoutHigh) override;
  /// Slots are 0, 1 and 2; the slots 0 and 2 are two names of one module. Throws for another slot and when the driver
  /// tells of more than two slots; a driver that does not answer counts as no codec.
  bool IsCodecPresent(std::int32_t slot) override;
  /// True if the device is open.
  virtual bool HasTalcPath() const { return device_ != 0; }

 private:
  platform::Handle device_ = 0;
};
