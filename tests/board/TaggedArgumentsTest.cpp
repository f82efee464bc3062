#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "board/TaggedArguments.h"
#include "OneDictionary.h"
#include "support/FailureOf.h"
#include "support/PlatformDouble.h"
#include "support/ScriptedTransport.h"
#include "talcpath.h"

// What commands take from a list of tagged arguments, and what they put where it points.

namespace {

using test_support::Bytes;
using test_support::FromHex;

constexpr char kWrongType[] = "WyvrelHelper.cpp: kHWCerr_UnexpectedObjectTypeError";

/// One command for each type, whose one value is not required for a request, and one whose four values are mixed.
constexpr char kDictionary[] =
    "AnInt8 Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 1 DataName V DataType INT8\n;"
    "AUInt8 Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 2 DataName V DataType UINT8\n;"
    "AnInt16 Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 3 DataName V DataType INT16\n"
    "Symbol kMinusTwo -2\n;"
    "AUInt16 Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 4 DataName V DataType UINT16\n;"
    "AnInt32 Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 5 DataName V DataType INT32\n;"
    "AUInt32 Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 6 DataName V DataType UINT32\n;"
    "AnInt64 Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 7 DataName V DataType INT64\n;"
    "AUInt64 Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 8 DataName V DataType UINT64\n;"
    "SomeBytes Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 9 DataName V DataType BYTES\n;"
    "Mixed Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 10\n"
    "DataName First RD DataType UINT8\n"
    "DataName Second RD DataType UINT16\n"
    "DataName Third DataType UINT32\n"
    "DataName Last DataType BYTES\n;";

class TaggedArgumentsTest : public testing::Test {
 protected:
  OneDictionary blocks{kDictionary};
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{(system.Use(blocks), system)};
  ScriptedTransport helper;
};

// ---- Inputs

const std::uint8_t kThreeBytes[] = {0xDE, 0xAD, 0x01};

struct InputCase {
  const char* what;
  const char* command;
  Argument argument;
  const char* packet;
  const char* reply;
};

void PrintTo(const InputCase& input, std::ostream* out) {
  *out << input.what;
}

class TaggedInput : public TaggedArgumentsTest, public testing::WithParamInterface<InputCase> {};

TEST_P(TaggedInput, TravelsInItsType) {
  const InputCase& each = GetParam();
  helper.Expect({Replies(each.packet, each.reply)});
  EXPECT_EQ(helper.SendCommand(each.command, {each.argument}), kHWCerr_None);
}

const InputCase kInputCases[] = {
    {"Tag0",
     "AnInt16",
     {"V", ArgumentTag{0}, 0, "kMinusTwo"},
     "0B 0B 00 06 80 06 00 00 FF FE",
     "0B 0B 00 04 80 06 00 00"},
    // Of wider words the low bits count.
    {"Tag1", "AnInt8", {"V", ArgumentTag{1}, 0x12345680}, "0B 0B 00 05 80 02 00 00 80", "0B 0B 00 04 80 02 00 00"},
    {"Tag2", "AUInt8", {"V", ArgumentTag{2}, 0x123456FE}, "0B 0B 00 05 80 04 00 00 FE", "0B 0B 00 04 80 04 00 00"},
    {"Tag3", "AnInt16", {"V", ArgumentTag{3}, 0x12348001}, "0B 0B 00 06 80 06 00 00 80 01", "0B 0B 00 04 80 06 00 00"},
    {"Tag4", "AUInt16", {"V", ArgumentTag{4}, 0x1234FEDC}, "0B 0B 00 06 80 08 00 00 FE DC", "0B 0B 00 04 80 08 00 00"},
    {"Tag5",
     "AnInt32",
     {"V", ArgumentTag{5}, 0xFEDCBA98},
     "0B 0B 00 08 80 0A 00 00 FE DC BA 98",
     "0B 0B 00 04 80 0A 00 00"},
    {"Tag6",
     "AUInt32",
     {"V", ArgumentTag{6}, 0x80000001},
     "0B 0B 00 08 80 0C 00 00 80 00 00 01",
     "0B 0B 00 04 80 0C 00 00"},
    {"Tag7",
     "AnInt64",
     {"V", ArgumentTag{7}, 0x7FFFFFFF},
     "0B 0B 00 0C 80 0E 00 00 00 00 00 00 7F FF FF FF",
     "0B 0B 00 04 80 0E 00 00"},
    {"Tag7OfANegativeNumber",
     "AnInt64",
     {"V", ArgumentTag{7}, 0x80000000},
     "0B 0B 00 0C 80 0E 00 00 FF FF FF FF 80 00 00 00",
     "0B 0B 00 04 80 0E 00 00"},
    {"Tag8",
     "AUInt64",
     {"V", ArgumentTag{8}, 0x7FFFFFFF},
     "0B 0B 00 0C 80 10 00 00 00 00 00 00 7F FF FF FF",
     "0B 0B 00 04 80 10 00 00"},
    // The sign is extended, though the type has none.
    {"Tag8OfALargeNumber",
     "AUInt64",
     {"V", ArgumentTag{8}, 0x80000000},
     "0B 0B 00 0C 80 10 00 00 FF FF FF FF 80 00 00 00",
     "0B 0B 00 04 80 10 00 00"},
    {"Tag9",
     "SomeBytes",
     {"V", ArgumentTag{9}, 0, kThreeBytes, nullptr, 3},
     "0B 0B 00 07 80 12 00 00 DE AD 01",
     "0B 0B 00 04 80 12 00 00"},
    {"ASymbol", "AnInt16", Argument::Symbol("V", "kMinusTwo"), "0B 0B 00 06 80 06 00 00 FF FE",
     "0B 0B 00 04 80 06 00 00"},
    {"AnInt8", "AnInt8", Argument::Int8("V", -2), "0B 0B 00 05 80 02 00 00 FE", "0B 0B 00 04 80 02 00 00"},
    {"AUInt8", "AUInt8", Argument::UInt8("V", 254), "0B 0B 00 05 80 04 00 00 FE", "0B 0B 00 04 80 04 00 00"},
    {"AnInt16", "AnInt16", Argument::Int16("V", -3), "0B 0B 00 06 80 06 00 00 FF FD", "0B 0B 00 04 80 06 00 00"},
    {"AUInt16", "AUInt16", Argument::UInt16("V", 0xFEDC), "0B 0B 00 06 80 08 00 00 FE DC", "0B 0B 00 04 80 08 00 00"},
    {"AnInt32", "AnInt32", Argument::Int32("V", -4), "0B 0B 00 08 80 0A 00 00 FF FF FF FC", "0B 0B 00 04 80 0A 00 00"},
    {"AUInt32", "AUInt32", Argument::UInt32("V", 0xFEDCBA98), "0B 0B 00 08 80 0C 00 00 FE DC BA 98",
     "0B 0B 00 04 80 0C 00 00"},
    {"AnInt64", "AnInt64", Argument::Int64("V", -5), "0B 0B 00 0C 80 0E 00 00 FF FF FF FF FF FF FF FB",
     "0B 0B 00 04 80 0E 00 00"},
    {"AUInt64", "AUInt64", Argument::UInt64("V", 0x12345678), "0B 0B 00 0C 80 10 00 00 00 00 00 00 12 34 56 78",
     "0B 0B 00 04 80 10 00 00"},
    {"Bytes", "SomeBytes", Argument::Bytes("V", kThreeBytes, 2), "0B 0B 00 06 80 12 00 00 DE AD",
     "0B 0B 00 04 80 12 00 00"},
};

INSTANTIATE_TEST_SUITE_P(Of, TaggedInput, testing::ValuesIn(kInputCases),
                         [](const auto& named) { return named.param.what; });

// ---- Outputs

struct OutputCase {
  const char* what;
  const char* command;
  std::uint32_t tag;
  const char* packet;
  const char* reply;
  /// The value as it lies in a little-endian memory; bytes as they are.
  Bytes value;
};

void PrintTo(const OutputCase& output, std::ostream* out) {
  *out << output.what;
}

class TaggedOutput : public TaggedArgumentsTest, public testing::WithParamInterface<OutputCase> {};

TEST_P(TaggedOutput, IsPutWhereItPointsAndNotBehindThat) {
  const OutputCase& each = GetParam();
  helper.Expect({Replies(each.packet, each.reply)});
  alignas(8) std::uint8_t place[16];
  std::fill_n(place, sizeof place, std::uint8_t{0x5A});
  const auto capacity = static_cast<std::uint32_t>(each.value.size());
  EXPECT_EQ(helper.ExecuteCommand(each.command, {{"V", ArgumentTag{each.tag}, 0, nullptr, place, capacity}}),
            kHWCerr_None);
  Bytes expected = each.value;
  expected.resize(sizeof place, 0x5A);
  EXPECT_EQ(Bytes(place, place + sizeof place), expected);
}

const OutputCase kOutputCases[] = {
    {"Tag10", "AnInt8", 10, "0B 0B 00 04 80 03 00 00", "0B 0B 00 05 80 03 00 00 80", {0x80}},
    {"Tag11", "AUInt8", 11, "0B 0B 00 04 80 05 00 00", "0B 0B 00 05 80 05 00 00 FE", {0xFE}},
    {"Tag12", "AnInt16", 12, "0B 0B 00 04 80 07 00 00", "0B 0B 00 06 80 07 00 00 80 01", {0x01, 0x80}},
    {"Tag13", "AUInt16", 13, "0B 0B 00 04 80 09 00 00", "0B 0B 00 06 80 09 00 00 FE DC", {0xDC, 0xFE}},
    {"Tag14",
     "AnInt32",
     14,
     "0B 0B 00 04 80 0B 00 00",
     "0B 0B 00 08 80 0B 00 00 FE DC BA 98",
     {0x98, 0xBA, 0xDC, 0xFE}},
    {"Tag15",
     "AUInt32",
     15,
     "0B 0B 00 04 80 0D 00 00",
     "0B 0B 00 08 80 0D 00 00 80 00 00 01",
     {0x01, 0x00, 0x00, 0x80}},
    {"Tag16",
     "AnInt64",
     16,
     "0B 0B 00 04 80 0F 00 00",
     "0B 0B 00 0C 80 0F 00 00 FE DC BA 98 76 54 32 10",
     {0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE}},
    {"Tag17",
     "AUInt64",
     17,
     "0B 0B 00 04 80 11 00 00",
     "0B 0B 00 0C 80 11 00 00 81 23 45 67 89 AB CD EF",
     {0xEF, 0xCD, 0xAB, 0x89, 0x67, 0x45, 0x23, 0x81}},
    {"Tag18", "SomeBytes", 18, "0B 0B 00 04 80 13 00 00", "0B 0B 00 07 80 13 00 00 DE AD 01", {0xDE, 0xAD, 0x01}},
    {"Tag18OfNoBytes", "SomeBytes", 18, "0B 0B 00 04 80 13 00 00", "0B 0B 00 04 80 13 00 00", {}},
};

INSTANTIATE_TEST_SUITE_P(Of, TaggedOutput, testing::ValuesIn(kOutputCases),
                         [](const auto& named) { return named.param.what; });

TEST_F(TaggedArgumentsTest, HaveAnOutputOfEachType) {
  struct Case {
    Argument argument;
    std::uint32_t tag;
  };
  std::int8_t int8 = 0;
  std::uint8_t uint8 = 0;
  std::int16_t int16 = 0;
  std::uint16_t uint16 = 0;
  std::int32_t int32 = 0;
  std::uint32_t uint32 = 0;
  std::int64_t int64 = 0;
  std::uint64_t uint64 = 0;
  std::uint8_t bytes[3] = {};
  const Case cases[] = {
      {Argument::OutInt8("V", &int8), 10},     {Argument::OutUInt8("V", &uint8), 11},
      {Argument::OutInt16("V", &int16), 12},   {Argument::OutUInt16("V", &uint16), 13},
      {Argument::OutInt32("V", &int32), 14},   {Argument::OutUInt32("V", &uint32), 15},
      {Argument::OutInt64("V", &int64), 16},   {Argument::OutUInt64("V", &uint64), 17},
      {Argument::OutBytes("V", bytes, 3), 18},
  };
  void* const places[] = {&int8, &uint8, &int16, &uint16, &int32, &uint32, &int64, &uint64, bytes};
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_STREQ(cases[i].argument.name, "V");
    EXPECT_EQ(static_cast<std::uint32_t>(cases[i].argument.tag), cases[i].tag);
    EXPECT_EQ(cases[i].argument.place, places[i]) << cases[i].tag;
    EXPECT_EQ(cases[i].argument.sizeBytes, cases[i].tag == 18 ? 3u : 0u);
  }
}

