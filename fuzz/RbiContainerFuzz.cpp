// Any bytes as a container: read as a file and by the accessors. The input is the container itself.

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "container/RbiContainer.h"
#include "container/ScanHex.h"
#include "FuzzInput.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

/// One file without a name, filled anew for each input.
class InputFile {
 public:
  explicit InputFile(Bytes bytes) {
    Require(ftruncate(Descriptor(), 0) == 0);
    Require(pwrite(Descriptor(), bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
  }
  std::string Name() const { return "/proc/self/fd/" + std::to_string(Descriptor()); }

 private:
  static int Descriptor() {
    static const int descriptor = memfd_create("container", 0);
    return descriptor;
  }
};

std::string_view Text(Bytes bytes, std::size_t offset, std::size_t length) {
  if (bytes.size() <= offset) return {};
  return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()).substr(offset, length);
}

/// What the C library makes of the same text must be the same, but for "0x" alone, which it takes for a 0.
void CompareScanHex(std::string_view bytes) {
  const std::string text(bytes);
  std::uint32_t value = 1234;
  unsigned expected = 1234;
  const bool done = ScanHex32(text.c_str(), value);
  const bool isExpected = std::sscanf(text.c_str(), "%x", &expected) == 1;
  if (done)
    Require(isExpected && value == expected);
  else
    Require(value == 1234 && (!isExpected || expected == 0));
}

void ReadAsFile(Bytes bytes) {
  const InputFile input(bytes);
  char partId[5] = {1, 2, 3, 4, 5};
  std::uint32_t version = 1;
  const bool done = ReadRbiHeader(input.Name().c_str(), partId, version);
  Require(done == IsRbi(bytes));
  Require(partId[4] == '\0');
  if (!done) {
    Require(std::string_view(partId) == "NONE" && version == 0);
  } else {
    std::string id(Text(bytes, 18, 4));
    id.resize(4);
    Require(std::string_view(partId, 4) == id);
    unsigned expected = 0;
    std::sscanf(std::string(Text(bytes, 13, 4)).c_str(), "%x", &expected);
    Require(version == expected);
  }

  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(input.Name().c_str(), "rb"), &std::fclose);
  std::uint32_t lengthBytes = 0;
  Require(ReadRbiHeaderLength(file.get(), lengthBytes) == (bytes.size() >= 12));
  ResetRbiHeader();
  if (ParseRbiHeader(bytes)) Require(GetRbiHeaderLength() == lengthBytes);
}

void UseAccessors(Bytes bytes) {
  const std::uint8_t* payload = GetRbiPayload(bytes, nullptr);
  Require(payload >= bytes.data() && payload <= bytes.data() + bytes.size());
  for (const std::size_t size : {bytes.size(), bytes.size() / 2, std::size_t{0xFFFFFFFF}}) {
    auto sizeBytes = static_cast<std::uint32_t>(size);
    payload = GetRbiPayload(bytes, &sizeBytes);
    Require(payload >= bytes.data());
    if (IsRbi(bytes)) Require(sizeBytes <= static_cast<std::size_t>(bytes.data() + bytes.size() - payload));
  }

  std::array<char, 4> revision{};
  GetRbiRevision(bytes, revision);
  std::array<char, 19> text{};
  const int found = GetRbiStringField(bytes, text);
  Require(found == 0 || (found == -1 && text == std::array<char, 19>{}));
  std::int32_t first = 1000;
  std::int32_t second = 1000;
  Require(GetRbiNumberField(bytes, first, second) == -1);
  Require((first == 1000 && second == 1000) || (first >= -9 && first <= 99 && second >= -9 && second <= 99));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // The lines about foreign files go nowhere; what the sanitizers write goes by another way.
  stderr = std::fopen("/dev/null", "w");
  return stderr == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes bytes(data, size);
  CompareScanHex(Text(bytes, 0, 15));
  CompareScanHex(Text(bytes, 13, 15));
  ReadAsFile(bytes);
  UseAccessors(bytes);
  // The length of this header governs another container, too.
  UseAccessors(bytes.subspan(size / 2));
  std::string other = "ORBO.RBI";
  other += Text(bytes, size / 2, size);
  UseAccessors({reinterpret_cast<const std::uint8_t*>(other.data()), other.size()});
  return 0;
}
