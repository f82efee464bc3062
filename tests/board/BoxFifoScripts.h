#pragma once

#include <cstdint>
#include <initializer_list>

#include "support/ScriptedRegisters.h"

/// The register accesses of the box's FIFOs, for scripts:
///
///     belmara.Expect(Sequence({Status(kRoomForRun), SentWord(0x0B0B0004, kFirst), SentWord(0x800A0000, kLater)}));
namespace box_fifo {

using test_support::R;
using test_support::RegisterScript;
using test_support::W;

// What a status says; 0 is a command FIFO with room for a word, and a reply FIFO that holds one.
inline constexpr std::uint32_t kRoomForRun = 0x0100;
inline constexpr std::uint32_t kFull = 0x0200;
inline constexpr std::uint32_t kEmpty = 0x1000;
inline constexpr std::uint32_t kHoldsRun = 0x2000;

// What goes with a word of a command.
inline constexpr std::uint32_t kFirst = 0x80000020;
inline constexpr std::uint32_t kLater = 0x80000000;

/// A read of the status, which is written back.
inline RegisterScript Status(std::uint32_t status) {
  return {R(0x80000, status), W(0x80000, status)};
}
inline RegisterScript SentWord(std::uint32_t word, std::uint32_t control) {
  return {W(0x80380, word), W(0x80384, control)};
}
/// A word of a reply, read and popped.
inline RegisterScript ReplyWord(std::uint32_t word) {
  return {R(0x80210, word), W(0x80210, 0)};
}
/// A word of a reply that is popped unread.
inline RegisterScript DroppedWord() {
  return {W(0x80210, 0)};
}

inline RegisterScript Sequence(std::initializer_list<RegisterScript> pieces) {
  RegisterScript all;
  for (const RegisterScript& piece : pieces)
    all.insert(all.end(), piece.begin(), piece.end());
  return all;
}
inline RegisterScript Times(int count, const RegisterScript& piece) {
  RegisterScript all;
  for (int i = 0; i < count; ++i)
    all.insert(all.end(), piece.begin(), piece.end());
  return all;
}

/// A flush that finds nothing: the FIFO is empty, and still is after a while.
inline RegisterScript EmptyFlush() {
  return Sequence({Status(kEmpty), Status(kEmpty)});
}

}  // namespace box_fifo
