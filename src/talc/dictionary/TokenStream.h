#pragma once

#include <cstdint>
#include <string_view>

namespace TalcPathPrivate {

/// Words and numbers of a block of text, with the rules of a formatted stream: white space parts words and means
/// nothing else, and a read that touches the end of the block leaves the stream at its end even when it delivered.
///
///     TokenStream stream("Function 12abc");
///     stream.ReadWord();               // "Function"
///     std::int16_t number = -1;
///     stream.ReadNumber(number);       // 12
///     stream.ReadWord();               // "abc", and AtEnd() is true
///
/// Words point into the block, which must outlive them.
class TokenStream {
 public:
  explicit TokenStream(std::string_view block) : at_(block.data()), end_(at_ + block.size()) {}

  /// The next word, empty when there is none.
  std::string_view ReadWord();
  /// Reads an optional sign and decimal digits; whatever follows them stays. False, with `number` as it was, when there
  /// are no digits or they do not fit: from then on every read fails.
  bool ReadNumber(std::int16_t& number);
  bool ReadNumber(std::int32_t& number);
  /// Takes a number with a "-", too, and counts it down from 2^32, as formatted streams do.
  bool ReadNumber(std::uint32_t& number);

  /// True once a read has touched the end of the block.
  bool AtEnd() const { return atEnd_; }

 private:
  bool SkipWhiteSpace();
  bool ReadWithin(std::int64_t low, std::int64_t high, std::int64_t& number);

  const char* at_;
  const char* end_;
  bool atEnd_ = false;
  bool failed_ = false;
};

}  // namespace TalcPathPrivate
