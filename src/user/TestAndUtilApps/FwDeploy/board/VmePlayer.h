#pragma once

#include <cstdint>
#include <string_view>

#include "board/JtagPort.h"
#include "board/VmeDelay.h"
#include "board/VmeInterpreter.h"
#include "board/VmePrint.h"
#include "board/VmeReader.h"
#include "board/VmeShifter.h"

/// Plays VME files: byte codes of a JTAG programming sequence, in a firmware container. docs/vme.md has the language.
///
///     VmePlayer& player = TheVmePlayer();
///     player.port.Connect(registers.From(0x80400));
///     const std::int8_t code = player.PlayVmeFile("KRVL0101.rbi");   // 0: all went well
///
/// The process has one, and what a file leaves behind stays for the next one: pins and TAP state, buffers, header and
/// trailer data, frequency, end states, vendor. Nothing is thrown but what an access to the port throws.
class VmePlayer {
 public:
  explicit VmePlayer(VmePrint print = PrintToConsole);
  VmePlayer(const VmePlayer&) = delete;
  VmePlayer& operator=(const VmePlayer&) = delete;

  /// Plays a file on the port. Returns a `VmeCode`, or another number that the file brings about; every one but 0 is a
  /// failure, a passed USERCODE too. Once the header was good, whatever the file holds, its end leaves the TAP in reset
  /// and programming disabled. A file whose header was not good stays open until the next one is played.
  ///
  /// Waits three times as long as the file asks. Percentages count the waits.
  std::int8_t PlayVmeFile(const char* path);

  bool HasFileOpen() const { return reader_.IsOpen(); }

  JtagPort port;
  VmeInterpreter interpreter;

 private:
  bool SkipContainerHeader();
  bool NextBytesAre(std::string_view text);
  void EnterProgramming();
  void LeaveProgramming();

  int ProcessVme();
  int SetHeaderTrailer(std::uint8_t opcode);
  int RepeatLoop(std::uint16_t count);
  void SetShift(std::uint16_t flowBit);

  int ShiftVme(std::uint8_t opcode);
  bool EnterShiftIr();
  bool EnterShiftDr();
  int ShiftData();
  bool LeaveShift(std::uint8_t trailerOpcode, std::uint16_t trailerBits, std::uint8_t endState);
  int ReadModifyWrite();
  int CompareAgain();

  bool ReadDataBlocks();
  bool ReadBlock(std::uint8_t opcode);
  bool ShiftTdiData();
  bool DynamicShift(std::uint8_t direction, std::uint16_t amount);

  const VmePrint print_;
  VmeDelay delay_;
  VmeReader reader_;
  VmeShifter shifter_;
};

/// The player of this process.
VmePlayer& TheVmePlayer();

/// What a code of 0 to -5 means; null for any other.
const char* VmeErrorText(int code);
