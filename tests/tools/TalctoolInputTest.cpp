// What talctool takes on standard input: values of every kind to their limits, and lines of another form.

#include "TalctoolFixture.h"

namespace {

using namespace std::string_literals;

constexpr char kBad[] = "{\"error\":\"bad input\"}\n";

class TalctoolInput : public Talctool {
 protected:
  /// What a command holds after these values were set: the reply to a send leaves all values as they are.
  std::string Echo(const std::string& values) const {
    return OfSmall("decompile",
                   R"({"name":"Any","direction":"send","reply":"0b0b000400000000","values":)" + values + "}");
  }
  static std::string Held(const std::string& values) {
    return R"({"error":"kTPSuccess","ok":true,"status":"kTPSuccess","values":)" + values + "}\n";
  }
  /// Hands a call bad lines, each between two good ones.
  void Refuses(const std::string& call, const std::string& good, const std::vector<std::string>& badLines) const {
    const std::string goodAnswer = OfSmall(call, good + "\n");
    EXPECT_NE(goodAnswer, kBad);
    std::string input = good + "\n";
    std::string expected = goodAnswer;
    for (const std::string& line : badLines) {
      EXPECT_EQ(OfSmall(call, line + "\n"), kBad) << line;
      input += line + "\n" + good + "\n";
      expected += kBad + goodAnswer;
    }
    EXPECT_EQ(OfSmall(call, input), expected);
  }
};

struct IntegerType {
  std::string word, lowest, belowLowest, highest, aboveHighest;
};

TEST_F(TalctoolInput, TakesIntegersOverTheWholeRangeOfTheirType) {
  for (const IntegerType& type : {
           IntegerType{"INT8", "-128", "-129", "127", "128"},
           IntegerType{"UINT8", "0", "-1", "255", "256"},
           IntegerType{"INT16", "-32768", "-32769", "32767", "32768"},
           IntegerType{"UINT16", "0", "-1", "65535", "65536"},
           IntegerType{"INT32", "-2147483648", "-2147483649", "2147483647", "2147483648"},
           IntegerType{"UINT32", "0", "-1", "4294967295", "4294967296"},
           IntegerType{"INT64", "-9223372036854775808", "-9223372036854775809", "9223372036854775807",
                       "9223372036854775808"},
           IntegerType{"UINT64", "0", "-1", "18446744073709551615", "18446744073709551616"},
       }) {
    const auto value = [&](const std::string& number) { return R"([["V",")" + type.word + "\"," + number + "]]"; };
    for (const std::string& number : {type.lowest, type.highest})
      EXPECT_EQ(Echo(value(number)), Held(value(number)));
    for (const std::string& number : {type.belowLowest, type.aboveHighest, "-1e400"s, "1e400"s, "1.0"s, "1e2"s,
                                      "\"1\""s, "true"s, "null"s, "[1]"s, "1" + std::string(400, '0')})
      EXPECT_EQ(Echo(value(number)), kBad) << type.word << " " << number;
  }
}

TEST_F(TalctoolInput, TakesBytesAsHexadecimalText) {
  EXPECT_EQ(Echo(R"([["V","BYTES","09afAF"]])"), Held(R"([["V","BYTES","09afaf"]])"));
  EXPECT_EQ(Echo(R"([["V","BYTES",""]])"), Held(R"([["V","BYTES",""]])"));
  for (const std::string text : {R"("0")", R"("000")", R"("0g")", R"("0x00")", R"(" 00")", R"("0 0 ")", R"("-1")",
                                 R"("\u00e9")", R"("00\u0000")", "0", "null", "[]"})
    EXPECT_EQ(Echo(R"([["V","BYTES",)" + text + "]]"), kBad) << text;
}

TEST_F(TalctoolInput, HandsSymbolsOverAsTheyAre) {
  EXPECT_EQ(Echo(R"([["V","SYMBOL","\u0000\u00ff a\u007f"]])"), Held(R"([["V","SYMBOL","\u0000\u00ff a\u007f"]])"));
  EXPECT_EQ(Echo("[[\"V\",\"SYMBOL\",\"\xC3\xA9\"]]"), Held(R"([["V","SYMBOL","\u00e9"]])"));
  // The command itself takes neither an empty symbol nor one of 255 characters.
  EXPECT_EQ(Echo(R"([["V","SYMBOL",""]])"), Held("[]"));
  const std::string longest(254, 's');
  EXPECT_EQ(Echo(R"([["V","SYMBOL",")" + longest + "\"]]"), Held(R"([["V","SYMBOL",")" + longest + "\"]]"));
  EXPECT_EQ(Echo(R"([["V","SYMBOL",")" + longest + "s\"]]"), Held("[]"));
  for (const std::string text : {R"("\u0100")", R"("\u20ac")", R"("\ud83d\ude00")", "1", "null"})
    EXPECT_EQ(Echo(R"([["V","SYMBOL",)" + text + "]]"), kBad) << text;
}

TEST_F(TalctoolInput, KeepsTheOrderInWhichNamesWereFirstSet) {
  EXPECT_EQ(Echo(R"([["B","UINT8",1],["","INT8",2],["A\u00e9","INT8",3],["B","BYTES","04"]])"),
            Held(R"([["B","BYTES","04"],["","INT8",2],["A\u00e9","INT8",3]])"));
}

