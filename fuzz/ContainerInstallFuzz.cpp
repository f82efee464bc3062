// Any bytes as the container that a host card's flash is to be programmed from, up to the point where writing would
// begin. The input is the container itself.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>

#include "download/ZerinHelper.h"
#include "errorException.h"
#include "FuzzInput.h"

namespace {

/// The longest header that leaves room for the 80 characters of the stamp's text.
constexpr std::uint32_t kLongestHeader = 12 + 0x1FFF5 - 80;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // The text's length is to be the same for everyone.
  unsetenv("USERDOMAIN");
  unsetenv("USERNAME");
  setenv("TZ", "UTC0", 1);
  tzset();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;  // no stream of the C library is that short
  // One helper for all inputs: what an earlier one left behind must not matter.
  static ZerinHelper helper(nullptr, kImageAreaWord);

  const std::uint32_t headerLength = size < 12 ? 0
                                               : static_cast<std::uint32_t>(data[8]) << 24 |
                                                     static_cast<std::uint32_t>(data[9]) << 16 |
                                                     static_cast<std::uint32_t>(data[10]) << 8 | data[11];
  const bool isUsable = headerLength >= 12 && headerLength <= kLongestHeader;

  std::string copy(data, data + size);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(fmemopen(copy.data(), copy.size(), "rb"), &std::fclose);
  Require(file != nullptr);
  try {
    Require(helper.GetPayloadOffset(file.get(), "folder/a.rbi") == headerLength && isUsable);
  } catch (const errorException& error) {
    Require(!isUsable && std::string(error.what()) == "RBI file header is not usable");
  }
  return 0;
}
