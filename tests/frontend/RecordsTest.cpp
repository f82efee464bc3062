#include <frontend/Records.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>

#include "RecordBytes.h"

namespace {

using frontend::DecodeRecord;
using frontend::Progress;
using frontend::Record;
using frontend::Refused;
using frontend::Restart;
using frontend::Version;
using record_bytes::Bytes;
using record_bytes::Field;
using record_bytes::Join;

TEST(FrontEndRecords, ProgressHasPartPhaseAndPercent) {
  const Bytes bytes = Join({Field("belmara"), Field("Programming"), {0x2A, 0x00, 0x00, 0x00}});
  ASSERT_EQ(bytes.size(), 524u);
  EXPECT_EQ(DecodeRecord(82, bytes), Record(Progress{"belmara", "Programming", 42}));
}

TEST(FrontEndRecords, PercentIsSignedAndHasNoBounds) {
  const std::pair<Bytes, std::int32_t> cases[] = {
      {{0x2C, 0x01, 0x00, 0x00}, 300},
      {{0x9D, 0xFF, 0xFF, 0xFF}, -99},
      {{0xFF, 0xFF, 0xFF, 0x7F}, 2147483647},
      {{0x00, 0x00, 0x00, 0x80}, -2147483647 - 1},
  };
  for (const auto& [number, percent] : cases)
    EXPECT_EQ(DecodeRecord(82, Join({Field("dovu"), Field("Loading"), number})),
              Record(Progress{"dovu", "Loading", percent}));
}

TEST(FrontEndRecords, VersionHasPartCurrentAndExpected) {
  const Bytes bytes = Join({Field("fwcore"), {0x60, 0x11, 0x00, 0x00}, {0xEF, 0xCD, 0xAB, 0x89}});
  ASSERT_EQ(bytes.size(), 268u);
  EXPECT_EQ(DecodeRecord(42, bytes), Record(Version{"fwcore", 0x1160, 0x89ABCDEF}));
}

TEST(FrontEndRecords, RestartHasTwoNumbers) {
  EXPECT_EQ(DecodeRecord(102, Bytes{1, 0, 0, 0, 0, 0, 0, 0}), Record(Restart{1, 0}));
  EXPECT_EQ(DecodeRecord(102, Bytes{0, 0, 0, 0, 1, 0, 0, 0}), Record(Restart{0, 1}));
  EXPECT_EQ(DecodeRecord(102, Bytes{4, 3, 2, 1, 8, 7, 6, 5}), Record(Restart{0x01020304, 0x05060708}));
}

TEST(FrontEndRecords, WhatStandsBehindATerminatorDoesNotCount) {
  for (const std::uint8_t leftOver : Bytes{0x00, 0x41, 0xFF}) {
    const Bytes bytes = Join({Field("pico", leftOver), Field("Done", leftOver), {100, 0, 0, 0}});
    EXPECT_EQ(DecodeRecord(82, bytes), Record(Progress{"pico", "Done", 100}));
  }
}

TEST(FrontEndRecords, TextsAreTakenAsBytes) {
  EXPECT_EQ(DecodeRecord(42, Join({Field("\xE9\x01\""), Bytes(8, 0)})), Record(Version{"\xE9\x01\"", 0, 0}));
  EXPECT_EQ(DecodeRecord(42, Join({Field(""), Bytes(8, 0)})), Record(Version{"", 0, 0}));
}

TEST(FrontEndRecords, ATextOf259CharactersIsWhole) {
  const std::string longest(259, 'n');
  EXPECT_EQ(DecodeRecord(82, Join({Field(longest), Field(longest), Bytes(4, 0)})),
            Record(Progress{longest, longest, 0}));
  EXPECT_EQ(DecodeRecord(42, Join({Field(longest), Bytes(8, 0)})), Record(Version{longest, 0, 0}));
}

TEST(FrontEndRecords, ATextWithoutATerminatorIsRefused) {
  const Bytes endless(260, 'n');
  EXPECT_EQ(DecodeRecord(82, Join({endless, Field("Done"), Bytes(4, 0)})),
            Record(Refused{"the part has no terminator"}));
  EXPECT_EQ(DecodeRecord(82, Join({Field("pico"), endless, Bytes(4, 0)})),
            Record(Refused{"the phase has no terminator"}));
  // A zero in the number behind it does not end it.
  EXPECT_EQ(DecodeRecord(42, Join({endless, Bytes(8, 0)})), Record(Refused{"the part has no terminator"}));
}

struct WrongSize {
  std::uint64_t kind;
  std::size_t sizeBytes;
  const char* reason;
};

TEST(FrontEndRecords, AnySizeButTheKindsOwnIsRefused) {
  const WrongSize cases[] = {
      {82, 0, "has 0 bytes, not 524"},     {82, 523, "has 523 bytes, not 524"}, {82, 525, "has 525 bytes, not 524"},
      {82, 268, "has 268 bytes, not 524"}, {42, 0, "has 0 bytes, not 268"},     {42, 267, "has 267 bytes, not 268"},
      {42, 269, "has 269 bytes, not 268"}, {42, 524, "has 524 bytes, not 268"}, {102, 0, "has 0 bytes, not 8"},
      {102, 7, "has 7 bytes, not 8"},      {102, 9, "has 9 bytes, not 8"},      {102, 65536, "has 65536 bytes, not 8"},
  };
  for (const WrongSize& wrong : cases)
    EXPECT_EQ(DecodeRecord(wrong.kind, Bytes(wrong.sizeBytes, 0)), Record(Refused{wrong.reason}))
        << "kind " << wrong.kind;
}

TEST(FrontEndRecords, AnUnknownKindIsRefusedWhateverItsSize) {
  for (const std::uint64_t kind : {std::uint64_t{0}, std::uint64_t{41}, std::uint64_t{83}, std::uint64_t{103},
                                   std::uint64_t{0x100000052}, ~std::uint64_t{0}})
    for (const std::size_t sizeBytes : {0u, 8u, 268u, 524u})
      EXPECT_EQ(DecodeRecord(kind, Bytes(sizeBytes, 0)), Record(Refused{"unknown kind"})) << "kind " << kind;
}

}  // namespace