TEST_F(TalctoolInput, AnswersNothingToNoInput) {
  for (const char* call : {"compile", "decompile", "text"})
    EXPECT_EQ(OfSmall(call), "");
}

TEST_F(TalctoolInput, AnswersALineWithoutALineFeed) {
  const std::string question = R"({"name":"Ping","direction":"send","values":[]})";
  const std::string answer = "{\"ok\":true,\"packet\":\"0b0b000400000000\"}\n";
  EXPECT_EQ(OfSmall("compile", question), answer);
  EXPECT_EQ(OfSmall("compile", question + "\n"), answer);
  EXPECT_EQ(OfSmall("compile", " \t" + question + " \r\n"), answer);
  EXPECT_EQ(OfSmall("compile", question + "\n\n" + question), answer + kBad + answer);
}

/// Lines that no call takes.
std::vector<std::string> NoObjects() {
  return {"",
          " ",
          "x",
          "{",
          "{}",
          "[]",
          "null",
          "1",
          "\"text\"",
          "{}{}",
          "\xFF",
          "{\"name\":\"\xC3\"}",
          std::string(100000, '['),
          std::string(100000, '[') + std::string(100000, ']')};
}

TEST_F(TalctoolInput, RefusesBadLinesToCompileAndGoesOn) {
  const std::string good = R"({"name":"Ping","direction":"send","values":[]})";
  std::vector<std::string> bad = NoObjects();
  bad.insert(bad.end(), {
                            good + good,
                            good + "\0"s,
                            good + "\0 x"s,
                            R"({"direction":"send","values":[]})",
                            R"({"name":"Ping","values":[]})",
                            R"({"name":"Ping","direction":"send"})",
                            R"({"Name":"Ping","direction":"send","values":[]})",
                            R"({"name":1,"direction":"send","values":[]})",
                            R"({"name":"\u0100","direction":"send","values":[]})",
                            "{\"name\":\"Pi\xE9ng\",\"direction\":\"send\",\"values\":[]}",
                            "{\"name\":\"Pi\0ng\",\"direction\":\"send\",\"values\":[]}"s,
                            R"({"name":"\ud800","direction":"send","values":[]})",
                            R"({"name":"Ping","direction":"Send","values":[]})",
                            R"({"name":"Ping","direction":"","values":[]})",
                            R"({"name":"Ping","direction":null,"values":[]})",
                            R"({"name":"Ping","direction":"send","values":null})",
                            R"({"name":"Ping","direction":"send","values":{}})",
                            R"({"name":"Ping","direction":"send","values":["V","UINT8",1]})",
                            R"({"name":"Ping","direction":"send","values":[["V","UINT8"]]})",
                            R"({"name":"Ping","direction":"send","values":[["V","UINT8",1,2]]})",
                            R"({"name":"Ping","direction":"send","values":[{"V":1}]})",
                            R"({"name":"Ping","direction":"send","values":[[1,"UINT8",1]]})",
                            R"({"name":"Ping","direction":"send","values":[["V",1,1]]})",
                            R"({"name":"Ping","direction":"send","values":[["V","uint8",1]]})",
                            R"({"name":"Ping","direction":"send","values":[["V","UINT24",1]]})",
                            R"({"name":"Ping","direction":"send","values":[["V","",1]]})",
                            R"({"name":"Ping","direction":"send","values":[["V","UINT8",1],["W","UINT8",256]]})",
                        });
  Refuses("compile", good, bad);
}

TEST_F(TalctoolInput, RefusesBadLinesToDecompileAndGoesOn) {
  const std::string good = R"({"name":"Ping","direction":"send","reply":"0b0b000400000000"})";
  std::vector<std::string> bad = NoObjects();
  bad.insert(bad.end(), {
                            R"({"name":"Ping","direction":"send"})",
                            R"({"name":"Ping","reply":""})",
                            R"({"direction":"send","reply":""})",
                            R"({"name":"Ping","direction":"both","reply":""})",
                            R"({"name":"Ping","direction":"send","reply":"0"})",
                            R"({"name":"Ping","direction":"send","reply":"zz"})",
                            R"({"name":"Ping","direction":"send","reply":null})",
                            R"({"name":"Ping","direction":"send","reply":[11]})",
                            R"({"name":"Ping","direction":"send","reply":"","values":null})",
                            R"({"name":"Ping","direction":"send","reply":"","values":[["V","INT8",128]]})",
                        });
  Refuses("decompile", good, bad);
}

TEST_F(TalctoolInput, RefusesBadLinesToTextAndGoesOn) {
  const std::string good = R"({"statement":"Ping . ;","direction":"send"})";
  std::vector<std::string> bad = NoObjects();
  bad.insert(bad.end(), {
                            R"({"statement":"Ping . ;"})",
                            R"({"direction":"send"})",
                            R"({"statement":"Ping . ;","direction":"talc"})",
                            R"({"statement":["Ping"],"direction":"send"})",
                            R"({"statement":"\u0100 . ;","direction":"send"})",
                        });
  Refuses("text", good, bad);
}

}  // namespace
