// What rbitool says of a script that is wrong, and where.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "VmeScript.h"
#include "VmeTokens.h"

namespace {

using namespace std::string_literals;

/// The report of a script named "s".
std::string Report(const std::string& script) {
  try {
    vme_script::AssembleVme(script);
  } catch (const vme_script::ScriptError& error) {
    return error.Report("s");
  }
  return "no error";
}

struct Wrong {
  std::string script;
  std::string message;
};

/// Compares the first lines of the reports, without the script's name.
void ExpectMessages(const std::vector<Wrong>& wrongs) {
  for (const Wrong& wrong : wrongs) {
    const std::string report = Report(wrong.script);
    EXPECT_EQ(report.substr(0, report.find('\n')), "s:" + wrong.message) << wrong.script;
  }
}

TEST(RbitoolVmeError, ShowsTheLineWithACaret) {
  EXPECT_EQ(Report("mem 16\nsdr 16 tdi zeroes 0000\nvues\n"),
            "s:2:12: expected 2 bytes of data, found 'zeroes'; did you mean 'zeros'?\n"
            "sdr 16 tdi zeroes 0000\n"
            "           ^\n");
}

TEST(RbitoolVmeError, KeepsTabsInFrontOfTheCaret) {
  EXPECT_EQ(Report("sdr 16\r\n\ttdi\t1 # half\r\n"),
            "s:2:6: expected pairs of hexadecimal digits without 0x, found '1'\n"
            "\ttdi\t1 # half\n"
            "\t   \t^\n");
}

TEST(RbitoolVmeError, PointsBehindAScriptThatEndsTooEarly) {
  EXPECT_EQ(Report("mem"),
            "s:1:4: expected a number from 0 to 65535, found the end of the script\n"
            "mem\n"
            "   ^\n");
  EXPECT_EQ(Report("mem\n"),
            "s:2:1: expected a number from 0 to 65535, found the end of the script\n"
            "\n"
            "^\n");
}

TEST(RbitoolVmeError, ShowsOnlyWhatCanBePrinted) {
  EXPECT_EQ(Report("st\x1B[1\xC3\xA4m \0x"s),
            "s:1:1: expected a statement, found 'st?[1??m'\n"
            "st?[1??m ?x\n"
            "^\n");
  EXPECT_EQ(Report(std::string(41, 'x')),
            "s:1:1: expected a statement, found '" + std::string(40, 'x') + "...'\n" + std::string(41, 'x') + "\n^\n");
}

TEST(RbitoolVmeError, ProposesTheWordThatIsMeant) {
  ExpectMessages({
      {"sate idle", "1:1: expected a statement, found 'sate'; did you mean 'state'?"},
      {"SDR 8", "1:1: expected a statement, found 'SDR'; did you mean 'sdr'?"},
      {"sdx 8", "1:1: expected a statement, found 'sdx'; did you mean 'sdr'?"},
      {"frequenzy 8", "1:1: expected a statement, found 'frequenzy'; did you mean 'frequency'?"},
      {"sdr 8 tdx 00", "1:7: expected a statement, found 'tdx'; did you mean 'tdi'?"},
      {"state idel", "1:7: expected a number from 0 to 255, found 'idel'"},
      {"state idl", "1:7: expected a number from 0 to 255, found 'idl'; did you mean 'idle'?"},
      {"state shift_dr", "1:7: expected a number from 0 to 255, found 'shift_dr'; did you mean 'shiftdr'?"},
      {"setflow Cascade", "1:9: expected a number from 0 to 65535, found 'Cascade'; did you mean 'cascade'?"},
      {"wait 5 MS", "1:8: expected 'us' or 'ms', found 'MS'; did you mean 'ms'?"},
      {"compressed on sdr 8 tdi nibble(3) 00",
       "1:25: expected 1 byte of data, found 'nibble'; did you mean 'nibbles'?"},
      {"repeat 1 sdr 8 tdi flie", "1:20: expected 1 byte of data, found 'flie'"},
      {"repeat 1 sdr 8 tdi files", "1:20: expected 1 byte of data, found 'files'; did you mean 'file'?"},
      {"repeat 1 endrepaet",
       "1:10: expected a statement, 'pass' or 'endrepeat', found 'endrepaet'; did you mean 'endrepeat'?"},
      {"hir 8 tdo 00", "1:7: expected 'tdi', found 'tdo'; did you mean 'tdi'?"},
  });
}

TEST(RbitoolVmeError, TellsWhatIsNoStatement) {
  ExpectMessages({
      {"tdi 00", "1:1: expected a statement, found 'tdi'"},
      {"sir 8\ntck 1 tdi 00", "2:7: expected a statement, found 'tdi'"},
      {"hir 0 tdi 00", "1:7: expected a statement, found 'tdi'"},
      {"mem 8 9", "1:7: expected a statement, found '9'"},
      {"vues (", "1:6: expected a statement, found '('"},
      {"\"vues\"", "1:1: expected a statement, found \"vues\""},
      {"sdr 8 \"tdi\" 00", "1:7: expected a statement, found \"tdi\""},
      {"endrepeat", "1:1: expected a statement, found 'endrepeat'"},
      {"pass", "1:1: expected a statement, found 'pass'"},
  });
}

TEST(RbitoolVmeError, TellsTheRangeOfANumber) {
  ExpectMessages({
      {"mem 65536", "1:5: expected a number from 0 to 65535, found '65536'"},
      {"mem 0x10000", "1:5: expected a number from 0 to 65535, found '0x10000'"},
      {"mem -1", "1:5: expected a number from 0 to 65535, found '-1'"},
      {"mem 99999999999999999999", "1:5: expected a number from 0 to 65535, found '99999999999999999999'"},
      {"mem 4294967296", "1:5: expected a number from 0 to 65535, found '4294967296'"},
      {"mem 0x1000010", "1:5: expected a number from 0 to 65535, found '0x1000010'"},
      {"mem 0x", "1:5: expected a number from 0 to 65535, found '0x'"},
      {"mem 1F", "1:5: expected a number from 0 to 65535, found '1F'"},
      {"mem --1", "1:5: expected a number from 0 to 65535, found '--1'"},
      {"mem \"8\"", "1:5: expected a number from 0 to 65535, found \"8\""},
      {"tck vues", "1:5: expected a number from 0 to 65535, found 'vues'"},
      {"sdr 65536", "1:5: expected a number from 0 to 65535, found '65536'"},
      {"hir x", "1:5: expected a number from 0 to 65535, found 'x'"},
      {"repeat 65536", "1:8: expected a number from 0 to 65535, found '65536'"},
      {"vendor 256", "1:8: expected a number from 0 to 255, found '256'"},
      {"state 256", "1:7: expected a number from 0 to 255, found '256'"},
      {"shr 128", "1:5: expected a number from -128 to 127, found '128'"},
      {"shl -129", "1:5: expected a number from -128 to 127, found '-129'"},
      {"wait 32768 us", "1:6: expected a number from 0 to 32767, found '32768'"},
      {"wait 5", "1:7: expected 'us' or 'ms', found the end of the script"},
      {"wait 5 s", "1:8: expected 'us' or 'ms', found 's'"},
      {"byte 00*0", "1:9: expected a number from 1 to 65535, found '0'"},
      {"byte 00*65536", "1:9: expected a number from 1 to 65535, found '65536'"},
  });
}

TEST(RbitoolVmeError, TellsWhereBytesAreNone) {
  ExpectMessages({
      {"byte", "1:5: expected bytes as pairs of hexadecimal digits, found the end of the script"},
      {"byte vues", "1:6: expected bytes as pairs of hexadecimal digits, found 'vues'"},
      {"byte 123", "1:6: expected pairs of hexadecimal digits without 0x, found '123'"},
      {"byte abc", "1:6: expected pairs of hexadecimal digits without 0x, found 'abc'"},
      {"byte 0x12", "1:6: expected pairs of hexadecimal digits without 0x, found '0x12'"},
      {"byte 12 1g", "1:9: expected pairs of hexadecimal digits without 0x, found '1g'"},
      {"sdr 8 tdi raw mask 00", "1:15: expected bytes as pairs of hexadecimal digits, found 'mask'"},
      {"byte 00*65535 0000", "1:15: expected at most 65536 bytes in a row"},
      {"byte 0000*32769", "1:6: expected at most 65536 bytes in a row"},
  });
}

TEST(RbitoolVmeError, CountsTheBytesOfABlock) {
  ExpectMessages({
      {"sir 8 tdi", "1:10: expected 1 byte of data, found the end of the script"},
      {"sdr 9 tdi vues", "1:11: expected 2 bytes of data, found 'vues'"},
      {"sdr 9 tdi 12", "1:7: expected 2 bytes of data, found 1"},
      {"sdr 8\n  tdi 12\n  tdo 1234", "3:3: expected 1 byte of data, found 2"},
      {"sdr 0 tdi 00", "1:7: expected 0 bytes of data, found 1"},
      {"hdr 17 tdi 1234", "1:8: expected 3 bytes of data, found 2"},
      {"hdr 17", "1:7: expected 'tdi', found the end of the script"},
      {"compressed on sdr 16 tdi zeros 00", "1:22: expected 2 bytes of data, found 1"},
      {"repeat 1 sdr 16 tdi 12 file pass tdi 3456 endrepeat", "1:34: expected 1 byte of data, found 2"},
  });
}

TEST(RbitoolVmeError, RefusesFormsOutsideOfCompressedData) {
  ExpectMessages({
      {"sdr 8 tdi zeros 00", "1:11: expected plain data, as this block is not compressed, found 'zeros'"},
      {"compressed off sdr 8 tdi ones FF", "1:26: expected plain data, as this block is not compressed, found 'ones'"},
      {"compressed on hdr 8 tdi bitmap(0) FF",
       "1:25: expected plain data, as this block is not compressed, found 'bitmap'"},
  });
}

TEST(RbitoolVmeError, AsksForTheParameterOfAForm) {
  ExpectMessages({
      {"compressed on sdr 8 tdi bitmap 00", "1:32: expected '(', found '00'"},
      {"compressed on sdr 8 tdi bitmap(256) 00", "1:32: expected a number from 0 to 255, found '256'"},
      {"compressed on sdr 8 tdi bitmap(0 00", "1:34: expected ')', found '00'"},
      {"compressed on sdr 8 tdi nibbles(2) 00", "1:33: expected a number from 3 to 254, found '2'"},
      {"compressed on sdr 8 tdi nibbles(255) 00", "1:33: expected a number from 3 to 254, found '255'"},
      {"compressed on sdr 8 tdi nibbles(3", "1:34: expected ')', found the end of the script"},
  });
}

TEST(RbitoolVmeError, RefusesDataThatAPatternCannotGive) {
  ExpectMessages({
      {"compressed on sdr 32 tdi nibbles(4) 1234 1235", "1:22: expected 0x34 as byte 4 of this pattern, found 0x35"},
      {"compressed on sdr 24 tdi nibbles(3) 123 124",
       "1:37: expected pairs of hexadecimal digits without 0x, found '123'"},
      {"compressed on sdr 24 tdi nibbles(3) 123124", "1:22: expected 0x23 as byte 3 of this pattern, found 0x24"},
      {"compressed on sdr 24 tdi nibbles(4) 123412", "1:22: expected 0x00 as byte 3 of this pattern, found 0x12"},
      {"compressed on sdr 24 tdi nibbles(5) 12345F", "1:22: expected 0x50 as byte 3 of this pattern, found 0x5F"},
      {"compressed on sdr 8 tdi nibbles(3) 10", "1:21: expected 0x00 as byte 1 of this pattern, found 0x10"},
  });
}

TEST(RbitoolVmeError, RefusesTheByteThatSendsThePlayerToTheFile) {
  ExpectMessages({
      {"repeat 1 sdr 24 tdi 125534 endrepeat",
       "1:17: expected 'file' instead of byte 2: in a loop 0x55 sends the player to the file"},
      {"repeat 1 sdr 24 tdi 55 file endrepeat",
       "1:17: expected 'file' instead of byte 1: in a loop 0x55 sends the player to the file"},
      {"compressed on repeat 1 hdr 8 tdi 55 endrepeat",
       "1:30: expected 'file' instead of byte 1: in a loop 0x55 sends the player to the file"},
      {"compressed on repeat 1 sdr 344 tdi nibbles(85) 00*43 endrepeat",
       "1:32: expected a form that begins with another byte than 0x55, which in a loop stands for 'file'"},
  });
}

TEST(RbitoolVmeError, TellsWhereTheFileCannotTakeOver) {
  ExpectMessages({
      {"sdr 8 tdi file", "1:11: expected 1 byte of data, found 'file'"},
      {"repeat 1 sdr 16 tdi 1234 file", "1:17: expected fewer than 2 bytes before 'file', found 2"},
      {"compressed on repeat 1 sdr 16 tdi 12 file",
       "1:31: expected no data before 'file': a compressed block comes from the file as a whole"},
      {"compressed on repeat 1 sdr 16 tdi zeros file", "1:41: expected 2 bytes of data, found 'file'"},
      {"repeat 1 sdr 8 tdi file pass tdi file", "1:34: expected 1 byte of data, found 'file'"},
  });
}

TEST(RbitoolVmeError, CountsThePassesOfALoop) {
  ExpectMessages({
      {"repeat 2 sdr 8 tdi file endrepeat", "1:25: expected 'pass' 1 of 2, found 'endrepeat'"},
      {"repeat 2 sdr 8 tdi file pass tdi 01 endrepeat", "1:37: expected 'pass' 2 of 2, found 'endrepeat'"},
      {"repeat 1 sdr 8 tdi file pass tdi 01 pass tdi 02", "1:37: expected 'endrepeat', found 'pass'"},
      {"repeat 1 sdr 8 tdi 01 pass endrepeat", "1:23: expected 'endrepeat', found 'pass'"},
      {"repeat 0 sdr 8 tdi file pass tdi 01 endrepeat", "1:25: expected 'endrepeat', found 'pass'"},
      {"repeat 1 sdr 8 tdi file tdo file pass tdo 01", "1:39: expected 'tdi', found 'tdo'"},
      {"repeat 1 sdr 8 tdi file tdo file pass tdi 01 endrepeat", "1:46: expected 'tdo', found 'endrepeat'"},
      {"repeat 1 sdr 8 tdi file pass tdi 01 endrepaet",
       "1:37: expected 'endrepeat', found 'endrepaet'; did you mean 'endrepeat'?"},
  });
}

TEST(RbitoolVmeError, WatchesTheEndOfALoop) {
  ExpectMessages({
      {"repeat 1 tck 1", "1:15: expected a statement, 'pass' or 'endrepeat', found the end of the script"},
      {"repeat 1 repeat 2", "1:10: expected no loop in a loop, found 'repeat'"},
      {"repeat 1 endvme", "1:10: expected 'endrepeat' as the end of the loop, found 'endvme'"},
      {"repeat 1 endloop", "1:10: expected 'endrepeat' as the end of the loop, found 'endloop'"},
      {"repeat 1 endfile", "1:10: expected 'endrepeat' as the end of the loop, found 'endfile'"},
      {"vues repeat 1 byte 00*65535 endrepeat", "1:6: expected a loop of at most 65535 bytes, found 65536 bytes"},
  });
}

TEST(RbitoolVmeError, WantsTheContainerBeforeTheSteps) {
  ExpectMessages({
      {"vues container KRVL 1", "1:6: expected 'container' once and before the first step"},
      {"container KRVL 1 container KRVL 1", "1:18: expected 'container' once and before the first step"},
      {"vues compressed on", "1:6: expected 'compressed' once and before the first step"},
      {"compressed on compressed on", "1:15: expected 'compressed' once and before the first step"},
      {"repeat 1 compressed on", "1:10: expected 'compressed' once and before the first step"},
      {"compressed yes", "1:12: expected 'on' or 'off', found 'yes'"},
      {"container", "1:10: expected a part id of four printable characters, found the end of the script"},
      {"container KRV 1", "1:11: expected a part id of four printable characters, found 'KRV'"},
      {"container \"KR\tL\" 1", "1:11: expected a part id of four printable characters, found \"KR\tL\""},
      {"container KRVL", "1:15: expected a version of one to four hexadecimal digits, found the end of the script"},
      {"container KRVL 12345", "1:16: expected a version of one to four hexadecimal digits, found '12345'"},
      {"container KRVL 0x1", "1:16: expected a version of one to four hexadecimal digits, found '0x1'"},
      {"container KRVL -1", "1:16: expected a version of one to four hexadecimal digits, found '-1'"},
      {"container KRVL 1 S:demo;", "1:18: expected a statement, found 'S:demo;'"},
      {"container KRVL 1 \"S:demo;", "1:18: expected a '\"' before the line ends"},
      {"container KRVL 1 \"S:demo;\n\"", "1:18: expected a '\"' before the line ends"},
  });
}

}  // namespace
