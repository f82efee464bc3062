#include "download/BoxDownloadHelpers.h"

#include "container/RbiContainer.h"
#include "errorException.h"
#include "platform/Platform.h"
#include "WyvrelHelper.h"

namespace {

constexpr std::uint32_t kProgramWaitMicroseconds = 1'000'000;
constexpr std::uint32_t kPacketCapacityBytes = 2048;

/// What the block does in the hardware is the hardware's; a download that begins without it is not taken.
void SendMorvakDiagnostic(WyvrelHelper& board) {
  constexpr std::uint8_t kBlock[] = {0x62, 0x64, 0x00, 0x02, 0x00, 0x02, 0x00, 0x00};
  constexpr std::uint32_t kPauseMilliseconds = 500;
  TalcPath::TalcCommand command("Diagnostic");
  command.SetSendCommand();
  command.SetUInt16("Length", sizeof kBlock);
  command.SetBytes("DiagData", kBlock, sizeof kBlock);
  if (board.TransactCommand(command) != kHWCerr_None) throw errorException("Failed to send Diagnostic Talc command");
  platform::Current().clock().Sleep(kPauseMilliseconds);
}

}  // namespace

bool TrelvaneHelper::StartProgram() {
  std::uint8_t packet[kPacketCapacityBytes];
  std::uint32_t packetBytes = sizeof packet;
  if (board_.PrecompileCommand(packet, &packetBytes, 0, programCommand_, {}) != kHWCerr_None)
    throw errorException("Failed Trelvane program precompile");
  return ExchangeProgram(packet, packetBytes, "Trelvane program error");
}

bool TrelvaneHelper::PollProgram() {
  // The capital letter is how users tell the two apart.
  return ExchangeProgram(nullptr, 0, "Trelvane Program command error");
}

/// Returns false for a box that has not answered yet, which is no failure however often it happens.
bool TrelvaneHelper::ExchangeProgram(const std::uint8_t* packet, std::uint32_t packetBytes, const char* refusal) {
  std::uint8_t reply[kReplyRoomBytes];
  std::uint32_t replyBytes = kPacketCapacityBytes;
  const HwcStatus status =
      board_.TransactBoBCommand(packet, packetBytes, reply, &replyBytes, kProgramWaitMicroseconds, 0);
  if (status != kHWCerr_None && status != kHWCerr_CommandTimeout)
    throw errorException("Failed Trelvane program command");
  if (status == kHWCerr_CommandTimeout) return false;
  if (board_.DecodeReply(reply, replyBytes, programCommand_, {}) != kHWCerr_None) throw errorException(refusal);
  return true;
}

void BobFPGAHelper::StartDownload(std::uint32_t sizeBytes) {
  if (board_.SendCommand("StartFPGADownload",
                         {Argument::UInt8("TheFPGA", fpga_), Argument::Symbol("FileType", "kBoBF_Rbi"),
                          Argument::UInt32("DownloadSize", sizeBytes)}) != kHWCerr_None)
    throw errorException("Could not start FPGA download");
}

void BobFPGAHelper::DownloadChunk(const std::uint8_t* data, std::uint32_t lengthBytes) {
  if (board_.SendCommand("FPGADownload", {Argument::UInt16("Length", static_cast<std::uint16_t>(lengthBytes)),
                                          Argument::Bytes("TheDLData", data, lengthBytes)}) != kHWCerr_None)
    throw errorException("Failed FPGA download command");
}

void BobFirmwareHelper::StartDownload(std::uint32_t sizeBytes) {
  if (board_.SendCommand("StartFirmwareDownload",
                         {Argument::UInt8("Region", 0), Argument::Symbol("FileType", "kBoB_Rbi"),
                          Argument::UInt32("DownloadSize", sizeBytes)}) != kHWCerr_None)
    throw errorException("Could not start firmware download");
}

void BobFirmwareHelper::DownloadChunk(const std::uint8_t* data, std::uint32_t lengthBytes) {
  // The address is 0 in every command: the box places the data in the order in which it comes.
  if (board_.SendCommand("FirmwareDownload", {Argument::UInt32("Address", 0),
                                              Argument::UInt16("Length", static_cast<std::uint16_t>(lengthBytes)),
                                              Argument::Bytes("TheDLData", data, lengthBytes)}) != kHWCerr_None)
    throw errorException("Failed firmware download command");
}

std::uint32_t BobCPLDHelper::GetPayloadOffset(std::FILE* file, const char*) {
  std::uint32_t headerLength = 0;
  if (!ReadRbiHeaderLength(file, headerLength)) throw errorException("RBI file header is not usable");
  return headerLength;
}

void BobCPLDHelper::StartDownload(std::uint32_t sizeBytes) {
  // The type says container though the header stays behind: that is what the box expects.
  if (board_.SendCommand("StartCPLDDownload",
                         {Argument::UInt8("TheCPLD", cpld_), Argument::Symbol("FileType", "kBoBC_Rbi"),
                          Argument::UInt32("DownloadSize", sizeBytes)}) != kHWCerr_None)
    throw errorException("Could not start Trelvane CPLD download");
}

void BobCPLDHelper::DownloadChunk(const std::uint8_t* data, std::uint32_t lengthBytes) {
  if (board_.SendCommand("CPLDDownload", {Argument::UInt16("Length", static_cast<std::uint16_t>(lengthBytes)),
                                          Argument::Bytes("TheDLData", data, lengthBytes)}) != kHWCerr_None)
    throw errorException("Failed CPLD download command");
}

void MorvakFPGAHelper::StartDownload(std::uint32_t sizeBytes) {
  SendMorvakDiagnostic(board_);
  BobFPGAHelper::StartDownload(sizeBytes);
}

void MorvakFirmwareHelper::StartDownload(std::uint32_t sizeBytes) {
  SendMorvakDiagnostic(board_);
  BobFirmwareHelper::StartDownload(sizeBytes);
}

void MorvakCPLDHelper::StartDownload(std::uint32_t sizeBytes) {
  SendMorvakDiagnostic(board_);
  if (board_.SendCommand("StartCPLDDownload",
                         {Argument::UInt8("TheCPLD", cpld_), Argument::Symbol("FileType", "kBoBC_Bin"),
                          Argument::UInt32("DownloadSize", sizeBytes)}) != kHWCerr_None)
    throw errorException("Could not start Orbo QX CPLD download");
}
