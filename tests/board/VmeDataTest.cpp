#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "board/VmeInterpreter.h"
#include "board/VmeReader.h"
#include "support/TempFolder.h"
#include "support/VmeTrace.h"

namespace {

using test_support::HexBytes;
using test_support::Times;

using Vme = VmeInterpreter;

class VmeDataTest : public testing::Test {
 protected:
  void File(std::string_view hex) { ASSERT_TRUE(reader.Open(folder.Write("data", HexBytes(hex)).c_str())); }
  /// The text of a running loop, with its two spare bytes.
  void Heap(std::string_view hex) {
    vme.heapData = HexBytes(hex);
    vme.heapSize = static_cast<std::uint16_t>(vme.heapData.size());
    vme.heapData.resize(vme.heapData.size() + 2);
    vme.heapIndex = 0;
    vme.dataType |= Vme::kFromHeap;
  }

  /// So many bits of data, in a buffer of so many bytes that holds EE before.
  VmeBuffer Read(std::uint16_t bits, std::size_t bufferBytes) {
    VmeBuffer buffer(bufferBytes, 0xEE);
    vme.dataSize = bits;
    reader.ReadVmeData(buffer);
    return buffer;
  }
  VmeBuffer ReadBytes(std::size_t bytes) { return Read(static_cast<std::uint16_t>(bytes * 8), bytes); }

  /// True when the next bytes are these and the file has no more.
  testing::AssertionResult Left(std::string_view hex) {
    for (const std::uint8_t byte : HexBytes(hex))
      if (const int next = reader.ReadFileByte(); next != byte)
        return testing::AssertionFailure() << "the next byte of the file is " << next << ", not " << int{byte};
    if (const int next = reader.ReadFileByte(); next != -1)
      return testing::AssertionFailure() << "the file goes on with " << next;
    return testing::AssertionSuccess();
  }

