#pragma once

#include "platform/Devices.h"
#include "WyvrelHelper.h"

/// The second hardware line, behind its own driver.
///
/// So far it opens the device and knows its model; its packets, VPD and download commands are not there yet, and the
/// VPD read says so by an exception.
class MorvakHelper : public WyvrelHelperRep {
 public:
  explicit MorvakHelper(OpenMode mode) : WyvrelHelperRep(mode) {}
  ~MorvakHelper() override;

  /// Returns false when the device is not there. Throws when it does not tell its model.
  bool Open() override;
  const char* GetPrompt() const override { return "MorvakTalc> "; }
  /// Not there yet: throws.
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
