// What the installer reads of a container file.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "container/RbiContainer.h"
#include "support/CapturedOutput.h"
#include "support/HexBlock.h"
#include "support/TempFolder.h"

namespace {

using namespace std::string_literals;

constexpr std::uint32_t kUntouched = 0xDEADBEEF;

struct Read {
  bool done;
  std::string partId;
  std::uint32_t version;
  std::string error;
  std::string output;
};

Read ReadFile(const std::string& fileName) {
  const test_support::CapturedOutput captured;
  char partId[5] = {'?', '?', '?', '?', '?'};
  std::uint32_t version = kUntouched;
  const bool done = ReadRbiHeader(fileName.c_str(), partId, version);
  EXPECT_EQ(partId[4], '\0');
  partId[4] = '\0';
  return {done, partId, version, captured.err(), captured.out()};
}

Read ReadBytes(const std::string& bytes) {
  const test_support::TempFolder folder;
  return ReadFile(folder.Write("a.rbi", bytes));
}

const std::string kWhole = "ORBO.RBI\0\0\0\x16R1161;BLMXpayload"s;

TEST(ReadRbiHeader, ReadsPartIdAndVersion) {
  const Read read = ReadBytes(kWhole);
  EXPECT_TRUE(read.done);
  EXPECT_EQ(read.partId, "BLMX");
  EXPECT_EQ(read.version, 0x1161u);
  EXPECT_EQ(read.error, "");
  EXPECT_EQ(read.output, "");
}

TEST(ReadRbiHeader, LeavesNoneAndOneLineForAMissingFile) {
  const test_support::TempFolder folder;
  const Read read = ReadFile(folder.File("absent.rbi"));
  EXPECT_FALSE(read.done);
  EXPECT_EQ(read.partId, "NONE");
  EXPECT_EQ(read.version, 0u);
  EXPECT_EQ(read.error, "Unable to open file " + folder.File("absent.rbi") + "\n");
  EXPECT_EQ(read.output, "");
}

TEST(ReadRbiHeader, LeavesNoneAndOneLineForAForeignFile) {
  const test_support::TempFolder folder;
  for (const std::string& bytes : {""s, "ORBO.RB"s, "ORBO.RBi\0\0\0\x16R1161;BLMX"s, "orbo.rbi\0\0\0\x16R1161;BLMX"s}) {
    const std::string fileName = folder.Write("foreign.rbi", bytes);
    const Read read = ReadFile(fileName);
    EXPECT_FALSE(read.done) << bytes;
    EXPECT_EQ(read.partId, "NONE");
    EXPECT_EQ(read.version, 0u);
    EXPECT_EQ(read.error, "File " + fileName + " missing RBI file header\n");
  }
}

TEST(ReadRbiHeader, TakesNoFolderForAContainer) {
  const test_support::TempFolder folder;
  const std::string name = folder.Path().string();
  const Read read = ReadFile(name);
  EXPECT_FALSE(read.done);
  EXPECT_EQ(read.partId, "NONE");
#if defined(_WIN32)  // where a folder is not opened at all
  EXPECT_EQ(read.error, "Unable to open file " + name + "\n");
#else
  EXPECT_EQ(read.error, "File " + name + " missing RBI file header\n");
#endif
}

struct Cut {
  std::size_t lengthBytes;
  std::string partId;
  std::uint32_t version;
};

// What a short file lacks reads as zeros, and is no failure.
TEST(ReadRbiHeader, ReadsAShortFileAsFarAsItGoes) {
  for (const Cut& cut : {Cut{8, "", 0}, Cut{12, "", 0}, Cut{13, "", 0}, Cut{14, "", 1}, Cut{16, "", 0x116},
                         Cut{17, "", 0x1161}, Cut{18, "", 0x1161}, Cut{19, "B", 0x1161}, Cut{20, "BL", 0x1161},
                         Cut{21, "BLM", 0x1161}, Cut{22, "BLMX", 0x1161}}) {
    const Read read = ReadBytes(kWhole.substr(0, cut.lengthBytes));
    EXPECT_TRUE(read.done) << cut.lengthBytes;
    EXPECT_EQ(read.partId, cut.partId) << cut.lengthBytes;
    EXPECT_EQ(read.version, cut.version) << cut.lengthBytes;
    EXPECT_EQ(read.error, "");
  }
}

struct Version {
  std::string field;  // offsets 13 to 17
  std::uint32_t version;
};

TEST(ReadRbiHeader, ReadsTheVersionAsScanfDoes) {
  for (const Version& version :
       {Version{"0000;", 0}, Version{"00FF;", 0xFF}, Version{"abcd;", 0xABCD}, Version{"ABCD;", 0xABCD},
        Version{"12G4;", 0x12}, Version{"ZZZZ;", 0}, Version{"    ;", 0}, Version{"  1F;", 0x1F},
        Version{"+12F;", 0x12F}, Version{"-001;", 0xFFFFFFFF}, Version{"0x1F;", 0x1F}, Version{"0x  ;", 0},
        // The separator is never part of the number.
        Version{"11612", 0x1161}}) {
    const Read read = ReadBytes("ORBO.RBI\0\0\0\x16R"s + version.field + "BLMX");
    EXPECT_TRUE(read.done) << version.field;
    EXPECT_EQ(read.version, version.version) << version.field;
  }
}

TEST(ReadRbiHeader, LooksNeitherAtTheTagNorAtTheLength) {
  const Read read = ReadBytes("ORBO.RBI\xFF\xFF\xFF\xFFX0202;TLM_"s);
  EXPECT_TRUE(read.done);
  EXPECT_EQ(read.partId, "TLM_");
  EXPECT_EQ(read.version, 0x202u);
}

TEST(ReadRbiHeader, DecodesTheExampleOfThePage) {
  const std::vector<std::uint8_t> bytes = test_support::ReadHexBlock(RBI_PAGE);
  const Read read = ReadBytes(std::string(bytes.begin(), bytes.end()));
  EXPECT_TRUE(read.done);
  EXPECT_EQ(read.partId, "BLMX");
  EXPECT_EQ(read.version, 0x1161u);
}

class RbiHeaderLengthInAFile : public testing::Test {
 protected:
  bool Read(const std::string& bytes) {
    const test_support::TempFolder folder;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(folder.Write("a.rbi", bytes).c_str(), "rb"),
                                                               &std::fclose);
    std::fseek(file.get(), 0, SEEK_END);
    const bool done = ReadRbiHeaderLength(file.get(), lengthBytes_);
    position_ = std::ftell(file.get());
    return done;
  }

