#pragma once

#include <cstdint>

/// Reads a hexadecimal number as scanf's "%x" does, with every input defined.
///
/// Accepted are leading white space, one sign, "0x" or "0X", and then digits up to the first character that is none.
/// The versions of containers, VPD fields and flash stamps are all read in this way:
///
///     std::uint32_t version = 0;
///     ScanHex32("1161", version);  // true, 0x1161
///     ScanHex32("-001", version);  // true, 0xFFFFFFFF
///     ScanHex32("zz", version);    // false, and version is as it was
///
/// `text` is terminated. `value` gets the low 32 bits of the number, however many digits there are. False, with `value`
/// untouched, when there is no digit to convert; a "0x" without a digit behind it is no number either.
bool ScanHex32(const char* text, std::uint32_t& value);