  test_support::TempFolder folder;
  Vme vme;
  std::string printed;
  VmePrint print = [this](const char* text) { printed += text; };
  VmeReader reader{vme, print};
};

TEST_F(VmeDataTest, BytesAreSigned) {
  File("00 01 7F 80 81 FE FF 00");
  for (const int expected : {0, 1, 127, -128, -127, -2, -1, 0})
    EXPECT_EQ(reader.GetVmeByte(), expected);
  EXPECT_EQ(printed, "");
}

TEST_F(VmeDataTest, EachByteBehindTheEndOfTheFilePrintsALine) {
  File("05");
  EXPECT_EQ(reader.GetVmeByte(), 5);
  EXPECT_EQ(reader.GetVmeByte(), -1);
  EXPECT_EQ(printed, "Reached end of file/n");
  EXPECT_EQ(reader.GetVmeByte(), -1);
  EXPECT_EQ(printed, "Reached end of file/nReached end of file/n");
}

TEST_F(VmeDataTest, AHeapEndsInSilenceBehindOneSpareByte) {
  File("77");
  Heap("11 FE 33");
  for (const int expected : {0x11, -2, 0x33, 0, -1, -1})
    EXPECT_EQ(reader.GetVmeByte(), expected);
  EXPECT_EQ(printed, "");
  EXPECT_TRUE(Left("77"));
}

TEST_F(VmeDataTest, ALongFileIsReadToItsLastByte) {
  std::string hex;
  for (int i = 0; i < 5000; ++i)
    hex += "01 02 03";
  File(hex);
  for (int i = 0; i < 15000; ++i)
    ASSERT_EQ(reader.GetVmeByte(), i % 3 + 1) << i;
  EXPECT_EQ(reader.GetVmeByte(), -1);
}

TEST_F(VmeDataTest, NumbersHaveSevenBitsAByteTheLowestFirst) {
  struct {
    const char* hex;
    std::uint16_t number;
  } constexpr kCases[] = {
      {"00", 0},
      {"01", 1},
      {"7F", 127},
      {"80 01", 128},
      {"FF 01", 255},
      {"81 02", 257},
      {"FF 7F", 16383},
      {"80 80 01", 16384},
      {"B4 A4 01", 21044},
      {"FF FF 03", 65535},
      {"80 00", 0},
      {"85 80 80 00", 5},
      // what is above 16 bits is lost
      {"80 80 04", 0},
      {"FF FF 7F", 65535},
      {"81 80 80 01", 1},
      {"82 81 80 80 01", 130},
      {"FF FF FF FF FF FF FF FF FF FF FF FF 7F", 65535},
      {"80 80 80 80 80 80 80 80 80 80 80 80 7F", 0},
  };
  for (const auto& form : kCases) {
    File(std::string(form.hex) + "A9");
    EXPECT_EQ(reader.ReadVmeNumber(), form.number) << form.hex;
    EXPECT_TRUE(Left("A9")) << form.hex;
    Heap(form.hex);
    EXPECT_EQ(reader.ReadVmeNumber(), form.number) << form.hex << " in a heap";
    EXPECT_EQ(vme.heapIndex, vme.heapSize) << form.hex;
    vme.dataType = 0;
  }
}

TEST_F(VmeDataTest, ANumberThatTheFileCutsShortEnds) {
  for (const auto& [hex, number] : std::vector<std::pair<const char*, int>>{{"", 0}, {"85", 5}, {"85 81", 133}}) {
    File(hex);
    printed.clear();
    EXPECT_EQ(reader.ReadVmeNumber(), number) << hex;
    EXPECT_EQ(printed, "Reached end of file/n");
  }
}

TEST_F(VmeDataTest, ANumberThatTheHeapCutsShortEnds) {
  Heap("85 81");
  vme.heapData = {0x85, 0x81, 0x82, 0x83};  // the spare bytes are no end either
  EXPECT_EQ(reader.ReadVmeNumber(), 0x8085);
  EXPECT_EQ(reader.ReadVmeNumber(), 0);
}

TEST_F(VmeDataTest, PlainDataAreAsManyBytesAsTheBitsTake) {
  for (const auto& [bits, bytes] :
       std::vector<std::pair<std::uint16_t, std::size_t>>{{0, 0}, {1, 1}, {7, 1}, {8, 1}, {9, 2}, {16, 2}, {17, 3}}) {
    File("A1 55 FF 00");
    VmeBuffer expected = HexBytes("A1 55 FF 00");
    std::fill(expected.begin() + static_cast<std::ptrdiff_t>(bytes), expected.end(), std::uint8_t{0xEE});
    EXPECT_EQ(Read(bits, 4), expected) << bits;
    reader.Close();
  }
  EXPECT_EQ(printed, "");
}

TEST_F(VmeDataTest, DataBehindTheEndOfTheFileAreOnes) {
  File("12");
  EXPECT_EQ(ReadBytes(3), HexBytes("12 FF FF"));
  EXPECT_EQ(printed, "Reached end of file/nReached end of file/n");
}

TEST_F(VmeDataTest, LongestDataAreReadWhole) {
  File(Times(4096, "A1 B2"));
  EXPECT_EQ(Read(65535, 8192), HexBytes(Times(4096, "A1 B2")));
}

class VmeCompressedData : public VmeDataTest {
 protected:
  VmeCompressedData() { vme.dataType = Vme::kCompressed; }

