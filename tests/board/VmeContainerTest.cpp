#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>
#include <vector>

#include "board/VmePlayer.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"
#include "support/VmeTrace.h"

namespace {

using test_support::HexBytes;
using test_support::SameTrace;
using test_support::Times;
using test_support::Trace;
using test_support::VmeFile;
using test_support::VmeTrace;

using Bytes = std::vector<std::uint8_t>;

/// A whole file: "ORBO.RBI", the length, what else the header holds, "__VME2.0" and the rest.
Bytes File(const std::string& length, const std::string& header, const std::string& rest) {
  return HexBytes("4F 52 42 4F 2E 52 42 49" + length + header + "5F 5F 56 4D 45 32 2E 30" + rest);
}

TEST(VmeContainer, NamesWhatWasMissing) {
  VmeTrace trace;
  EXPECT_EQ(trace.PlayPath("/no/such/folder/a.rbi"), -2);
  EXPECT_EQ(trace.text(), "RESULT -2\n");
  EXPECT_FALSE(trace.player.HasFileOpen());
}

TEST(VmeContainer, RefusesAWrongByteAnywhereInTheFirstMagicAndSaysSo) {
  for (std::size_t at = 0; at < 8; ++at) {
    for (const int flip : {0x01, 0x20, 0x80}) {
      VmeTrace trace;
      Bytes file = VmeFile("F2 7F");
      file[at] = static_cast<std::uint8_t>(file[at] ^ flip);
      EXPECT_EQ(trace.PlayBytes(file), -3) << at;
      EXPECT_EQ(trace.text(), "P RBI Header Error\\n\\r\nRESULT -3\n") << at;
      EXPECT_TRUE(trace.player.HasFileOpen());
    }
  }
}

TEST(VmeContainer, RefusesAWrongByteAnywhereInTheSecondMagicInSilence) {
  for (std::size_t at = 12; at < 20; ++at) {
    for (const int flip : {0x01, 0x20, 0x80}) {
      VmeTrace trace;
      Bytes file = VmeFile("F2 7F");
      file[at] = static_cast<std::uint8_t>(file[at] ^ flip);
      EXPECT_EQ(trace.PlayBytes(file), -3) << at;
      EXPECT_EQ(trace.text(), "RESULT -3\n") << at;
      EXPECT_TRUE(trace.player.HasFileOpen());
    }
  }
}

TEST(VmeContainer, RefusesEveryOtherKindOfPacking) {
  for (int kind = 0; kind < 256; ++kind) {
    if (kind == 0xF1 || kind == 0xF2) continue;
    VmeTrace trace;
    Bytes file = VmeFile("00 7F");
    file[20] = static_cast<std::uint8_t>(kind);
    EXPECT_EQ(trace.PlayBytes(file), -3) << kind;
    EXPECT_EQ(trace.text(), "RESULT -3\n") << kind;
    EXPECT_TRUE(trace.player.HasFileOpen());
  }
}

TEST(VmeContainer, TakesBothKindsOfPacking) {
  VmeTrace trace;
  EXPECT_TRUE(trace.Plays("F1 7F", "enter leave:6 =0"));
  EXPECT_TRUE(trace.Plays("F2 7F", "enter leave:6 =0"));
  // The same bytes are a kind and a byte in one and a byte alone in the other.
  EXPECT_TRUE(trace.Plays("F1 19 08  11 08 13 00 A5 70  7F",
                          "enter tms:011010 rest tms:10 rest tdi:10100101. tms:10 rest leave:5 =0"));
  EXPECT_TRUE(trace.Plays("F2 19 08  11 08 13 A5 70  7F",
                          "enter tms:011010 rest tms:10 rest tdi:10100101. tms:10 rest leave:5 =0"));
}

TEST(VmeContainer, SkipsTheRestOfTheHeader) {
  struct {
    const char* length;
    std::string header;
  } const kCases[] = {
      {"00 00 00 0C", ""},
      {"00 00 00 0D", "00"},
      {"00 00 00 14", "FF FF FF FF FF FF FF FF"},
      {"00 00 00 20", "4B 52 56 4C 30 31 30 31  00 00 00 01 00 00 00 00  7F FF 59 F2"},
      {"00 00 00 FF", Times(243, "FF")},
      {"00 00 01 00", Times(244, "5F")},
      {"00 01 00 0C", Times(65536, "AA")},
  };
  for (const auto& container : kCases) {
    VmeTrace trace;
    EXPECT_EQ(trace.PlayBytes(File(container.length, container.header, "F2 1B 01 7F")), 0) << container.length;
    EXPECT_TRUE(SameTrace(trace.text(), Trace("enter pulse leave:6 =0"))) << container.length;
    EXPECT_FALSE(trace.player.HasFileOpen());
  }
}

TEST(VmeContainer, RefusesAHeaderThatIsShorterThanItsOwnLength) {
  for (const char* length : {"00", "01", "02", "03", "04", "05", "06", "07", "08", "09", "0A", "0B"}) {
    VmeTrace trace;
    EXPECT_EQ(trace.PlayBytes(File(std::string("00 00 00") + length, "", "F2 7F")), -3) << length;
    EXPECT_EQ(trace.text().find("W "), std::string::npos) << length;
  }
}

TEST(VmeContainer, RefusesAHeaderThatReachesBehindTheEnd) {
  for (const char* length :
       {"00 00 00 0D", "00 00 00 17", "00 00 01 0C", "01 00 00 00", "80 00 00 0C", "FF FF FF FF"}) {
    VmeTrace trace;
    EXPECT_EQ(trace.PlayBytes(File(length, "", "F2 7F")), -3) << length;
    EXPECT_EQ(trace.text().find("W "), std::string::npos) << length;
    EXPECT_EQ(trace.text().find("RBI Header Error"), std::string::npos) << length;
  }
}

TEST(VmeContainer, RefusesAFileThatEndsInItsHeader) {
  const Bytes file = VmeFile("F2 7F");
  for (std::size_t length = 0; length <= 20; ++length) {
    VmeTrace trace;
    EXPECT_EQ(trace.PlayBytes(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length))), -3) << length;
    EXPECT_EQ(trace.text().find("W "), std::string::npos) << length;
    EXPECT_NE(trace.text().find("P Reached end of file/n\n"), std::string::npos) << length;
    EXPECT_EQ(trace.text().find("P RBI Header Error\\n\\r\n") != std::string::npos, length < 8) << length;
  }
}

