#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace TalcPathPrivate {

/// The type of a parameter: a word, kept as it was written, and what the word means. Exactly nine words mean something,
/// case included.
class DataType {
 public:
  enum class Kind : std::uint8_t { kInt8, kUInt8, kInt16, kUInt16, kInt32, kUInt32, kInt64, kUInt64, kBytes, kUnknown };

  DataType() = default;
  explicit DataType(std::string_view word);

  const std::string& Word() const { return word_; }
  Kind GetKind() const { return kind_; }
  bool IsBytes() const { return kind_ == Kind::kBytes; }
  /// 1, 2, 4 or 8 bytes; -1 for `BYTES`, which has the size of its value; 0 for an unknown word.
  std::int32_t WireSize() const { return wireSize_; }

  /// Calls `use` with a std::type_identity of the integer type of this kind and gives its result; gives `other` when
  /// this is none of the eight integer types.
  template <typename Use>
  auto WithInteger(Use&& use, decltype(use(std::type_identity<std::int8_t>())) other) const {
    switch (kind_) {
      case Kind::kInt8:
        return use(std::type_identity<std::int8_t>());
      case Kind::kUInt8:
        return use(std::type_identity<std::uint8_t>());
      case Kind::kInt16:
        return use(std::type_identity<std::int16_t>());
      case Kind::kUInt16:
        return use(std::type_identity<std::uint16_t>());
      case Kind::kInt32:
        return use(std::type_identity<std::int32_t>());
      case Kind::kUInt32:
        return use(std::type_identity<std::uint32_t>());
      case Kind::kInt64:
        return use(std::type_identity<std::int64_t>());
      case Kind::kUInt64:
        return use(std::type_identity<std::uint64_t>());
      default:
        return other;
    }
  }

 private:
  std::string word_;
  Kind kind_ = Kind::kUnknown;
  std::int8_t wireSize_ = 0;
};

}  // namespace TalcPathPrivate
