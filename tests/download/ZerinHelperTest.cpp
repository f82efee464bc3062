#include <ostream>

#include "download/DownloadDriver.h"
#include "download/ZerinHelper.h"
#include "ZerinFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kWriteFailed[] = "Error writing Zerin flash ROM";
constexpr char kFileName[] = "a.rbi";
constexpr std::uint32_t kHeaderLength = 22;
constexpr char kHeader[] = "R1161 BLMX";
/// Where the stamp of such a file starts in the top block.
constexpr std::size_t kStampOffset = 0x1FF9A;

/// Bytes that differ from their neighbours and from block to block.
Bytes Image(std::size_t sizeBytes) {
  Bytes image(sizeBytes);
  for (std::size_t i = 0; i < sizeBytes; ++i)
    image[i] = static_cast<std::uint8_t>(i * 7 + i / 251 + i / 0x20000);
  return image;
}

Bytes Part(const Bytes& bytes, std::size_t from, std::size_t to) {
  return {bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.begin() + static_cast<std::ptrdiff_t>(to)};
}

/// The first `count` blocks of the image area.
std::vector<std::uint32_t> Blocks(std::uint32_t count) {
  std::vector<std::uint32_t> blocks;
  for (std::uint32_t i = 0; i < count; ++i)
    blocks.push_back(0x100000 + i * 0x10000);
  return blocks;
}

std::vector<std::uint32_t> Then(std::vector<std::uint32_t> blocks, std::uint32_t last) {
  blocks.push_back(last);
  return blocks;
}

class ZerinHelperTest : public ZerinFixture {
 protected:
  /// Installs a container with this image through the driver. Returns the text of the failure, or "".
  std::string Install(const Bytes& image) {
    const std::string path = folder.Write(kFileName, Join({Container(kHeaderLength, kHeader), image}));
    PartDescription part{"belmara", "BLMX", 0, 0, 2, 2, path.c_str()};
    PartLocation location{};
    location.part = &part;
    try {
      DownloadDriver(false, location, 30'000'000, helper);
    } catch (const errorException& error) {
      EXPECT_STREQ(error.file, "ZerinHelper.cpp");
      return error.what();
    }
    return "";
  }

  Bytes BlockOf(std::uint32_t index) const { return chip.Bytes((kBaseWord + index * kBlockWords) * 2, kBlockBytes); }

  /// The stamp in flash, from its start to the end of the top block.
  Bytes Stamp() const { return chip.Bytes(kTopBlockByte + kStampOffset, kBlockBytes - kStampOffset); }

  /// The version that the next run finds.
  std::uint32_t VersionAfterwards() {
    C28FxJ3A anew;
    anew.Attach(chip.Window());
    return ReadStampedVersion(anew);
  }

  const Bytes stamp = Join({BytesOf(StampText(kFileName)),
                            {0},
                            BytesOf(kHeader),
                            {0, 0, 0},
                            {0x61, 0x11, 0x08, 0x00},
                            {0x9A, 0xFF, 0x1F, 0x00}});
};

TEST_F(ZerinHelperTest, TakesChunksOfABlock) {
  EXPECT_EQ(helper.chunkSize, 0x20000u);
}

TEST_F(ZerinHelperTest, AnImageOfOneByteIsAPaddedBlockAndThenTheStamp) {
  EXPECT_EQ(Install({0x5A}), "");
  EXPECT_EQ(chip.Errors(), "");
  EXPECT_THAT(chip.Erased(), ElementsAre(0x100000, 0x1F0000));
  EXPECT_EQ(BlockOf(0), Join({{0x5A}, Bytes(0x1FFFF, 0xFF)}));
  EXPECT_EQ(BlockOf(15), Join({Bytes(kStampOffset, 0xFF), stamp}));
  EXPECT_EQ(VersionAfterwards(), 0x1161u);
}

TEST_F(ZerinHelperTest, AnEmptyImageIsTheStampAlone) {
  EXPECT_EQ(Install({}), "");
  EXPECT_THAT(chip.Erased(), ElementsAre(0x1F0000));
  EXPECT_EQ(BlockOf(15), Join({Bytes(kStampOffset, 0xFF), stamp}));
}

TEST_F(ZerinHelperTest, ProgramsEachBlockFromItsStartToItsEnd) {
  ASSERT_EQ(Install(Image(0x20001)), "");
  std::vector<std::uint32_t> expected;
  for (const std::uint32_t block : {0x100000u, 0x110000u, 0x1F0000u})
    for (std::uint32_t run = 0; run < 0x10000; run += 16)
      expected.push_back(block + run);
  EXPECT_EQ(chip.Programmed(), expected);
}

struct ImageCase {
  const char* what;
  std::size_t sizeBytes;
  std::vector<std::uint32_t> erased;
};

void PrintTo(const ImageCase& image, std::ostream* out) {
  *out << image.what;
}

