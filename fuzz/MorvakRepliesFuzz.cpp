// Any answers of the second line's driver to exchanges, reads of VPD and questions for codecs, and whole commands on
// top of it. The input is a row of rounds: a byte that says what is done, its arguments, and then what the driver
// answers, call by call: whether it succeeds, what it says that it returned, its record, and what it writes where the
// record points. What is missing at the end is 0.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "board/DriverRecords.h"
#include "board/MorvakHelper.h"
#include "errorException.h"
#include "FuzzInput.h"
#include "platform/Platform.h"

namespace {

using platform::Handle;

constexpr Handle kDevice = 0x31;
constexpr std::uint32_t kLargestBlock = 4096;

/// A driver that is there, that answers from the input, and that holds the helper to its records.
class AnyDriver final : public platform::Devices {
 public:
  /// What the last exchange was told and gave.
  struct Exchanged {
    TalcCommandRecord record;
    bool succeeded;
    std::uint32_t returned;
    std::uint32_t status;
  };

  Input* input = nullptr;  ///< null: a driver of model 5 with two slots
  std::optional<Exchanged> exchanged;
  bool vpdSucceeded = false;

  Handle SetupDiGetClassDevsA(const platform::Guid&, std::uint32_t) override { return 1; }
  bool SetupDiEnumDeviceInterfaces(Handle, const platform::Guid&, std::uint32_t, platform::InterfaceData&) override {
    return true;
  }
  bool SetupDiGetDeviceInterfaceDetailA(Handle, platform::InterfaceData&, platform::InterfaceDetail* detail,
                                        std::uint32_t, std::uint32_t* requiredSize) override {
    if (detail != nullptr) return true;
    *requiredSize = 8;
    return false;
  }
  bool SetupDiEnumDeviceInfo(Handle, std::uint32_t, platform::DeviceInfo&) override { return true; }
  Handle SetupDiOpenDevRegKey(Handle, platform::DeviceInfo&, std::uint32_t, std::uint32_t, std::uint32_t,
                              std::uint32_t) override {
    std::abort();
  }
  bool SetupDiDestroyDeviceInfoList(Handle) override { return true; }
  Handle CreateFileA(const char*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) override {
    return kDevice;
  }
  bool CloseHandle(Handle) override { return true; }
  bool RegCloseKey(Handle) override { std::abort(); }
  bool DeviceIoControl(Handle device, std::uint32_t code, const void* in, std::uint32_t inLength, void* out,
                       std::uint32_t outLength, std::uint32_t& returned, Handle event) override {
    Require(device == kDevice && event == 0 && out != nullptr);
    if (input == nullptr) {
      const MorvakModelInfo info{2, 5};
      Require(outLength == sizeof info);
      std::memcpy(out, &info, sizeof info);
      return true;
    }
    const bool succeeds = !input->Flag();
    const std::uint8_t told = input->Byte();
    if (told == 0) returned = outLength;
    if (told > 1) returned = input->Word();
    switch (code) {
      case IOCTL_GetMorvakModel:
        Require(in == nullptr && inLength == 0 && outLength == sizeof(MorvakModelInfo));
        Put(out, outLength, input->Byte());
        break;
      case IOCTL_QueryCodecSlot:
        Require(inLength == 4 && outLength == sizeof(ModuleInfoResponse));
        Put(out, outLength, input->Byte());
        break;
      case IOCTL_ReadVPD:
        Require(inLength == sizeof(VpdIn) && outLength == 4);
        FillVpd(in);
        vpdSucceeded = succeeds;
        break;
      case IOCTL_TransactTalc:
        Require(inLength == sizeof(TalcCommandRecord) && outLength == sizeof(TalcReply));
        Transact(in, out, outLength);
        exchanged->succeeded = succeeds;
        exchanged->returned = returned;
        break;
      default:
        std::abort();
    }
    return succeeds;
  }
  Handle CreateEventA(bool, bool) override { std::abort(); }
  std::uint32_t GetLastError() override { std::abort(); }
  std::string FormatMessageA(std::uint32_t) override { std::abort(); }
  platform::RegisterTrap* TrapAt(std::uint64_t) override { std::abort(); }

