#include <ostream>

#include "ZerinFixture.h"

namespace {

constexpr std::size_t kVersionWordOffset = 0x1FFF8;

/// The top block as it has to be: ones, text and terminator, header copy, zeros, version word, location.
Bytes Block(std::size_t stampOffset, const std::string& text, const Bytes& copy, const Bytes& versionWord,
            const Bytes& location) {
  Bytes block = Join({Bytes(stampOffset, 0xFF), BytesOf(text), {0}, copy});
  block.resize(kVersionWordOffset, 0);
  return Join({block, versionWord, location});
}

/// Compares with the place of the first difference in place of a screen of 256 KiB.
void ExpectSame(const Bytes& block, const Bytes& expected) {
  ASSERT_EQ(block.size(), expected.size());
  for (std::size_t i = 0; i < block.size(); ++i)
    ASSERT_EQ(block[i], expected[i]) << "at offset " << std::hex << i;
}

class ZerinStamp : public ZerinFixture {
 protected:
  /// The text of the failure that the header causes. Nothing may have been written then.
  std::string HeaderFailure(const Bytes& file, const std::string& name = "a.rbi") {
    try {
      ReadHeader(file, name);
    } catch (const errorException& error) {
      EXPECT_STREQ(error.file, "ZerinHelper.cpp");
      EXPECT_GT(error.line, 0);
      EXPECT_TRUE(chip.Erased().empty());
      EXPECT_TRUE(chip.Programmed().empty());
      return error.what();
    }
    return "no failure";
  }

