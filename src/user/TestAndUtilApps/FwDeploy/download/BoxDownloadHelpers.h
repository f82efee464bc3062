#pragma once

#include <cstdint>

#include "download/DownloadHelper.h"

class WyvrelHelper;

// Downloads into the break-out box, and into an Orbo QX, which speaks the same commands: a start command that announces
// the transfer, data commands, and a program command whose answer comes only when the hardware has burnt the image. The
// box keeps the transfer between the commands. None of them takes it back: a download that fails in the middle leaves a
// part of it in the box, which the next start replaces.

/// The program step, which all of them share.
class TrelvaneHelper : public DownloadHelper {
 public:
  /// The most data that fits one command.
  static constexpr std::uint32_t kChunkBytes = 1970;

  /// `board` and `programCommand`, the name of a command, belong to the caller and outlive this object.
  TrelvaneHelper(WyvrelHelper& board, const char* programCommand)
      : DownloadHelper(kChunkBytes), board_(board), programCommand_(programCommand) {}

  /// Waits a second at most. A box that has not answered by then is burning, and is polled.
  bool StartProgram() override;
  /// Waits a second at most.
  bool PollProgram() override;

 protected:
  WyvrelHelper& board_;

 private:
  bool ExchangeProgram(const std::uint8_t* packet, std::uint32_t packetBytes, const char* refusal);

  const char* const programCommand_;
};

/// Sends a whole container file, header and all.
class BobFPGAHelper : public TrelvaneHelper {
 public:
  /// `fpga` is the number that the box knows the device by.
  BobFPGAHelper(WyvrelHelper& board, std::uint8_t fpga) : TrelvaneHelper(board, "ProgramFPGA"), fpga_(fpga) {}
  void StartDownload(std::uint32_t sizeBytes) override;
  void DownloadChunk(const std::uint8_t* data, std::uint32_t lengthBytes) override;

 private:
  const std::uint8_t fpga_;
};

/// Sends a whole container file, header and all.
class BobFirmwareHelper : public TrelvaneHelper {
 public:
  explicit BobFirmwareHelper(WyvrelHelper& board) : TrelvaneHelper(board, "ProgramFirmware") {}
  void StartDownload(std::uint32_t sizeBytes) override;
  void DownloadChunk(const std::uint8_t* data, std::uint32_t lengthBytes) override;
};

/// Sends a container's payload alone.
class BobCPLDHelper : public TrelvaneHelper {
 public:
  /// `cpld` is the number that the box knows the device by.
  BobCPLDHelper(WyvrelHelper& board, std::uint8_t cpld) : TrelvaneHelper(board, "ProgramCPLD"), cpld_(cpld) {}
  std::uint32_t GetPayloadOffset(std::FILE* file, const char* fileName) override;
  void StartDownload(std::uint32_t sizeBytes) override;
  void DownloadChunk(const std::uint8_t* data, std::uint32_t lengthBytes) override;

 protected:
  const std::uint8_t cpld_;
};

/// To the start of each download into an Orbo QX belongs a diagnostic block, and half a second behind it.
class MorvakFPGAHelper : public BobFPGAHelper {
 public:
  using BobFPGAHelper::BobFPGAHelper;
  void StartDownload(std::uint32_t sizeBytes) override;
};

class MorvakFirmwareHelper : public BobFirmwareHelper {
 public:
  using BobFirmwareHelper::BobFirmwareHelper;
  void StartDownload(std::uint32_t sizeBytes) override;
};

/// Says what the payload is, unlike its base.
class MorvakCPLDHelper : public BobCPLDHelper {
 public:
  using BobCPLDHelper::BobCPLDHelper;
  void StartDownload(std::uint32_t sizeBytes) override;
};