 private:
  void FillVpd(const void* in) {
    VpdIn record;
    std::memcpy(&record, in, sizeof record);
    Require(record.bufferAddress != 0 && record.bufferSizeBytes == kBoardVpdBytes);
    auto* const area = reinterpret_cast<std::uint8_t*>(static_cast<std::uintptr_t>(record.bufferAddress));
    const std::uint8_t fill = input->Byte();
    if (fill != 0) std::memset(area, fill, kBoardVpdBytes);
    Put(area, kBoardVpdBytes, input->Byte());
  }

  void Transact(const void* in, void* out, std::size_t outLength) {
    TalcCommandRecord record;
    std::memcpy(&record, in, sizeof record);
    Require(record.replyCapacityBytes == 2048);
    // One status stands for the time-out, which no input finds by itself.
    std::uint32_t status = input->Byte();
    status = status == 1 ? kHWCerr_CommandTimeout : status == 2 ? input->Word() : status;
    const std::uint32_t words[] = {status, 0xEEEEEEEE};
    std::memcpy(out, words, outLength);
    exchanged = Exchanged{record, false, 0, status};
    if (record.replyAddress == 0) return;
    auto* const reply = reinterpret_cast<std::uint8_t*>(static_cast<std::uintptr_t>(record.replyAddress));
    Require(reply[0] == 0x12);
    const std::uint8_t header = input->Byte();
    if (header == 0) {
      reply[0] = reply[1] = 0x0B;
      Put(reply + 2, record.replyCapacityBytes - 2, input->Byte());
    } else {
      Put(reply, record.replyCapacityBytes, header - 1u);
    }
  }

  void Put(void* to, std::size_t room, std::size_t length) {
    const auto bytes = input->Bytes(std::min(room, length));
    if (!bytes.empty()) std::memcpy(to, bytes.data(), bytes.size());
  }
};

class DriverPlatform final : public platform::Platform {
 public:
  AnyDriver driver;
  platform::Devices& devices() override { return driver; }
  platform::Clock& clock() override { std::abort(); }
  platform::FrontEnd& frontEnd() override { std::abort(); }
  platform::TextBlocks& textBlocks() override { return platform::Native().textBlocks(); }
  platform::Files& files() override { return platform::Native().files(); }
};

/// A helper that is opened once for all inputs.
class System {
 public:
  System() {
    Require(helper.Open());
    Require(helper.boardKind == BoardKind::kMorvakModel5);
  }

  DriverPlatform platform;

 private:
  const platform::ScopedPlatform current_{platform};

