#include "simulator/KarvelProgram.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "simulator/SeededBytes.h"
#include "simulator/VmeData.h"

namespace simulator {
namespace {

// Opcodes of a VME file.
constexpr std::uint8_t kEndDr = 0x02;
constexpr std::uint8_t kEndIr = 0x03;
constexpr std::uint8_t kHir = 0x06;
constexpr std::uint8_t kTir = 0x07;
constexpr std::uint8_t kHdr = 0x08;
constexpr std::uint8_t kTdr = 0x09;
constexpr std::uint8_t kState = 0x10;
constexpr std::uint8_t kSir = 0x11;
constexpr std::uint8_t kSdr = 0x12;
constexpr std::uint8_t kTdi = 0x13;
constexpr std::uint8_t kTdo = 0x14;
constexpr std::uint8_t kMask = 0x15;
constexpr std::uint8_t kMem = 0x19;
constexpr std::uint8_t kWait = 0x1A;
constexpr std::uint8_t kTck = 0x1B;
constexpr std::uint8_t kShr = 0x23;
constexpr std::uint8_t kHeap = 0x32;
constexpr std::uint8_t kRepeat = 0x33;
constexpr std::uint8_t kFromFile = 0x55;
constexpr std::uint8_t kEndLoop = 0x59;
constexpr std::uint8_t kHeapCheck = 0x60;
constexpr std::uint8_t kVues = 0x61;
constexpr std::uint8_t kContinue = 0x70;
constexpr std::uint8_t kEndVme = 0x7F;

constexpr std::uint8_t kCompressed = 0xF1;
constexpr std::uint8_t kReset = 0;
constexpr std::uint8_t kIdle = 1;

// Instructions of the part.
constexpr std::uint8_t kIdcode = 0x16;
constexpr std::uint8_t kUsercode = 0x17;
constexpr std::uint8_t kEnable = 0x15;
constexpr std::uint8_t kDisable = 0x1E;
constexpr std::uint8_t kErase = 0x03;
constexpr std::uint8_t kAddress = 0x01;
constexpr std::uint8_t kProgramRow = 0x67;
constexpr std::uint8_t kReadRow = 0x2A;
constexpr std::uint8_t kProgramUsercode = 0x1A;
constexpr std::uint8_t kProgramDone = 0x2F;

/// The first bits that come out while an instruction goes in: 1 and 0, and a 1 if the part is done.
constexpr std::uint8_t kDoneStatus = 0xA0;
constexpr std::uint8_t kStatusMask = 0xE0;

constexpr KarvelUsercode kKarvelIdcode = {'K', 'R', 'V', 'L'};
constexpr std::uint32_t kRowBits = sizeof(KarvelRow) * 8;
/// The last bit of ADDRESS selects row 0, and each pass of a loop moves it one row on.
constexpr std::uint8_t kFirstRow[8] = {0, 0, 0, 0, 0, 0, 0, 1};

// Operands of WAIT: microseconds, or milliseconds with the top bit.
constexpr std::uint32_t kEraseWait = 0x8000 | 100;
constexpr std::uint32_t kProgramWait = 3'000;
constexpr std::uint32_t kDoneWait = 2'000;
/// Clocks in Run-Test/Idle before a wait, as such files have them.
constexpr std::uint8_t kClocksBeforeWait = 3;

/// Appends what a VME file is made of.
class VmeWriter {
 public:
  void Put(std::initializer_list<std::uint8_t> bytes) { bytes_.insert(bytes_.end(), bytes); }
  void Put(std::span<const std::uint8_t> bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }
  void PutNumber(std::uint8_t opcode, std::uint32_t number) {
    Put({opcode});
    Put(VmeNumber(number));
  }
  void PutData(std::uint8_t opcode, std::span<const std::uint8_t> data) {
    Put({opcode});
    Put(CompressVmeData(data));
  }
  void Sir(std::uint8_t instruction) {
    PutNumber(kSir, 8);
    PutData(kTdi, {&instruction, 1});
    Put({kContinue});
  }
  /// Loads an instruction, and compares what comes out meanwhile: that the part says that it is done.
  void SirOfDonePart(std::uint8_t instruction) {
    PutNumber(kSir, 8);
    PutData(kTdi, {&instruction, 1});
    PutData(kTdo, {&kDoneStatus, 1});
    PutData(kMask, {&kStatusMask, 1});
    Put({kContinue});
  }
  void Sdr(std::span<const std::uint8_t> data) {
    PutNumber(kSdr, static_cast<std::uint32_t>(data.size() * 8));
    PutData(kTdi, data);
    Put({kContinue});
  }
  /// A comparison of what comes out while zeros go in, in the instruction's register of 32 bits.
  void Compare(const KarvelUsercode& expected, bool withMask = false) {
    PutNumber(kSdr, static_cast<std::uint32_t>(expected.size() * 8));
    PutData(kTdi, KarvelUsercode{});
    PutData(kTdo, expected);
    if (withMask) PutData(kMask, KarvelUsercode{0xFF, 0xFF, 0xFF, 0xFF});
    Put({kContinue});
  }
  void SelectRowOfPass() {
    Sir(kAddress);
    Put({kShr, 1});
    Sdr(kFirstRow);
  }
  /// Runs a loop's text once for each row; each pass takes its row from the file, behind the text.
  void Repeat(const VmeWriter& loop, std::span<const KarvelRow> rows) {
    Put({kHeap, kHeapCheck});
    Put(VmeNumber(static_cast<std::uint32_t>(loop.bytes_.size())));
    PutNumber(kRepeat, static_cast<std::uint32_t>(rows.size()));
    Put(loop.bytes_);
    for (const KarvelRow& row : rows)
      Put(CompressVmeData(row));
  }

