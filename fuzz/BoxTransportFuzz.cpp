// Any status values and reply words under the transport to the box, and whole commands on top of it. The input is a row
// of exchanges: a byte that says what is done, its arguments, and then the values of the registers in the order in
// which they are read. What is missing at the end reads as an empty reply FIFO.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "board/VeltraHelper.h"
#include "errorException.h"
#include "FuzzInput.h"
#include "simulator/Boards.h"
#include "simulator/MappedCard.h"
#include "simulator/SimulatedPlatform.h"

namespace {

constexpr std::uint32_t kStatus = 0x80000;
constexpr std::uint32_t kReply = 0x80210;
constexpr std::uint32_t kData = 0x80380;
constexpr std::uint32_t kControl = 0x80384;
constexpr std::uint32_t kReplyEmpty = 0x1000;
constexpr std::uint64_t kWindowAddress = 0x1000;

/// FIFO registers that read as the input says, and hold the transport to their protocol.
class AnyFifo final : public platform::RegisterTrap {
 public:
  /// Null: as it is where nothing happens.
  Input* input = nullptr;
  std::uint64_t wordsSent = 0;

  /// The next access begins an exchange.
  void BeginExchange() {
    wordsSent = 0;
    Require(!writeBack_ && !latched_);
  }

  std::uint32_t Read(std::uint32_t offset) override {
    Require(!writeBack_ && !latched_ && !mustPop_);
    if (offset == kStatus) {
      const std::uint32_t status = input == nullptr || input->AtEnd() ? kReplyEmpty : StatusFrom(input->Byte());
      writeBack_ = status;
      return status;
    }
    Require(offset == kReply);
    mustPop_ = true;
    return input == nullptr ? 0 : input->Word();
  }

  void Write(std::uint32_t offset, std::uint32_t value) override {
    if (writeBack_) {
      Require(offset == kStatus && value == *writeBack_);
      writeBack_.reset();
      return;
    }
    switch (offset) {
      case kReply:  // a flush pops without having read
        Require(value == 0 && !latched_);
        mustPop_ = false;
        break;
      case kData:
        Require(!latched_ && !mustPop_);
        latched_ = true;
        break;
      case kControl:
        Require(latched_ && value == (wordsSent == 0 ? 0x80000020 : 0x80000000));
        latched_ = false;
        ++wordsSent;
        break;
      default:
        std::abort();
    }
  }

 private:
  /// The four bits that mean something, and now and then all others.
  static std::uint32_t StatusFrom(std::uint8_t byte) {
    return (byte & 1u) << 8 | (byte & 2u) << 8 | (byte & 4u) << 10 | (byte & 8u) << 10 |
           ((byte & 16u) != 0 ? 0xFFFFCCFF : 0);
  }

  std::optional<std::uint32_t> writeBack_;
  bool latched_ = false;
  bool mustPop_ = false;
};

/// A helper on its card, opened once for all inputs.
class System {
 public:
  System() {
    clock_.SetReadNanoseconds(50'000'000);  // a second has twenty looks
    platform_.devices().Add(simulator::kBelmaraBoard.interfaceClass, std::string(simulator::kBelmaraBoard.devicePath),
                            card_);
    helper.emplace(OpenMode::kBelmaraAlone);
    Require(helper->Open());
  }

  AnyFifo fifo;
  std::optional<VeltraHelper> helper;

