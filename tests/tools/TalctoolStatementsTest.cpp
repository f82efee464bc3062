// The statements of the command log that talctool reads and writes.

#include <nlohmann/json.hpp>

#include "TalctoolFixture.h"

namespace {

class TalctoolStatements : public Talctool {
 protected:
  std::string Read(const std::string& statement, const std::string& direction = "send") const {
    return OfSmall("text", R"({"statement":")" + statement + R"(","direction":")" + direction + "\"}");
  }
};

TEST_F(TalctoolStatements, ReadsAndWritesEveryKindOfValue) {
  EXPECT_EQ(
      Read(R"(Any A INT8 -1 B UINT8 255 C INT16 -32768 D UINT16 65535 E INT32 -5 F UINT32 4294967295 )"
           R"(S SYMBOL Loud X BYTES 4 \u0000. \u00ff . ;)"),
      R"({"name":"Any","text":"\ntalc send Any A INT8 -1 B UINT8 255 C INT16 -32768 D UINT16 65535 E INT32 -5 )"
      R"(F UINT32 4294967295 S SYMBOL Loud X BYTES 4 \u0000. \u00ff . ;","values":[["A","INT8",-1],["B","UINT8",255],)"
      R"(["C","INT16",-32768],["D","UINT16",65535],["E","INT32",-5],["F","UINT32",4294967295],["S","SYMBOL","Loud"],)"
      R"(["X","BYTES","002e20ff"]]})"
      "\n");
}

// Read as high and low half, shown as two addresses: it is meant, what is written cannot be read back.
TEST_F(TalctoolStatements, ShowsEachAddressOfA64BitValueAsAWord) {
  EXPECT_EQ(Read("Any A INT64 -1 4294967295 B UINT64 1 2 C UINT8 3 . ;"),
            R"({"name":"Any","text":"\ntalc send Any A INT64 <ptr> <ptr> B UINT64 <ptr> <ptr> C UINT8 3 . ;",)"
            R"("values":[["A","INT64",-1],["B","UINT64",4294967298],["C","UINT8",3]]})"
            "\n");
}

TEST_F(TalctoolStatements, LeavesWhatLooksLikeAnAddressAlone) {
  EXPECT_EQ(
      Read("Any 0x7ffc0010 INT64 0 1 B BYTES 27 INT64 0x7ffc0010 0x7ffc0014 S SYMBOL 0x7ffc0010 0x7ffc0014 UINT8 1 . "
           ";"),
      R"({"name":"Any","text":"\ntalc send Any 0x7ffc0010 INT64 <ptr> <ptr> B BYTES 27 INT64 0x7ffc0010 0x7ffc0014 )"
      R"(S SYMBOL 0x7ffc0010 0x7ffc0014 UINT8 1 . ;","values":[["0x7ffc0010","INT64",1],)"
      R"(["B","BYTES","494e543634)"
      R"(20)"
      R"(30783766666330303130)"
      R"(20)"
      R"(30783766666330303134"],["S","SYMBOL","0x7ffc0010"],["0x7ffc0014","UINT8",1]]})"
      "\n");
}

TEST_F(TalctoolStatements, WritesNoValuesOfARequest) {
  EXPECT_EQ(Read("Gain Channel UINT8 7 Wide INT64 0 1 . ;", "request"),
            R"({"name":"Gain","text":"\ntalc request Gain . ;","values":[["Channel","UINT8",7],["Wide","INT64",1]]})"
            "\n");
}

TEST_F(TalctoolStatements, ReadsNamesThatTheDictionaryDoesNotHave) {
  EXPECT_EQ(Read("Pong . ;"), "{\"name\":\"Pong\",\"text\":\"\\ntalc send Pong . ;\",\"values\":[]}\n");
  EXPECT_EQ(Read("\\u00e9\\u0000 \\u0080 UINT8 1 ."),
            R"({"name":"\u00e9\u0000","text":"\ntalc send \u00e9\u0000 \u0080 UINT8 1 . ;",)"
            R"("values":[["\u0080","UINT8",1]]})"
            "\n");
}

struct Fragment {
  std::string statement, name, values;
};

TEST_F(TalctoolStatements, TakesAStatementThatEndsAnywhere) {
  for (const Fragment& fragment : {
           Fragment{"", "", "[]"},
           Fragment{" \\n\\t", "", "[]"},
           Fragment{"Any", "Any", "[]"},
           Fragment{"Any A", "Any", "[]"},
           Fragment{"Any A UINT16", "Any", "[]"},
           Fragment{"Any A BYTES 5 ab", "Any", "[]"},
           Fragment{"Any A BYTES 4294967295 ab", "Any", "[]"},
           Fragment{"Any A BYTES 0 . ;", "Any", "[]"},
           Fragment{"Any A UINT8 1 B", "Any", R"([["A","UINT8",1]])"},
           // Numbers are cut to the width, and a word that is no type takes no value with it.
           Fragment{"Any A INT8 300 . ;", "Any", R"([["A","INT8",44]])"},
           Fragment{"Any A WORD B UINT8 1 . ;", "Any", R"([["B","UINT8",1]])"},
       }) {
    const std::string answer = Read(fragment.statement);
    const auto parsed = nlohmann::json::parse(answer);
    EXPECT_EQ(parsed["name"], fragment.name) << fragment.statement;
    EXPECT_EQ(parsed["values"].dump(), fragment.values) << fragment.statement;
  }
}

}  // namespace
