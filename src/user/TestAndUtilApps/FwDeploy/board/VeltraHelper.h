#pragma once

#include "board/C28FxJ3A.h"
#include "platform/Devices.h"
#include "platform/RegisterWindow.h"
#include "WyvrelHelper.h"

/// The first hardware line: up to two host cards whose registers are mapped into the process.
///
/// The break-out box behind the first card's FIFO registers is not reached yet.
class VeltraHelper : public WyvrelHelperRep {
 public:
  explicit VeltraHelper(OpenMode mode) : WyvrelHelperRep(mode) {}
  ~VeltraHelper() override;

  /// Returns true if at least one card was opened. Throws when a card is there but its registers cannot be mapped; the
  /// second card is then not looked for.
  bool Open() override;
  const char* GetPrompt() const override { return "VeltraTalc> "; }
  /// A null name, or one beginning with "b" or "B", is the first card, "d" or "D" the second. Any other name, and a
  /// card that is absent, leave the buffer alone.
  void GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) override;
  bool IsCodecPresent(std::int32_t) override { return false; }
  C28FxJ3A* GetC28FxJ3A(const char* board) override;
  platform::RegisterWindow GetKarvelProgramAddr(const char* board) override;
  platform::RegisterWindow GetKarvelVersion(const char* board) override;
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

  Card belmara_;
  Card dovu_;
};