 private:
  simulator::VirtualClock clock_;
  simulator::SimulatedPlatform platform_{clock_};
  const platform::ScopedPlatform current_{platform_};
  simulator::MappedCard card_{kWindowAddress, &fifo};
};

System& TheSystem() {
  static System& system = *new System;
  return system;
}

/// What may be thrown, and nothing else.
const std::set<std::string> kFailures = {
    "BOB Communications error, timeout writing command fifo",
    "BOB Communications error, missing reply header",
    "BOB Communications error, bad reply length",
    "BOB Communications error, timeout while reading reply",
    "Talc error decompiling the returned Talc byte code packet.",
    "Talc error decompiling the returned %s Talc byte code packet",
    "Unsupported BOB command or parameters",
    "Bad BOB status",
    "kHWCerr_UnexpectedObjectTypeError",
};

std::uint32_t WordsOf(std::size_t bytes) {
  return static_cast<std::uint32_t>((bytes + 3) / 4);
}

/// A raw exchange, some of its pointers null. The blocks are as long as is promised, so that a sanitizer sees each byte
/// beyond.
void Exchange(System& system, Input& input) {
  const std::uint8_t what = input.Byte();
  const auto command = input.Bytes(input.Byte());
  // A copy that ends where it ends.
  const std::vector<std::uint8_t> packet(command.begin(), command.end());
  const bool sends = (what & 1) != 0;
  const auto reply = std::make_unique<std::uint8_t[]>(kReplyRoomBytes);
  std::uint32_t replyBytes = 2000;
  const std::uint32_t timeout = (what & 8) != 0 ? input.Word() % 1'000'001 : 0;
  const HwcStatus status = system.helper->TransactBoBCommand(
      sends ? packet.data() : nullptr, static_cast<std::uint32_t>(packet.size()),
      (what & 2) != 0 ? reply.get() : nullptr, (what & 4) != 0 ? &replyBytes : nullptr, timeout, 0);
  Require(system.fifo.wordsSent == (sends && packet.data() != nullptr ? WordsOf(packet.size()) : 0));
  const bool receives = (what & 6) == 6;
  if (!receives) Require(status == kHWCerr_None);
  if (!receives || status == kHWCerr_CommandTimeout) {
    Require(replyBytes == 2000);
    return;
  }
  Require(status == kHWCerr_None && replyBytes >= 8 && replyBytes <= 2052);
  Require(reply[0] == 0x0B && reply[1] == 0x0B && std::uint32_t{reply[2]} * 256 + reply[3] + 4 == replyBytes);
}

void AskConfiguration(System& system) {
  std::uint8_t major = 0xEE;
  char firmware[30] = {};
  const HwcStatus status =
      system.helper->ExecuteCommand("HWConfigFB", {Argument::OutUInt8("SparkwellMajorRev", &major),
                                                   Argument::OutBytes("FirmwareRev", firmware, sizeof firmware - 1)});
  Require(system.fifo.wordsSent == 2 && firmware[sizeof firmware - 1] == '\0');
  if (status == kHWCerr_CommandTimeout) Require(major == 0xEE);
}

void AskVpd(System& system) {
  std::uint16_t size = 0;
  const auto vpd = std::make_unique<std::uint8_t[]>(1999);
  system.helper->ExecuteCommand("VPDInfo",
                                {Argument::Symbol("Board", "VPD_Jorl"), Argument::OutUInt16("VPDSize", &size),
                                 Argument::OutBytes("VPDInfo", vpd.get(), 1999)});
  Require(system.fifo.wordsSent == 3);
}

void SendData(System& system, Input& input) {
  const auto bytes = input.Bytes(1 + input.Byte() % 64);
  if (bytes.empty()) return;
  system.helper->SendCommand("FPGADownload",
                             {Argument::UInt16("Length", static_cast<std::uint16_t>(bytes.size())),
                              Argument::Bytes("TheDLData", bytes.data(), static_cast<std::uint32_t>(bytes.size()))});
  Require(system.fifo.wordsSent == WordsOf(10 + bytes.size()));
}

void Decode(System& system, Input& input) {
  const auto reply = input.Bytes(input.Byte());
  std::uint16_t size = 0;
  system.helper->DecodeReply(reply.data(), static_cast<std::uint32_t>(reply.size()), "VPDInfo",
                             {Argument::OutUInt16("VPDSize", &size)});
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  TheSystem();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  System& system = TheSystem();
  Input input({data, size});
  system.fifo.input = &input;
  for (int round = 0; round < 8 && !input.AtEnd(); ++round) {
    system.fifo.BeginExchange();
    try {
      switch (input.Byte() % 5) {
        case 0:
          Exchange(system, input);
          break;
        case 1:
          AskConfiguration(system);
          break;
        case 2:
          AskVpd(system);
          break;
        case 3:
          SendData(system, input);
          break;
        default:
          Decode(system, input);
          break;
      }
    } catch (const errorException& failure) {
      Require(kFailures.contains(failure.what()));
    }
  }
  system.fifo.input = nullptr;
  return 0;
}
