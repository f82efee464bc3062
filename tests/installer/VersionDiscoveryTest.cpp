#include <gtest/gtest.h>

#include <stdexcept>

#include "errorException.h"
#include "FakeHostCards.h"
#include "installer/PartDiscovery.h"
#include "installer/VersionDiscovery.h"
#include "ParsedInstaller.h"
#include "support/CapturedOutput.h"
#include "support/ScopedWorkingFolder.h"
#include "support/TempFolder.h"

namespace {

using test_support::CapturedOutput;

template <typename Action>
std::string Failure(Action action) {
  try {
    action();
  } catch (const errorException& failure) {
    return std::string(failure.file) + ": " + failure.what();
  }
  return "no failure";
}

/// A stamp as the installer writes it, of version 1160.
void PutStamp(ReadOnlyFlash& chip, const std::string& headerCopy = "R1160;BLMX") {
  chip.PutStamp(0x1FFF00, " Filename:     a.rbi\n", headerCopy);
}

TEST(QueryFlashPart, FindsTheVersionInTheStamp) {
  FakeHostCards cards;
  cards.Insert(cards.belmara);
  PutStamp(cards.belmara.chip);
  ParsedInstaller parsed;
  QueryFlashPart(parsed.installer, cards, "belmara", "BLMX", 0x1161);
  ASSERT_EQ(parsed.installer.locationCount(), 1);
  const PartLocation& found = parsed.installer.location(0);
  EXPECT_STREQ(found.part->name, "belmara");
  EXPECT_EQ(found.major, 1);
  EXPECT_EQ(found.minor, 2);
  EXPECT_EQ(found.current, 0x1160u);
  EXPECT_STREQ(found.suffix, "");
  EXPECT_EQ(found.expected, 0x1161u);
}

TEST(QueryFlashPart, AnErasedFlashHasVersionZero) {
  FakeHostCards cards;
  cards.Insert(cards.dovu);
  ParsedInstaller parsed;
  QueryFlashPart(parsed.installer, cards, "dovu", "DVUX", 0x1161);
  ASSERT_EQ(parsed.installer.locationCount(), 1);
  EXPECT_EQ(parsed.installer.location(0).current, 0u);
}

TEST(QueryFlashPart, TheOldFormatStillTellsItsVersion) {
  FakeHostCards cards;
  cards.Insert(cards.belmara);
  PutStamp(cards.belmara.chip, "R0202;BLMX");
  // Format 4: the location is the word address of the same place, 0x100000 + 0x1FFF00 / 2.
  cards.belmara.chip.PutWord(0x1FFFFD, 4);
  cards.belmara.chip.PutWord(0x1FFFFE, 0xFF80);
  cards.belmara.chip.PutWord(0x1FFFFF, 0x001F);
  ParsedInstaller parsed;
  QueryFlashPart(parsed.installer, cards, "belmara", "BLMX", 0x1161);
  EXPECT_EQ(parsed.installer.location(0).current, 0x0202u);
}

TEST(QueryFlashPart, AnAbsentCardIsNoPartAndNoMessage) {
  FakeHostCards cards;
  CapturedOutput output;
  ParsedInstaller parsed;
  QueryFlashPart(parsed.installer, cards, "belmara", "BLMX", 0x1161);
  QueryKarvelPart(parsed.installer, cards, "dkarvel", "KRVL", 0);
  EXPECT_EQ(parsed.installer.locationCount(), 0);
  EXPECT_EQ(output.out() + output.err(), "");
}

TEST(QueryFlashPart, ARevisionAtTheEdgeOfTheRangeIsAPart) {
  FakeHostCards cards;
  cards.Insert(cards.belmara);
  cards.belmara.vpd = VpdWith({{"ZB", "2"}, {"ZC", "2"}});
  CapturedOutput output;
  ParsedInstaller parsed;
  QueryFlashPart(parsed.installer, cards, "belmara", "BLMX", 0x1161);
  EXPECT_EQ(parsed.installer.locationCount(), 1);
  EXPECT_EQ(output.err(), "");
}

TEST(QueryFlashPart, ARevisionBeyondTheRangeIsALineInDecimal) {
  FakeHostCards cards;
  cards.Insert(cards.belmara);
  cards.belmara.vpd = VpdWith({{"ZB", "2"}, {"ZC", "1F"}});
  CapturedOutput output;
  ParsedInstaller parsed;
  QueryFlashPart(parsed.installer, cards, "belmara", "BLMX", 0x1161);
  EXPECT_EQ(parsed.installer.locationCount(), 0);
  EXPECT_EQ(output.err(), "The belmara function rev 2.31 cannot be updated using this utility\n");
  EXPECT_EQ(output.out(), "");
}

TEST(QueryFlashPart, AFieldThatIsNoNumberCountsAs255) {
  FakeHostCards cards;
  cards.Insert(cards.belmara);
  cards.belmara.vpd = VpdWith({{"ZB", "zz"}, {"ZC", "?"}});
  CapturedOutput output;
  ParsedInstaller parsed;
  QueryFlashPart(parsed.installer, cards, "belmara", "BLMX", 0x1161);
  EXPECT_EQ(output.err(), "The belmara function rev 255.255 cannot be updated using this utility\n");
}

TEST(QueryFlashPart, AMissingRevisionFieldEndsTheRun) {
  FakeHostCards cards;
  cards.Insert(cards.belmara);
  ParsedInstaller parsed;
  const auto query = [&] { QueryFlashPart(parsed.installer, cards, "belmara", "BLMX", 0x1161); };
  cards.belmara.vpd = VpdWith({{"ZC", "2"}});
  EXPECT_EQ(Failure(query), "VersionDiscovery.cpp: Unable to decode Zerin major VPD information");
  cards.belmara.vpd = VpdWith({{"ZB", "2"}});
  EXPECT_EQ(Failure(query), "VersionDiscovery.cpp: Unable to decode Zerin minor VPD information");
  cards.belmara.vpd.clear();  // the card leaves the buffer alone: nothing but zeros
  EXPECT_EQ(Failure(query), "VersionDiscovery.cpp: Unable to decode Zerin major VPD information");
}

TEST(QueryKarvelPart, TheVersionIsTheThirdByteOfTheWord) {
  FakeHostCards cards;
  cards.Insert(cards.dovu);
  cards.dovu.karvel = 0xAB16CD99;
  ParsedInstaller parsed;
  QueryKarvelPart(parsed.installer, cards, "dkarvel", "KRVL", 0);
  ASSERT_EQ(parsed.installer.locationCount(), 1);
  EXPECT_STREQ(parsed.installer.location(0).part->name, "dkarvel");
  EXPECT_EQ(parsed.installer.location(0).current, 0x16u);
  EXPECT_EQ(parsed.installer.location(0).expected, 0u);
}

TEST(QueryKarvelPart, TheFirstCardMustTellItsArtworkAndTheSecondNeedNot) {
  FakeHostCards cards;
  cards.Insert(cards.belmara);
  cards.Insert(cards.dovu);
  cards.belmara.vpd = cards.dovu.vpd = VpdWith({{"ZB", "1"}, {"ZC", "0"}});
  ParsedInstaller parsed;
  QueryKarvelPart(parsed.installer, cards, "dkarvel", "KRVL", 0);
  EXPECT_EQ(parsed.installer.locationCount(), 1);
  EXPECT_EQ(Failure([&] { QueryKarvelPart(parsed.installer, cards, "bkarvel", "KRVL", 0); }),
            "VersionDiscovery.cpp: Unable to decode Belmara artwork information");
}

TEST(QueryKarvelPart, ABoardOutOfRangeIsALine) {
  FakeHostCards cards;
  cards.Insert(cards.belmara);
  cards.belmara.vpd = VpdWith({{"ZA", "5"}, {"ZB", "2"}, {"ZC", "3"}});
  CapturedOutput output;
  ParsedInstaller parsed;
  QueryKarvelPart(parsed.installer, cards, "bkarvel", "KRVL", 0);
  EXPECT_EQ(output.err(), "The bkarvel function rev 2.3 cannot be updated using this utility\n");
}

struct ArtworkCase {
  const char* what;
  const char* artwork;
  const char* fileVersion;  // null: the file is not there
  bool selected;
  bool isPart;
};

class EarlyArtwork : public testing::TestWithParam<ArtworkCase> {};

TEST_P(EarlyArtwork, TakesTheFirstCardsKarvelOutOfTheRun) {
  const test_support::TempFolder folder;
  const test_support::ScopedWorkingFolder inside(folder.Path());
  const ArtworkCase& c = GetParam();
  if (c.fileVersion != nullptr)
    folder.Write("KRVL0101.rbi", std::string("ORBO.RBI\0\0\0\x16R", 13) + c.fileVersion + ";KRVL");
  FakeHostCards cards;
  cards.Insert(cards.belmara);
  cards.belmara.vpd = VpdWith({{"ZA", c.artwork}, {"ZB", "1"}, {"ZC", "0"}});
  CapturedOutput output;
  ParsedInstaller parsed;
  if (c.selected) parsed.Parse({"-bkarvel"});
  QueryKarvelPart(parsed.installer, cards, "bkarvel", "KRVL", 0);
  EXPECT_EQ(parsed.installer.locationCount(), c.isPart ? 1 : 0) << c.what;
  EXPECT_EQ(output.err(), c.selected && c.fileVersion == nullptr ? "Unable to open file KRVL0101.rbi\n" : "") << c.what;
}

INSTANTIATE_TEST_SUITE_P(Each, EarlyArtwork,
                         testing::Values(ArtworkCase{"early artwork, newer image", "3", "0017", true, false},
                                         ArtworkCase{"early artwork, image that it can take", "3", "0016", true, true},
                                         ArtworkCase{"artwork that takes all", "4", "0017", true, true},
                                         ArtworkCase{"artwork is hexadecimal", "A", "0017", true, true},
                                         ArtworkCase{"nothing selected, nothing asked", "3", "0017", false, true},
                                         ArtworkCase{"a file that is not there has version 0", "3", nullptr, true,
                                                     true}));

TEST(QueryKarvelPart, EarlyArtworkLooksAtTheFileThatTheUserNamed) {
  const test_support::TempFolder folder;
  const test_support::ScopedWorkingFolder inside(folder.Path());
  folder.Write("KRVL0101.rbi", std::string("ORBO.RBI\0\0\0\x16R0010;KRVL", 22));
  folder.Write("new.rbi", std::string("ORBO.RBI\0\0\0\x16R0017;KRVL", 22));
  FakeHostCards cards;
  cards.Insert(cards.belmara);
  cards.belmara.vpd = VpdWith({{"ZA", "0"}, {"ZB", "1"}, {"ZC", "0"}});
  ParsedInstaller parsed({"-bkarvel", "new.rbi"});
  QueryKarvelPart(parsed.installer, cards, "bkarvel", "KRVL", 0);
  EXPECT_EQ(parsed.installer.locationCount(), 0);
}

TEST(QueryKarvelPart, EarlyArtworkOfTheFirstCardDoesNotConcernTheSecond) {
  const test_support::TempFolder folder;
  const test_support::ScopedWorkingFolder inside(folder.Path());
  folder.Write("KRVL0101.rbi", std::string("ORBO.RBI\0\0\0\x16R0017;KRVL", 22));
  FakeHostCards cards;
  cards.Insert(cards.belmara);
  cards.Insert(cards.dovu);
  cards.belmara.vpd = cards.dovu.vpd = VpdWith({{"ZA", "0"}, {"ZB", "1"}, {"ZC", "0"}});
  ParsedInstaller parsed({"-dkarvel"});
  QueryKarvelPart(parsed.installer, cards, "bkarvel", "KRVL", 0);
  QueryKarvelPart(parsed.installer, cards, "dkarvel", "KRVL", 0);
  EXPECT_EQ(parsed.installer.locationCount(), 2) << "dkarvel is selected, which is no row of the first card";
}

TEST(DiscoverVeltraParts, GoesFromFlashToKarvelAndFromFirstCardToSecond) {
  FakeHostCards cards;
  cards.Insert(cards.belmara);
  cards.Insert(cards.dovu);
  CapturedOutput output;
  ParsedInstaller parsed;
  DiscoverVeltraParts(parsed.installer, cards);
  ASSERT_EQ(parsed.installer.locationCount(), 4);
  EXPECT_STREQ(parsed.installer.location(0).part->name, "belmara");
  EXPECT_STREQ(parsed.installer.location(1).part->name, "dovu");
  EXPECT_STREQ(parsed.installer.location(2).part->name, "bkarvel");
  EXPECT_STREQ(parsed.installer.location(3).part->name, "dkarvel");
  EXPECT_EQ(parsed.installer.location(0).expected, 0x1161u);
  EXPECT_EQ(parsed.installer.location(1).expected, 0x1161u);
  EXPECT_EQ(parsed.installer.location(2).expected, 0u);
  EXPECT_EQ(parsed.installer.location(3).expected, 0u);
  EXPECT_EQ(output.err(), "Veltra BOB is inaccessable, and cannot be loaded.  Is BOB turned off?\n");
  EXPECT_EQ(cards.asked, std::vector<std::string>{"HWConfigFB"});
}

TEST(DiscoverVeltraParts, WithoutTheFirstCardSaysThatTheBoxIsOutOfReach) {
  FakeHostCards cards;
  cards.Insert(cards.dovu);
  CapturedOutput output;
  ParsedInstaller parsed;
  DiscoverVeltraParts(parsed.installer, cards);
  EXPECT_EQ(parsed.installer.locationCount(), 2) << "the second card's parts stay";
  EXPECT_EQ(output.err(), "There is no Belmara card (driver not loaded?), so Veltra BOB is inaccessible.\n");
}

/// A box that answers with this VPD, and says that it is so long.
class VpdBox : public FakeHostCards {
 public:
  std::vector<std::uint8_t> vpd;
  std::uint16_t size = 0;
  std::string board;

