#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "FakeHostCards.h"
#include "installer/VersionDiscovery.h"
#include "support/CapturedOutput.h"
#include "support/FailureOf.h"
#include "support/PlatformDouble.h"
#include "support/ScriptedTransport.h"

namespace {

using test_support::CapturedOutput;

/// A part whose version is this text, and which answers or not.
class VersionedPart : public FakeHostCards {
 public:
  explicit VersionedPart(std::string text, HwcStatus status = kHWCerr_None) : text_(std::move(text)), status_(status) {}

  std::string part;

  HwcStatus ExecuteCommand(const char* name, Arguments arguments) override {
    asked.emplace_back(name);
    for (const Argument& argument : arguments) {
      if (argument.tag == ArgumentTag::kText) part = static_cast<const char*>(argument.input);
      if (argument.tag != ArgumentTag::kOutBytes || status_ != kHWCerr_None) continue;
      EXPECT_STREQ(argument.name, "Version");
      EXPECT_EQ(argument.sizeBytes, 31u);
      EXPECT_LE(text_.size(), argument.sizeBytes);
      std::memcpy(argument.place, text_.data(), text_.size());
    }
    return status_;
  }

 private:
  const std::string text_;
  const HwcStatus status_;
};

/// What was there from the part before.
PartRev Before() {
  PartRev rev;
  rev.major = 0x77;
  rev.minor = 0x88;
  std::strcpy(rev.suffix, "before");
  return rev;
}

struct TextCase {
  const char* what;
  std::string text;
  std::uint32_t major;
  std::uint32_t minor;
  const char* suffix;
};

void PrintTo(const TextCase& c, std::ostream* out) {
  *out << c.what;
}

class VersionText : public testing::TestWithParam<TextCase> {};

TEST_P(VersionText, IsTakenApart) {
  VersionedPart helper(GetParam().text);
  PartRev rev = Before();
  CapturedOutput output;
  GetPartRev(helper, "MorvakTesk", rev);
  EXPECT_EQ(rev.major, GetParam().major);
  EXPECT_EQ(rev.minor, GetParam().minor);
  EXPECT_STREQ(rev.suffix, GetParam().suffix);
  EXPECT_EQ(rev.IsThere(), GetParam().major != 0 || GetParam().minor != 0);
  EXPECT_EQ(helper.asked, std::vector<std::string>{"GetStringPartRev"});
  EXPECT_EQ(helper.part, "MorvakTesk");
  EXPECT_EQ(output.out() + output.err(), "");
}

INSTANTIATE_TEST_SUITE_P(WithoutADot, VersionText,
                         testing::Values(TextCase{"four digits and a suffix", "0102abc", 1, 2, "abc"},
                                         TextCase{"hexadecimal digits", "1aFfz", 0x1A, 0xFF, "z"},
                                         TextCase{"digits of a suffix", "010203", 1, 2, "03"},
                                         TextCase{"a suffix behind a blank", "0102 abc", 1, 2, "abc"},
                                         TextCase{"the first word of a suffix", "0102abc def", 1, 2, "abc"},
                                         TextCase{"the longest suffix", "0102abcdefghijklmnopqrstuvwxyz1", 1, 2,
                                                  "abcdefghijklmnopqrstuvwxyz1"},
                                         TextCase{"four digits", "0102", 1, 2, ""},
                                         TextCase{"three digits", "012", 1, 2, ""},
                                         TextCase{"two digits", "01", 1, 0, ""}, TextCase{"one digit", "1", 1, 0, ""},
                                         TextCase{"nothing", "", 0, 0, ""}, TextCase{"no digits", "xyz", 0, 0, ""},
                                         TextCase{"a dot behind one digit", "1.2 abc", 1, 0, ""},
                                         TextCase{"a dot behind three digits", "123.4 abc", 0x12, 0x3, ".4"},
                                         TextCase{"zeros with a suffix", "0000abc", 0, 0, "abc"}));

INSTANTIATE_TEST_SUITE_P(
    WithADot, VersionText,
    testing::Values(TextCase{"a suffix behind a blank", "01.02 abc", 1, 2, "abc"},
                    // Letters up to f are digits.
                    TextCase{"digits right behind the number", "01.02abc", 1, 0x2ABC, ""},
                    TextCase{"a character that is dropped", "01.02rabc", 1, 2, "abc"},
                    TextCase{"a character and nothing behind it", "01.02r", 1, 2, ""},
                    TextCase{"a character and a blank in front of the suffix", "3C.1- xyz", 0x3C, 1, "xyz"},
                    TextCase{"no suffix", "01.02", 1, 2, ""}, TextCase{"no minor number", "01.", 1, 0, ""},
                    TextCase{"no number behind the dot", "01.xyz", 1, 0, ""},
                    TextCase{"no number before the dot", "xy.02 abc", 0, 0, ""},
                    TextCase{"a blank before the number", " 1.2 abc", 1, 2, "abc"},
                    TextCase{"zeros", "00.00 abc", 0, 0, "abc"},
                    TextCase{"the longest suffix", "01.2 abcdefghijklmnopqrstuvwxyz", 1, 2,
                             "abcdefghijklmnopqrstuvwxyz"},
                    TextCase{"the most digits of 32 bits", "01.FFFFFFFF abc", 1, 0xFFFFFFFF, "abc"},
                    TextCase{"more digits than 32 bits have", "01.123456789 abc", 1, 0x23456789, "abc"},
                    TextCase{"the most digits", "01.FEDCBA9876543210 abc", 1, 0x76543210, "abc"}));

INSTANTIATE_TEST_SUITE_P(ThatIsUnknown, VersionText,
                         testing::Values(TextCase{"alone", "UNKNOWN", 0, 0, "before"},
                                         TextCase{"behind a version", "0102UNKNOWN", 0, 0, "before"},
                                         TextCase{"in the middle", "01.02 xUNKNOWNx", 0, 0, "before"},
                                         TextCase{"at the very end", "0102abcdefghijklmnopqrstUNKNOWN", 0, 0, "before"},
                                         TextCase{"in small letters, which is none", "0102unknown", 1, 2, "unknown"},
                                         TextCase{"cut short, which is none", "0102UNKNOW", 1, 2, "UNKNOW"},
                                         TextCase{"behind the end of the text, which is none",
                                                  std::string("0102\0UNKNOWN", 12), 1, 2, ""}));

TEST(GetPartRev, APartThatDoesNotAnswerIsALineAndVersionZero) {
  VersionedPart silent("0102abc", kHWCerr_CommandTimeout);
  PartRev rev = Before();
  CapturedOutput output;
  GetPartRev(silent, "MorvakCodec2VCID", rev);
  EXPECT_EQ(output.err(), "GetStringPartRev for MorvakCodec2VCID failed.\n");
  EXPECT_EQ(output.out(), "");
  EXPECT_FALSE(rev.IsThere());
  EXPECT_EQ(rev.Version(), 0u);
  EXPECT_STREQ(rev.suffix, "") << "no text is not an unknown one";
}

TEST(PartRev, PutsItsMajorAboveAByteForTheMinor) {
  PartRev rev;
  EXPECT_EQ(rev.Version(), 0u);
  rev.major = 0x1A;
  rev.minor = 0x0B;
  EXPECT_EQ(rev.Version(), 0x1A0Bu);
  rev.minor = 0x2ABC;  // carries into the major
  EXPECT_EQ(rev.Version(), 0x44BCu);
  rev.major = 0;
  rev.minor = 1;
  EXPECT_TRUE(rev.IsThere());
}

// ---- As packets

class PartRevPackets : public testing::Test {
 protected:
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
  ScriptedTransport board;
};

TEST_F(PartRevPackets, NameThePartByItsNumber) {
  struct Case {
    const char* part;
    const char* number;
  };
  const Case cases[] = {{"MorvakFirmware", "00"},   {"MorvakFPGA", "01"},       {"MorvakTesk", "02"},
                        {"MorvakCodec1FPGA", "03"}, {"MorvakCodec2FPGA", "05"}, {"MorvakCodec1VCID", "07"},
                        {"MorvakCodec2VCID", "08"}, {"MorvakPower", "0A"}};
  for (const Case& each : cases) {
    SCOPED_TRACE(each.part);
    const std::string number = each.number;
    // The text is "0102abc".
    board.Expect({Replies("0B 0B 00 06 80 55 00 00 00 " + number,
                          "0B 0B 00 0D 80 55 00 00 00 " + number + " 30 31 30 32 61 62 63")});
    PartRev rev;
    GetPartRev(board, each.part, rev);
    EXPECT_EQ(rev.Version(), 0x102u);
    EXPECT_STREQ(rev.suffix, "abc");
  }
}

TEST_F(PartRevPackets, HaveRoomFor31Characters) {
  const std::string text30 =
      "30 31 30 32 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D 2D";
  board.Expect({Replies("0B 0B 00 06 80 55 00 00 00 00", "0B 0B 00 25 80 55 00 00 00 00 " + text30 + " 2D"),
                Replies("0B 0B 00 06 80 55 00 00 00 00", "0B 0B 00 26 80 55 00 00 00 00 " + text30 + " 2D 2D")});
  PartRev rev;
  GetPartRev(board, "MorvakFirmware", rev);
  EXPECT_EQ(std::string(rev.suffix), std::string(27, '-'));
  // More is a box that answers badly.
  EXPECT_EQ(FailureOf([&] { GetPartRev(board, "MorvakFirmware", rev); }),
            "WyvrelHelper.cpp: kHWCerr_UnexpectedObjectTypeError");
}

TEST_F(PartRevPackets, PassOnABoxThatAnswersBadly) {
  board.Expect({Replies("0B 0B 00 06 80 55 00 00 00 00", "0B 0B 00 06 80 55 00 02 00 00")});
  PartRev rev;
  EXPECT_EQ(FailureOf([&] { GetPartRev(board, "MorvakFirmware", rev); }),
            "WyvrelHelper.cpp: Unsupported BOB command or parameters");
}

}  // namespace