class ZerinImage : public ZerinHelperTest, public testing::WithParamInterface<ImageCase> {};

/// Images that leave the top block to the stamp.
class ZerinImageBelowTheTop : public ZerinImage {};

TEST_P(ZerinImageBelowTheTop, IsPaddedWithOnesAndFollowedByTheStampBlock) {
  const Bytes image = Image(GetParam().sizeBytes);
  EXPECT_EQ(Install(image), "");
  EXPECT_EQ(chip.Errors(), "");
  EXPECT_EQ(chip.Erased(), GetParam().erased);
  const std::size_t paddedBytes = (GetParam().erased.size() - 1) * kBlockBytes;
  EXPECT_TRUE(chip.Bytes(0x200000, paddedBytes) == Join({image, Bytes(paddedBytes - image.size(), 0xFF)}));
  EXPECT_TRUE(BlockOf(15) == Join({Bytes(kStampOffset, 0xFF), stamp}));
  EXPECT_EQ(VersionAfterwards(), 0x1161u);
}

INSTANTIATE_TEST_SUITE_P(Of, ZerinImageBelowTheTop,
                         testing::ValuesIn(std::vector<ImageCase>{
                             {"ThreeBytes", 3, Then(Blocks(1), 0x1F0000)},
                             {"OneByteLessThanABlock", 0x1FFFF, Then(Blocks(1), 0x1F0000)},
                             {"ExactlyOneBlock", 0x20000, Then(Blocks(1), 0x1F0000)},
                             {"OneByteMoreThanABlock", 0x20001, Then(Blocks(2), 0x1F0000)},
                             {"OneByteLessThanFifteenBlocks", 15 * 0x20000 - 1, Then(Blocks(15), 0x1F0000)},
                             {"FifteenBlocks", 15 * 0x20000, Then(Blocks(15), 0x1F0000)},
                         }),
                         [](const auto& named) { return named.param.what; });

TEST_F(ZerinHelperTest, AnImageThatReachesTheTopBlockIsMergedWithTheStamp) {
  const Bytes image = Image(15 * 0x20000 + 3);
  EXPECT_EQ(Install(image), "");
  EXPECT_EQ(chip.Errors(), "");
  EXPECT_EQ(chip.Erased(), Blocks(16));
  EXPECT_TRUE(chip.Bytes(0x200000, 15 * 0x20000) == Part(image, 0, 15 * 0x20000));
  // The prepared block shows through behind the image, and no padding is put over it.
  EXPECT_TRUE(BlockOf(15) == Join({Part(image, 15 * 0x20000, image.size()), Bytes(kStampOffset - 3, 0xFF), stamp}));
  EXPECT_EQ(VersionAfterwards(), 0x1161u);
}

TEST_F(ZerinHelperTest, AnImageUpToTheStampLeavesItWhole) {
  const Bytes image = Image(15 * 0x20000 + kStampOffset);
  EXPECT_EQ(Install(image), "");
  EXPECT_EQ(chip.Erased(), Blocks(16));
  EXPECT_TRUE(BlockOf(15) == Join({Part(image, 15 * 0x20000, image.size()), stamp}));
}

TEST_F(ZerinHelperTest, AnImageThatIsLongerOverwritesTheStamp) {
  const Bytes image = Image(15 * 0x20000 + kStampOffset + 5);
  EXPECT_EQ(Install(image), "");
  EXPECT_EQ(chip.Erased(), Blocks(16));
  EXPECT_TRUE(BlockOf(15) == Join({Part(image, 15 * 0x20000, image.size()), Part(stamp, 5, stamp.size())}));
}

TEST_F(ZerinHelperTest, AnImageOfSixteenBlocksLeavesNothingOfTheStampAndIsWrittenOnce) {
  const Bytes image = Image(16 * 0x20000);
  EXPECT_EQ(Install(image), "");
  EXPECT_EQ(chip.Errors(), "");
  EXPECT_EQ(chip.Erased(), Blocks(16));
  EXPECT_TRUE(chip.Bytes(0x200000, image.size()) == image);
}

TEST_F(ZerinHelperTest, AnImageOfSeventeenBlocksGoesOnBehindTheImageArea) {
  const Bytes image = Image(16 * 0x20000 + 7);
  EXPECT_EQ(Install(image), "");
  EXPECT_EQ(chip.Errors(), "");
  EXPECT_EQ(chip.Erased(), Blocks(17));
  EXPECT_TRUE(chip.Bytes(0x200000, 17 * 0x20000) == Join({image, Bytes(0x20000 - 7, 0xFF)}));
}

TEST_F(ZerinHelperTest, AnImageThatIsTooLongFailsAtTheEndOfTheFlash) {
  EXPECT_EQ(Install(Bytes(48 * 0x20000 + 1, 0x11)), kWriteFailed);
  EXPECT_EQ(chip.Errors(), "");
  EXPECT_EQ(chip.Erased(), Blocks(48));
}