  HwcStatus ExecuteCommand(const char* name, Arguments arguments) override {
    asked.emplace_back(name);
    for (const Argument& argument : arguments) {
      if (argument.tag == ArgumentTag::kText) board = static_cast<const char*>(argument.input);
      if (argument.tag == ArgumentTag::kOutUInt16) *static_cast<std::uint16_t*>(argument.place) = size;
      if (argument.tag != ArgumentTag::kOutBytes) continue;
      EXPECT_EQ(argument.sizeBytes, 1999u);
      std::copy(vpd.begin(), vpd.end(), static_cast<std::uint8_t*>(argument.place));
    }
    return kHWCerr_None;
  }
};

TEST(QueryVpdPart, AddsWhatItWasTold) {
  VpdBox box;
  box.vpd = VpdWith({{"ZB", "1"}, {"ZC", "2"}});
  box.size = static_cast<std::uint16_t>(box.vpd.size());
  ParsedInstaller parsed;
  QueryVpdPart(parsed.installer, box, "fwcore", "BROX", "VPD_Brox", 0x224, "b", 0x225);
  EXPECT_EQ(box.asked, std::vector<std::string>{"VPDInfo"});
  EXPECT_EQ(box.board, "VPD_Brox");
  ASSERT_EQ(parsed.installer.locationCount(), 1);
  const PartLocation& found = parsed.installer.location(0);
  EXPECT_STREQ(found.part->name, "fwcore");
  EXPECT_EQ(found.major, 1);
  EXPECT_EQ(found.minor, 2);
  EXPECT_EQ(found.current, 0x224u);
  EXPECT_STREQ(found.suffix, "-b");
  EXPECT_EQ(found.expected, 0x225u);
}

TEST(QueryVpdPart, BelievesTheSizeThatIsToldAndNoMoreThanThereIsRoomFor) {
  const auto failure = [](std::uint16_t size) {
    VpdBox box;
    box.vpd = VpdWith({{"ZB", "1"}, {"ZC", "2"}});
    box.size = size;
    ParsedInstaller parsed;
    return Failure([&] { QueryVpdPart(parsed.installer, box, "ulmen", "ULMN", "VPD_Brox", 0x1B, nullptr, 0x1C); });
  };
  constexpr char kNoMajor[] = "VersionDiscovery.cpp: Unable to decode major VPD information";
  EXPECT_EQ(failure(12), "no failure");
  EXPECT_EQ(failure(1999), "no failure");
  for (const int size : {0, 1, 10, 2000, 65535})
    EXPECT_EQ(failure(static_cast<std::uint16_t>(size)), kNoMajor) << size;
}

TEST(QueryVpdPart, ABoxThatDoesNotAnswerIsFatalBehindALine) {
  FakeHostCards silent;
  ParsedInstaller parsed;
  CapturedOutput output;
  EXPECT_EQ(Failure([&] { QueryVpdPart(parsed.installer, silent, "vulmen", "VULM", "VPD_Jorl", 0x1, nullptr, 0x1); }),
            "VersionDiscovery.cpp: Unable to get VPD information");
  EXPECT_EQ(output.err(), "Error: VPDInfo TALC command failed for VPD_Jorl, for device vulmen\n");
  EXPECT_EQ(parsed.installer.locationCount(), 0);
}

TEST(QueryVpdPart, ARevisionOutOfRangeIsALineAndNoLocation) {
  VpdBox box;
  box.vpd = VpdWith({{"ZB", "A"}, {"ZC", "1F"}});
  box.size = static_cast<std::uint16_t>(box.vpd.size());
  ParsedInstaller parsed;
  CapturedOutput output;
  QueryVpdPart(parsed.installer, box, "tulmen", "TULM", "VPD_Fenrok", 0x1, nullptr, 0x2);
  EXPECT_EQ(output.err(), "The tulmen function rev 10.31 cannot be updated using this utility\n")
      << "decimal, unlike the table";
  EXPECT_EQ(parsed.installer.locationCount(), 0);
}

/// A helper whose VPD read goes as a test says.
class VpdHelper : public FakeHostCards {
 public:
  enum class Throws { kNothing, kErrorException, kSomethingElse } throws = Throws::kNothing;
  void GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) override {
    if (throws == Throws::kErrorException) throw errorException("no VPD");
    if (throws == Throws::kSomethingElse) throw std::string("no VPD");
    FakeHostCards::GetBoardVPD(board, buffer);
  }
};