  /// Data of so many bytes behind which exactly the byte A9 is left.
  void Expect(std::string_view hex, std::string_view data) {
    SCOPED_TRACE(hex);
    File(std::string(hex) + "A9");
    const VmeBuffer expected = HexBytes(data);
    EXPECT_EQ(ReadBytes(expected.size()), expected);
    EXPECT_TRUE(Left("A9"));
    printed.clear();
  }
};

TEST_F(VmeCompressedData, KindZeroIsPlain) {
  Expect("00 00 01 02 FF FF 55", "00 01 02 FF FF 55");
  Expect("00", "");
}

TEST_F(VmeCompressedData, KindOneHasRunsOfZeros) {
  Expect("01 11 22 33", "11 22 33");
  Expect("01 00 05", "00 00 00 00 00 00");
  Expect("01 11 00 02 22 33", "11 00 00 00 22 33");
  Expect("01 00 00 00 01 44", "00 00 00 44");
  Expect("01 FF FF 55 01", "FF FF 55 01");
  Expect("01 00 80 01 77", Times(129, "00") + "77");
  Expect("01", "");
}

TEST_F(VmeCompressedData, KindTwoHasRunsOfOnes) {
  Expect("02 11 22 33", "11 22 33");
  Expect("02 FF 05", "FF FF FF FF FF FF");
  Expect("02 11 FF 02 22 33", "11 FF FF FF 22 33");
  Expect("02 FF 00 FF 01 44", "FF FF FF 44");
  Expect("02 00 00 55 01", "00 00 55 01");
  Expect("02 FF FF 01 77", Times(256, "FF") + "77");
}

TEST_F(VmeCompressedData, ARunEndsWithTheData) {
  Expect("01 11 00 7F", "11 00 00");
  Expect("02 FF FF FF 03", "FF FF FF");
}

TEST_F(VmeCompressedData, TheLastByteHasItsRunToo) {
  Expect("01 11 22 00 05", "11 22 00");
  Expect("02 11 FF 80 01", "11 FF");
}

TEST_F(VmeCompressedData, BitMapHasABitForEachByte) {
  Expect("FF E7 00", "E7 E7 E7 E7");
  Expect("FF E7 00", Times(8, "E7"));
  Expect("FF E7 00 00", Times(9, "E7"));
  Expect("FF 00", "");
  // 0, 1 10101011, 0, 1 11001101
  Expect("FF 00 6A DC D0", "00 AB 00 CD");
  // 1 00000000, eight times
  Expect("FF FF 80 40 20 10 08 04 02 01 00", "00 00 00 00 00 00 00 00");
  // 1 01010101
  Expect("FF 55 AA 80", "55");
  // 0 0 0 0 0 0 0, 1 10000001: a literal right behind the end of a byte
  Expect("FF 3C 01 81", "3C 3C 3C 3C 3C 3C 3C 81");
  // 0 0 0 0 0 0 0 0, 1 10000001
  Expect("FF 3C 00 C0 80", "3C 3C 3C 3C 3C 3C 3C 3C 81");
}

TEST_F(VmeCompressedData, NibblesAreAPatternThatIsRepeated) {
  Expect("03 12 3F", "12 31 23");
  Expect("04 AB CD", "AB CD");
  Expect("04 AB CD", "AB CD AB CD AB CD");
  Expect("07 12 34 56 7F", "12 34 56 71 23 45 67");
  Expect("05 12 34 5F", "12 34 51 23 45");
}

TEST_F(VmeCompressedData, NibblesLeaveTheTailZeroWhereThePatternDoesNotFit) {
  Expect("03 12 3F", "12 31 23 00");
  Expect("03 12 3F", "12 31 23 12 30");
  Expect("04 AB CD", "AB CD AB CD 00");
  Expect("05 12 34 5F", "12 34 50");
}

TEST_F(VmeCompressedData, NibblesThatAreMoreThanTheDataGiveZeros) {
  Expect("08 12 34 56 78", "00 00 00");
  Expect("FE" + Times(127, "77"), Times(126, "00"));
  Expect("03 12 3F", "");
}

TEST_F(VmeCompressedData, NibblesCanBeUpTo254) {
  Expect("FE" + Times(127, "77"), Times(127, "77"));
  Expect("FE" + Times(127, "77"), Times(254, "77") + "00");
  Expect("80" + Times(32, "12 34"), Times(64, "12 34"));
  Expect("FD" + Times(126, "77") + "7F", Times(253, "77"));
}

TEST_F(VmeCompressedData, KindFiftyFiveIsAPatternInAFile) {
  // 85 nibbles are 43 bytes, the last half of which counts for nothing
  Expect("55" + Times(42, "12") + "3F", Times(42, "12") + "31" + Times(41, "21") + "23");
}

TEST_F(VmeCompressedData, BitsThatEndInsideAByteTakeThatByte) {
  File("01 11 00 00 A9");
  EXPECT_EQ(Read(9, 2), HexBytes("11 00"));
  EXPECT_TRUE(Left("A9"));
  File("04 AB CD A9");
  EXPECT_EQ(Read(25, 4), HexBytes("AB CD AB CD"));
  EXPECT_TRUE(Left("A9"));
}

class VmeDataInALoop : public VmeDataTest {};

TEST_F(VmeDataInALoop, PlainDataGoOnInTheFileBehindTheEscapeAtAnyByte) {
  struct {
    const char* heap;
    const char* file;
    const char* data;
    int left;  // of the heap
  } constexpr kCases[] = {
      {"11 22 33 44 77", "", "11 22 33 44", 0x77},   {"55 77", "A1 A2 A3 A4", "A1 A2 A3 A4", 0x77},
      {"11 55 77", "A2 A3 A4", "11 A2 A3 A4", 0x77}, {"11 22 55 77", "A3 A4", "11 22 A3 A4", 0x77},
      {"11 22 33 55 77", "A4", "11 22 33 A4", 0x77}, {"11 22 33 44 55", "", "11 22 33 44", 0x55},
  };
  for (const auto& block : kCases) {
    SCOPED_TRACE(block.heap);
    File(std::string(block.file) + "A9");
    Heap(block.heap);
    EXPECT_EQ(ReadBytes(4), HexBytes(block.data));
    EXPECT_TRUE(vme.Has(Vme::kFromHeap));
    EXPECT_EQ(reader.GetVmeByte(), block.left);
    EXPECT_TRUE(Left("A9"));
  }
}

TEST_F(VmeDataInALoop, TheEscapeCountsOnceABlock) {
  File("55 A2 55 A9");
  Heap("55 77");
  EXPECT_EQ(ReadBytes(3), HexBytes("55 A2 55"));
  EXPECT_EQ(reader.GetVmeByte(), 0x77);
  EXPECT_TRUE(Left("A9"));
}

TEST_F(VmeDataInALoop, EachBlockHasItsOwnEscape) {
  File("A1 A2 B1");
  Heap("55 11 55 22");
  EXPECT_EQ(ReadBytes(2), HexBytes("A1 A2"));
  EXPECT_EQ(ReadBytes(2), HexBytes("11 B1"));
  EXPECT_EQ(reader.GetVmeByte(), 0x22);
}

TEST_F(VmeDataInALoop, CompressedDataGoOnInTheFileBehindALeadingEscapeAlone) {
  struct {
    const char* heap;
    const char* file;
    const char* data;
  } const kCases[] = {
      {"00 55 22 55", "", "55 22 55"},    // plain, but in a compressed file
      {"01 55 00 01", "", "55 00 00"},    //
      {"02 55 FF 55", "", "55 FF FF"},    // 55 as a run: 85 more
      {"FF 55 00", "", "55 55 55"},       // 55 as the fill byte
      {"03 55 5F", "", "55 55 55"},       // 55 as nibbles
      {"55", "00 55 A1 55", "55 A1 55"},  //
      {"55", "01 A1 00 01", "A1 00 00"},  //
      {"55", "FF 00 55 00", "00 54 00"},  // 0, 1 01010100, 0
      {"55", "03 12 3F", "12 31 23"},     //
  };
  for (const auto& block : kCases) {
    SCOPED_TRACE(std::string(block.heap) + " / " + block.file);
    vme.dataType = Vme::kCompressed;
    File(std::string(block.file) + "A9");
    Heap(std::string(block.heap) + "77");
    EXPECT_EQ(ReadBytes(3), HexBytes(block.data));
    EXPECT_EQ(vme.dataType, Vme::kCompressed | Vme::kFromHeap);
    EXPECT_EQ(reader.GetVmeByte(), 0x77);
    EXPECT_TRUE(Left("A9"));
  }
}

TEST_F(VmeDataInALoop, ASecondLeadingEscapeIsAPattern) {
  vme.dataType = Vme::kCompressed;
  File("55" + Times(42, "12") + "3F" + "A9");
  Heap("55 77");
  EXPECT_EQ(ReadBytes(85), HexBytes(Times(42, "12") + "31" + Times(41, "21") + "23"));
  EXPECT_EQ(reader.GetVmeByte(), 0x77);
  EXPECT_TRUE(Left("A9"));
}

TEST_F(VmeDataInALoop, TheEscapeIsDataOutsideOfALoop) {
  File("55 55 11 A9");
  EXPECT_EQ(ReadBytes(3), HexBytes("55 55 11"));
  EXPECT_FALSE(vme.Has(Vme::kFromHeap));
  EXPECT_TRUE(Left("A9"));
}

}  // namespace
