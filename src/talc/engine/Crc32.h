#pragma once

#include <cstdint>
#include <span>

namespace TalcPathPrivate {

/// The CRC-32 of IEEE 802.3, taken piece by piece, and the number that it is expected to be. Of "123456789" it is
/// 0xCBF43926, of no bytes 0.
///
///     Crc32 crc;
///     crc.Start();
///     crc.Add(piece);
///     crc.Finish();
///     crc.Running();
class Crc32 {
 public:
  void SetExpected(std::uint32_t expected) { expected_ = expected; }
  void Start() { running_ = 0xFFFFFFFF; }
  void Add(std::span<const char> bytes);
  void Finish() { running_ = ~running_; }
  /// The CRC of what was added, once it is finished.
  std::uint32_t Running() const { return running_; }
  bool IsEqual() const { return running_ == expected_; }

 private:
  std::uint32_t expected_ = 0;
  std::uint32_t running_ = 0;
};

}  // namespace TalcPathPrivate
