// Commands to a box that is a process of its own: a transport over two pipes, observers, and a command log.
//
//   piped-transport BOX LOG

#include <talcpath.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "PipedTransport.h"

namespace {

using TalcPath::TalcByteCode;
using TalcPath::TalcCommand;

constexpr std::uint32_t kBoxId = 1;

/// Prints each packet on its way.
class PacketPrinter final : public TalcPath::TalcExchangeObserver {
 public:
  void BeforeExchange(TalcCommand&, const TalcByteCode& packet, TalcByteCode&, bool&, bool&,
                      TalcPath::TalcTransport&) override {
    const std::uint8_t* bytes = nullptr;
    if (!packet.GetPacketByteCodeBuffer(&bytes)) return;
    std::printf("packet  ");
    for (std::uint32_t i = 0; i < packet.GetSize(); ++i)
      std::printf(" %02X", bytes[i]);
    std::printf("\n");
  }
  int GetKey() const override { return 0; }
};

/// Prints each command that the box has done.
class CompletionPrinter final : public TalcPath::TalcCompletionObserver {
 public:
  void AfterCompletion(TalcCommand& command) override { std::printf("done     %s\n", command.GetName().c_str()); }
};

void PrintBoard() {
  TalcCommand command("VPDInfo");
  command.SetRequestCommand();
  command.SetSymbol("Board", "VPD_Hollen");
  const std::uint8_t* text = nullptr;
  std::uint32_t length = 0;
  if (TalcPath::TalcPathExecute(command) && command.GetBytesPointer("VPDInfo", &text, &length))
    std::printf("board    %s\n", std::string(text, text + length).c_str());
  else
    std::printf("board    %s\n", command.GetStatusName());
}

/// This box is too simple for the question.
void PrintSubcomponents() {
  TalcCommand command("HardwareSubcompCount");
  command.SetRequestCommand();
  TalcPath::TalcPathExecute(command);
  std::printf("parts    %s\n", command.GetStatusName());
}

int Talk(const char* box, const char* log) {
  PipedTransport transport(box);
  if (!transport.IsOpen()) {
    std::fprintf(stderr, "piped-transport: %s cannot be started\n", box);
    return 1;
  }
  TalcPath::TalcPathRegisterTransport(&transport, kBoxId);
  TalcPath::TalcPathSelectTransport(&transport);  // asks the box what it is
  TalcPath::TalcHWCapsManager& hardware = TalcPath::TalcHWCapsManager::Get();
  std::printf("hardware %s, %s\n", hardware.GetMyCapabilities().GetName().c_str(),
              hardware.IsHDSupported() ? "HD" : "SD");

  PacketPrinter packets;
  CompletionPrinter completions;
  TalcPath::TalcPathAddExchangeObserver(&packets);
  TalcPath::TalcPathAddCompletionObserver(&completions);
  const bool isLogging = TalcPath::TalcPathOpenCommandLog(log);
  PrintBoard();
  PrintSubcomponents();
  TalcPath::TalcPathCloseCommandLog();
  TalcPath::TalcPathRemoveCompletionObserver(&completions);
  TalcPath::TalcPathRemoveExchangeObserver(&packets);
  TalcPath::TalcPathUnregisterTransport(&transport, kBoxId);
  if (!isLogging) std::fprintf(stderr, "piped-transport: %s cannot be written\n", log);
  return isLogging ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: piped-transport BOX LOG\n");
    return 2;
  }
  if (!TalcPath::TalcPathInit()) {
    std::fprintf(stderr, "piped-transport: the library does not start\n");
    return 1;
  }
  const int exitCode = Talk(argv[1], argv[2]);
  TalcPath::TalcPathTerminate();
  return exitCode;
}
