#pragma once

#include <cstddef>
#include <cstdint>

#include "board/HwcErr.h"
#include "board/TaggedArguments.h"
#include "platform/RegisterWindow.h"
#include "talcpath.h"

class C28FxJ3A;
/// Room that a reply buffer must have, whatever length is passed with it: the longest reply of a transport, 2,052
/// bytes, and a zero behind it. Transports do not look at the room they are told.
inline constexpr std::uint32_t kReplyRoomBytes = 2056;

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
/// Failures are thrown as `errorException`, but for an input of another type than the dictionary's, which is
/// `TalcPath::bad_variant_cast`. After one has come out of a helper, the helper is only good for being
/// deleted.
class WyvrelHelper {
 public:
  WyvrelHelper() = default;
  /// The last helper to go may throw: see `WyvrelHelperRep`.
  virtual ~WyvrelHelper() noexcept(false) = default;
  WyvrelHelper(const WyvrelHelper&) = delete;
  WyvrelHelper& operator=(const WyvrelHelper&) = delete;

  // The command operations answer 0 or `kHWCerr_CommandTimeout`; everything else that goes wrong is thrown. After a
  // time-out the command may still be carried out, and its reply may still come.

  /// Asks the hardware with a command and waits a second at most for the reply, whose values go to the outputs. After a
  /// time-out these are as they were. Throws for a command or value that the dictionary does not have, a reply that
  /// cannot be read, a status that is not success, and a reply without an output's value.
  virtual HwcStatus ExecuteCommand(const char* name, Arguments arguments) = 0;
  /// Tells the hardware a command that brings no values back. Waits and throws as `ExecuteCommand` does.
  virtual HwcStatus SendCommand(const char* name, Arguments arguments) = 0;

  /// A constant text for console use.
  virtual const char* GetPrompt() const = 0;

  /// Puts a command's packet into `buffer`, of whose room `*lengthBytes` tells, and sets that to the packet's length. A
  /// `queryFlag` of 0 makes a send, any other a request. Throws when the command has no packet or that does not fit.
  virtual HwcStatus PrecompileCommand(std::uint8_t* buffer, std::uint32_t* lengthBytes, std::uint8_t queryFlag,
                                      const char* name, Arguments arguments) = 0;
  /// Takes a raw reply apart as that of a request of this command, whatever it was. Throws as `ExecuteCommand` does.
  virtual HwcStatus DecodeReply(const std::uint8_t* reply, std::uint32_t replyLengthBytes, const char* name,
                                Arguments arguments) = 0;
  /// Sends a raw packet, if `command` is not null, and waits for a raw reply, if `reply` and `replyLengthBytes` are
  /// not. Both halves of the time-out together are microseconds. `reply` has room for `kReplyRoomBytes`;
  /// `*replyLengthBytes` is set to the reply's length. Throws when the transport fails.
  virtual HwcStatus TransactBoBCommand(const std::uint8_t* command, std::uint32_t commandLengthBytes,
                                       std::uint8_t* reply, std::uint32_t* replyLengthBytes, std::uint32_t timeoutLow,
                                       std::uint32_t timeoutHigh) = 0;

  /// Fills `buffer` with the board's VPD area. What `board` means is the transport's business; a board that it does not
  /// have leaves the buffer alone.
  virtual void GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) = 0;

  /// Carries a command to the hardware and its reply, values and status, back into it. Waits and throws as
  /// `ExecuteCommand` does.
  virtual HwcStatus TransactCommand(TalcPath::TalcCommand& command) = 0;

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

  HwcStatus ExecuteCommand(const char* name, Arguments arguments) override;
  HwcStatus SendCommand(const char* name, Arguments arguments) override;
  HwcStatus PrecompileCommand(std::uint8_t* buffer, std::uint32_t* lengthBytes, std::uint8_t queryFlag,
                              const char* name, Arguments arguments) override;
  HwcStatus DecodeReply(const std::uint8_t* reply, std::uint32_t replyLengthBytes, const char* name,
                        Arguments arguments) override;
  HwcStatus TransactBoBCommand(const std::uint8_t* command, std::uint32_t commandLengthBytes, std::uint8_t* reply,
                               std::uint32_t* replyLengthBytes, std::uint32_t timeoutLow,
                               std::uint32_t timeoutHigh) override;
  HwcStatus TransactCommand(TalcPath::TalcCommand& command) override;
  void GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) override;
  C28FxJ3A* GetC28FxJ3A(const char* board) override;
  platform::RegisterWindow GetKarvelProgramAddr(const char* board) override;
  platform::RegisterWindow GetKarvelVersion(const char* board) override;

  /// One exchange as `TransactBoBCommand` describes it. Returns 0, `kHWCerr_CommandTimeout`, or what else went wrong if
  /// that is not thrown.
  virtual HwcStatus IOCTL_TransactBoBCommand(const std::uint8_t* command, std::uint32_t commandLengthBytes,
                                             std::uint8_t* reply, std::uint32_t* replyLengthBytes,
                                             std::uint32_t timeoutLow, std::uint32_t timeoutHigh) = 0;
  /// Opens the transport's devices. Returns false, silently, when there is none; throws when one is there and broken.
  virtual bool Open() = 0;

 protected:
  const OpenMode openMode;

 private:
  TalcPath::TalcCommand& NewCommand(const char* name);

  // Kept from one command to the next, so that the many of a download don't take memory anew.
  TalcPath::TalcCommand command_;
  TalcPath::TalcByteCode packet_;
  /// Exceptions on their way when this was made; more of them at its end mean that it goes because of one.
  const int exceptionsAtStart_;
};