  std::uint32_t lengthBytes_ = kUntouched;
  long position_ = -1;
};

TEST_F(RbiHeaderLengthInAFile, IsBigEndianAtOffset8) {
  EXPECT_TRUE(Read("ORBO.RBI\x01\x23\xAB\xCDR"s));
  EXPECT_EQ(lengthBytes_, 0x0123ABCDu);
  EXPECT_EQ(position_, 12);
}

TEST_F(RbiHeaderLengthInAFile, IsReadWhateverStandsBeforeIt) {
  EXPECT_TRUE(Read("12345678\0\0\0\x27"s));
  EXPECT_EQ(lengthBytes_, 39u);
}

TEST_F(RbiHeaderLengthInAFile, IsRefusedWhereTheFileEndsInsideIt) {
  for (const std::string& bytes : {""s, "ORBO.RBI"s, "ORBO.RBI\0\0\0"s}) {
    EXPECT_FALSE(Read(bytes)) << bytes.size();
    EXPECT_EQ(lengthBytes_, kUntouched);
  }
}

#if !defined(_WIN32)  // where seeking in a pipe is undefined
TEST_F(RbiHeaderLengthInAFile, IsRefusedWhereTheFileCannotBeSought) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(fdopen(ends[0], "rb"), &std::fclose);
  // Enough for a reader that takes the bytes from where it is.
  ASSERT_EQ(write(ends[1], kWhole.data(), kWhole.size()), static_cast<ssize_t>(kWhole.size()));
  close(ends[1]);
  EXPECT_FALSE(ReadRbiHeaderLength(file.get(), lengthBytes_));
  EXPECT_EQ(lengthBytes_, kUntouched);
}
#endif

}  // namespace
