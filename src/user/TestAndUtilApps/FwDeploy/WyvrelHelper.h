#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/RegisterWindow.h"

class C28FxJ3A;

/// Size of a board's VPD area as `WyvrelHelper::GetBoardVPD` gives it.
inline constexpr std::size_t kBoardVpdBytes = 8192;

/// Which hardware a helper has in hand.
enum class BoardKind : std::int32_t {
  kBothHostCards = 0,
  kBelmaraOnly = 1,
  kDovuOnly = 2,
  kMorvakModel4 = 5,
  kMorvakModel5 = 7,
  kUnknown = 8,
};

/// What `CreateWyvrelHelper` builds and opens.
enum class OpenMode : std::int32_t {
  kMorvakElseBothHostCards = 0,
  kMorvakElseBelmara = 1,
  kHostCards = 2,
  kBelmaraAlone = 3,
  kMorvak = 4,
};

/// The one object through which the installer talks to hardware. Made by `CreateWyvrelHelper`, which only gives out
/// opened ones; closes its devices when it goes. For one thread.
///
/// Failures are thrown as `errorException`. After one has come out of a helper, the helper is only good for being
/// deleted.
class WyvrelHelper {
 public:
  WyvrelHelper() = default;
  /// The last helper to go may throw: see `WyvrelHelperRep`.
  virtual ~WyvrelHelper() noexcept(false) = default;
  WyvrelHelper(const WyvrelHelper&) = delete;
  WyvrelHelper& operator=(const WyvrelHelper&) = delete;

  /// A constant text for console use.
  virtual const char* GetPrompt() const = 0;

  /// Fills `buffer` with the board's VPD area. What `board` means is the transport's business; a board that it does not
  /// have leaves the buffer alone.
  virtual void GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) = 0;

  /// True if a codec sits in the slot.
  virtual bool IsCodecPresent(std::int32_t slot) = 0;

  BoardKind boardKind = BoardKind::kUnknown;
};

/// Adds what only host cards have. Boards are named; a name beginning with "d" is the second card, any other the first.
class VeltraSpecificHelper : public WyvrelHelper {
 public:
  /// The card's flash, owned by the helper, or null when the card is absent.
  virtual C28FxJ3A* GetC28FxJ3A(const char* board) = 0;
  /// The card's JTAG port register, or an empty window.
  virtual platform::RegisterWindow GetKarvelProgramAddr(const char* board) = 0;
  /// The card's Karvel version register, or an empty window.
  virtual platform::RegisterWindow GetKarvelVersion(const char* board) = 0;
};

/// What does not depend on the transport. An operation that a transport does not have throws and says so.
///
/// Helpers keep the Talc library started: the first one starts it, the last one stops it. Construction throws when the
/// library does not start, destruction when it does not stop, unless another exception is already on its way.
class WyvrelHelperRep : public VeltraSpecificHelper {
 public:
  explicit WyvrelHelperRep(OpenMode mode);
  ~WyvrelHelperRep() noexcept(false) override;

  void GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) override;
  C28FxJ3A* GetC28FxJ3A(const char* board) override;
  platform::RegisterWindow GetKarvelProgramAddr(const char* board) override;
  platform::RegisterWindow GetKarvelVersion(const char* board) override;

  /// Opens the transport's devices. Returns false, silently, when there is none; throws when one is there and broken.
  virtual bool Open() = 0;

 protected:
  const OpenMode openMode;

 private:
  /// Exceptions on their way when this was made; more of them at its end mean that it goes because of one.
  const int exceptionsAtStart_;
};
