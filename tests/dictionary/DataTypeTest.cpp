#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

#include "dictionary/DataType.h"

namespace {

using TalcPathPrivate::DataType;
using Kind = DataType::Kind;

TEST(DataTypeTest, HasNineWords) {
  struct Row {
    const char* word;
    Kind kind;
    std::int32_t wireSize;
  };
  constexpr Row kRows[] = {
      {"INT8", Kind::kInt8, 1},     {"UINT8", Kind::kUInt8, 1},   {"INT16", Kind::kInt16, 2},
      {"UINT16", Kind::kUInt16, 2}, {"INT32", Kind::kInt32, 4},   {"UINT32", Kind::kUInt32, 4},
      {"INT64", Kind::kInt64, 8},   {"UINT64", Kind::kUInt64, 8}, {"BYTES", Kind::kBytes, -1},
  };
  for (const Row& row : kRows) {
    const DataType type(row.word);
    EXPECT_EQ(type.Word(), row.word);
    EXPECT_EQ(type.GetKind(), row.kind) << row.word;
    EXPECT_EQ(type.WireSize(), row.wireSize) << row.word;
    EXPECT_EQ(type.IsBytes(), row.wireSize == -1) << row.word;
  }
}

TEST(DataTypeTest, KeepsAnyOtherWordWithoutMeaning) {
  const std::string others[] = {"",
                                "int8",
                                "Int8",
                                "uint8",
                                "bytes",
                                "Bytes",
                                "INT",
                                "UINT",
                                "BYTE",
                                "INT8 ",
                                " INT8",
                                "INT 8",
                                "INT80",
                                "INT1",
                                "INT24",
                                "UINT128",
                                "SYMBOL",
                                "BYTES ",
                                "BYTESS",
                                "UINT640",
                                "FLOAT",
                                "STRING",
                                std::string("INT8\0", 5)};
  for (const std::string& word : others) {
    const DataType type(word);
    EXPECT_EQ(type.Word(), word);
    EXPECT_EQ(type.GetKind(), Kind::kUnknown) << word;
    EXPECT_EQ(type.WireSize(), 0) << word;
    EXPECT_FALSE(type.IsBytes()) << word;
  }
}

TEST(DataTypeTest, IsUnknownAtFirst) {
  const DataType type;
  EXPECT_EQ(type.Word(), "");
  EXPECT_EQ(type.GetKind(), Kind::kUnknown);
  EXPECT_EQ(type.WireSize(), 0);
}

/// "signed 16" and the like; "other" when the word is none of an integer.
std::string IntegerOf(const char* word) {
  return DataType(word).WithInteger(
      []<typename T>(std::type_identity<T>) {
        return (std::is_signed_v<T> ? "signed " : "unsigned ") + std::to_string(sizeof(T) * 8);
      },
      "other");
}

TEST(DataTypeTest, LeadsToTheIntegerOfItsSizeAndSign) {
  EXPECT_EQ(IntegerOf("INT8"), "signed 8");
  EXPECT_EQ(IntegerOf("UINT8"), "unsigned 8");
  EXPECT_EQ(IntegerOf("INT16"), "signed 16");
  EXPECT_EQ(IntegerOf("UINT16"), "unsigned 16");
  EXPECT_EQ(IntegerOf("INT32"), "signed 32");
  EXPECT_EQ(IntegerOf("UINT32"), "unsigned 32");
  EXPECT_EQ(IntegerOf("INT64"), "signed 64");
  EXPECT_EQ(IntegerOf("UINT64"), "unsigned 64");
  EXPECT_EQ(IntegerOf("BYTES"), "other");
  EXPECT_EQ(IntegerOf("int8"), "other");
  EXPECT_EQ(IntegerOf(""), "other");
}

}  // namespace