// ---- The list

TEST_F(TaggedArgumentsTest, MixInputsAndOutputs) {
  helper.Expect({Replies("0B 0B 00 07 80 15 00 00 07 12 34",  //
                         "0B 0B 00 0D 80 15 00 00 08 56 78 9A BC DE F0 41 42")});
  std::uint16_t second = 0;
  std::uint32_t third = 0;
  std::uint8_t last[4] = {};
  EXPECT_EQ(
      helper.ExecuteCommand("Mixed", {Argument::UInt16("Second", 0x1234), Argument::UInt8("First", 7),
                                      Argument::OutBytes("Last", last, sizeof last),
                                      Argument::OutUInt32("Third", &third), Argument::OutUInt16("Second", &second)}),
      kHWCerr_None);
  EXPECT_EQ(third, 0x9ABCDEF0u);
  EXPECT_EQ(Bytes(last, last + 4), FromHex("41 42 00 00"));
  // A value that the request carried comes back in the reply, too.
  EXPECT_EQ(second, 0x5678u);
}

TEST_F(TaggedArgumentsTest, TakeTheLastOfTwoInputsOfOneName) {
  helper.Expect({Replies("0B 0B 00 05 80 04 00 00 02", "0B 0B 00 04 80 04 00 00")});
  EXPECT_EQ(helper.SendCommand("AUInt8", {Argument::UInt8("V", 1), Argument::UInt8("V", 2)}), kHWCerr_None);
}