  std::vector<std::uint8_t> Take() { return std::move(bytes_); }

 private:
  std::vector<std::uint8_t> bytes_;
};

VmeWriter ProgramLoop() {
  VmeWriter loop;
  loop.SelectRowOfPass();
  loop.Sir(kProgramRow);
  loop.PutNumber(kSdr, kRowBits);
  loop.Put({kTdi, kFromFile, kContinue});
  loop.Put({kTck, kClocksBeforeWait});
  loop.PutNumber(kWait, kProgramWait);
  loop.Put({kEndLoop});
  return loop;
}

VmeWriter VerifyLoop() {
  VmeWriter loop;
  loop.SelectRowOfPass();
  loop.Sir(kReadRow);
  loop.PutNumber(kSdr, kRowBits);
  loop.PutData(kTdi, KarvelRow{});
  loop.Put({kTdo, kFromFile, kContinue});
  loop.Put({kEndLoop});
  return loop;
}

}  // namespace

std::vector<KarvelRow> MakeKarvelRows(std::uint32_t versionWord, std::uint64_t seed) {
  const auto seeded = SeededBytes(seed, "karvel rows", KarvelCells::kRowCount * sizeof(KarvelRow));
  std::vector<KarvelRow> rows(KarvelCells::kRowCount);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    KarvelRow& row = rows[i];
    std::copy_n(&seeded[i * sizeof(KarvelRow)], sizeof(KarvelRow), row.begin());
    // An erased row would look like one that was never programmed.
    row[0] &= 0x7F;
    if (i % 8 == 1) {
      std::fill(row.begin() + 2, row.end(), std::uint8_t{0xFF});
    } else if (i % 8 == 3) {
      std::fill(row.begin() + 1, row.end() - 1, std::uint8_t{0x00});
    } else if (i % 8 == 5) {
      std::fill(row.begin() + 4, row.end() - 1, row[4]);
    } else if (i % 8 == 7) {
      const std::size_t period = i % 16 == 7 ? 2 : 4;
      for (std::size_t at = period; at < row.size(); ++at)
        row[at] = row[at - period];
    }
  }
  for (std::size_t i = 0; i < 4; ++i)
    rows[0][i] = static_cast<std::uint8_t>(versionWord >> (24 - i * 8));
  return rows;
}

std::vector<std::uint8_t> MakeKarvelProgram(std::span<const KarvelRow> rows, const KarvelUsercode& usercode) {
  VmeWriter file;
  file.Put({'_', '_', 'V', 'M', 'E', '2', '.', '0', kCompressed});
  file.PutNumber(kMem, kRowBits);
  file.Put({kEndDr, kIdle, kEndIr, kIdle});
  file.Put({kHir, 0, kTir, 0, kHdr, 0, kTdr, 0});
  file.Put({kState, kReset, kState, kIdle});

  file.Sir(kIdcode);
  file.Compare(kKarvelIdcode, true);
  file.Put({kVues});
  file.Sir(kUsercode);
  file.Compare(usercode);

  file.Sir(kEnable);
  file.Sir(kErase);
  file.PutNumber(kWait, kEraseWait);
  file.Repeat(ProgramLoop(), rows);
  file.Repeat(VerifyLoop(), rows);

  file.Sir(kProgramDone);
  file.PutNumber(kWait, kDoneWait);
  // Last: who finds the USERCODE there takes the part for programmed, whenever the power went.
  file.SirOfDonePart(kProgramUsercode);
  file.Sdr(usercode);
  file.PutNumber(kWait, kProgramWait);
  file.Sir(kUsercode);
  file.Compare(usercode);
  file.Sir(kDisable);
  file.Put({kState, kReset, kEndVme});
  return file.Take();
}

}  // namespace simulator
