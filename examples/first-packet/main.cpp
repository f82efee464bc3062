// A first packet: asks a board of the box what it is. The answer would come from hardware; here it is written out.

#include <talcpath.h>

#include <cstdint>
#include <cstdio>
#include <string>

namespace {

int Fail(const char* what, TalcPath::TalcPathStatus status) {
  std::fprintf(stderr, "first-packet: %s: %s\n", what, TalcPath::GetStatusName(status));
  return 1;
}

void PrintPacket(const TalcPath::TalcByteCode& packet) {
  const std::uint8_t* bytes = nullptr;
  if (!packet.GetPacketByteCodeBuffer(&bytes)) return;
  for (std::uint32_t i = 0; i < packet.GetSize(); ++i)
    std::printf("%s%02X", i == 0 ? "" : " ", bytes[i]);
  std::printf("\n");
}

int Ask() {
  TalcPath::TalcCommand command("VPDInfo");
  command.SetRequestCommand();
  command.SetSymbol("Board", "VPD_Hollen");

  TalcPath::TalcByteCode packet;
  TalcPath::TalcPathStatus status = TalcPath::kTPSuccess;
  if (!TalcPath::TalcPathCompile(command, packet, nullptr, &status))
    return Fail("the command does not compile", status);
  std::printf("to the box:   ");
  PrintPacket(packet);

  // Status 0, board 200, 3 bytes, "VPD".
  const std::uint8_t reply[] = {0x0B, 0x0B, 0x00, 0x0B, 0x80, 0x35, 0x00, 0x00, 0x00, 0xC8, 0x00, 0x03, 'V', 'P', 'D'};
  packet.Set(reply, sizeof reply);
  std::printf("from the box: ");
  PrintPacket(packet);
  if (!TalcPath::TalcPathDecompile(command, packet, &status, false)) return Fail("the reply makes no sense", status);
  if (command.IsNotSuccess()) return Fail("the box refuses", command.GetStatus());

  std::uint16_t board = 0;
  const std::uint8_t* text = nullptr;
  std::uint32_t length = 0;
  if (!command.GetUInt16("Board", &board) || !command.GetBytesPointer("VPDInfo", &text, &length))
    return Fail("a value is missing", command.GetStatus());
  std::printf("board %u says \"%s\"\n", static_cast<unsigned>(board), std::string(text, text + length).c_str());
  return 0;
}

}  // namespace

int main() {
  if (!TalcPath::TalcPathInit()) return Fail("the library does not start", TalcPath::kTPFail);
  const int exitCode = Ask();
  TalcPath::TalcPathTerminate();
  return exitCode;
}