TEST_F(TaggedArgumentsTest, HideAnInputBehindAnOutput) {
  std::uint32_t third = 0;
  const Argument hidden = Argument::UInt16("Second", 0x1234);
  EXPECT_EQ(
      FailureOf([&] {
        helper.ExecuteCommand("Mixed", {Argument::UInt8("First", 7), Argument::OutUInt32("Third", &third), hidden});
      }),
      "WyvrelHelper.cpp: Could not compile Talc command");

  // The outputs' turn skips it, whatever its tag, and goes on behind it.
  for (std::uint32_t tag = 0; tag <= 9; ++tag) {
    SCOPED_TRACE(tag);
    helper.Expect({Replies("0B 0B 00 07 80 15 00 00 07 12 34",  //
                           "0B 0B 00 0B 80 15 00 00 08 56 78 00 00 00 09")});
    std::uint8_t first = 0;
    EXPECT_EQ(helper.ExecuteCommand("Mixed", {Argument::UInt8("First", 7),
                                              hidden,
                                              Argument::OutUInt32("Third", &third),
                                              {"First", ArgumentTag{tag}, 0xFF, "?", nullptr, 1},
                                              Argument::OutUInt8("First", &first)}),
              kHWCerr_None);
    EXPECT_EQ(third, 9u);
    EXPECT_EQ(first, 8);
  }
}

