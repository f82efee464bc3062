#include "dictionary/TokenStream.h"

#include <bit>
#include <limits>

#include "dictionary/SameName.h"

namespace TalcPathPrivate {
namespace {

inline bool IsWhiteSpace(char c) {
  if (static_cast<unsigned char>(c) > ' ') return false;  // nearly all of a word
  return c == ' ' || (c >= '\t' && c <= '\r');            // tab, line feed, vertical tab, form feed, carriage return
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

/// The first white space from `at` on, or `end`. Goes by eight characters at a step: words end at no place that a
/// processor could foresee, and guessing wrong at each is most of what reading a dictionary costs.
const char* FindWhiteSpace(const char* at, const char* end) {
  constexpr std::uint64_t kLowBits = 0x7F7F7F7F7F7F7F7F;
  constexpr std::uint64_t kUpToBlank = 0x5F5F5F5F5F5F5F5F;  // makes 0x80 and more of all above a blank
  while (std::endian::native == std::endian::little && end - at >= 8) {
    const auto characters = LoadWord<std::uint64_t>(at);
    const std::uint64_t isAbove = ((characters & kLowBits) + kUpToBlank) | characters;
    const std::uint64_t candidates = ~isAbove & ~kLowBits;
    if (candidates == 0) {
      at += 8;
      continue;
    }
    at += std::countr_zero(candidates) / 8;
    if (IsWhiteSpace(*at)) return at;
    ++at;  // some other control character
  }
  while (at < end && !IsWhiteSpace(*at))
    ++at;
  return at;
}

}  // namespace

bool TokenStream::SkipWhiteSpace() {
  if (failed_) return false;
  while (at_ < end_ && IsWhiteSpace(*at_))
    ++at_;
  atEnd_ = at_ == end_;
  return !atEnd_;
}

std::string_view TokenStream::ReadWord() {
  if (!SkipWhiteSpace()) return {};
  const char* const begin = at_;
  at_ = FindWhiteSpace(begin, end_);
  atEnd_ = at_ == end_;
  return {begin, static_cast<std::size_t>(at_ - begin)};
}

bool TokenStream::ReadWithin(std::int64_t low, std::int64_t high, std::int64_t& number) {
  if (!SkipWhiteSpace()) return false;
  const bool isNegative = *at_ == '-';
  if (isNegative || *at_ == '+') ++at_;
  // Digits beyond the range are read too, as part of a number that does not fit.
  const std::int64_t limit = std::numeric_limits<std::uint32_t>::max();
  std::int64_t magnitude = 0;
  const char* const firstDigit = at_;
  for (; at_ < end_ && IsDigit(*at_); ++at_)
    if (magnitude <= limit) magnitude = magnitude * 10 + (*at_ - '0');
  atEnd_ = at_ == end_;
  number = isNegative ? -magnitude : magnitude;
  failed_ = at_ == firstDigit || number < low || number > high;
  return !failed_;
}

bool TokenStream::ReadNumber(std::int16_t& number) {
  using Limits = std::numeric_limits<std::int16_t>;
  std::int64_t read = 0;
  if (!ReadWithin(Limits::min(), Limits::max(), read)) return false;
  number = static_cast<std::int16_t>(read);
  return true;
}

bool TokenStream::ReadNumber(std::int32_t& number) {
  using Limits = std::numeric_limits<std::int32_t>;
  std::int64_t read = 0;
  if (!ReadWithin(Limits::min(), Limits::max(), read)) return false;
  number = static_cast<std::int32_t>(read);
  return true;
}

bool TokenStream::ReadNumber(std::uint32_t& number) {
  constexpr std::int64_t kLargest = std::numeric_limits<std::uint32_t>::max();
  std::int64_t read = 0;
  if (!ReadWithin(-kLargest, kLargest, read)) return false;
  number = static_cast<std::uint32_t>(read);
  return true;
}

}  // namespace TalcPathPrivate
