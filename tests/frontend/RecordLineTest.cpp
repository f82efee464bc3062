#include <frontend/RecordLine.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "RecordBytes.h"

namespace {

using frontend::RecordLine;
using record_bytes::Bytes;

// The line is made of what is handed in: bytes and fields need not belong together.
const Bytes kTwoBytes = {0x00, 0xFF};

TEST(FrontEndRecordLine, OfEachRecordHasItsFieldsInTheOrderOfTheKeys) {
  EXPECT_EQ(RecordLine(82, kTwoBytes, frontend::Progress{"dovu", "Loading", -7}),
            R"({"bytes":2,"hex":"00ff","kind":82,"part":"dovu","percent":-7,"phase":"Loading","record":"progress"})");
  EXPECT_EQ(
      RecordLine(42, kTwoBytes, frontend::Version{"pico", 291, 4294967295}),
      R"({"bytes":2,"current":291,"expected":4294967295,"hex":"00ff","kind":42,"part":"pico","record":"version"})");
  EXPECT_EQ(RecordLine(102, kTwoBytes, frontend::Restart{1, 0}),
            R"({"boxPowerCycle":0,"bytes":2,"cpuRestart":1,"hex":"00ff","kind":102,"record":"restart"})");
  EXPECT_EQ(RecordLine(~std::uint64_t{0}, {}, frontend::Refused{"unknown kind"}),
            R"({"bytes":0,"hex":"","kind":18446744073709551615,"reason":"unknown kind","record":"refused"})");
}

TEST(FrontEndRecordLine, EscapesAllThatIsNoPrintableAscii) {
  EXPECT_EQ(RecordLine(42, {}, frontend::Version{"a \"b\\c\" ~\x7F\x80\xAE\xFF\n\t\x01", 0, 0}),
            R"({"bytes":0,"current":0,"expected":0,"hex":"","kind":42,)"
            R"("part":"a \"b\\c\" ~\u007f\u0080\u00ae\u00ff\u000a\u0009\u0001","record":"version"})");
}

TEST(FrontEndRecordLine, ShowsTheFirst1024BytesOfALongRecord) {
  Bytes bytes(1024, 0xAB);
  std::string hex;
  for (int i = 0; i < 1024; ++i)
    hex += "ab";
  EXPECT_EQ(RecordLine(7, bytes, frontend::Refused{"r"}),
            "{\"bytes\":1024,\"hex\":\"" + hex + "\",\"kind\":7,\"reason\":\"r\",\"record\":\"refused\"}");
  bytes.push_back(0xCD);
  EXPECT_EQ(RecordLine(7, bytes, frontend::Refused{"r"}),
            "{\"bytes\":1025,\"hex\":\"" + hex + "\",\"kind\":7,\"reason\":\"r\",\"record\":\"refused\"}");
}

}  // namespace
