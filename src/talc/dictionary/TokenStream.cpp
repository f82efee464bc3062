#include "dictionary/TokenStream.h"

#include <limits>

namespace TalcPathPrivate {
namespace {

bool IsWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');  // tab, line feed, vertical tab, form feed, carriage return
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

bool TokenStream::SkipWhiteSpace() {
  if (failed_ || atEnd_) return false;
  std::size_t at = 0;
  while (at < rest_.size() && IsWhiteSpace(rest_[at]))
    ++at;
  rest_.remove_prefix(at);
  atEnd_ = rest_.empty();
  return !atEnd_;
}

std::string_view TokenStream::ReadWord() {
  if (!SkipWhiteSpace()) return {};
  std::size_t length = 0;
  while (length < rest_.size() && !IsWhiteSpace(rest_[length]))
    ++length;
  const std::string_view word = rest_.substr(0, length);
  rest_.remove_prefix(length);
  atEnd_ = rest_.empty();
  return word;
}

bool TokenStream::ReadWithin(std::int64_t low, std::int64_t high, std::int64_t& number) {
  if (!SkipWhiteSpace()) return false;
  const bool isNegative = rest_.front() == '-';
  if (isNegative || rest_.front() == '+') rest_.remove_prefix(1);
  // Digits beyond the range are read too, as part of a number that does not fit.
  const std::int64_t limit = std::numeric_limits<std::uint32_t>::max();
  std::int64_t magnitude = 0;
  bool hasDigits = false;
  while (!rest_.empty() && IsDigit(rest_.front())) {
    hasDigits = true;
    if (magnitude <= limit) magnitude = magnitude * 10 + (rest_.front() - '0');
    rest_.remove_prefix(1);
  }
  atEnd_ = rest_.empty();
  number = isNegative ? -magnitude : magnitude;
  failed_ = !hasDigits || number < low || number > high;
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

}  // namespace TalcPathPrivate
