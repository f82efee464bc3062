#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

/// Reads the fields of a VPD block, the description of itself that each board carries. docs/vpd.md draws the bytes.
///
///     std::uint32_t major = 255;
///     if (ReadVpdHexField(block, "ZB", major) != kVpdSuccess) throw errorException(...);
///
/// Block bytes come from hardware and may hold anything; no operation reads or writes outside the spans it was given.

/// What the operations below report.
enum VpdStatus : std::int32_t {
  kVpdSuccess = 0,
  kVpdBadArgument = 1,
  kVpdOutOfMemory = 2,
  kVpdNotParsed = 3,
  kVpdDamagedBlock = 4,
  kVpdFieldNotFound = 5,
  kVpdNoRoomForField = 6,
};

/// One block, parsed: the fields of all its fields resources in one run.
class VpdBlock {
 public:
  static constexpr std::int32_t kMinimumSizeBytes = 2;
  static constexpr std::int32_t kMaximumSizeBytes = 32480;

  VpdBlock() = default;
  VpdBlock(const VpdBlock&) = delete;
  VpdBlock& operator=(const VpdBlock&) = delete;

  /// Makes room for a block of `sizeBytes`, 2 to 32,480; buffers that are there for this very size are kept and
  /// cleared.
  ///
  /// kVpdBadArgument for another size, with the object as it was; kVpdOutOfMemory, with the object empty.
  VpdStatus Create(std::int32_t sizeBytes);

  /// Copies as many bytes of `block` as `Create` made room for, and collects their fields.
  ///
  /// kVpdNotParsed before `Create`; kVpdBadArgument when `block` is shorter than the created size; kVpdDamagedBlock
  /// when a resource runs past the end. After a failure there are no fields to get.
  VpdStatus Parse(std::span<const std::uint8_t> block);

  /// Clears `buffer` and copies the first field of that two-character keyword into it, cut to the buffer and with no
  /// terminator of its own. `lengthBytes`, which may be null, gets the field's whole length, or -1 where none is found.
  ///
  /// kVpdBadArgument when the keyword is shorter than two characters or one of these is below 33; kVpdNotParsed;
  /// kVpdFieldNotFound, also when the run of fields ends inside a field on the way.
  VpdStatus GetField(std::string_view keyword, std::span<char> buffer, std::int32_t* lengthBytes) const;

 private:
  VpdStatus CollectResources();

  std::unique_ptr<std::uint8_t[]> block_;
  std::unique_ptr<std::uint8_t[]> work_;
  std::int32_t sizeBytes_ = 0;
  std::int32_t workLengthBytes_ = 0;
  std::int32_t fieldsOffset_ = 0;
  bool parsed_ = false;
};

/// Gets one field out of a block in one go: `buffer` is cleared, then holds as much of the field as fits. The result is
/// the first failure of `Create` for the block's size, `Parse` and `GetField`, or kVpdSuccess.
VpdStatus ReadVpdField(std::span<const std::uint8_t> block, std::string_view keyword, std::span<char> buffer);

/// Reads a field whose first 16 characters are a hexadecimal number, as "%x" scans it. The result is that of
/// `ReadVpdField`; `value` keeps what it was on a failure, and also when the field is there but is no number.
VpdStatus ReadVpdHexField(std::span<const std::uint8_t> block, std::string_view keyword, std::uint32_t& value);