TEST(VmeContainer, OpensTheNextFileInThePlaceOfTheOneLeftOpen) {
  VmeTrace trace;
  EXPECT_FALSE(trace.player.HasFileOpen());
  EXPECT_EQ(trace.Play("F0"), -3);
  EXPECT_TRUE(trace.player.HasFileOpen());
  EXPECT_TRUE(trace.Plays("F2 1B 01 7F", "enter pulse leave:6 =0"));
  EXPECT_FALSE(trace.player.HasFileOpen());
}

TEST(VmeContainer, ClosesTheFileAlsoAfterAnError) {
  VmeTrace trace;
  EXPECT_EQ(trace.Play("F2 00"), -4);
  EXPECT_FALSE(trace.player.HasFileOpen());
  EXPECT_EQ(trace.Play("F2 32 60 01"), 96);
  EXPECT_FALSE(trace.player.HasFileOpen());
}

TEST(VmeContainer, HasAWordForEachErrorCode) {
  EXPECT_STREQ(VmeErrorText(0), "pass");
  EXPECT_STREQ(VmeErrorText(-1), "verification fail");
  EXPECT_STREQ(VmeErrorText(-2), "can't find the file");
  EXPECT_STREQ(VmeErrorText(-3), "wrong file type");
  EXPECT_STREQ(VmeErrorText(-4), "file error");
  EXPECT_STREQ(VmeErrorText(-5), "option error");
  for (const int code : {1, 2, 5, 96, 127, INT_MAX, -6, -7, -128, INT_MIN + 1})
    EXPECT_EQ(VmeErrorText(code), nullptr) << code;
}

TEST(VmeContainer, ProcessHasOnePlayerThatSpeaksToTheConsole) {
  EXPECT_EQ(&TheVmePlayer(), &TheVmePlayer());
  test_support::TraceRecorder recorder;
  const test_support::TempFolder folder;
  TheVmePlayer().port.Connect(recorder.Window());
  const test_support::CapturedOutput captured;
  EXPECT_EQ(TheVmePlayer().PlayVmeFile(folder.Write("empty", "").c_str()), -3);
  EXPECT_EQ(TheVmePlayer().PlayVmeFile(folder.Write("good", VmeFile("F2")).c_str()), 0);
  EXPECT_NE(captured.out().find("RBI Header Error\n\rReached end of file/n0%\n"), std::string::npos);
  EXPECT_EQ(captured.err(), "");
}

}  // namespace