TEST_F(TaggedArgumentsTest, EndAtANullName) {
  const Argument end{nullptr, ArgumentTag{29}};
  helper.Expect({Replies("0B 0B 00 05 80 04 00 00 07", "0B 0B 00 04 80 04 00 00")});
  EXPECT_EQ(helper.SendCommand("AUInt8", {Argument::UInt8("V", 7), end, Argument::UInt8("V", 8)}), kHWCerr_None);

  helper.Expect({Replies("0B 0B 00 04 80 05 00 00", "0B 0B 00 05 80 05 00 00 FE")});
  std::uint8_t before = 0;
  std::uint8_t behind = 0;
  EXPECT_EQ(helper.ExecuteCommand("AUInt8", {Argument::OutUInt8("V", &before), end, Argument::OutUInt8("V", &behind)}),
            kHWCerr_None);
  EXPECT_EQ(before, 0xFE);
  EXPECT_EQ(behind, 0);
}

TEST_F(TaggedArgumentsTest, LetTagsWithoutATypePassAsInputs) {
  for (const std::uint32_t tag : {19u, 28u}) {
    SCOPED_TRACE(tag);
    // What stands behind it is hidden.
    helper.Expect({Replies("0B 0B 00 05 80 04 00 00 07", "0B 0B 00 04 80 04 00 00")});
    EXPECT_EQ(helper.SendCommand("AUInt8", {Argument::UInt8("V", 7), {"V", ArgumentTag{tag}}, Argument::UInt8("V", 8)}),
              kHWCerr_None);
  }
}

TEST_F(TaggedArgumentsTest, AreRefusedForATagWithoutATypeOnceItIsTheOutputsTurn) {
  for (const std::uint32_t tag : {19u, 28u}) {
    SCOPED_TRACE(tag);
    helper.Expect({Replies("0B 0B 00 04 80 05 00 00", "0B 0B 00 05 80 05 00 00 FE")});
    std::uint8_t before = 0;
    std::uint8_t behind = 0;
    EXPECT_EQ(FailureOf([&] {
                helper.ExecuteCommand("AUInt8", {Argument::OutUInt8("V", &before),
                                                 {"V", ArgumentTag{tag}, 0, nullptr, &behind, 1},
                                                 Argument::OutUInt8("V", &behind)});
              }),
              kWrongType);
    EXPECT_EQ(before, 0xFE);
    EXPECT_EQ(behind, 0);
  }
}

