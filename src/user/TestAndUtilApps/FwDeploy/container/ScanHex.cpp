#include "container/ScanHex.h"

namespace {

bool IsWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The value of a hexadecimal digit, or -1.
int DigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

bool ScanHex32(const char* text, std::uint32_t& value) {
  while (IsWhiteSpace(*text))
    ++text;
  const bool isNegative = *text == '-';
  if (isNegative || *text == '+') ++text;
  if (text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) text += 2;
  if (DigitValue(*text) < 0) return false;

  // Unsigned, so that a long number and a negative one wrap instead of overflowing.
  std::uint64_t number = 0;
  for (int digit = DigitValue(*text); digit >= 0; digit = DigitValue(*++text))
    number = number * 16 + static_cast<std::uint64_t>(digit);
  value = static_cast<std::uint32_t>(isNegative ? 0 - number : number);
  return true;
}