TEST_F(ZerinHelperTest, ProgramsAnotherImageAreaInTheSameWay) {
  ZerinHelper other(&flash, 0x200000);
  const Bytes byte = {0x5A};
  other.DownloadChunk(byte.data(), 1);
  EXPECT_TRUE(other.StartProgram());
  EXPECT_THAT(chip.Erased(), ElementsAre(0x200000, 0x2F0000));
}

TEST_F(ZerinHelperTest, StartsAtTheBottomAnewWithEachDownloadWhateverItsSize) {
  const Bytes first = {0x11};
  const Bytes second = {0x22};
  helper.StartDownload(0xFFFFFFFF);
  helper.DownloadChunk(first.data(), 1);
  helper.DownloadChunk(first.data(), 1);
  helper.StartDownload(0);
  helper.DownloadChunk(second.data(), 1);
  EXPECT_THAT(chip.Erased(), ElementsAre(0x100000, 0x110000, 0x100000));
  EXPECT_EQ(chip.Bytes(0x200000, 2), Bytes({0x22, 0xFF}));
}

TEST_F(ZerinHelperTest, IsDoneOnceTheProgramIsStarted) {
  EXPECT_TRUE(helper.StartProgram());
  const std::size_t programmed = chip.Programmed().size();
  EXPECT_TRUE(helper.PollProgram());
  EXPECT_EQ(chip.Programmed().size(), programmed);
}

TEST_F(ZerinHelperTest, RefusesAChunkOfMoreThanABlock) {
  const Bytes one = {0x11};
  for (const std::uint32_t lengthBytes : {0x20001u, 0xFFFFFFFFu})
    EXPECT_THROW(helper.DownloadChunk(one.data(), lengthBytes), errorException);
  EXPECT_THAT(chip.Erased(), IsEmpty());
}

TEST_F(ZerinHelperTest, WithoutAFlashFailsAtTheFirstBlock) {
  ZerinHelper without(nullptr, kBaseWord);
  const Bytes one = {0x11};
  EXPECT_THROW(without.DownloadChunk(one.data(), 1), errorException);
  EXPECT_THROW(without.StartProgram(), errorException);
}

struct FlashFailureCase {
  const char* what;
  std::uint32_t failingErase;
  std::uint32_t failingProgram;
  std::vector<std::uint32_t> erased;
  /// What the next run finds: the old stamp, or none.
  std::uint32_t versionAfterwards;
};

void PrintTo(const FlashFailureCase& failure, std::ostream* out) {
  *out << failure.what;
}

class ZerinFlashFailure : public ZerinHelperTest, public testing::WithParamInterface<FlashFailureCase> {};

TEST_P(ZerinFlashFailure, EndsTheDownloadAndNeverShowsTheNewVersion) {
  // An older stamp at the end of the top block, of version 1160.
  Bytes older = stamp;
  older[80 + 1 + 4] = '0';
  chip.PutBytes(kTopBlockByte + kStampOffset, older);
  chip.FailEraseAt(GetParam().failingErase);
  chip.FailProgramAt(GetParam().failingProgram);

  EXPECT_EQ(Install(Image(3 * 0x20000 - 1)), kWriteFailed);

  EXPECT_EQ(chip.Errors(), "");
  EXPECT_EQ(chip.Erased(), GetParam().erased);
  EXPECT_EQ(VersionAfterwards(), GetParam().versionAfterwards);
}

constexpr std::uint32_t kNowhere = 0xFFFFFFFF;

INSTANTIATE_TEST_SUITE_P(Of, ZerinFlashFailure,
                         testing::ValuesIn(std::vector<FlashFailureCase>{
                             {"TheFirstErase", 0x100000, kNowhere, {}, 0x1160},
                             {"TheFirstRun", kNowhere, 0x100000, Blocks(1), 0x1160},
                             {"TheLastRunOfTheFirstBlock", kNowhere, 0x10FFF0, Blocks(1), 0x1160},
                             {"AnEraseInTheMiddle", 0x110000, kNowhere, Blocks(1), 0x1160},
                             {"ARunInTheMiddle", kNowhere, 0x118000, Blocks(2), 0x1160},
                             {"TheLastRunOfThePaddedBlock", kNowhere, 0x12FFF0, Blocks(3), 0x1160},
                             {"TheEraseOfTheStampBlock", 0x1F0000, kNowhere, Blocks(3), 0x1160},
                             {"TheFirstRunOfTheStampBlock", kNowhere, 0x1F0000, Then(Blocks(3), 0x1F0000), 0},
                             {"TheLastRunOfTheStampBlock", kNowhere, 0x1FFFF0, Then(Blocks(3), 0x1F0000), 0},
                         }),
                         [](const auto& named) { return named.param.what; });

}  // namespace