  /// Where the stamp is, by the block's location word.
  static std::size_t StampOffsetIn(const Bytes& block) {
    return static_cast<std::size_t>(block.at(0x1FFFC) | block.at(0x1FFFD) << 8 | block.at(0x1FFFE) << 16) - 0x1E0000;
  }
  static std::string TextAt(std::size_t offset, const Bytes& block) {
    return reinterpret_cast<const char*>(&block.at(offset));
  }
};

constexpr char kUnusable[] = "RBI file header is not usable";

TEST_F(ZerinStamp, FillsTheEndOfTheTopBlock) {
  // 80 characters of text: 0x1FFF5 - 80 - 10 is 0x1FF9B, whose lowest bit goes.
  const Bytes expected = Join({
      Bytes(0x1FF9A, 0xFF),
      BytesOf(" Filename:     a.rbi\n Installer:     - \n Install Date: Sun Sep  9 01:46:40 2001\n"),
      {0},
      BytesOf("R1161 BLMX"),
      {0, 0, 0},
      {0x61, 0x11, 0x08, 0x00},  // format word 8 in the high half
      {0x9A, 0xFF, 0x1F, 0x00},  // 0x1E0000 + 0x1FF9A
  });
  ExpectSame(TopBlockOf(Container(22, "R1161 BLMXpayload")), expected);
}

TEST_F(ZerinStamp, NeedsNoRoundingWhenItStartsOnAWordAnyway) {
  const Bytes expected =
      Block(0x1FF9A, StampText("ab.rbi"), BytesOf("R1161 BLMX"), {0x61, 0x11, 0x08, 0x00}, {0x9A, 0xFF, 0x1F, 0x00});
  ExpectSame(TopBlockOf(Container(22, "R1161 BLMXpayload"), "ab.rbi"), expected);
}

TEST_F(ZerinStamp, NamesWhoInstalled) {
  environment.variables = {{"USERDOMAIN", "STUDIO"}, {"USERNAME", "editor"}};
  // 12 characters more than without names.
  const Bytes expected =
      Block(0x1FF8E, " Filename:     a.rbi\n Installer:    STUDIO - editor\n Install Date: Sun Sep  9 01:46:40 2001\n",
            BytesOf("R1161 BLMX"), {0x61, 0x11, 0x08, 0x00}, {0x8E, 0xFF, 0x1F, 0x00});
  ExpectSame(TopBlockOf(Container(22, "R1161 BLMX")), expected);
}

struct PathCase {
  const char* what;
  const char* path;
  const char* name;
};

void PrintTo(const PathCase& path, std::ostream* out) {
  *out << path.path;
}

class ZerinStampPath : public ZerinStamp, public testing::WithParamInterface<PathCase> {};

TEST_P(ZerinStampPath, IsCutDownToTheBaseName) {
  const Bytes block = TopBlockOf(Container(22, "R1161 BLMX"), GetParam().path);
  EXPECT_EQ(TextAt(StampOffsetIn(block), block), StampText(GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(Of, ZerinStampPath,
                         testing::ValuesIn(std::vector<PathCase>{
                             {"NoFolder", "BLMX0202.rbi", "BLMX0202.rbi"},
                             {"Slashes", "/opt/firmware/BLMX0202.rbi", "BLMX0202.rbi"},
                             {"Backslashes", "C:\\firmware\\BLMX0202.rbi", "BLMX0202.rbi"},
                             {"SlashLast", "C:\\firmware/new/BLMX0202.rbi", "BLMX0202.rbi"},
                             {"BackslashLast", "firmware/new\\BLMX0202.rbi", "BLMX0202.rbi"},
                             {"Upwards", "../BLMX0202.rbi", "BLMX0202.rbi"},
                             {"NothingBehindTheSeparator", "firmware/", ""},
                         }),
                         [](const auto& named) { return named.param.what; });

struct HeaderCase {
  const char* what;
  std::uint32_t headerLength;
  std::string behindLength;
  std::size_t stampOffset;
  Bytes copy;
  Bytes versionWord;
  Bytes location;
};

void PrintTo(const HeaderCase& header, std::ostream* out) {
  *out << header.what;
}

class ZerinStampHeader : public ZerinStamp, public testing::WithParamInterface<HeaderCase> {};

TEST_P(ZerinStampHeader, IsCopiedFromOffset12On) {
  const HeaderCase& c = GetParam();
  const Bytes file = Container(c.headerLength, c.behindLength);
  const Bytes block = TopBlockOf(file);
  ExpectSame(block, Block(c.stampOffset, StampText("a.rbi"), c.copy, c.versionWord, c.location));
  EXPECT_EQ(ReadHeader(file), c.headerLength);
}

// The longest header for a text of 80 characters has 12 + 0x1FFF5 - 80 bytes.
const std::string kLongTail(130'976, 't');

const HeaderCase kHeaderCases[] = {
    {"OfNothingMore", 12, "R1161 BLMX", 0x1FFA4, {}, {0, 0, 8, 0}, {0xA4, 0xFF, 0x1F, 0}},
    {"OfTheTag", 13, "R1161 BLMX", 0x1FFA4, BytesOf("R"), {0, 0, 8, 0}, {0xA4, 0xFF, 0x1F, 0}},
    {"ThatEndsBeforeTheLastDigit", 16, "R1161 BLMX", 0x1FFA0, BytesOf("R116"), {0, 0, 8, 0}, {0xA0, 0xFF, 0x1F, 0}},
    {"ThatEndsBehindTheDigits", 17, "R1161 BLMX", 0x1FFA0, BytesOf("R1161"), {0x61, 0x11, 8, 0}, {0xA0, 0xFF, 0x1F, 0}},
    {"WithTaggedText",
     28,
     "R220F;PLGRS:x;..payload",
     0x1FF94,
     BytesOf("R220F;PLGRS:x;.."),
     {0x0F, 0x22, 8, 0},
     {0x94, 0xFF, 0x1F, 0}},
    {"ThatFillsTheBlock",
     130'993,
     "R0001" + kLongTail + "payload",
     0,
     BytesOf("R0001" + kLongTail),
     {0x01, 0x00, 8, 0},
     {0x00, 0x00, 0x1E, 0}},
    {"OneByteShorterThanThat",
     130'992,
     "R0001" + kLongTail,
     0,
     BytesOf("R0001" + kLongTail.substr(1)),
     {0x01, 0x00, 8, 0},
     {0x00, 0x00, 0x1E, 0}},
    // What the file lacks of its header is zero.
    {"LongerThanTheFile",
     32,
     "R1161 BLMX",
     0x1FF90,
     Join({BytesOf("R1161 BLMX"), Bytes(10, 0)}),
     {0x61, 0x11, 8, 0},
     {0x90, 0xFF, 0x1F, 0}},
    {"OfAFileThatEndsInTheVersion",
     22,
     "R11",
     0x1FF9A,
     Join({BytesOf("R11"), Bytes(7, 0)}),
     {0x11, 0x00, 8, 0},
     {0x9A, 0xFF, 0x1F, 0}},
    {"OfAFileThatEndsBehindTheLength", 22, "", 0x1FF9A, Bytes(10, 0), {0, 0, 8, 0}, {0x9A, 0xFF, 0x1F, 0}},
    {"MuchLongerThanTheFile",
     130'993,
     "R1161",
     0,
     Join({BytesOf("R1161"), Bytes(130'976, 0)}),
     {0x61, 0x11, 8, 0},
     {0x00, 0x00, 0x1E, 0}},
};

INSTANTIATE_TEST_SUITE_P(Header, ZerinStampHeader, testing::ValuesIn(kHeaderCases),
                         [](const auto& named) { return named.param.what; });

TEST_F(ZerinStamp, RefusesAHeaderLengthThatIsShorterThanAHeader) {
  for (const std::uint32_t headerLength : {0u, 1u, 11u})
    EXPECT_EQ(HeaderFailure(Container(headerLength, "R1161 BLMX")), kUnusable);
}

TEST_F(ZerinStamp, RefusesAHeaderThatLeavesNoRoomForItself) {
  for (const std::uint32_t headerLength : {130'994u, 0x20000u, 0x20001u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
    EXPECT_EQ(HeaderFailure(Container(headerLength, "R1161 BLMX" + kLongTail)), kUnusable) << headerLength;
}

TEST_F(ZerinStamp, RefusesANameThatLeavesNoRoomForTheHeader) {
  // 0x1FFF5 - 10 of header copy - 75 of the text without the name.
  EXPECT_EQ(HeaderFailure(Container(22, "R1161 BLMX"), std::string(130'976, 'n')), "no failure");
  EXPECT_EQ(HeaderFailure(Container(22, "R1161 BLMX"), std::string(130'977, 'n')), kUnusable);
  EXPECT_EQ(HeaderFailure(Container(22, "R1161 BLMX"), std::string(300'000, 'n')), kUnusable);
}

TEST_F(ZerinStamp, RefusesAFileThatEndsBeforeTheHeaderLength) {
  const Bytes whole = Container(22, "");
  for (const std::ptrdiff_t size : {0, 8, 11}) {
    const Bytes file(whole.begin(), whole.begin() + size);
    EXPECT_EQ(HeaderFailure(file), kUnusable) << size;
  }
}

TEST_F(ZerinStamp, IsMadeWithoutALookAtTheMagicAndTheTag) {
  Bytes file = Container(22, "?1161 BLMX");
  file[0] = 'X';
  const Bytes block = TopBlockOf(file);
  EXPECT_EQ(Bytes(block.end() - 8, block.end() - 4), Bytes({0x61, 0x11, 0x08, 0x00}));
}

TEST_F(ZerinStamp, IsMadeWhereverTheFileStands) {
  const std::string path = folder.Write("container", Container(22, "R1161 BLMX"));
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  ASSERT_EQ(std::fseek(file.get(), 0, SEEK_END), 0);
  EXPECT_EQ(helper.GetPayloadOffset(file.get(), "a.rbi"), 22u);
  helper.StartProgram();
  EXPECT_EQ(chip.Bytes(kTopBlockByte + kVersionWordOffset, 4), Bytes({0x61, 0x11, 0x08, 0x00}));
}

TEST_F(ZerinStamp, OfAnEarlierFileIsForgotten) {
  ReadHeader(Container(60, "R1161 BLMX" + std::string(38, 'x')), "a-long-name-indeed.rbi");
  const Bytes block = TopBlockOf(Container(22, "R0002 BLMX"));
  ExpectSame(block, Block(0x1FF9A, StampText("a.rbi"), BytesOf("R0002 BLMX"), {0x02, 0x00, 0x08, 0x00},
                          {0x9A, 0xFF, 0x1F, 0x00}));
}

TEST_F(ZerinStamp, StartsOnAWordForATextOfAnyLength) {
  for (std::size_t length = 0; length < 24; ++length) {
    const std::string name(length, 'n');
    const Bytes block = TopBlockOf(Container(22, "R1161 BLMX"), name);
    const std::size_t stampOffset = StampOffsetIn(block);
    EXPECT_EQ(stampOffset % 2, 0u) << length;
    EXPECT_EQ(block.at(stampOffset - 1), 0xFF) << length;
    EXPECT_EQ(TextAt(stampOffset, block), StampText(name)) << length;
  }
}

struct VersionCase {
  const char* what;
  std::string digits;
  Bytes versionWord;
};

void PrintTo(const VersionCase& version, std::ostream* out) {
  *out << version.what;
}

class ZerinStampVersion : public ZerinStamp, public testing::WithParamInterface<VersionCase> {};

TEST_P(ZerinStampVersion, IsReadFromTheFourCharactersBehindTheTag) {
  const Bytes block = TopBlockOf(Container(22, "R" + GetParam().digits + "9BLMX"));
  EXPECT_EQ(Bytes(block.end() - 8, block.end() - 4), GetParam().versionWord);
}

INSTANTIATE_TEST_SUITE_P(Of, ZerinStampVersion,
                         testing::ValuesIn(std::vector<VersionCase>{
                             {"Zero", "0000", {0x00, 0x00, 0x08, 0x00}},
                             {"Letters", "ABcd", {0xCD, 0xAB, 0x08, 0x00}},
                             {"FourDigits", "FFFF", {0xFF, 0xFF, 0x08, 0x00}},
                             {"DigitsUpToALetter", "12G4", {0x12, 0x00, 0x08, 0x00}},
                             {"NoDigits", "zzzz", {0x00, 0x00, 0x08, 0x00}},
                             {"DigitsUpToAZero",
                              std::string("1\0"
                                          "22",
                                          4),
                              {0x01, 0x00, 0x08, 0x00}},
                             {"Blanks", "  1A", {0x1A, 0x00, 0x08, 0x00}},
                             {"Prefix", "0x1F", {0x1F, 0x00, 0x08, 0x00}},
                             {"ANegativeNumber", "-001", {0xFF, 0xFF, 0xFF, 0xFF}},
                         }),
                         [](const auto& named) { return named.param.what; });

}  // namespace