struct PartNumberCase {
  const char* text;
  std::int32_t first, second, third;
};

class PartNumbers : public testing::TestWithParam<PartNumberCase> {};

TEST_P(PartNumbers, KeepWhatAShortTextLacks) {
  VpdHelper helper;
  helper.Insert(helper.belmara);
  helper.belmara.vpd = VpdWith({{"PN", GetParam().text}});
  BoardPartNumber numbers;
  EXPECT_EQ(ReadBoardPartNumber(&helper, "0", &numbers), 0);
  EXPECT_EQ(numbers.first, GetParam().first);
  EXPECT_EQ(numbers.second, GetParam().second);
  EXPECT_EQ(numbers.third, GetParam().third);
}

INSTANTIATE_TEST_SUITE_P(Each, PartNumbers,
                         testing::Values(PartNumberCase{"1-20040-3", 1, 20040, 3}, PartNumberCase{"12-34", 12, 34, 99},
                                         PartNumberCase{"", 9999, 99999, 99}, PartNumberCase{"x", 9999, 99999, 99},
                                         PartNumberCase{"7", 7, 99999, 99}, PartNumberCase{"0010-010-08", 10, 10, 8},
                                         PartNumberCase{"-1--2--3", -1, -2, -3}));

TEST(ReadBoardPartNumber, ReportsWhyThereIsNone) {
  VpdHelper helper;
  helper.Insert(helper.belmara);
  BoardPartNumber numbers;
  EXPECT_EQ(ReadBoardPartNumber(nullptr, "0", &numbers), 1);
  EXPECT_EQ(ReadBoardPartNumber(&helper, nullptr, &numbers), 1);
  EXPECT_EQ(ReadBoardPartNumber(&helper, "0", nullptr), 1);
  EXPECT_EQ(ReadBoardPartNumber(&helper, "0", &numbers), 5) << "a VPD without the field";
  helper.belmara.vpd = {0x90, 0xFF, 0xFF};
  EXPECT_EQ(ReadBoardPartNumber(&helper, "0", &numbers), 4) << "a damaged VPD";
  helper.throws = VpdHelper::Throws::kErrorException;
  EXPECT_EQ(ReadBoardPartNumber(&helper, "0", &numbers), 5);
  helper.throws = VpdHelper::Throws::kSomethingElse;
  EXPECT_EQ(ReadBoardPartNumber(&helper, "0", &numbers), 5);
  EXPECT_EQ(numbers.first, 9999);
}

TEST(ReadBoardPartNumber, AFieldThatFillsItsBufferIsScannedAndNoFurther) {
  VpdHelper helper;
  helper.Insert(helper.belmara);
  helper.belmara.vpd = VpdWith({{"PN", std::string(250, '1')}});
  BoardPartNumber numbers;
  EXPECT_EQ(ReadBoardPartNumber(&helper, "0", &numbers), 0);
  EXPECT_EQ(numbers.second, 99999);
}

}  // namespace
