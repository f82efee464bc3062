// A box of few words, at the other end of two pipes. It needs no library: it knows three packets, byte by byte.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using Packet = std::vector<std::uint8_t>;

bool Read(Packet& packet) {
  packet.resize(4);
  if (std::fread(packet.data(), 1, 4, stdin) != 4) return false;
  const auto rest = static_cast<std::size_t>(packet[2] << 8 | packet[3]);
  packet.resize(4 + rest);
  return std::fread(packet.data() + 4, 1, rest, stdin) == rest && rest >= 4;
}

/// The packet's own header with the status in it, and values behind it.
void Answer(const Packet& packet, std::uint8_t status, const std::string& values) {
  Packet reply(packet.begin(), packet.begin() + 8);
  const std::size_t length = 4 + values.size();
  reply[2] = static_cast<std::uint8_t>(length >> 8);
  reply[3] = static_cast<std::uint8_t>(length);
  reply[7] = status;
  reply.insert(reply.end(), values.begin(), values.end());
  std::fwrite(reply.data(), 1, reply.size(), stdout);
  std::fflush(stdout);
}

bool IsRequestOf(const Packet& packet, std::uint8_t function) {
  return packet[4] == 0x80 && packet[5] == (function << 1 | 1);
}

}  // namespace

int main() {
  Packet packet;
  while (Read(packet)) {
    if (IsRequestOf(packet, 16))  // what it is
      Answer(packet, 0, "Trelvane");
    else if (IsRequestOf(packet, 26) && packet.size() == 10)  // a board's data: the board, 3 bytes, "VPD"
      Answer(packet, 0, {static_cast<char>(packet[8]), static_cast<char>(packet[9]), 0, 3, 'V', 'P', 'D'});
    else
      Answer(packet, 2, "");  // not supported
  }
  return 0;
}
