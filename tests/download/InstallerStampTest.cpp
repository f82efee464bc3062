#include <cstdint>
#include <limits>
#include <ostream>

#include "download/InstallerStamp.h"
#include "support/HexBlock.h"
#include "ZerinFixture.h"

namespace {

using testing::UnorderedElementsAre;

class InstallerStampText : public testing::Test, protected StampSystem {
 protected:
  std::string Text(const char* fileName) { return FormatInstallerStamp(fileName, environment, clock.clock()); }
};

TEST_F(InstallerStampText, HasThreeLines) {
  environment.variables = {{"USERDOMAIN", "STUDIO"}, {"USERNAME", "editor"}};
  EXPECT_EQ(Text("BLMX0202.rbi"),
            " Filename:     BLMX0202.rbi\n"
            " Installer:    STUDIO - editor\n"
            " Install Date: Sun Sep  9 01:46:40 2001\n");
}

TEST_F(InstallerStampText, HasADashAloneWithoutUserAndDomain) {
  EXPECT_EQ(Text("BLMX0202.rbi"),
            " Filename:     BLMX0202.rbi\n"
            " Installer:     - \n"
            " Install Date: Sun Sep  9 01:46:40 2001\n");
  EXPECT_THAT(environment.asked, UnorderedElementsAre("USERDOMAIN", "USERNAME"));
}

TEST_F(InstallerStampText, TellsTheLocalTime) {
  struct {
    const char* zone;
    std::int64_t seconds;
    const char* date;
  } const cases[] = {
    {"EST5", 1'000'000'000, "Sat Sep  8 20:46:40 2001"},
    {"XYZ-5:30", 1'000'000'000, "Sun Sep  9 07:16:40 2001"},
    {"UTC0", 0, "Thu Jan  1 00:00:00 1970"},
    {"UTC0", 4'102'444'799, "Thu Dec 31 23:59:59 2099"},
#if !defined(_WIN32)  // which knows no local time behind the year 3000
    {"UTC0", 253'402'300'799, "Fri Dec 31 23:59:59 9999"},
#endif
  };
  for (const auto& [zone, seconds, date] : cases) {
    SetTimeZone(zone);
    clock.SetPresentTime(seconds);
    EXPECT_EQ(Text("a.rbi"), std::string(" Filename:     a.rbi\n Installer:     - \n Install Date: ") + date + "\n");
  }
}

TEST_F(InstallerStampText, HasNoDateForATimeThatHasNone) {
  clock.SetPresentTime(std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(Text("a.rbi"), " Filename:     a.rbi\n Installer:     - \n Install Date: \n");
}

struct NameCase {
  const char* what;
  std::string value;
  std::string shown;
};

void PrintTo(const NameCase& name, std::ostream* out) {
  *out << name.what;
}

class InstallerStampName : public InstallerStampText, public testing::WithParamInterface<NameCase> {};

TEST_P(InstallerStampName, IsCutTo19Characters) {
  environment.variables = {{"USERDOMAIN", GetParam().value}, {"USERNAME", "editor"}};
  EXPECT_EQ(Text("a.rbi"), " Filename:     a.rbi\n Installer:    " + GetParam().shown +
                               " - editor\n Install Date: Sun Sep  9 01:46:40 2001\n");
  environment.variables = {{"USERDOMAIN", "STUDIO"}, {"USERNAME", GetParam().value}};
  EXPECT_EQ(Text("a.rbi"), " Filename:     a.rbi\n Installer:    STUDIO - " + GetParam().shown +
                               "\n Install Date: Sun Sep  9 01:46:40 2001\n");
}

INSTANTIATE_TEST_SUITE_P(Of, InstallerStampName,
                         testing::ValuesIn(std::vector<NameCase>{
                             {"NoCharacters", "", ""},
                             {"OneCharacter", "x", "x"},
                             {"18Characters", "123456789012345678", "123456789012345678"},
                             {"19Characters", "1234567890123456789", "1234567890123456789"},
                             {"20Characters", "12345678901234567890", "1234567890123456789"},
                             {"1000Characters", std::string(1000, 'n'), "nnnnnnnnnnnnnnnnnnn"},
                         }),
                         [](const auto& named) { return named.param.what; });

TEST_F(InstallerStampText, ShowsTheFileWithoutItsFolder) {
  for (const char* path : {"x.rbi", "a/b/x.rbi", "C:\\a\\x.rbi", "C:\\a/x.rbi", "a/b\\x.rbi", "/x.rbi"})
    EXPECT_EQ(Text(path), " Filename:     x.rbi\n Installer:     - \n Install Date: Sun Sep  9 01:46:40 2001\n")
        << path;
}

TEST_F(InstallerStampText, TakesPercentSignsAsTheyAre) {
  environment.variables = {{"USERDOMAIN", "%s%n"}, {"USERNAME", "%d"}};
  EXPECT_EQ(Text("%s.rbi"),
            " Filename:     %s.rbi\n Installer:    %s%n - %d\n Install Date: Sun Sep  9 01:46:40 2001\n");
}

/// A flash with a stamp in it that a test puts together itself.
class StampedFlash : public testing::Test, protected StampSystem {
 protected:
  static constexpr std::uint32_t kImageAreaByte = 0x200000;
  static constexpr std::uint32_t kFormatWordAddress = 0x1FFFFD;
  static constexpr std::uint32_t kLocationAddress = 0x1FFFFE;

  /// Puts the words at the end of the image area.
  void PutFormatAndLocation(std::uint16_t format, std::uint32_t location) {
    chip.Put(kFormatWordAddress, {format});
    chip.Put(kLocationAddress, {static_cast<std::uint16_t>(location), static_cast<std::uint16_t>(location >> 16)});
  }
  /// Puts a stamp with this text, and a header copy, at a byte offset in the image area.
  void PutStamp(std::uint32_t byteOffset, const std::string& text, const std::string& headerCopy) {
    chip.PutBytes(kImageAreaByte + byteOffset, Join({BytesOf(text), {0}, BytesOf(headerCopy)}));
  }

  std::uint32_t Version() {
    C28FxJ3A flash;
    flash.Attach(chip.Window());
    const std::uint32_t version = ReadStampedVersion(flash);
    EXPECT_EQ(chip.Errors(), "");
    EXPECT_TRUE(chip.Programmed().empty() && chip.Erased().empty());
    return version;
  }

  StrictFlash chip;
};

TEST_F(StampedFlash, OfTheFormat8HasAByteOffset) {
  PutFormatAndLocation(8, 0x1FFF00);
  PutStamp(0x1FFF00, "text", "R1161 BLMX");
  EXPECT_EQ(Version(), 0x1161u);
}

TEST_F(StampedFlash, OfTheFormat4HasAWordAddress) {
  PutFormatAndLocation(4, 0x1FFF80);
  PutStamp(0x1FFF00, "text", "R2202 BLMX");
  EXPECT_EQ(Version(), 0x2202u);
}

TEST_F(StampedFlash, OfAnyOtherFormatHasAByteOffset) {
  PutStamp(0x1F0000, "text", "R1161 BLMX");
  PutStamp(0x1E0000, "text", "R2202 BLMX");  // where the same number leads as a word address
  for (const int format : {0, 1, 3, 5, 7, 9, 0x0104, 0x0400, 0xFFFF}) {
    PutFormatAndLocation(static_cast<std::uint16_t>(format), 0x1F0000);
    EXPECT_EQ(Version(), 0x1161u) << format;
  }
  PutFormatAndLocation(4, 0x1F0000);
  EXPECT_EQ(Version(), 0x2202u);
}

TEST_F(StampedFlash, WithAnOddOffsetStartsOneByteIntoTheWord) {
  PutFormatAndLocation(8, 0x1FFF01);
  PutStamp(0x1FFF01, "text", "R1161 BLMX");
  // Were it taken for the start of the text, the text would end at once, and the version be another.
  chip.PutBytes(kImageAreaByte + 0x1FFF00, {0});
  EXPECT_EQ(Version(), 0x1161u);
}

TEST_F(StampedFlash, WithAnOddWordAddressStartsOnThatWordsFirstByte) {
  PutFormatAndLocation(4, 0x1FFF81);
  // One byte on, the first header copy would be the text, and the version that of the second.
  PutStamp(0x1FFF02, "", std::string("R1161\0R2202", 11));
  EXPECT_EQ(Version(), 0x1161u);
}

TEST_F(StampedFlash, ThatIsErasedHasNoVersion) {
  EXPECT_EQ(Version(), 0u);
}

struct LocationCase {
  const char* what;
  std::uint16_t format;
  std::uint32_t location;
};

void PrintTo(const LocationCase& location, std::ostream* out) {
  *out << location.what;
}

class UnusableStampLocation : public StampedFlash, public testing::WithParamInterface<LocationCase> {};

TEST_P(UnusableStampLocation, HasNoVersionAndIsNotReadFrom) {
  PutFormatAndLocation(GetParam().format, GetParam().location);
  EXPECT_EQ(Version(), 0u);
  EXPECT_LE(chip.WordsRead(), 4u);
}

INSTANTIATE_TEST_SUITE_P(Of, UnusableStampLocation,
                         testing::ValuesIn(std::vector<LocationCase>{
                             {"Zero", 8, 0},
                             {"ZeroInFormat4", 4, 0},
                             {"MinusOne", 8, 0xFFFFFFFF},
                             {"MinusOneInFormat4", 4, 0xFFFFFFFF},
                             {"TheSmallestNumber", 8, 0x80000000},
                             {"TheSmallestNumberInFormat4", 4, 0x80000000},
                             {"TheEndOfTheArea", 8, 0x200000},
                             {"BeyondTheArea", 8, 0x200001},
                             {"FarBeyondTheArea", 8, 0x600000},
                             {"TheLargestNumber", 8, 0x7FFFFFFF},
                             {"TheEndOfTheAreaInFormat4", 4, 0x200000},
                             {"BeyondTheAreaInFormat4", 4, 0x200001},
                             {"TheEndOfTheFlashInFormat4", 4, 0x400000},
                             {"TheLargestNumberInFormat4", 4, 0x7FFFFFFF},
                         }),
                         [](const auto& named) { return named.param.what; });

TEST_F(StampedFlash, IsReadFromTheFirstByteOfTheAreaToo) {
  // Offset 0 is no stamp, so 1 is the lowest.
  PutFormatAndLocation(8, 1);
  PutStamp(1, "", "R1161");
  EXPECT_EQ(Version(), 0x1161u);
}

TEST_F(StampedFlash, OfTheFormat4IsReadBelowTheAreaToo) {
  PutFormatAndLocation(4, 1);
  chip.PutBytes(2, Join({BytesOf("text"), {0}, BytesOf("R1161")}));
  EXPECT_EQ(Version(), 0x1161u);
}

TEST_F(StampedFlash, IsReadForNoMoreThan1024Bytes) {
  PutFormatAndLocation(8, 0x1F0000);
  PutStamp(0x1F0000, "text", "R1161");
  EXPECT_EQ(Version(), 0x1161u);
  EXPECT_EQ(chip.WordsRead(), 4u + 512u);
}

TEST_F(StampedFlash, IsReadToTheEndOfTheAreaAndNotBehindIt) {
  // 16 bytes from the end, of which the last 8 are the words there.
  PutFormatAndLocation(8, 0x1FFFF0);
  PutStamp(0x1FFFF0, "", "R1161");
  EXPECT_EQ(Version(), 0x1161u);
  EXPECT_EQ(chip.WordsRead(), 4u + 8u);
}

struct TextCase {
  const char* what;
  std::uint32_t location;
  std::string text;
  std::string headerCopy;
  std::uint32_t version;
};

void PrintTo(const TextCase& text, std::ostream* out) {
  *out << text.what;
}

class StampedText : public StampedFlash, public testing::WithParamInterface<TextCase> {};

TEST_P(StampedText, IsFollowedByTheVersion) {
  PutFormatAndLocation(8, GetParam().location);
  PutStamp(GetParam().location, GetParam().text, GetParam().headerCopy);
  EXPECT_EQ(Version(), GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(Of, StampedText,
                         testing::ValuesIn(std::vector<TextCase>{
                             {"NoCharacters", 0x1FF000, "", "R1161 BLMX", 0x1161},
                             {"SomeCharacters", 0x1FF000, "text", "R1161 BLMX", 0x1161},
                             {"AnotherTag", 0x1FF000, "text", "X1161 BLMX", 0x1161},
                             {"LettersInTheVersion", 0x1FF000, "text", "RabCD BLMX", 0xABCD},
                             {"MoreDigitsThanFour", 0x1FF000, "text", "R11612345", 0x1161},
                             {"DigitsUpToALetter", 0x1FF000, "text", "R12G4 BLMX", 0x12},
                             {"NoDigits", 0x1FF000, "text", "Rzzzz BLMX", 0},
                             {"ErasedDigits", 0x1FF000, "text", "", 0},
                             {"ZerosInTheVersion", 0x1FF000, "text", std::string("R\0\0\0\0", 5), 0},
                             {"ANegativeVersion", 0x1FF000, "text", "R-001", 0xFFFFFFFF},
                             // Tag and digits stand in the last 5 of 1,024 bytes, and one byte further.
                             {"TheMostCharacters", 0x1FF000, std::string(1018, 't'), "R1161", 0x1161},
                             {"OneCharacterTooMany", 0x1FF000, std::string(1019, 't'), "R1161", 0},
                             {"TheMostCharactersAtAnOddOffset", 0x1FF001, std::string(1017, 't'), "R1161", 0x1161},
                             {"OneCharacterTooManyAtAnOddOffset", 0x1FF001, std::string(1018, 't'), "R1161", 0},
                             {"TheTerminatorLast", 0x1FF000, std::string(1023, 't'), "R1161", 0},
                             {"NoTerminatorInReach", 0x1FF000, std::string(1024, 't'), "R1161", 0},
                             {"NoTerminatorForLong", 0x1FF000, std::string(3000, 't'), "R1161", 0},
                         }),
                         [](const auto& named) { return named.param.what; });

TEST_F(StampedFlash, WithoutATerminatorBeforeTheEndOfTheAreaHasNoVersion) {
  chip.PutBytes(kImageAreaByte + 0x1FFE02, Bytes(0x1FA, 't'));
  PutFormatAndLocation(0x7474, 0x1FFE02);
  // The last byte of the location, which is zero, ends the text. What stands behind the area is none of its business.
  chip.PutBytes(0x400000, BytesOf("R1161R1161"));
  EXPECT_EQ(Version(), 0u);
}

TEST_F(StampedFlash, OnTheLastBytesOfTheAreaHasNoVersion) {
  chip.PutBytes(0x400000, BytesOf("R1161R1161R1161"));
  for (const std::uint32_t location : {0x1FFFFBu, 0x1FFFFCu, 0x1FFFFDu, 0x1FFFFEu, 0x1FFFFFu}) {
    PutFormatAndLocation(8, location);
    EXPECT_EQ(Version(), 0u) << std::hex << location;
  }
}

TEST_F(StampedFlash, TellsTheVersionOfTheHeaderCopyAndNotThatOfTheVersionWord) {
  PutFormatAndLocation(8, 0x1FFF00);
  PutStamp(0x1FFF00, "text", "R1161 BLMX");
  chip.Put(0x1FFFFC, {0x9999});
  EXPECT_EQ(Version(), 0x1161u);
}

TEST_F(StampedFlash, WithoutAWindowHasNoVersion) {
  C28FxJ3A flash;
  EXPECT_EQ(ReadStampedVersion(flash), 0u);
}

TEST_F(StampedFlash, IsLeftInReadArrayMode) {
  PutFormatAndLocation(8, 0x1FFF00);
  PutStamp(0x1FFF00, "text", "R1161 BLMX");
  Version();
  const std::size_t before = chip.WordsRead();
  chip.Write(0, 0);
  chip.Read(4);
  EXPECT_EQ(chip.WordsRead(), before + 2);
}

/// The example on the page about the stamp: the end of a top block.
class InstallerStampPage : public ZerinFixture {
 protected:
  const Bytes example = test_support::ReadHexBlock(STAMP_PAGE);
};

TEST_F(InstallerStampPage, ShowsAStampThatIsReadBack) {
  chip.PutBytes(kTopBlockByte + kBlockBytes - static_cast<std::uint32_t>(example.size()), example);
  EXPECT_EQ(ReadStampedVersion(flash), 0x1161u);
}

TEST_F(InstallerStampPage, ShowsTheStampThatIsWritten) {
  environment.variables = {{"USERDOMAIN", "STUDIO"}, {"USERNAME", "editor"}};
  const Bytes block = TopBlockOf(Container(28, "R1161;BLMXS:x;.."), "BLMX0202.rbi");
  const std::size_t start = block.size() - example.size();
  EXPECT_EQ(Bytes(block.begin() + static_cast<std::ptrdiff_t>(start), block.end()), example);
  EXPECT_EQ(Bytes(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(start)), Bytes(start, 0xFF));
}

}  // namespace
