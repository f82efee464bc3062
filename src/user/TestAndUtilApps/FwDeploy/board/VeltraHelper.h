#pragma once

#include "board/C28FxJ3A.h"
#include "board/ElapsedTimer.h"
#include "platform/Devices.h"
#include "platform/RegisterWindow.h"
#include "WyvrelHelper.h"

/// The first hardware line: up to two host cards whose registers are mapped into the process, and the break-out box
/// behind the first card's FIFO registers. docs/box-fifo.md draws the registers and the words.
///
/// Everything is polled in the caller's thread, and no wait for the box gives up the processor.
class VeltraHelper : public WyvrelHelperRep {
 public:
  explicit VeltraHelper(OpenMode mode) : WyvrelHelperRep(mode) {}
  ~VeltraHelper() override;

  /// Returns true if at least one card was opened. Throws when a card is there but its registers cannot be mapped; the
  /// second card is then not looked for. Replies that an earlier program left behind are thrown away.
  bool Open() override;
  const char* GetPrompt() const override { return "VeltraTalc> "; }
  /// A null name, or one beginning with "b" or "B", is the first card, "d" or "D" the second. Any other name, and a
  /// card that is absent, leave the buffer alone.
  void GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) override;
  bool IsCodecPresent(std::int32_t) override { return false; }
  C28FxJ3A* GetC28FxJ3A(const char* board) override;
  platform::RegisterWindow GetKarvelProgramAddr(const char* board) override;
  platform::RegisterWindow GetKarvelVersion(const char* board) override;
  /// One exchange with the box; with neither `command` nor `reply`, throws away the replies that wait or arrive before
  /// the box falls silent, for as long as the time-out at most. Microseconds throughout, and each wait has the whole
  /// time-out.
  ///
  /// Returns 0, or `kHWCerr_CommandTimeout` when no reply began: it may come later, and asking again without a command
  /// takes it. Throws without the first card, and when the FIFOs' protocol breaks down, by a command FIFO that stays
  /// full, a reply without header or of a length outside 4 to 2048, or one that stops in the middle. A reply may be
  /// 2,052 bytes long whatever `*replyLengthBytes` says, and up to 3 bytes behind its end are written.
  HwcStatus IOCTL_TransactBoBCommand(const std::uint8_t* command, std::uint32_t commandLengthBytes, std::uint8_t* reply,
                                     std::uint32_t* replyLengthBytes, std::uint32_t timeoutLow,
                                     std::uint32_t timeoutHigh) override;
  /// True if the transport to the box is open, which is the first card.
  virtual bool HasTalcPath() const { return static_cast<bool>(belmara_.registers); }

 private:
  struct Card {
    platform::Handle handle = 0;
    platform::RegisterWindow registers;
    C28FxJ3A flash;
  };

  static void OpenCard(Card& card, const platform::Guid& guid);
  Card& CardNamed(const char* board);
  void SendWords(const std::uint8_t* command, std::uint32_t lengthBytes, std::int64_t timeoutMicroseconds);
  HwcStatus ReceiveReply(std::uint8_t* reply, std::uint32_t* replyLengthBytes, std::int64_t timeoutMicroseconds);
  bool FlushReplyFifo(std::int64_t timeoutMicroseconds);
  std::uint32_t PollStatus(std::uint32_t status, std::uint32_t busyBit, std::int64_t stepMicroseconds,
                           std::int64_t timeoutMicroseconds);

  ElapsedTimer timer_;
  Card belmara_;
  Card dovu_;
};
