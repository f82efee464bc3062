#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The bytes of the worked example of a page, so that a test decodes what the page shows.
namespace test_support {

/// Returns the bytes of the first fenced block of the file `page` that is opened by "```hex". Each line is a four-digit
/// offset in hexadecimal, a colon, byte pairs parted by blanks, and behind a "|" whatever explains them. Throws
/// std::runtime_error when there is no such block, when a line has another form, or when an offset is not that of the
/// line's first byte.
std::vector<std::uint8_t> ReadHexBlock(const std::string& page);

}  // namespace test_support