TEST_F(TaggedArgumentsTest, AreRefusedForALargerTagBeforeAnythingIsSent) {
  for (const std::uint32_t tag : {29u, 30u, 0x80000000u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(tag);
    const Argument odd{"V", ArgumentTag{tag}};
    EXPECT_EQ(FailureOf([&] { helper.SendCommand("AUInt8", {odd}); }), kWrongType);
    EXPECT_EQ(FailureOf([&] { helper.ExecuteCommand("AUInt8", {odd}); }), kWrongType);
    std::uint8_t buffer[16];
    std::uint32_t length = sizeof buffer;
    EXPECT_EQ(FailureOf([&] { helper.PrecompileCommand(buffer, &length, 1, "AUInt8", {odd}); }), kWrongType);
  }
}

TEST_F(TaggedArgumentsTest, AreRefusedForALargerTagBehindTheFirstOutputOnceItIsTheOutputsTurn) {
  helper.Expect({Replies("0B 0B 00 04 80 05 00 00", "0B 0B 00 05 80 05 00 00 FE")});
  std::uint8_t value = 0;
  EXPECT_EQ(FailureOf([&] {
              helper.ExecuteCommand("AUInt8", {Argument::OutUInt8("V", &value), {"V", ArgumentTag{29}}});
            }),
            kWrongType);
  EXPECT_EQ(value, 0xFE);
}

TEST_F(TaggedArgumentsTest, AreRefusedForAnOutputThatTheReplyDoesNotHold) {
  std::uint8_t bytes[2] = {0x5A, 0x5A};
  std::uint16_t word = 0x5A5A;
  struct Case {
    const char* what;
    const char* command;
    Argument argument;
    const char* packet;
    const char* reply;
  };
  const Case cases[] = {
      {"a value of no such name", "AUInt16", Argument::OutUInt16("Other", &word), "0B 0B 00 04 80 09 00 00",
       "0B 0B 00 06 80 09 00 00 FE DC"},
      {"a name in another case", "AUInt16", Argument::OutUInt16("v", &word), "0B 0B 00 04 80 09 00 00",
       "0B 0B 00 06 80 09 00 00 FE DC"},
      {"a value of another kind", "AnInt16", Argument::OutUInt16("V", &word), "0B 0B 00 04 80 07 00 00",
       "0B 0B 00 06 80 07 00 00 FE DC"},
      {"a value in place of bytes", "AUInt16", Argument::OutBytes("V", bytes, 2), "0B 0B 00 04 80 09 00 00",
       "0B 0B 00 06 80 09 00 00 FE DC"},
      {"bytes in place of a value", "SomeBytes", Argument::OutUInt16("V", &word), "0B 0B 00 04 80 13 00 00",
       "0B 0B 00 06 80 13 00 00 FE DC"},
      {"bytes longer than their room", "SomeBytes", Argument::OutBytes("V", bytes, 2), "0B 0B 00 04 80 13 00 00",
       "0B 0B 00 07 80 13 00 00 DE AD 01"},
      {"a null place", "AUInt16", Argument::OutUInt16("V", nullptr), "0B 0B 00 04 80 09 00 00",
       "0B 0B 00 06 80 09 00 00 FE DC"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    helper.Expect({Replies(each.packet, each.reply)});
    EXPECT_EQ(FailureOf([&] { helper.ExecuteCommand(each.command, {each.argument}); }), kWrongType);
    EXPECT_EQ(word, 0x5A5A);
    EXPECT_EQ(Bytes(bytes, bytes + 2), FromHex("5A 5A"));
  }
}

TEST_F(TaggedArgumentsTest, HaveNoOutputsInASend) {
  helper.Expect({Replies("0B 0B 00 05 80 04 00 00 07", "0B 0B 00 05 80 04 00 00 FE")});
  std::uint8_t value = 0x5A;
  EXPECT_EQ(helper.SendCommand("AUInt8", {Argument::UInt8("V", 7), Argument::OutUInt8("V", &value)}), kHWCerr_None);
  EXPECT_EQ(value, 0x5A);
}

TEST_F(TaggedArgumentsTest, LeaveOutATextThatIsNullOrEmpty) {
  for (const char* const text : {static_cast<const char*>(nullptr), ""})
    EXPECT_EQ(FailureOf([&] { helper.SendCommand("AnInt16", {Argument::Symbol("V", text)}); }),
              "WyvrelHelper.cpp: Could not compile Talc command");
}

}  // namespace
