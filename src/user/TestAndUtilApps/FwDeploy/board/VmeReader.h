#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "board/VmeInterpreter.h"
#include "board/VmePrint.h"

/// Reads a VME file: bytes, numbers and the data of shifts, from the file or from the heap of the running loop.
///
/// Behind the end of the file every byte read prints a line, and reads as 0xFF.
class VmeReader {
 public:
  /// Both must outlive this object.
  VmeReader(VmeInterpreter& interpreter, const VmePrint& print) : vme_(interpreter), print_(print) {}

  /// Opens a file in the place of the one that was open. False when it cannot be opened.
  bool Open(const char* path);
  void Close() { file_.reset(); }
  bool IsOpen() const { return file_ != nullptr; }

  /// The next byte of the file, wherever other bytes come from; -1 at its end.
  int ReadFileByte() { return blockAt_ != blockEnd_ || HasMore() ? block_[blockAt_++] : -1; }
  /// The next byte, -128 to 127. -1 is the end of the data, and the byte 0xFF as well.
  int GetVmeByte();
  /// A number of groups of 7 bits, low group first, of which all but the last have their top bit set. What is above 16
  /// bits is dropped; the end of the data ends it.
  std::uint16_t ReadVmeNumber();
  /// The data of `dataSize` bits, packed as the file and the data itself say. `buffer` must have room for them.
  void ReadVmeData(VmeBuffer& buffer);

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  bool FillBlock();
  bool HasMore();
  /// 0 to 255, or -1 at the end of the data.
  int NextByte() { return vme_.Has(VmeInterpreter::kFromHeap) ? NextHeapByte() : ReadFileByte(); }
  int NextHeapByte();
  std::uint8_t NextDataByte() { return static_cast<std::uint8_t>(NextByte()); }
  void ReadBytes(VmeBuffer& buffer, std::uint32_t bytes, bool hasRuns, std::uint8_t fill, bool& isOffHeap);
  std::uint32_t CopyFromFile(VmeBuffer& buffer, std::uint32_t bytes);
  void ReadBitMap(VmeBuffer& buffer, std::uint32_t bytes);
  void ReadNibbles(VmeBuffer& buffer, std::uint32_t bytes, std::uint32_t patternNibbles);
  void LeaveHeap(bool& isOffHeap);

  VmeInterpreter& vme_;
  const VmePrint& print_;
  std::unique_ptr<std::FILE, CloseFile> file_;
  std::array<std::uint8_t, 4096> block_{};
  std::size_t blockAt_ = 0;
  std::size_t blockEnd_ = 0;
};