 public:
  MorvakHelper helper{OpenMode::kMorvak};
};

System& TheSystem() {
  static System& system = *new System;
  return system;
}

constexpr char kBadHeader[] = "TransactBoBCommand: bad header on Talc response packet.";
constexpr char kNotSent[] = "TransactBoBCommand: can't send talc command - ioctl failed.";
constexpr char kBadReturn[] = "TransactBoBCommand: can't send talc command - bad ioctl return.";
constexpr char kNoVpd[] = "MorvakHelper::GetBoardVPD can't get Morvak VPD - ioctl failed.";

/// What may be thrown by commands and questions.
const std::set<std::string> kFailures = {
    kBadHeader,
    kNotSent,
    kBadReturn,
    "Talc error decompiling the returned Talc byte code packet.",
    "Unsupported BOB command or parameters",
    "Bad BOB status",
    "kHWCerr_UnexpectedObjectTypeError",
    "MorvakHelper: Query of invalid codec.",
    "MorvakHelper: Invalid number of codec slots.",
};

/// Empty when a reply or a time-out is to come out.
std::string ExpectedFailure(const AnyDriver::Exchanged& exchanged, const std::uint8_t* reply, std::uint32_t room) {
  if (!exchanged.succeeded) return kNotSent;
  if (exchanged.returned != 8) return kBadReturn;
  if (exchanged.status == kHWCerr_CommandTimeout) return "";
  const bool isReply = reply[0] == 0x0B && reply[1] == 0x0B && reply[2] * 256u + reply[3] + 4u <= room;
  return isReply ? "" : kBadHeader;
}

/// A raw exchange. The reply's room is as long as is promised, so that a sanitizer sees each byte beyond.
void Exchange(System& system, Input& input) {
  const std::uint8_t what = input.Byte();
  // A row of bytes, nothing, or one on either side of what a block holds.
  std::vector<std::uint8_t> packet((what & 2) != 0 ? kLargestBlock + (what >> 2 & 1) : 0, 0x0B);
  if ((what & 2) == 0) {
    const auto bytes = input.Bytes(input.Byte());
    packet.assign(bytes.begin(), bytes.end());
  }
  const bool sends = (what & 1) != 0 && !packet.empty();
  const std::uint32_t room = input.Word() % (kLargestBlock + 2);
  const auto reply = std::make_unique<std::uint8_t[]>(std::max(room, 4u));
  std::uint32_t replyBytes = room;
  std::string failure;
  HwcStatus status = kHWCerr_None;
  try {
    status = system.helper.IOCTL_TransactBoBCommand(sends ? packet.data() : nullptr,
                                                    sends ? static_cast<std::uint32_t>(packet.size()) : 0, reply.get(),
                                                    &replyBytes, 1, 0);
  } catch (const errorException& error) {
    failure = error.what();
  }
  const AnyDriver::Exchanged& exchanged = *system.platform.driver.exchanged;
  // Blocks come back after every exchange, so there is always one.
  Require((exchanged.record.commandAddress != 0) == (sends && packet.size() <= kLargestBlock));
  Require((exchanged.record.replyAddress != 0) == (room > 0 && room <= kLargestBlock));
  Require(failure == ExpectedFailure(exchanged, reply.get(), room));
  if (!failure.empty() || status == kHWCerr_CommandTimeout) {
    Require(replyBytes == room);
    return;
  }
  Require(status == kHWCerr_None && replyBytes == reply[2] * 256u + reply[3] + 4u);
}

void AskVersion(System& system) {
  char text[32] = {};
  const HwcStatus status = system.helper.ExecuteCommand(
      "GetStringPartRev", {Argument::Symbol("PartID", "MorvakTesk"), Argument::OutBytes("Version", text, 31)});
  Require(text[31] == '\0');
  if (status == kHWCerr_CommandTimeout) Require(text[0] == '\0');
}

void SendData(System& system, Input& input) {
  const auto bytes = input.Bytes(1 + input.Byte() % 64);
  if (bytes.empty()) return;
  system.helper.SendCommand("FPGADownload",
                            {Argument::UInt16("Length", static_cast<std::uint16_t>(bytes.size())),
                             Argument::Bytes("TheDLData", bytes.data(), static_cast<std::uint32_t>(bytes.size()))});
}

void AskVpd(System& system, Input& input) {
  const auto bytes = input.Bytes(input.Byte() % 16);
  const std::string board(bytes.begin(), bytes.end());
  const auto buffer = std::make_unique<std::uint8_t[][kBoardVpdBytes]>(1);
  bool isThrown = false;
  try {
    system.helper.GetBoardVPD(board.empty() ? nullptr : board.c_str(), buffer[0]);
  } catch (const errorException& error) {
    Require(error.what() == std::string(kNoVpd));
    isThrown = true;
  }
  Require(isThrown != system.platform.driver.vpdSucceeded);
}

void AskForCodec(System& system, Input& input) {
  const auto slot = static_cast<std::int8_t>(input.Byte() % 5 - 1);
  const bool isPresent = system.helper.IsCodecPresent(slot);
  Require(!isPresent || (slot >= 0 && slot <= 2));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  TheSystem();
  // The lines about memory go nowhere.
  stdout = std::fopen("/dev/null", "w");
  return stdout == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  System& system = TheSystem();
  Input input({data, size});
  system.platform.driver.input = &input;
  for (int round = 0; round < 8 && !input.AtEnd(); ++round) {
    try {
      switch (input.Byte() % 5) {
        case 0:
          Exchange(system, input);
          break;
        case 1:
          AskVersion(system);
          break;
        case 2:
          SendData(system, input);
          break;
        case 3:
          AskVpd(system, input);
          break;
        default:
          AskForCodec(system, input);
          break;
      }
    } catch (const errorException& failure) {
      Require(kFailures.contains(failure.what()));
    }
  }
  system.platform.driver.input = nullptr;
  return 0;
}
