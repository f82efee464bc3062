#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "simulator/Faults.h"
#include "simulator/ProtocolErrors.h"
#include "simulator/VeltraBox.h"

namespace simulator {

/// The registers through which a host card reaches the break-out box, and the two FIFOs behind them. They are there
/// whether or not a box is connected; without one, commands go nowhere.
///
/// A command word is latched by a write to the data register and put into the FIFO by the write to the control register
/// behind it; the box takes one word each 4 us. Words of an answer come at the same pace; reading gives the oldest,
/// writing 0 drops it. Each value read from the status must be written back before another of these registers is used.
/// Anything else is a protocol error.
///
/// Time is handed in with each access, in nanoseconds that never go back. A copy has queues of its own.
///
///     fifo.Write(BoxFifo::kCommandData, 0x0B0B0004, now, &box);
///     fifo.Write(BoxFifo::kCommandControl, BoxFifo::kFirstWord, now, &box);
class BoxFifo {
 public:
  static constexpr std::uint32_t kStatus = 0x80000;
  static constexpr std::uint32_t kReply = 0x80210;
  static constexpr std::uint32_t kCommandData = 0x80380;
  static constexpr std::uint32_t kCommandControl = 0x80384;

  // Bits of the status.
  static constexpr std::uint32_t kCommandRoom = 0x0100;  ///< for a run of words
  static constexpr std::uint32_t kCommandFull = 0x0200;
  static constexpr std::uint32_t kReplyEmpty = 0x1000;
  static constexpr std::uint32_t kReplyRun = 0x2000;  ///< holds a run of words

  // What the control register takes.
  static constexpr std::uint32_t kFirstWord = 0x80000020;
  static constexpr std::uint32_t kLaterWord = 0x80000000;

  static constexpr std::int64_t kWordNanoseconds = 4'000;
  static constexpr std::size_t kCommandWords = 64;
  static constexpr std::size_t kReplyWords = 4096;
  static constexpr std::size_t kRunWords = 16;

  static constexpr bool HasRegister(std::uint32_t offset) {
    return offset == kStatus || offset == kReply || offset == kCommandData || offset == kCommandControl;
  }

  /// Reads one of the registers; all ones where there is nothing to read. `box` is what is connected, null for none.
  std::uint32_t Read(std::uint32_t offset, std::int64_t nowNanoseconds, VeltraBox* box, FaultPlan* faults = nullptr);
  /// Writes one of the registers. With a plan, asks it about faults of FIFO and box.
  void Write(std::uint32_t offset, std::uint32_t value, std::int64_t nowNanoseconds, VeltraBox* box,
             FaultPlan* faults = nullptr);
  /// Hands on all words that are due by now, in both directions.
  void CatchUp(std::int64_t nowNanoseconds, VeltraBox* box, FaultPlan* faults) {
    if (nowNanoseconds >= dueNanoseconds_) MoveWords(nowNanoseconds, box, faults);
  }
  /// Empties both FIFOs.
  void PowerLoss();
  /// Hands on all words that are still to come. What the program left half done is a protocol error.
  void Settle(VeltraBox* box);
  /// Puts an old answer, that nobody fetched, into the reply FIFO.
  void AddStaleReplies();

  /// The words in the reply FIFO, the oldest first, without regard to time: for who keeps a bench.
  std::vector<std::uint32_t> Replies() const;
  /// Puts words, at most `kReplyWords`, in their place.
  void SetReplies(std::span<const std::uint32_t> words);
  ProtocolErrors& errors() { return errors_; }
  const ProtocolErrors& errors() const { return errors_; }

 private:
  struct CommandWord {
    std::int64_t takenNanoseconds;  ///< by the box
    std::uint32_t word;
    bool isFirst;
  };
  struct ReplyWord {
    std::int64_t thereNanoseconds;
    std::uint32_t word;
  };

  void MoveWords(std::int64_t nowNanoseconds, VeltraBox* box, FaultPlan* faults);
  void Receive(std::int64_t startNanoseconds, std::span<const std::uint32_t> words);
  std::uint32_t Status() const;
  void WriteStatus(std::uint32_t value);
  void MissWriteBack();
  void Pop(std::uint32_t value);
  void Latch(std::uint32_t word);
  void Put(std::uint32_t control, std::int64_t nowNanoseconds, FaultPlan* faults);
  void Refuse(std::string text);

  std::deque<CommandWord> commands_;
  std::deque<ReplyWord> replies_;
  /// How many of the replies are there by now.
  std::size_t readyReplies_ = 0;
  /// Before this nothing moves.
  std::int64_t dueNanoseconds_ = 0;
  /// Before this no further word of an answer can come.
  std::int64_t nextReplyNanoseconds_ = 0;
  std::optional<std::uint32_t> latchedWord_;
  /// A status that was read and must be written back.
  std::optional<std::uint32_t> statusRead_;
  /// By a fault: says that it is full, whatever it holds.
  bool saysFull_ = false;
  ProtocolErrors errors_;
};

}  // namespace simulator
