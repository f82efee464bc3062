#include "simulator/RbiFile.h"

#include <string>

#include "simulator/HexText.h"

namespace simulator {
namespace {

constexpr std::string_view kMagic = "ORBO.RBI";
constexpr std::string_view kTaggedText = "S:BENCH;M:01.00;";

}  // namespace

std::vector<std::uint8_t> MakeRbiHeader(std::string_view partId, std::uint16_t version) {
  std::string behindLength(1, 'R');
  behindLength.append(Hex(version, 4)).append(1, ' ').append(partId).append(kTaggedText);
  const std::size_t length = kMagic.size() + 4 + behindLength.size();
  std::vector<std::uint8_t> header(kMagic.begin(), kMagic.end());
  for (const int shift : {24, 16, 8, 0})
    header.push_back(static_cast<std::uint8_t>(length >> shift));
  header.insert(header.end(), behindLength.begin(), behindLength.end());
  return header;
}

std::vector<std::uint8_t> MakeRbi(std::string_view partId, std::uint16_t version,
                                  std::span<const std::uint8_t> payload) {
  std::vector<std::uint8_t> file = MakeRbiHeader(partId, version);
  file.insert(file.end(), payload.begin(), payload.end());
  return file;
}

}  // namespace simulator
